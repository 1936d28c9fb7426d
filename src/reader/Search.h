// Searching the bytes of a document for keywords.
#pragma once

#include <string_view>

#include "model/Document.h"

namespace varnpdf {

/// The search for a keyword, made once for each document.
KeywordSearch& search(Document& document, std::string_view keyword, bool standalone);
/// Offset of the first occurrence behind `start` that stands alone, `KeywordSearch::kNone` without one.
std::size_t nextKeyword(Document& document, std::string_view keyword, std::size_t start);
/// Of the last one; "startxref" is sought near the end only (ISO 32000-2 7.5.5).
std::size_t lastKeyword(Document& document, std::string_view keyword);

}  // namespace varnpdf
