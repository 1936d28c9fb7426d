// The value that an appearance stream shows.
#pragma once

#include <cstddef>
#include <string_view>

class CFontObj;
class CPdfObj;

namespace varnpdf {

/// What `CPdfObj::ReplaceValue` does. `budget` is what may still be unpacked or copied; what was is taken off.
int replaceShownValue(CPdfObj& appearance, std::string_view value, const CFontObj* font, int inField,
                      std::size_t& budget);

}  // namespace varnpdf
