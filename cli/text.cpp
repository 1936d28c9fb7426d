// Decoding of strings, names and text encodings (ISO 32000-2 7.3.4, 7.3.5, 7.9.2.2, annex D).
#include "text.h"

#include <cstdint>

namespace {

constexpr char32_t kReplacement = 0xFFFD;
constexpr std::string_view kWhite("\0\t\n\f\r ", 6);
constexpr std::string_view kDelimiters = "()<>[]{}/%";

// PDFDocEncoding where it departs from Latin-1; 0 stands for "undefined".
constexpr char32_t kFrom18[] = {0x2D8, 0x2C7, 0x2C6, 0x2D9, 0x2DD, 0x2DB, 0x2DA, 0x2DC};
constexpr char32_t kFrom80[] = {
    0x2022, 0x2020, 0x2021, 0x2026, 0x2014, 0x2013, 0x192,  0x2044, 0x2039, 0x203A, 0x2212,
    0x2030, 0x201E, 0x201C, 0x201D, 0x2018, 0x2019, 0x201A, 0x2122, 0xFB01, 0xFB02, 0x141,
    0x152,  0x160,  0x178,  0x17D,  0x131,  0x142,  0x153,  0x161,  0x17E,  0,      0x20AC,
};

unsigned char byteAt(std::string_view bytes, std::size_t i) { return static_cast<unsigned char>(bytes[i]); }

void appendUtf8(std::string& out, char32_t c) {
    const auto tail = [&](int shift) { out += static_cast<char>(0x80 | ((c >> shift) & 0x3F)); };
    if (c < 0x80) {
        out += static_cast<char>(c);
    } else if (c < 0x800) {
        out += static_cast<char>(0xC0 | (c >> 6));
        tail(0);
    } else if (c < 0x10000) {
        out += static_cast<char>(0xE0 | (c >> 12));
        tail(6);
        tail(0);
    } else {
        out += static_cast<char>(0xF0 | (c >> 18));
        tail(12);
        tail(6);
        tail(0);
    }
}

/// The next character of UTF-8 text; U+FFFD, and one byte on, for what is none (overlong forms and surrogates too).
char32_t takeUtf8(std::string_view bytes, std::size_t& at) {
    constexpr char32_t kLowest[] = {0, 0x80, 0x800, 0x10000};
    const unsigned char first = byteAt(bytes, at++);
    if (first < 0x80) return first;
    const int more = first >= 0xF0 ? 3 : first >= 0xE0 ? 2 : 1;
    if (first < 0xC2 || first > 0xF4 || at + static_cast<std::size_t>(more) > bytes.size()) return kReplacement;
    char32_t c = first & (0x3FU >> more);
    for (int i = 0; i < more; ++i) {
        const unsigned char next = byteAt(bytes, at + static_cast<std::size_t>(i));
        if ((next & 0xC0) != 0x80) return kReplacement;
        c = (c << 6) | (next & 0x3FU);
    }
    if (c < kLowest[more] || c > 0x10FFFF || (c >= 0xD800 && c <= 0xDFFF)) return kReplacement;
    at += static_cast<std::size_t>(more);
    return c;
}

std::string fromUtf16(std::string_view bytes, bool bigEndian) {
    std::string out;
    const auto unit = [&](std::size_t i) {
        const char32_t a = byteAt(bytes, i);
        const char32_t b = byteAt(bytes, i + 1);
        return bigEndian ? (a << 8) | b : (b << 8) | a;
    };
    std::size_t at = 0;
    for (; at + 1 < bytes.size(); at += 2) {
        char32_t c = unit(at);
        if (c >= 0xD800 && c <= 0xDFFF) {
            const char32_t low = c < 0xDC00 && at + 3 < bytes.size() ? unit(at + 2) : 0;
            const bool pair = low >= 0xDC00 && low <= 0xDFFF;
            c = pair ? 0x10000 + ((c - 0xD800) << 10) + (low - 0xDC00) : kReplacement;
            if (pair) at += 2;
        }
        appendUtf8(out, c);
    }
    if (at < bytes.size()) appendUtf8(out, kReplacement);
    return out;
}

std::string fromPdfDoc(std::string_view bytes) {
    std::string out;
    for (const char byte : bytes) {
        const auto c = static_cast<unsigned char>(byte);
        char32_t mapped = c;
        if (c >= 0x18 && c <= 0x1F) mapped = kFrom18[c - 0x18];
        if (c >= 0x80 && c <= 0xA0) mapped = kFrom80[c - 0x80];
        if (c == 0x7F || c == 0xAD || mapped == 0) mapped = kReplacement;
        appendUtf8(out, mapped);
    }
    return out;
}

int hexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    return c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
}

