// The background image of a visible signature: a PNG turned into JPEG planes.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "support/ClassLogger.h"

namespace log4cxx {
class Logger;
}

namespace varnpdf {

struct JpegPlane {
    unsigned width = 0;
    unsigned height = 0;
    std::string data;
};

struct JpegImage {
    JpegPlane colour;
    bool grey = false;         ///< one component instead of three
    bool transparent = false;  ///< `alpha` is set
    JpegPlane alpha;
};

/// Loads a PNG. Nothing when the file cannot be opened, is no PNG or is larger than the limits; `examine` false leaves
/// transparency aside.
std::optional<JpegImage> loadPng(const char* path, bool examine, const ClassLogger& logger);

}  // namespace varnpdf
