// Searching, trimming, replacing, hexadecimal and escapes on views.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace varnpdf {

/// The text of a C string, empty for null.
inline std::string_view viewOf(const char* text) noexcept { return text == nullptr ? std::string_view{} : text; }
/// Where a view into `text` begins.
inline std::size_t offsetIn(std::string_view text, std::string_view part) noexcept {
    return static_cast<std::size_t>(part.data() - text.data());
}
/// `part` occurs in `text`.
inline bool contains(std::string_view text, std::string_view part) noexcept {
    return text.find(part) != std::string_view::npos;
}

/// Text without leading bytes of `set`, but with no more than half of it (rounded up) removed.
std::string_view trimLeftHalf(std::string_view text, std::string_view set) noexcept;
/// Text without leading bytes of `set`.
std::string_view trimLeft(std::string_view text, std::string_view set) noexcept;
/// Text without trailing bytes of `set`; a parenthesis behind a backslash stays.
std::string_view trimRightUnescaped(std::string_view text, std::string_view set) noexcept;

/// Every `from` has become `to`, also where a replacement put a `from` together; see `CTokHelp::StrReplace`.
std::string replaceAll(std::string_view text, std::string_view from, std::string_view to);

/// Word number `index` between white space of the C library.
std::optional<std::string_view> word(std::string_view text, int index) noexcept;

/// Lower-case digit pairs, with `separator` between them unless it is NUL.
std::string toHex(std::string_view bytes, char separator = '\0');

/// The body of a literal string with its escapes undone, or nothing when it holds none. Octal escapes become 0 bytes.
std::optional<std::string> decodeLiteral(std::string_view body);

}  // namespace varnpdf
