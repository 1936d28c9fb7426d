// Readers of PDF objects on views: what stands at the start of a text, and where it ends.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "support/Limits.h"
#include "syntax/Cursor.h"

namespace varnpdf {

/// Offset of the first byte that is not white space.
std::size_t skipWhitespaces(std::string_view text) noexcept;

/// Every byte in the first half of the token (rounded up) may stand in a number.
bool onlyDecimalDigits(std::string_view token) noexcept;

struct NumberToken {
    bool isFloat = false;
    float real = 0;   ///< set when `isFloat`
    int integer = 0;  ///< set otherwise
    std::size_t end = 0;
};

/// The number behind at most `skipBound` bytes of white space. Values out of range saturate.
std::optional<NumberToken> readNumber(std::string_view text, std::size_t skipBound = std::string_view::npos) noexcept;

enum class ObjectKind : int {
    None = 0,
    Boolean = 1,
    Number = 2,
    String = 3,
    Name = 4,
    Array = 5,
    Dictionary = 6,
    Stream = 7,
    Null = 8,
    Reference = 9,
};

/// An object without the white space in front of it.
struct ObjectToken {
    ObjectKind kind = ObjectKind::None;
    std::size_t end = 0;  ///< offset behind it
    std::size_t begin = 0;

    [[nodiscard]] constexpr std::string_view of(std::string_view text) const noexcept {
        return TextSpan{begin, end}.of(text);
    }
};

/// The object at the start of the text, behind white space. `nesting` is the number of arrays and dictionaries that
/// may stand inside each other. `attempted` receives the kind that the text starts like, also when it cannot be read.
/// Reads each byte a bounded number of times, however deep it is nested.
std::optional<ObjectToken> readObject(std::string_view text, int nesting = limits::kNesting,
                                      ObjectKind* attempted = nullptr) noexcept;

struct StringToken {
    bool hexadecimal = false;
    std::size_t end = 0;  ///< offset behind the closing delimiter
    std::size_t begin = 0;
};
std::optional<StringToken> readString(std::string_view text) noexcept;

/// The array at the start of the text, behind white space, from "[" through "]". An array without elements fails.
std::optional<TextSpan> readArray(std::string_view text, int nesting = limits::kNesting) noexcept;

/// The first dictionary anywhere in the text, from "<<" through ">>". A dictionary without entries fails.
std::optional<TextSpan> readDict(std::string_view text, int nesting = limits::kNesting) noexcept;

/// Element `index` of an array that starts with a number or a reference.
std::optional<TextSpan> readArrayElement(std::string_view text, std::size_t index) noexcept;

struct DictEntry {
    std::size_t keyPos = 0;
    TextSpan value;  ///< empty where the dictionary ends behind the key
};
/// The entry of the text's first dictionary whose key is `key`, with or without "/". A value that is the name in
/// question counts as the key.
std::optional<DictEntry> readDictEntry(std::string_view text, std::string_view key) noexcept;

/// "[" stands behind the white space, "<<" likewise; text of a single byte, or of two, is too short for that.
bool isArray(std::string_view text) noexcept;
bool isDict(std::string_view text) noexcept;
/// "xref" stands behind the white space.
bool isTrailerDict(std::string_view text) noexcept;

/// The dictionary behind the first "trailer" of a text that starts with "xref".
std::optional<TextSpan> readTrailerDict(std::string_view text) noexcept;

/// What stands between "obj" with the white space behind it and the next "endobj"; empty without "obj", the rest
/// without "endobj".
TextSpan objectContent(std::string_view text) noexcept;

struct NumberCount {
    bool complete = false;  ///< the text or the array ended behind the last number
    int count = 0;
};
NumberCount countNumbers(std::string_view text) noexcept;

/// A backslash before each parenthesis and backslash, except at the first byte and behind a backslash.
std::string escapeLiteral(std::string_view text);
/// The text without any backslash.
std::string unescapeLiteral(std::string_view text);

}  // namespace varnpdf
