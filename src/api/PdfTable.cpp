// CPdf: the object table, the sections, dictionary entries and pages.
#include <algorithm>
#include <cstring>

#include "api/PdfState.h"
#include "model/DictionaryEntry.h"
#include "reader/CrossReferenceStream.h"
#include "reader/Objects.h"
#include "reader/Pages.h"
#include "reader/Sections.h"
#include "reader/Trailers.h"
#include "support/Guarded.h"
#include "support/Loggers.h"
#include "varnpdf/PdfHelper.h"

using namespace varnpdf;

void CPdf::set_pdf_obj_to_map(int slot, CPdfObj* obj) {
    if (obj == nullptr) return;
    std::unique_ptr<CPdfObj> offered(obj);
    const auto leave = [&] { static_cast<void>(offered.release()); };
    try {
        if (!state_->document.objects.insert(slot, offered)) leave();
    } catch (...) {
        leave();
        throw;
    }
}

CPdfObj* CPdf::get_pdf_obj_from_map(int slot) { return state_->document.objects.find(slot); }
CPdfObj* CPdf::search_map_by_value(int slot) { return state_->document.objects.lowerBound(slot).second; }
int CPdf::get_max_obj_num_from_map() { return state_->document.objects.maxObjectNumber(); }

int CPdf::GetMaxObjNumFromPDFArray() {
    int most = 0;
    state_->document.objects.forEach(state_->objectCount - 1,
                                     [&](int, const CPdfObj& obj) { most = std::max(most, obj.GetObjNum()); });
    return most;
}

int CPdf::GetArrayNum(int objnum) {
    int found = 0;
    state_->document.objects.forEach(state_->objectCount - 1, [&](int slot, const CPdfObj& obj) {
        if (obj.GetObjNum() == objnum) found = slot;
    });
    return found;
}

int CPdf::SetPdfObjArraySize(int /*size*/) { return 1; }
int CPdf::SetPdfObjArrayResize(int /*size*/) { return 1; }
int CPdf::IstObjPosKorrekt(int /*objnum*/, int /*offset*/) { return 1; }
int CPdf::GetObjNum() const { return state_->objectCount; }
void CPdf::SetObjNum(int count) { state_->objectCount = count; }

void CPdf::AddListItem(CPdfObjTransferListItem* item) {
    if (item == nullptr) return;
    state_->transfers.emplace_back();
    state_->transfers.back().reset(item);
}

int CPdf::GetListItemCount() const { return static_cast<int>(state_->transfers.size()); }

const CPdfObjTransferListItem* CPdf::GetListItem(int index) const {
    const bool exists = index >= 0 && static_cast<std::size_t>(index) < state_->transfers.size();
    return exists ? state_->transfers[static_cast<std::size_t>(index)].get() : nullptr;
}

void CPdf::DebugShowObjectInfo() {
    guarded([this]() -> int { return logObjects(state_->document), VARNPDF_OK; });
}

void CPdf::DebugShowTrailerInfo() {
    guarded([this]() -> int { return logTrailers(state_->document), VARNPDF_OK; });
}

void CPdf::RetrieveLastPdfTrailer() { readNewestTrailer(state_->document); }

bool CPdf::RetrievePdfTrailer(CPdfTrailer* trailer, int* offset) {
    if (trailer != nullptr && offset != nullptr) readTrailer(state_->document, *trailer, *offset);
    return true;
}

void CPdf::CheckLinearization() { checkLinearization(state_->document); }

bool CPdf::ExtractTrailer(CPdfTrailer* trailer) {
    return trailer != nullptr && guardedOr(false, [&] { return readEntries(state_->document, *trailer); });
}

bool CPdf::ExtractXRefStm(CPdfTrailer* trailer) {
    const int offset = trailer == nullptr ? 0 : trailer->GetXRefStmAddr();
    return guardedOr(false, [&] { return readCompanion(state_->document, offset); });
}

void CPdf::SetPdfObjArrayData(int objnum, int offset, int gen, char* type, int streamObjNr, int indexInStream,
                              bool compressed) {
    const bool isFree = type != nullptr && std::strcmp(type, "f") == 0;
    recordEntry(state_->document, {objnum, offset, gen, isFree, compressed, streamObjNr, indexInStream});
}

bool CPdf::RetrieveObjects() {
    return guardedOr(false, [this] { return readObjects(state_->document); });
}

CPdfTrailer* CPdf::GetLastTrailer() const { return state_->document.newest.get(); }
CPdfTrailer* CPdf::GetUpdateTrailer() const { return state_->document.update.get(); }
int CPdf::GetTrailerCount() const { return static_cast<int>(state_->document.sections.size()); }

