// varnpdf portfolio: several files in one document.
#include <strings.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <list>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "command.h"
#include "document.h"
#include "output.h"
#include "progress.h"

namespace {

constexpr const char* kFooter = R"(Examples:
  varnpdf portfolio -o offer.pdf --cover letter.pdf prices.xlsx plan.pdf
  varnpdf portfolio -o offer.pdf --cover letter.pdf --description "Our offer" prices.xlsx --description "All prices"

The portfolio shows the first page of the cover, which is embedded like every other file and shown first by viewers.
Descriptions go with the files in their order, the cover first. PDF files newer than version 1.4 are refused.)";

struct Options {
    std::string cover;
    std::vector<std::string> files;
    std::vector<std::string> descriptions;
    std::string out;
};

bool looksLikePdf(const std::string& path) {
    char head[5] = {};
    std::ifstream(path, std::ios::binary).read(head, sizeof head);
    return std::string_view(head, sizeof head) == "%PDF-";
}

int typeOf(const std::string& path) {
    if (looksLikePdf(path)) return CPdfCollectionListItem::ePdf;
    const std::size_t dot = path.rfind('.');
    for (int i = 0; dot != std::string::npos && i < iMaxMIMETypes; ++i) {
        if (strcasecmp(FileExtensions[i], path.c_str() + dot) != 0) continue;
        const std::string_view type = MIME_Types[i];
        if (type.starts_with("image/")) return CPdfCollectionListItem::eImage;
        return type.starts_with("text/") ? CPdfCollectionListItem::eText : CPdfCollectionListItem::eOther;
    }
    return CPdfCollectionListItem::eOther;
}

std::string tenths(float version) {
    const std::string digits = std::to_string(std::lround(version * 10));
    return digits.substr(0, digits.size() - 1) + '.' + digits.back();
}

/// Names the file that the library's answer is about.
void explain(const std::vector<CPdfCollectionListItem>& items, const Options& options, int code) {
    constexpr float kNewest = 1.4F;
    for (const CPdfCollectionListItem& item : items) {
        if (item.getFileType() != CPdfCollectionListItem::ePdf && !item.getIsActivePage()) continue;
        CPdf pdf;
        const int opened = pdf.Open(item.getFileName().c_str(), "rb");
        if (code == VARNPDF_COLLECTION_PDF_UNREADABLE && opened != 0) {
            cli::complain(item.getFileName(), opened);
            return;
        }
        if (code == VARNPDF_COLLECTION_PDF_VERSION && opened == 0 && pdf.GetPDFVersion() > kNewest) {
            cli::complain(item.getFileName(), "this is PDF " + tenths(pdf.GetPDFVersion()) +
                                                  ", and a portfolio takes PDF files up to version 1.4; write it as "
                                                  "version 1.4 first (-1308)");
            return;
        }
    }
    cli::complain(code == VARNPDF_TRAILER_INCOMPLETE ? options.cover : options.out, code);
}

bool allReadable(const std::vector<CPdfCollectionListItem>& items) {
    std::error_code error;
    for (const CPdfCollectionListItem& item : items) {
        const bool regular = std::filesystem::is_regular_file(item.getFileName(), error);
        if (regular && std::ifstream(item.getFileName())) continue;
        cli::complain(item.getFileName(), VARNPDF_COLLECTION_FILE_UNREADABLE);
        return false;
    }
    return true;
}

int run(const Options& options) {
    std::vector<std::string> files = options.files;
    const auto cover = std::find(files.begin(), files.end(), options.cover);
    if (cover != files.end()) files.erase(cover);
    files.insert(files.begin(), options.cover);
    if (options.descriptions.size() > files.size()) {
        cli::complain("--description", "there are more descriptions than files");
        return cli::kUsage;
    }
    std::vector<CPdfCollectionListItem> items;
    for (std::size_t i = 0; i < files.size(); ++i) {
        items.emplace_back(files[i], typeOf(files[i]), i == 0,
                           i < options.descriptions.size() ? options.descriptions[i] : "");
    }
    if (!allReadable(items)) return cli::kAllFailed;
    std::list<CPdfCollectionListItem*> list;
    for (CPdfCollectionListItem& item : items) list.push_back(&item);
    cli::Progress progress("building", 1);
    progress.next(options.out);
    std::string out = options.out;
    const int code = CPdfCollection().CreateCollection(out.data(), list);
    if (code != 0) explain(items, options, code);
    return code == 0 ? cli::kAllGood : cli::kAllFailed;
}

}  // namespace

cli::Command cli::addPortfolio(const Parser& program) {
    const auto options = std::make_shared<Options>();
    const Parser parser = program.command("portfolio", "Builds a portfolio from several files");
    parser.option("FILE", options->files, "Further files of any kind").shownAs("...");
    parser.option("--cover", options->cover, "PDF file that is shown first and supplies the cover page")
        .required()
        .shownAs("FILE");
    parser.option("--description", options->descriptions, "Text for a file, in the order of the files")
        .single()
        .shownAs("TEXT");
    parser.option("-o,--output", options->out, "File to write").required().shownAs("OUT");
    parser.footer(kFooter);
    return {parser, [options] { return run(*options); }};
}
