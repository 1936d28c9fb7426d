// CPdfTextSearch: finding a text on the pages of a document. SigPosStruct: one place of `CPdf::SearchSigPos_PDFFile`.
#pragma once

#include <memory>
#include <vector>

#include "varnpdf/export.h"

class CPdf;

/// Where a text stands: the page, and the box around it in points from the lower left of the page's own space (ISO
/// 32000-2 8.3.2.3). The page is not turned by its /Rotate, and its box need not begin at 0 0.
struct SigPosStruct {
    int page;   ///< from 1
    double x1;  ///< lower left corner
    double y1;
    double x2;  ///< upper right corner
    double y2;
};

/// Finds texts that pages show: in their content and the forms that it paints, not in annotations and pictures.
///
/// A text is found where its characters stand on one line in any direction, also when the document paints them one by
/// one or in another order. Upper and lower case are told apart. A blank of the text matches any gap, and between other
/// characters no gap may be as wide as a blank. Ligatures are as their letters. The box has the width of the
/// characters, and from top to bottom the height of a line of their font.
/// What codes of a font mean is taken from /ToUnicode, /Encoding or the font; text whose font does not say is not found.
class VARNPDF_EXPORT CPdfTextSearch {
public:
    /// The document must be open; it outlives the search and is not changed meanwhile.
    /// Throws std::bad_alloc.
    explicit CPdfTextSearch(CPdf* pdf);
    CPdfTextSearch(const CPdfTextSearch&) = delete;
    CPdfTextSearch& operator=(const CPdfTextSearch&) = delete;
    ~CPdfTextSearch();

    /// Finds every place of a text (terminated UTF-8): page by page, from the top of each page.
    /// @return 0 with at least one hit, VARNPDF_TEXT_NOT_FOUND (-1821), VARNPDF_TEXT_UNUSABLE (-1822: null, blank, no
    ///         UTF-8, or longer than 1,000 characters), VARNPDF_SEARCH_INCOMPLETE (-1823: the hits so far are there),
    ///         VARNPDF_ROOT_OBJECT_MISSING (-1061: no open document), VARNPDF_PDF_MEMORY_ALLOCATION (-1014)
    int Find(const char* text);
    /// Of the last search; valid until the next one.
    [[nodiscard]] const std::vector<SigPosStruct>& GetHits() const noexcept;

private:
    struct State;
    std::unique_ptr<State> state_;
};
