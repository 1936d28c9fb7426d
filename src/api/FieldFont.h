// The font of a field by its name.
#pragma once

#include <string_view>

#include "varnpdf/PdfFields.h"

namespace varnpdf {

/// The resource name of a font; for none that of Helvetica in most forms.
inline std::string_view nameOfFont(const CFontObj* font) { return font == nullptr ? "Helv" : font->GetShortName(); }

}  // namespace varnpdf
