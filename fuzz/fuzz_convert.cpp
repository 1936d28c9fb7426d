// Conversion of files. The first byte of the input chooses JPEG, TIFF or text; the rest is the file.
#include <tiffio.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

#include "fuzz/support/Check.h"
#include "varnpdf/Convert.h"
#include "varnpdf/Pdf.h"

using varnpdf::fuzz::check;

namespace {

constexpr const char* kExtensions[] = {".jpg", ".tif", ".txt"};

/// Removed at the end of the run.
class Directory {
public:
    Directory() : path_(std::filesystem::temp_directory_path() / ("varnpdf-fuzz-" + std::to_string(getpid()))) {
        std::filesystem::create_directories(path_);
    }
    Directory(const Directory&) = delete;
    Directory& operator=(const Directory&) = delete;
    ~Directory() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    [[nodiscard]] std::string at(const std::string& name) const { return (path_ / name).string(); }
    [[nodiscard]] auto files() const {
        return std::distance(std::filesystem::directory_iterator(path_), std::filesystem::directory_iterator());
    }

private:
    std::filesystem::path path_;
};

/// Pixels of all directories. Large images are refused or take their time, by limits that have a test of their own.
bool isSmall(const std::string& path) {
    constexpr std::uint64_t kPixels = 4'000'000;
    TIFF* const tif = TIFFOpen(path.c_str(), "rm");
    std::uint64_t pixels = 0;
    do {
        std::uint32_t width = 0;
        std::uint32_t height = 0;
        if (tif == nullptr) break;
        TIFFGetField(tif, TIFFTAG_IMAGEWIDTH, &width);
        TIFFGetField(tif, TIFFTAG_IMAGELENGTH, &height);
        pixels += std::uint64_t{width} * height;
    } while (pixels <= kPixels && TIFFReadDirectory(tif) == 1);
    if (tif != nullptr) TIFFClose(tif);
    return pixels <= kPixels;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const Directory work;
    static const TIFFErrorHandler quiet[] = {TIFFSetErrorHandler(nullptr), TIFFSetWarningHandler(nullptr)};
    static_cast<void>(quiet);
    if (size == 0) return 0;
    std::string in = work.at(std::string("in") + kExtensions[data[0] % 3]);
    std::string out = work.at("out.pdf");
    std::ofstream(in, std::ios::binary)
        .write(reinterpret_cast<const char*>(data + 1), static_cast<std::streamsize>(size - 1));
    if (!isSmall(in)) return 0;
    const int code = VarnImage(in.data(), out.data());
    check(code == 0 || code == VARNPDF_CONVERT_UNSUPPORTED || code == VARNPDF_TIFF_UNREADABLE ||
              code == VARNPDF_CONVERT_WRITE,
          "a conversion ends with a code of its own");
    check(work.files() == (code == 0 ? 2 : 1), "a document is there, or nothing of it");
    if (code == 0) {
        CPdf pdf;
        check(pdf.Open(out.c_str(), "rb") == 0, "the document opens");
    }
    std::filesystem::remove(in);
    std::filesystem::remove(out);
    return 0;
}
