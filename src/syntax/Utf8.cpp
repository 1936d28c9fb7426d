// Well-formed UTF-8 as characters.
#include "syntax/Utf8.h"

namespace varnpdf {
namespace {

unsigned char byteAt(std::string_view bytes, std::size_t i) { return static_cast<unsigned char>(bytes[i]); }

// One character; overlong forms, surrogates and cut ones are none.
std::optional<char32_t> takeCharacter(std::string_view bytes, std::size_t& at) {
    constexpr char32_t kLowest[] = {0, 0x80, 0x800, 0x10000};
    const unsigned char first = byteAt(bytes, at++);
    if (first < 0x80) return first;
    if (first < 0xC2 || first > 0xF4) return std::nullopt;
    const unsigned more = first >= 0xF0 ? 3 : first >= 0xE0 ? 2 : 1;
    if (bytes.size() - at < more) return std::nullopt;
    char32_t c = first & (0x3FU >> more);
    for (unsigned i = 0; i < more; ++i) {
        const unsigned char next = byteAt(bytes, at + i);
        if ((next & 0xC0U) != 0x80) return std::nullopt;
        c = (c << 6U) | (next & 0x3FU);
    }
    if (c < kLowest[more] || c > 0x10FFFF || (c >= 0xD800 && c <= 0xDFFF)) return std::nullopt;
    at += more;
    return c;
}

}  // namespace

std::optional<std::u32string> charactersOf(std::string_view text) {
    std::u32string out;
    for (std::size_t at = 0; at < text.size();) {
        const auto c = takeCharacter(text, at);
        if (!c) return std::nullopt;
        out.push_back(*c);
    }
    return out;
}

}  // namespace varnpdf
