// The steps of the conversion as hosts call them, on files of their own.
#include <cstring>
#include <optional>

#include "conversion/JpegDocument.h"
#include "conversion/ObjectFile.h"
#include "conversion/TextDocument.h"
#include "conversion/TiffDocument.h"
#include "support/JpegFrame.h"
#include "varnpdf/Convert.h"

namespace {

using namespace varnpdf;

// The document whose frame this thread has begun: a foot lists the offsets of what was written before it.
thread_local std::optional<ObjectFile> framed;

// Calls `put` with the thread's document, where the file stands now.
template <typename Put>
bool addTo(std::FILE* file, Put put) {
    try {
        if (file == nullptr || !framed || framed->file() != file) return false;
        const off_t position = ftello(file);
        if (position < 0) return false;
        framed->setPosition(static_cast<std::uint64_t>(position));
        put(*framed);
        return framed->flush();
    } catch (...) {
        return false;
    }
}

template <typename Put>
int begin(std::FILE* file, Put put) {
    try {
        framed.emplace(file);
    } catch (...) {
        return VARNPDF_CONVERT_WRITE;
    }
    return addTo(file, put) ? VARNPDF_OK : VARNPDF_CONVERT_WRITE;
}

template <typename Put>
int finish(std::FILE* file, Put put) {
    const bool good = addTo(file, put);
    framed.reset();
    return good ? VARNPDF_OK : VARNPDF_CONVERT_WRITE;
}

}  // namespace

int scanhead(FILE* file, int* width, int* height, int* gray) {
    if (file == nullptr) return 0;
    std::rewind(file);
    const std::optional<JpegFrame> frame = readFrame(file);
    if (!frame) return 0;
    *width = frame->width;
    *height = frame->height;
    *gray = frame->components == 1 ? 1 : 0;
    return 1;
}

int WriteHeader(FILE* file, int width, int height, int length, int gray) {
    return begin(file, [=](ObjectFile& out) { putJpegHead(out, width, height, length, gray != 0); });
}

int WriteFooter(FILE* file, int width, int height) {
    return finish(file, [=](ObjectFile& out) { putJpegFoot(out, width, height); });
}

int WriteHeaderTxt(FILE* file) { return begin(file, putTextHead); }

int WritePage(FILE* file, char* lines, int n) {
    const bool good = n >= kTextHeadObjects && n < limits::kDeclaredSize && addTo(file, [=](ObjectFile& out) {
                          Deflater deflater;
                          putTextPage(out, deflater, lines != nullptr ? lines : "", n);
                      });
    return good ? n + 2 : VARNPDF_CONVERT_WRITE;
}

int WriteFooterTxt(FILE* file, int objects, int pages) {
    const bool fits = framed && framed->size() - 1 == objects && objects == kTextHeadObjects + 2LL * pages;
    if (!fits) return VARNPDF_CONVERT_WRITE;
    return finish(file, [=](ObjectFile& out) { putTextFoot(out, pages); });
}

int ConvertTextLine(char* line) {
    if (line == nullptr) return 0;
    try {
        std::string escaped;
        appendEscaped(escaped, line, TextCode::kDos);
        std::memcpy(line, escaped.c_str(), escaped.size() + 1);
        return static_cast<int>(escaped.size());
    } catch (...) {
        return VARNPDF_PDF_MEMORY_ALLOCATION;
    }
}

void Char2Octet(unsigned char byte, char* out) {
    const std::string escape = octalEscape(byte, TextCode::kDos);
    std::memcpy(out, escape.c_str(), escape.size() + 1);
}

int ConvertTIFF(tiff* tif, FILE* file) {
    if (tif == nullptr || file == nullptr) return VARNPDF_TIFF_UNREADABLE;
    try {
        ObjectFile out(file);
        return putTiff(out, tif);
    } catch (...) {
        return VARNPDF_PDF_MEMORY_ALLOCATION;
    }
}
