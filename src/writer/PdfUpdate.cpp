// CPdf: the output stream of an appended update.
#include "support/Log.h"
#include "varnpdf/Pdf.h"
#include "writer/Update.h"

using namespace varnpdf;

void CPdf::ResetByteStream(unsigned int size) { output_.init(size); }

int CPdf::WriteOld2ByteStream() {
    output_.append(content_.get(), contentLen_);
    return 0;
}

const char* CPdf::GetByteStream() const { return reinterpret_cast<const char*>(output_.data()); }

void CPdf::print(std::string_view text) {
    auto* const bytes = reinterpret_cast<unsigned char*>(const_cast<char*>(text.data()));
    output_.append(bytes, static_cast<unsigned int>(text.size()));
}

std::size_t CPdf::filePosition() const noexcept { return std::size_t{output_.getoldcontentsize()} + output_.tell(); }

void CPdf::WriteTextAnnotation(CPdfTrailer* /*trailer*/, CPdfXRefContainer* xrefs, CPdfObj* obj) {
    if (xrefs == nullptr || obj == nullptr) return;
    addObjectEntry(*xrefs, obj->GetObjNum(), obj->GetGenNumber(), output_.tell());
    print(objectText(obj->GetObjNum(), obj->GetGenNumber(), obj->content()));
}

int CPdf::WriteTrailer(CPdfXRefContainer* xrefs, CPdfTrailer* trailer, bool renewId, bool tailMode) {
    if (xrefs == nullptr || trailer == nullptr) return 0;
    const std::size_t section = tailMode ? filePosition() : output_.tell();
    trailer->SetXRef(static_cast<int>(section));
    print(crossReferenceTable(*xrefs));
    trailer->UpdateId(renewId);
    print(trailerText(*trailer, section));
    return 0;
}
