// Text strings and UTF-8.
#include "forms/TextString.h"

#include <optional>
#include <unordered_map>

#include "forms/Glyphs.h"
#include "syntax/Utf8.h"
#include "syntax/Values.h"

namespace varnpdf {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

unsigned char byteAt(std::string_view bytes, std::size_t i) { return static_cast<unsigned char>(bytes[i]); }

std::u32string fromUtf16(std::string_view bytes, bool bigEndian) {
    const auto unit = [&](std::size_t i) {
        const char32_t high = byteAt(bytes, bigEndian ? i : i + 1);
        return (high << 8U) | byteAt(bytes, bigEndian ? i + 1 : i);
    };
    std::u32string out;
    std::size_t at = 0;
    for (; at + 1 < bytes.size(); at += 2) {
        char32_t c = unit(at);
        if (c >= 0xD800 && c <= 0xDFFF) {
            const char32_t low = c < 0xDC00 && at + 3 < bytes.size() ? unit(at + 2) : 0;
            const bool pair = low >= 0xDC00 && low <= 0xDFFF;
            c = pair ? 0x10000 + ((c - 0xD800) << 10U) + (low - 0xDC00) : kReplacement;
            if (pair) at += 2;
        }
        out.push_back(c);
    }
    if (at < bytes.size()) out.push_back(kReplacement);
    return out;
}

void appendHex(std::string& out, unsigned unit) {
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    for (int shift = 12; shift >= 0; shift -= 4) out.push_back(kDigits[(unit >> static_cast<unsigned>(shift)) & 0xFU]);
}

std::string utf16Object(std::u32string_view characters) {
    std::string out = "<FEFF";
    for (const char32_t c : characters) {
        if (c >= 0x10000) {
            appendHex(out, 0xD800U + ((c - 0x10000U) >> 10U));
            appendHex(out, 0xDC00U + ((c - 0x10000U) & 0x3FFU));
        } else {
            appendHex(out, c);
        }
    }
    return out + ">";
}

// Line ends and tabs stand for themselves in PDFDocEncoding; other control characters have no place in it.
std::optional<char> pdfDocByte(char32_t c) {
    static const auto kBytes = [] {
        std::unordered_map<char32_t, char> bytes;
        const Encoding& encoding = pdfDocEncoding();
        for (std::size_t code = 0; code < encoding.size(); ++code) {
            if (encoding[code] != 0) bytes.emplace(encoding[code], static_cast<char>(code));
        }
        return bytes;
    }();
    if (c == '\n' || c == '\r' || c == '\t') return static_cast<char>(c);
    const auto found = kBytes.find(c);
    return found == kBytes.end() ? std::nullopt : std::optional(found->second);
}

}  // namespace

std::u32string fromUtf8(std::string_view text) {
    if (auto characters = charactersOf(text)) return *characters;
    std::u32string out;
    for (std::size_t i = 0; i < text.size(); ++i) out.push_back(byteAt(text, i));
    return out;
}

std::string toUtf8(std::u32string_view characters) {
    std::string out;
    const auto put = [&](char32_t c) { out.push_back(static_cast<char>(c)); };
    for (const char32_t c : characters) {
        if (c < 0x80) {
            put(c);
            continue;
        }
        if (c < 0x800) {
            put(0xC0U | (c >> 6U));
        } else if (c < 0x10000) {
            put(0xE0U | (c >> 12U));
            put(0x80U | ((c >> 6U) & 0x3FU));
        } else {
            put(0xF0U | (c >> 18U));
            put(0x80U | ((c >> 12U) & 0x3FU));
            put(0x80U | ((c >> 6U) & 0x3FU));
        }
        put(0x80U | (c & 0x3FU));
    }
    return out;
}

std::u32string decodeTextString(std::string_view bytes) {
    if (bytes.starts_with("\xFE\xFF")) return fromUtf16(bytes.substr(2), true);
    // Not in the standard, but written by some producers and read by all viewers.
    if (bytes.starts_with("\xFF\xFE")) return fromUtf16(bytes.substr(2), false);
    if (bytes.starts_with("\xEF\xBB\xBF")) {
        if (auto characters = charactersOf(bytes.substr(3))) return *characters;
    }
    std::u32string out;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const unsigned char code = byteAt(bytes, i);
        const char32_t c = code < 0x18 ? code : pdfDocEncoding()[code];
        out.push_back(c == 0 && code != 0 ? kReplacement : c);
    }
    return out;
}

std::string textStringObject(std::u32string_view characters) {
    std::string bytes;
    for (const char32_t c : characters) {
        const auto byte = pdfDocByte(c);
        if (!byte) return utf16Object(characters);
        bytes.push_back(*byte);
    }
    // The first bytes would be taken for a byte order mark.
    for (const std::string_view mark : {"\xFE\xFF", "\xFF\xFE", "\xEF\xBB\xBF"}) {
        if (bytes.starts_with(mark)) return utf16Object(characters);
    }
    return asciiString(bytes);
}

}  // namespace varnpdf
