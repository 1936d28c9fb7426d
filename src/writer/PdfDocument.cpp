// CPdf: documents from nothing and operations on objects of the table.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>
#include <stdexcept>
#include <tuple>

#include "model/ObjectTable.h"
#include "reader/KeywordSearch.h"
#include "support/Log.h"
#include "support/StagedFile.h"
#include "syntax/Text.h"
#include "varnpdf/Pdf.h"
#include "writer/RefArray.h"

using namespace varnpdf;

namespace {

std::string_view viewOf(const char* bytes, int len) {
    if (bytes == nullptr || len <= 0) return {};
    return {bytes, static_cast<std::size_t>(len)};
}

struct Frame {
    std::string head;
    std::string_view tail;
};

Frame frameOf(int number, CPdfObj::ContentType type) {
    switch (type) {
        case CPdfObj::eContentDictionary:
            return {text(number, " 0 obj\r\n<<\r\n"), "\r\n>>\r\nendobj\r\n\r\n"};
        case CPdfObj::eContentArray:
            return {text(number, " 0 obj\r\n["), "]\r\nendobj\r\n\r\n"};
        case CPdfObj::eContentOther:
            return {text(number, " 0 obj\r\n"), "\r\nendobj\r\n\r\n"};
        default:
            return {};
    }
}

}  // namespace

int CPdf::CreateObject(std::string comment, int /*ignored*/, const char* body, int bodyLen, CPdfObj::ContentType type) {
    const int slot = objectCount_;
    const Frame frame = frameOf(slot + 1, type);
    std::string content = frame.head;
    if (!comment.empty()) append(content, '%', comment, "\r\n");
    append(content, viewOf(body, bodyLen), frame.tail);
    auto object = std::make_unique<CPdfObj>();
    object->setContent(content);
    object->SetObjNum(slot + 1);
    object->SetGenNumber(0);
    object->SetObjectType(type);
    if (!objects_->insert(slot, object)) return -1;
    objectCount_ = slot + 1;
    return 0;
}

void CPdf::SetHeader(char* header) {
    if (header != nullptr) insertContent(0, header);
}

void CPdf::AppendToContent(char* data, int len, bool setPos, int slot) {
    ownContent();
    CPdfObj* const object = setPos ? objects_->find(slot) : nullptr;
    if (object != nullptr) object->SetFromPos(static_cast<int>(contentLen_) - 1);
    appendContent(viewOf(data, len));
}

bool CPdf::slotsFilled() const {
    for (int slot = 0; slot < objectCount_; ++slot) {
        if (objects_->find(slot) == nullptr) return false;
    }
    return true;
}

int CPdf::WriteObjArrayToContent() {
    if (!slotsFilled()) return -1;
    ownContent();
    for (int slot = 0; slot < objectCount_; ++slot) {
        CPdfObj& object = *objects_->find(slot);
        object.SetFromPos(static_cast<int>(contentLen_) - 1);
        appendContent(object.content());
    }
    return 0;
}

int CPdf::WriteXrefToContent() {
    if (!slotsFilled()) return -1;
    ownContent();
    xrefStartPos_ = static_cast<int>(contentLen_) - 1;
    std::string table;
    append(table, "xref\r\n", 0, ' ', objectCount_ + 1, "\r\n");
    append(table, "0000000000 65535 f\r\n");
    for (int slot = 0; slot < objectCount_; ++slot) {
        const CPdfObj& object = *objects_->find(slot);
        append(table, Digits{object.GetFromPos(), 10}, ' ', Digits{object.GetGenNumber(), 5}, " n\r\n");
    }
    appendContent(table);
    return 0;
}

int CPdf::WriteTrailerToContent(int size, std::string id) {
    std::string trailer;
    append(trailer, "trailer\r\n", "<<\r\n");
    append(trailer, "\t/size ", size, " \r\n");
    append(trailer, "\t/Root ", rootObjNum_, " 0 R\r\n");
    append(trailer, "\t/ID [", id, ' ', id, "]\r\n");
    append(trailer, ">>\r\n", "startxref\r\n", xrefStartPos_, "\r\n", "%%EOF\r\n");
    appendContent(trailer);
    return 0;
}

