// No exception leaves an exported call that has a code to give.
#pragma once

#include <new>
#include <stdexcept>

#include "varnpdf/result.h"

namespace varnpdf {

/// The result of `work`, or a code for what it throws: a lack of memory, a text too long to be held included, or anything
/// else.
template <typename Work>
int guarded(Work work, int memoryCode, int otherCode) noexcept {
    try {
        return work();
    } catch (const std::bad_alloc&) {
        return memoryCode;
    } catch (const std::length_error&) {
        return memoryCode;
    } catch (...) {
        return otherCode;
    }
}

/// One code for both: where nothing but memory can be lacking.
template <typename Work>
int guarded(Work work, int code = VARNPDF_PDF_MEMORY_ALLOCATION) noexcept {
    return guarded(work, code, code);
}

}  // namespace varnpdf
