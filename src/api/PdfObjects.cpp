// CPdfObjects: going through the objects of a document.
#include "varnpdf/PdfObjects.h"

#include <limits>

#include "api/PdfState.h"

using namespace varnpdf;

std::vector<CPdfObj*> CPdfObjects::All(CPdf& pdf) {
    const ObjectTable& table = documentOf(pdf).objects;
    std::vector<CPdfObj*> out;
    out.reserve(table.size());
    table.forEach(std::numeric_limits<int>::max(), [&](int, CPdfObj& object) { out.push_back(&object); });
    return out;
}
