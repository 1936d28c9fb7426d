// The text layer of a visible signature.
#pragma once

#include <span>
#include <string>

#include "varnpdf/FormfieldInfo.h"

namespace varnpdf {

/// Resource name of a font by family and style, e.g. "/T1_0".
std::string fontName(int family, int style);

/// The content stream: one line of text for each entry, from the top down.
std::string textLayer(int width, int height, std::span<const FormfieldInfo_tag> fields);

}  // namespace varnpdf
