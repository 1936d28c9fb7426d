// The record of an indirect object: fields, ownership of its text, dictionary types.
#include "varnpdf/PdfObj.h"

#include <algorithm>
#include <cstring>
#include <new>

#include "model/DictionaryEntry.h"
#include "support/Guarded.h"
#include "support/Loggers.h"

using namespace varnpdf;

namespace {

std::unique_ptr<char[]> terminatedCopy(std::string_view text) {
    auto copy = std::make_unique_for_overwrite<char[]>(text.size() + 1);
    std::memcpy(copy.get(), text.data(), text.size());
    copy[text.size()] = '\0';
    return copy;
}

std::unique_ptr<char[]> entryCopy(std::string_view text, std::string_view key) {
    const auto entry = findEntry(text, key);
    return entry ? terminatedCopy(entry->value.of(text)) : nullptr;
}

}  // namespace

CPdfObj::CPdfObj() = default;

CPdfObj::CPdfObj(int objNum, int genNum, int fromPos, int toPos)
    : objNum_(objNum), genNum_(genNum), fromPos_(fromPos), toPos_(toPos) {}

CPdfObj::~CPdfObj() = default;

int CPdfObj::GetObjNum() const { return objNum_; }
void CPdfObj::SetObjNum(int n) { objNum_ = n; }
int CPdfObj::GetGenNumber() const { return genNum_; }
void CPdfObj::SetGenNumber(int n) { genNum_ = n; }
int CPdfObj::GetFromPos() const { return fromPos_; }
void CPdfObj::SetFromPos(int pos) { fromPos_ = pos; }
int CPdfObj::GetToPos() const { return toPos_; }
void CPdfObj::SetToPos(int pos) { toPos_ = pos; }
int CPdfObj::GetContentLen() const { return contentLen_; }
bool CPdfObj::GetStatus() const { return status_; }
void CPdfObj::SetStatus(bool status) { status_ = status; }
CPdfObj::ContentType CPdfObj::GetObjectType() const { return objectType_; }
void CPdfObj::SetObjectType(ContentType type) { objectType_ = type; }
bool CPdfObj::GetIsCompressed() const { return isCompressed_; }
void CPdfObj::SetIsCompressed(bool compressed) { isCompressed_ = compressed; }
int CPdfObj::GetCompressStreamObjNr() const { return streamObjNr_; }
void CPdfObj::SetCompressStreamObjNr(int n) { streamObjNr_ = n; }
int CPdfObj::GetPositioninStreamArray() const { return positionInStream_; }
void CPdfObj::SetPositioninStreamArray(int n) { positionInStream_ = n; }
bool CPdfObj::IsInUse() const { return inUseKeyword_ == 'n'; }
bool CPdfObj::GetbHasDecodeParms_Colums() const { return hasColumns_; }
bool CPdfObj::GetbHasDecodeParms_Predictor() const { return hasPredictor_; }
long CPdfObj::GetiDecodeParms_Colums() const { return columns_; }
long CPdfObj::GetiDecodeParms_Predictor() const { return predictor_; }
void CPdfObj::reportChangesTo(std::uint64_t* revision) noexcept { revision_ = revision; }

void CPdfObj::Init() {
    objectType_ = eContentUndefined;
    inUseKeyword_ = 'f';
    status_ = true;
    hasColumns_ = false;
    hasPredictor_ = true;
    columns_ = 0;
    predictor_ = 1;
    objNum_ = genNum_ = fromPos_ = toPos_ = -1;
    text_ = nullptr;
    contentLen_ = storedLen_ = 0;
    owned_.reset();
    dictionaryType_.reset();
    dictionarySubtype_.reset();
    typesKnown_ = true;
    changed();
}

void CPdfObj::CopyFrom(CPdfObj* other) {
    if (other == nullptr || other == this) return;
    rememberDictionaryTypes();
    assign(other->content());
    contentLen_ = other->contentLen_;
    objNum_ = other->objNum_;
    genNum_ = other->genNum_;
    fromPos_ = other->fromPos_;
    toPos_ = other->toPos_;
    inUseKeyword_ = other->inUseKeyword_;
    status_ = other->status_;
    objectType_ = other->objectType_;
}

CPdfObj& CPdfObj::operator=(CPdfObj& other) {
    CopyFrom(&other);
    return *this;
}

void CPdfObj::SetPosition(int from, int to) {
    fromPos_ = from;
    toPos_ = to;
}

unsigned char* CPdfObj::GetContent() {
    if (text_ != nullptr && !owned_) {
        const auto length = static_cast<std::size_t>(storedLen_);
        owned_.reset(new (std::nothrow) unsigned char[length + 1]);
        if (!owned_) return nullptr;
        std::copy_n(text_, length, owned_.get());
        owned_[length] = 0;
        text_ = reinterpret_cast<const char*>(owned_.get());
    }
    return owned_.get();
}

std::string_view CPdfObj::content() const noexcept {
    const int length = std::clamp(contentLen_, 0, storedLen_);
    return {text_, static_cast<std::size_t>(length)};
}

