// The frame that some office suites draw where a signature is wanted.
#include "signing/FrameSearch.h"

#include <algorithm>
#include <cmath>

#include "model/DictionaryEntry.h"
#include "model/Lookup.h"
#include "model/Stream.h"
#include "reader/Pages.h"
#include "support/Limits.h"
#include "syntax/Readers.h"
#include "syntax/Reference.h"
#include "varnpdf/result.h"

namespace varnpdf {
namespace {

// The rectangle behind the next " rg", "ET" and stroke colour, as some office suites draw an empty field. What leads
// nowhere is passed over, so that no part of the content is searched again and again.
std::optional<std::array<float, 4>> nextFrame(std::string_view content, std::size_t& at) {
    constexpr std::string_view kStroke = "0.751953 0.751953 0.751953 RG";
    const std::size_t fill = content.find(" rg", at);
    if (fill == std::string_view::npos) {
        at = content.size();
        return std::nullopt;
    }
    at = fill + 3;
    const std::size_t end = std::min(content.find("ET", at), content.size());
    const std::size_t stroke = content.find(kStroke, end);
    if (stroke == std::string_view::npos) {
        at = content.size();
        return std::nullopt;
    }
    at = stroke;
    std::array<float, 4> frame{};
    std::string_view rest = content.substr(stroke + kStroke.size());
    for (float& value : frame) {
        const auto number = readNumber(rest);
        if (!number) return std::nullopt;
        value = number->isFloat ? number->real : static_cast<float>(number->integer);
        rest.remove_prefix(number->end);
    }
    return trim(rest).starts_with("re") ? std::optional(frame) : std::nullopt;
}

int wholePoints(float value) {
    constexpr float kMost = 1e9F;  // far beyond any page, and an int
    return static_cast<int>(std::floor(std::clamp(value, -kMost, kMost)));
}

std::optional<StreamBytes> contentOf(const Document& document, const CPdfObj& page) {
    const CPdfObj* const object = objectOf(document, lookUpValue(page.content(), "/Contents"));
    const auto stream = object == nullptr ? std::nullopt : streamOf(document, *object);
    if (!stream) return std::nullopt;
    const std::size_t bound = std::min(stream->data.size() * limits::kInflateFactor, inflateBudget(document));
    return decoded(document, *stream, bound);
}

}  // namespace

std::optional<DrawnFrame> findDrawnFrame(Document& document, int& code) {
    std::optional<DrawnFrame> found;
    code = VARNPDF_TRAILER_INCOMPLETE;
    if (!document.newest || document.newest->GetSize() < 1) return found;
    if (document.encrypted) {
        code = VARNPDF_PDF_ENCRYPTED;
        return found;
    }
    const CPdfObj* const catalogue = referencedObject(document, document.newest->root());
    CPdfObj* const root = catalogue == nullptr ? nullptr : pagesRoot(document, *catalogue);
    if (root == nullptr) return found;
    code = VARNPDF_OK;
    const auto& pages = pagesBelow(document, *root);
    const auto count = static_cast<std::size_t>(std::max(lookUpInt(root->content(), "/Count").value_or(0), 0));
    for (std::size_t i = 0; i < std::min(pages.size(), count); ++i) {
        if (lookUpInt(pages[i]->content(), "/Contents").value_or(0) < 0) break;
        const auto content = contentOf(document, *pages[i]);
        const std::string_view text = content ? content->view() : std::string_view{};
        for (std::size_t at = 0; at < text.size();) {
            const auto frame = nextFrame(text, at);
            if (!frame) continue;
            found.emplace();
            found->page = static_cast<int>(i);
            std::transform(frame->begin(), frame->end(), found->rectangle.begin(), wholePoints);
        }
    }
    return found;
}

}  // namespace varnpdf
