// A TIFF as a document, one page for each directory.
#include "conversion/TiffDocument.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <optional>
#include <unordered_set>
#include <vector>

#include "conversion/Deflater.h"
#include "conversion/TiffMessages.h"
#include "conversion/TiffRows.h"
#include "conversion/TiffSamples.h"
#include "varnpdf/result.h"

namespace varnpdf {
namespace {

constexpr int kHeadObjects = 3;  // information, catalogue, pages; each page has three more
constexpr double kScannedDots = 300;
constexpr long long kLargestPage = 1'440'000;  // hundredths of a point (ISO 32000-1 annex C)

bool isSane(double dots) { return dots >= 20 && dots <= 10'000; }

struct Dots {
    double across = kScannedDots;
    double down = kScannedDots;
};

// Dots per inch. Without a unit the two numbers tell only the shape of a pixel (TIFF 6.0, ResolutionUnit).
Dots dotsOf(TIFF* tif) {
    float across = 0;
    float down = 0;
    std::uint16_t unit = RESUNIT_INCH;
    if (TIFFGetField(tif, TIFFTAG_XRESOLUTION, &across) != 1) return {};
    if (TIFFGetField(tif, TIFFTAG_YRESOLUTION, &down) != 1) return {};
    TIFFGetFieldDefaulted(tif, TIFFTAG_RESOLUTIONUNIT, &unit);
    const double inches = unit == RESUNIT_CENTIMETER ? 2.54 : 1;
    const Dots dots{across * inches, down * inches};
    if (unit != RESUNIT_NONE) return isSane(dots.across) && isSane(dots.down) ? dots : Dots{};
    const double shape = across > 0 && down > 0 ? static_cast<double>(down) / across : 1;
    return shape > 0.1 && shape < 10 ? Dots{kScannedDots, kScannedDots * shape} : Dots{};
}

std::uint64_t readNumber(const unsigned char* bytes, std::size_t size, bool bigEndian) {
    std::uint64_t number = 0;
    for (std::size_t i = 0; i < size; ++i) number = number << 8U | bytes[bigEndian ? i : size - 1 - i];
    return number;
}

bool readAt(TIFF* tif, std::uint64_t offset, unsigned char* to, std::size_t size) {
    const auto seek = TIFFGetSeekProc(tif);
    const auto read = TIFFGetReadProc(tif);
    const thandle_t handle = TIFFClientdata(tif);
    return seek(handle, offset, SEEK_SET) == offset &&
           read(handle, to, static_cast<tmsize_t>(size)) == static_cast<tmsize_t>(size);
}

struct Directory {
    std::uint64_t bytes = 0;       ///< of itself
    std::uint64_t valueBytes = 0;  ///< of the values that its entries name
    std::uint64_t next = 0;        ///< where the one behind stands, 0 for none
};

/// The directories as they stand in the file. libtiff does not tell a chain that leads back from one that leads nowhere,
/// and reads a directory in time that grows with the square of its entries.
class DirectoryChain {
public:
    explicit DirectoryChain(TIFF* tif) : tif_(tif), fileBytes_(TIFFGetSizeProc(tif)(TIFFClientdata(tif))) {}

    /// The offsets in order. One seen before ends the chain; nothing when a directory cannot be read, or when they
    /// overlap, are too many or name too much.
    std::optional<std::vector<std::uint64_t>> offsets() {
        unsigned char head[16];
        if (!readAt(tif_, 0, head, 8)) return {};
        bigEndian_ = head[0] == 'M';
        big_ = readNumber(head + 2, 2, bigEndian_) == 43;
        if (big_ && !readAt(tif_, 8, head + 8, 8)) return {};
        std::vector<std::uint64_t> offsets;
        std::unordered_set<std::uint64_t> seen;
        std::uint64_t next = big_ ? readNumber(head + 8, 8, bigEndian_) : readNumber(head + 4, 4, bigEndian_);
        std::uint64_t room = fileBytes_;
        std::uint64_t valueRoom = limits::kImageBytesBase / kValueWork + fileBytes_ * kValueShares;
        while (next != 0 && seen.insert(next).second) {
            const std::optional<Directory> directory = at(next);
            if (!directory || directory->bytes > room || directory->valueBytes > valueRoom) return {};
            room -= directory->bytes;
            valueRoom -= directory->valueBytes;
            offsets.push_back(next);
            if (offsets.size() > kMost) return {};
            next = directory->next;
        }
        return offsets;
    }

private:
    static constexpr std::size_t kMost = (limits::kDeclaredSize - kHeadObjects - 1) / 3;
    static constexpr std::uint64_t kMostEntries = 4096;  // libtiff reads no more
    static constexpr std::uint64_t kValueWork = 20;      // a byte of a value, in samples
    static constexpr std::uint64_t kValueShares = 50;    // directories may share what is large, a colour profile

    std::optional<Directory> at(std::uint64_t offset) {
        unsigned char number[8];
        const std::size_t countSize = big_ ? 8 : 2;
        if (!readAt(tif_, offset, number, countSize)) return {};
        const std::uint64_t count = readNumber(number, countSize, bigEndian_);
        if (count > kMostEntries) return {};
        const std::size_t entrySize = big_ ? 20 : 12;
        const std::size_t linkSize = big_ ? 8 : 4;
        room_.resize(count * entrySize + linkSize);
        if (!readAt(tif_, offset + countSize, room_.data(), room_.size())) return {};
        Directory directory{.bytes = countSize + room_.size()};
        for (std::size_t i = 0; i < count; ++i) {
            const unsigned char* const entry = room_.data() + i * entrySize;
            const std::uint64_t values = readNumber(entry + 4, linkSize, bigEndian_);
            const auto type = static_cast<TIFFDataType>(readNumber(entry + 2, 2, bigEndian_));
            // A longer value cannot be read.
            if (values <= fileBytes_) directory.valueBytes += values * static_cast<unsigned>(TIFFDataWidth(type));
        }
        directory.next = readNumber(room_.data() + count * entrySize, linkSize, bigEndian_);
        return directory;
    }

    TIFF* tif_;
    std::uint64_t fileBytes_;
    bool bigEndian_ = false;
    bool big_ = false;
    std::vector<unsigned char> room_;
};

/// Bytes that must be gone through for the current directory, 0 when it has no size. Counted are the samples, what its
/// strips or tiles unfold to, which is more when most samples are not shown, and what is read for them: strips may share
/// their bytes in the file.
std::uint64_t workOn(TIFF* tif, std::uint64_t fileBytes) {
    constexpr std::uint64_t kPieceWork = 2000;  // beginning a strip or tile takes as long as so many samples
    constexpr std::uint64_t kReadWork = 20;     // a byte that is read
    constexpr std::uint64_t kMostPlanes = 5;
    constexpr std::uint64_t kBilevelShare = 8;  // black and white packs so many times faster than colours
    const TiffShape shape = shapeOf(tif);
    if (shape.rgbBytes() == 0) return 0;
    std::uint16_t samples = 1;
    std::uint16_t planar = PLANARCONFIG_CONTIG;
    TIFFGetFieldDefaulted(tif, TIFFTAG_SAMPLESPERPIXEL, &samples);
    TIFFGetFieldDefaulted(tif, TIFFTAG_PLANARCONFIG, &planar);
    const bool tiled = TIFFIsTiled(tif) != 0;
    const std::uint64_t pieces = tiled ? TIFFNumberOfTiles(tif) : TIFFNumberOfStrips(tif);
    const std::uint64_t planes = planar == PLANARCONFIG_SEPARATE ? std::min<std::uint64_t>(samples, kMostPlanes) : 1;
    const std::uint64_t unit =
        std::min<std::uint64_t>(tiled ? TIFFTileSize64(tif) : TIFFScanlineSize64(tif), limits::kImagePieceBytes);
    const std::uint64_t unfolded = unit * (tiled ? pieces : shape.height * planes);
    const auto converter = RowConverter::of(tif, shape.width);
    const std::uint64_t shown =
        converter && converter->isBilevel() ? shape.rgbBytes() / kBilevelShare : shape.rgbBytes();
    std::uint64_t work = std::max({shown, unfolded, std::uint64_t{1}}) + pieces * kPieceWork;
    if (work > limits::kImageBytesBase + limits::kImageBytesPerByte * fileBytes) return work;
    for (std::uint64_t i = 0; i < pieces; ++i) {
        work += std::min(TIFFGetStrileByteCount(tif, static_cast<std::uint32_t>(i)), fileBytes) * kReadWork;
    }
    return work;
}

class TiffWriter {
public:
    TiffWriter(ObjectFile& out, TIFF* tif) : out_(&out), tif_(tif) {}

    int write() {
        const auto offsets = DirectoryChain(tif_).offsets();
        if (!offsets) {
            logConversionError(TIFFFileName(tif_), "a directory cannot be read, or the directories overlap");
            return VARNPDF_TIFF_UNREADABLE;
        }
        if (!isBounded(*offsets)) return VARNPDF_TIFF_UNREADABLE;
        putHead(offsets->size());
        for (std::size_t i = 0; i < offsets->size(); ++i) {
            if (TIFFSetSubDirectory(tif_, (*offsets)[i]) != 1) return VARNPDF_TIFF_UNREADABLE;
            if (const int code = putPage(static_cast<int>(i)); code != 0) return code;
        }
        putFoot();
        return out_->flush() ? VARNPDF_OK : VARNPDF_CONVERT_WRITE;
    }

private:
    // Before any work is done on the first page.
    bool isBounded(const std::vector<std::uint64_t>& offsets) {
        const auto fileBytes = static_cast<std::uint64_t>(TIFFGetSizeProc(tif_)(TIFFClientdata(tif_)));
        std::uint64_t left = limits::kImageBytesBase + limits::kImageBytesPerByte * fileBytes;
        for (const std::uint64_t offset : offsets) {
            if (TIFFSetSubDirectory(tif_, offset) != 1) return false;
            const std::uint64_t work = workOn(tif_, fileBytes);
            if (work == 0 || work > left) {
                logConversionError(TIFFFileName(tif_), "a page has no size, or the pages are too large");
                return false;
            }
            left -= work;
        }
        return true;
    }

    void putHead(std::size_t pages) {
        out_->put("%PDF-1.2\r\n%\xE2\xE3\xCF\xD3\r\n");
        out_->startObject(1);
        out_->put("\r\n<<\r\n", "/Producer (varnpdf TIFF converter 1.0.3)\r\n", "/Creator (", kMaker, ")\r\n",
                  ">>\r\nendobj\r\n");
        out_->startObject(2);
        out_->put("\r\n<<\r\n/Type /Catalog\r\n /Pages 3 0 R\r\n>>\r\nendobj\r\n");
        out_->startObject(3);
        out_->put("\r\n<< \r\n/Type /Pages \r\n/Kids [");
        for (std::size_t i = 0; i < pages; ++i) out_->put(i > 0 ? " " : "", kHeadObjects + 1 + 3 * i, " 0 R");
        out_->put("] \r\n/Count ", pages, " \r\n>>\r\nendobj\r\n");
    }

    int putPage(int index) {
        const TiffShape shape = shapeOf(tif_);
        deflater_.startImage();
        bool fits = true;
        const bool read = readRows(tif_, shape, [&](std::string_view rows) {
            deflater_.addSamples(rows);
            fits = out_->position() + deflater_.size() <= limits::kDocumentBytes;
            return fits;
        });
        if (!fits) return VARNPDF_CONVERT_WRITE;
        if (!read) return VARNPDF_TIFF_UNREADABLE;
        putPageObjects(index, shape);
        return out_->good() ? VARNPDF_OK : VARNPDF_CONVERT_WRITE;
    }

    void putPageObjects(int index, const TiffShape& shape) {
        const TiffPage page = pageOf(tif_, shape.width, shape.height);
        const int number = kHeadObjects + 1 + 3 * index;
        out_->startObject(number);
        out_->put("\r\n<< \r\n/Type /Page \r\n", "/Resources << /XObject << /I-", index, ' ', number + 1,
                  " 0 R >> /ProcSet [/PDF /ImageC] >> \r\n", "/MediaBox [0 0 ", page.width, ' ', page.height, "] \r\n",
                  "/Parent 3 0 R \r\n", "/Contents ", number + 2, " 0 R \r\n", ">>\r\nendobj\r\n");
        std::string_view packed = deflater_.finish();
        out_->startObject(number + 1);
        out_->put("\r\n<< /Type /XObject /Subtype /Image /Name /I-", index, " /Width ", shape.width, " /Height ",
                  shape.height, " /BitsPerComponent 8 /Filter /FlateDecode /ColorSpace /DeviceRGB /Length ",
                  packed.size(), " >>\nstream\n");
        out_->putBytes(packed);
        out_->put("\r\nendstream\r\nendobj\r\n");
        packed = deflater_.whole(text("q\n", page.matrix, " cm\n/I-", index, " Do\nQ\n"));
        out_->startObject(number + 2);
        out_->put("\r\n<< /Filter [/FlateDecode] /Length ", packed.size(), " >>\nstream\n");
        out_->put(packed, "\r\nendstream\r\nendobj\r\n");
    }

    void putFoot() {
        const std::uint64_t table = out_->position();
        out_->putTable("xref\r\n0 ", " \r\n");
        out_->put("trailer\n", "<< /Size ", out_->size(), " /Info 1 0 R /Root 2 0 R /ID ", kIdentifier, " >>\n",
                  "startxref\n", table, "\n", "%%EOF\n");
    }

    ObjectFile* out_;
    TIFF* tif_;
    Deflater deflater_;
};

}  // namespace

TiffPage pageOf(TIFF* tif, std::uint32_t columns, std::uint32_t rows) {
    const Dots dots = dotsOf(tif);
    double width = columns * 7200.0 / dots.across;
    double height = rows * 7200.0 / dots.down;
    const double shrink = std::min(1.0, static_cast<double>(kLargestPage) / std::max(width, height));
    width = std::max(width * shrink, 1.0);
    height = std::max(height * shrink, 1.0);

    std::uint16_t orientation = ORIENTATION_TOPLEFT;
    TIFFGetFieldDefaulted(tif, TIFFTAG_ORIENTATION, &orientation);
    const bool turned = orientation >= ORIENTATION_LEFTTOP && orientation <= ORIENTATION_LEFTBOT;
    const Hundredths w{std::llround(turned ? height : width)};
    const Hundredths h{std::llround(turned ? width : height)};
    const Hundredths left{-w.value};
    const Hundredths down{-h.value};
    switch (orientation) {  // which side of the page the first row and the first column are
        case ORIENTATION_TOPRIGHT:
            return {w, h, text(left, " 0 0 ", h, ' ', w, " 0")};
        case ORIENTATION_BOTRIGHT:
            return {w, h, text(left, " 0 0 ", down, ' ', w, ' ', h)};
        case ORIENTATION_BOTLEFT:
            return {w, h, text(w, " 0 0 ", down, " 0 ", h)};
        case ORIENTATION_LEFTTOP:
            return {w, h, text("0 ", down, ' ', left, " 0 ", w, ' ', h)};
        case ORIENTATION_RIGHTTOP:
            return {w, h, text("0 ", down, ' ', w, " 0 0 ", h)};
        case ORIENTATION_RIGHTBOT:
            return {w, h, text("0 ", h, ' ', w, " 0 0 0")};
        case ORIENTATION_LEFTBOT:
            return {w, h, text("0 ", h, ' ', left, " 0 ", w, " 0")};
        default:
            return {w, h, text(w, " 0 0 ", h, " 0 0")};
    }
}

int putTiff(ObjectFile& out, TIFF* tif) { return TiffWriter(out, tif).write(); }

}  // namespace varnpdf
