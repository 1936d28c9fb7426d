// Rows of common kinds of TIFF samples turned into RGB.
#include "conversion/TiffRows.h"

#include <algorithm>
#include <cstring>

namespace varnpdf {
namespace {

std::uint16_t tag(TIFF* tif, std::uint32_t name, std::uint16_t otherwise) {
    std::uint16_t value = otherwise;
    TIFFGetFieldDefaulted(tif, name, &value);
    return value;
}

// Samples of 16 bits in the machine's order, rounded to 8.
unsigned eightBits(const unsigned char* at) {
    std::uint16_t value = 0;
    std::memcpy(&value, at, sizeof value);
    return (value + 128U) / 257U;
}

// Subsampled or not, JPEG data comes out as RGB when libtiff is asked to.
bool asksForRgb(TIFF* tif, std::uint16_t photometric) {
    return photometric == PHOTOMETRIC_YCBCR && tag(tif, TIFFTAG_COMPRESSION, COMPRESSION_NONE) == COMPRESSION_JPEG &&
           TIFFSetField(tif, TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB) == 1;
}

}  // namespace

std::optional<RowConverter> RowConverter::of(TIFF* tif, std::uint32_t width) {
    std::uint16_t photometric = 0;
    if (TIFFIsTiled(tif) != 0 || TIFFGetField(tif, TIFFTAG_PHOTOMETRIC, &photometric) != 1) return {};
    RowConverter row;
    row.width_ = width;
    row.samples_ = tag(tif, TIFFTAG_SAMPLESPERPIXEL, 1);
    row.bits_ = tag(tif, TIFFTAG_BITSPERSAMPLE, 1);
    const std::uint16_t format = tag(tif, TIFFTAG_SAMPLEFORMAT, SAMPLEFORMAT_UINT);
    if (format != SAMPLEFORMAT_UINT && format != SAMPLEFORMAT_VOID) return {};
    if (row.samples_ > 1 && tag(tif, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG) != PLANARCONFIG_CONTIG) return {};

    std::uint16_t extra = 0;
    std::uint16_t* kinds = nullptr;
    TIFFGetFieldDefaulted(tif, TIFFTAG_EXTRASAMPLES, &extra, &kinds);
    if (extra > 0 && kinds[0] == EXTRASAMPLE_ASSOCALPHA) row.alpha_ = Alpha::kMultiplied;
    if (extra > 0 && kinds[0] == EXTRASAMPLE_UNASSALPHA) row.alpha_ = Alpha::kSeparate;

    if (photometric == PHOTOMETRIC_RGB || asksForRgb(tif, photometric)) row.model_ = Model::kRgb;
    if (photometric == PHOTOMETRIC_SEPARATED && tag(tif, TIFFTAG_INKSET, INKSET_CMYK) == INKSET_CMYK) {
        row.model_ = Model::kCmyk;
    }
    const bool taken = row.model_ == Model::kTable ? row.takesTable(tif, photometric) : row.takesColour();
    return taken ? std::optional(row) : std::nullopt;
}

bool RowConverter::takesColour() const noexcept {
    const int colours = model_ == Model::kRgb ? 3 : 4;
    return (bits_ == 8 || bits_ == 16) && samples_ >= colours + (alpha_ == Alpha::kNone ? 0 : 1);
}

bool RowConverter::takesTable(TIFF* tif, std::uint16_t photometric) {
    const bool narrow = bits_ == 1 || bits_ == 2 || bits_ == 4;
    if (alpha_ != Alpha::kNone || (narrow && samples_ != 1)) return false;
    if (photometric == PHOTOMETRIC_PALETTE) {
        if ((!narrow && bits_ != 8) || !readPalette(tif)) return false;
    } else if (photometric == PHOTOMETRIC_MINISWHITE || photometric == PHOTOMETRIC_MINISBLACK) {
        if (!narrow && bits_ != 8 && bits_ != 16) return false;
        setGrey(photometric == PHOTOMETRIC_MINISWHITE);
        bilevel_ = bits_ == 1;
    } else {
        return false;
    }
    if (narrow) fillOctets();
    return true;
}

// Colours have 16 bits, but some writers put 8 there.
bool RowConverter::readPalette(TIFF* tif) {
    std::array<std::uint16_t*, 3> maps{};
    if (TIFFGetField(tif, TIFFTAG_COLORMAP, maps.data(), &maps[1], &maps[2]) != 1) return false;
    const std::size_t count = std::size_t{1} << bits_;
    const bool wide = std::ranges::any_of(maps, [&](const std::uint16_t* map) {
        return std::any_of(map, map + count, [](std::uint16_t value) { return value > 255; });
    });
    table_.resize(count);
    for (std::size_t i = 0; i < count; ++i) {
        for (std::size_t c = 0; c < 3; ++c) table_[i][c] = static_cast<char>(wide ? maps[c][i] >> 8U : maps[c][i]);
    }
    return true;
}

void RowConverter::setGrey(bool whiteIsZero) {
    const std::size_t last = bits_ < 8 ? (std::size_t{1} << bits_) - 1 : 255;
    for (std::size_t i = 0; i <= last; ++i) {
        const auto level = static_cast<char>((whiteIsZero ? last - i : i) * 255 / last);
        table_.push_back({level, level, level});
    }
}

void RowConverter::fillOctets() {
    const unsigned mask = (1U << bits_) - 1;
    for (unsigned byte = 0; byte < 256; ++byte) {
        for (int shift = 8 - bits_; shift >= 0; shift -= bits_) {
            const Colour& colour = table_[(byte >> static_cast<unsigned>(shift)) & mask];
            octets_.insert(octets_.end(), colour.begin(), colour.end());
        }
    }
}

void RowConverter::convert(const unsigned char* row, char* rgb) const {
    if (model_ == Model::kTable)
        convertTable(row, rgb);
    else if (model_ == Model::kRgb && bits_ == 8 && samples_ == 3)
        std::memcpy(rgb, row, std::size_t{3} * width_);
    else
        convertColour(row, rgb);
}

void RowConverter::convertTable(const unsigned char* row, char* rgb) const {
    if (bits_ < 8) {
        const std::size_t pixels = 8U / bits_;
        const std::size_t octet = 3 * pixels;
        for (std::size_t left = width_; left > 0; ++row, rgb += octet) {
            const std::size_t now = std::min(pixels, left);
            // A constant length where it can be one.
            if (now == 8)
                std::memcpy(rgb, octets_.data() + *row * std::size_t{24}, 24);
            else
                std::memcpy(rgb, octets_.data() + *row * octet, 3 * now);
            left -= now;
        }
        return;
    }
    const std::size_t sampleBytes = bits_ / 8U;
    for (std::size_t i = 0; i < width_; ++i, rgb += 3) {
        const unsigned char* at = row + i * samples_ * sampleBytes;
        std::memcpy(rgb, table_[bits_ == 8 ? *at : eightBits(at)].data(), 3);
    }
}

// Colours over white by their opacity.
void RowConverter::convertColour(const unsigned char* row, char* rgb) const {
    const std::size_t sampleBytes = bits_ / 8U;
    for (std::size_t i = 0; i < width_; ++i) {
        const unsigned char* at = row + i * samples_ * sampleBytes;
        const auto sample = [&](std::size_t s) { return bits_ == 8 ? at[s] : eightBits(at + 2 * s); };
        const bool inks = model_ == Model::kCmyk;
        const unsigned light = inks ? 255 - sample(3) : 255;
        const unsigned opacity = alpha_ == Alpha::kNone ? 255 : sample(inks ? 4 : 3);
        for (std::size_t c = 0; c < 3; ++c) {
            const unsigned colour = inks ? (255 - sample(c)) * light / 255 : sample(c);
            const unsigned share = alpha_ == Alpha::kSeparate ? (colour * opacity + 127) / 255 : colour;
            *rgb++ = static_cast<char>(std::min(share + 255 - opacity, 255U));
        }
    }
}

}  // namespace varnpdf
