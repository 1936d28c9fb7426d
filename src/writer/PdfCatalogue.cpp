// CPdf: identity and catalogue of a document from nothing.
#include "support/Text.h"
#include "varnpdf/Pdf.h"

using namespace varnpdf;

namespace {

// A key without a value would take the next key for it; null is the same as no entry (ISO 32000-2 7.3.9).
std::string_view valueOf(const std::string& value) { return value.empty() ? std::string_view("null") : value; }

}  // namespace

void CPdf::CreateIdent() { ident_ = "<123456>"; }

int CPdf::CreateRoot(std::string openAction, std::string names, std::string pages, std::string collection,
                     std::string metadata, std::string pageLabels, std::string outputIntents) {
    rootObjNum_ = objectCount_ + 1;
    std::string body;
    append(body, "\r\n\t/Type /Catalog");
    append(body, "\r\n\t/OpenAction ", valueOf(openAction));
    append(body, "\r\n\t/Names ", valueOf(names));
    append(body, "\r\n\t/Lang (de-DE)");
    append(body, "\r\n\t/Pages ", valueOf(pages));
    append(body, "\r\n\t/Collection <</View/T /Type/Collection ", collection, ">>");
    if (!metadata.empty()) append(body, "\r\n\t/Metadata ", metadata);
    if (!pageLabels.empty()) append(body, "\r\n\t/PageLabels ", pageLabels);
    if (!outputIntents.empty()) append(body, "\r\n\t/OutputIntents ", outputIntents);
    return CreateObject("", 0, body.data(), static_cast<int>(body.size()), CPdfObj::eContentDictionary);
}
