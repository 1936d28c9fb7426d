// varnpdf fields: the fields of a form.
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "command.h"
#include "document.h"
#include "output.h"
#include "varnpdf/PdfText.h"

namespace {

using Json = nlohmann::ordered_json;

constexpr const char* kFooter =
    R"(One line for a field: its full name, its kind, the page that shows it, its flags, its value.
Names and values are decoded; "varnpdf fill" takes the names as they stand here.

Examples:
  varnpdf fields form.pdf
  varnpdf fields form.pdf --json | jq -r '.fields[] | select(.type == "text") | .name')";

struct Options {
    std::string file;
    bool json = false;
};

constexpr unsigned bit(int position) { return 1U << static_cast<unsigned>(position - 1); }

struct Flag {
    const char* type;  // "" for all
    int position;      // ISO 32000-2 tables 227, 228, 230, 231
    const char* name;
};

constexpr Flag kFlags[] = {
    {"", 1, "read-only"},         {"", 2, "required"},       {"", 3, "no-export"},         {"Tx", 13, "multiline"},
    {"Tx", 14, "password"},       {"Tx", 21, "file-select"}, {"Tx", 23, "no-spell-check"}, {"Tx", 24, "no-scroll"},
    {"Tx", 25, "comb"},           {"Tx", 26, "rich-text"},   {"Btn", 15, "always-one-on"}, {"Btn", 26, "in-unison"},
    {"Ch", 19, "editable"},       {"Ch", 20, "sorted"},      {"Ch", 22, "multiple"},       {"Ch", 23, "no-spell-check"},
    {"Ch", 27, "commit-at-once"},
};

Json flagNames(const std::string& type, unsigned flags) {
    Json out = Json::array();
    for (const Flag& flag : kFlags) {
        if ((*flag.type == '\0' || type == flag.type) && (flags & bit(flag.position)) != 0) out.push_back(flag.name);
    }
    return out;
}

std::string kindOf(const std::string& type, unsigned flags) {
    constexpr int kRadio = 16;
    constexpr int kPush = 17;
    constexpr int kCombo = 18;
    if (type == "Tx") return "text";
    if (type == "Sig") return "signature";
    if (type == "Ch") return (flags & bit(kCombo)) != 0 ? "combo box" : "list box";
    if (type != "Btn") return "unknown";
    if ((flags & bit(kPush)) != 0) return "push button";
    return (flags & bit(kRadio)) != 0 ? "radio buttons" : "check box";
}

Json describe(CPdfForm& form, int index) {
    const std::string type = form.GetType(index);
    const auto flags = static_cast<unsigned>(form.GetFlags(index));
    const int page = form.GetPage(index);
    Json out = {{"name", CPdfText::ValidUtf8(form.GetName(index))}, {"type", kindOf(type, flags)}};
    const char* value = form.GetValue(index);
    out["value"] = value == nullptr || type == "Sig" ? Json(nullptr) : Json(CPdfText::ValidUtf8(value));
    if (type == "Sig") out["signed"] = value != nullptr;
    out["page"] = page < 0 ? Json(nullptr) : Json(page + 1);
    out["object"] = form.GetObjNum(index);
    out["widgets"] = form.GetWidgetNum(index);
    out["flags"] = flagNames(type, flags);
    out["flag_bits"] = flags;
    out["max_length"] = form.GetMaxLen(index) > 0 ? Json(form.GetMaxLen(index)) : Json(nullptr);
    out["locked"] = form.GetLocked(index) == 1;
    return out;
}

void printForPeople(const Json& fields) {
    for (const Json& field : fields) {
        std::string line =
            CPdfText::Printable(field["name"].get<std::string>()) + "  " + field["type"].get<std::string>();
        line += field["page"].is_null() ? "  no page" : "  page " + field["page"].dump();
        for (const Json& flag : field["flags"]) line += " " + flag.get<std::string>();
        if (field["locked"].get<bool>()) line += " locked";
        if (!field["max_length"].is_null()) line += " max " + field["max_length"].dump();
        if (field.contains("signed")) line += field["signed"].get<bool>() ? "  signed" : "  not signed";
        if (!field["value"].is_null()) line += "  = " + CPdfText::Printable(field["value"].get<std::string>());
        cli::put(line + '\n');
    }
}

int run(const Options& options) {
    CPdf pdf;
    if (cli::openDocument(pdf, options.file) != 0) return cli::kAllFailed;
    CPdfForm form(&pdf);
    Json fields = Json::array();
    // Many fields may refer to one long value.
    constexpr std::size_t kBytes = std::size_t{64} << 20U;
    constexpr std::size_t kBytesPerByte = 8;
    std::size_t left = kBytes + kBytesPerByte * pdf.GetContentLen();
    for (int i = 0; i < form.GetFieldNum(); ++i) {
        fields.push_back(describe(form, i));
        const auto* const value = fields.back()["value"].get_ptr<const Json::string_t*>();
        if (value == nullptr) continue;
        if (value->size() > left) {
            cli::complain(options.file, "the values of its fields are longer than the file allows for");
            return cli::kAllFailed;
        }
        left -= value->size();
    }
    if (options.json) {
        cli::put(Json{{"file", CPdfText::ValidUtf8(options.file)}, {"fields", std::move(fields)}}.dump() + '\n');
    } else {
        printForPeople(fields);
    }
    return cli::kAllGood;
}

}  // namespace

cli::Command cli::addFields(const Parser& program) {
    const auto options = std::make_shared<Options>();
    const Parser parser = program.command("fields", "Lists the fields of a form");
    parser.option("FILE", options->file, "PDF file").required().shownAs(" ");
    parser.flag("--json", options->json, "Writes one JSON object");
    parser.footer(kFooter);
    return {parser, [options] { return run(*options); }};
}
