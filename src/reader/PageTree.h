// The page tree as walked, remembered while nothing changes.
#pragma once

#include <array>
#include <optional>
#include <unordered_map>

#include "model/ObjectList.h"

namespace varnpdf {

/// What a page or a node above it says itself about the attributes that pages inherit (ISO 32000-2 7.7.3.4).
struct PageNode {
    std::optional<std::array<int, 4>> box;
    std::optional<int> rotation;
    const CPdfObj* parent = nullptr;
};

struct PageTree : ObjectList {
    std::unordered_map<const CPdfObj*, PageNode> nodes;
};

}  // namespace varnpdf