int CPdf::WriteAndClose() {
    std::string_view bytes = view();
    if (contentCapacity_ > 0) bytes.remove_suffix(1);
    bool written = false;
    if (!bytes.empty()) {
        StagedFile file(fileName_.c_str());
        if (file.isOpen()) {
            file.write(bytes);
            written = file.commit();
        }
    }
    if (!written) logError(m_logger, "ERROR_CAN_NOT_WRITE_PDF_FILE: ", fileName_);
    Close();
    return written ? 0 : -1;
}

void CPdf::AddStreamInPdfArray(int slot, char* data, int len) {
    CPdfObj* const object = objects_->find(slot);
    if (object != nullptr) object->AddStream(data, len);
}

int CPdf::AddDictionaryEntryInPdfArray(int slot, const char* key, const char* value) {
    CPdfObj* const object = objects_->find(slot);
    return object == nullptr ? 0 : object->AddDictionaryEntry(key, value);
}

void CPdf::AppendToRefArray(char* array, const char* item) {
    if (array == nullptr) return;
    const std::string longer = appendToRefArray(array, viewOf(item));
    std::memcpy(array, longer.c_str(), longer.size() + 1);
}

void CPdf::AppendToRefArray(char* array, CPdfObj* obj) {
    if (obj == nullptr) return;
    AppendToRefArray(array, text(' ', obj->GetObjNum(), ' ', obj->GetGenNumber(), " R").c_str());
}

// Before the first change the content becomes a terminated text of our own whose length counts the terminator.
void CPdf::ownContent() {
    searches_.clear();  // they look at the bytes as they were
    if (contentCapacity_ > 0) return;
    if (content_) {
        // What was read borrows its text from bytes that may move now; asked for a terminated text, it takes a copy.
        for (auto [slot, obj] = objects_->lowerBound(std::numeric_limits<int>::min()); obj != nullptr;
             std::tie(slot, obj) = objects_->lowerBound(slot + 1)) {
            obj->GetContent();
            if (slot == std::numeric_limits<int>::max()) break;
        }
        for (const auto& trailer : trailers_) trailer->GetContent();
        for (CPdfTrailer* const trailer : {lastTrailer_.get(), updateTrailer_.get()}) {
            if (trailer != nullptr) trailer->GetContent();
        }
        ++contentLen_;
    } else {
        content_.reset(static_cast<unsigned char*>(std::calloc(1, 1)));
        if (!content_) throw std::bad_alloc();
        contentLen_ = 1;
    }
    contentCapacity_ = contentLen_;
}

// Puts text in front of the byte at `at`. The room doubles, so that many appends cost no more than what they append.
void CPdf::insertContent(std::size_t at, std::string_view text) {
    ownContent();
    const std::size_t used = contentLen_;
    const std::size_t needed = used + text.size();
    if (needed > static_cast<std::size_t>(std::numeric_limits<int>::max())) throw std::length_error("PDF content");
    std::unique_ptr<unsigned char[], FreeBytes> old;  // lives on until `text`, which may be part of it, is copied
    if (needed > contentCapacity_) {
        const std::size_t capacity = std::max(needed, 2 * contentCapacity_);
        old.reset(static_cast<unsigned char*>(std::malloc(capacity)));
        if (!old) throw std::bad_alloc();
        std::memcpy(old.get(), content_.get(), used);
        old.swap(content_);
        contentCapacity_ = capacity;
    }
    unsigned char* const place = content_.get() + at;
    std::memmove(place + text.size(), place, used - at);
    if (!text.empty()) std::memcpy(place, text.data(), text.size());
    contentLen_ = static_cast<unsigned int>(needed);
}

void CPdf::appendContent(std::string_view text) {
    ownContent();
    insertContent(contentLen_ - 1, text);
}
