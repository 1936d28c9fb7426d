// Pictures as image XObjects (ISO 32000-2 8.9.5).
#pragma once

#include <string>

#include "support/Image.h"

namespace varnpdf {

/// The picture; `mask` is the number of the object with its transparency, 0 for none.
std::string imageObject(int number, const JpegImage& image, int mask);
/// Its transparency.
std::string maskObject(int number, const JpegImage& image);

}  // namespace varnpdf
