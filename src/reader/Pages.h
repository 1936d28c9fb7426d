// The page tree (ISO 32000-2 7.7.3).
#pragma once

#include <array>
#include <string_view>
#include <vector>

#include "model/Document.h"

namespace varnpdf {

/// The leaves below a list of references in document order. `root` is the node whose kids these are, or null. Nodes met
/// before end their branch.
void walkTree(const Document& document, std::string_view references, const CPdfObj* root, bool (*isLeaf)(CPdfObj&),
              std::vector<CPdfObj*>& leaves);
/// An object of /Type /Page.
bool isPage(CPdfObj& obj);

/// The node at the head of the page tree, or null.
CPdfObj* pagesRoot(const Document& document, const CPdfObj& catalogue);
/// The pages below a node in document order, walked once for each state of the objects.
const std::vector<CPdfObj*>& pagesBelow(Document& document, CPdfObj& root);

struct PageAttributes {
    std::array<int, 4> box{};  ///< lower left corner first, fractions dropped
    int rotation = 0;          ///< degrees as written, a negative value plus 360
};
/// What the page says itself or inherits.
PageAttributes pageAttributes(Document& document, const CPdfObj& page);

/// Index of the page with an object number among as many pages as /Count admits, -1 without one.
int pageIndexOf(Document& document, int number);

}  // namespace varnpdf
