// Converting images and text, each measured in the same run against the least work of the kind: copying the JPEG data,
// decoding the TIFF and compressing its samples, compressing the text.
#include <tiffio.h>
#include <unistd.h>
#include <zlib.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/Measure.h"
#include "varnpdf/Convert.h"

using namespace varnpdf::bench;

namespace {

constexpr double kCopyGoal = 1.5;
constexpr double kSamplesGoal = 1;
constexpr double kTextGoal = 1.3;

/// A directory of its own, removed at the end of the scope.
class Directory {
public:
    Directory() : path_(std::filesystem::temp_directory_path() / ("varnpdf-bench-" + std::to_string(getpid()))) {
        std::filesystem::create_directories(path_);
    }
    Directory(const Directory&) = delete;
    Directory& operator=(const Directory&) = delete;
    ~Directory() { std::filesystem::remove_all(path_); }
    [[nodiscard]] std::string at(const std::string& name) const { return (path_ / name).string(); }
    [[nodiscard]] Input write(const std::string& name, const std::string& bytes) const {
        std::ofstream(at(name), std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        return {at(name), bytes.size(), 1};
    }

private:
    std::filesystem::path path_;
};

double timeOfConversion(const Directory& work, const Input& input) {
    std::string in = input.path;
    std::string out = work.at("out.pdf");
    std::filesystem::remove(out);  // a file that replaces another waits for the disk
    int code = 0;
    const double time = milliseconds([&] { code = VarnImage(in.data(), out.data()); });
    if (code != 0) throw std::runtime_error("code " + std::to_string(code) + " for " + in);
    return time;
}

std::string readAll(const std::string& path) {
    std::string bytes(std::filesystem::file_size(path), '\0');
    std::ifstream(path, std::ios::binary).read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    return bytes;
}

std::size_t packedSize(const void* data, std::size_t size) {
    static std::vector<Bytef> room;
    uLongf packed = compressBound(size);
    room.resize(std::max<std::size_t>(room.size(), packed));
    compress(room.data(), &packed, static_cast<const Bytef*>(data), size);
    return packed;
}

void noteSpeed(Row& row, double megabytes, const char* what) {
    row.note = std::to_string(static_cast<int>(megabytes / row.ms * 1000)) + " MB of " + what + " per second";
    summary().push_back(row);
}

void convertJpeg(benchmark::State& state) {
    const Directory work;
    const std::string head("\xFF\xD8\xFF\xC0\x00\x11\x08\x0D\xB4\x09\xB0\x03\x01\x22\x00\x02\x11\x01\x03\x11\x01", 21);
    const Input input = work.write("in.jpg", head + std::string(8'000'000, 'x'));
    const auto copy = [&] {
        std::filesystem::remove(work.at("copy"));
        return milliseconds([&] {
            const std::unique_ptr<std::FILE, int (*)(std::FILE*)> in(std::fopen(input.path.c_str(), "rb"), std::fclose);
            const std::unique_ptr<std::FILE, int (*)(std::FILE*)> out(std::fopen(work.at("copy").c_str(), "wb"),
                                                                      std::fclose);
            std::vector<char> block(std::size_t{128} << 10U);
            std::setvbuf(in.get(), nullptr, _IONBF, 0);
            std::setvbuf(out.get(), nullptr, _IONBF, 0);
            for (std::size_t count = 1; count > 0;) {
                count = std::fread(block.data(), 1, block.size(), in.get());
                if (std::fwrite(block.data(), 1, count, out.get()) != count) throw std::runtime_error("no copy");
            }
        });
    };
    Row row = measure(
        state, "convert JPEG, 8 MB", input, copy, [&] { return timeOfConversion(work, input); }, kCopyGoal);
    noteSpeed(row, 8, "JPEG data");
}

/// Pages of lines of short black strokes, or of a colour scan: a gradient with noise.
Input makeTiff(const Directory& work, bool colour, unsigned width, unsigned height, int pages) {
    const std::string path = work.at("in.tif");
    const std::unique_ptr<TIFF, void (*)(TIFF*)> tif(TIFFOpen(path.c_str(), "w"), TIFFClose);
    std::mt19937 random(11);
    const std::size_t stride = colour ? std::size_t{3} * width : (width + 7) / 8;
    std::vector<unsigned char> rows(stride * height);
    for (int page = 0; page < pages; ++page) {
        for (std::size_t i = 0; i < rows.size(); ++i) {
            const std::size_t y = i / stride;
            const bool inLine = y % 50 < 30 && i % stride > 30 && i % stride < stride - 30;
            const unsigned grain = random() & 7U;
            rows[i] = static_cast<unsigned char>(colour ? y / 16 + i % stride / 32 + grain : 0U);
            if (!colour && inLine && y % 50 % 6 > 0)
                rows[i] = rows[i - stride];
            else if (!colour && inLine)
                rows[i] = static_cast<unsigned char>(grain < 4 ? 0 : 0x3C << (grain & 3U));
        }
        TIFFSetField(tif.get(), TIFFTAG_IMAGEWIDTH, width);
        TIFFSetField(tif.get(), TIFFTAG_IMAGELENGTH, height);
        TIFFSetField(tif.get(), TIFFTAG_BITSPERSAMPLE, colour ? 8 : 1);
        TIFFSetField(tif.get(), TIFFTAG_SAMPLESPERPIXEL, colour ? 3 : 1);
        TIFFSetField(tif.get(), TIFFTAG_PHOTOMETRIC, colour ? PHOTOMETRIC_RGB : PHOTOMETRIC_MINISWHITE);
        TIFFSetField(tif.get(), TIFFTAG_COMPRESSION, colour ? COMPRESSION_LZW : COMPRESSION_CCITTFAX4);
        TIFFSetField(tif.get(), TIFFTAG_ROWSPERSTRIP, height);
        TIFFWriteEncodedStrip(tif.get(), 0, rows.data(), static_cast<tmsize_t>(rows.size()));
        TIFFWriteDirectory(tif.get());
    }
    return {path, 0, pages};
}

/// Decodes each page, makes it RGB and compresses that as a whole.
double limitOfTiff(const Input& input) {
    return milliseconds([&] {
        const std::unique_ptr<TIFF, void (*)(TIFF*)> tif(TIFFOpen(input.path.c_str(), "r"), TIFFClose);
        std::vector<unsigned char> stored;
        std::vector<unsigned char> rgb;
        do {
            stored.resize(static_cast<std::size_t>(TIFFStripSize(tif.get())));
            TIFFReadEncodedStrip(tif.get(), 0, stored.data(), static_cast<tmsize_t>(stored.size()));
            std::uint16_t bits = 0;
            TIFFGetField(tif.get(), TIFFTAG_BITSPERSAMPLE, &bits);
            if (bits == 8) {
                packedSize(stored.data(), stored.size());
                continue;
            }
            rgb.resize(stored.size() * 24);
            for (std::size_t i = 0; i < rgb.size(); ++i) {
                rgb[i] = (stored[i / 24] >> (7 - i / 3 % 8) & 1) != 0 ? 0 : 255;
            }
            packedSize(rgb.data(), rgb.size());
        } while (TIFFReadDirectory(tif.get()) == 1);
    });
}

void convertTiff(benchmark::State& state) {
    const Directory work;
    const bool colour = state.range(0) != 0;
    const unsigned width = colour ? 1240 : 2480;
    const unsigned height = colour ? 1754 : 3508;
    Input input = makeTiff(work, colour, width, height, 20);
    input.bytes = std::filesystem::file_size(input.path);
    Row row = measure(
        state, colour ? "convert TIFF, 20 pages RGB, LZW" : "convert TIFF, 20 pages G4", input,
        [&] { return limitOfTiff(input); }, [&] { return timeOfConversion(work, input); }, kSamplesGoal);
    noteSpeed(row, 60.0 * width * height / 1e6, "samples");
}

void convertText(benchmark::State& state) {
    const Directory work;
    std::mt19937 random(5);
    std::string text;
    while (text.size() < 5'000'000) {
        for (unsigned i = 0; i < 60; ++i) text += random() % 6 == 0 ? ' ' : static_cast<char>('a' + random() % 20);
        text += '\n';
    }
    const Input input = work.write("in.txt", text);
    constexpr std::size_t kPage = std::size_t{55} * 66;  // with what a line has around it
    const auto limit = [&] {
        return milliseconds([&] {
            const std::string bytes = readAll(input.path);
            for (std::size_t at = 0; at < bytes.size(); at += kPage) {
                benchmark::DoNotOptimize(packedSize(bytes.data() + at, std::min(kPage, bytes.size() - at)));
            }
        });
    };
    Row row = measure(
        state, "convert text, 5 MB", input, limit, [&] { return timeOfConversion(work, input); }, kTextGoal);
    noteSpeed(row, 5, "text");
}

BENCHMARK(convertJpeg)->Iterations(40)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(convertTiff)->Arg(0)->Iterations(3)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(convertTiff)->Arg(1)->Iterations(3)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(convertText)->Iterations(7)->UseManualTime()->Unit(benchmark::kMillisecond);

}  // namespace
