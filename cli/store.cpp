// Reads the document security store for display.
#include "store.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "document.h"
#include "material.h"
#include "state.h"
#include "tokens.h"
#include "varnpdf/PdfText.h"

namespace {

using Json = nlohmann::ordered_json;

constexpr std::size_t kMostInflated = std::size_t{16} << 20U;

struct Followed {
    std::string_view text;
    const CPdfObj* holder = nullptr;
};

/// A value behind its references.
Followed follow(CPdf& pdf, std::optional<std::string_view> value) {
    constexpr int kLongestChain = 8;
    Followed found{value.value_or(std::string_view()), nullptr};
    for (int i = 0; i < kLongestChain; ++i) {
        const CPdfObj* const target = cli::referenced(pdf, found.text);
        if (target == nullptr) return found;
        found = {cli::valueOf(*target).value_or(std::string_view()), target};
    }
    return {};
}

/// The elements of an array.
std::vector<std::string_view> elements(std::string_view array) {
    std::vector<std::string_view> out;
    cli::Tokens tokens(array);
    if (tokens.next() != "[") return out;
    for (auto item = tokens.nextValue(); item && *item != "]"; item = tokens.nextValue()) out.push_back(*item);
    return out;
}

std::optional<std::string> inflated(std::string data) {
    for (std::size_t room = 4 * data.size() + 4096; room <= kMostInflated; room *= 4) {
        constexpr int kRoomTooSmall = -5;  // Z_BUF_ERROR
        std::string out(room, '\0');
        unsigned long length = room;
        const int status =
            CPdfHelper::Deflate(reinterpret_cast<unsigned char*>(data.data()), static_cast<unsigned int>(data.size()),
                                reinterpret_cast<unsigned char*>(out.data()), &length);
        // Of a stream that lacks its end or its check sum everything may have come out; who reads it will see.
        if (status != kRoomTooSmall) return out.substr(0, std::min<std::size_t>(length, room));
    }
    return std::nullopt;
}

/// What the streams of one document may inflate to together.
constexpr std::size_t kInflateBudget = std::size_t{256} << 20U;

/// Reads the data of streams without filter or with /FlateDecode.
class StreamReader {
public:
    explicit StreamReader(CPdf& pdf) : pdf_(pdf) {}

    /// Nothing for a stream that is damaged or has another filter.
    std::optional<std::string> read(const CPdfObj& obj) {
        const std::optional<std::string_view> dictionary = cli::valueOf(obj);
        if (!dictionary || !dictionary->starts_with("<<")) return std::nullopt;
        const auto data = rawData(obj.content(), *dictionary);
        if (!data) return std::nullopt;
        const std::string_view filter = follow(pdf_, cli::lookUp(*dictionary, "Filter")).text;
        const std::vector<std::string_view> filters = elements(filter);
        if (filter.empty() || filter == "null" || (filter.starts_with('[') && filters.empty())) {
            return std::string(*data);
        }
        const bool flate = filter == "/FlateDecode" || (filters.size() == 1 && filters.front() == "/FlateDecode");
        std::optional<std::string> out = flate && budget_ > 0 ? inflated(std::string(*data)) : std::nullopt;
        budget_ -= std::min(budget_, out ? out->size() : 0);
        return out;
    }

private:
    [[nodiscard]] std::optional<std::string_view> rawData(std::string_view object, std::string_view dictionary) const {
        constexpr std::string_view kKeyword = "stream";
        std::string_view rest = object;
        rest.remove_prefix(static_cast<std::size_t>(dictionary.data() - object.data()) + dictionary.size());
        rest.remove_prefix(std::min(rest.find_first_not_of(" \t\r\n\f"), rest.size()));
        if (!rest.starts_with(kKeyword)) return std::nullopt;
        rest.remove_prefix(kKeyword.size());
        rest.remove_prefix(rest.starts_with("\r\n") ? 2U : rest.starts_with('\n') ? 1U : 0U);
        const std::string_view length = follow(pdf_, cli::lookUp(dictionary, "Length")).text;
        std::size_t size = 0;
        const auto [end, error] = std::from_chars(length.data(), length.data() + length.size(), size);
        if (error != std::errc() || size > rest.size()) return std::nullopt;
        return rest.substr(0, size);
    }

