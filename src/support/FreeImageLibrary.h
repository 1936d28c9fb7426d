// FreeImage, loaded when the first PNG is.
#pragma once

#include <FreeImage.h>

namespace varnpdf {

/// The functions in use. FreeImage brings some twenty libraries with it, and loading them takes longer than signing a
/// document; most hosts never see an image.
struct FreeImageLibrary {
    /// Null when the library, or a function of it, is not there.
    static const FreeImageLibrary* get();

    decltype(&FreeImage_LoadFromMemory) loadFromMemory;
    decltype(&FreeImage_Unload) unload;
    decltype(&FreeImage_GetWidth) width;
    decltype(&FreeImage_GetHeight) height;
    decltype(&FreeImage_GetColorType) colourType;
    decltype(&FreeImage_IsTransparent) isTransparent;
    decltype(&FreeImage_GetChannel) channel;
    decltype(&FreeImage_ConvertTo32Bits) to32Bits;
    decltype(&FreeImage_ConvertTo24Bits) to24Bits;
    decltype(&FreeImage_ConvertToGreyscale) toGreyscale;
    decltype(&FreeImage_OpenMemory) openMemory;
    decltype(&FreeImage_CloseMemory) closeMemory;
    decltype(&FreeImage_SaveToMemory) saveToMemory;
    decltype(&FreeImage_AcquireMemory) acquireMemory;
};

}  // namespace varnpdf
