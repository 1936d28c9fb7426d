// Text strings (ISO 32000-2 7.9.2.2) and UTF-8 as characters, and back.
#pragma once

#include <string>
#include <string_view>

namespace varnpdf {

/// The characters of UTF-8; text that is not UTF-8 is taken to be Latin-1.
std::u32string fromUtf8(std::string_view text);
std::string toUtf8(std::u32string_view characters);

/// The characters of a text string: UTF-16 or UTF-8 with a byte order mark, else PDFDocEncoding. What is no character
/// becomes U+FFFD.
std::u32string decodeTextString(std::string_view bytes);

/// A string object for the characters: a literal string in PDFDocEncoding where that has all of them, else hexadecimal
/// UTF-16. The words that end an object or a stream never stand in it, so that readers which search for them are not
/// misled.
std::string textStringObject(std::u32string_view characters);

}  // namespace varnpdf
