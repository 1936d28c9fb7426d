// CPdfHelper: zlib for a single buffer.
#include <zlib.h>

#include "varnpdf/PdfHelper.h"

int CPdfHelper::Deflate(unsigned char* in, unsigned int inLen, unsigned char* out, unsigned long* outLen) {
    if (in == nullptr || out == nullptr || outLen == nullptr) return Z_STREAM_ERROR;
    return uncompress(out, outLen, in, inLen);
}
