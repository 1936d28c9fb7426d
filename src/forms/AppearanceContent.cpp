// Replacing the text in the content of an appearance stream.
#include "forms/AppearanceContent.h"

#include "model/Stream.h"
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

std::optional<StreamParts> streamParts(const Document& document, const CPdfObj& object, std::size_t& budget) {
    const auto stream = streamOf(document, object);
    if (!stream) return std::nullopt;
    const Packing packing = packingOf(document, stream->dictionary);
    const std::string_view text = object.content();
    const std::string_view head = text.substr(0, offsetIn(text, stream->dictionary) + stream->dictionary.size());
    if (packing == Packing::Other || head.size() > budget) return std::nullopt;
    budget -= head.size();
    const auto data = decodedWithin(document, *stream, limits::kAppearanceBytes, budget);
    if (!data) return std::nullopt;
    return StreamParts{head, std::string(data->view()), packing == Packing::Flate};
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
