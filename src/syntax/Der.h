// Length of a DER or BER element (ITU-T X.690).
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

#include "support/Limits.h"

namespace varnpdf {

struct DerHeader {
    std::size_t size = 0;    ///< bytes of tag and length
    std::size_t length = 0;  ///< bytes of content, 0 when indefinite
    bool indefinite = false;
};

/// The header at the start; nothing when it is cut off or its length needs more than 8 bytes.
std::optional<DerHeader> derHeader(std::string_view der);

/// Header and content of the element at the start. A definite length is taken at its word; an indefinite one is walked
/// to its end-of-contents, which must be there.
std::optional<std::size_t> derElementLength(std::string_view der, int nesting = limits::kNesting);

}  // namespace varnpdf
