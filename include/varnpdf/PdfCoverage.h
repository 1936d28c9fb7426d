// What the byte range of a signature was found to cover.
#pragma once

#include "varnpdf/export.h"

/// The byte range of a signature against its file (ISO 32000-2 12.8.1). Only `Complete` leaves nothing unsigned between
/// the start of the file and the end of the range: whatever else stands in the gap could show up in the document.
enum class PdfCoverage : int {
    Complete = 0,        ///< all bytes up to the end of a revision, but for the signature's own value
    NoRange = 1,         ///< no /ByteRange of four numbers
    NotFromStart = 2,    ///< the first range does not begin at offset 0
    OutsideFile = 3,     ///< the ranges overlap or reach beyond the file
    NotItsValue = 4,     ///< the gap is not the string of this dictionary's /Contents
    NoDigits = 5,        ///< something else than hexadecimal digits stands in the gap
    OddDigits = 6,       ///< an odd number of them
    NoPadding = 7,       ///< behind the value stand neither zeros nor the bytes 0x31 alone
    InsideRevision = 8,  ///< the range ends in the middle of a revision
};

/// A sentence for a finding, e.g. "its byte range lies outside of the file"; never null.
extern "C" VARNPDF_EXPORT const char* varnpdf_coverage_message(PdfCoverage coverage) noexcept;
