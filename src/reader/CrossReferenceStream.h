// Decoding of cross-reference stream data (ISO 32000-2 7.5.8).
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

#include "support/Inflate.h"

namespace varnpdf {

/// Big-endian unsigned value of the bytes; what does not fit an int saturates. 0 without bytes.
int bigEndian(std::string_view bytes) noexcept;

/// The three field widths of /W.
struct FieldWidths {
    std::array<std::size_t, 3> width{};
    [[nodiscard]] std::size_t row() const noexcept { return width[0] + width[1] + width[2]; }
};

/// Reads "[%d %d %d]". Nothing when a width is negative, all are 0, or one is beyond limits::kFieldWidth.
std::optional<FieldWidths> fieldWidths(std::string_view text);

enum : long { kPredictorNone = 1, kPredictorUp = 12 };

/// Undoes the PNG prediction of rows of one filter byte and `columns` bytes, in place; the result is the data without
/// filter bytes. Writers declare "Up" for all rows; rows that say otherwise are undone as the PNG standard defines
/// them for one byte a pixel. False for a row with an unknown filter.
bool undoPrediction(Bytes& data, std::size_t columns);

}  // namespace varnpdf
