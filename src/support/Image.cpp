// A picture as JPEG data, by FreeImage or as it stands.
#include "support/Image.h"

#include <sys/stat.h>

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string_view>

#include "support/FreeImageLibrary.h"
#include "support/JpegFrame.h"
#include "support/Limits.h"
#include "support/Log.h"
#include "support/ResultText.h"

namespace varnpdf {
namespace {

constexpr std::string_view kPngStart("\x89PNG\r\n\x1A\n\0\0\0\rIHDR", 16);
constexpr std::string_view kJpegStart("\xFF\xD8\xFF");
constexpr std::string_view kJpegEnd("\xFF\xD9");

constexpr const char* kGrey = "/ColorSpace /DeviceGray";
constexpr const char* kRgb = "/ColorSpace /DeviceRGB";
constexpr const char* kCmyk = "/ColorSpace /DeviceCMYK";
constexpr const char* kInvertedCmyk = "/ColorSpace /DeviceCMYK /Decode [1 0 1 0 1 0 1 0]";

struct CloseFile {
    void operator()(std::FILE* file) const noexcept { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

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

bool isTooLarge(std::uint64_t width, std::uint64_t height) {
    return width == 0 || height == 0 || width > limits::kPicturePixels / height;
}

// Opening a pipe would wait for its writer.
File openRegular(const char* path) {
    struct stat status {};
    if (path == nullptr || ::stat(path, &status) != 0 || !S_ISREG(status.st_mode)) return nullptr;
    return File(std::fopen(path, "rbe"));
}

std::optional<std::string> readAll(std::FILE* file) {
    struct stat status {};
    if (::fstat(::fileno(file), &status) != 0 || status.st_size > static_cast<off_t>(limits::kPictureBytes)) return {};
    std::string bytes(static_cast<std::size_t>(status.st_size), '\0');
    return std::fread(bytes.data(), 1, bytes.size(), file) == bytes.size() ? std::optional(std::move(bytes))
                                                                           : std::nullopt;
}

std::uint64_t bigEndian(std::string_view bytes) {
    std::uint64_t number = 0;
    for (const char byte : bytes) number = number << 8U | static_cast<unsigned char>(byte);
    return number;
}

Bitmap decoded(const FreeImageLibrary& library, std::string& png) {
    const Memory memory(library.openMemory(reinterpret_cast<BYTE*>(png.data()), static_cast<DWORD>(png.size())));
    return Bitmap(memory ? library.loadFromMemory(FIF_PNG, memory.get(), PNG_DEFAULT) : nullptr);
}

std::optional<JpegImage> fromPng(std::string png, bool examine, const ClassLogger& logger) {
    if (examine) logDebug(logger, "PNG-Untersuchung wegen Transparenz");
    const FreeImageLibrary* const library = FreeImageLibrary::get();
    if (library == nullptr) {
        logError(logger, "libfreeimage kann nicht geladen werden");
        return {};
    }
    // Width and height follow the header of the first chunk.
    const std::string_view sizes = std::string_view(png).substr(kPngStart.size());
    if (sizes.size() < 8 || isTooLarge(bigEndian(sizes.substr(0, 4)), bigEndian(sizes.substr(4, 4)))) return {};
    const Bitmap loaded = decoded(*library, png);
    if (!loaded) return {};
    const FREE_IMAGE_COLOR_TYPE type = library->colourType(loaded.get());
    JpegImage image{.colourType = colourTypeText(type)};
    if (examine) {
        image.transparent = library->isTransparent(loaded.get()) != 0;
        logDebug(logger, image.transparent ? "+ PNG mit Transparent erkannt" : "+ PNG OHNE Transparent erkannt");
    }
    if (image.transparent) {
        const Bitmap full(library->to32Bits(loaded.get()));
        const Bitmap channel(full ? library->channel(full.get(), FICC_ALPHA) : nullptr);
        auto alpha = jpeg(*library, channel.get());
        if (!alpha) return {};
        image.alpha = std::move(*alpha);
    }
    const bool grey = !image.transparent && type == FIC_MINISBLACK;
    image.colourSpace = grey ? kGrey : kRgb;
    const Bitmap plain(grey ? library->toGreyscale(loaded.get()) : library->to24Bits(loaded.get()));
    auto colour = jpeg(*library, plain.get());
    if (!colour) return {};
    image.colour = std::move(*colour);
    return image;
}

std::optional<JpegImage> fromJpeg(const JpegFrame& frame, std::string bytes) {
    JpegImage image{.colour = {static_cast<unsigned>(frame.width), static_cast<unsigned>(frame.height), {}}};
    // Data that was cut short has no end.
    const bool whole = bytes.rfind(kJpegEnd) != std::string::npos;
    if (!whole || !frame.isDct() || isTooLarge(image.colour.width, image.colour.height)) return {};
    image.colour.data = std::move(bytes);
    switch (frame.components) {
        case 1:
            image.colourSpace = kGrey;
            image.colourType = colourTypeText(FIC_MINISBLACK);
            return image;
        case 3:
            image.colourSpace = kRgb;
            image.colourType = colourTypeText(FIC_RGB);
            return image;
        case 4:
            image.colourSpace = frame.adobe ? kInvertedCmyk : kCmyk;
            image.colourType = colourTypeText(FIC_CMYK);
            return image;
        default:
            return {};
    }
}

std::optional<JpegImage> load(const char* path, bool examine, const ClassLogger& logger) {
    const File file = openRegular(path);
    if (!file) return {};
    auto bytes = readAll(file.get());
    if (!bytes) return {};
    if (bytes->starts_with(kPngStart)) return fromPng(std::move(*bytes), examine, logger);
    if (!bytes->starts_with(kJpegStart)) return {};
    std::rewind(file.get());
    const auto frame = readFrame(file.get());
    return frame ? fromJpeg(*frame, std::move(*bytes)) : std::nullopt;
}

}  // namespace

std::optional<JpegImage> loadImage(const char* path, bool examine, const ClassLogger& logger) {
    auto image = load(path, examine, logger);
    if (!image) logError(logger, logtext::IMAGE_UNREADABLE);
    return image;
}

}  // namespace varnpdf
