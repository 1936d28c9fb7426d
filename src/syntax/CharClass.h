// Byte classes of PDF syntax: one table, computed from the readable sets.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace varnpdf {

/// White space of this library: BEL belongs to it, NUL does not.
inline constexpr std::string_view kWhiteSpace = " \n\r\f\t\a";
inline constexpr std::string_view kDelimiters = "()<>[]{}/%";
inline constexpr std::string_view kBracketsOpen = "(<[{";
inline constexpr std::string_view kBracketsClose = ")>]}";
inline constexpr std::string_view kDigits = "0123456789";
inline constexpr std::string_view kNumberBytes = "0123456789.+-";
inline constexpr std::string_view kHexDigits = "0123456789abcdefABCDEF";
/// What isspace() accepts in the "C" locale, whatever locale the host has set.
inline constexpr std::string_view kCSpace = " \t\n\v\f\r";
inline constexpr std::string_view kEol = "\n\r";

enum CharClass : std::uint16_t {
    kIsWhite = 1U << 0U,
    kIsDelimiter = 1U << 1U,
    kIsBracketOpen = 1U << 2U,
    kIsBracketClose = 1U << 3U,
    kIsDigit = 1U << 4U,
    kIsNumberByte = 1U << 5U,
    kIsHexDigit = 1U << 6U,
    kIsCSpace = 1U << 7U,
    kIsEol = 1U << 8U,
};

namespace detail {

constexpr void mark(std::array<std::uint16_t, 256>& table, std::string_view set, CharClass bit) {
    for (const char c : set) {
        auto& entry = table[static_cast<unsigned char>(c)];
        entry = static_cast<std::uint16_t>(entry | bit);
    }
}

constexpr std::array<std::uint16_t, 256> charTable() {
    std::array<std::uint16_t, 256> table{};
    mark(table, kWhiteSpace, kIsWhite);
    mark(table, kDelimiters, kIsDelimiter);
    mark(table, kBracketsOpen, kIsBracketOpen);
    mark(table, kBracketsClose, kIsBracketClose);
    mark(table, kDigits, kIsDigit);
    mark(table, kNumberBytes, kIsNumberByte);
    mark(table, kHexDigits, kIsHexDigit);
    mark(table, kCSpace, kIsCSpace);
    mark(table, kEol, kIsEol);
    return table;
}

inline constexpr std::array<std::uint16_t, 256> kCharTable = charTable();

}  // namespace detail

/// True when `c` belongs to one of the classes in `mask`.
constexpr bool isClass(char c, unsigned mask) noexcept {
    return (detail::kCharTable[static_cast<unsigned char>(c)] & mask) != 0;
}

constexpr bool isWhite(char c) noexcept { return isClass(c, kIsWhite); }
constexpr bool isDelimiter(char c) noexcept { return isClass(c, kIsDelimiter); }
/// Part of a name, number or keyword: neither white space nor delimiter.
constexpr bool isRegular(char c) noexcept { return !isClass(c, kIsWhite | kIsDelimiter); }
constexpr bool isDigit(char c) noexcept { return isClass(c, kIsDigit); }
constexpr bool isCSpace(char c) noexcept { return isClass(c, kIsCSpace); }
constexpr bool isEol(char c) noexcept { return isClass(c, kIsEol); }

/// Value of a hexadecimal digit of either case, -1 for any other byte.
constexpr int hexValue(char c) noexcept {
    if (!isClass(c, kIsHexDigit)) return -1;
    return isDigit(c) ? c - '0' : (c | 0x20) - 'a' + 10;
}

}  // namespace varnpdf
