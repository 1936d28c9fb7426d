// The two signed ranges of a signature (ISO 32000-2 12.8.1).
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace varnpdf {

struct ByteRange {
    int offset0 = 0;
    int length0 = 0;
    int offset1 = 0;
    int length1 = 0;

    /// Both ranges lie inside a document of `size` bytes and together have at most `most` bytes.
    [[nodiscard]] bool covers(std::size_t size, std::size_t most) const noexcept;
    /// Bytes between the ranges: the value of /Contents with its delimiters.
    [[nodiscard]] long long gap() const noexcept { return static_cast<long long>(offset1) - length0; }
    /// The value is "<>".
    [[nodiscard]] bool isEmptyRoom() const noexcept { return gap() == 2; }
    /// Characters between the brackets in the gap, 0 when the gap is none in a document of `size` bytes.
    [[nodiscard]] std::size_t digitCount(std::size_t size) const noexcept;
    /// Those characters.
    [[nodiscard]] std::string_view digits(std::string_view document) const noexcept;
};

/// Reads "[%d %d %d %d ]".
std::optional<ByteRange> parseByteRange(std::string_view text) noexcept;

}  // namespace varnpdf
