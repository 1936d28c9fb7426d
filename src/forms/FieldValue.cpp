// Replacing the data and the shown value of an appearance stream.
#include "forms/FieldValue.h"

#include <algorithm>
#include <cmath>

#include "forms/AppearanceContent.h"
#include "forms/TextLayout.h"
#include "support/Limits.h"
#include "support/Text.h"
#include "syntax/Dictionary.h"
#include "syntax/Encoding.h"
#include "syntax/Values.h"
#include "varnpdf/result.h"

namespace varnpdf {
namespace {

std::string winAnsi(std::u32string_view value) {
    std::string out;
    for (const char32_t c : value) out += FieldFont::helvetica().encode(std::u32string(1, c)).value_or("?");
    return out;
}

// A line for an appearance that showed nothing.
std::string lineFor(std::string_view head, std::string_view codes, std::string_view font) {
    constexpr double kMostPoints = 12;
    const std::vector<double> box = numbersOf(Dictionary(head).find("/BBox"));
    TextBox place{0, 0, 100, 20};
    if (box.size() >= 4 && box[2] > box[0] && box[3] > box[1]) {
        place = {box[0], box[1], box[2] - box[0], box[3] - box[1]};
    }
    TextStyle style;
    style.appearance = {std::string(font), 0, "0 g"};
    const double room = place.width - 4;
    const double needed = FieldFont::helvetica().width(codes);
    style.appearance.size =
        std::clamp(std::min(place.height * 0.7, needed > 0 ? room / needed : kMostPoints), 4.0, kMostPoints);
    return fieldText(place, style, FieldFont::helvetica(), codes);
}

}  // namespace

int replaceShownValue(CPdfObj& appearance, std::string_view value, std::string_view font, bool inField,
                      std::size_t& budget) {
    const auto parts = streamParts(Document(), appearance, budget);
    if (!parts) return VARNPDF_NO_STREAM;
    const std::string codes = winAnsi(fromUtf8OrLatin1(value));
    const auto marked = markedText(parts->data);
    auto replaced = !inField || marked || !codes.empty() ? withShownCodes(parts->data, codes) : std::nullopt;
    if (!replaced && !inField) return VARNPDF_NO_TJ;
    if (!replaced) replaced = withMarkedText(parts->data, lineFor(parts->head, codes, font));
    appearance.setContent(streamObject(parts->head, *replaced, parts->packed));
    return VARNPDF_OK;
}

int replaceStream(CPdfObj& object, std::string_view data) {
    std::size_t budget = limits::kAppearanceBytes;
    const auto parts = streamParts(Document(), object, budget);
    if (!parts) return VARNPDF_NO_STREAM;
    object.setContent(streamObject(parts->head, data, parts->packed));
    return VARNPDF_OK;
}

}  // namespace varnpdf
