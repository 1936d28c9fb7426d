// CPdfHelper: where a signature stands on its page, and whether a text may stand in a string.
#include <cstring>

#include "signing/TextLayer.h"
#include "varnpdf/PdfHelper.h"
#include "varnpdf/PdfSign.h"
#include "varnpdf/result.h"

namespace {

struct Extent {
    long long width;
    long long height;
};

enum PositionMode { kPercent = 0, kLowerLeft = 1, kUpperLeft = 2, kLowerRight = 3, kUpperRight = 4 };

// The anchor in the coordinates of the page as it is seen.
Extent anchor(Extent seen, int posMode, const int* pos) {
    const long long x = pos[0];
    const long long y = pos[1];
    switch (posMode) {
        case kPercent:
            return {seen.width * x / 100, seen.height * y / 100};
        case kUpperLeft:
            return {x, seen.height - y};
        case kLowerRight:
            return {seen.width - x, y};
        case kUpperRight:
            return {seen.width - x, seen.height - y};
        default:
            return {x, y};
    }
}

}  // namespace

int CPdfHelper::GetSignaturePos(int rotation, int* pageBox, int* size, int posMode, int* pos, int* rect) {
    const int turn = rotation % 360 / 90;
    const Extent page{static_cast<long long>(pageBox[2]) - pageBox[0], static_cast<long long>(pageBox[3]) - pageBox[1]};
    const bool upright = turn == 0 || turn == 2;
    const bool quarter = turn == 1 || turn == 3;
    const Extent seen = quarter ? Extent{page.height, page.width} : page;
    const long long w = size[0];
    const long long h = size[1];
    const bool fits = upright || quarter ? w <= seen.width && h <= seen.height : w == 0;
    if (!fits) return 0;

    const auto [x, y] = anchor(seen, posMode, pos);
    long long corners[4] = {x, y, x + w, y + h};
    if (turn == 1) {
        const long long turned[4] = {page.width - y - h, x, page.width - y, x + w};
        std::memcpy(corners, turned, sizeof turned);
    } else if (turn == 2) {
        const long long turned[4] = {page.width - x, page.height - y, page.width - x - w, page.height - y - h};
        std::memcpy(corners, turned, sizeof turned);
    } else if (turn == 3) {
        const long long turned[4] = {y, page.height - x - w, y + h, page.height - x};
        std::memcpy(corners, turned, sizeof turned);
    }
    for (int i = 0; i < 4; ++i) {
        const long long most = i % 2 == 0 ? page.width : page.height;
        if (corners[i] < 0 || corners[i] > most) return 0;
    }
    for (int i = 0; i < 4; ++i) rect[i] = static_cast<int>(corners[i]);
    return 1;
}

int CPdfHelper::CheckThis(const char* text, int max) {
    if (text == nullptr) return VARNPDF_OK;
    const std::size_t length = std::strlen(text);
    if (length > static_cast<std::size_t>(max < 0 ? 0 : max)) return VARNPDF_TEXT_TOO_LONG;
    int open = 0;
    for (std::size_t i = 0; i < length; ++i) {
        if (text[i] == '\\') {
            if (++i == length) return VARNPDF_TEXT_BREAKS_STRING;
        } else if (text[i] == '(') {
            ++open;
        } else if (text[i] == ')' && --open < 0) {
            return VARNPDF_TEXT_BREAKS_STRING;
        }
    }
    return open == 0 ? VARNPDF_OK : VARNPDF_TEXT_BREAKS_STRING;
}

int CPdfHelper::GetTextStreamLayer(char* buffer, int* length, int width, int height, FormfieldInfo_tag* fields,
                                   int fieldCount) {
    const std::string layer = varnpdf::textLayer(width, height, fields, fieldCount);
    if (buffer != nullptr) std::memcpy(buffer, layer.c_str(), layer.size() + 1);
    if (length != nullptr) *length = static_cast<int>(layer.size());
    return 0;
}

int CPdfHelper::IntFontname(char* out, int family, int style) {
    const std::string name = varnpdf::fontName(family, style);
    if (out != nullptr) std::memcpy(out, name.c_str(), name.size() + 1);
    return 0;
}
