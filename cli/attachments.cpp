// varnpdf attachments: the files embedded in a document, listed or extracted.
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "command.h"
#include "document.h"
#include "extraction.h"
#include "output.h"
#include "progress.h"
#include "varnpdf/PdfText.h"

namespace {

using Json = nlohmann::ordered_json;

constexpr const char* kFooter =
    R"(Each line names the index, the size in bytes and the kind as the document states them ("-": it does not), and the name.

Extracted files get the last part of their name, without directories and control characters. No file is overwritten:
where the name is taken, a number is added.

Examples:
  varnpdf attachments invoice.pdf
  varnpdf attachments portfolio.pdf --extract files/
  varnpdf attachments --json invoice.pdf)";

struct Options {
    std::string file;
    std::string directory;
    bool json = false;
};

/// A key or name as people read it. Keys of this library begin with a mark of their own.
std::string shown(const std::string& text) {
    if (text.starts_with("\xEF\xBF") && !text.starts_with("\xEF\xBF\xBD") && text.size() % 2 == 0) {
        return CPdfText::DecodeTextString("\xFE\xFF" + text.substr(2));
    }
    return CPdfText::DecodeTextString(text);
}

std::string nameOf(const CPdfAttachments& files, int index) {
    const std::string name = shown(files.GetName(index));
    return name.empty() ? "attachment-" + std::to_string(index) : name;
}

void list(const CPdfAttachments& files) {
    for (int i = 0; i < files.GetCount(); ++i) {
        const long long size = files.GetSize(i);
        const std::string type = CPdfText::Printable(files.GetMimeType(i));
        const std::string description = CPdfText::Printable(shown(files.GetDescription(i)));
        cli::put(std::to_string(i) + '\t' + (size < 0 ? "-" : std::to_string(size)) + '\t' +
                 (type.empty() ? "-" : type) + '\t' + CPdfText::Printable(nameOf(files, i)) +
                 (description.empty() ? "" : '\t' + description) + '\n');
    }
}

void listJson(const CPdfAttachments& files) {
    Json out = Json::array();
    for (int i = 0; i < files.GetCount(); ++i) {
        const long long size = files.GetSize(i);
        const std::string type = files.GetMimeType(i);
        out.push_back({{"index", i},
                       {"name", nameOf(files, i)},
                       {"key", shown(files.GetKey(i))},
                       {"type", type.empty() ? Json(nullptr) : Json(CPdfText::ValidUtf8(type))},
                       {"size", size < 0 ? Json(nullptr) : Json(size)},
                       {"description", shown(files.GetDescription(i))}});
    }
    cli::put(out.dump(2) + '\n');
}

bool extractOne(CPdfAttachments& files, int index, cli::Extraction& target, const std::string& document) {
    const std::string name = nameOf(files, index);
    unsigned long length = 0;
    int code = files.GetContent(index, nullptr, &length);
    std::string bytes(code == 0 ? length : 0, '\0');
    if (code == 0) code = files.GetContent(index, reinterpret_cast<unsigned char*>(bytes.data()), &length);
    if (code != 0) {
        cli::complain(document + ": " + name, code);
        return false;
    }
    const std::string written = target.write(name, bytes);
    if (written.empty()) return false;
    cli::put(CPdfText::Printable(written) + '\n');
    return true;
}

int extractAll(CPdfAttachments& files, const Options& options) {
    cli::Extraction target(options.directory);
    if (!target.isOpen()) return cli::kAllFailed;
    cli::Progress progress("extracting", static_cast<std::size_t>(files.GetCount()));
    int failed = 0;
    for (int i = 0; i < files.GetCount(); ++i) {
        progress.next(nameOf(files, i));
        failed += extractOne(files, i, target, options.file) ? 0 : 1;
    }
    if (failed == 0) return cli::kAllGood;
    return failed == files.GetCount() ? cli::kAllFailed : cli::kSomeFailed;
}

int run(const Options& options) {
    CPdf pdf;
    if (cli::openDocument(pdf, options.file) != 0) return cli::kAllFailed;
    CPdfAttachments files(&pdf);
    if (!options.directory.empty()) return extractAll(files, options);
    if (options.json) {
        listJson(files);
    } else {
        list(files);
    }
    return cli::kAllGood;
}

}  // namespace

cli::Command cli::addAttachments(const Parser& program) {
    const auto options = std::make_shared<Options>();
    const Parser parser = program.command("attachments", "Lists or extracts the files embedded in a document");
    parser.option("FILE", options->file, "PDF file").required().shownAs(" ");
    const Option extract =
        parser.option("--extract", options->directory, "Directory for the files; it is made when it is not there");
    extract.shownAs("DIR");
    parser.flag("--json", options->json, "The list as JSON").excludes(extract);
    parser.footer(kFooter);
    return {parser, [options] { return run(*options); }};
}
