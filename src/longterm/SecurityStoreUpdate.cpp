// One run of the security store: the objects of the appended update and its cross-reference section.
#include <algorithm>

#include "longterm/SecurityStore.h"
#include "longterm/StoreTexts.h"
#include "support/Limits.h"
#include "support/Loggers.h"
#include "support/ResultText.h"
#include "syntax/Dictionary.h"
#include "syntax/Text.h"
#include "syntax/Values.h"
#include "varnpdf/result.h"

namespace varnpdf {
namespace {

constexpr std::string_view kSectionHead =
    "@@NR@@ 0 obj@@NL@@<< @@NL@@"
    "  /Type /XRef @@NL@@"
    "  /Size @@SIZE@@ @@NL@@"
    "  /Info @@INFO@@@@NL@@"
    "  /Root @@ROOT@@ @@NL@@"
    "  /ID @@ID@@@@NL@@"
    "  /Index@@INDEX@@ @@NL@@"
    "  /Filter /FlateDecode  @@NL@@"
    "   /W @@W@@@@NL@@"
    "  /Length @@LENGTH@@@@NL@@"
    "  /Prev @@PREV@@@@NL@@"
    ">>@@NL@@";

/// A value to be carried over; a key without one gets the value that means as much (ISO 32000-2 7.3.9).
std::string written(std::string_view value) { return value.empty() ? "null" : std::string(value); }

}  // namespace

std::string SecurityStore::lines(std::string_view text) const {
    constexpr int kMostLines = 100;
    return replaced(text, "@@NL@@", lineEnd_, kMostLines);
}

/// The array behind a value with further references. Elements stay as they are written; what is no array, but an
/// object, becomes an element.
std::string SecurityStore::extended(std::string_view value, const std::vector<int>& added) const {
    const Resolved found = resolve(value);
    const auto items = itemsOf(found.text);
    if (added.empty() && (items || referenceOf(value))) return std::string(value);
    if (!items && (found.holder == nullptr || !found.text.starts_with("<<"))) return referenceArray(added);
    std::string out = "[";
    for (const std::string_view item : items.value_or(std::vector<std::string_view>{value})) {
        if (item != "null") append(out, out.size() > 1 ? " " : "", item);
    }
    for (const int number : added) append(out, out.size() > 1 ? " " : "", number, " 0 R");
    return out + ']';
}

std::string SecurityStore::newEntry(const Numbers& numbers) const {
    return text("<< /OCSP ", referenceArray(numbers[kOcsp]), " /CRL ", referenceArray(numbers[kCrl]), " /Cert ",
                referenceArray(numbers[kCertificate]), ">>");
}

/// Every key of the old entry in its order, the arrays extended; /TU, /TS and /Type stay.
std::string SecurityStore::mergedEntry(const Dictionary& old, const Numbers& added) const {
    struct Array {
        const char* key;
        Kind kind;
        const Dictionary::Entry* old;
    };
    const Array arrays[] = {{"/OCSP", kOcsp, old.entry("/OCSP")},
                            {"/CRL", kCrl, old.entry("/CRL")},
                            {"/Cert", kCertificate, old.entry("/Cert")}};
    std::string out = "<<";
    for (const Dictionary::Entry& pair : old.entries()) {
        const auto* const array =
            std::find_if(std::begin(arrays), std::end(arrays), [&](const Array& it) { return it.old == &pair; });
        const bool extends = array != std::end(arrays);
        append(out, ' ', pair.key, ' ', extends ? extended(pair.value, added[array->kind]) : written(pair.value));
    }
    for (const Array& array : arrays) {
        const std::vector<int>& numbers = added[array.kind];
        if (array.old == nullptr && !numbers.empty()) append(out, ' ', array.key, ' ', referenceArray(numbers));
    }
    return out + ">>";
}

/// The entry of a signature: the old one as it is where nothing is added to it.
std::string SecurityStore::entryOf(const Signature& signature) const {
    const Dictionary::Entry* const from = signature.same != nullptr ? signature.same : signature.similar;
    const Resolved found = from != nullptr ? resolve(from->value) : Resolved{};
    if (!found.text.starts_with("<<")) return newEntry(signature.numbers);
    const bool adds = std::any_of(signature.numbers.begin(), signature.numbers.end(),
                                  [](const std::vector<int>& numbers) { return !numbers.empty(); });
    if (!adds) return std::string(from->value);
    const Dictionary old(found.text);
    return old ? mergedEntry(old, signature.numbers) : newEntry(signature.numbers);
}

std::string SecurityStore::entriesText() const {
    std::map<const Dictionary::Entry*, const Signature*> owners;
    for (const Signature& signature : keyed_) {
        if (signature.same != nullptr) owners[signature.same] = &signature;
    }
    std::string out;
    const auto add = [&](std::string_view key, std::string_view value) {
        // Entries may share a dictionary, and each would take a copy of it; a result this long is refused later.
        if (out.size() <= limits::kDocumentBytes) append(out, out.empty() ? "" : lineEnd_, key, ' ', value);
    };
    for (const Dictionary::Entry& pair : oldEntries_.entries()) {
        const auto owner = owners.find(&pair);
        add(pair.key, owner != owners.end() ? entryOf(*owner->second) : written(pair.value));
    }
    // An entry under a key in lower case is not found by those who look for the key: it stays, and is there again.
    for (const Signature& signature : keyed_) {
        if (signature.same == nullptr) add("/" + signature.key, entryOf(signature));
    }
    return out;
}

void SecurityStore::writeEntries() {
    logDebug(loggers::store, "VRI-Objekt erzeugen");
    entriesNumber_ = entriesObject_ != nullptr ? entriesObject_->GetObjNum() : update_.reserve();
    const bool carriesOver = !oldEntries_.entries().empty();
    std::string object = lines(text(entriesNumber_, " 0 obj@@NL@@<< @@NL@@",
                                    carriesOver ? "% vorhandene Daten (Problem)" : "% Eintrag neuer DSS ", "@@NL@@"));
    append(object, entriesText(), lines("@@NL@@>>@@NL@@endobj@@NL@@@@NL@@"));
    logDebug(loggers::store, "VRI-Objekt im xref erzeugen");
    update_.write(entriesNumber_, 0, object);
}

void SecurityStore::writeStore() {
    logDebug(loggers::store, "DSS-Objekt mit Content erzeugen");
    constexpr std::pair<const char*, Kind> kArrays[] = {{"/OCSPs", kOcsp}, {"/CRLs", kCrl}, {"/Certs", kCertificate}};
    storeNumber_ = storeObject_ != nullptr ? storeObject_->GetObjNum() : update_.reserve();
    const int generation = storeObject_ != nullptr ? std::max(storeObject_->GetGenNumber(), 0) : 0;
    if (!oldStore_.entries().empty()) logDebug(loggers::store, "das DSS Dict muss erweitert werden");
    std::string object = lines(text(storeNumber_, ' ', generation, " obj@@NL@@<< @@NL@@"));
    append(object, "   /VRI ", entriesNumber_, " 0 R", lineEnd_);
    for (const auto& [key, kind] : kArrays) {
        const Dictionary::Entry* const old = oldStore_.entry(key);
        if (old != nullptr && !all_[kind].empty()) {
            logDebug(loggers::store, "Array im DSS-Objekt erweitern um neue Referenzen");
        }
        append(object, "   ", key, ' ', extended(old != nullptr ? old->value : "", all_[kind]), lineEnd_);
    }
    for (const Dictionary::Entry& pair : oldStore_.entries()) {
        const std::string name = nameOf(pair.key);
        if (name == "VRI" || name == "OCSPs" || name == "CRLs" || name == "Certs") continue;
        append(object, "   ", pair.key, ' ', written(pair.value), lineEnd_);
    }
    append(object, lines(">>@@NL@@endobj@@NL@@@@NL@@"));
    logDebug(loggers::store, "DSS-Objekt im xref erzeugen");
    update_.write(storeNumber_, generation, object);
}

void SecurityStore::updateCatalogue() {
    if (storeObject_ != nullptr) return;
    const std::string_view whole = catalogue_->content();
    const std::string reference = text(storeNumber_, " 0 R");
    std::string changed(whole);
    if (const Dictionary::Entry* const old = catalogueEntries_.entry("/DSS")) {
        const auto begin = offsetIn(whole, old->value);
        const std::size_t end = begin + old->value.size();
        const char* const before = isRegular(whole[begin - 1]) ? " " : "";
        const char* const behind = end < whole.size() && isRegular(whole[end]) ? " " : "";
        changed.replace(begin, old->value.size(), text(before, reference, behind));
    } else {
        logDebug(loggers::store, "Root-Objekt um /DSS Tag erweitern da vorher noch kein DSS vorhanden");
        changed.insert(catalogueEntries_.close(), text("/DSS ", reference, lineEnd_));
    }
    logDebug(loggers::store, "Root-Objekt NEU schreiben in xref");
    update_.write(catalogue_->GetObjNum(), std::max(catalogue_->GetGenNumber(), 0), changed);
}

int SecurityStore::closeSection() {
    logDebug(loggers::store, "Beginne neues XREF zu erstellen");
    const bool isStream = update_.closesWithStream(Update::Section::LikeDocument);
    if (isStream) {
        logStream();
    } else {
        logDebug(loggers::store, "Normalen Trailer schreiben");
    }
    const StreamLayout layout{kSectionHead, "[(000)(000)]", lineEnd_};
    const int code = update_.close({.layout = layout});
    if (isStream && code == VARNPDF_OK) logDebug(loggers::store, "Stream gepackt");
    return code;
}

void SecurityStore::logStream() {
    logDebug(loggers::store, "xrefStream!");
    logDebug(loggers::store, "2019er: /W einlesen aus altem Trailer !!!");
    if (!debugWanted(loggers::store)) return;
    const StreamFields fields = update_.streamFields();
    logDebug(loggers::store, "W1:", fields.type);
    logDebug(loggers::store, "W2:", fields.second);
    logDebug(loggers::store, "W3:", fields.third);
    if (fields.type != 1) logDebug(loggers::store, "xrefStream-TODO !! w1 != 1 Byte !!!!!!!!!!!!!");
    logDebug(loggers::store, "INDEX: ", update_.index());
    update_.forEachWritten(
        [](int number, std::size_t offset) { logDebug(loggers::store, "ObjNr ", number, " (Offset: ", offset, ")"); });
    if (document_.update->id().empty()) logDebug(loggers::store, "ID des Dokuments ist leer, setze [] ein.");
}

}  // namespace varnpdf