    CPdf& pdf_;
    std::size_t budget_ = kInflateBudget;
};

Json orNull(const std::string& text) { return text.empty() ? Json(nullptr) : Json(CPdfText::ValidUtf8(text)); }

struct Kind {
    const char* name;
    const char* storeKey;
    const char* entryKey;
    void (*describe)(const std::string& der, Json& out);
};

constexpr Kind kKinds[] = {
    {"certificates", "Certs", "Cert",
     [](const std::string& der, Json& out) {
         const cli::CertificatePtr certificate = cli::parseCertificate(der);
         out["subject"] = certificate ? orNull(cli::nameOf(X509_get_subject_name(certificate.get()))) : nullptr;
         out["issuer"] = certificate ? orNull(cli::nameOf(X509_get_issuer_name(certificate.get()))) : nullptr;
     }},
    {"crls", "CRLs", "CRL",
     [](const std::string& der, Json& out) {
         const cli::CrlPtr crl = cli::parseCrl(der);
         out["issuer"] = crl ? orNull(cli::nameOf(X509_CRL_get_issuer(crl.get()))) : nullptr;
     }},
    {"ocsps", "OCSPs", "OCSP",
     [](const std::string& der, Json& out) {
         const cli::OcspPtr response = cli::parseOcsp(der);
         out["responder"] = response ? orNull(cli::responderOf(response.get())) : nullptr;
     }},
};

/// Key of /VRI and index of each signature that can be looked into.
std::map<std::string, int> signatureKeys(CPdf& pdf) {
    std::map<std::string, int> keys;
    const int count = pdf.PdfGetNumSignatures();
    for (int i = 0; i < count; ++i) {
        const CPdfObj* const field = pdf.GetSigInfo()->GetSignRef(i);
        if (field == nullptr) break;
        const Followed dictionary = follow(pdf, cli::lookUp(*field, "V"));
        const auto contents = cli::lookUp(dictionary.text, "Contents");
        const auto bytes = contents ? CPdfText::StringBytes(*contents) : std::nullopt;
        if (!bytes) continue;
        CSHA sha(0);
        std::array<char, 20> digest{};
        sha.AddData(bytes->data(), static_cast<int>(bytes->size()));
        sha.FinalDigest(digest.data());
        keys.try_emplace(cli::hexOf({digest.data(), digest.size()}), i);
    }
    return keys;
}

std::string lower(std::string text) {
    for (char& c : text) c = c >= 'A' && c <= 'F' ? static_cast<char>(c | 0x20) : c;
    return text;
}

Json material(CPdf& pdf, StreamReader& streams, std::string_view store, const Kind& kind) {
    Json out = Json::array();
    std::map<const CPdfObj*, Json> known;  // an array may name an object many times
    for (const std::string_view item : elements(follow(pdf, cli::lookUp(store, kind.storeKey)).text)) {
        const CPdfObj* const obj = follow(pdf, item).holder;
        const auto [it, added] = known.try_emplace(obj);
        if (added) {
            it->second["object"] = obj != nullptr ? Json(obj->GetObjNum()) : Json(nullptr);
            kind.describe(obj != nullptr ? streams.read(*obj).value_or("") : "", it->second);
        }
        out.push_back(it->second);
    }
    return out;
}

Json entries(CPdf& pdf, std::string_view store) {
    Json out = Json::array();
    const std::map<std::string, int> signatures = signatureKeys(pdf);
    std::map<const CPdfObj*, Json> known;  // entries may share a dictionary
    cli::Tokens tokens(follow(pdf, cli::lookUp(store, "VRI")).text);
    if (tokens.next() != "<<") return out;
    while (const auto key = tokens.next()) {
        const auto name = CPdfText::NameBytes(*key);
        const auto value = name ? tokens.nextValue() : std::nullopt;
        if (!value) break;
        const auto signature = signatures.find(lower(*name));
        Json entry = {{"key", CPdfText::ValidUtf8(*name)}, {"signature", nullptr}};
        if (signature != signatures.end()) entry["signature"] = signature->second;
        const Followed dictionary = follow(pdf, *value);
        auto& counts = known[dictionary.holder];
        if (counts.is_null() || dictionary.holder == nullptr) {
            counts = Json::object();
            for (const Kind& kind : kKinds) {
                counts[kind.name] = elements(follow(pdf, cli::lookUp(dictionary.text, kind.entryKey)).text).size();
            }
            const auto time = cli::displayed(cli::lookUp(dictionary.text, "TU"));
            counts["time"] = time ? Json(*time) : Json(nullptr);
        }
        entry.update(counts);
        out.push_back(entry);
    }
    return out;
}

}  // namespace

Json cli::securityStore(CPdf& pdf) {
    CPdfObj* const catalogue = referenced(pdf, pdf.GetLastTrailer()->root());
    if (catalogue == nullptr) return nullptr;
    const Followed store = follow(pdf, lookUp(*catalogue, "DSS"));
    if (!store.text.starts_with("<<")) return nullptr;
    Json out = {{"object", store.holder != nullptr ? Json(store.holder->GetObjNum()) : Json(nullptr)}};
    StreamReader streams(pdf);
    for (const Kind& kind : kKinds) out[kind.name] = material(pdf, streams, store.text, kind);
    out["vri"] = entries(pdf, store.text);
    return out;
}
