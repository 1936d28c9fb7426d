// varnpdf show: objects, trailers and the table of objects as they stand in the file.
#include <algorithm>
#include <charconv>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

#include "command.h"
#include "document.h"
#include "output.h"
#include "text.h"
#include "varnpdf/PdfText.h"

namespace {

constexpr const char* kFooter = R"(What may be:
  trailer    the trailer of every cross-reference section, the newest first (this is the default)
  xref       the table of objects: number, generation, place, state, type
  a number   the object with this number, byte by byte; one from an object stream gets a header

Examples:
  varnpdf show file.pdf
  varnpdf show file.pdf 12
  varnpdf show file.pdf xref | grep /Page)";

struct Options {
    std::string file;
    std::string what = "trailer";
};

/// Bytes as they stand; for a terminal without what would command it.
void putRaw(std::string_view bytes) {
    if (!cli::outputIsTerminal()) {
        cli::put(bytes);
        return;
    }
    for (std::size_t begin = 0; begin < bytes.size();) {
        const std::size_t end = std::min(bytes.find_first_of("\r\n", begin), bytes.size());
        cli::put(CPdfText::Printable(bytes.substr(begin, end - begin)));
        if (end < bytes.size()) cli::put("\n");
        begin = bytes.substr(end).starts_with("\r\n") ? end + 2 : end + 1;
    }
}

/// The dictionary of a section: behind the entries of a table, before the data of a stream.
std::string_view trailerDictionary(const CPdfTrailer& section) {
    std::string_view text = section.content();
    if (!section.GetIsCrossRefStream()) {
        const std::size_t keyword = text.find("trailer");
        return cli::trimmed(keyword == std::string_view::npos ? text : text.substr(keyword));
    }
    for (const std::string_view data : {"stream\r", "stream\n"}) text = text.substr(0, text.find(data));
    return cli::trimmed(text);
}

void showTrailers(const CPdf& pdf) {
    const int count = pdf.GetTrailerCount() + 1;
    for (int i = 0; i < count; ++i) {
        const CPdfTrailer* section = i == 0 ? pdf.GetLastTrailer() : pdf.GetTrailer(i - 1);
        if (section == nullptr) continue;
        cli::put("% section " + std::to_string(i + 1) + " of " + std::to_string(count) + ": " +
                 (section->GetIsCrossRefStream() ? "stream" : "table") + " at offset " +
                 std::to_string(section->GetXRef()) + '\n');
        putRaw(trailerDictionary(*section));
        cli::put("\n");
    }
}

void showTable(CPdf& pdf) {
    cli::put("  number   gen  place                 state    type\n");
    for (CPdfObj* const object : CPdfObjects::All(pdf)) {
        CPdfObj& obj = *object;
        const std::string place = obj.GetIsCompressed() ? "in stream " + std::to_string(obj.GetCompressStreamObjNr()) +
                                                              " at " + std::to_string(obj.GetPositioninStreamArray())
                                                        : std::to_string(obj.GetFromPos());
        const char* state = !obj.IsInUse() ? "free" : obj.GetContentLen() > 0 ? "in use" : "missing";
        std::string type;
        for (const char* part : {obj.get_dictionary_type(), obj.get_dictionary_subtype()}) {
            if (part != nullptr) type += (type.empty() ? "" : " ") + CPdfText::Printable(cli::trimmed(part));
        }
        char line[128];
        std::snprintf(line, sizeof line, "%8d %5d  %-20s  %-7s", obj.GetObjNum(), obj.GetGenNumber(), place.c_str(),
                      state);
        cli::put(line + (type.empty() ? "" : "  " + type) + '\n');
    }
}

int showObject(CPdf& pdf, const Options& options, int number) {
    const CPdfObj* obj = pdf.get_pdf_obj_from_map(number);
    if (obj == nullptr || obj->GetContentLen() < 1) {
        cli::complain(options.file, "there is no object " + options.what);
        return cli::kAllFailed;
    }
    putRaw(obj->content());
    cli::put("\n");
    return cli::kAllGood;
}

int run(const Options& options) {
    int number = -1;
    const char* end = options.what.data() + options.what.size();
    const bool isNumber = std::from_chars(options.what.data(), end, number).ptr == end && number >= 0;
    if (!isNumber && options.what != "trailer" && options.what != "xref") {
        cli::complain(options.what, "neither an object number nor \"trailer\" nor \"xref\"");
        return cli::kUsage;
    }
    CPdf pdf;
    if (cli::openDocument(pdf, options.file) != 0) return cli::kAllFailed;
    if (isNumber) return showObject(pdf, options, number);
    if (options.what == "xref") {
        showTable(pdf);
    } else {
        showTrailers(pdf);
    }
    return cli::kAllGood;
}

}  // namespace

cli::Command cli::addShow(const Parser& program) {
    const auto options = std::make_shared<Options>();
    const Parser parser = program.command("show", "Shows an object, the trailers or the table of objects");
    parser.option("FILE", options->file, "PDF file").required().shownAs(" ");
    parser.option("WHAT", options->what, "object number, trailer or xref").shownAs(" ");
    parser.footer(kFooter);
    return {parser, [options] { return run(*options); }};
}
