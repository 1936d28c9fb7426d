// A JPEG image as a document of one page; the image data is embedded as it is.
#pragma once

#include "conversion/ObjectFile.h"

namespace varnpdf {

void putJpegHead(ObjectFile& out, int width, int height, int length, bool gray);
void putJpegFoot(ObjectFile& out, int width, int height);

}  // namespace varnpdf
