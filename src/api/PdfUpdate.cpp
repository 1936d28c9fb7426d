// CPdf: the output stream of an appended update.
#include <algorithm>

#include "api/PdfState.h"
#include "support/Guarded.h"
#include "writer/SectionTexts.h"

using namespace varnpdf;

namespace {

void write(PdfState& state, CPdfXRefContainer& xrefs, const CPdfObj& obj, int generation, std::size_t at) {
    Printed printed(state);
    print(state, objectText(obj.GetObjNum(), generation, obj.content()));
    addObjectEntry(xrefs, obj.GetObjNum(), generation, at);
    printed.keep();
}

}  // namespace

void CPdf::ResetByteStream(unsigned int size) { state_->output.init(size); }

int CPdf::WriteOld2ByteStream() {
    return guarded([this]() -> int {
        print(*state_, state_->document.view());
        return VARNPDF_OK;
    });
}

const char* CPdf::GetByteStream() const { return reinterpret_cast<const char*>(state_->output.data()); }
int CPdf::GetByteStreamLen() const { return static_cast<int>(state_->output.tell()); }

void CPdf::WriteTextAnnotation(CPdfTrailer* /*trailer*/, CPdfXRefContainer* xrefs, CPdfObj* obj) {
    if (xrefs == nullptr || obj == nullptr) return;
    write(*state_, *xrefs, *obj, obj->GetGenNumber(), state_->output.tell());
}

int CPdf::WriteContent(CPdfXRefContainer* xrefs, CPdfObj* obj, bool tailMode) {
    if (xrefs == nullptr || obj == nullptr) return VARNPDF_UPDATE_OBJECT_MISSING;
    if (obj->GetObjNum() < 1 || obj->content().empty()) return VARNPDF_UPDATE_OBJECT_MISSING;
    return guarded([&]() -> int {
        const int generation = std::max(obj->GetGenNumber(), 0);
        write(*state_, *xrefs, *obj, generation, tailMode ? filePosition(*state_) : state_->output.tell());
        return VARNPDF_OK;
    });
}

int CPdf::WriteTrailer(CPdfXRefContainer* xrefs, CPdfTrailer* trailer, bool renewId, bool tailMode) {
    if (xrefs == nullptr || trailer == nullptr) return 0;
    return guarded([&]() -> int {
        Printed printed(*state_);
        UpdatedTrailer updated(trailer);
        const std::size_t section = tailMode ? filePosition(*state_) : state_->output.tell();
        trailer->SetXRef(static_cast<int>(section));
        print(*state_, crossReferenceTable(*xrefs));
        trailer->UpdateId(renewId);
        print(*state_, trailerText(*trailer, section));
        updated.keep();
        printed.keep();
        return VARNPDF_OK;
    });
}
