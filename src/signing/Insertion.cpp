// The value of a signature as it stands in its room.
#include "signing/Insertion.h"

#include <array>
#include <cstring>
#include <string_view>

namespace varnpdf {
namespace {

// The two digits of every byte.
constexpr std::array<std::array<char, 2>, 256> hexPairs() {
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    std::array<std::array<char, 2>, 256> pairs{};
    for (std::size_t i = 0; i < pairs.size(); ++i) pairs[i] = {kDigits[i >> 4U], kDigits[i & 15U]};
    return pairs;
}

}  // namespace

void fillRoom(char* out, const unsigned char* value, std::size_t length, std::size_t contentsSize) {
    static constexpr auto kPairs = hexPairs();
    *out++ = '<';
    if (value != nullptr && length <= contentsSize) {
        for (std::size_t i = 0; i < length; ++i, out += 2) std::memcpy(out, kPairs[value[i]].data(), 2);
        for (std::size_t i = length; i < contentsSize; ++i, out += 2) std::memcpy(out, "31", 2);
    }
    *out = '>';
}

}  // namespace varnpdf
