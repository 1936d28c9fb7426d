// Decoding of cross-reference stream data.
#include "reader/CrossReferenceStream.h"

#include <algorithm>
#include <cstdlib>
#include <limits>

#include "syntax/Cursor.h"

namespace varnpdf {
namespace {

enum PngFilter : unsigned char { kNone = 0, kSub = 1, kUp = 2, kAverage = 3, kPaeth = 4 };

int paeth(int left, int up, int corner) {
    const int estimate = left + up - corner;
    const int toLeft = std::abs(estimate - left);
    const int toUp = std::abs(estimate - up);
    const int toCorner = std::abs(estimate - corner);
    if (toLeft <= toUp && toLeft <= toCorner) return left;
    return toUp <= toCorner ? up : corner;
}

int prediction(unsigned char filter, int left, int up, int corner) {
    switch (filter) {
        case kSub:
            return left;
        case kUp:
            return up;
        case kAverage:
            return (left + up) / 2;
        case kPaeth:
            return paeth(left, up, corner);
        default:
            return 0;
    }
}

}  // namespace

int bigEndian(std::string_view bytes) noexcept {
    constexpr auto kMost = static_cast<unsigned long long>(std::numeric_limits<int>::max());
    unsigned long long value = 0;
    for (const char byte : bytes) {
        value = (value << 8U) | static_cast<unsigned char>(byte);
        if (value > kMost) return static_cast<int>(kMost);
    }
    return static_cast<int>(value);
}

std::optional<FieldWidths> fieldWidths(std::string_view text, std::size_t most) {
    Cursor cursor(text);
    FieldWidths widths;
    if (!cursor.take('[')) return std::nullopt;
    for (std::size_t& width : widths.width) {
        const auto number = cursor.takeInt();
        if (!number || *number < 0 || static_cast<std::size_t>(*number) > most) return std::nullopt;
        width = static_cast<std::size_t>(*number);
    }
    return widths.row() == 0 ? std::nullopt : std::optional(widths);
}

bool undoPrediction(Bytes& data, std::size_t columns) {
    auto* const bytes = reinterpret_cast<unsigned char*>(data.data());
    const std::size_t size = data.size();
    std::size_t written = 0;
    for (std::size_t at = 0; at < size; at += columns + 1) {
        const unsigned char filter = bytes[at];
        if (filter > kPaeth) return false;
        const std::size_t count = std::min(columns, size - at - 1);
        // The row before lies directly in front of what is written now.
        const unsigned char* const above = written == 0 ? nullptr : bytes + written - columns;
        for (std::size_t i = 0; i < count; ++i) {
            const int up = above == nullptr ? 0 : above[i];
            const int left = i == 0 ? 0 : bytes[written + i - 1];
            const int corner = above == nullptr || i == 0 ? 0 : above[i - 1];
            bytes[written + i] = static_cast<unsigned char>(bytes[at + 1 + i] + prediction(filter, left, up, corner));
        }
        written += count;
    }
    data.setSize(written);
    return true;
}

}  // namespace varnpdf