void CPdfObj::SetContentLen(int len) {
    rememberDictionaryTypes();
    contentLen_ = len;
    changed();
}

void CPdfObj::SetInUseKeyword(char c) {
    if (c == 'f' || c == 'n') inUseKeyword_ = c;
}

void CPdfObj::SetiDecodeParms_Colums(int columns) {
    columns_ = columns;
    hasColumns_ = columns >= 0;
}

void CPdfObj::SetiDecodeParms_Predictor(int predictor) {
    predictor_ = predictor;
    hasPredictor_ = predictor == 1 || predictor == 2 || (predictor >= 10 && predictor <= 15);
}

char* CPdfObj::get_dictionary_type() {
    return guardedOr(static_cast<char*>(nullptr), [this] {
        rememberDictionaryTypes();
        return dictionaryType_.get();
    });
}

char* CPdfObj::get_dictionary_subtype() {
    return guardedOr(static_cast<char*>(nullptr), [this] {
        rememberDictionaryTypes();
        return dictionarySubtype_.get();
    });
}

void CPdfObj::SetContent(unsigned char* text, int len) {
    const bool none = text == nullptr || len <= 0;
    try {
        setContent(none ? std::string_view{}
                        : std::string_view(reinterpret_cast<const char*>(text), static_cast<std::size_t>(len)));
    } catch (...) {
        logError(loggers::object, "SetContent: kein Speicher, Laenge: ", len);
    }
}

void CPdfObj::SetContentDummy(unsigned char* text, int len) {
    logDebug(loggers::object, "SetContent Laenge: ", len);
    SetContent(text, len);
}

void CPdfObj::SetContentDummySpezial(unsigned char* /*text*/, int len) { SetContentLen(len); }

void CPdfObj::setContent(std::string_view text) {
    if (text.empty()) {
        owned_.reset();
        text_ = nullptr;
        storedLen_ = 0;
    } else {
        assign(text);
    }
    dictionaryType_.reset();
    dictionarySubtype_.reset();
    typesKnown_ = text_ == nullptr;
    changed();
}

void CPdfObj::borrowContent(std::string_view text) noexcept {
    owned_.reset();
    dictionaryType_.reset();
    dictionarySubtype_.reset();
    typesKnown_ = false;
    text_ = text.data();
    contentLen_ = storedLen_ = static_cast<int>(text.size());
    changed();
}

std::string_view CPdfObj::typeEntry() {
    findEntries();
    return content().substr(typeEntryPos_, typeEntryLen_);
}

std::string_view CPdfObj::fieldTypeEntry() {
    findEntries();
    return content().substr(fieldTypePos_, fieldTypeLen_);
}

void CPdfObj::findEntries() {
    if (entriesKnown_) return;
    const auto [type, fieldType] = findTypes(content());
    typeEntryPos_ = static_cast<std::uint32_t>(type.begin);
    typeEntryLen_ = static_cast<std::uint32_t>(type.size());
    fieldTypePos_ = static_cast<std::uint32_t>(fieldType.begin);
    fieldTypeLen_ = static_cast<std::uint32_t>(fieldType.size());
    entriesKnown_ = true;
}

// Takes a copy of the text; `text` may be part of the present one.
void CPdfObj::assign(std::string_view text) {
    auto copy = std::make_unique_for_overwrite<unsigned char[]>(text.size() + 1);
    std::copy(text.begin(), text.end(), copy.get());
    copy[text.size()] = 0;
    owned_ = std::move(copy);
    text_ = text.empty() ? nullptr : reinterpret_cast<const char*>(owned_.get());
    contentLen_ = storedLen_ = static_cast<int>(text.size());
    changed();
}

// Edits in place leave the dictionary types as they were when the text was set.
void CPdfObj::splice(std::size_t begin, std::size_t end, std::string_view replacement) {
    rememberDictionaryTypes();
    const std::string_view old = content();
    std::string edited;
    edited.reserve(old.size() + replacement.size());
    append(edited, old.substr(0, begin), replacement, old.substr(end));
    assign(edited);
}

void CPdfObj::rememberDictionaryTypes() {
    if (typesKnown_) return;
    dictionaryType_ = entryCopy(content(), "/Type");
    dictionarySubtype_ = entryCopy(content(), "/Subtype");
    typesKnown_ = true;
}

void CPdfObj::changed() noexcept {
    entriesKnown_ = false;
    if (revision_ != nullptr) ++*revision_;
}

CPdfObjTransferListItem::CPdfObjTransferListItem(int oldNr, int newNr) : oldNr_(oldNr), newNr_(newNr) {}
int CPdfObjTransferListItem::getOldObjNr() const { return oldNr_; }
int CPdfObjTransferListItem::getNewObjNr() const { return newNr_; }
void CPdfObjTransferListItem::setOldObjNr(int n) { oldNr_ = n; }
void CPdfObjTransferListItem::setNewObjNr(int n) { newNr_ = n; }
