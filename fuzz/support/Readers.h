// The readers of PDF syntax on one text, with the properties of their results.
#pragma once

#include <string_view>

namespace varnpdf::fuzz {

/// Makes every call of CPdfHelper that reads, on the text up to its first NUL.
void readEverything(std::string_view text);

/// The utilities that change or convert a text.
void convertEverything(std::string_view text);

}  // namespace varnpdf::fuzz
