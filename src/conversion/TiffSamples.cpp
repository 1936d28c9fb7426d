// The samples of a TIFF directory as rows of RGB.
#include "conversion/TiffSamples.h"

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "conversion/TiffMessages.h"
#include "conversion/TiffRows.h"
#include "support/Limits.h"

namespace varnpdf {
namespace {

constexpr std::uint64_t kBandBytes = std::uint64_t{1} << 20U;  // rows are converted and compressed by the megabyte

bool refuse(TIFF* tif, const char* sentence) {
    logConversionError(TIFFFileName(tif), sentence);
    return false;
}

// Rows that are stored as they are shown, in strips; converted here, which is faster than by way of RGBA.
class StripReader {
public:
    StripReader(TIFF* tif, const TiffShape& shape, const RowConverter& converter)
        : tif_(tif),
          shape_(&shape),
          converter_(&converter),
          stride_(static_cast<std::uint64_t>(TIFFScanlineSize64(tif))) {}

    bool read(const RowSink& sink) {
        if (stride_ < converter_->rowBytes() || stride_ > limits::kImagePieceBytes) {
            return refuse(tif_, "rows have another length than their samples");
        }
        std::uint32_t rowsPerStrip = shape_->height;
        TIFFGetFieldDefaulted(tif_, TIFFTAG_ROWSPERSTRIP, &rowsPerStrip);
        rowsPerStrip = std::clamp<std::uint32_t>(rowsPerStrip, 1, shape_->height);
        // Whole strips are decoded faster; a long one is taken row by row.
        const bool whole = stride_ * rowsPerStrip <= 16 * kBandBytes;
        const std::uint64_t longest = std::max<std::uint64_t>(stride_, std::uint64_t{3} * shape_->width);
        const auto bandRows =
            static_cast<std::uint32_t>(std::clamp<std::uint64_t>(kBandBytes / longest, 1, shape_->height));
        const std::uint32_t step = whole ? rowsPerStrip : bandRows;
        stored_.resize(stride_ * step);
        for (std::uint32_t row = 0; row < shape_->height; row += step) {
            const std::uint32_t count = std::min(step, shape_->height - row);
            if (!(whole ? strip(row, count) : lines(row, count))) return false;
            if (!converted(count, bandRows, sink)) return false;
        }
        return true;
    }

private:
    bool strip(std::uint32_t row, std::uint32_t count) {
        const auto size = static_cast<tmsize_t>(stride_ * count);
        return TIFFReadEncodedStrip(tif_, TIFFComputeStrip(tif_, row, 0), stored_.data(), size) == size;
    }
    bool lines(std::uint32_t row, std::uint32_t count) {
        for (std::uint32_t i = 0; i < count; ++i) {
            if (TIFFReadScanline(tif_, stored_.data() + stride_ * i, row + i, 0) != 1) return false;
        }
        return true;
    }
    bool converted(std::uint32_t count, std::uint32_t bandRows, const RowSink& sink) {
        const std::size_t rgbRow = std::size_t{3} * shape_->width;
        for (std::uint32_t first = 0; first < count; first += bandRows) {
            const std::uint32_t rows = std::min(bandRows, count - first);
            rgb_.resize(rgbRow * rows);
            for (std::uint32_t i = 0; i < rows; ++i) {
                converter_->convert(stored_.data() + stride_ * (first + i), rgb_.data() + rgbRow * i);
            }
            if (!sink(rgb_)) return false;
        }
        return true;
    }

    TIFF* tif_;
    const TiffShape* shape_;
    const RowConverter* converter_;
    std::uint64_t stride_;
    std::vector<unsigned char> stored_;
    std::string rgb_;
};

// Bytes of an uncompressed tile. libtiff compares the size of its read buffer with that of the tile, but rounds the
// buffer it makes itself up to a kilobyte.
class TileBuffer {
public:
    explicit TileBuffer(TIFF* tif) : tif_(tif) {
        std::uint16_t compression = COMPRESSION_NONE;
        TIFFGetFieldDefaulted(tif, TIFFTAG_COMPRESSION, &compression);
        if (TIFFIsTiled(tif) == 0 || compression != COMPRESSION_NONE) return;
        const std::uint64_t size = TIFFTileSize64(tif);
        if (size == 0 || size > limits::kImagePieceBytes) return;
        bytes_ = std::make_unique_for_overwrite<unsigned char[]>(size);
        TIFFReadBufferSetup(tif, bytes_.get(), static_cast<tmsize_t>(size));
    }
    TileBuffer(const TileBuffer&) = delete;
    TileBuffer& operator=(const TileBuffer&) = delete;
    ~TileBuffer() {
        if (bytes_) TIFFReadBufferSetup(tif_, nullptr, 1);  // one of libtiff's own again
    }

private:
    TIFF* tif_;
    std::unique_ptr<unsigned char[]> bytes_;
};

// libtiff's own conversion, for everything else: tiles, separate planes, YCbCr, CIE L*a*b*, LogLuv.
class RgbaReader {
public:
    RgbaReader(TIFF* tif, const TiffShape& shape) : tif_(tif), shape_(&shape) {}
    RgbaReader(const RgbaReader&) = delete;
    RgbaReader& operator=(const RgbaReader&) = delete;
    ~RgbaReader() {
        if (begun_) TIFFRGBAImageEnd(&image_);
    }

