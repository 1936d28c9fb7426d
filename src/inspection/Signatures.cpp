// Finding the signature fields of a document and the values of their dictionaries.
#include "inspection/Signatures.h"

#include <array>

#include "model/DictionaryEntry.h"
#include "support/Loggers.h"
#include "syntax/Text.h"
#include "varnpdf/result.h"

namespace varnpdf {
namespace {

constexpr std::size_t kNone = std::string_view::npos;

// Keys of the signature dictionary by tag, from 1.
constexpr std::array<const char*, 14> kTagKeys = {"",        "/Reason",    "/Location",  "/M",          "/Name",
                                                  "/Filter", "/SubFilter", "/ByteRange", "/Contents",   "/FT",
                                                  "/Cert",   "/Type",      "/R",         "/ContactInfo"};

enum Tag : int { kByteRange = 7, kContents = 8, kCert = 10 };

unsigned char hexPair(std::string_view pair) {
    unsigned value = 0;
    while (!pair.empty() && isCSpace(pair.front())) pair.remove_prefix(1);
    for (const char c : pair) {
        if (!isClass(c, kIsHexDigit)) break;
        const int lower = c | 0x20;
        value = value * 16 + static_cast<unsigned>(isDigit(c) ? c - '0' : lower - 'a' + 10);
    }
    return static_cast<unsigned char>(value);
}

// "<...>" becomes the bytes it stands for; anything else stays.
void decodeHexString(std::string& value) {
    if (!value.starts_with('<') || !value.ends_with('>')) return;
    const std::string digits = value.substr(1, value.size() < 2 ? 0 : value.size() - 2);
    value.clear();
    for (std::size_t i = 0; i + 1 < digits.size(); i += 2) {
        value.push_back(static_cast<char>(hexPair(std::string_view(digits).substr(i, 2))));
    }
}

// A value with the UTF-16 byte order mark is read, from its fourth byte on, as 32-bit characters up to a zero one, and
// each is narrowed to its low byte. The interface fixes it.
void narrowWideText(std::string& value) {
    constexpr std::size_t kWide = 4;
    if (!value.starts_with("\xFE\xFF")) return;
    std::string narrowed;
    for (std::size_t at = 3; at < value.size(); at += kWide) {
        const std::string_view wide = std::string_view(value).substr(at, kWide);
        if (wide.find_first_not_of('\0') == kNone) break;
        narrowed.push_back(wide.front());
    }
    narrowed.push_back('\0');
    value = narrowed;
}

bool isSignatureField(CPdfObj& obj) {
    if (!contains(obj.typeEntry(), "/Annot")) return false;
    if (!contains(obj.fieldTypeEntry(), "/Sig")) return false;
    const std::string_view text = obj.content();
    logDebug(loggers::pdf, "/Sig gefunden in Obj ", obj.GetObjNum());
    const bool isSigned = contains(text, "/V") && findLaterEntry(text, "/V");
    logDebug(loggers::pdf, isSigned ? "/V gefunden zähle Signatur!" : "/V NICHT gefunden!");
    return isSigned;
}

}  // namespace

// Every call counts afresh as far as anybody can tell: the last result serves only while no object has changed and
// nobody reads the log.
const std::vector<CPdfObj*>& signatureFields(Document& document) {
    auto& known = document.caches.signatures;
    const std::uint64_t revision = document.objects.revision();
    const bool isCurrent = known && known->revision == revision;
    if (isCurrent && !debugWanted(loggers::pdf)) return known->objects;
    known.emplace();
    document.objects.forEach([&](int, CPdfObj& obj) {
        if (isSignatureField(obj)) known->objects.push_back(&obj);
    });
    known->revision = revision;
    return known->objects;
}

std::vector<std::string> signatureFieldNames(const Document& document) {
    std::vector<std::string> names;
    logDebug(loggers::pdf, "Create_Vectorlist_of_signatures START");
    document.objects.forEach([&](int, CPdfObj& obj) {
        if (!contains(obj.fieldTypeEntry(), "/Sig")) return;
        const std::string_view text = obj.content();
        logDebug(loggers::pdf, contains(text, "/V")
                                   ? "/V gefunden, checke heiter weiter"
                                   : "kein /V gefunden, checke heiter weiter könnte leeres Sigfeld sein");
        if (!contains(text, "/T")) return;
        logDebug(loggers::pdf, "/T gefunden, also Namen merken!");
        if (findLaterEntry(text, "/T")) names.emplace_back(entryValue(text, "/T"));
    });
    logDebug(loggers::pdf, "Create_Vectorlist_of_signatures ENDE: Result ", names.size());
    return names;
}

int readSignatureValue(const Document& document, const CPdfObj* field, int tag, std::string& value) {
    value.clear();
    if (field == nullptr || tag < 1 || tag >= static_cast<int>(kTagKeys.size())) return VARNPDF_NO_SIGNATURE_VALUE;
    std::string reference(entryValue(field->content(), "/V"));
    CPdfObj id;
    const bool isReference = id.GetIdFromReference(reference.data()) == 1;
    const CPdfObj* const dictionary = isReference ? document.objects.find(id.GetObjNum()) : nullptr;
    if (dictionary == nullptr) return VARNPDF_NO_SIGNATURE_VALUE;

    std::string_view text = entryValue(dictionary->content(), kTagKeys[static_cast<std::size_t>(tag)]);
    // An escaped parenthesis at the end belongs to the string.
    text = trimRightUnescaped(trimLeft(text, "(\t\a\r\n "), ")\t\a\r\n ");
    if (tag == kContents) text = trimRightUnescaped(trimLeft(text, "<"), ">");
    value = text;
    if (tag != kContents && tag != kCert) {
        decodeHexString(value);
        narrowWideText(value);
    }
    return VARNPDF_OK;
}

int readByteRange(const Document& document, const CPdfObj* field, ByteRange& range) {
    std::string value;
    const int code = readSignatureValue(document, field, kByteRange, value);
    if (code != VARNPDF_OK) return code;
    const auto parsed = parseByteRange(value);
    if (!parsed) return VARNPDF_BYTE_RANGE_UNUSABLE;
    range = *parsed;
    return VARNPDF_OK;
}

}  // namespace varnpdf
