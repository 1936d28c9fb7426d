// varnpdf selfcheck: do the readers of the library give what they should?
#include <memory>
#include <nlohmann/json.hpp>
#include <string>

#include "command.h"
#include "output.h"
#include "varnpdf/PdfTestObj.h"
#include "varnpdf/PdfText.h"

namespace {

using Json = nlohmann::ordered_json;

constexpr int kReaderFails = 1;

constexpr const char* kFooter = R"(Exit codes:
  0  every reader gives what is expected
  1  a reader does not: the library is damaged or not what it was built as

Example:
  varnpdf selfcheck --json | jq -r '.readers[] | select(.okay | not) | .failure')";

void putLines(const CPdfTestObj& check) {
    for (int i = 0; i < check.GetReaderNum(); ++i) {
        const std::string failure = CPdfText::Printable(check.GetFailure(i));
        cli::put(check.GetLine(i) + (failure.empty() ? "" : "  " + failure) + '\n');
    }
}

void putJson(const CPdfTestObj& check, int failed) {
    Json readers = Json::array();
    for (int i = 0; i < check.GetReaderNum(); ++i) {
        Json reader = {
            {"reader", check.GetReaderName(i)}, {"cases", check.GetCaseNum(i)}, {"okay", check.GetOkay(i) == 1}};
        if (const std::string failure = check.GetFailure(i); !failure.empty()) reader["failure"] = failure;
        readers.push_back(std::move(reader));
    }
    const Json all = {{"failed", failed}, {"readers", std::move(readers)}};
    cli::put(all.dump(-1, ' ', false, Json::error_handler_t::replace) + '\n');
}

int run(bool asJson) {
    CPdfTestObj check;
    const int failed = check.RunAll();
    if (failed < 0) {
        cli::complain("selfcheck", failed);
        return kReaderFails;
    }
    if (asJson) {
        putJson(check, failed);
    } else {
        putLines(check);
    }
    return failed == 0 ? cli::kAllGood : kReaderFails;
}

}  // namespace

cli::Command cli::addSelfcheck(const Parser& program) {
    const auto json = std::make_shared<bool>(false);
    const Parser parser = program.command("selfcheck", "Checks the library's readers over fixed inputs");
    parser.flag("--json", *json, "Writes one JSON object");
    parser.footer(kFooter);
    return {parser, [json] { return run(*json); }};
}
