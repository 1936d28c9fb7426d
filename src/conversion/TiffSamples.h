// The samples of a TIFF directory as rows of RGB.
#pragma once

#include <tiffio.h>

#include <cstdint>
#include <functional>
#include <string_view>

namespace varnpdf {

/// Width and height are those of the stored rows; the orientation tag is not applied.
struct TiffShape {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    [[nodiscard]] std::uint64_t rgbBytes() const noexcept { return std::uint64_t{3} * width * height; }
};

/// Of the current directory; nothing in it when it has none or is too large.
TiffShape shapeOf(TIFF* tif);

/// Takes one or more whole rows of three bytes a pixel; a result of false ends the reading.
using RowSink = std::function<bool(std::string_view rows)>;

/// Reads the rows from the first to the last, a strip or a row of tiles at a time where the file allows it. False when
/// a part cannot be decoded, needs too much memory, or the sink has had enough.
bool readRows(TIFF* tif, const TiffShape& shape, const RowSink& sink);

}  // namespace varnpdf
