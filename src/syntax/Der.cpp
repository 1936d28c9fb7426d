// Length of a DER or BER element.
#include "syntax/Der.h"

#include <limits>

namespace varnpdf {
namespace {

unsigned byteAt(std::string_view der, std::size_t at) { return static_cast<unsigned char>(der[at]); }

}  // namespace

std::optional<DerHeader> derHeader(std::string_view der) {
    constexpr unsigned kHighTag = 0x1f;
    constexpr unsigned kMore = 0x80;
    std::size_t at = 0;
    if (der.empty()) return std::nullopt;
    if ((byteAt(der, at++) & kHighTag) == kHighTag) {
        while (at < der.size() && (byteAt(der, at) & kMore) != 0) ++at;
        ++at;
    }
    if (at >= der.size()) return std::nullopt;
    const unsigned first = byteAt(der, at++);
    if (first < kMore) return DerHeader{at, first, false};
    const unsigned count = first & ~kMore;
    if (count == 0) return DerHeader{at, 0, true};
    if (count > sizeof(std::size_t) || count > der.size() - at) return std::nullopt;
    std::size_t length = 0;
    for (unsigned i = 0; i < count; ++i) length = (length << 8U) | byteAt(der, at++);
    return DerHeader{at, length, false};
}

std::optional<std::size_t> derElementLength(std::string_view der, int nesting) {
    constexpr std::string_view kEndOfContents("\0\0", 2);
    const auto header = derHeader(der);
    if (!header) return std::nullopt;
    if (!header->indefinite) {
        const bool fits = header->length <= std::numeric_limits<std::size_t>::max() - header->size;
        return fits ? std::optional(header->size + header->length) : std::nullopt;
    }
    std::size_t at = header->size;
    for (int open = 1; open > 0;) {
        const std::string_view rest = der.substr(at);
        if (rest.starts_with(kEndOfContents)) {
            at += kEndOfContents.size();
            --open;
            continue;
        }
        const auto inner = derHeader(rest);
        if (!inner || inner->length > rest.size() - inner->size) return std::nullopt;
        at += inner->size + inner->length;
        if (inner->indefinite && ++open > nesting) return std::nullopt;
    }
    return at;
}

}  // namespace varnpdf
