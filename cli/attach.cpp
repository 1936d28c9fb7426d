// varnpdf attach: files embedded into a document.
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "command.h"
#include "document.h"
#include "output.h"
#include "progress.h"
#include "state.h"

namespace {

constexpr const char* kFooter = R"(Examples:
  varnpdf attach invoice.pdf invoice.xml
  varnpdf attach report.pdf data.csv figures.zip -o report-with-data.pdf

Every attachment is appended to the document: its old bytes stay, and signatures in it stay valid. The kind of a file
is told from its extension; a file without a known one is refused. Without -o the document itself is changed. When an
attachment fails nothing is written.)";

struct Options {
    std::string file;
    std::vector<std::string> attachments;
    std::string out;
};

unsigned char* bytesOf(std::string& text) { return reinterpret_cast<unsigned char*>(text.data()); }

/// The library speaks of the attachment, or of the document.
bool blamesAttachment(int code) {
    return code == VARNPDF_ATTACHMENT_UNREADABLE || code == VARNPDF_ATTACHMENT_EMPTY ||
           code == VARNPDF_MIME_TYPE_UNKNOWN;
}

bool attachAll(const Options& options, std::string document) {
    cli::Progress progress("attaching", options.attachments.size());
    bool good = true;
    for (std::string attachment : options.attachments) {
        progress.next(attachment);
        const int code = CPdfAttach().AttachFileToPDF(bytesOf(document), bytesOf(attachment), 0);
        if (code == 0) continue;
        good = false;
        cli::complain(blamesAttachment(code) ? attachment : options.file, code);
        if (!blamesAttachment(code)) break;  // the next one would meet the same
    }
    return good;
}

void warnIfLocked(const Options& options) {
    CPdf pdf;
    if (pdf.Open(options.file.c_str(), "rb") == 0 && pdf.get_lockstate() > 0) {
        cli::complain(options.file,
                      "warning: a signature locks the document; validators will report the attachment as "
                      "a change that is not allowed");
    }
}

int run(const Options& options) {
    warnIfLocked(options);
    if (options.out.empty() && options.attachments.size() == 1) {
        return attachAll(options, options.file) ? cli::kAllGood : cli::kAllFailed;
    }
    std::optional<std::string> bytes = cli::readFile(options.file);
    if (!bytes) return cli::kAllFailed;
    cli::WorkFile work(options.out.empty() ? options.file : options.out, *bytes);
    bytes.reset();
    if (!work.isOpen() || !attachAll(options, work.path()) || !work.commit()) return cli::kAllFailed;
    return cli::kAllGood;
}

}  // namespace

cli::Command cli::addAttach(const Parser& program) {
    const auto options = std::make_shared<Options>();
    const Parser parser = program.command("attach", "Embeds files into a document");
    parser.option("FILE", options->file, "PDF file").required().shownAs(" ");
    parser.option("ATTACHMENT", options->attachments, "Files to embed").required().shownAs("...");
    parser.option("-o,--output", options->out, "File to write; without it FILE is changed").shownAs("OUT");
    parser.footer(kFooter);
    return {parser, [options] { return run(*options); }};
}
