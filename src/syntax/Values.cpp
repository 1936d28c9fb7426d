// Names, strings, numbers, references and arrays of PDF syntax.
#include "syntax/Values.h"

#include <charconv>

#include "support/Text.h"
#include "syntax/CharClass.h"
#include "syntax/Encoding.h"
#include "syntax/Lexer.h"

namespace varnpdf {
namespace {

constexpr std::size_t kNone = std::string_view::npos;
constexpr std::size_t kMostNumbers = 256;  // the widths of a simple font; no other array here has more
constexpr std::string_view kNameEnds("\0\t\n\f\r ()<>[]{}/%", 16);

// What a backslash in front of text[at] stands for; `at` moves behind it.
void takeEscape(std::string_view text, std::size_t& at, std::string& out) {
    constexpr std::string_view kLetters = "nrtbf";
    constexpr std::string_view kMeanings = "\n\r\t\b\f";
    const char c = text[at++];
    if (c >= '0' && c <= '7') {
        int value = c - '0';
        for (int i = 0; i < 2 && at < text.size() && text[at] >= '0' && text[at] <= '7'; ++i) {
            value = value * 8 + (text[at++] - '0');
        }
        out.push_back(static_cast<char>(value & 0xff));
    } else if (c == '\r') {
        if (at < text.size() && text[at] == '\n') ++at;
    } else if (const std::size_t letter = kLetters.find(c); letter != kNone) {
        out.push_back(kMeanings[letter]);
    } else if (c != '\n') {
        out.push_back(c);
    }
}

std::string literalBytes(std::string_view body) {
    std::string out;
    for (std::size_t at = 0; at < body.size();) {
        const char c = body[at++];
        if (c == '\\') {
            if (at < body.size()) takeEscape(body, at, out);
        } else if (c == '\r') {  // every line end inside a string reads as a line feed
            if (at < body.size() && body[at] == '\n') ++at;
            out.push_back('\n');
        } else {
            out.push_back(c);
        }
    }
    return out;
}

std::string hexBytes(std::string_view body) {
    std::string out;
    int high = -1;
    for (const char c : body) {
        const int digit = hexValue(c);
        if (digit < 0) continue;
        if (high >= 0) out.push_back(static_cast<char>(high << 4 | digit));
        high = high >= 0 ? -1 : digit;
    }
    if (high >= 0) out.push_back(static_cast<char>(high << 4));
    return out;
}

constexpr std::string_view kUtf16Mark = "\xFE\xFF";

std::string hexString(std::string_view bytes) {
    constexpr std::string_view kUpper = "0123456789ABCDEF";
    std::string out = "<";
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        append(out, kUpper[byte >> 4U], kUpper[byte & 0x0FU]);
    }
    return out + '>';
}

}  // namespace

std::string nameOf(std::string_view value) {
    std::string out;
    if (!value.starts_with('/')) return out;
    for (std::size_t at = 1; at < value.size() && kNameEnds.find(value[at]) == kNone; ++at) {
        const bool escaped =
            value[at] == '#' && at + 2 < value.size() && hexValue(value[at + 1]) >= 0 && hexValue(value[at + 2]) >= 0;
        out.push_back(escaped ? static_cast<char>(hexValue(value[at + 1]) * 16 + hexValue(value[at + 2])) : value[at]);
        if (escaped) at += 2;
    }
    return out;
}

std::optional<std::string> stringOf(std::string_view value) {
    const Token token = Lexer(value).next();
    const bool isString = token.kind == TokenKind::String || token.kind == TokenKind::HexString;
    if (!isString) return std::nullopt;
    const std::string_view body = token.text.substr(1, token.text.size() - 2);
    return token.kind == TokenKind::String ? literalBytes(body) : hexBytes(body);
}

std::optional<double> numberOf(std::string_view value) {
    if (value.starts_with('+')) value.remove_prefix(1);
    double number = 0;
    const auto [end, error] =
        std::from_chars(value.data(), value.data() + value.size(), number, std::chars_format::fixed);
    if (error != std::errc() || end == value.data()) return std::nullopt;
    // "inf" and "nan" are no numbers in PDF; what is beyond any page is of no use either.
    constexpr double kMost = 1e9;
    return number >= -kMost && number <= kMost ? std::optional(number) : std::nullopt;
}

std::vector<double> numbersOf(std::string_view array) {
    std::vector<double> out;
    Lexer lexer(array);
    if (lexer.next().kind != TokenKind::ArrayOpen) return out;
    while (const auto number = numberOf(lexer.next().text)) {
        if (out.size() == kMostNumbers) break;
        out.push_back(*number);
    }
    return out;
}

std::optional<int> referenceOf(std::string_view value) { return Lexer(value).nextReference(); }

std::optional<std::vector<std::string_view>> itemsOf(std::string_view value) {
    Lexer lexer(value);
    if (lexer.next().kind != TokenKind::ArrayOpen) return std::nullopt;
    std::vector<std::string_view> items;
    while (const auto item = lexer.nextValue()) items.push_back(*item);
    const bool closed = value.substr(0, lexer.at()).ends_with(']');
    return closed ? std::optional(std::move(items)) : std::nullopt;
}

std::string literalString(std::string_view bytes) {
    // Readers that seek the end of an object by its keyword must not find it in a string.
    constexpr std::string_view kEndObj = "endobj";
    std::string out = "(";
    for (std::size_t at = 0; at < bytes.size(); ++at) {
        const char c = bytes[at];
        if (c == '\r') {
            out += "\\r";
        } else if (c == 'e' && bytes.substr(at).starts_with(kEndObj)) {
            out += "\\145";
        } else {
            if (c == '(' || c == ')' || c == '\\') out.push_back('\\');
            out.push_back(c);
        }
    }
    out.push_back(')');
    return out;
}

std::string asciiString(std::string_view bytes) {
    constexpr std::string_view kKeywords[] = {"endobj", "stream", "xref", "trailer"};
    std::string out = "(";
    for (std::size_t at = 0; at < bytes.size(); ++at) {
        const auto c = static_cast<unsigned char>(bytes[at]);
        bool octal = c < 0x20 || c > 0x7E || c == '\\';
        for (const std::string_view keyword : kKeywords) octal = octal || bytes.substr(at).starts_with(keyword);
        if (c == '(' || c == ')') {
            append(out, '\\', static_cast<char>(c));
        } else if (octal) {
            // A doubled backslash in front of the closing parenthesis reads like an escaped one to simple scanners.
            append(out, '\\', static_cast<char>('0' + c / 64), static_cast<char>('0' + c / 8 % 8),
                   static_cast<char>('0' + c % 8));
        } else {
            out.push_back(static_cast<char>(c));
        }
    }
    return out + ")";
}

std::string textString(std::string_view utf8) {
    const auto characters = fromUtf8(utf8);
    return characters ? toTextString(*characters) : std::string(utf8);
}

std::string textStringObject(std::u32string_view characters) {
    const std::string bytes = toTextString(characters);
    return bytes.starts_with(kUtf16Mark) ? hexString(bytes) : asciiString(bytes);
}

}  // namespace varnpdf
