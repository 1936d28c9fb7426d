// CPdf: documents from nothing and operations on objects of the table.
#include <cstring>

#include "api/PdfState.h"
#include "support/Guarded.h"
#include "support/Loggers.h"
#include "support/StagedFile.h"
#include "syntax/Text.h"
#include "writer/RefArray.h"

using namespace varnpdf;

namespace {

std::string_view viewOf(const char* bytes, int len) {
    if (bytes == nullptr || len <= 0) return {};
    return {bytes, static_cast<std::size_t>(len)};
}

}  // namespace

int CPdf::CreateObject(std::string comment, int /*ignored*/, const char* body, int bodyLen, CPdfObj::ContentType type) {
    return guarded([&] { return createObject(*state_, viewOf(body, bodyLen), type, comment) > 0 ? 0 : -1; });
}

void CPdf::SetHeader(char* header) {
    if (header != nullptr) putHeader(*state_, header);
}

void CPdf::AppendToContent(char* data, int len, bool setPos, int slot) {
    const std::size_t at = appendBytes(*state_, viewOf(data, len));
    CPdfObj* const object = setPos ? state_->document.objects.find(slot) : nullptr;
    if (object != nullptr) object->SetFromPos(static_cast<int>(at));
}

int CPdf::WriteObjArrayToContent() {
    return guarded([&] { return writeObjects(*state_) ? 0 : -1; });
}

int CPdf::WriteXrefToContent() {
    return guarded([&] { return writeTable(*state_) ? 0 : -1; });
}

int CPdf::WriteTrailerToContent(int size, std::string id) {
    return guarded([&] {
        writeTrailer(*state_, size, id);
        return VARNPDF_OK;
    });
}

int CPdf::WriteAndClose() {
    return guarded([this] {
        const std::string_view bytes = bytesOf(*state_);
        bool written = false;
        if (!bytes.empty()) {
            StagedFile file(state_->fileName.c_str());
            if (file.isOpen()) {
                file.write(bytes);
                written = file.commit();
            }
        }
        if (!written) logError(loggers::pdf, "ERROR_CAN_NOT_WRITE_PDF_FILE: ", state_->fileName);
        Close();
        return written ? 0 : -1;
    });
}

void CPdf::CreateIdent() { state_->ident = kNewIdent; }
std::string CPdf::GetIdent() const { return state_->ident; }

int CPdf::CreateRoot(std::string openAction, std::string names, std::string pages, std::string collection,
                     std::string metadata, std::string pageLabels, std::string outputIntents) {
    return guarded([&] {
        const PortfolioCatalogue catalogue{openAction, names, pages, collection, metadata, pageLabels, outputIntents};
        return createRoot(*state_, catalogue) > 0 ? 0 : -1;
    });
}

int CPdf::GetRootObjNum() const { return state_->rootNumber; }
void CPdf::SetRootObjNum(int objnum) { state_->rootNumber = objnum; }
int CPdf::GetPagesParent() const { return state_->pagesParent; }
void CPdf::SetPagesParent(int objnum) { state_->pagesParent = objnum; }
int CPdf::GetXRefStartPos() const { return state_->tableOffset; }
void CPdf::SetXRefStartPos(int pos) { state_->tableOffset = pos; }

void CPdf::AddStreamInPdfArray(int slot, char* data, int len) {
    CPdfObj* const object = state_->document.objects.find(slot);
    if (object != nullptr) object->AddStream(data, len);
}

int CPdf::AddDictionaryEntryInPdfArray(int slot, const char* key, const char* value) {
    CPdfObj* const object = state_->document.objects.find(slot);
    return object == nullptr ? 0 : object->AddDictionaryEntry(key, value);
}

void CPdf::AppendToRefArray(char* array, const char* item) {
    if (array == nullptr) return;
    const std::string longer = appendToRefArray(array, varnpdf::viewOf(item));
    std::memcpy(array, longer.c_str(), longer.size() + 1);
}

void CPdf::AppendToRefArray(char* array, CPdfObj* obj) {
    if (obj == nullptr) return;
    AppendToRefArray(array, text(' ', obj->GetObjNum(), ' ', obj->GetGenNumber(), " R").c_str());
}
