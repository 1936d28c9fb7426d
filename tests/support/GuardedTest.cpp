// What becomes of exceptions at the border.
#include "support/Guarded.h"

#include <gtest/gtest.h>

#include <functional>
#include <new>
#include <stdexcept>

namespace {

TEST(Guarded, TellsLackOfMemoryFromTheRest) {
    const struct {
        std::function<int()> work;
        int code, alone;
    } rows[] = {
        {[] { return 7; }, 7, 7},
        {[]() -> int { throw std::bad_alloc(); }, -1, VARNPDF_PDF_MEMORY_ALLOCATION},
        {[]() -> int { throw std::length_error(""); }, -1, VARNPDF_PDF_MEMORY_ALLOCATION},
        {[]() -> int { throw 5; }, -2, VARNPDF_PDF_MEMORY_ALLOCATION},
    };
    for (const auto& [work, code, alone] : rows) {
        EXPECT_EQ(varnpdf::guarded(work, -1, -2), code);
        EXPECT_EQ(varnpdf::guarded(work), alone);
    }
}

}  // namespace