    bool read(const RowSink& sink) {
        char message[1024] = {};
        if (TIFFRGBAImageOK(tif_, message) == 0) return refuse(tif_, message);
        if (TIFFRGBAImageBegin(&image_, tif_, 1, message) == 0) return refuse(tif_, message);
        begun_ = true;
        image_.req_orientation = image_.orientation;  // the page turns the image, not we
        std::uint16_t count = 0;
        std::uint16_t* kinds = nullptr;
        TIFFGetFieldDefaulted(tif_, TIFFTAG_EXTRASAMPLES, &count, &kinds);
        transparent_ = count > 0 && kinds[0] != EXTRASAMPLE_UNSPECIFIED;

        const std::uint64_t rows = bandRows();
        if (rows * shape_->width * sizeof(std::uint32_t) > limits::kImagePieceBytes) {
            return refuse(tif_, "a strip or tile is too large");
        }
        raster_.resize(rows * shape_->width);
        const TileBuffer buffer(tif_);
        for (std::uint64_t row = 0; row < shape_->height; row += rows) {
            const auto now = static_cast<std::uint32_t>(std::min<std::uint64_t>(rows, shape_->height - row));
            image_.row_offset = static_cast<int>(row);
            image_.col_offset = 0;
            if (TIFFRGBAImageGet(&image_, raster_.data(), shape_->width, now) == 0) return false;
            if (!sink(packed(std::size_t{now} * shape_->width))) return false;
        }
        return true;
    }

private:
    // Whole strips or tiles, so that none is decoded twice.
    std::uint64_t bandRows() {
        std::uint32_t unit = 0;
        if (TIFFIsTiled(tif_) != 0)
            TIFFGetField(tif_, TIFFTAG_TILELENGTH, &unit);
        else
            TIFFGetFieldDefaulted(tif_, TIFFTAG_ROWSPERSTRIP, &unit);
        unit = std::clamp<std::uint32_t>(unit, 1, shape_->height);
        const std::uint64_t unitBytes = std::uint64_t{unit} * shape_->width * sizeof(std::uint32_t);
        return unit * std::max<std::uint64_t>(kBandBytes / unitBytes, 1);
    }
    // Colours come multiplied by their opacity; what is missing lets white through.
    std::string_view packed(std::size_t pixels) {
        rgb_.resize(3 * pixels);
        char* to = rgb_.data();
        for (std::size_t i = 0; i < pixels; ++i) {
            const std::uint32_t pixel = raster_[i];
            const std::uint32_t white = transparent_ ? 255 - TIFFGetA(pixel) : 0;
            *to++ = static_cast<char>(std::min<std::uint32_t>(TIFFGetR(pixel) + white, 255));
            *to++ = static_cast<char>(std::min<std::uint32_t>(TIFFGetG(pixel) + white, 255));
            *to++ = static_cast<char>(std::min<std::uint32_t>(TIFFGetB(pixel) + white, 255));
        }
        return rgb_;
    }

    TIFF* tif_;
    const TiffShape* shape_;
    TIFFRGBAImage image_{};
    bool begun_ = false;
    bool transparent_ = false;
    std::vector<std::uint32_t> raster_;
    std::string rgb_;
};

}  // namespace

TiffShape shapeOf(TIFF* tif) {
    TiffShape shape;
    if (TIFFGetField(tif, TIFFTAG_IMAGEWIDTH, &shape.width) != 1) return {};
    if (TIFFGetField(tif, TIFFTAG_IMAGELENGTH, &shape.height) != 1) return {};
    const bool fits = shape.width <= limits::kImageSide && shape.height <= limits::kImageSide &&
                      std::uint64_t{shape.width} * shape.height <= limits::kImagePixels;
    return fits ? shape : TiffShape{};
}

bool readRows(TIFF* tif, const TiffShape& shape, const RowSink& sink) {
    if (const auto converter = RowConverter::of(tif, shape.width)) {
        return StripReader(tif, shape, *converter).read(sink);
    }
    return RgbaReader(tif, shape).read(sink);
}

}  // namespace varnpdf
