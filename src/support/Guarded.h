// No exception leaves an exported call.
#pragma once

#include "varnpdf/result.h"

namespace varnpdf {

/// The result of `work`; what it throws is a lack of memory.
template <typename Work>
int guarded(Work work) noexcept {
    try {
        return work();
    } catch (...) {
        return VARNPDF_PDF_MEMORY_ALLOCATION;
    }
}

}  // namespace varnpdf
