// TIFF files for the tests.
#include "tests/conversion/TiffFiles.h"

#include <algorithm>
#include <cmath>

namespace varnpdf::test {
namespace {

unsigned red(unsigned x, unsigned y) { return (x * 7 + y) % 256; }
unsigned green(unsigned x, unsigned y) { return (y * 11 + x) % 256; }
unsigned blue(unsigned x, unsigned y) { return (x * y) % 256; }
unsigned bit(unsigned x, unsigned y) { return (x / 3 + y) % 2; }

Colour grey(unsigned level) {
    const int value = static_cast<int>(level);
    return {value, value, value};
}
Colour inverted(unsigned x, unsigned y) { return grey(255 - red(x, y)); }
Samples grey16(unsigned x, unsigned y) { return {red(x, y) * 257}; }
Samples slope(unsigned x, unsigned) { return {x * 4}; }
Colour slopeGreys(unsigned x, unsigned) { return grey(x * 4); }
Colour colours(unsigned x, unsigned y) {
    return {static_cast<int>(red(x, y)), static_cast<int>(green(x, y)), static_cast<int>(blue(x, y))};
}
Samples rgb8(unsigned x, unsigned y) { return {red(x, y), green(x, y), blue(x, y)}; }
Samples rgb16(unsigned x, unsigned y) { return {red(x, y) * 257, green(x, y) * 257, blue(x, y) * 257}; }
Samples bilevel(unsigned x, unsigned y) { return {bit(x, y)}; }
Colour blackIsOne(unsigned x, unsigned y) { return grey(bit(x, y) == 0 ? 255 : 0); }
Colour whiteIsOne(unsigned x, unsigned y) { return grey(bit(x, y) == 0 ? 0 : 255); }
Samples grey8(unsigned x, unsigned y) { return {red(x, y)}; }
Colour greys(unsigned x, unsigned y) { return grey(red(x, y)); }
template <unsigned Mask>
Samples low(unsigned x, unsigned y) {
    return {red(x, y) & Mask};
}
template <unsigned Mask>
Colour lowGrey(unsigned x, unsigned y) {
    return grey((red(x, y) & Mask) * 255 / Mask);
}
// The palette: red runs up, green down, blue is constant.
template <unsigned Mask>
Colour looked(unsigned x, unsigned y) {
    const unsigned index = red(x, y) & Mask;
    return {static_cast<int>(index * 255 / Mask), static_cast<int>(255 - index * 255 / Mask), 7};
}
// Half transparent on the right.
unsigned opacity(unsigned x) { return x < 20 ? 255 : 51; }
Colour blended(unsigned x, unsigned y) {
    Colour out{};
    const Colour full = colours(x, y);
    const double share = opacity(x) / 255.0;
    for (std::size_t c = 0; c < 3; ++c) out[c] = static_cast<int>(std::lround(full[c] * share + 255 * (1 - share)));
    return out;
}
Samples separateAlpha(unsigned x, unsigned y) { return {red(x, y), green(x, y), blue(x, y), opacity(x)}; }
Samples multiplied(unsigned x, unsigned y) {
    const unsigned a = opacity(x);
    return {red(x, y) * a / 255, green(x, y) * a / 255, blue(x, y) * a / 255, a};
}
Samples unnamedFourth(unsigned x, unsigned y) { return {red(x, y), green(x, y), blue(x, y), 0}; }
Samples cmyk(unsigned x, unsigned y) { return {red(x, y), green(x, y), blue(x, y), 51}; }
Samples cmyk16(unsigned x, unsigned y) { return {red(x, y) * 257, green(x, y) * 257, blue(x, y) * 257, 51 * 257}; }
Colour cmykColours(unsigned x, unsigned y) {
    Colour out = colours(x, y);
    for (int& c : out) c = (255 - c) * (255 - 51) / 255;
    return out;
}
Samples smooth(unsigned x, unsigned y) { return {x * 4, y * 8, 128}; }
Colour smoothColours(unsigned x, unsigned y) { return {static_cast<int>(x * 4), static_cast<int>(y * 8), 128}; }
Samples greyYcc(unsigned x, unsigned y) { return {red(x, y), 128, 128}; }
// libtiff's white is not quite ours.
Samples lightness(unsigned x, unsigned) { return {x < 20 ? 255U : 0U, 0, 0}; }
Colour lightnessColours(unsigned x, unsigned) { return grey(x < 20 ? 255 : 0); }

constexpr auto kNone = COMPRESSION_NONE;
constexpr auto kDeflate = COMPRESSION_ADOBE_DEFLATE;
constexpr auto kPlanes = PLANARCONFIG_SEPARATE;

const std::vector<Kind> kKinds = {
    {"WhiteIsZero", PHOTOMETRIC_MINISWHITE, 1, bilevel, blackIsOne},
    {"BlackIsZero", PHOTOMETRIC_MINISBLACK, 1, bilevel, whiteIsOne},
    {"Group3", PHOTOMETRIC_MINISWHITE, 1, bilevel, blackIsOne, COMPRESSION_CCITTFAX3},
    {"Group4", PHOTOMETRIC_MINISWHITE, 1, bilevel, blackIsOne, COMPRESSION_CCITTFAX4},
    {"PackBits", PHOTOMETRIC_MINISBLACK, 1, bilevel, whiteIsOne, COMPRESSION_PACKBITS},
    {"BilevelTiles", PHOTOMETRIC_MINISBLACK, 1, bilevel, whiteIsOne, COMPRESSION_CCITTFAX4, 16},
    {"Grey2", PHOTOMETRIC_MINISBLACK, 2, low<3>, lowGrey<3>},
    {"Grey4", PHOTOMETRIC_MINISBLACK, 4, low<15>, lowGrey<15>},
    {"Grey8", PHOTOMETRIC_MINISBLACK, 8, grey8, greys, COMPRESSION_LZW},
    {"Grey8Inverted", PHOTOMETRIC_MINISWHITE, 8, grey8, inverted},
    {"Grey16", PHOTOMETRIC_MINISBLACK, 16, grey16, greys},
    {"Grey8Tiles", PHOTOMETRIC_MINISBLACK, 8, grey8, greys, kDeflate, 16},
    {"Palette1", PHOTOMETRIC_PALETTE, 1, low<1>, looked<1>},
    {"Palette4", PHOTOMETRIC_PALETTE, 4, low<15>, looked<15>},
    {"Palette8", PHOTOMETRIC_PALETTE, 8, low<255>, looked<255>, COMPRESSION_LZW},
    {"Rgb", PHOTOMETRIC_RGB, 8, rgb8, colours},
    {"RgbOneStrip", PHOTOMETRIC_RGB, 8, rgb8, colours, COMPRESSION_LZW, 0, 0, -1, PLANARCONFIG_CONTIG, kHeight},
    {"RgbDeflate", PHOTOMETRIC_RGB, 8, rgb8, colours, kDeflate},
    {"RgbTiles", PHOTOMETRIC_RGB, 8, rgb8, colours, COMPRESSION_LZW, 16},
    {"RgbPlanes", PHOTOMETRIC_RGB, 8, rgb8, colours, kNone, 0, 0, -1, kPlanes},
    {"RgbTiledPlanes", PHOTOMETRIC_RGB, 8, rgb8, colours, COMPRESSION_LZW, 16, 0, -1, kPlanes},
    {"Rgb16", PHOTOMETRIC_RGB, 16, rgb16, colours, kDeflate},
    {"Rgb16Planes", PHOTOMETRIC_RGB, 16, rgb16, colours, kNone, 0, 0, -1, kPlanes},
    {"AlphaSeparate", PHOTOMETRIC_RGB, 8, separateAlpha, blended, kNone, 0, 1, EXTRASAMPLE_UNASSALPHA},
    {"AlphaMultiplied", PHOTOMETRIC_RGB, 8, multiplied, blended, kNone, 0, 1, EXTRASAMPLE_ASSOCALPHA},
    {"AlphaTiles", PHOTOMETRIC_RGB, 8, separateAlpha, blended, kNone, 16, 1, EXTRASAMPLE_UNASSALPHA},
    {"UnnamedFourth", PHOTOMETRIC_RGB, 8, unnamedFourth, colours, kNone, 0, 0, EXTRASAMPLE_UNSPECIFIED},
    {"UnnamedFourthTiles", PHOTOMETRIC_RGB, 8, unnamedFourth, colours, kNone, 16, 0, EXTRASAMPLE_UNSPECIFIED},
    {"Cmyk", PHOTOMETRIC_SEPARATED, 8, cmyk, cmykColours, kNone, 0, 1},
    {"Cmyk16", PHOTOMETRIC_SEPARATED, 16, cmyk16, cmykColours},
    {"CmykTiles", PHOTOMETRIC_SEPARATED, 8, cmyk, cmykColours, COMPRESSION_LZW, 16, 1},
    {"YccDeflate", PHOTOMETRIC_YCBCR, 8, greyYcc, greys, kDeflate, 0, 1},
    {"Lab", PHOTOMETRIC_CIELAB, 8, lightness, lightnessColours, kNone, 0, 40},
    {"JpegGrey", PHOTOMETRIC_MINISBLACK, 8, slope, slopeGreys, COMPRESSION_JPEG, 0, 6, -1, PLANARCONFIG_CONTIG, 8},
    {"JpegYcc", PHOTOMETRIC_YCBCR, 8, smooth, smoothColours, COMPRESSION_JPEG, 0, 12, -1, PLANARCONFIG_CONTIG, 16},
    {"JpegTiles", PHOTOMETRIC_YCBCR, 8, smooth, smoothColours, COMPRESSION_JPEG, 16, 12},
};

}  // namespace

const std::vector<Kind>& kinds() { return kKinds; }

void setTags(TIFF* tif, const Kind& kind, std::size_t samples) {
    TIFFSetField(tif, TIFFTAG_IMAGEWIDTH, kWidth);
    TIFFSetField(tif, TIFFTAG_IMAGELENGTH, kHeight);
    TIFFSetField(tif, TIFFTAG_BITSPERSAMPLE, kind.bits);
    TIFFSetField(tif, TIFFTAG_SAMPLESPERPIXEL, static_cast<int>(samples));
    TIFFSetField(tif, TIFFTAG_COMPRESSION, kind.compression);
    TIFFSetField(tif, TIFFTAG_PHOTOMETRIC, kind.photometric);
    TIFFSetField(tif, TIFFTAG_PLANARCONFIG, kind.planar);
    const auto extra = static_cast<std::uint16_t>(kind.extra);
    if (kind.extra >= 0) TIFFSetField(tif, TIFFTAG_EXTRASAMPLES, 1, &extra);
    if (kind.compression == COMPRESSION_JPEG) {
        TIFFSetField(tif, TIFFTAG_JPEGQUALITY, 95);
        if (kind.photometric == PHOTOMETRIC_YCBCR) TIFFSetField(tif, TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB);
    } else if (kind.photometric == PHOTOMETRIC_YCBCR) {
        TIFFSetField(tif, TIFFTAG_YCBCRSUBSAMPLING, 1, 1);
    }
    if (kind.photometric == PHOTOMETRIC_PALETTE) {
        const unsigned last = (1U << kind.bits) - 1;
        std::vector<std::uint16_t> maps[3];
        for (unsigned i = 0; i <= last; ++i) {
            const unsigned up = i * 255 / last;
            maps[0].push_back(static_cast<std::uint16_t>(up * 257));
            maps[1].push_back(static_cast<std::uint16_t>((255 - up) * 257));
            maps[2].push_back(7 * 257);
        }
        TIFFSetField(tif, TIFFTAG_COLORMAP, maps[0].data(), maps[1].data(), maps[2].data());
    }
    if (kind.tile > 0) {
        TIFFSetField(tif, TIFFTAG_TILEWIDTH, kind.tile);
        TIFFSetField(tif, TIFFTAG_TILELENGTH, kind.tile);
    } else {
        TIFFSetField(tif, TIFFTAG_ROWSPERSTRIP, kind.rowsPerStrip);
    }
}

/// Rows of a rectangle as they are stored: all samples, or those of one plane.
std::string stored(const Kind& kind, unsigned left, unsigned top, unsigned width, unsigned height, int plane) {
    std::string out;
    for (unsigned y = top; y < top + height; ++y) {
        unsigned byte = 0;
        unsigned used = 0;
        for (unsigned x = left; x < left + width; ++x) {
            const Samples samples = kind.samples(std::min(x, kWidth - 1), std::min(y, kHeight - 1));
            for (std::size_t s = 0; s < samples.size(); ++s) {
                if (plane >= 0 && s != static_cast<std::size_t>(plane)) continue;
                if (kind.bits == 16) {
                    out += static_cast<char>(samples[s] & 255U);
                    out += static_cast<char>(samples[s] >> 8U);
                    continue;
                }
                byte = byte << kind.bits | samples[s];
                used += kind.bits;
                if (used == 8) out += static_cast<char>(byte);
                if (used == 8) byte = used = 0;
            }
        }
        if (used > 0) out += static_cast<char>(byte << (8 - used));
    }
    return out;
}

void addDirectory(TIFF* tif, const Kind& kind, const std::function<void(TIFF*)>& more) {
    const std::size_t samples = kind.samples(0, 0).size();
    setTags(tif, kind, samples);
    if (more) more(tif);
    const bool planes = kind.planar == PLANARCONFIG_SEPARATE;
    const unsigned stepX = kind.tile > 0 ? kind.tile : kWidth;
    const unsigned stepY = kind.tile > 0 ? kind.tile : kind.rowsPerStrip;
    for (int plane = planes ? 0 : -1; plane < (planes ? static_cast<int>(samples) : 0); ++plane) {
        const auto sample = static_cast<std::uint16_t>(std::max(plane, 0));
        for (unsigned y = 0; y < kHeight; y += stepY) {
            for (unsigned x = 0; x < kWidth; x += stepX) {
                const unsigned rows = kind.tile > 0 ? kind.tile : std::min(stepY, kHeight - y);
                std::string bytes = stored(kind, x, y, stepX, rows, plane);
                const auto size = static_cast<tmsize_t>(bytes.size());
                if (kind.tile > 0)
                    TIFFWriteTile(tif, bytes.data(), x, y, 0, sample);
                else
                    TIFFWriteEncodedStrip(tif, TIFFComputeStrip(tif, y, sample), bytes.data(), size);
            }
        }
    }
    TIFFWriteDirectory(tif);
}

std::string makeTiff(const WorkDirectory& work, const Kind& kind, int pages, const std::function<void(TIFF*)>& more,
                     const char* mode) {
    std::string path = work.at("in.tif");
    TIFF* const tif = TIFFOpen(path.c_str(), mode);
    for (int i = 0; i < pages; ++i) addDirectory(tif, kind, more);
    TIFFClose(tif);
    return path;
}

const Kind& kindNamed(std::string_view name) {
    return *std::ranges::find_if(kinds(), [&](const Kind& kind) { return kind.name == name; });
}

}  // namespace varnpdf::test
