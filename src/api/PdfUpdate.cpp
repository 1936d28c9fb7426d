// CPdf: the output stream of an appended update.
#include <algorithm>

#include "api/PdfState.h"
#include "support/Guarded.h"
#include "writer/SectionTexts.h"

using namespace varnpdf;

void CPdf::ResetByteStream(unsigned int size) { state_->output.init(size); }

int CPdf::WriteOld2ByteStream() {
    print(*state_, state_->document.view());
    return 0;
}

const char* CPdf::GetByteStream() const { return reinterpret_cast<const char*>(state_->output.data()); }
int CPdf::GetByteStreamLen() const { return static_cast<int>(state_->output.tell()); }

void CPdf::WriteTextAnnotation(CPdfTrailer* /*trailer*/, CPdfXRefContainer* xrefs, CPdfObj* obj) {
    if (xrefs == nullptr || obj == nullptr) return;
    addObjectEntry(*xrefs, obj->GetObjNum(), obj->GetGenNumber(), state_->output.tell());
    print(*state_, objectText(obj->GetObjNum(), obj->GetGenNumber(), obj->content()));
}

// What is written comes first: bytes that no entry names do no harm, an entry without its object does.
int CPdf::WriteContent(CPdfXRefContainer* xrefs, CPdfObj* obj, bool tailMode) {
    if (xrefs == nullptr || obj == nullptr) return VARNPDF_UPDATE_OBJECT_MISSING;
    if (obj->GetObjNum() < 1 || obj->content().empty()) return VARNPDF_UPDATE_OBJECT_MISSING;
    return guarded([&]() -> int {
        const int generation = std::max(obj->GetGenNumber(), 0);
        const std::size_t at = tailMode ? filePosition(*state_) : state_->output.tell();
        print(*state_, objectText(obj->GetObjNum(), generation, obj->content()));
        addObjectEntry(*xrefs, obj->GetObjNum(), generation, at);
        return VARNPDF_OK;
    });
}

int CPdf::WriteTrailer(CPdfXRefContainer* xrefs, CPdfTrailer* trailer, bool renewId, bool tailMode) {
    if (xrefs == nullptr || trailer == nullptr) return 0;
    const std::size_t section = tailMode ? filePosition(*state_) : state_->output.tell();
    trailer->SetXRef(static_cast<int>(section));
    print(*state_, crossReferenceTable(*xrefs));
    trailer->UpdateId(renewId);
    print(*state_, trailerText(*trailer, section));
    return 0;
}
