// Values by the letter of ISO 32000-2 7.3 and 7.9.2: what a text of PDF syntax means, and text for what is meant.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace varnpdf {

/// The name at the start of the text without its slash, "#20" undone; empty when there is none.
std::string nameOf(std::string_view value);
/// The bytes of the literal or hexadecimal string at the start of a text; nothing when there is none or it is not
/// closed.
std::optional<std::string> stringOf(std::string_view value);
/// A number, whatever the locale.
std::optional<double> numberOf(std::string_view value);
/// The numbers at the start of an array, at most 256.
std::vector<double> numbersOf(std::string_view array);
/// The number of the object that a reference names.
std::optional<int> referenceOf(std::string_view value);
/// The elements of the array at the start of a text, as written; nothing when there is none or it does not end.
std::optional<std::vector<std::string_view>> itemsOf(std::string_view value);

/// A literal string of these bytes, which every reader takes for them.
std::string literalString(std::string_view bytes);
/// The same in printable ASCII, without any of the words that end an object or a stream.
std::string asciiString(std::string_view bytes);
/// The bytes of a text string (ISO 32000-2 7.9.2.2) for UTF-8 text. Bytes that are no UTF-8 stay as they are.
std::string textString(std::string_view utf8);
/// A string object for a text string: literal where PDFDocEncoding will do, else hexadecimal. The words that end an
/// object or a stream never stand in it, so that readers which search for them are not misled.
std::string textStringObject(std::u32string_view characters);

}  // namespace varnpdf
