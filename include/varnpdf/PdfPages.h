// CPdfPages: the pages of a document, and places on them.
#pragma once

#include <vector>

#include "varnpdf/export.h"

class CPdf;

/// A page with what it inherits (ISO 32000-2 7.7.3.4). Boxes are in points, the lower left corner first; four zeros
/// where there is none.
struct PdfPage {
    int object = -1;  ///< object number
    double mediaBox[4] = {};
    double cropBox[4] = {};  ///< the media box where none is said
    int rotation = 0;        ///< degrees as written, a negative value plus 360
};

/// A place as `CPdfSign::SignPDFFile` takes it: `mode` 0 percent of the page, 1 to 4 points from the lower left, upper
/// left, lower right, upper right corner of the page as it is seen.
struct PdfPosition {
    int mode = 1;
    int x = 0;
    int y = 0;
};

class VARNPDF_EXPORT CPdfPages {
public:
    CPdfPages() = delete;

    /// All pages in order; none without a page tree. Lets std::bad_alloc out.
    static std::vector<PdfPage> All(CPdf& pdf);

    /// The same place counted from 0 0, as `SignPDFFile` counts, on a page whose media box may begin elsewhere.
    /// Percentages become points. Fractions of the box are dropped.
    static PdfPosition FromOrigin(const PdfPosition& position, const PdfPage& page) noexcept;
    /// The rectangle (lower left corner first, in the page's own space) that something of this size takes there: what
    /// `CPdfHelper::GetSignaturePos` gives for a media box that begins at 0 0. False when it does not fit the page.
    static bool Place(const PdfPosition& position, int width, int height, const PdfPage& page, double* rect) noexcept;
};
