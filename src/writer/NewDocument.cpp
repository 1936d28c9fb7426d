// Documents from nothing: their objects, their bytes, their closing section.
#include "writer/NewDocument.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <stdexcept>

#include "support/Text.h"

namespace varnpdf {
namespace {

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

// A key without a value would take the next key for it; null is the same as no entry (ISO 32000-2 7.3.9).
std::string_view valueOrNull(std::string_view value) { return value.empty() ? "null" : value; }

std::string newObjectText(int number, std::string_view comment, std::string_view body, CPdfObj::ContentType type) {
    const Frame frame = frameOf(number, type);
    std::string out = frame.head;
    if (!comment.empty()) append(out, '%', comment, "\r\n");
    append(out, body, frame.tail);
    return out;
}

bool slotsFilled(const NewDocument& made) {
    for (int slot = 0; slot < made.objectCount; ++slot) {
        if (made.document.objects.find(slot) == nullptr) return false;
    }
    return true;
}

std::string catalogueBody(const PortfolioCatalogue& catalogue) {
    std::string out;
    append(out, "\r\n\t/Type /Catalog");
    append(out, "\r\n\t/OpenAction ", valueOrNull(catalogue.openAction));
    append(out, "\r\n\t/Names ", valueOrNull(catalogue.names));
    append(out, "\r\n\t/Lang (de-DE)");
    append(out, "\r\n\t/Pages ", valueOrNull(catalogue.pages));
    append(out, "\r\n\t/Collection <</View/T /Type/Collection ", catalogue.collection, ">>");
    if (!catalogue.metadata.empty()) append(out, "\r\n\t/Metadata ", catalogue.metadata);
    if (!catalogue.pageLabels.empty()) append(out, "\r\n\t/PageLabels ", catalogue.pageLabels);
    if (!catalogue.outputIntents.empty()) append(out, "\r\n\t/OutputIntents ", catalogue.outputIntents);
    return out;
}

}  // namespace

void GrowingBytes::own(Document& document) {
    document.caches.searches.clear();  // they look at the bytes as they were
    if (own_) return;
    const std::string_view old = document.view();
    auto bytes = std::make_shared<Bytes>();
    bytes->reserve(old.size() + 1);
    std::copy(old.begin(), old.end(), bytes->data());
    bytes->data()[old.size()] = 0;
    bytes->setSize(old.size() + 1);
    before_ = document.bytes;
    own_ = bytes;
    document.bytes = bytes;
    document.length = bytes->size();
}

void GrowingBytes::makeRoom(Document& document, std::size_t more) {
    own(document);
    const std::size_t needed = own_->size() + more;
    if (needed > static_cast<std::size_t>(std::numeric_limits<int>::max())) throw std::length_error("PDF content");
    if (needed > own_->capacity()) own_->reserve(std::max(needed, 2 * own_->capacity()));
}

void GrowingBytes::insert(Document& document, std::size_t at, std::string_view text) {
    own(document);
    const std::size_t used = own_->size();
    std::string copy;
    if (text.data() >= own_->data() && text.data() < own_->data() + used) text = copy = text;  // it moves now
    makeRoom(document, text.size());
    char* const place = own_->data() + at;
    std::memmove(place + text.size(), place, used - at);
    std::copy(text.begin(), text.end(), place);
    own_->setSize(used + text.size());
    document.length = own_->size();
}

void GrowingBytes::append(Document& document, std::string_view text) {
    own(document);
    insert(document, own_->size() - 1, text);
}

int createObject(NewDocument& made, std::string_view body, CPdfObj::ContentType type, std::string_view comment) {
    const int number = made.objectCount + 1;
    auto object = std::make_unique<CPdfObj>();
    object->setContent(newObjectText(number, comment, body, type));
    object->SetObjNum(number);
    object->SetGenNumber(0);
    object->SetObjectType(type);
    if (!made.document.objects.insert(number - 1, object)) return 0;
    made.objectCount = number;
    return number;
}

int createRoot(NewDocument& made, const PortfolioCatalogue& catalogue) {
    const std::string body = catalogueBody(catalogue);
    const int number = made.objectCount + 1;
    const int created = createObject(made, body, CPdfObj::eContentDictionary);
    made.rootNumber = number;
    return created;
}

void putHeader(NewDocument& made, std::string_view header) { made.content.insert(made.document, 0, header); }

std::size_t appendBytes(NewDocument& made, std::string_view bytes) {
    made.content.own(made.document);
    const std::size_t at = made.document.length - 1;
    made.content.append(made.document, bytes);
    return at;
}

bool writeObjects(NewDocument& made) {
    if (!slotsFilled(made)) return false;
    std::size_t bytes = 0;
    for (int number = 1; number <= made.objectCount; ++number) bytes += objectAt(made, number).content().size();
    made.content.makeRoom(made.document, bytes);
    for (int number = 1; number <= made.objectCount; ++number) {
        CPdfObj& object = objectAt(made, number);
        object.SetFromPos(static_cast<int>(appendBytes(made, object.content())));
    }
    return true;
}

bool writeTable(NewDocument& made) {
    if (!slotsFilled(made)) return false;
    std::string out;
    append(out, "xref\r\n", 0, ' ', made.objectCount + 1, "\r\n");
    append(out, "0000000000 65535 f\r\n");
    for (int number = 1; number <= made.objectCount; ++number) {
        const CPdfObj& object = objectAt(made, number);
        append(out, Digits{object.GetFromPos(), 10}, ' ', Digits{object.GetGenNumber(), 5}, " n\r\n");
    }
    made.tableOffset = static_cast<int>(appendBytes(made, out));
    return true;
}

void writeTrailer(NewDocument& made, int size, std::string_view id) {
    std::string out;
    append(out, "trailer\r\n", "<<\r\n");
    append(out, "\t/size ", size, " \r\n");
    append(out, "\t/Root ", made.rootNumber, " 0 R\r\n");
    append(out, "\t/ID [", id, ' ', id, "]\r\n");
    append(out, ">>\r\n", "startxref\r\n", made.tableOffset, "\r\n", "%%EOF\r\n");
    appendBytes(made, out);
}

std::string_view bytesOf(const NewDocument& made) noexcept {
    std::string_view bytes = made.document.view();
    if (made.content.owns()) bytes.remove_suffix(1);
    return bytes;
}

}  // namespace varnpdf
