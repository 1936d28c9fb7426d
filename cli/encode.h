// Texts from the command line, UTF-8, in the encodings that a PDF file wants.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace cli {

/// The functions return nothing after a complaint that names `what` and the first character that cannot be written.

/// WinAnsiEncoding (ISO 32000-2 annex D) for lines of an appearance.
std::optional<std::string> toWinAnsi(const std::string& what, std::string_view utf8);
/// The inside of a literal string for a text string (ISO 32000-2 7.9.2.2): PDFDocEncoding where it has all characters,
/// else UTF-16 with a byte order mark. Escapes keep parentheses, line ends and NULs from touching the string.
std::optional<std::string> toTextString(const std::string& what, std::string_view utf8);
/// UTF-8 again, of characters only that mean the same in Latin-1 and in PDFDocEncoding: a name is written in the one and
/// read in the other.
std::optional<std::string> toName(const std::string& what, std::string_view utf8);
/// The text can be written as a name.
bool isName(std::string_view utf8);

}  // namespace cli
