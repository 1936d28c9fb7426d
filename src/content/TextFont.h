// Fonts as text is read through them: which characters codes show, and how far they go (ISO 32000-2 9.5 to 9.10).
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "content/CMap.h"
#include "content/Glyphs.h"
#include "model/Document.h"
#include "syntax/Dictionary.h"

namespace varnpdf {

/// One code of a shown string.
struct ShownCode {
    std::size_t bytes = 1;
    std::u32string text;   ///< empty where the font does not say
    double advance = 0;    ///< in units of the font size; downwards, so negative, in vertical writing
    bool isSpace = false;  ///< word spacing applies: the single byte 32
};

class TextFont {
public:
    /// A font dictionary. What it lacks is taken from Helvetica; a text without any font is read likewise. `budget` pays
    /// for the font's streams.
    static TextFont from(const Document& document, std::string_view dictionary, std::size_t& budget);

    /// The code at the start of a string that is not empty.
    [[nodiscard]] ShownCode next(std::string_view codes) const;
    /// Heights of its lines above and below (negative) the baseline in units of the font size.
    [[nodiscard]] double ascent() const noexcept { return ascent_; }
    [[nodiscard]] double descent() const noexcept { return descent_; }
    [[nodiscard]] bool isVertical() const noexcept { return composite_ && cmap_.isVertical(); }

private:
    struct CidWidths {
        std::uint32_t first, last;
        std::size_t index;  // of the first in `widths_`; the same for all of a range
        bool each;
    };
    class Maker;

    [[nodiscard]] double cidWidth(std::uint32_t cid) const noexcept;

    bool composite_ = false;
    double ascent_;
    double descent_;
    std::array<std::u32string, 256> texts_;  // of a simple font
    std::vector<float> widths_;              // of the codes of a simple font; of a composite one as `cidWidths_` say
    std::vector<CidWidths> cidWidths_;
    double defaultWidth_ = 1;
    double verticalAdvance_ = -1;
    CMap cmap_;
    CMap toUnicode_;
    bool codesAreUtf16_ = false;
    bool cidsKnown_ = true;
};

}  // namespace varnpdf
