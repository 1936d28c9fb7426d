// varnpdf find: where a text stands on the pages.
#include <array>
#include <charconv>
#include <cmath>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>

#include "command.h"
#include "document.h"
#include "output.h"

namespace {

using Json = nlohmann::ordered_json;

constexpr const char* kFooter =
    R"(Each line names the page and the box around the text: left, bottom, right, top in points from the lower left of the
page's own space, as annotations and signatures are placed. The page is not turned and its box may begin elsewhere.
A blank in TEXT matches any gap on the line; upper and lower case are told apart.

Examples:
  varnpdf find contract.pdf "Signature:"
  varnpdf find --json contract.pdf "Place, date")";

struct Options {
    std::string file;
    std::string text;
    bool json = false;
};

double hundredths(double value) { return std::round(value * 100) / 100 + 0.0; }

std::string shown(double value) {
    std::array<char, 40> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), hundredths(value)).ptr;
    return {digits.data(), end};
}

void listJson(const Options& options, const std::vector<SigPosStruct>& hits) {
    Json out = {{"file", CPdfText::ValidUtf8(options.file)},
                {"text", CPdfText::ValidUtf8(options.text)},
                {"hits", Json::array()}};
    for (const SigPosStruct& hit : hits) {
        const Json box = {hundredths(hit.x1), hundredths(hit.y1), hundredths(hit.x2), hundredths(hit.y2)};
        out["hits"].push_back({{"page", hit.page}, {"rect", box}});
    }
    cli::put(out.dump(2) + '\n');
}

int run(const Options& options) {
    CPdf pdf;
    if (cli::openDocument(pdf, options.file) != 0) return cli::kAllFailed;
    CPdfTextSearch search(&pdf);
    const int code = search.Find(options.text.c_str());
    if (options.json) {
        listJson(options, search.GetHits());
    } else {
        for (const SigPosStruct& hit : search.GetHits()) {
            cli::put(std::to_string(hit.page) + '\t' + shown(hit.x1) + ' ' + shown(hit.y1) + ' ' + shown(hit.x2) + ' ' +
                     shown(hit.y2) + '\n');
        }
    }
    if (code == 0) return cli::kAllGood;
    cli::complain(options.file, code);
    return code == VARNPDF_TEXT_UNUSABLE ? cli::kUsage : cli::kAllFailed;
}

}  // namespace

cli::Command cli::addFind(const Parser& program) {
    const auto options = std::make_shared<Options>();
    const Parser parser = program.command("find", "Finds a text on the pages");
    parser.option("FILE", options->file, "PDF file").required().shownAs(" ");
    parser.option("TEXT", options->text, "What to find").required().shownAs(" ");
    parser.flag("--json", options->json, "The places as JSON");
    parser.footer(kFooter);
    return {parser, [options] { return run(*options); }};
}
