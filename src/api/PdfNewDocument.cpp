// CPdf: documents from nothing and operations on objects of the table.
#include <cstring>

#include "api/PdfState.h"
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
    const int slot = state_->objectCount;
    auto object = std::make_unique<CPdfObj>();
    object->setContent(newObjectText(slot + 1, comment, viewOf(body, bodyLen), type));
    object->SetObjNum(slot + 1);
    object->SetGenNumber(0);
    object->SetObjectType(type);
    if (!state_->document.objects.insert(slot, object)) return -1;
    state_->objectCount = slot + 1;
    return 0;
}

void CPdf::SetHeader(char* header) {
    if (header != nullptr) state_->content.insert(state_->document, 0, header);
}

void CPdf::AppendToContent(char* data, int len, bool setPos, int slot) {
    state_->content.own(state_->document);
    CPdfObj* const object = setPos ? state_->document.objects.find(slot) : nullptr;
    const auto end = static_cast<int>(state_->document.length) - 1;
    state_->content.append(state_->document, viewOf(data, len));
    if (object != nullptr) object->SetFromPos(end);
}

int CPdf::WriteObjArrayToContent() {
    Document& document = state_->document;
    if (!slotsFilled(document, state_->objectCount)) return -1;
    state_->content.own(document);
    for (int slot = 0; slot < state_->objectCount; ++slot) {
        CPdfObj& object = *document.objects.find(slot);
        object.SetFromPos(static_cast<int>(document.length) - 1);
        state_->content.append(document, object.content());
    }
    return 0;
}

int CPdf::WriteXrefToContent() {
    Document& document = state_->document;
    if (!slotsFilled(document, state_->objectCount)) return -1;
    state_->content.own(document);
    state_->tableOffset = static_cast<int>(document.length) - 1;
    state_->content.append(document, newTableText(document, state_->objectCount));
    return 0;
}

int CPdf::WriteTrailerToContent(int size, std::string id) {
    state_->content.append(state_->document, newTrailerText(size, state_->rootNumber, id, state_->tableOffset));
    return 0;
}

int CPdf::WriteAndClose() {
    std::string_view bytes = state_->document.view();
    if (state_->content.owns()) bytes.remove_suffix(1);
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
}

void CPdf::CreateIdent() { state_->ident = "<123456>"; }
std::string CPdf::GetIdent() const { return state_->ident; }

int CPdf::CreateRoot(std::string openAction, std::string names, std::string pages, std::string collection,
                     std::string metadata, std::string pageLabels, std::string outputIntents) {
    state_->rootNumber = state_->objectCount + 1;
    const std::string body = catalogueBody({openAction, names, pages, collection, metadata, pageLabels, outputIntents});
    return CreateObject("", 0, body.data(), static_cast<int>(body.size()), CPdfObj::eContentDictionary);
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
