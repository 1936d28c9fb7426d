// References, arrays of references and the bracket, trimming and hexadecimal utilities around them.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

#include "syntax/Cursor.h"

namespace varnpdf {

struct ObjectRef {
    int number = 0;
    int generation = 0;
    friend constexpr bool operator==(const ObjectRef&, const ObjectRef&) = default;
};

/// Two integers at the start, as sscanf(text, "%d %d R", ...) == 2 has it: the "R" is not asked for.
std::optional<ObjectRef> scanReference(std::string_view text) noexcept;

/// A text without a bracket pair that scans as word, number, number or as number, number. A word with a single number
/// behind it passes as well, with 0 for what cannot be read from the start.
std::optional<ObjectRef> isReference(std::string_view text) noexcept;

/// The reading behind `isReference`: a number that is missing was not converted.
struct ScannedReference {
    std::optional<int> number;
    std::optional<int> generation;
};
std::optional<ScannedReference> scanLenientReference(std::string_view text) noexcept;

struct ReferenceToken {
    ObjectRef ref;
    std::size_t end = 0;  ///< offset behind the "R"
};
/// Number, number, "R" at the start, by the syntax of numbers; a number with a decimal point counts 0.
std::optional<ReferenceToken> readReference(std::string_view text) noexcept;
std::optional<ObjectRef> isReference2(std::string_view text) noexcept;

/// One dictionary: "<<" to ">>" with as many "<" as ">" in it, white space around it left aside.
bool isDictionary(std::string_view text) noexcept;

/// From the first "[" through the first "]" behind it, empty when one is missing.
std::string_view stripReferenceArray(std::string_view text) noexcept;

struct BracketPair {
    char open = '(';
    char close = ')';
};
/// 1 is [ ], 2 is < >, anything else ( ).
constexpr BracketPair bracketPair(int kind) noexcept {
    return kind == 1 ? BracketPair{'[', ']'} : kind == 2 ? BracketPair{'<', '>'} : BracketPair{};
}
/// The text without white space around it, without one opening bracket in front and one closing bracket at the end.
std::string_view stripBrackets(std::string_view text, int kind) noexcept;

/// The three questions to the text of an array; `len` is the length the caller gives for it, brackets included.
int arrayReferenceCount(std::string_view text, std::size_t len) noexcept;
int arrayType(std::string_view text) noexcept;
std::string_view arrayEntry(std::string_view text, std::size_t len, int which) noexcept;

/// The text without the bytes of `set` at its ends, or at its right end.
std::string_view trim(std::string_view text, std::string_view set = kCSpace) noexcept;
std::string_view trimRight(std::string_view text, std::string_view set = kCSpace) noexcept;

/// Converts pairs of hexadecimal digits to at most `outLen` bytes and says how many. Carriage returns are passed over;
/// what is no digit counts 0.
std::size_t hexToBytes(std::string_view hex, unsigned char* out, std::size_t outLen) noexcept;

}  // namespace varnpdf
