// Finding a text on the pages of a document.
#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "content/TextLines.h"
#include "model/Document.h"

namespace varnpdf {

struct TextHit {
    int page = 0;   ///< from 1
    Rectangle box;  ///< in default user space: points, /Rotate and the origin of /MediaBox left aside
};

struct TextHits {
    std::vector<TextHit> hits;  ///< by page, then from the top of each direction of writing, then along the line
    bool complete = true;       ///< false: there is more than limits::kTextHits, or than is gone through
};

/// It has characters, and at most limits::kSoughtCharacters.
bool isSearchable(std::u32string_view text);

/// The pages of a document in their order; nothing when it has no catalogue.
std::optional<std::vector<CPdfObj*>> pagesOf(Document& document);

/// Every place where the characters stand on one line, upper and lower case told apart. Blanks of the text match any
/// gap; between other characters is none but narrow ones. The places do not overlap. Text of right-to-left letters is found as it is read.
/// Nothing is found for a text of which `isSearchable` says no.
TextHits findText(const Document& document, const std::vector<CPdfObj*>& pages, std::u32string_view text);

}  // namespace varnpdf
