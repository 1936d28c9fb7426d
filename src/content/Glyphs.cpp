// Glyph names and characters, standard fonts, encodings of simple fonts.
#include "content/Glyphs.h"

#include <algorithm>
#include <charconv>
#include <string>
#include <unordered_map>

#include "syntax/Text.h"

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

// The Cyrillic letters as the fonts of the time name them: "afii10017" is the first, and IO stands among them.
std::optional<char32_t> cyrillic(std::string_view digits) {
    constexpr struct {
        int first;
        char32_t letter;
        char32_t io;
    } kAlphabets[] = {{10017, 0x410, 0x401}, {10065, 0x430, 0x451}};
    constexpr int kLetters = 33;
    constexpr int kIo = 6;
    int number = 0;
    if (std::from_chars(digits.data(), digits.data() + digits.size(), number).ec != std::errc()) return std::nullopt;
    for (const auto& alphabet : kAlphabets) {
        const int index = number - alphabet.first;
        if (index < 0 || index >= kLetters) continue;
        if (index == kIo) return alphabet.io;
        return alphabet.letter + static_cast<char32_t>(index < kIo ? index : index - 1);
    }
    return std::nullopt;
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
        for (const NamedCharacter& other : otherNames()) names.emplace(other.name, other.character);
        return names;
    }();
    const auto found = kByName.find(glyphName);
    if (found != kByName.end()) return found->second;
    if (glyphName.starts_with("afii")) return cyrillic(glyphName.substr(4));
    if (glyphName.starts_with("uni")) return hexadecimal(glyphName.substr(3), 4, 4);
    if (glyphName.starts_with('u')) return hexadecimal(glyphName.substr(1), 4, 6);
    return std::nullopt;
}

std::u32string textOfGlyph(std::string_view glyphName) {
    std::u32string text;
    std::string_view rest = glyphName.substr(0, glyphName.find('.'));
    while (!rest.empty()) {
        const std::string_view part = rest.substr(0, rest.find('_'));
        rest.remove_prefix(std::min(part.size() + 1, rest.size()));
        if (const auto character = characterOf(part)) {
            text.push_back(*character);
        } else if (part.starts_with("uni") && part.size() % 4 == 3) {
            for (std::size_t at = 3; at < part.size(); at += 4) {
                if (const auto unit = hexadecimal(part.substr(at, 4), 4, 4)) text.push_back(*unit);
            }
        }
    }
    return text;
}

std::optional<StandardFace> standardFace(std::string_view name) {
    const bool bold = contains(name, "Bold");
    const bool slanted = contains(name, "Italic") || contains(name, "Oblique");
    if (name.starts_with("Courier")) return StandardFace::Courier;
    if (name.starts_with("Helvetica") || name.starts_with("Arial")) {
        return bold ? StandardFace::HelveticaBold : StandardFace::Helvetica;
    }
    if (name.starts_with("Symbol")) return StandardFace::Symbol;
    if (name.starts_with("ZapfDingbats")) return StandardFace::ZapfDingbats;
    if (!name.starts_with("Times")) return std::nullopt;
    if (slanted) return bold ? StandardFace::TimesBoldItalic : StandardFace::TimesItalic;
    return bold ? StandardFace::TimesBold : StandardFace::Times;
}

float standardWidth(StandardFace face, char32_t character) {
    constexpr float kThousand = 1000;
    constexpr float kCourier = 600;
    const Glyph* const glyph = glyphOf(character);
    if (glyph == nullptr || face > StandardFace::Courier) return 0;
    if (face == StandardFace::Courier) return kCourier / kThousand;
    return static_cast<float>(glyph->widths[static_cast<std::size_t>(face)]) / kThousand;
}

const Encoding* namedEncoding(std::string_view name) {
    if (name == "/WinAnsiEncoding") return &winAnsiEncoding();
    if (name == "/MacRomanEncoding") return &macRomanEncoding();
    if (name == "/StandardEncoding") return &standardEncoding();
    // Not among the names of the standard, but producers give it to the fonts of forms.
    return name == "/PDFDocEncoding" ? &pdfDocEncoding() : nullptr;
}

const Encoding& standardEncoding() {
    static const Encoding kEncoding = makeStandard();
    return kEncoding;
}

}  // namespace varnpdf
