// No exception leaves an exported call.
#pragma once

#include "varnpdf/result.h"

namespace varnpdf {

/// The result of `work`. What it throws is a lack of memory, for which `code` is returned.
template <typename Work>
int guarded(Work work, int code = VARNPDF_PDF_MEMORY_ALLOCATION) noexcept {
    try {
        return work();
    } catch (...) {
        return code;
    }
}

}  // namespace varnpdf
