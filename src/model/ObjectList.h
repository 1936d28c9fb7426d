// Objects found by a walk over the document, remembered while nothing changes.
#pragma once

#include <cstdint>
#include <vector>

class CPdfObj;

namespace varnpdf {

struct ObjectList {
    const CPdfObj* root = nullptr;  ///< where the walk began, null for a walk over all objects
    std::uint64_t revision = 0;     ///< of the object table when it was walked
    std::vector<CPdfObj*> objects;
};

}  // namespace varnpdf
