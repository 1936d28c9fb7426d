// The background image of a visible signature.
#include "signing/Image.h"

#include <FreeImage.h>

#include "support/Log.h"

namespace varnpdf {
namespace {

constexpr unsigned kMostPixels = 100'000'000;  // a decoded image of this size takes 400 MB

struct Unload {
    void operator()(FIBITMAP* bitmap) const noexcept { FreeImage_Unload(bitmap); }
};
using Bitmap = std::unique_ptr<FIBITMAP, Unload>;

struct CloseMemory {
    void operator()(FIMEMORY* memory) const noexcept { FreeImage_CloseMemory(memory); }
};
using Memory = std::unique_ptr<FIMEMORY, CloseMemory>;

const char* colourTypeText(FREE_IMAGE_COLOR_TYPE type) {
    switch (type) {
        case FIC_PALETTE:
            return "Palettized bitmap (1, 4 or 8 bit)";
        case FIC_RGB:
            return "High-color bitmap (16, 24 or 32 bit), RGB16 or RGBF";
        case FIC_RGBALPHA:
            return "High-color bitmap with an alpha channel (32 bit bitmap, RGBA16 or RGBAF)";
        case FIC_CMYK:
            return "CMYK bitmap (32 bit only)";
        case FIC_MINISBLACK:
            return "Monochrome bitmap (1-bit) first palette entry is black";
        case FIC_MINISWHITE:
            return "Monochrome bitmap (1-bit) first palette entry is white";
        default:
            return "unbekannt";
    }
}

std::optional<JpegPlane> jpeg(FIBITMAP* bitmap) {
    const Memory memory(FreeImage_OpenMemory());
    BYTE* data = nullptr;
    DWORD size = 0;
    constexpr int kSettings = JPEG_QUALITYSUPERB | JPEG_SUBSAMPLING_444;
    if (bitmap == nullptr || !memory || !FreeImage_SaveToMemory(FIF_JPEG, bitmap, memory.get(), kSettings) ||
        !FreeImage_AcquireMemory(memory.get(), &data, &size)) {
        return std::nullopt;
    }
    return JpegPlane{FreeImage_GetWidth(bitmap), FreeImage_GetHeight(bitmap),
                     std::string(reinterpret_cast<const char*>(data), size)};
}

bool isTooLarge(FIBITMAP* header) {
    const unsigned width = FreeImage_GetWidth(header);
    const unsigned height = FreeImage_GetHeight(header);
    return width == 0 || height == 0 || width > kMostPixels / height;
}

}  // namespace

std::optional<JpegImage> loadPng(const char* path, bool examine, const ClassLogger& logger) {
    if (FreeImage_GetFileType(path, 0) != FIF_PNG) return std::nullopt;
    const Bitmap header(FreeImage_Load(FIF_PNG, path, FIF_LOAD_NOPIXELS));
    if (!header || isTooLarge(header.get())) return std::nullopt;
    const Bitmap loaded(FreeImage_Load(FIF_PNG, path, PNG_DEFAULT));
    if (!loaded) return std::nullopt;
    logDebug(logger, colourTypeText(FreeImage_GetColorType(loaded.get())));

    JpegImage image;
    if (examine) {
        logDebug(logger, "PNG-Untersuchung wegen Transparenz");
        image.transparent = FreeImage_IsTransparent(loaded.get()) != 0;
        logDebug(logger, image.transparent ? "+ PNG mit Transparent erkannt" : "+ PNG OHNE Transparent erkannt");
    }
    if (image.transparent) {
        const Bitmap full(FreeImage_ConvertTo32Bits(loaded.get()));
        const Bitmap channel(full ? FreeImage_GetChannel(full.get(), FICC_ALPHA) : nullptr);
        auto alpha = jpeg(channel.get());
        if (!alpha) return std::nullopt;
        image.alpha = std::move(*alpha);
    }
    image.grey = !image.transparent && FreeImage_GetColorType(loaded.get()) == FIC_MINISBLACK;
    const Bitmap plain(image.grey ? FreeImage_ConvertToGreyscale(loaded.get())
                                  : FreeImage_ConvertTo24Bits(loaded.get()));
    auto colour = jpeg(plain.get());
    if (!colour) return std::nullopt;
    image.colour = std::move(*colour);
    return image;
}

}  // namespace varnpdf
