// Glyph names, characters and the encodings made of them.
#include "forms/Glyphs.h"

#include <algorithm>
#include <charconv>
#include <string>
#include <unordered_map>

namespace varnpdf {
namespace {

constexpr char32_t kBullet = 0x2022;

// Where the encodings depart from Latin-1, by code; 0 stands for "no character".
constexpr char32_t kWinAnsiFrom80[] = {0x20AC,  kBullet, 0x201A, 0x192,  0x201E, 0x2026,  0x2020, 0x2021,
                                       0x2C6,   0x2030,  0x160,  0x2039, 0x152,  kBullet, 0x17D,  kBullet,
                                       kBullet, 0x2018,  0x2019, 0x201C, 0x201D, 0x2022,  0x2013, 0x2014,
                                       0x2DC,   0x2122,  0x161,  0x203A, 0x153,  kBullet, 0x17E,  0x178};
constexpr char32_t kPdfDocFrom18[] = {0x2D8, 0x2C7, 0x2C6, 0x2D9, 0x2DD, 0x2DB, 0x2DA, 0x2DC};
constexpr char32_t kPdfDocFrom80[] = {0x2022, 0x2020, 0x2021, 0x2026, 0x2014, 0x2013, 0x192,  0x2044, 0x2039,
                                      0x203A, 0x2212, 0x2030, 0x201E, 0x201C, 0x201D, 0x2018, 0x2019, 0x201A,
                                      0x2122, 0xFB01, 0xFB02, 0x141,  0x152,  0x160,  0x178,  0x17D,  0x131,
                                      0x142,  0x153,  0x161,  0x17E,  0,      0x20AC};
constexpr char32_t kMacRomanFrom80[] = {
    0xC4,   0xC5,  0xC7,   0xC9,   0xD1,   0xD6,   0xDC,   0xE1,   0xE0,   0xE2,   0xE4,   0xE3, 0xE5,   0xE7,   0xE9,
    0xE8,   0xEA,  0xEB,   0xED,   0xEC,   0xEE,   0xEF,   0xF1,   0xF3,   0xF2,   0xF4,   0xF6, 0xF5,   0xFA,   0xF9,
    0xFB,   0xFC,  0x2020, 0xB0,   0xA2,   0xA3,   0xA7,   0x2022, 0xB6,   0xDF,   0xAE,   0xA9, 0x2122, 0xB4,   0xA8,
    0,      0xC6,  0xD8,   0,      0xB1,   0,      0,      0xA5,   0xB5,   0,      0,      0,    0,      0,      0xAA,
    0xBA,   0,     0xE6,   0xF8,   0xBF,   0xA1,   0xAC,   0,      0x192,  0,      0,      0xAB, 0xBB,   0x2026, 0x20,
    0xC0,   0xC3,  0xD5,   0x152,  0x153,  0x2013, 0x2014, 0x201C, 0x201D, 0x2018, 0x2019, 0xF7, 0,      0xFF,   0x178,
    0x2044, 0xA4,  0x2039, 0x203A, 0xFB01, 0xFB02, 0x2021, 0xB7,   0x201A, 0x201E, 0x2030, 0xC2, 0xCA,   0xC1,   0xCB,
    0xC8,   0xCD,  0xCE,   0xCF,   0xCC,   0xD3,   0xD4,   0,      0xD2,   0xDA,   0xDB,   0xD9, 0x131,  0x2C6,  0x2DC,
    0xAF,   0x2D8, 0x2D9,  0x2DA,  0xB8,   0x2DD,  0x2DB,  0x2C7};

Encoding latin1() {
    Encoding encoding{};
    for (std::size_t code = 0x20; code < encoding.size(); ++code) encoding[code] = static_cast<char32_t>(code);
    encoding[0x7F] = 0;
    return encoding;
}

Encoding overlaid(Encoding encoding, std::size_t from, std::span<const char32_t> characters) {
    std::copy(characters.begin(), characters.end(), encoding.begin() + static_cast<std::ptrdiff_t>(from));
    return encoding;
}

Encoding makeWinAnsi() {
    Encoding encoding = overlaid(latin1(), 0x80, kWinAnsiFrom80);
    encoding[0xA0] = 0x20;
    encoding[0xAD] = '-';
    return encoding;
}

Encoding makePdfDoc() {
    Encoding encoding = overlaid(overlaid(latin1(), 0x18, kPdfDocFrom18), 0x80, kPdfDocFrom80);
    encoding[0xAD] = 0;
    return encoding;
}

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

const Encoding& winAnsiEncoding() {
    static const Encoding kEncoding = makeWinAnsi();
    return kEncoding;
}

const Encoding& macRomanEncoding() {
    static const Encoding kEncoding = overlaid(latin1(), 0x80, kMacRomanFrom80);
    return kEncoding;
}

const Encoding& standardEncoding() {
    static const Encoding kEncoding = makeStandard();
    return kEncoding;
}

const Encoding& pdfDocEncoding() {
    static const Encoding kEncoding = makePdfDoc();
    return kEncoding;
}

}  // namespace varnpdf
