// Glyphs put together to lines, in the order in which they are read.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "content/PageText.h"

namespace varnpdf {

struct Rectangle {
    double left = 0;
    double bottom = 0;
    double right = 0;
    double top = 0;
};

/// What stands between two characters of a line.
enum class Gap {
    None,
    Small,  ///< a wide kern or a narrow blank: it counts as either
    Wide,   ///< a blank, or a way that only one can mean
};

struct LineCharacter {
    char32_t character;
    Gap before;     ///< of the first in its line: wide
    Rectangle box;  ///< of the character's share of its glyph
};

/// Characters on one baseline, without blanks. Ligatures are taken apart, unusual blanks and hyphens are plain ones.
using TextLine = std::vector<LineCharacter>;

/// The lines of a page, wherever they run: baselines may be turned. Text that is painted twice, to look bold, is there
/// once.
std::vector<TextLine> linesOf(std::vector<PlacedGlyph> glyphs);

/// The characters as lines have them, and a blank (U+0020) for every run of blanks between others.
std::u32string comparable(std::u32string_view text);

}  // namespace varnpdf
