// Reads signature fields and signature dictionaries for display.
//
// The values are decoded here from the dictionary's own text: GetSignatureField narrows UTF-16 to bytes and ends
// literal strings at the first parenthesis, which is no way to show a name.
#include "signatures.h"

#include <array>
#include <charconv>
#include <optional>
#include <string>
#include <string_view>

#include "document.h"
#include "text.h"
#include "varnpdf/PdfText.h"

namespace {

using Json = nlohmann::ordered_json;

struct ShownKey {
    const char* name;
    const char* key;
};

constexpr ShownKey kTextKeys[] = {
    {"reason", "/Reason"}, {"location", "/Location"},        {"date", "/M"},        {"name", "/Name"},
    {"filter", "/Filter"}, {"subfilter", "/SubFilter"},      {"field_type", "/FT"}, {"type", "/Type"},
    {"r", "/R"},           {"contact_info", "/ContactInfo"},
};

constexpr std::string_view kHexDigits = "0123456789ABCDEFabcdef";

/// Order of the keys of one signature; everything null.
Json blankSignature(int index) {
    Json out = {{"index", index}};
    for (const char* key :
         {"field", "reason", "location", "date", "name", "filter", "subfilter", "byte_range", "contents_bytes",
          "field_type", "type", "r", "contact_info", "cert", "covers_whole_file", "pkcs7_code", "pkcs7_bytes"}) {
        out[key] = nullptr;
    }
    return out;
}

template <typename T>
Json orNull(const std::optional<T>& found) {
    return found ? Json(*found) : Json(nullptr);
}

using Range = std::array<long long, 4>;

std::optional<Range> byteRange(std::optional<std::string_view> text) {
    if (!text || !text->starts_with('[')) return std::nullopt;
    std::string_view rest = text->substr(1);
    Range range{};
    for (long long& number : range) {
        rest = cli::trimmed(rest);
        const auto [end, error] = std::from_chars(rest.data(), rest.data() + rest.size(), number);
        if (error != std::errc()) return std::nullopt;
        rest.remove_prefix(static_cast<std::size_t>(end - rest.data()));
    }
    if (cli::trimmed(rest) != "]") return std::nullopt;
    return range;
}

/// Everything from the first byte to the last is signed except one hexadecimal string, the value itself: an unsigned
/// gap that holds more than that could hide content.
bool coversWholeFile(CPdf& pdf, const Range& range) {
    const long long length = pdf.GetContentLen();
    const auto [offset0, length0, offset1, length1] = range;
    if (offset0 != 0 || length0 < 0 || length0 > offset1 || offset1 > length || length1 != length - offset1) {
        return false;
    }
    const std::string_view all(reinterpret_cast<const char*>(pdf.GetContent()), pdf.GetContentLen());
    const std::string_view gap =
        all.substr(static_cast<std::size_t>(length0), static_cast<std::size_t>(offset1 - length0));
    if (!gap.starts_with('<') || !gap.ends_with('>') || gap.size() < 2) return false;
    return gap.substr(1, gap.size() - 2).find_first_not_of("0123456789ABCDEFabcdef \t\r\n\f") == std::string_view::npos;
}

/// Bytes of room in /Contents.
std::optional<std::size_t> roomOf(std::optional<std::string_view> text) {
    if (!text) return std::nullopt;
    if (text->starts_with('(')) {
        const std::optional<std::string> bytes = CPdfText::StringBytes(*text);
        return bytes ? std::optional(bytes->size()) : std::nullopt;
    }
    std::size_t digits = 0;
    for (const char c : *text) digits += kHexDigits.find(c) != std::string_view::npos ? 1 : 0;
    return digits / 2;
}

/// Number of strings in /Cert: one, or an array of them.
std::optional<int> certificates(std::optional<std::string_view> text) {
    if (!text) return std::nullopt;
    int count = 0;
    for (const char c : *text) count += c == '<' ? 1 : 0;
    return count > 0 || text->starts_with('[') ? count : 1;
}

/// The field's own name, or that of the nearest field above it (ISO 32000-2 12.7.4.2).
std::optional<std::string> fieldName(CPdf& pdf, CPdfObj& field) {
    constexpr int kDeepest = 32;
    CPdfObj* level = &field;
    for (int i = 0; i < kDeepest && level != nullptr; ++i) {
        if (std::optional<std::string> name = cli::displayed(cli::value(pdf, *level, "/T"))) return name;
        level = cli::referenced(pdf, *level, "/Parent");
    }
    return std::nullopt;
}

void addDictionary(CPdf& pdf, CPdfObj& dictionary, Json& out) {
    for (const ShownKey& shown : kTextKeys) {
        out[shown.name] = orNull(cli::displayed(cli::value(pdf, dictionary, shown.key)));
    }
    out["cert"] = orNull(certificates(cli::value(pdf, dictionary, "/Cert")));
    out["contents_bytes"] = orNull(roomOf(cli::value(pdf, dictionary, "/Contents")));
    const std::optional<Range> range = byteRange(cli::value(pdf, dictionary, "/ByteRange"));
    out["byte_range"] = orNull(range);
    if (range) out["covers_whole_file"] = coversWholeFile(pdf, *range);
}

Json signature(CPdf& pdf, int index) {
    Json out = blankSignature(index);
    CPdfObj* field = pdf.GetSigInfo()->GetSignRef(index);
    if (field == nullptr) return out;  // counted, but beyond the register
    out["field"] = orNull(fieldName(pdf, *field));
    if (CPdfObj* dictionary = cli::referenced(pdf, *field, "/V")) addDictionary(pdf, *dictionary, out);
    unsigned long length = 0;
    const int code = pdf.GetSignaturePKCS7(index, nullptr, &length);
    out["pkcs7_code"] = code;
    if (code == 0) out["pkcs7_bytes"] = length;
    return out;
}

}  // namespace

nlohmann::ordered_json cli::signatureFields(CPdf& pdf) {
    Json out = Json::array();
    forEachObject(pdf, [&](CPdfObj& obj) {
        // Looking for the words first spares the dictionary scan of nearly every object.
        const std::string_view text = obj.content();
        if (text.find("/FT") == std::string_view::npos || text.find("/Sig") == std::string_view::npos) return;
        const std::optional<std::string_view> type = value(pdf, obj, "/FT");
        if (!type || type->find("/Sig") == std::string_view::npos) return;
        const std::optional<std::string_view> v = entry(obj, "/V");
        out.push_back({{"name", orNull(fieldName(pdf, obj))}, {"signed", v.has_value() && *v != "null"}});
    });
    return out;
}

nlohmann::ordered_json cli::signatures(CPdf& pdf) {
    Json out = Json::array();
    const int count = pdf.PdfGetNumSignatures();
    for (int i = 0; i < count; ++i) out.push_back(signature(pdf, i));
    return out;
}
