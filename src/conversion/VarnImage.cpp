// The converter's entry points: JPEG, TIFF and text files to PDF files.
#include <fcntl.h>
#include <sys/stat.h>
#include <tiffio.h>
#include <unistd.h>

#include <algorithm>
#include <limits>
#include <memory>
#include <new>
#include <vector>

#include "conversion/JpegDocument.h"
#include "conversion/ObjectFile.h"
#include "conversion/TextDocument.h"
#include "conversion/TiffDocument.h"
#include "conversion/TiffMessages.h"
#include "conversion/Utf8Text.h"
#include "support/JpegFrame.h"
#include "support/StagedFile.h"
#include "varnpdf/Convert.h"
#include "varnpdf/PdfDoc.h"

namespace {

using namespace varnpdf;

constexpr std::size_t kBlock = std::size_t{128} << 10U;

struct CloseFile {
    void operator()(std::FILE* file) const noexcept { std::fclose(file); }
};
using InputFile = std::unique_ptr<std::FILE, CloseFile>;

enum class Kind { kJpeg, kTiff, kText, kUnknown };

Kind kindOf(std::string_view path) {
    const std::size_t dot = path.find_last_of("./");
    std::string extension(dot == std::string_view::npos ? "" : path.substr(dot));
    std::ranges::transform(extension, extension.begin(),
                           [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    if (extension == ".jpg" || extension == ".jpeg") return Kind::kJpeg;
    if (extension == ".tif" || extension == ".tiff") return Kind::kTiff;
    return extension == ".txt" ? Kind::kText : Kind::kUnknown;
}

// Opening a pipe would wait for its writer.
bool isRegular(const char* path) {
    struct stat status {};
    return ::stat(path, &status) == 0 && S_ISREG(status.st_mode);
}

bool isSameFile(const char* one, const char* other) {
    struct stat first {};
    struct stat second {};
    return ::stat(one, &first) == 0 && ::stat(other, &second) == 0 && first.st_dev == second.st_dev &&
           first.st_ino == second.st_ino;
}

// The bytes of a file from its start, block by block. False when it cannot be read, or `take` returns false.
template <typename Take>
bool forEachBlock(std::FILE* file, Take take) {
    std::vector<char> block(kBlock);
    std::size_t at = 0;
    for (;;) {
        const ssize_t count = ::pread(::fileno(file), block.data(), block.size(), static_cast<off_t>(at));
        if (count < 0) return false;
        if (count == 0) return true;
        if (!take(std::string_view(block.data(), static_cast<std::size_t>(count)))) return false;
        at += static_cast<std::size_t>(count);
    }
}

int convertJpeg(std::FILE* in, ObjectFile& out) {
    const std::optional<JpegFrame> frame = readFrame(in);
    const int length = GetFileSize_varnimg(in);
    const bool declared = frame && (frame->components == 1 || frame->components == 3);
    if (!declared || !frame->isDct() || length < 0) return VARNPDF_CONVERT_UNSUPPORTED;
    putJpegHead(out, frame->width, frame->height, length, frame->components == 1);
    const std::uint64_t end = out.position() + static_cast<std::uint64_t>(length);
    const bool read = forEachBlock(in, [&](std::string_view bytes) {
        out.putBytes(bytes);
        return out.position() <= end;
    });
    // The file was changed meanwhile when it is not as long as we have said.
    if (!read || out.position() != end) return VARNPDF_CONVERT_INPUT;
    putJpegFoot(out, frame->width, frame->height);
    return VARNPDF_OK;
}

int convertText(std::FILE* in, ObjectFile& out) {
    Utf8Check check;
    static_cast<void>(forEachBlock(in, [&](std::string_view bytes) { return check.add(bytes); }));
    const TextCode code = check.holds() ? TextCode::kWinAnsi : TextCode::kDos;
    WinAnsiText winAnsi;
    TextSetter setter(out, code);
    putTextHead(out);
    const bool read = forEachBlock(in, [&](std::string_view bytes) {
        setter.add(code == TextCode::kWinAnsi ? winAnsi.convert(bytes) : bytes);
        return !setter.tooLong() && out.good();
    });
    if (read) setter.end();
    if (setter.tooLong()) return VARNPDF_CONVERT_UNSUPPORTED;
    if (!out.good()) return VARNPDF_CONVERT_WRITE;
    if (!read) return VARNPDF_CONVERT_INPUT;
    putTextFoot(out, setter.pages());
    return VARNPDF_OK;
}

struct CloseTiff {
    void operator()(TIFF* tif) const noexcept { TIFFClose(tif); }
};

std::unique_ptr<TIFF, CloseTiff> openTiff(const char* path) {
    const std::unique_ptr<TIFFOpenOptions, decltype(&TIFFOpenOptionsFree)> options(TIFFOpenOptionsAlloc(),
                                                                                   &TIFFOpenOptionsFree);
    if (options == nullptr) throw std::bad_alloc();
    TIFFOpenOptionsSetMaxSingleMemAlloc(options.get(), static_cast<tmsize_t>(limits::kImagePieceBytes));
    // Not mapped: a file that another process cuts short would end ours.
    return std::unique_ptr<TIFF, CloseTiff>(TIFFOpenExt(path, "rm", options.get()));
}

int convertTiff(const char* path, ObjectFile& out) {
    const TiffMessages messages;
    const auto tif = openTiff(path);
    return tif ? putTiff(out, tif.get()) : VARNPDF_TIFF_UNREADABLE;
}

int convert(const char* in, const char* out) {
    if (!isRegular(in)) return VARNPDF_CONVERT_INPUT;
    const InputFile input(std::fopen(in, "rbe"));
    if (input == nullptr) return VARNPDF_CONVERT_INPUT;
    if (isSameFile(in, out)) return VARNPDF_CONVERT_OUTPUT;
    StagedFile output(out);
    if (!output.isOpen()) return VARNPDF_CONVERT_OUTPUT;
    ObjectFile document(output.file());
    int code = VARNPDF_CONVERT_UNSUPPORTED;
    switch (kindOf(in)) {
        case Kind::kJpeg:
            code = convertJpeg(input.get(), document);
            break;
        case Kind::kTiff:
            code = convertTiff(in, document);
            break;
        case Kind::kText:
            code = convertText(input.get(), document);
            break;
        case Kind::kUnknown:
            break;
    }
    if (code != VARNPDF_OK) return code;
    return document.flush() && output.commit() ? VARNPDF_OK : VARNPDF_CONVERT_WRITE;
}

}  // namespace

int VarnImage(char* in, char* out) {
    if (in == nullptr) return VARNPDF_CONVERT_INPUT;
    if (out == nullptr) return VARNPDF_CONVERT_OUTPUT;
    try {
        return convert(in, out);
    } catch (...) {
        return VARNPDF_PDF_MEMORY_ALLOCATION;
    }
}

int CPdfDoc::ConvertImage2Pdf(char* in, char* out) { return VarnImage(in, out); }

int GetFileSize_varnimg(FILE* file) {
    if (file == nullptr) return -1;
    const off_t before = ftello(file);
    if (before < 0 || fseeko(file, 0, SEEK_END) != 0) return -1;
    const off_t size = ftello(file);
    if (fseeko(file, before, SEEK_SET) != 0) return -1;
    return size <= std::numeric_limits<int>::max() ? static_cast<int>(size) : -1;
}
