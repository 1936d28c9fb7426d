// CPdfHelper: what serves a visible signature.
#include <algorithm>
#include <cstring>

#include "signing/Placement.h"
#include "signing/TextLayer.h"
#include "support/Guarded.h"
#include "syntax/Text.h"
#include "varnpdf/PdfHelper.h"
#include "varnpdf/result.h"

using namespace varnpdf;

int CPdfHelper::GetSignaturePos(int rotation, int* pageBox, int* size, int posMode, int* pos, int* rect) {
    const std::array<int, 4> box{pageBox[0], pageBox[1], pageBox[2], pageBox[3]};
    const auto found = signatureRect(rotation, box, {size[0], size[1]}, posMode, {pos[0], pos[1]});
    if (!found) return 0;
    std::copy(found->begin(), found->end(), rect);
    return 1;
}

int CPdfHelper::CheckThis(const char* text, int max) {
    return checkLiteral(viewOf(text), static_cast<std::size_t>(std::max(max, 0)));
}

int CPdfHelper::GetTextStreamLayer(char* buffer, int* length, int width, int height, FormfieldInfo_tag* fields,
                                   int fieldCount) {
    const auto count = static_cast<std::size_t>(fields == nullptr ? 0 : std::max(fieldCount, 0));
    return guarded([&]() -> int {
        const std::string layer = textLayer(width, height, {fields, count});
        if (buffer != nullptr) std::memcpy(buffer, layer.c_str(), layer.size() + 1);
        if (length != nullptr) *length = static_cast<int>(layer.size());
        return VARNPDF_OK;
    });
}

int CPdfHelper::IntFontname(char* out, int family, int style) {
    const std::string name = fontName(family, style);
    if (out != nullptr) std::memcpy(out, name.c_str(), name.size() + 1);
    return 0;
}
