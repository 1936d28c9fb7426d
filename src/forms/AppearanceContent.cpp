// Replacing the text in the content of an appearance stream.
#include "forms/AppearanceContent.h"

#include <algorithm>

#include "forms/Dictionary.h"
#include "forms/TextString.h"
#include "support/Inflate.h"
#include "support/Limits.h"
#include "support/Text.h"
#include "writer/Update.h"

namespace varnpdf {
namespace {

constexpr std::size_t kNone = std::string_view::npos;

bool showsText(std::string_view token) { return token == "Tj" || token == "TJ" || token == "'" || token == "\""; }

std::size_t offsetIn(std::string_view text, std::string_view part) {
    return static_cast<std::size_t>(part.data() - text.data());
}

// Where the data begins: behind "stream" and LF or CR LF; a lone CR is no line end here, but some write it.
std::size_t dataBegin(std::string_view object, std::size_t keyword) {
    std::size_t at = keyword + 6;
    if (at < object.size() && object[at] == '\r') ++at;
    if (at < object.size() && object[at] == '\n') ++at;
    return at;
}

std::string_view streamBytes(std::string_view object, std::size_t begin, std::string_view length) {
    const std::string_view rest = object.substr(begin);
    const auto declared = numberOf(length);
    if (declared && *declared >= 0 && *declared <= static_cast<double>(rest.size())) {
        const auto size = static_cast<std::size_t>(*declared);
        Tokens behind(rest, size);
        if (behind.next() == "endstream") return rest.substr(0, size);
    }
    std::size_t end = std::min(rest.rfind("endstream"), rest.size());
    if (end > 0 && rest[end - 1] == '\n') --end;
    if (end > 0 && rest[end - 1] == '\r') --end;
    return rest.substr(0, end);
}

}  // namespace

std::optional<TextSpan> markedText(std::string_view content) {
    Tokens tokens(content);
    std::string_view before;
    int depth = 0;
    std::size_t begin = 0;
    while (const auto token = tokens.next()) {
        if (depth > 0 && (*token == "BMC" || *token == "BDC")) {
            ++depth;
        } else if (*token == "BMC" && before == "/Tx") {
            depth = 1;
            begin = tokens.at();
        } else if (depth > 0 && *token == "EMC" && --depth == 0) {
            return TextSpan{begin, offsetIn(content, *token)};
        }
        before = *token;
    }
    return std::nullopt;
}

std::string withMarkedText(std::string_view content, std::string_view text) {
    const auto marked = markedText(content);
    const std::string_view before = marked ? content.substr(0, marked->begin) : "/Tx BMC";
    const std::string_view after = marked ? content.substr(marked->end) : "EMC\n";
    return varnpdf::text(before, '\n', text, after);
}

std::optional<std::string> withShownCodes(std::string_view content, std::string_view codes) {
    const TextSpan part = markedText(content).value_or(TextSpan{0, content.size()});
    Tokens tokens(content.substr(0, part.end), part.begin);
    std::string out;
    std::size_t copied = 0;
    std::size_t operand = kNone;  // where the operands of the next operator begin
    bool shown = false;
    while (const auto token = tokens.nextValue()) {
        const std::size_t at = offsetIn(content, *token);
        if (operand == kNone) operand = at;
        const bool isOperand = isClass(token->front(), kIsNumberByte | kIsDelimiter) && !showsText(*token);
        if (isOperand) continue;
        if (showsText(*token)) {
            append(out, content.substr(copied, operand - copied));
            if (!shown) append(out, literalObject(codes), " Tj");
            shown = true;
            copied = tokens.at();
        }
        operand = kNone;
    }
    if (!shown) return std::nullopt;
    append(out, content.substr(copied));
    return out;
}

std::optional<StreamParts> streamParts(std::string_view object, const References& references, std::size_t& budget) {
    const std::string_view value = objectValue(object);
    if (!value.starts_with("<<")) return std::nullopt;
    const std::size_t end = offsetIn(object, value) + value.size();
    Tokens behind(object, end);
    const auto keyword = behind.next();
    if (keyword != "stream") return std::nullopt;
    const Dictionary dictionary(value);
    const std::size_t begin = dataBegin(object, offsetIn(object, *keyword));
    const std::string_view bytes = streamBytes(object, begin, references.follow(dictionary.find("Length")));
    std::string_view filter = references.follow(dictionary.find("Filter"));
    if (filter.starts_with('[')) {
        Tokens names(filter);
        names.next();
        filter = names.next().value_or(std::string_view{});
        if (filter != "]" && names.next() != "]") return std::nullopt;
    }
    if (end > budget) return std::nullopt;
    budget -= end;
    StreamParts parts{object.substr(0, end), {}, filter == "/FlateDecode" || filter == "/Fl"};
    if (!parts.packed) {
        if (!filter.empty() && filter != "]") return std::nullopt;
        if (bytes.size() > std::min(limits::kAppearanceBytes, budget)) return std::nullopt;
        budget -= bytes.size();
        parts.data = bytes;
        return parts;
    }
    if (!references.follow(dictionary.find("DecodeParms")).empty()) return std::nullopt;
    std::size_t produced = 0;
    const auto inflated = inflateAll(bytes, std::min(limits::kAppearanceBytes, budget), &produced);
    budget -= std::min(budget, produced);
    if (!inflated) return std::nullopt;
    parts.data = inflated->view();
    return parts;
}

std::string streamObject(std::string_view head, std::string_view data, bool packed) {
    const auto deflatedData = packed ? deflated(data) : std::nullopt;
    const std::string_view written = deflatedData ? std::string_view(*deflatedData) : data;
    std::string out = withEntry(head, "Filter", deflatedData ? "/FlateDecode" : "");
    out = withEntry(out, "DecodeParms", "");
    out = withEntry(out, "Length", text(written.size()));
    append(out, "\r\nstream\r\n", written, "\r\nendstream\r\nendobj\r\n");
    return out;
}

}  // namespace varnpdf
