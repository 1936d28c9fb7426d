// varnpdf fill: new values for the text fields of a form.
#include <array>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "command.h"
#include "document.h"
#include "output.h"

namespace {

constexpr const char* kFooter =
    R"(Names are the full names that "varnpdf fields" lists; a name ends at the first "=". Values are UTF-8. A file has one
NAME=VALUE on each line; empty lines are passed over. Of two values for a name the later counts.

The values are added as an update: the bytes of IN stay as they are, and signatures made before stay intact. Read-only
fields, fields that a signature locks and values longer than the field takes are refused, and then nothing is written.
Calculations and formats that the form does in JavaScript are not run.

Examples:
  varnpdf fill form.pdf -o filled.pdf --set person.name="Jane Doe" --set person.city=Köln
  varnpdf fill form.pdf -o form.pdf --from values.txt)";

struct Options {
    std::string in;
    std::string out;
    std::vector<std::string> values;
    std::string from;
};

using Values = std::vector<std::pair<std::string, std::string>>;

bool addValue(const std::string& what, const std::string& text, Values& values) {
    const std::size_t sign = text.find('=');
    if (sign == std::string::npos) {
        cli::complain(what, "there is no \"=\" between name and value: " + text);
        return false;
    }
    if (text.find('\0') != std::string::npos) {
        cli::complain(what, "there is a NUL in the line of " + text.substr(0, sign));
        return false;
    }
    values.emplace_back(text.substr(0, sign), text.substr(sign + 1));
    return true;
}

bool readValues(const std::string& path, Values& values) {
    std::ifstream file(path, std::ios::binary);
    std::string line;
    bool first = true;
    while (file && std::getline(file, line)) {
        if (std::exchange(first, false) && line.starts_with("\xEF\xBB\xBF")) line.erase(0, 3);
        if (line.ends_with('\r')) line.pop_back();
        if (!line.empty() && !addValue(path, line, values)) return false;
    }
    if (file.eof()) return true;
    cli::complain(path, std::strerror(errno));
    return false;
}

int run(const Options& options) {
    Values values;
    for (const std::string& value : options.values) {
        if (!addValue("--set", value, values)) return cli::kUsage;
    }
    if (!options.from.empty() && !readValues(options.from, values)) return cli::kAllFailed;
    CPdf pdf;
    if (cli::openDocument(pdf, options.in) != 0) return cli::kAllFailed;
    CPdfForm form(&pdf);
    bool good = true;
    for (const auto& [name, value] : values) {
        const int code = form.SetValue(name.c_str(), value.c_str());
        if (code != 0) cli::complain(options.in + ": " + name, code);
        good = good && code == 0;
    }
    if (!good) return cli::kAllFailed;
    cli::warnIfSigned(form, options.in);
    if (const int code = form.WriteUpdate(); code != 0) {
        cli::complain(options.in, code);
        return cli::kAllFailed;
    }
    const std::string_view bytes(pdf.GetByteStream(), static_cast<std::size_t>(pdf.GetByteStreamLen()));
    return cli::writeFile(options.out, bytes) ? cli::kAllGood : cli::kAllFailed;
}

}  // namespace

cli::Command cli::addFill(const Parser& program) {
    const auto options = std::make_shared<Options>();
    const Parser parser = program.command("fill", "Fills text fields of a form");
    parser.option("IN", options->in, "PDF file").required().shownAs(" ");
    parser.option("-o,--output", options->out, "File to write; may be IN").required().shownAs("OUT");
    const Parser what = parser.group("values", "at least one of them", 1, 0);
    what.option("--set", options->values, "A value, may be repeated").single().shownAs("NAME=VALUE");
    what.option("--from", options->from, "Reads values from a file").shownAs("FILE");
    parser.footer(kFooter);
    return {parser, [options] { return run(*options); }};
}
