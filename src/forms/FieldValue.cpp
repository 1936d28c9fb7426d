// CPdfObj: replacing the data and the shown value of an appearance stream.
#include "forms/FieldValue.h"

#include <algorithm>
#include <cmath>

#include "forms/AppearanceContent.h"
#include "support/Guarded.h"
#include "support/Limits.h"
#include "support/Text.h"
#include "syntax/Dictionary.h"
#include "syntax/Encoding.h"
#include "syntax/Values.h"
#include "varnpdf/PdfFields.h"
#include "varnpdf/result.h"

using namespace varnpdf;

namespace {

// An object alone: what it refers to is not known.
struct NoReferences : References {
    [[nodiscard]] std::string_view follow(std::string_view value) const override {
        return referenceOf(value) ? std::string_view{} : value;
    }
};

std::string winAnsi(std::u32string_view value) {
    std::string out;
    for (const char32_t c : value) out += FieldFont::helvetica().encode(std::u32string(1, c)).value_or("?");
    return out;
}

// A line for an appearance that showed nothing.
std::string lineFor(std::string_view head, std::string_view codes, const CFontObj* font) {
    constexpr double kMostPoints = 12;
    const std::vector<double> box = numbersOf(Dictionary(head).find("/BBox"));
    TextBox place{0, 0, 100, 20};
    if (box.size() >= 4 && box[2] > box[0] && box[3] > box[1]) {
        place = {box[0], box[1], box[2] - box[0], box[3] - box[1]};
    }
    TextStyle style;
    style.appearance = {font == nullptr ? "Helv" : font->GetShortName(), 0, "0 g"};
    const double room = place.width - 4;
    const double needed = FieldFont::helvetica().width(codes);
    style.appearance.size =
        std::clamp(std::min(place.height * 0.7, needed > 0 ? room / needed : kMostPoints), 4.0, kMostPoints);
    return fieldText(place, style, FieldFont::helvetica(), codes);
}

}  // namespace

int varnpdf::replaceShownValue(CPdfObj& appearance, std::string_view value, const CFontObj* font, int inField,
                               std::size_t& budget) {
    const auto parts = streamParts(appearance.content(), NoReferences{}, budget);
    if (!parts) return VARNPDF_NO_STREAM;
    const std::string codes = winAnsi(fromUtf8OrLatin1(value));
    const auto marked = markedText(parts->data);
    auto replaced = inField == 0 || marked || !codes.empty() ? withShownCodes(parts->data, codes) : std::nullopt;
    if (!replaced && inField == 0) return VARNPDF_NO_TJ;
    if (!replaced) replaced = withMarkedText(parts->data, lineFor(parts->head, codes, font));
    appearance.setContent(streamObject(parts->head, *replaced, parts->packed));
    return VARNPDF_OK;
}

int CPdfObj::ReplaceValue(const char* value, CFontObj* font, int inField) {
    return guarded([&]() -> int {
        std::size_t budget = limits::kAppearanceBytes;
        return replaceShownValue(*this, value == nullptr ? "" : value, font, inField, budget);
    });
}

int CPdfObj::ReplaceStream(unsigned char* data, int len) {
    if (len < 0 || (data == nullptr && len > 0)) return VARNPDF_NO_STREAM;
    return guarded([&]() -> int {
        std::size_t budget = limits::kAppearanceBytes;
        const auto parts = streamParts(content(), NoReferences{}, budget);
        if (!parts) return VARNPDF_NO_STREAM;
        const std::string_view bytes(reinterpret_cast<const char*>(data), static_cast<std::size_t>(len));
        setContent(streamObject(parts->head, bytes, parts->packed));
        return VARNPDF_OK;
    });
}
