// A picture as JPEG data, for images in PDF.
#pragma once

#include <optional>
#include <string>

#include "support/ClassLogger.h"

namespace varnpdf {

struct JpegPlane {
    unsigned width = 0;
    unsigned height = 0;
    std::string data = {};
};

struct JpegImage {
    JpegPlane colour = {};
    /// Of `colour`: /ColorSpace, and /Decode where the samples are inverted.
    const char* colourSpace = "";
    const char* colourType = "";  ///< of the picture as it was, for the log
    bool transparent = false;     ///< `alpha` is set
    JpegPlane alpha = {};
};

/// Loads a PNG or a JPEG, told by its first bytes. A PNG is decoded and encoded once; a JPEG with one, three or four
/// components that /DCTDecode covers stays as it is. `examine` false leaves the transparency of a PNG aside.
/// Nothing, with the reason in the log, when the file cannot be read, is of another kind, damaged, or larger than the
/// limits.
std::optional<JpegImage> loadImage(const char* path, bool examine, const ClassLogger& logger);

}  // namespace varnpdf
