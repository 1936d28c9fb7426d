// Decoding of cross-reference stream data.
#include "reader/CrossReferenceStream.h"

#include <limits>

#include "support/Limits.h"
#include "syntax/Cursor.h"
#include "syntax/Filters.h"

namespace varnpdf {

int bigEndian(std::string_view bytes) noexcept {
    constexpr auto kMost = static_cast<unsigned long long>(std::numeric_limits<int>::max());
    unsigned long long value = 0;
    for (const char byte : bytes) {
        value = (value << 8U) | static_cast<unsigned char>(byte);
        if (value > kMost) return static_cast<int>(kMost);
    }
    return static_cast<int>(value);
}

std::optional<FieldWidths> fieldWidths(std::string_view text) {
    Cursor cursor(text);
    FieldWidths widths;
    if (!cursor.take('[')) return std::nullopt;
    for (std::size_t& width : widths.width) {
        const auto number = cursor.takeInt();
        if (!number || *number < 0 || *number > limits::kFieldWidth) return std::nullopt;
        width = static_cast<std::size_t>(*number);
    }
    return widths.row() == 0 ? std::nullopt : std::optional(widths);
}

bool undoPrediction(Bytes& data, std::size_t columns) {
    FilterParms parms;
    parms.predictor = kPredictorUp;
    parms.columns = static_cast<int>(columns);
    return undoPrediction(data, parms);
}

}  // namespace varnpdf
