// The readers of PDF syntax and the text utilities on arbitrary text.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "fuzz/support/Readers.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    varnpdf::fuzz::readEverything(text);
    varnpdf::fuzz::convertEverything(text);
    return 0;
}
