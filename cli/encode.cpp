// Encoding of texts.
#include "encode.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <map>
#include <vector>

#include "command.h"
#include "text.h"

namespace {

// WinAnsiEncoding where it departs from Latin-1; 0 stands for "undefined".
constexpr std::array<char32_t, 32> kWinAnsi80 = {
    0x20AC, 0,      0x201A, 0x192,  0x201E, 0x2026, 0x2020, 0x2021, 0x2C6,  0x2030, 0x160,
    0x2039, 0x152,  0,      0x17D,  0,      0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x2DC,  0x2122, 0x161,  0x203A, 0x153,  0,      0x17E,  0x178,
};

/// The characters of text that is known to be UTF-8.
std::vector<char32_t> characters(std::string_view utf8) {
    std::vector<char32_t> out;
    for (std::size_t at = 0; at < utf8.size();) {
        const auto first = static_cast<unsigned char>(utf8[at++]);
        const int more = first >= 0xF0 ? 3 : first >= 0xE0 ? 2 : first >= 0xC0 ? 1 : 0;
        char32_t c = more == 0 ? first : first & (0x3FU >> more);
        for (int i = 0; i < more; ++i) c = (c << 6U) | (static_cast<unsigned char>(utf8[at++]) & 0x3FU);
        out.push_back(c);
    }
    return out;
}

std::optional<std::vector<char32_t>> decoded(const std::string& what, std::string_view utf8) {
    if (cli::validUtf8(utf8) == utf8) return characters(utf8);
    cli::complain(what, "this text is not UTF-8");
    return std::nullopt;
}

void refuse(const std::string& what, std::string_view utf8, char32_t c, const char* where) {
    char number[16];
    std::snprintf(number, sizeof number, "U+%04X", static_cast<unsigned>(c));
    // The text begins at a character boundary only when it is taken whole; so is the character.
    std::string shown;
    for (std::size_t at = 0; at < utf8.size() && shown.empty(); ++at) {
        for (std::size_t size = 1; size <= 4 && at + size <= utf8.size(); ++size) {
            const std::string_view part = utf8.substr(at, size);
            if (cli::validUtf8(part) == part && characters(part) == std::vector<char32_t>{c}) shown = part;
        }
    }
    cli::complain(
        what, "the character \"" + shown + "\" (" + number + ") cannot be written " + where + ": " + std::string(utf8));
}

std::optional<char> winAnsi(char32_t c) {
    if ((c >= 0x20 && c < 0x7F) || (c >= 0xA0 && c <= 0xFF)) return static_cast<char>(c);
    for (std::size_t i = 0; c != 0 && i < kWinAnsi80.size(); ++i) {
        if (kWinAnsi80[i] == c) return static_cast<char>(0x80 + i);
    }
    return std::nullopt;
}

/// PDFDocEncoding the other way round, made from the table that reads it.
const std::map<char32_t, char>& pdfDoc() {
    static const std::map<char32_t, char> table = [] {
        std::map<char32_t, char> out;
        for (const char plain : {'\t', '\n', '\r'}) out.emplace(static_cast<char32_t>(plain), plain);
        for (unsigned byte = 0x18; byte <= 0xFF; ++byte) {
            const char encoded = static_cast<char>(byte);
            const char32_t c = characters(cli::decodeTextString({&encoded, 1})).front();
            if (c != 0xFFFD) out.emplace(c, encoded);
        }
        return out;
    }();
    return table;
}

std::string inPdfDoc(const std::vector<char32_t>& text) {
    std::string out;
    for (const char32_t c : text) {
        const auto found = pdfDoc().find(c);
        if (found == pdfDoc().end()) return {};
        out += found->second;
    }
    return out;
}

std::string inUtf16(const std::vector<char32_t>& text) {
    std::string out = "\xFE\xFF";
    const auto unit = [&](char32_t u) {
        out += static_cast<char>(u >> 8U);
        out += static_cast<char>(u & 0xFFU);
    };
    for (const char32_t c : text) {
        if (c >= 0x10000) unit(0xD800 + ((c - 0x10000) >> 10U));
        unit(c >= 0x10000 ? 0xDC00 + ((c - 0x10000) & 0x3FFU) : c);
    }
    return out;
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

bool startsLikeMark(const std::string& bytes) {
    return bytes.starts_with("\xFE\xFF") || bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xEF\xBB\xBF");
}

}  // namespace

std::optional<std::string> cli::toWinAnsi(const std::string& what, std::string_view utf8) {
    const std::optional<std::vector<char32_t>> text = decoded(what, utf8);
    if (!text) return std::nullopt;
    std::string out;
    for (const char32_t c : *text) {
        const std::optional<char> encoded = winAnsi(c);
        if (!encoded) {
            refuse(what, utf8, c, "with the fonts of an appearance (WinAnsiEncoding)");
            return std::nullopt;
        }
        out += *encoded;
    }
    return out;
}

std::optional<std::string> cli::toTextString(const std::string& what, std::string_view utf8) {
    const std::optional<std::vector<char32_t>> text = decoded(what, utf8);
    if (!text) return std::nullopt;
    std::string bytes = inPdfDoc(*text);
    if ((bytes.empty() && !text->empty()) || startsLikeMark(bytes)) bytes = inUtf16(*text);
    return escaped(bytes);
}

std::optional<std::string> cli::toName(const std::string& what, std::string_view utf8) {
    const std::optional<std::vector<char32_t>> text = decoded(what, utf8);
    if (!text) return std::nullopt;
    if (const auto odd = std::find_if_not(text->begin(), text->end(), inName); odd != text->end()) {
        refuse(what, utf8, *odd, "in a name (Latin-1)");
        return std::nullopt;
    }
    if (startsLikeMark(inPdfDoc(*text))) {
        complain(what, "a name must not start with the characters that mark an encoding: " + std::string(utf8));
        return std::nullopt;
    }
    // The library escapes parentheses and backslashes, but not the first byte and not behind a backslash.
    std::string out;
    char before = '\\';
    for (const char c : utf8) {
        if (before == '\\' && std::string_view("()\\").find(c) != std::string_view::npos) out += '\\';
        out += c;
        before = c;
    }
    return out;
}

bool cli::isName(std::string_view utf8) {
    if (validUtf8(utf8) != utf8) return false;
    const std::vector<char32_t> text = characters(utf8);
    return std::all_of(text.begin(), text.end(), inName) && !startsLikeMark(inPdfDoc(text));
}
