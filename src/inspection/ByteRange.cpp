// The two signed ranges of a signature.
#include "inspection/ByteRange.h"

#include "syntax/Cursor.h"

namespace varnpdf {

bool ByteRange::covers(std::size_t size, std::size_t most) const noexcept {
    if (length0 < 0 || length1 < 0 || offset1 < 0) return false;
    const auto first = static_cast<std::size_t>(length0);
    const auto second = static_cast<std::size_t>(length1);
    return first + second <= most && first <= size && static_cast<std::size_t>(offset1) <= size &&
           second <= size - static_cast<std::size_t>(offset1);
}

std::size_t ByteRange::digitCount(std::size_t size) const noexcept {
    constexpr int kBrackets = 2;
    if (length0 < 0 || gap() < kBrackets || static_cast<std::size_t>(offset1) > size) return 0;
    return static_cast<std::size_t>(gap() - kBrackets);
}

std::string_view ByteRange::digits(std::string_view document) const noexcept {
    const std::size_t count = digitCount(document.size());
    return count == 0 ? std::string_view{} : document.substr(static_cast<std::size_t>(length0) + 1, count);
}

std::optional<ByteRange> parseByteRange(std::string_view text) noexcept {
    Cursor cursor(text);
    if (!cursor.take('[')) return std::nullopt;
    ByteRange range;
    for (int* const value : {&range.offset0, &range.length0, &range.offset1, &range.length1}) {
        const auto number = cursor.takeInt();
        if (!number) return std::nullopt;
        *value = *number;
    }
    return range;
}

}  // namespace varnpdf