/// What a backslash in front of text[at] makes; moves behind it.
void takeEscape(std::string_view text, std::size_t& at, std::string& out) {
    constexpr std::string_view kLetters = "nrtbf";
    constexpr std::string_view kMeanings = "\n\r\t\b\f";
    const char c = text[at++];
    if (c >= '0' && c <= '7') {
        int value = c - '0';
        for (int i = 0; i < 2 && at < text.size() && text[at] >= '0' && text[at] <= '7'; ++i) {
            value = value * 8 + (text[at++] - '0');
        }
        out += static_cast<char>(value & 0xFF);  // high-order overflow is ignored
    } else if (c == '\r') {
        if (at < text.size() && text[at] == '\n') ++at;
    } else if (const std::size_t letter = kLetters.find(c); letter != std::string_view::npos) {
        out += kMeanings[letter];
    } else if (c != '\n') {
        out += c;
    }
}

std::optional<std::string> literalBytes(std::string_view text) {
    std::string out;
    int depth = 1;
    for (std::size_t at = 1; at < text.size();) {
        const char c = text[at++];
        if (c == '\\') {
            if (at < text.size()) takeEscape(text, at, out);
            continue;
        }
        if (c == '(') ++depth;
        if (c == ')' && --depth == 0) return out;
        if (c == '\r' && at < text.size() && text[at] == '\n') ++at;
        out += c == '\r' ? '\n' : c;  // every line end inside a string reads as a line feed
    }
    return std::nullopt;
}

std::optional<std::string> hexBytes(std::string_view text) {
    std::string out;
    int high = -1;
    for (std::size_t at = 1; at < text.size(); ++at) {
        if (text[at] == '>') {
            if (high >= 0) out += static_cast<char>(high << 4);
            return out;
        }
        const int digit = hexDigit(text[at]);
        if (digit < 0) continue;
        if (high >= 0) out += static_cast<char>((high << 4) | digit);
        high = high >= 0 ? -1 : digit;
    }
    return std::nullopt;
}

bool isUnprintable(char32_t c) {
    return c < 0x20 || (c >= 0x7F && c < 0xA0) || (c >= 0x202A && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069);
}

}  // namespace

std::string cli::validUtf8(std::string_view bytes) {
    std::string out;
    for (std::size_t at = 0; at < bytes.size();) appendUtf8(out, takeUtf8(bytes, at));
    return out;
}

std::string cli::printable(std::string_view bytes) {
    std::string out;
    for (std::size_t at = 0; at < bytes.size();) {
        const char32_t c = takeUtf8(bytes, at);
        const bool blank = c == '\t' || c == '\n' || c == '\r';
        appendUtf8(out, blank ? U' ' : isUnprintable(c) ? kReplacement : c);
    }
    return out;
}

std::string cli::decodeTextString(std::string_view bytes) {
    if (bytes.starts_with("\xFE\xFF")) return fromUtf16(bytes.substr(2), true);
    // Not in the standard, but written by some producers and read by all viewers.
    if (bytes.starts_with("\xFF\xFE")) return fromUtf16(bytes.substr(2), false);
    if (bytes.starts_with("\xEF\xBB\xBF")) return validUtf8(bytes.substr(3));
    return fromPdfDoc(bytes);
}

std::optional<std::string> cli::stringBytes(std::string_view text) {
    if (text.starts_with('(')) return literalBytes(text);
    if (text.starts_with('<') && !text.starts_with("<<")) return hexBytes(text);
    return std::nullopt;
}

std::optional<std::string> cli::nameText(std::string_view text) {
    if (!text.starts_with('/')) return std::nullopt;
    std::string out;
    for (std::size_t at = 1; at < text.size(); ++at) {
        const char c = text[at];
        if (kWhite.find(c) != std::string_view::npos || kDelimiters.find(c) != std::string_view::npos) break;
        const bool escaped =
            c == '#' && at + 2 < text.size() && hexDigit(text[at + 1]) >= 0 && hexDigit(text[at + 2]) >= 0;
        out += escaped ? static_cast<char>((hexDigit(text[at + 1]) << 4) | hexDigit(text[at + 2])) : c;
        if (escaped) at += 2;
    }
    return out;
}

std::string_view cli::trimmed(std::string_view text) {
    const std::size_t begin = text.find_first_not_of(kWhite);
    if (begin == std::string_view::npos) return {};
    return text.substr(begin, text.find_last_not_of(kWhite) - begin + 1);
}
