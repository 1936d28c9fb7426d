// The text of pages as it is painted: glyphs with their places.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "content/Geometry.h"
#include "model/Document.h"

namespace varnpdf {

/// One glyph in the default user space of its page (ISO 32000-2 8.3.2.3): points, not turned by /Rotate.
struct PlacedGlyph {
    std::u32string text;  ///< usually one character, more of a ligature; empty when the font does not say
    Vector origin;        ///< on the baseline, where the glyph begins; in its middle above it in vertical writing
    Vector baseline;      ///< the same without the rise of a superscript
    Vector advance;       ///< to where the glyph ends, spacing left aside
    Vector up;            ///< one font size upwards from the baseline
    float ascent;         ///< of the font, in units of `up`
    float descent;        ///< negative below the baseline
    bool vertical;        ///< `advance` goes down the line
};

/// Reads the text of a document's pages. Fonts and forms are kept, so that pages that share them cost little.
class PageTextReader {
public:
    explicit PageTextReader(const Document& document);
    PageTextReader(const PageTextReader&) = delete;
    PageTextReader& operator=(const PageTextReader&) = delete;
    ~PageTextReader();

    /// The glyphs of a page in the order in which they are painted. Damaged parts are passed over.
    std::vector<PlacedGlyph> read(const CPdfObj& page);
    /// More than a document of this size can honestly hold was met; what was read since then is not all.
    [[nodiscard]] bool isExhausted() const noexcept;

private:
    struct Parts;
    std::unique_ptr<Parts> parts_;
};

}  // namespace varnpdf
