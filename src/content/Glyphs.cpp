// Glyph names and characters, StandardEncoding.
#include "content/Glyphs.h"

#include <algorithm>
#include <charconv>
#include <string>
#include <unordered_map>

namespace varnpdf {
namespace {

Encoding makeStandard() {
    Encoding encoding{};
    for (const Glyph& glyph : latinGlyphs()) encoding[glyph.standardCode] = glyph.character;
    encoding[0] = 0;
    return encoding;
}

std::optional<char32_t> hexadecimal(std::string_view digits, std::size_t least, std::size_t most) {
    std::uint32_t value = 0;
    const char* const end = digits.data() + digits.size();
    const bool complete = std::from_chars(digits.data(), end, value, 16).ptr == end;
    if (!complete || digits.size() < least || digits.size() > most || value > 0x10FFFF) return std::nullopt;
    return value;
}

}  // namespace

const Glyph* glyphOf(char32_t character) noexcept {
    const auto glyphs = latinGlyphs();
    const auto at =
        std::ranges::lower_bound(glyphs, character, {}, [](const Glyph& g) { return char32_t{g.character}; });
    return at != glyphs.end() && at->character == character ? &*at : nullptr;
}

std::optional<char32_t> characterOf(std::string_view glyphName) {
    static const auto kByName = [] {
        std::unordered_map<std::string_view, char32_t> names;
        for (const Glyph& glyph : latinGlyphs()) names.emplace(glyph.name, glyph.character);
        return names;
    }();
    const auto found = kByName.find(glyphName);
    if (found != kByName.end()) return found->second;
    if (glyphName.starts_with("uni")) return hexadecimal(glyphName.substr(3), 4, 4);
    if (glyphName.starts_with('u')) return hexadecimal(glyphName.substr(1), 4, 6);
    return std::nullopt;
}

const Encoding& standardEncoding() {
    static const Encoding kEncoding = makeStandard();
    return kEncoding;
}

}  // namespace varnpdf
