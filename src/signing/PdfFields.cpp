// CPdf and CPdfSign: form, fields and drawn frames that a signature is attached to.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>

#include "model/DictionaryEntry.h"
#include "model/ObjectTable.h"
#include "reader/SectionText.h"
#include "support/Inflate.h"
#include "support/Limits.h"
#include "support/Log.h"
#include "syntax/Readers.h"
#include "syntax/Reference.h"
#include "api/PdfState.h"
#include "reader/Objects.h"
#include "reader/Pages.h"
#include "support/Loggers.h"
#include "varnpdf/PdfSign.h"
#include "varnpdf/result.h"

using namespace varnpdf;

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

}  // namespace

CPdfObj* CPdf::GetAcroFormObj() {
    if (!state_->document.newest || state_->document.newest->content().empty()) RetrieveLastPdfTrailer();
    if (!state_->document.newest || state_->document.newest->GetSize() < 1) return nullptr;
    SetObjNum(state_->document.newest->GetSize());
    const CPdfObj* const catalogue = referencedObject(state_->document, state_->document.newest->root());
    return catalogue == nullptr ? nullptr : referencedObject(state_->document, entryValue(catalogue->content(), "/AcroForm"));
}

// Depth first like the page tree; a field met before ends its branch.
CPdfObj* CPdf::GetSigObjectFromArray(char* refList, int index) {
    if (refList == nullptr) return nullptr;
    std::vector<CPdfObj*> fields;
    walkTree(
        state_->document, refList, nullptr, [](CPdfObj& obj) { return findLaterEntry(obj.content(), "/FT").has_value(); }, fields);
    for (CPdfObj* const field : fields) {
        if (state_->fieldCounter == index) return field;
        ++state_->fieldCounter;
    }
    return nullptr;
}

int CPdf::GetSignaturePositions(int sigIndex, int* x1, int* y1, int* x2, int* y2, int* page) {
    state_->signatureCount = PdfGetNumSignatures();
    CPdfObj* const field = sigIndex < state_->signatureCount ? state_->signatures.GetSignRef(sigIndex) : nullptr;
    if (field == nullptr) return -1;
    Cursor rect(entryValue(field->content(), "/Rect"));
    rect.take('[');
    for (int* const value : {x1, y1, x2, y2}) {
        *value = rect.takeInt().value_or(0);
        rect.takeUntil(kIsCSpace);
    }
    const auto reference = scanReference(entryValue(field->content(), "/P"));
    int number = reference ? reference->number : -1;
    int generation = reference ? reference->generation : 0;
    *page = GetPageNoFromObjRef(&number, &generation);
    return 0;
}

void CPdf::correct_annots() { logDebug(loggers::pdf, "correct_annots"); }

namespace {

std::optional<std::string> pageContent(const Document& document, const CPdfObj& page) {
    const CPdfObj* const stream = referencedObject(document, entryValue(page.content(), "/Contents"));
    if (stream == nullptr) return std::nullopt;
    const std::string_view text = stream->content();
    const std::string_view lengthText = entryValue(text, "/Length");
    const auto reference = isReference2(lengthText);
    const auto length = reference ? referencedNumber(document, reference->number) : Cursor(lengthText).takeInt();
    const auto data = streamData(text, loggers::pdf);
    if (!length || *length < 0 || !data) return std::nullopt;
    const std::string_view packed = data->substr(0, static_cast<std::size_t>(*length));
    if (streamFilter(text) == StreamFilter::None) return std::string(packed);
    if (streamFilter(text) != StreamFilter::Flate) return std::nullopt;
    const auto inflated = inflateAll(packed, std::min(packed.size() * limits::kInflateFactor, inflateBudget(document)));
    return inflated ? std::optional(std::string(inflated->view())) : std::nullopt;
}

}  // namespace

int CPdfSign::TryFindOOField(CPdf* pdf, int* x, int* y, int* width, int* height, int* page) {
    const CPdfTrailer* const trailer = pdf == nullptr ? nullptr : pdf->GetLastTrailer();
    if (trailer == nullptr || trailer->GetSize() < 1) return VARNPDF_TRAILER_INCOMPLETE;
    if (pdf->PdfIsEncrypted() == 1) return VARNPDF_PDF_ENCRYPTED;
    const CPdfObj* const catalogue = referencedObject(documentOf(*pdf), trailer->root());
    if (catalogue == nullptr) return VARNPDF_TRAILER_INCOMPLETE;
    CPdfObj* const root = referencedObject(documentOf(*pdf), entryValue(catalogue->content(), "/Pages"));
    if (root == nullptr) return VARNPDF_TRAILER_INCOMPLETE;
    const int count = entryInt(root->content(), "/Count").value_or(0);
    for (int i = 0; i < count; ++i) {
        const CPdfObj* const current = pdf->GetPdfPageObject(root, i, nullptr, nullptr);
        if (current == nullptr || entryInt(current->content(), "/Contents").value_or(0) < 0) break;
        const auto content = pageContent(documentOf(*pdf), *current);
        for (std::size_t at = 0; content && at < content->size();) {
            const auto frame = nextFrame(*content, at);
            if (!frame) continue;
            int* const targets[] = {x, y, width, height};
            for (std::size_t k = 0; k < frame->size(); ++k) *targets[k] = wholePoints((*frame)[k]);
            *page = i;
        }
    }
    return VARNPDF_OK;
}
