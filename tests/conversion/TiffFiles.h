// TIFF files of every kind of samples that libtiff writes, with the colours that a reader must find in them.
#pragma once

#include <tiffio.h>

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "tests/conversion/Conversion.h"

namespace varnpdf::test {

using Samples = std::vector<unsigned>;
using Colour = std::array<int, 3>;

struct Kind {
    const char* name;
    std::uint16_t photometric;
    std::uint16_t bits;
    std::function<Samples(unsigned x, unsigned y)> samples;
    std::function<Colour(unsigned x, unsigned y)> rgb;
    std::uint16_t compression = COMPRESSION_NONE;
    unsigned tile = 0;  ///< edge of a tile; 0 for strips
    int tolerance = 0;
    int extra = -1;  ///< what the sample behind the colours is
    std::uint16_t planar = PLANARCONFIG_CONTIG;
    unsigned rowsPerStrip = 5;
};

inline constexpr unsigned kWidth = 37;
inline constexpr unsigned kHeight = 21;

const std::vector<Kind>& kinds();
const Kind& kindNamed(std::string_view name);

void setTags(TIFF* tif, const Kind& kind, std::size_t samples);
/// The samples of a part of the image as the file stores them; of one plane, or of all where `plane` is negative.
std::string stored(const Kind& kind, unsigned left, unsigned top, unsigned width, unsigned height, int plane);
/// Adds an image; `more` may set further tags in front of its samples.
void addDirectory(TIFF* tif, const Kind& kind, const std::function<void(TIFF*)>& more = {});
/// The path of a file with so many images.
std::string makeTiff(const WorkDirectory& work, const Kind& kind, int pages = 1,
                     const std::function<void(TIFF*)>& more = {}, const char* mode = "wl");

}  // namespace varnpdf::test
