// A TIFF as a document, one page for each directory.
#pragma once

#include <tiffio.h>

#include <string>

#include "conversion/ObjectFile.h"

namespace varnpdf {

/// The page of an image as its tags want it.
struct TiffPage {
    Hundredths width{};
    Hundredths height{};
    std::string matrix;  ///< operands of "cm" that put the unit square of the image on the page
};
TiffPage pageOf(TIFF* tif, std::uint32_t columns, std::uint32_t rows);

/// Writes the document. 0 or a code of the conversion.
int putTiff(ObjectFile& out, TIFF* tif);

}  // namespace varnpdf
