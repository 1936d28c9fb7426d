// Texts of a PDF file decoded for people: always valid UTF-8.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace cli {

/// UTF-8 with every byte that is none replaced by U+FFFD.
std::string validUtf8(std::string_view bytes);
/// Valid UTF-8 without anything that moves a terminal's cursor or hides text: line ends and tabs become blanks, other
/// control characters and direction overrides U+FFFD.
std::string printable(std::string_view bytes);
/// The characters of a text string (ISO 32000-2 7.9.2.2): UTF-16 or UTF-8 with a byte order mark, else PDFDocEncoding.
std::string decodeTextString(std::string_view bytes);
/// The bytes of the literal or hexadecimal string at the start of `text` (ISO 32000-2 7.3.4); nothing when there is no
/// complete one. Parentheses are counted.
std::optional<std::string> stringBytes(std::string_view text);
/// The name at the start of `text` without its slash, "#20" undone (ISO 32000-2 7.3.5).
std::optional<std::string> nameText(std::string_view text);
/// `text` without white space (ISO 32000-2 table 1) at both ends.
std::string_view trimmed(std::string_view text);

}  // namespace cli
