// Text that we write is a list of parts.
#pragma once

#include <charconv>
#include <concepts>
#include <string>
#include <string_view>

namespace varnpdf {

/// A decimal number padded with zeros to `width` digits.
struct Digits {
    long long value;
    int width;
};

/// A decimal number padded with blanks to `width` characters.
struct Padded {
    long long value;
    int width;
};

namespace detail {

inline void appendNumber(std::string& out, long long value, int width, char fill) {
    char digits[24];
    const auto end = std::to_chars(digits, digits + sizeof digits, value).ptr;
    for (auto length = end - digits; length < width; ++length) out.push_back(fill);
    out.append(digits, end);
}

}  // namespace detail

inline void appendPart(std::string& out, std::string_view text) { out.append(text); }
inline void appendPart(std::string& out, const char* text) { out.append(text); }
inline void appendPart(std::string& out, char c) { out.push_back(c); }
inline void appendPart(std::string& out, Digits number) { detail::appendNumber(out, number.value, number.width, '0'); }
inline void appendPart(std::string& out, Padded number) { detail::appendNumber(out, number.value, number.width, ' '); }
template <std::integral Number>
requires(!std::same_as<Number, char> && !std::same_as<Number, bool>) void appendPart(std::string& out, Number number) {
    detail::appendNumber(out, static_cast<long long>(number), 0, ' ');
}

/// Appends every part: texts as they are, integers in decimal digits.
template <typename... Parts>
void append(std::string& out, const Parts&... parts) {
    (appendPart(out, parts), ...);
}

template <typename... Parts>
std::string text(const Parts&... parts) {
    std::string out;
    append(out, parts...);
    return out;
}

}  // namespace varnpdf
