// One preparation: the modification dates in /Info and in the XMP metadata (ISO 32000-2 14.3).
#include "model/DictionaryEntry.h"
#include "model/Lookup.h"
#include "model/Stream.h"
#include "signing/Preparation.h"
#include "support/Limits.h"
#include "support/Loggers.h"
#include "syntax/Dates.h"
#include "syntax/Dictionary.h"
#include "syntax/Text.h"
#include "varnpdf/result.h"

namespace varnpdf {
namespace {

// Where the keyword "stream" stands behind the dictionary.
std::size_t keywordOf(std::string_view object, const Stream& stream) {
    return object.find("stream", offsetIn(object, stream.dictionary) + stream.dictionary.size());
}

// /Length ends within the white space in front of "endstream".
bool lengthFits(const Document& document, const CPdfObj& object, const Stream& stream) {
    if (stream.lengthHolds) return true;
    const std::string_view whole = object.content();
    const std::size_t begin = offsetIn(whole, stream.data);
    const std::size_t end = whole.rfind("endstream");
    const auto length = integerOf(document, lookUpValue(stream.dictionary, "/Length"));
    if (!length || *length < 0 || end == std::string_view::npos || end < begin) return false;
    const std::string_view data = whole.substr(begin, end - begin);
    if (static_cast<std::size_t>(*length) > data.size()) return false;
    constexpr std::string_view kBlanks("\0 \t\n\f\r\a", 7);
    return data.find_first_not_of(kBlanks, static_cast<std::size_t>(*length)) == std::string_view::npos;
}

}  // namespace

void Preparation::updateInfo() {
    const CPdfObj* const info = referencedObject(document_, document_.newest->info());
    if (info == nullptr || request_.signDate == nullptr) return;
    // Only a literal string: the date goes between parentheses, and the next pair may belong to another entry.
    const std::string_view text = update_.current(*info);
    const Dictionary entries(text);
    const Dictionary::Entry* const entry = entries.entry("/ModDate");
    if (entry == nullptr || !entry->value.starts_with('(')) return;
    // From the key on: a title may hold the word as well.
    const std::size_t key = offsetIn(text, entry->key);
    std::string edited(text.substr(key));
    if (!replaceModDate(edited, request_.signDate)) return;
    std::string& changed = update_.change(*info);
    changed.replace(key, std::string::npos, edited);
}

int Preparation::updateMetadata() {
    const CPdfObj* const object = referencedObject(document_, lookUpValue(catalogue_->content(), "/Metadata"));
    const auto stream = object == nullptr ? std::nullopt : streamOf(document_, *object);
    if (!stream) {
        logDebug(loggers::sign, "Metadata-Objekt NICHT gefunden");
        return VARNPDF_OK;
    }
    logDebug(loggers::sign, "Metadata-Objekt gefunden");
    if (!lengthFits(document_, *object, *stream)) return VARNPDF_METADATA_LENGTH;
    const Packing packing = packingOf(document_, stream->dictionary);
    if (packing == Packing::Other || lookUp(stream->dictionary, "/DecodeParms")) return VARNPDF_OK;
    const bool packed = packing == Packing::Flate;
    logDebug(loggers::sign, packed ? "Metadata-Objekt gepackt!" : "Metadata-Objekt NICHT gepackt!");
    const auto content = decoded(document_, *stream, limits::kMetadataBytes);
    if (!content || request_.signDate == nullptr) return VARNPDF_OK;
    std::string xmp(content->view());
    if (!replaceModDate(xmp, request_.signDate)) return VARNPDF_OK;
    if (packed) {
        auto deflatedXmp = deflated(xmp);
        if (!deflatedXmp) return VARNPDF_COMPRESSING_FAILED;
        xmp = std::move(*deflatedXmp);
    }
    logDebug(loggers::sign, "Laenge des neuen Metadata-Streams : ", xmp.size());
    const std::string_view whole = object->content();
    std::string head(whole.substr(0, keywordOf(whole, *stream)));
    setEntry(head, "/Length", text(xmp.size()));
    metadata_ = text(head, "stream\r\n", xmp, "\r\nendstream\r\nendobj\r\n");
    return VARNPDF_OK;
}

}  // namespace varnpdf
