// The document security store for display.
#include "store.h"

#include <map>
#include <string>
#include <vector>

#include "material.h"
#include "varnpdf/PdfStore.h"
#include "varnpdf/PdfText.h"

namespace {

using Json = nlohmann::ordered_json;

Json orNull(const std::string& text) { return text.empty() ? Json(nullptr) : Json(CPdfText::ValidUtf8(text)); }

struct Kind {
    const char* name;
    std::vector<int> PdfStoreMaterial::*numbers;
    void (*describe)(const std::string& der, Json& out);
};

constexpr Kind kKinds[] = {
    {"certificates", &PdfStoreMaterial::certificates,
     [](const std::string& der, Json& out) {
         const cli::CertificatePtr certificate = cli::parseCertificate(der);
         out["subject"] = certificate ? orNull(cli::nameOf(X509_get_subject_name(certificate.get()))) : nullptr;
         out["issuer"] = certificate ? orNull(cli::nameOf(X509_get_issuer_name(certificate.get()))) : nullptr;
     }},
    {"crls", &PdfStoreMaterial::crls,
     [](const std::string& der, Json& out) {
         const cli::CrlPtr crl = cli::parseCrl(der);
         out["issuer"] = crl ? orNull(cli::nameOf(X509_CRL_get_issuer(crl.get()))) : nullptr;
     }},
    {"ocsps", &PdfStoreMaterial::ocsps,
     [](const std::string& der, Json& out) {
         const cli::OcspPtr response = cli::parseOcsp(der);
         out["responder"] = response ? orNull(cli::responderOf(response.get())) : nullptr;
     }},
};

Json material(CPdfStore& store, const Kind& kind) {
    Json out = Json::array();
    std::map<int, Json> known;  // an array may name an object many times
    for (const int number : store.GetMaterial().*kind.numbers) {
        const auto [it, added] = known.try_emplace(number);
        if (added) {
            it->second["object"] = number >= 0 ? Json(number) : Json(nullptr);
            kind.describe(store.GetBytes(number).value_or(""), it->second);
        }
        out.push_back(it->second);
    }
    return out;
}

Json entryOf(const PdfStoreEntry& found) {
    Json out = {{"key", found.key}, {"signature", nullptr}};
    if (found.signature >= 0) out["signature"] = found.signature;
    for (const Kind& kind : kKinds) out[kind.name] = ((*found.material).*kind.numbers).size();
    out["time"] = found.time.empty() ? Json(nullptr) : Json(found.time);
    return out;
}

}  // namespace

Json cli::securityStore(CPdf& pdf) {
    CPdfStore store(pdf);
    if (!store.IsThere()) return nullptr;
    Json out = {{"object", store.GetObjNum() >= 0 ? Json(store.GetObjNum()) : Json(nullptr)}};
    for (const Kind& kind : kKinds) out[kind.name] = material(store, kind);
    out["vri"] = Json::array();
    for (const PdfStoreEntry& entry : store.GetEntries()) out["vri"].push_back(entryOf(entry));
    return out;
}
