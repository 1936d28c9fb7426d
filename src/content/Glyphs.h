// Glyphs: their names, characters and widths in the standard fonts, and the encodings of simple fonts (ISO 32000-2 9.6,
// annex D).
#pragma once

#include <array>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "syntax/Encoding.h"

namespace varnpdf {

/// The standard fonts by what their widths are; Courier is monospaced and needs no table.
enum class StandardFace {
    Helvetica,
    HelveticaBold,
    Times,
    TimesBold,
    TimesItalic,
    TimesBoldItalic,
    Courier,
    Symbol,
    ZapfDingbats
};

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

/// The text of a glyph name, by parts and without a suffix ("f_i", "one.oldstyle"); empty when it says nothing.
std::u32string textOfGlyph(std::string_view glyphName);

/// A glyph of a font that has an encoding of its own.
struct SymbolGlyph {
    unsigned char code;
    char16_t character;
    short width;  ///< in thousandths of the font size
};
/// The glyphs of Symbol and ZapfDingbats, none for other faces.
std::span<const SymbolGlyph> symbolGlyphs(StandardFace face) noexcept;
struct NamedCharacter {
    std::string_view name;
    char16_t character;
};
/// Names of glyphs beyond Latin text.
std::span<const NamedCharacter> otherNames() noexcept;

/// The standard font that a name means, also under the names that other systems give it (ISO 32000-2 9.6.2.2).
std::optional<StandardFace> standardFace(std::string_view fontName);
/// Width of a Latin character in units of the font size, 0 when the face has no such glyph.
float standardWidth(StandardFace face, char32_t character);

/// StandardEncoding, made of the codes of the glyphs.
const Encoding& standardEncoding();
/// The encoding of a name with its slash, or null.
const Encoding* namedEncoding(std::string_view name);

}  // namespace varnpdf
