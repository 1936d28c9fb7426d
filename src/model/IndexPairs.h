// The /Index array of a cross-reference stream (ISO 32000-2 7.5.8.2).
#pragma once

#include <string_view>
#include <vector>

namespace varnpdf {

struct IndexPair {
    int first;
    int count;
};

/// The whole numbers of the text taken pairwise; brackets and whatever else stands between them is passed over.
std::vector<IndexPair> indexPairs(std::string_view text);

}  // namespace varnpdf
