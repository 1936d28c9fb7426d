// Preparing a document with a background image, measured in the same run against decoding the picture and encoding it
// once.
#include <zlib.h>

#include <random>
#include <stdexcept>
#include <string>

#include "bench/Measure.h"
#include "support/FreeImageLibrary.h"
#include "tests/support/TempFile.h"
#include "varnpdf/PdfSign.h"

using namespace varnpdf::bench;

namespace {

constexpr unsigned kWidth = 2400;
constexpr unsigned kHeight = 1600;
constexpr double kGoal = 1.25;

void appendNumber(std::string& out, std::size_t number) {
    for (int shift = 24; shift >= 0; shift -= 8) out.push_back(static_cast<char>(number >> shift & 255U));
}

void appendChunk(std::string& out, std::string body) {
    appendNumber(out, body.size() - 4);
    const uLong check = crc32(0, reinterpret_cast<const Bytef*>(body.data()), static_cast<uInt>(body.size()));
    out += body;
    appendNumber(out, check);
}

/// A gradient with noise, as a scan has it.
std::string png() {
    std::mt19937 random(3);
    std::string rows;
    for (unsigned y = 0; y < kHeight; ++y) {
        rows.push_back('\0');
        for (unsigned i = 0; i < 3 * kWidth; ++i) rows.push_back(static_cast<char>(y / 16 + i / 96 + (random() & 7U)));
    }
    uLongf size = compressBound(rows.size());
    std::string data(size, '\0');
    compress(reinterpret_cast<Bytef*>(data.data()), &size, reinterpret_cast<const Bytef*>(rows.data()), rows.size());
    data.resize(size);
    std::string header = "IHDR";
    appendNumber(header, kWidth);
    appendNumber(header, kHeight);
    std::string out = "\x89PNG\r\n\x1A\n";
    appendChunk(out, header + std::string("\x08\x02\0\0\0", 5));
    appendChunk(out, "IDAT" + data);
    appendChunk(out, "IEND");
    return out;
}

/// Decodes the PNG and encodes it as a JPEG of the quality that signatures have.
std::string encoded(std::string bytes) {
    const varnpdf::FreeImageLibrary& library = *varnpdf::FreeImageLibrary::get();
    FIMEMORY* const in = library.openMemory(reinterpret_cast<BYTE*>(bytes.data()), static_cast<DWORD>(bytes.size()));
    FIBITMAP* const bitmap = library.loadFromMemory(FIF_PNG, in, PNG_DEFAULT);
    FIMEMORY* const out = library.openMemory(nullptr, 0);
    BYTE* data = nullptr;
    DWORD size = 0;
    library.saveToMemory(FIF_JPEG, bitmap, out, JPEG_QUALITYSUPERB | JPEG_SUBSAMPLING_444);
    library.acquireMemory(out, &data, &size);
    std::string jpeg(reinterpret_cast<const char*>(data), size);
    library.closeMemory(out);
    library.unload(bitmap);
    library.closeMemory(in);
    return jpeg;
}

void prepare(std::string path, std::string image) {
    char text[] = "text";
    char date[] = "D:20240102120000+01'00'";
    CPdfSign sign;
    const int code = sign.SignPDFFile(path.data(), 0, 1, 10, 10, 200, 100, 0, text, text, text, date, 2000, false, 0, 1,
                                      image.data(), nullptr, 0, 0, false);
    if (code != 0) throw std::runtime_error("code " + std::to_string(code) + " for " + image);
}

void signPicture(benchmark::State& state) {
    const bool isPng = state.range(0) == 0;
    const std::string bytes = png();
    const varnpdf::test::TempFile image(isPng ? bytes : encoded(bytes));
    const Input input = inputs().tenPages();
    Row row = measure(
        state, isPng ? "sign, PNG of 2400 x 1600" : "sign, JPEG of 2400 x 1600", input,
        [&] { return milliseconds([&] { benchmark::DoNotOptimize(encoded(bytes)); }); },
        [&] { return milliseconds([&] { prepare(input.path, image.path()); }); }, kGoal);
    row.note = "limit: decoding and encoding a PNG once";
    summary().push_back(row);
}

BENCHMARK(signPicture)->Arg(0)->Iterations(5)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(signPicture)->Arg(1)->Iterations(5)->UseManualTime()->Unit(benchmark::kMillisecond);

}  // namespace
