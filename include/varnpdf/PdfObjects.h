// CPdfObjects: going through the objects of a document.
#pragma once

#include <vector>

#include "varnpdf/export.h"

class CPdf;
class CPdfObj;

/// For `for (CPdfObj* object : CPdfObjects::All(pdf))`.
class VARNPDF_EXPORT CPdfObjects {
public:
    CPdfObjects() = delete;

    /// The objects that the document has at this moment, in ascending order of their slots; owned by it. Lets
    /// std::bad_alloc out.
    static std::vector<CPdfObj*> All(CPdf& pdf);
};
