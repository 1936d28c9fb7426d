// Pictures as image XObjects.
#include "writer/ImageObject.h"

#include <string_view>

#include "support/Text.h"

namespace varnpdf {
namespace {

std::string jpegObject(int number, const JpegPlane& plane, std::string_view colourSpace, std::string_view more) {
    std::string out;
    append(out, number, " 0 obj\r\n");
    append(out, "<< \r\n    /Type /XObject\r\n   /Subtype /Image\r\n   /Filter /DCTDecode\r\n   /Length ",
           plane.data.size(), "\r\n   /Width ", plane.width, "\r\n   /Height ", plane.height,
           "\r\n   /BitsPerComponent 8\r\n   ", colourSpace, " \r\n   ", more, " \r\n>>\r\nstream\r\n", plane.data,
           "\r\nendstream\r\nendobj\r\n");
    return out;
}

}  // namespace

std::string imageObject(int number, const JpegImage& image, int mask) {
    return jpegObject(number, image.colour, image.colourSpace,
                      mask == 0 ? std::string{} : text("/SMask ", mask, " 0 R\r\n"));
}

std::string maskObject(int number, const JpegImage& image) {
    return jpegObject(number, image.alpha, "/ColorSpace /DeviceGray", "");
}

}  // namespace varnpdf
