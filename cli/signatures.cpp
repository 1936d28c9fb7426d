// Signature fields and signature dictionaries for display.
#include "signatures.h"

#include <algorithm>
#include <string>
#include <vector>

namespace {

using Json = nlohmann::ordered_json;

struct ShownKey {
    const char* name;
    const char* key;
};

constexpr ShownKey kTextKeys[] = {
    {"reason", "Reason"}, {"location", "Location"},        {"date", "M"},        {"name", "Name"},
    {"filter", "Filter"}, {"subfilter", "SubFilter"},      {"field_type", "FT"}, {"type", "Type"},
    {"r", "R"},           {"contact_info", "ContactInfo"},
};

/// Order of the keys of one signature; everything null.
Json blankSignature(int index) {
    Json out = {{"index", index}};
    for (const char* key :
         {"field", "reason", "location", "date", "name", "filter", "subfilter", "byte_range", "contents_bytes",
          "field_type", "type", "r", "contact_info", "cert", "covers_whole_file", "pkcs7_code", "pkcs7_bytes"}) {
        out[key] = nullptr;
    }
    return out;
}

Json textOrNull(const PdfSignature& signature, const char* key) {
    const auto found = signature.texts.find(key);
    return found != signature.texts.end() ? Json(found->second) : Json(nullptr);
}

void addDictionary(const PdfSignature& signature, Json& out) {
    for (const ShownKey& shown : kTextKeys) out[shown.name] = textOrNull(signature, shown.key);
    if (!signature.certificates.empty()) out["cert"] = signature.certificates.size();
    if (signature.room >= 0) out["contents_bytes"] = signature.room;
    if (signature.byteRange.empty()) return;
    out["byte_range"] = signature.byteRange;
    out["covers_whole_file"] = signature.coversWholeFile;
}

/// What "extract --pkcs7" will say, and the length of what it gives.
int valueOf(CPdf& pdf, const PdfSignatureField& field, unsigned long& length) {
    if (cli::isRegistered(pdf, field.index)) return pdf.GetSignaturePKCS7(field.index, nullptr, &length);
    if (field.signature == nullptr) return VARNPDF_NO_SIGNATURE_VALUE;
    length = field.signature->value.size();
    return length > 0 ? VARNPDF_OK : field.signature->room == 0 ? VARNPDF_PKCS7_EMPTY : VARNPDF_PKCS7_UNREADABLE;
}

Json signature(CPdf& pdf, const PdfSignatureField* field, int index) {
    Json out = blankSignature(index);
    if (field == nullptr) return out;
    out["field"] = cli::nameOrNull(*field);
    if (field->signature != nullptr) addDictionary(*field->signature, out);
    unsigned long length = 0;
    const int code = valueOf(pdf, *field, length);
    out["pkcs7_code"] = code;
    if (code == 0) out["pkcs7_bytes"] = length;
    return out;
}

}  // namespace

bool cli::isRegistered(CPdf& pdf, int index) {
    return index < std::min(pdf.PdfGetNumSignatures(), static_cast<int>(CPdfSigInfo::kRegister));
}

nlohmann::ordered_json cli::nameOrNull(const PdfSignatureField& field) {
    return field.name.empty() ? Json(nullptr) : Json(field.name);
}

nlohmann::ordered_json cli::signatureFields(const CPdfSignatureList& list) {
    std::vector<const PdfSignatureField*> fields;
    for (const PdfSignatureField& field : list.GetFields()) fields.push_back(&field);
    std::ranges::stable_sort(fields, {}, &PdfSignatureField::object);
    Json out = Json::array();
    for (const PdfSignatureField* const field : fields) {
        out.push_back({{"name", nameOrNull(*field)}, {"signed", field->isSigned}});
    }
    return out;
}

nlohmann::ordered_json cli::signatures(CPdf& pdf, const CPdfSignatureList& list) {
    Json out = Json::array();
    for (int i = 0; i < list.GetSignatureNum(); ++i) out.push_back(signature(pdf, list.GetSignature(i), i));
    return out;
}
