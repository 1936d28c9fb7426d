// CPdf: finding the signature fields of a document and the values of their dictionaries.
#include <algorithm>
#include <array>
#include <cstring>
#include <limits>

#include "inspection/ByteRange.h"
#include "model/DictionaryEntry.h"
#include "model/ObjectList.h"
#include "model/ObjectTable.h"
#include "support/Guarded.h"
#include "support/Log.h"
#include "syntax/Text.h"
#include "varnpdf/Pdf.h"
#include "varnpdf/result.h"

using namespace varnpdf;

namespace {

constexpr int kAllSlots = std::numeric_limits<int>::max();
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
// each is narrowed to its low byte. Hosts have always been given such values this way.
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

}  // namespace

bool CPdf::isSignatureField(CPdfObj& obj) {
    if (!contains(obj.typeEntry(), "/Annot")) return false;
    if (!contains(obj.fieldTypeEntry(), "/Sig")) return false;
    const std::string_view text = obj.content();
    logDebug(m_logger, "/Sig gefunden in Obj ", obj.GetObjNum());
    const bool isSigned = contains(text, "/V") && findLaterEntry(text, "/V");
    logDebug(m_logger, isSigned ? "/V gefunden zähle Signatur!" : "/V NICHT gefunden!");
    return isSigned;
}

// Every call counts afresh as far as anybody can tell: the last result serves only while no object has changed and
// nobody reads the log.
const std::vector<CPdfObj*>& CPdf::signatureFields() {
    const bool isCurrent = signatures_ && signatures_->revision == objects_->revision();
    if (isCurrent && !debugWanted(m_logger)) return signatures_->objects;
    if (!signatures_) signatures_ = std::make_unique<ObjectList>();
    signatures_->objects.clear();
    objects_->forEach(kAllSlots, [this](int, CPdfObj& obj) {
        if (isSignatureField(obj)) signatures_->objects.push_back(&obj);
    });
    signatures_->revision = objects_->revision();
    return signatures_->objects;
}

int CPdf::PdfGetNumSignatures() {
    const auto& fields = signatureFields();
    const auto count = static_cast<int>(fields.size());
    for (int i = 0; i < std::min(count, CPdfSigInfo::kRegister); ++i) {
        sigInfo_.SetSignRef(i, fields[static_cast<std::size_t>(i)]);
    }
    if (count > 0) sigInfo_.SetSigNum(count);
    return count;
}

CPdfObj* CPdf::GetPdfObjBySigIndex(int index) {
    if (!signaturesCounted_) PdfGetNumSignatures();
    // The bound leaves out the last signature; hosts rely on it.
    if (index < 0 || index >= signatureCount_ - 1) return nullptr;
    return sigInfo_.GetSignRef(index);
}

void CPdf::create_vectorlist_of_signatures(std::vector<std::string>& names) {
    logDebug(m_logger, "Create_Vectorlist_of_signatures START");
    objects_->forEach(kAllSlots, [&](int, CPdfObj& obj) {
        if (!contains(obj.fieldTypeEntry(), "/Sig")) return;
        const std::string_view text = obj.content();
        logDebug(m_logger, contains(text, "/V") ? "/V gefunden, checke heiter weiter"
                                                : "kein /V gefunden, checke heiter weiter könnte leeres Sigfeld sein");
        if (!contains(text, "/T")) return;
        logDebug(m_logger, "/T gefunden, also Namen merken!");
        if (findLaterEntry(text, "/T")) names.emplace_back(entryValue(text, "/T"));
    });
    logDebug(m_logger, "Create_Vectorlist_of_signatures ENDE: Result ", names.size());
}

int CPdf::GetSignRefVal(CPdfObj* obj, char* key, char* buffer, int* length) {
    if (obj == nullptr || key == nullptr || buffer == nullptr) return 0;
    const std::string_view text = obj->content();
    const auto entry = findLaterEntry(text, key);
    const std::string_view value = entry ? entry->value.of(text) : std::string_view{};
    *std::copy(value.begin(), value.end(), buffer) = '\0';
    if (length != nullptr) *length = static_cast<int>(std::strlen(buffer));
    return entry ? 1 : 0;
}

int CPdf::readSignatureValue(int index, int tag, std::string& value) {
    value.clear();
    signatureCount_ = PdfGetNumSignatures();
    if (tag < 1 || tag >= static_cast<int>(kTagKeys.size()) || index >= signatureCount_) {
        return VARNPDF_NO_SIGNATURE_VALUE;
    }
    const CPdfObj* const field = sigInfo_.GetSignRef(index);
    if (field == nullptr) return VARNPDF_NO_SIGNATURE_VALUE;
    std::string reference(entryValue(field->content(), "/V"));
    CPdfObj id;
    const bool isReference = id.GetIdFromReference(reference.data()) == 1;
    const CPdfObj* const dictionary = isReference ? objects_->find(id.GetObjNum()) : nullptr;
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

int CPdf::GetSignatureField(int index, int tag, char* buffer, int* length) {
    if (buffer != nullptr) *buffer = '\0';
    if (length != nullptr) *length = 0;
    return guarded([&]() -> int {
        std::string value;
        const int code = readSignatureValue(index, tag, value);
        if (code != VARNPDF_OK) return code;
        // A dictionary unpacked from an object stream can hold a value that is longer than the file.
        if (value.size() >= contentLen_) {
            logError(m_logger, " value: Laenge ", value.size(), " groesser als das Dokument");
            return VARNPDF_NO_SIGNATURE_VALUE;
        }
        if (buffer != nullptr) std::memcpy(buffer, value.c_str(), value.size() + 1);
        if (length != nullptr) *length = static_cast<int>(value.size());
        logDebug(m_logger, " value: |", value, "|");
        return VARNPDF_OK;
    });
}

int CPdf::readByteRange(int index, ByteRange& range) {
    std::string value;
    const int code = readSignatureValue(index, kByteRange, value);
    if (code != VARNPDF_OK) return code;
    const auto parsed = parseByteRange(value);
    if (!parsed) return VARNPDF_BYTE_RANGE_UNUSABLE;
    range = *parsed;
    return VARNPDF_OK;
}

int stringfind_lower(std::string haystack, std::string needle) {
    const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c | 0x20) : c; };
    std::transform(haystack.begin(), haystack.end(), haystack.begin(), lower);
    std::transform(needle.begin(), needle.end(), needle.begin(), lower);
    const std::size_t at = haystack.find(needle);
    return at == kNone ? -1 : static_cast<int>(at);
}
