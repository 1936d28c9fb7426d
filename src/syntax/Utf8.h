// UTF-8, one character at a time and whole.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace varnpdf {

inline constexpr int kUtf8End = -1;
inline constexpr int kBadUtf8 = 0x80;

/// The character of up to 31 bits at `at` (inside the text), moved behind the bytes used. `kBadUtf8` for a byte that
/// does not fit, which stays, `kUtf8End` when the text ends inside the character.
int takeUtf8(std::string_view text, std::size_t& at) noexcept;

/// The characters of well-formed UTF-8; overlong forms, surrogates and cut characters are not well-formed.
std::optional<std::u32string> charactersOf(std::string_view text);

}  // namespace varnpdf
