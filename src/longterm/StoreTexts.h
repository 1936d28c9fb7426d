// Texts that the security store is made of.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace varnpdf {

/// "[12 0 R 13 0 R]".
std::string referenceArray(const std::vector<int>& numbers);
/// The key of a signature in /VRI: the SHA-1 of its value, padding and all, as upper-case digits (ISO 32000-2 table 262).
std::string storeKey(std::string_view contents);
/// The text with "a" to "f" in upper case: some write keys otherwise.
std::string upperDigits(std::string text);
/// The text with at most `limit` occurrences replaced, from the front; what is put in is not searched again. A limit of 0
/// or less is none.
std::string replaced(std::string_view text, std::string_view search, std::string_view replacement, int limit);

}  // namespace varnpdf
