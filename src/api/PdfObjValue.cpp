// CPdfObj: the data and the shown value of a stream.
#include "api/FieldFont.h"
#include "forms/FieldValue.h"
#include "support/Guarded.h"
#include "support/Limits.h"
#include "varnpdf/PdfObj.h"
#include "varnpdf/result.h"

using namespace varnpdf;

int CPdfObj::ReplaceValue(const char* value, CFontObj* font, int inField) {
    return guarded([&]() -> int {
        std::size_t budget = limits::kAppearanceBytes;
        return replaceShownValue(*this, value == nullptr ? "" : value, nameOfFont(font), inField != 0, budget);
    });
}

int CPdfObj::ReplaceStream(unsigned char* data, int len) {
    if (len < 0 || (data == nullptr && len > 0)) return VARNPDF_NO_STREAM;
    return guarded([&]() -> int {
        return replaceStream(*this, {reinterpret_cast<const char*>(data), static_cast<std::size_t>(len)});
    });
}
