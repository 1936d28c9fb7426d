// The glyphs of Latin text and StandardEncoding (ISO 32000-2 annex D).
#pragma once

#include <array>
#include <optional>
#include <span>
#include <string_view>

#include "syntax/Encoding.h"

namespace varnpdf {

/// Standard fonts of which the widths are known; Courier is monospaced and needs no table.
enum class StandardFace { Helvetica, HelveticaBold, Times, TimesBold, TimesItalic, TimesBoldItalic, Courier };

struct Glyph {
    char16_t character;
    std::string_view name;
    unsigned char standardCode;   ///< in StandardEncoding, 0 for none
    std::array<short, 6> widths;  ///< by `StandardFace`, in thousandths of the font size
};

/// All glyphs in ascending order of their characters.
std::span<const Glyph> latinGlyphs() noexcept;

/// The glyph of a character or null.
const Glyph* glyphOf(char32_t character) noexcept;

/// The character of a glyph name ("Adieresis", "uni00C4", "u1F600"); nothing for a name that says no character.
std::optional<char32_t> characterOf(std::string_view glyphName);

/// StandardEncoding, made of the codes of the glyphs.
const Encoding& standardEncoding();

}  // namespace varnpdf
