// Rows of common kinds of TIFF samples turned into RGB.
#pragma once

#include <tiffio.h>

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

namespace varnpdf {

class RowConverter {
public:
    /// For strips of grey or palette samples of 1, 2, 4 or 8 bits, grey of 16 bits, RGB and CMYK of 8 or 16 bits, opaque
    /// or not, and JPEG data; nothing for all other kinds. JPEG data is set to be decoded as RGB.
    static std::optional<RowConverter> of(TIFF* tif, std::uint32_t width);

    /// Bytes that a row has at least.
    [[nodiscard]] std::uint64_t rowBytes() const noexcept { return (std::uint64_t{width_} * samples_ * bits_ + 7) / 8; }
    /// Rows of one bit a pixel, black and white.
    [[nodiscard]] bool isBilevel() const noexcept { return bilevel_; }
    /// Three bytes a pixel to `rgb`.
    void convert(const unsigned char* row, char* rgb) const;

private:
    using Colour = std::array<char, 3>;
    enum class Model { kTable, kRgb, kCmyk };
    enum class Alpha { kNone, kMultiplied, kSeparate };

    [[nodiscard]] bool takesColour() const noexcept;
    bool takesTable(TIFF* tif, std::uint16_t photometric);
    bool readPalette(TIFF* tif);
    void setGrey(bool whiteIsZero);
    void fillOctets();
    void convertTable(const unsigned char* row, char* rgb) const;
    void convertColour(const unsigned char* row, char* rgb) const;

    std::uint32_t width_ = 0;
    std::uint16_t samples_ = 1;
    std::uint16_t bits_ = 1;
    Model model_ = Model::kTable;
    bool bilevel_ = false;
    Alpha alpha_ = Alpha::kNone;
    std::vector<Colour> table_;  ///< by sample
    std::vector<char> octets_;   ///< by byte: the pixels in it, for samples of less than 8 bits
};

}  // namespace varnpdf
