// One preparation: the modification dates in /Info and in the XMP metadata (ISO 32000-2 14.3).
#include "model/DictionaryEntry.h"
#include "reader/SectionText.h"
#include "signing/Preparation.h"
#include "support/Inflate.h"
#include "support/Limits.h"
#include "syntax/Dates.h"
#include "syntax/Reference.h"
#include "varnpdf/result.h"
#include "writer/SectionTexts.h"

namespace varnpdf {
namespace {

constexpr std::size_t kNone = std::string_view::npos;
constexpr std::size_t kMostMetadata = std::size_t{64} << 20U;

// Behind the "stream" keyword stands a line end, CR LF or LF (ISO 32000-2 7.3.8.1).
std::size_t dataBegin(std::string_view text, std::size_t keyword) {
    std::size_t at = keyword + 6;
    if (text.substr(at).starts_with("\r\n")) return at + 2;
    return at < text.size() && isEol(text[at]) ? at + 1 : at;
}

}  // namespace

void Preparation::updateInfo() {
    CPdfObj* const info = referencedObject(documentOf(pdf_), pdf_.GetLastTrailer()->info());
    if (info == nullptr || request_.signDate == nullptr) return;
    // Only a literal string: the date goes between parentheses, and the next pair may belong to another entry.
    const std::string_view text = info->content();
    const auto entry = findLaterEntry(text, "/ModDate");
    if (!entry || !entry->value.of(text).starts_with('(')) return;
    // From the key on: a title may hold the word as well.
    std::string edited(text.substr(entry->key));
    if (replaceModDate(edited, request_.signDate)) {
        changed(*info).setContent(varnpdf::text(text.substr(0, entry->key), edited));
    }
}

int Preparation::updateMetadata() {
    const CPdfObj* const object = referencedObject(documentOf(pdf_), entryValue(catalogue_->content(), "/Metadata"));
    const std::string_view content = object == nullptr ? std::string_view{} : object->content();
    const std::size_t keyword = content.find("stream");
    const std::size_t end = content.rfind("endstream");
    if (keyword == kNone || end == kNone || end <= keyword) {
        logDebug(logger_, "Metadata-Objekt NICHT gefunden");
        return VARNPDF_OK;
    }
    logDebug(logger_, "Metadata-Objekt gefunden");
    const std::string_view header = content.substr(0, keyword);
    const std::string_view lengthValue = entryValue(header, "/Length");
    const auto reference = isReference2(lengthValue);
    const auto length = reference ? referencedNumber(documentOf(pdf_), reference->number) : Cursor(lengthValue).takeInt();
    const std::size_t begin = dataBegin(content, keyword);
    std::size_t blanks = end;
    while (blanks > begin && (isWhite(content[blanks - 1]) || content[blanks - 1] == '\0')) --blanks;
    const std::size_t dataEnd = begin + static_cast<std::size_t>(length.value_or(-1));
    if (!length || *length < 0 || dataEnd < blanks || dataEnd > end) return VARNPDF_METADATA_LENGTH;

    const std::string_view data = content.substr(begin, dataEnd - begin);
    const StreamFilter filter = streamFilter(header);
    if (filter == StreamFilter::Unknown || findLaterEntry(header, "/DecodeParms")) return VARNPDF_OK;
    const bool packed = filter == StreamFilter::Flate;
    logDebug(logger_, packed ? "Metadata-Objekt gepackt!" : "Metadata-Objekt NICHT gepackt!");
    std::string xmp(data);
    if (packed) {
        const auto inflated = inflateAll(data, kMostMetadata);
        if (!inflated) return VARNPDF_OK;
        xmp = inflated->view();
    }
    if (request_.signDate == nullptr || !replaceModDate(xmp, request_.signDate)) return VARNPDF_OK;
    if (packed) {
        auto deflatedXmp = deflated(xmp);
        if (!deflatedXmp) return VARNPDF_COMPRESSING_FAILED;
        xmp = std::move(*deflatedXmp);
    }
    logDebug(logger_, "Laenge des neuen Metadata-Streams : ", xmp.size());
    CPdfObj dictionary;
    dictionary.setContent(header);
    std::string newLength = text(xmp.size());
    dictionary.ReplaceDictionaryEntry("/Length", newLength.data());
    metadata_ = text(dictionary.content(), "stream\r\n", xmp, "\r\nendstream\r\nendobj\r\n");
    return VARNPDF_OK;
}

}  // namespace varnpdf
