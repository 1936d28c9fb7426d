// An update in the output stream of a document.
#pragma once

#include <string_view>
#include <vector>

#include "api/PdfState.h"

namespace varnpdf {

/// The whole file: the old document and the update behind it.
inline void writeOutput(CPdf& pdf, const std::vector<std::string_view>& update) {
    PdfState& state = Access::state(pdf);
    state.output.init(static_cast<unsigned int>(state.document.length));
    print(state, state.document.view());
    for (const std::string_view piece : update) print(state, piece);
}

}  // namespace varnpdf
