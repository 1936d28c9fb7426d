// Arrays of references as text.
#pragma once

#include <string>
#include <string_view>

namespace varnpdf {

/// The array with the item, e.g. " 12 0 R", in front of its last "]", or at the end of a text without brackets. Every
/// "null" goes, with one blank behind it.
std::string appendToRefArray(std::string_view array, std::string_view item);

}  // namespace varnpdf
