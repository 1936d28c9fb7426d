// No exception leaves an exported call that has a result to give instead.
#pragma once

#include "varnpdf/result.h"

namespace varnpdf {

/// For a handler: `memoryCode` when what was thrown means a lack of memory, a text too long to be held included;
/// `otherCode`, and an error in the log, for anything else.
int codeOfException(int memoryCode, int otherCode) noexcept;

/// The result of `work`, or a code for what it throws.
template <typename Work>
int guarded(Work work, int memoryCode, int otherCode) noexcept {
    try {
        return work();
    } catch (...) {
        return codeOfException(memoryCode, otherCode);
    }
}

/// One code for both: where nothing but memory can be lacking, or the interface knows one failure only.
template <typename Work>
int guarded(Work work, int code = VARNPDF_PDF_MEMORY_ALLOCATION) noexcept {
    return guarded(work, code, code);
}

/// The result of `work`, or `none` when it throws: for members whose result can say that there is nothing.
template <typename Result, typename Work>
Result guardedOr(Result none, Work work) noexcept {
    try {
        return work();
    } catch (...) {
        codeOfException(0, 0);
        return none;
    }
}

}  // namespace varnpdf
