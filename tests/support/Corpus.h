// The corpus of PDF files that some tests read.
#pragma once

#include <cstdlib>
#include <filesystem>

namespace varnpdf::test {

/// The directory that VARNPDF_CORPUS names; empty without one, and its tests are skipped.
inline std::filesystem::path corpus() {
    const char* const named = std::getenv("VARNPDF_CORPUS");
    return named != nullptr ? named : "";
}

}  // namespace varnpdf::test
