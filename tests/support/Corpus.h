// The corpus of PDF files that some tests read.
#pragma once

#include <cstdlib>
#include <filesystem>

namespace varnpdf::test {

inline std::filesystem::path corpus() {
    const char* const named = std::getenv("VARNPDF_CORPUS");
    return named != nullptr ? named : VARNPDF_SOURCE_DIR "/../shared/corpus";
}

}  // namespace varnpdf::test
