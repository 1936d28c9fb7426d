// CPdfPages: the pages of a document, and places on them.
#include "varnpdf/PdfPages.h"

#include <algorithm>
#include <array>

#include "api/PdfState.h"
#include "reader/Pages.h"
#include "varnpdf/PdfHelper.h"

using namespace varnpdf;

namespace {

struct WholeBox {
    int left, bottom, width, height;
};

WholeBox wholeBox(const PdfPage& page) {
    int sides[4];
    for (int i = 0; i < 4; ++i) sides[i] = static_cast<int>(std::clamp(page.mediaBox[i], -1e9, 1e9));
    return {sides[0], sides[1], sides[2] - sides[0], sides[3] - sides[1]};
}

int quarterTurns(const PdfPage& page) { return (page.rotation % 360 + 360) % 360 / 90; }

}  // namespace

std::vector<PdfPage> CPdfPages::All(CPdf& pdf) {
    Document& document = documentOf(pdf);
    std::vector<PdfPage> out;
    for (const CPdfObj* const object : allPages(document)) {
        PdfPage page;
        page.object = object->GetObjNum();
        page.rotation = pageAttributes(document, *object).rotation;
        const PageBoxes boxes = pageBoxes(document, *object);
        std::ranges::copy(boxes.media, page.mediaBox);
        std::ranges::copy(boxes.crop, page.cropBox);
        out.push_back(page);
    }
    return out;
}

PdfPosition CPdfPages::FromOrigin(const PdfPosition& position, const PdfPage& page) noexcept {
    const WholeBox box = wholeBox(page);
    const int quarter = quarterTurns(page);
    PdfPosition out = position;
    if (out.mode == 0) {
        const long long width = quarter % 2 == 0 ? box.width : box.height;
        const long long height = quarter % 2 == 0 ? box.height : box.width;
        out = {1, static_cast<int>(width * out.x / 100), static_cast<int>(height * out.y / 100)};
    }
    // The way from 0 0 to the box as the reader of the turned page sees it: to the right, and up.
    const int right[] = {box.left, box.bottom, -box.left, -box.bottom};
    const int up[] = {box.bottom, -box.left, -box.bottom, box.left};
    out.x += out.mode >= 3 ? -right[quarter] : right[quarter];
    out.y += out.mode % 2 == 0 ? -up[quarter] : up[quarter];
    return out;
}

bool CPdfPages::Place(const PdfPosition& position, int width, int height, const PdfPage& page, double* rect) noexcept {
    const WholeBox box = wholeBox(page);
    int pageBox[4] = {0, 0, box.width, box.height};
    int size[2] = {width, height};
    int place[2] = {position.x, position.y};
    int corners[4] = {};
    const int turned = quarterTurns(page) * 90;
    if (CPdfHelper::GetSignaturePos(turned, pageBox, size, position.mode, place, corners) == 0) return false;
    for (int i = 0; i < 2; ++i) {
        rect[i] = std::min(corners[i], corners[i + 2]) + page.mediaBox[i];
        rect[i + 2] = std::max(corners[i], corners[i + 2]) + page.mediaBox[i];
    }
    return true;
}
