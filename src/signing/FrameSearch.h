// The frame that some office suites draw where a signature is wanted.
#pragma once

#include <array>
#include <optional>

#include "model/Document.h"

namespace varnpdf {

struct DrawnFrame {
    int page = 0;                    ///< index
    std::array<int, 4> rectangle{};  ///< x, y, width and height in points, rounded down
};
/// Of several frames the last. `code` becomes VARNPDF_OK, or what keeps the document from being searched.
std::optional<DrawnFrame> findDrawnFrame(Document& document, int& code);

}  // namespace varnpdf
