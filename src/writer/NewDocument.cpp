// Documents from nothing: their bytes and the texts they are made of.
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

void GrowingBytes::insert(Document& document, std::size_t at, std::string_view text) {
    own(document);
    const std::size_t used = own_->size();
    const std::size_t needed = used + text.size();
    if (needed > static_cast<std::size_t>(std::numeric_limits<int>::max())) throw std::length_error("PDF content");
    const std::string copy(text);  // it may be part of what moves now
    if (needed > own_->capacity()) own_->reserve(std::max(needed, 2 * own_->capacity()));
    char* const place = own_->data() + at;
    std::memmove(place + copy.size(), place, used - at);
    std::copy(copy.begin(), copy.end(), place);
    own_->setSize(needed);
    document.length = needed;
}

void GrowingBytes::append(Document& document, std::string_view text) {
    own(document);
    insert(document, own_->size() - 1, text);
}

std::string newObjectText(int number, std::string_view comment, std::string_view body, CPdfObj::ContentType type) {
    const Frame frame = frameOf(number, type);
    std::string out = frame.head;
    if (!comment.empty()) varnpdf::append(out, '%', comment, "\r\n");
    varnpdf::append(out, body, frame.tail);
    return out;
}

bool slotsFilled(const Document& document, int count) {
    for (int slot = 0; slot < count; ++slot) {
        if (document.objects.find(slot) == nullptr) return false;
    }
    return true;
}

std::string newTableText(const Document& document, int count) {
    std::string out;
    append(out, "xref\r\n", 0, ' ', count + 1, "\r\n");
    append(out, "0000000000 65535 f\r\n");
    for (int slot = 0; slot < count; ++slot) {
        const CPdfObj& object = *document.objects.find(slot);
        append(out, Digits{object.GetFromPos(), 10}, ' ', Digits{object.GetGenNumber(), 5}, " n\r\n");
    }
    return out;
}

std::string newTrailerText(int size, int root, std::string_view id, int table) {
    std::string out;
    append(out, "trailer\r\n", "<<\r\n");
    append(out, "\t/size ", size, " \r\n");
    append(out, "\t/Root ", root, " 0 R\r\n");
    append(out, "\t/ID [", id, ' ', id, "]\r\n");
    append(out, ">>\r\n", "startxref\r\n", table, "\r\n", "%%EOF\r\n");
    return out;
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

}  // namespace varnpdf
