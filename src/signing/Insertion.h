// The value of a signature as it stands in its room.
#pragma once

#include <cstddef>

namespace varnpdf {

/// Bytes of a room for `contentsSize` bytes of value, delimiters included.
constexpr std::size_t roomLength(std::size_t contentsSize) { return 2 * contentsSize + 2; }

/// Writes the hexadecimal string of a value into `out`, which has `roomLength` zero bytes: upper-case digits, padded
/// with "31". Of a value that is null or too long nothing but "<>" is written.
void fillRoom(char* out, const unsigned char* value, std::size_t length, std::size_t contentsSize);

}  // namespace varnpdf
