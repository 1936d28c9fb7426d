// Background images, made with FreeImage, and a page for them.
#pragma once

#include <FreeImage.h>

#include <string>

#include "tests/signing/Signing.h"

namespace varnpdf::test {

/// Four by two pixels; a JPEG of 32 bits has the four inks.
inline std::string picture(FREE_IMAGE_FORMAT format, int bits) {
    FIBITMAP* const bitmap = FreeImage_Allocate(4, 2, bits);
    if (format == FIF_JPEG && bits == 32) FreeImage_GetICCProfile(bitmap)->flags |= FIICC_COLOR_IS_CMYK;
    FIMEMORY* const memory = FreeImage_OpenMemory();
    FreeImage_SaveToMemory(format, bitmap, memory, 0);
    BYTE* data = nullptr;
    DWORD size = 0;
    FreeImage_AcquireMemory(memory, &data, &size);
    std::string bytes(reinterpret_cast<char*>(data), size);
    FreeImage_CloseMemory(memory);
    FreeImage_Unload(bitmap);
    return bytes;
}

/// An unfinished page whose box holds the signature, whatever its rotation.
inline std::string document(int rotation) {
    return PdfBuilder()
        .object(1, "<< /Type /Catalog /Pages 2 0 R >>")
        .object(2, "<< /Type /Pages /Kids [3 0 R] /Count 1 >>")
        .object(3, "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 612 792] /Rotate " + std::to_string(rotation) + " >>")
        .table()
        .bytes();
}

inline const Request kVisible{.x = 10, .y = 20, .width = 100, .height = 40, .fields = {line("", "text", 0, 0, 10)}};

}  // namespace varnpdf::test
