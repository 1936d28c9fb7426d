// Replacing the text in the content of an appearance stream.
#include "forms/AppearanceContent.h"

#include <algorithm>

#include "support/Inflate.h"
#include "support/Limits.h"
#include "support/Text.h"
#include "syntax/Dictionary.h"
#include "syntax/Lexer.h"
#include "syntax/Text.h"
#include "syntax/Values.h"
#include "writer/SectionTexts.h"

namespace varnpdf {
namespace {

constexpr std::size_t kNone = std::string_view::npos;

bool showsText(std::string_view token) { return token == "Tj" || token == "TJ" || token == "'" || token == "\""; }

std::string_view streamBytes(std::string_view object, std::size_t begin, std::string_view length) {
    const std::string_view rest = object.substr(begin);
    const auto declared = numberOf(length);
    if (declared && *declared >= 0 && *declared <= static_cast<double>(rest.size())) {
        const auto size = static_cast<std::size_t>(*declared);
        Lexer behind(rest, size);
        if (behind.next().text == "endstream") return rest.substr(0, size);
    }
    std::size_t end = std::min(rest.rfind("endstream"), rest.size());
    if (end > 0 && rest[end - 1] == '\n') --end;
    if (end > 0 && rest[end - 1] == '\r') --end;
    return rest.substr(0, end);
}

// The next operand or operator. A closing bracket without an opening one ends nothing here.
std::optional<std::string_view> nextPart(Lexer& content) {
    auto part = content.nextValue();
    while (!part && !content.atEnd()) part = content.nextValue();
    return part;
}

}  // namespace

std::optional<TextSpan> markedText(std::string_view content) {
    Lexer tokens(content);
    std::string_view before;
    int depth = 0;
    std::size_t begin = 0;
    while (const Token token = tokens.next()) {
        if (depth > 0 && (token.text == "BMC" || token.text == "BDC")) {
            ++depth;
        } else if (token.text == "BMC" && before == "/Tx") {
            depth = 1;
            begin = tokens.at();
        } else if (depth > 0 && token.text == "EMC" && --depth == 0) {
            return TextSpan{begin, token.begin};
        }
        before = token.text;
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
    Lexer tokens(content.substr(0, part.end), part.begin);
    std::string out;
    std::size_t copied = 0;
    std::size_t operand = kNone;  // where the operands of the next operator begin
    bool shown = false;
    while (const auto token = nextPart(tokens)) {
        const std::size_t at = offsetIn(content, *token);
        if (operand == kNone) operand = at;
        const bool isOperand = isClass(token->front(), kIsNumberByte | kIsDelimiter) && !showsText(*token);
        if (isOperand) continue;
        if (showsText(*token)) {
            append(out, content.substr(copied, operand - copied));
            if (!shown) append(out, asciiString(codes), " Tj");
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
    Lexer behind(object, end);
    const Token keyword = behind.next();
    if (keyword.text != "stream") return std::nullopt;
    const Dictionary dictionary(value);
    const std::size_t begin = streamDataBegin(object, keyword.begin);
    const std::string_view bytes = streamBytes(object, begin, references.follow(dictionary.find("/Length")));
    std::string_view filter = references.follow(dictionary.find("/Filter"));
    if (filter.starts_with('[')) {
        Lexer names(filter);
        names.next();
        filter = names.next().text;
        if (filter != "]" && names.next().text != "]") return std::nullopt;
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
    if (!references.follow(dictionary.find("/DecodeParms")).empty()) return std::nullopt;
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
    std::string out(head);
    setEntry(out, "/Filter", deflatedData ? "/FlateDecode" : "");
    setEntry(out, "/DecodeParms", "");
    setEntry(out, "/Length", text(written.size()));
    append(out, "\r\nstream\r\n", written, "\r\nendstream\r\nendobj\r\n");
    return out;
}

}  // namespace varnpdf
