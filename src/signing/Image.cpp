// The background image of a visible signature.
#include "signing/Image.h"

#include "signing/FreeImageLibrary.h"
#include "support/Log.h"

namespace varnpdf {
namespace {

constexpr unsigned kMostPixels = 100'000'000;  // a decoded image of this size takes 400 MB

struct Unload {
    void operator()(FIBITMAP* bitmap) const noexcept { FreeImageLibrary::get()->unload(bitmap); }
};
using Bitmap = std::unique_ptr<FIBITMAP, Unload>;

struct CloseMemory {
    void operator()(FIMEMORY* memory) const noexcept { FreeImageLibrary::get()->closeMemory(memory); }
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

std::optional<JpegPlane> jpeg(const FreeImageLibrary& library, FIBITMAP* bitmap) {
    const Memory memory(library.openMemory(nullptr, 0));
    BYTE* data = nullptr;
    DWORD size = 0;
    constexpr int kSettings = JPEG_QUALITYSUPERB | JPEG_SUBSAMPLING_444;
    if (bitmap == nullptr || !memory || !library.saveToMemory(FIF_JPEG, bitmap, memory.get(), kSettings) ||
        !library.acquireMemory(memory.get(), &data, &size)) {
        return std::nullopt;
    }
    return JpegPlane{library.width(bitmap), library.height(bitmap),
                     std::string(reinterpret_cast<const char*>(data), size)};
}

bool isTooLarge(const FreeImageLibrary& library, FIBITMAP* header) {
    const unsigned width = library.width(header);
    const unsigned height = library.height(header);
    return width == 0 || height == 0 || width > kMostPixels / height;
}

}  // namespace

std::optional<JpegImage> loadPng(const char* path, bool examine, const ClassLogger& logger) {
    const FreeImageLibrary* const library = FreeImageLibrary::get();
    if (library == nullptr) {
        logError(logger, "libfreeimage kann nicht geladen werden");
        return std::nullopt;
    }
    if (library->getFileType(path, 0) != FIF_PNG) return std::nullopt;
    const Bitmap header(library->load(FIF_PNG, path, FIF_LOAD_NOPIXELS));
    if (!header || isTooLarge(*library, header.get())) return std::nullopt;
    const Bitmap loaded(library->load(FIF_PNG, path, PNG_DEFAULT));
    if (!loaded) return std::nullopt;
    logDebug(logger, colourTypeText(library->colourType(loaded.get())));

    JpegImage image;
    if (examine) {
        logDebug(logger, "PNG-Untersuchung wegen Transparenz");
        image.transparent = library->isTransparent(loaded.get()) != 0;
        logDebug(logger, image.transparent ? "+ PNG mit Transparent erkannt" : "+ PNG OHNE Transparent erkannt");
    }
    if (image.transparent) {
        const Bitmap full(library->to32Bits(loaded.get()));
        const Bitmap channel(full ? library->channel(full.get(), FICC_ALPHA) : nullptr);
        auto alpha = jpeg(*library, channel.get());
        if (!alpha) return std::nullopt;
        image.alpha = std::move(*alpha);
    }
    image.grey = !image.transparent && library->colourType(loaded.get()) == FIC_MINISBLACK;
    const Bitmap plain(image.grey ? library->toGreyscale(loaded.get()) : library->to24Bits(loaded.get()));
    auto colour = jpeg(*library, plain.get());
    if (!colour) return std::nullopt;
    image.colour = std::move(*colour);
    return image;
}

}  // namespace varnpdf
