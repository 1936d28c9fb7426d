// The value that an appearance stream shows.
#pragma once

#include <cstddef>
#include <string_view>

#include "varnpdf/PdfObj.h"

namespace varnpdf {

/// Shows another value in an appearance stream that is known alone: what it refers to is not. `font` is the name of the
/// font for an appearance that showed nothing; `inField` lets such a one have a line. `budget` is what may still be
/// unpacked or copied; what was is taken off.
/// @return VARNPDF_OK, VARNPDF_NO_STREAM or VARNPDF_NO_TJ
int replaceShownValue(CPdfObj& appearance, std::string_view value, std::string_view font, bool inField,
                      std::size_t& budget);

/// Gives a stream that is known alone other data, packed as before.
/// @return VARNPDF_OK or VARNPDF_NO_STREAM
int replaceStream(CPdfObj& object, std::string_view data);

}  // namespace varnpdf
