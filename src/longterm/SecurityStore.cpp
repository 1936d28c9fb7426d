// One run of the security store: reading what is there, taking in the material.
#include "longterm/SecurityStore.h"

#include <algorithm>
#include <limits>
#include <map>

#include "inspection/ShownSignatures.h"
#include "inspection/Signatures.h"
#include "longterm/StoreTexts.h"
#include "reader/Open.h"
#include "support/Loggers.h"
#include "syntax/CharClass.h"
#include "syntax/Values.h"
#include "varnpdf/Sha.h"
#include "varnpdf/result.h"

namespace varnpdf {
namespace {

/// The value of a signature: every byte of /Contents, the padding as well.
std::optional<std::string> contentsOf(std::string_view signature) { return stringOf(valueOf(signature, "/Contents")); }

// An unknown line end must still end the comment line of the entries.
std::string_view lineEndOrCrLf(const Document& document) {
    const std::string_view lineEnd = lineEndText(document.lineEnd);
    return lineEnd.empty() ? "\r\n" : lineEnd;
}

}  // namespace

SecurityStore::SecurityStore(Document& document, std::span<const pdf_dss_struct> records)
    : document_(document), records_(records), lineEnd_(lineEndOrCrLf(document)), update_(document, {.lineEnd = lineEnd_}) {}

int SecurityStore::run() {
    if (const int code = openTrailer(); code != VARNPDF_OK) return code;
    readSignatures();
    readStore();
    addMaterial();
    writeEntries();
    writeStore();
    updateCatalogue();
    return closeSection();
}

int SecurityStore::openTrailer() {
    logDebug(loggers::store, "Anzahl der PDF-Objekte : ", document_.objects.size());
    if (document_.encrypted) return VARNPDF_PDF_ENCRYPTED;
    const CPdfTrailer* const trailer = document_.newest.get();
    if (trailer == nullptr || !document_.update || trailer->root().empty()) return VARNPDF_TRAILER_INCOMPLETE;
    catalogue_ = referencedObject(document_, trailer->root());
    if (catalogue_ != nullptr) catalogueEntries_ = Dictionary(catalogue_->content());
    if (!catalogueEntries_) return VARNPDF_DSS_CATALOGUE_MISSING;
    // Three numbers for each record, and those of the entries, the store and the cross-reference stream.
    const std::size_t most = 3 * records_.size() + 3;
    const bool fits = most < static_cast<std::size_t>(std::numeric_limits<int>::max());
    return fits && update_.canReserve(static_cast<int>(most)) ? VARNPDF_OK : VARNPDF_TRAILER_INCOMPLETE;
}

SecurityStore::Resolved SecurityStore::resolve(std::string_view value) const {
    constexpr int kLongestChain = 8;  // references to references; a loop ends here
    Resolved found{value, nullptr};
    for (int i = 0; i < kLongestChain; ++i) {
        const auto number = referenceOf(found.text);
        if (!number) return found;
        found.holder = document_.objects.find(*number);
        found.text = found.holder != nullptr ? bodyOf(found.holder->content()) : std::string_view{};
    }
    return {};
}

void SecurityStore::readSignatures() {
    logDebug(loggers::store, "Gefundene Signaturen und deren DigestsHash:");
    for (CPdfObj* const field : signatureFields(document_)) {
        addSignature(resolve(valueOf(field->content(), "/V")).text);
    }
    lastSignature_ = signatures_.size();
    // Those that viewers show beside them, behind the ones that hosts count.
    Values values(document_);
    std::vector<std::string_view> further;
    for (const SignatureField& field : shownSignatures(document_, values)) {
        const auto place = static_cast<std::size_t>(field.index) - signatures_.size();
        if (field.index < static_cast<int>(signatures_.size())) continue;
        if (place >= further.size()) further.resize(place + 1);
        further[place] = field.signature.text;
    }
    for (const std::string_view dictionary : further) addSignature(dictionary);
    if (lastSignature_ == 0) lastSignature_ = signatures_.size();
    lastSignature_ -= std::min<std::size_t>(lastSignature_, 1);
}

void SecurityStore::addSignature(std::string_view dictionary) {
    // Fields may share a dictionary.
    const auto [known, isNew] = places_.try_emplace(dictionary.data());
    if (isNew || dictionary.empty()) {
        if (const auto contents = contentsOf(dictionary)) {
            std::string key = storeKey(*contents);
            known->second = byKey_.try_emplace(key, keyed_.size()).first->second;
            if (*known->second == keyed_.size()) keyed_.push_back({std::move(key), {}});
            logDebug(loggers::store, signatures_.size(), ": ", keyed_[*known->second].key);
        } else {
            logError(loggers::store, "Signatur Nr ", signatures_.size(), " hat keinen Wert");
        }
    }
    signatures_.push_back(known->second);
}

void SecurityStore::readStore() {
    const Dictionary::Entry* const entry = catalogueEntries_.entry("/DSS");
    if (entry != nullptr) {
        const Resolved found = resolve(entry->value);
        if (Dictionary old(found.text); old) {
            logDebug(loggers::store, "/DSS  gefunden");
            storeObject_ = found.holder;
            oldStore_ = std::move(old);
            readOldEntries();
            return;
        }
        logError(loggers::store, "/DSS ist kein Dictionary und wird ersetzt");
    }
    logDebug(loggers::store, "Muss neues DSS Objekt erzeugen");
}

void SecurityStore::readOldEntries() {
    const Resolved found = resolve(oldStore_.find("/VRI"));
    Dictionary old(found.text);
    logDebug(loggers::store, old ? "/VRI  gefunden" : "/VRI  nicht gefunden");
    for (const auto& [key, what] : {std::pair{"/OCSPs", "- OCSPs-Array"}, std::pair{"/Certs", "- Certs-Array"},
                                    std::pair{"/CRLs", "- CRLs-Array"}}) {
        if (oldStore_.entry(key) != nullptr) logDebug(loggers::store, what);
    }
    if (!old) return;
    oldEntries_ = std::move(old);
    // The store refers to generation 0, and two roles of one object cannot both be written.
    const bool alone = found.holder != nullptr && found.holder != storeObject_ && found.holder != catalogue_;
    if (alone && found.holder->GetGenNumber() <= 0) entriesObject_ = found.holder;

    std::map<std::string, Signature*> byKey;
    for (Signature& signature : keyed_) byKey[signature.key] = &signature;
    for (const Dictionary::Entry& pair : oldEntries_.entries()) {
        const std::string name = nameOf(pair.key);
        if (const auto same = byKey.find(name); same != byKey.end()) {
            same->second->same = &pair;
            continue;
        }
        const auto similar = byKey.find(upperDigits(name));
        if (similar != byKey.end()) similar->second->similar = &pair;
    }
    for (std::size_t i = 0; i < signatures_.size(); ++i) {
        if (signatures_[i] && keyed_[*signatures_[i]].same != nullptr) {
            logDebug(loggers::store, "Lese Daten aus vorh. Signatur Nr ", i);
        }
    }
}

void SecurityStore::addMaterial() {
    const int last = static_cast<int>(lastSignature_);
    std::vector<std::vector<const pdf_dss_struct*>> bySignature(signatures_.size());
    for (const pdf_dss_struct& record : records_) {
        const int index = record.signature_number == -1 ? last : record.signature_number;
        if (index >= 0 && static_cast<std::size_t>(index) < signatures_.size()) {
            bySignature[static_cast<std::size_t>(index)].push_back(&record);
        } else {
            logError(loggers::store, "Keine Signatur Nr ", record.signature_number, ", Daten werden nicht eingetragen");
        }
    }
    for (std::size_t i = 0; i < signatures_.size(); ++i) {
        if (!signatures_[i]) continue;
        Numbers& numbers = keyed_[*signatures_[i]].numbers;
        for (const pdf_dss_struct* const record : bySignature[i]) {
            addStream(record->certificate, kCertificate, numbers);
            addStream(record->crl, kCrl, numbers);
            addStream(record->ocsp, kOcsp, numbers);
        }
    }
    logDebug(loggers::store, "Hash-Liste durchlaufen und alle Arrays gefuellt.");
    logDebug(loggers::store, "Alle Cert/CRL/OCSP-Objekte erzeugt.");
}

void SecurityStore::addStream(std::string_view base64, Kind kind, Numbers& numbers) {
    if (base64.empty()) return;
    // Base64 decoding ends at the first line break; a host may have wrapped its text.
    std::string joined;
    joined.reserve(base64.size());
    std::copy_if(base64.begin(), base64.end(), std::back_inserter(joined), [](char c) { return !isCSpace(c); });
    const std::vector<unsigned char> bytes = base64_decode(joined);
    if (bytes.empty()) {
        logError(loggers::store, "Base64-Daten sind leer und werden nicht eingetragen");
        return;
    }
    const int number = update_.reserve();
    const std::string_view data(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    std::string object = lines(text(number, " 0 obj@@NL@@<< @@NL@@   /Length ", data.size(), "@@NL@@>>@@NL@@"));
    append(object, "stream\n", data, "\n", "endstream\n", "endobj\n\n");
    update_.write(number, 0, object);
    numbers[kind].push_back(number);
    all_[kind].push_back(number);
}

}  // namespace varnpdf
