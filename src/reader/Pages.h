// The page tree (ISO 32000-2 7.7.3).
#pragma once

#include <array>
#include <string_view>
#include <unordered_map>
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

/// Lower left corner first, fractions kept; four zeros where there is no box.
struct PageBoxes {
    std::array<double, 4> media{};
    std::array<double, 4> crop{};  ///< the media box where none is said
};
PageBoxes pageBoxes(Document& document, const CPdfObj& page);

/// The pages of the document in order; none without a page tree.
const std::vector<CPdfObj*>& allPages(Document& document);

/// Index of the page (from 0) that lists an annotation in its /Annots, by the annotation's object number: /P of the
/// annotation is optional and often wrong.
std::unordered_map<int, int> annotationPages(Document& document);

/// Index of the page with an object number among as many pages as /Count admits, -1 without one.
int pageIndexOf(Document& document, int number);

}  // namespace varnpdf
