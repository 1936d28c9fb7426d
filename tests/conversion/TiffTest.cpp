// TIFF files as documents: every kind of samples that libtiff reads, pages, geometry and damage.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <thread>
#include <vector>

#include "support/LogCapture.h"
#include "tests/conversion/Conversion.h"
#include "tests/conversion/TiffFiles.h"

using namespace varnpdf::test;

namespace {

class TiffKind : public testing::TestWithParam<Kind> {};

void expectColours(const Kind& kind) {
    const WorkDirectory work;
    ASSERT_EQ(convert(makeTiff(work, kind), work.at("out.pdf")), 0);
    expectSound(work, "out.pdf");
    const std::string pixels = streamOf(work.read("out.pdf"), 5);
    ASSERT_EQ(pixels.size(), 3U * kWidth * kHeight);
    for (unsigned i = 0; i < kWidth * kHeight; ++i) {
        const Colour expected = kind.rgb(i % kWidth, i / kWidth);
        for (unsigned c = 0; c < 3; ++c) {
            const int found = static_cast<unsigned char>(pixels[3 * i + c]);
            ASSERT_NEAR(found, expected[c], kind.tolerance) << "x " << i % kWidth << " y " << i / kWidth << " c " << c;
        }
    }
}

TEST_P(TiffKind, SamplesArrive) { expectColours(GetParam()); }

INSTANTIATE_TEST_SUITE_P(Kinds, TiffKind, testing::ValuesIn(kinds()), [](const auto& test) { return test.param.name; });

// libtiff reads them through a buffer whose size it checks against that of the tile.
TEST(Tiff, UncompressedPiecesMayHaveAnySize) {
    for (const char* const name : {"BlackIsZero", "Grey8Inverted", "Rgb", "RgbPlanes", "Rgb16", "Cmyk"}) {
        for (const unsigned tile : {0U, 16U, 32U, 48U, 80U, 240U}) {
            SCOPED_TRACE(testing::Message() << name << " in tiles of " << tile);
            Kind kind = kindNamed(name);
            kind.compression = COMPRESSION_NONE;
            kind.tile = tile;
            kind.tolerance = 1;
            expectColours(kind);
        }
    }
}

struct Place {
    const char* name;
    int orientation;
    float across;
    float down;
    int unit;
    std::string box;  // width, height
    std::string matrix;
};

// 37 x 21 samples at 37 x 42 dots per inch are a page of 72 x 36 points.
const Place kPlaces[] = {
    {"Plain", 1, 37, 42, RESUNIT_INCH, "72.00 36.00", "72.00 0 0 36.00 0 0"},
    {"TopRight", 2, 37, 42, RESUNIT_INCH, "72.00 36.00", "-72.00 0 0 36.00 72.00 0"},
    {"BottomRight", 3, 37, 42, RESUNIT_INCH, "72.00 36.00", "-72.00 0 0 -36.00 72.00 36.00"},
    {"BottomLeft", 4, 37, 42, RESUNIT_INCH, "72.00 36.00", "72.00 0 0 -36.00 0 36.00"},
    {"LeftTop", 5, 37, 42, RESUNIT_INCH, "36.00 72.00", "0 -72.00 -36.00 0 36.00 72.00"},
    {"RightTop", 6, 37, 42, RESUNIT_INCH, "36.00 72.00", "0 -72.00 36.00 0 0 72.00"},
    {"RightBottom", 7, 37, 42, RESUNIT_INCH, "36.00 72.00", "0 72.00 36.00 0 0 0"},
    {"LeftBottom", 8, 37, 42, RESUNIT_INCH, "36.00 72.00", "0 72.00 -36.00 0 36.00 0"},
    {"Centimetres", 1, 100, 100, RESUNIT_CENTIMETER, "10.49 5.95", "10.49 0 0 5.95 0 0"},
    {"ShapeOnly", 1, 2, 1, RESUNIT_NONE, "8.88 10.08", "8.88 0 0 10.08 0 0"},
    {"Absent", 1, -1, -1, RESUNIT_INCH, "8.88 5.04", "8.88 0 0 5.04 0 0"},
    {"Tiny", 1, 1, 1, RESUNIT_INCH, "8.88 5.04", "8.88 0 0 5.04 0 0"},
    {"Huge", 1, 300, 1e9F, RESUNIT_INCH, "8.88 5.04", "8.88 0 0 5.04 0 0"},
};

TEST(Tiff, TagsMakeThePage) {
    for (const Place& place : kPlaces) {
        const WorkDirectory work;
        const auto tags = [&](TIFF* tif) {
            TIFFSetField(tif, TIFFTAG_ORIENTATION, place.orientation);
            if (place.across < 0) return;
            TIFFSetField(tif, TIFFTAG_XRESOLUTION, place.across);
            TIFFSetField(tif, TIFFTAG_YRESOLUTION, place.down);
            TIFFSetField(tif, TIFFTAG_RESOLUTIONUNIT, place.unit);
        };
        for (const char* const kind : {"Rgb", "RgbTiles"}) {  // both ways of reading leave turning to the page
            ASSERT_EQ(convert(makeTiff(work, kindNamed(kind), 1, tags), work.at("out.pdf")), 0);
            const std::string pdf = work.read("out.pdf");
            EXPECT_EQ(objectText(pdf, 4),
                      "4 0 obj\r\n<< \r\n/Type /Page \r\n/Resources << /XObject << /I-0 5 0 R >> "
                      "/ProcSet [/PDF /ImageC] >> \r\n/MediaBox [0 0 " +
                          place.box + "] \r\n/Parent 3 0 R \r\n/Contents 6 0 R \r\n>>\r\nendobj")
                << place.name;
            EXPECT_EQ(streamOf(pdf, 6), "q\n" + place.matrix + " cm\n/I-0 Do\nQ\n") << place.name;
            EXPECT_EQ(streamOf(pdf, 5), stored(kindNamed("Rgb"), 0, 0, kWidth, kHeight, -1)) << place.name;
        }
    }
}

TEST(Tiff, EachDirectoryBecomesAPage) {
    const WorkDirectory work;
    for (const char* const mode : {"wl", "wb", "w8"}) {
        ASSERT_EQ(convert(makeTiff(work, kindNamed("Grey8"), 3, {}, mode), work.at("out.pdf")), 0);
        expectSound(work, "out.pdf");
        const std::string pdf = work.read("out.pdf");
        EXPECT_EQ(pdf.substr(0, pdf.find("4 0 obj")),
                  "%PDF-1.2\r\n%\xE2\xE3\xCF\xD3\r\n1 0 obj\r\n<<\r\n/Producer (varnpdf TIFF converter 1.0.3)\r\n"
                  "/Creator (https://varnpdf.example)\r\n>>\r\nendobj\r\n"
                  "2 0 obj\r\n<<\r\n/Type /Catalog\r\n /Pages 3 0 R\r\n>>\r\nendobj\r\n"
                  "3 0 obj\r\n<< \r\n/Type /Pages \r\n/Kids [4 0 R 7 0 R 10 0 R] \r\n/Count 3 \r\n>>\r\nendobj\r\n");
        EXPECT_EQ(objectText(pdf, 11).substr(0, objectText(pdf, 11).find("/Length")),
                  "11 0 obj\r\n<< /Type /XObject /Subtype /Image /Name /I-2 /Width 37 /Height 21 /BitsPerComponent 8 "
                  "/Filter /FlateDecode /ColorSpace /DeviceRGB ");
        EXPECT_EQ(streamOf(pdf, 12), "q\n8.88 0 0 5.04 0 0 cm\n/I-2 Do\nQ\n");
    }
    TIFF* const tif = TIFFOpen(work.at("in.tif").c_str(), "r");
    std::FILE* const file = std::fopen(work.at("framed").c_str(), "wb");
    EXPECT_EQ(ConvertTIFF(tif, file), 0);
    std::fclose(file);
    TIFFClose(tif);
    EXPECT_EQ(work.read("framed"), work.read("out.pdf"));
}

/// Where the link behind the directories of a classic little-endian file stands, by page.
std::vector<std::size_t> links(const std::string& tiff) {
    const auto number = [&](std::size_t at, std::size_t size) {
        std::size_t value = 0;
        for (std::size_t i = size; i-- > 0;) value = value << 8U | static_cast<unsigned char>(tiff[at + i]);
        return value;
    };
    std::vector<std::size_t> out;
    for (std::size_t at = number(4, 4); at != 0; at = number(out.back(), 4)) {
        out.push_back(at + 2 + 12 * number(at, 2));
    }
    return out;
}

TEST(Tiff, DamageIsRefusedAndLoopsEnd) {
    const WorkDirectory work;
    makeTiff(work, kindNamed("RgbDeflate"), 3);
    const std::string good = work.read("in.tif");
    const std::size_t last = links(good).back();
    const auto result = [&](const std::string& bytes) {
        return convert(work.write("bad.tif", bytes), work.at("x.pdf"));
    };
    EXPECT_EQ(result(std::string(good).replace(last, 4, good, 4, 4)), 0);  // back to the first
    EXPECT_NE(work.read("x.pdf").find("/Count 3 "), std::string::npos);
    std::filesystem::remove(work.at("x.pdf"));

    const LogCapture log("VarnPDF.VarnImage");
    EXPECT_EQ(result(std::string(good).replace(last, 4, "\xFF\xFF\xFF\x7F")), -601);  // a page that is not there
    EXPECT_EQ(result(good.substr(0, good.size() - 20)), -601);
    EXPECT_EQ(result(good.substr(0, 8)), -601);
    EXPECT_EQ(result(std::string(good).replace(good.find("\x78\x9c"), 30, 30, 'z')), -601);
    EXPECT_FALSE(log.messages().empty());
    EXPECT_EQ(work.files(), 2) << "nothing is left of a refused file";
}

constexpr const char* kTooLarge = ": a page has no size, or the pages are too large";
constexpr const char* kOverlap = ": a directory cannot be read, or the directories overlap";

struct Entry {
    std::uint16_t tag;
    std::uint16_t type;
    std::uint32_t count;
    std::uint32_t value;
};

std::string littleEndian(std::uint32_t number, int bytes) {
    std::string out;
    for (int i = 0; i < bytes; ++i) out.push_back(static_cast<char>(number >> (8 * i) & 255U));
    return out;
}

// `data` bytes at offset 8, and directories of one kind behind them: all share them.
std::string sharingTiff(const std::vector<Entry>& entries, unsigned pages, std::uint32_t data) {
    std::string out = "II*" + std::string(1, '\0') + littleEndian(8 + data, 4) + std::string(data, 'z');
    for (unsigned page = 1; page <= pages; ++page) {
        out += littleEndian(static_cast<std::uint32_t>(entries.size()), 2);
        for (const Entry& entry : entries) {
            out += littleEndian(entry.tag, 2) + littleEndian(entry.type, 2) + littleEndian(entry.count, 4);
            out += littleEndian(entry.value, 4);
        }
        out += littleEndian(page < pages ? static_cast<std::uint32_t>(out.size()) + 4 : 0, 4);
    }
    return out;
}

// Small files that ask for much, by their size or by naming the same bytes again and again.
TEST(Tiff, WorkIsBounded) {
    constexpr std::uint32_t kLong = 1'000'000;
    const auto grey = [](std::uint32_t width, std::uint32_t height, Entry last, std::uint32_t counts = 8) {
        const std::uint32_t strips = last.tag == TIFFTAG_ROWSPERSTRIP ? height / last.value : 1;
        const std::uint32_t listed = std::min(strips, 20U);  // libtiff makes up the rest
        return std::vector<Entry>{{TIFFTAG_IMAGEWIDTH, 4, 1, width},
                                  {TIFFTAG_IMAGELENGTH, 4, 1, height},
                                  {TIFFTAG_BITSPERSAMPLE, 3, 1, 8},
                                  {TIFFTAG_COMPRESSION, 3, 1, COMPRESSION_ADOBE_DEFLATE},
                                  {TIFFTAG_PHOTOMETRIC, 3, 1, PHOTOMETRIC_MINISBLACK},
                                  {TIFFTAG_STRIPOFFSETS, 4, listed, 8},
                                  last,
                                  {TIFFTAG_STRIPBYTECOUNTS, 4, listed, counts}};
    };
    std::vector<Entry> tile = grey(1, 1, {TIFFTAG_TILEWIDTH, 4, 1, 16'000});
    tile.erase(tile.begin() + 5);
    tile.insert(tile.end() - 1, {{TIFFTAG_TILELENGTH, 4, 1, 16'000}, {TIFFTAG_TILEOFFSETS, 4, 1, 8}});
    tile.back().tag = TIFFTAG_TILEBYTECOUNTS;
    std::vector<Entry> palette = grey(16'384, 16'384, {TIFFTAG_ROWSPERSTRIP, 4, 1, 16'384});
    palette[2].value = 1;
    palette[4].value = PHOTOMETRIC_PALETTE;
    palette.push_back({TIFFTAG_COLORMAP, 3, 6, 8});
    std::vector<Entry> profile = grey(1, 1, {TIFFTAG_ROWSPERSTRIP, 4, 1, 1});
    profile.push_back({TIFFTAG_ICCPROFILE, 7, kLong, 8});
    const auto sized = [&](std::uint32_t width, std::uint32_t height, unsigned pages, std::uint32_t bits = 8) {
        std::vector<Entry> entries = grey(width, height, {TIFFTAG_ROWSPERSTRIP, 4, 1, height});
        entries[2].value = bits;
        return sharingTiff(entries, pages, 100);
    };
    const struct {
        const char* name;
        std::string bytes;
        bool bounded = true;  // refused before any work; the data is none in any case
    } kinds[] = {
        {"too wide", sized(1'000'001, 1, 1)},
        {"too high", sized(1, 1'000'001, 1)},
        {"too many pixels", sized(20'000, 20'000, 1)},
        {"both sides", sized(999'999, 999'999, 1)},
        {"pages of a good size", sized(8000, 8000, 2), false},
        {"pages that are too large together", sized(8000, 8000, 6)},
        {"black and white pages", sized(8000, 8000, 6, 1), false},
        {"too many black and white pages", sized(8000, 8000, 50, 1)},
        {"samples that are not shown", sharingTiff(grey(4000, 4, {TIFFTAG_SAMPLESPERPIXEL, 3, 1, 65'000}), 1, 100)},
        {"strips of one byte", sharingTiff(grey(1, 1'000'000, {TIFFTAG_ROWSPERSTRIP, 4, 1, 1}), 1, 100)},
        {"bytes of strips", sharingTiff(grey(1, 1, {TIFFTAG_ROWSPERSTRIP, 4, 1, 1}, kLong), 300, kLong)},
        {"tiles of one pixel", sharingTiff(tile, 4, 100)},
        {"one bit to a palette", sharingTiff(palette, 2, 100)},
        {"values", sharingTiff(profile, 100, kLong)},
    };
    for (const auto& kind : kinds) {
        const WorkDirectory work;
        const LogCapture log("VarnPDF.VarnImage");
        EXPECT_EQ(convert(work.write("in.tif", kind.bytes), work.at("out.pdf")), -601) << kind.name;
        const std::string in = work.at("in.tif");
        EXPECT_EQ(log.has(in + kTooLarge) || log.has(in + kOverlap), kind.bounded) << kind.name;
    }
}

// Each directory begins twelve bytes, the length of an entry, behind the one before it.
TEST(Tiff, DirectoriesDoNotOverlap) {
    constexpr std::uint32_t kEntries = 100;
    constexpr std::uint16_t kTags[][2] = {
        {TIFFTAG_IMAGEWIDTH, 1},  {TIFFTAG_IMAGELENGTH, 1},  {TIFFTAG_BITSPERSAMPLE, 8}, {TIFFTAG_COMPRESSION, 1},
        {TIFFTAG_PHOTOMETRIC, 1}, {TIFFTAG_STRIPOFFSETS, 8}, {TIFFTAG_ROWSPERSTRIP, 1},  {TIFFTAG_STRIPBYTECOUNTS, 1}};
    for (const std::uint32_t directories : {1U, 50U}) {
        std::string bytes = "II*" + std::string(1, '\0') + littleEndian(10, 4) + std::string(2, '\0');
        for (std::uint32_t unit = 0; unit < kEntries + directories; ++unit) {
            bytes += littleEndian(kEntries, 2);
            if (unit >= kEntries) {
                const std::uint32_t next = unit - kEntries + 1;
                bytes += littleEndian(next < directories ? 10 + 12 * next : 0, 4) + std::string(6, '\0');
                continue;
            }
            const auto& tag = kTags[std::min<std::size_t>(unit > 60 ? unit - 60 : 0, std::size(kTags) - 1)];
            bytes += littleEndian(tag[0], 2) + littleEndian(3, 2) + littleEndian(1, 4) + littleEndian(tag[1], 2);
        }
        const WorkDirectory work;
        const LogCapture log("VarnPDF.VarnImage");
        const int code = convert(work.write("in.tif", bytes), work.at("out.pdf"));
        EXPECT_EQ(code, directories == 1 ? 0 : -601);
        EXPECT_EQ(log.has(work.at("in.tif") + kOverlap), directories > 1);
    }
}

int warnings = 0;
void countWarnings(const char*, const char*, std::va_list) { ++warnings; }

TEST(Tiff, HandlersOfTheHostReturn) {
    const WorkDirectory work;
    const std::string in = makeTiff(work, kindNamed("Rgb"));
    const TIFFErrorHandler errors = TIFFSetErrorHandler(countWarnings);
    const TIFFErrorHandler before = TIFFSetWarningHandler(countWarnings);
    std::vector<std::thread> threads;
    std::array<int, 4> codes{};
    for (std::size_t i = 0; i < codes.size(); ++i) {
        threads.emplace_back([&, i] {
            for (int turn = 0; turn < 20; ++turn) codes[i] += convert(in, work.at("out" + std::to_string(i)));
            codes[i] += convert(work.write("bad" + std::to_string(i) + ".tif", "bad"), work.at("x")) == -601 ? 0 : 1;
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(codes, (std::array<int, 4>{}));
    EXPECT_EQ(TIFFSetErrorHandler(errors), countWarnings);
    EXPECT_EQ(TIFFSetWarningHandler(before), countWarnings);
    EXPECT_EQ(warnings, 0);
}

}  // namespace