CPdfTrailer* CPdf::GetTrailer(int index) const {
    const auto& sections = state_->document.sections;
    const bool exists = index >= 0 && static_cast<std::size_t>(index) < sections.size();
    return exists ? sections[static_cast<std::size_t>(index)].get() : nullptr;
}

int CPdf::ReadDictionaryEntry(CPdfObj* obj, const char* key, char* out, int* keyPos, int* endPos) {
    return obj == nullptr ? 0 : obj->ReadDictionaryEntry(key, out, keyPos, endPos, 0, nullptr, 1);
}

int CPdf::ReadDictionaryEntryWithInDict(CPdfObj* obj, const char* key, char* out, int* keyPos, int* endPos) {
    if (obj == nullptr || key == nullptr) return 0;
    const std::string_view text = obj->content();
    const auto entry = findEntry(text, key, {.nested = true});
    if (keyPos != nullptr) *keyPos = entry ? static_cast<int>(entry->key) : 0;
    if (endPos != nullptr) *endPos = entry ? static_cast<int>(entry->end) : 0;
    if (out != nullptr) *out = '\0';
    if (!entry) return 0;
    if (out != nullptr) std::memcpy(out, text.data() + entry->value.begin, entry->value.size());
    return 1;
}

CPdfObj* CPdf::GetPdfPageObject(CPdfObj* pagesRoot, int pageIndex, int* mediaBox, int* rotate) {
    if (pagesRoot == nullptr) {
        logDebug(loggers::pdf, "Pages-Objekt leer, Abbruch!");
        return nullptr;
    }
    return guardedOr(static_cast<CPdfObj*>(nullptr), [&]() -> CPdfObj* {
        const auto& pages = pagesBelow(state_->document, *pagesRoot);
        if (pages.empty() && !lookUp(pagesRoot->content(), "/Kids")) {
            logDebug(loggers::pdf, "/Kids-Eintrag nicht gefunden, Abbruch!");
            return nullptr;
        }
        if (pageIndex < 0 || static_cast<std::size_t>(pageIndex) >= pages.size()) return nullptr;
        CPdfObj* const page = pages[static_cast<std::size_t>(pageIndex)];
        const PageAttributes attributes = pageAttributes(state_->document, *page);
        if (mediaBox != nullptr) std::copy(attributes.box.begin(), attributes.box.end(), mediaBox);
        if (rotate != nullptr) *rotate = attributes.rotation;
        return page;
    });
}

CPdfObj* CPdf::GetPageObjectFromArray(char* refList, int* counter, int pageIndex) {
    if (refList == nullptr || counter == nullptr || *refList == '\0') return nullptr;
    return guardedOr(static_cast<CPdfObj*>(nullptr), [&]() -> CPdfObj* {
        std::vector<CPdfObj*> pages;
        walkTree(state_->document, refList, nullptr, isPage, pages);
        for (CPdfObj* const page : pages) {
            if (*counter == pageIndex) return page;
            ++*counter;
        }
        return nullptr;
    });
}

int CPdf::GetPageNoFromObjRef(int* objNum, int* /*genNum*/) {
    return objNum == nullptr ? -1 : guardedOr(-1, [&] { return pageIndexOf(state_->document, *objNum); });
}

CPdfSigInfo* CPdf::GetSigInfo() { return &state_->signatures; }
void CPdf::setUserETSISubFilter(bool etsi) { state_->etsiSubFilter = etsi; }
bool CPdf::isUserETSISubFilter() const { return state_->etsiSubFilter; }
void CPdf::ResetFieldCounter() { state_->fieldCounter = 0; }
int CPdf::get_lockstate() const { return state_->document.locked ? 1 : 0; }

int CPdfHelper::getStreamValue(const void* bytes, int width) {
    if (bytes == nullptr || width < 1) return 0;
    return bigEndian({static_cast<const char*>(bytes), static_cast<std::size_t>(width)});
}

bool CPdfHelper::TransformxRef(unsigned char* in, int inLen, unsigned char* out, int outLen, CPdfObj* params,
                               int /*size*/) {
    if (in == nullptr || out == nullptr || params == nullptr || inLen < 0) return false;
    return guardedOr(false, [&] {
        Bytes data;
        data.reserve(static_cast<std::size_t>(inLen) + 1);
        std::memcpy(data.data(), in, static_cast<std::size_t>(inLen));
        data.setSize(static_cast<std::size_t>(inLen));
        if (params->GetiDecodeParms_Predictor() != kPredictorNone) {
            const long columns = params->GetiDecodeParms_Colums();
            if (params->GetiDecodeParms_Predictor() != kPredictorUp || columns < 1) return false;
            if (!undoPrediction(data, static_cast<std::size_t>(columns))) return false;
        }
        if (data.size() > static_cast<std::size_t>(std::max(outLen, 0))) return false;
        std::memcpy(out, data.data(), data.size());
        return true;
    });
}
