// Encoding of texts.
#include "encode.h"

#include <algorithm>
#include <cstdio>

#include "command.h"
#include "varnpdf/PdfText.h"

namespace {

std::optional<std::u32string> characters(const std::string& what, std::string_view utf8) {
    auto text = CPdfText::Characters(utf8);
    if (!text) cli::complain(what, "this text is not UTF-8");
    return text;
}

void refuse(const std::string& what, std::string_view utf8, char32_t c, const char* where) {
    char number[16];
    std::snprintf(number, sizeof number, "U+%04X", static_cast<unsigned>(c));
    cli::complain(what, "the character \"" + CPdfText::Utf8({&c, 1}) + "\" (" + number + ") cannot be written " +
                            where + ": " + std::string(utf8));
}

/// Bytes as they may stand between parentheses (ISO 32000-2 7.3.4.2), without NULs and line ends.
std::string escaped(const std::string& bytes) {
    std::string out;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const char c = bytes[i];
        if (c == '(' || c == ')') {
            out += {'\\', c};
        } else if (c == '\\') {
            // Two backslashes in front of the closing parenthesis are misread by simple scanners, this library's too.
            out += "\\134";
        } else if (c == '\0' || c == '\n' || c == '\r') {
            // The shortest octal form that the next byte does not lengthen: the room is small.
            const bool digitFollows = i + 1 < bytes.size() && bytes[i + 1] >= '0' && bytes[i + 1] <= '7';
            char octal[8];
            std::snprintf(octal, sizeof octal, digitFollows ? "\\%03o" : "\\%o", static_cast<unsigned>(c));
            out += octal;
        } else {
            out += c;
        }
    }
    return out;
}

bool inName(char32_t c) { return (c >= 0x20 && c < 0x7F) || (c > 0xA0 && c <= 0xFF && c != 0xAD); }

/// PDFDocEncoding has all characters of a name. It is not used for what would look like another encoding.
bool startsLikeMark(std::u32string_view name) { return CPdfText::EncodeTextString(name).starts_with("\xFE\xFF"); }

}  // namespace

std::optional<std::string> cli::toWinAnsi(const std::string& what, std::string_view utf8) {
    const auto text = characters(what, utf8);
    if (!text) return std::nullopt;
    std::size_t refused = 0;
    auto out = CPdfText::EncodeWinAnsi(*text, &refused);
    if (!out) refuse(what, utf8, (*text)[refused], "with the fonts of an appearance (WinAnsiEncoding)");
    return out;
}

std::optional<std::string> cli::toTextString(const std::string& what, std::string_view utf8) {
    const auto text = characters(what, utf8);
    return text ? std::optional(escaped(CPdfText::EncodeTextString(*text))) : std::nullopt;
}

std::optional<std::string> cli::toName(const std::string& what, std::string_view utf8) {
    const auto text = characters(what, utf8);
    if (!text) return std::nullopt;
    if (const auto odd = std::find_if_not(text->begin(), text->end(), inName); odd != text->end()) {
        refuse(what, utf8, *odd, "in a name (Latin-1)");
        return std::nullopt;
    }
    if (startsLikeMark(*text)) {
        complain(what, "a name must not start with the characters that mark an encoding: " + std::string(utf8));
        return std::nullopt;
    }
    return std::string(utf8);
}

bool cli::isName(std::string_view utf8) {
    const auto text = CPdfText::Characters(utf8);
    return text && std::all_of(text->begin(), text->end(), inName) && !startsLikeMark(*text);
}
