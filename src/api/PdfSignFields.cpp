// CPdf: form, fields and places that a signature is attached to.
#include "api/PdfState.h"
#include "inspection/Signatures.h"
#include "model/DictionaryEntry.h"
#include "reader/Pages.h"
#include "reader/Trailers.h"
#include "support/Guarded.h"
#include "support/Loggers.h"
#include "syntax/Reference.h"

using namespace varnpdf;

CPdfObj* CPdf::GetAcroFormObj() {
    Document& document = state_->document;
    const bool isUnread = !document.newest || document.newest->content().empty();
    if (isUnread && !guardedOr(false, [&] { return readNewestTrailer(document), true; })) return nullptr;
    if (!state_->document.newest || state_->document.newest->GetSize() < 1) return nullptr;
    SetObjNum(state_->document.newest->GetSize());
    const CPdfObj* const catalogue = referencedObject(state_->document, state_->document.newest->root());
    return catalogue == nullptr ? nullptr
                                : referencedObject(state_->document, entryValue(catalogue->content(), "/AcroForm"));
}

// Depth first like the page tree; a field met before ends its branch.
CPdfObj* CPdf::GetSigObjectFromArray(char* refList, int index) {
    if (refList == nullptr) return nullptr;
    return guardedOr(static_cast<CPdfObj*>(nullptr), [&]() -> CPdfObj* {
        const auto isField = [](CPdfObj& obj) { return findLaterEntry(obj.content(), "/FT").has_value(); };
        std::vector<CPdfObj*> fields;
        walkTree(state_->document, refList, nullptr, isField, fields);
        for (CPdfObj* const field : fields) {
            if (state_->fieldCounter == index) return field;
            ++state_->fieldCounter;
        }
        return nullptr;
    });
}

int CPdf::GetSignaturePositions(int sigIndex, int* x1, int* y1, int* x2, int* y2, int* page) {
    const int count = PdfGetNumSignatures();
    if (count < 0) return count;
    state_->signatureCount = count;
    CPdfObj* const field = sigIndex < count ? state_->signatures.GetSignRef(sigIndex) : nullptr;
    if (field == nullptr) return -1;
    return guarded([&]() -> int {
        const auto reference = scanReference(entryValue(field->content(), "/P"));
        *page = pageIndexOf(state_->document, reference ? reference->number : -1);
        Cursor rect(entryValue(field->content(), "/Rect"));
        rect.take('[');
        for (int* const value : {x1, y1, x2, y2}) {
            *value = rect.takeInt().value_or(0);
            rect.takeUntil(kIsCSpace);
        }
        return VARNPDF_OK;
    });
}

void CPdf::correct_annots() { logDebug(loggers::pdf, "correct_annots"); }
