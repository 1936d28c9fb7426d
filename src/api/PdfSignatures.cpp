// CPdf: the signatures of a document and their values.
#include <algorithm>
#include <cstring>

#include "api/PdfState.h"
#include "inspection/LockState.h"
#include "inspection/SignatureValue.h"
#include "inspection/Signatures.h"
#include "model/DictionaryEntry.h"
#include "support/Guarded.h"
#include "support/Limits.h"
#include "support/Loggers.h"
#include "varnpdf/result.h"

using namespace varnpdf;

namespace {

constexpr int kContentsTag = 8;
constexpr int kCertTag = 10;

// Counts the signatures and refills the register.
int count(PdfState& state) {
    const auto& fields = signatureFields(state.document);
    const auto number = static_cast<int>(fields.size());
    for (int i = 0; i < std::min(number, CPdfSigInfo::kRegister); ++i) {
        state.signatures.SetSignRef(i, fields[static_cast<std::size_t>(i)]);
    }
    if (number > 0) state.signatures.SetSigNum(number);
    return number;
}

// The field of a signature after counting; null when there is none.
const CPdfObj* counted(PdfState& state, int index) {
    state.signatureCount = count(state);
    return index < state.signatureCount ? state.signatures.GetSignRef(index) : nullptr;
}

}  // namespace

int CPdf::PdfGetNumSignatures() {
    return guarded([this] { return count(*state_); });
}

CPdfObj* CPdf::GetPdfObjBySigIndex(int index) {
    if (!state_->signaturesCounted) count(*state_);
    // The bound leaves out the last signature; the interface fixes it.
    if (index < 0 || index >= state_->signatureCount - 1) return nullptr;
    return state_->signatures.GetSignRef(index);
}

void CPdf::create_vectorlist_of_signatures(std::vector<std::string>& names) {
    for (std::string& name : signatureFieldNames(state_->document)) names.push_back(std::move(name));
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

int CPdf::GetSignatureField(int index, int tag, char* buffer, int* length) {
    if (buffer != nullptr) *buffer = '\0';
    if (length != nullptr) *length = 0;
    return guarded([&]() -> int {
        std::string value;
        const int code = readSignatureValue(state_->document, counted(*state_, index), tag, value);
        if (code != VARNPDF_OK) return code;
        // A dictionary unpacked from an object stream can hold a value that is longer than the file.
        if (value.size() >= state_->document.length) {
            logError(loggers::pdf, " value: Laenge ", value.size(), " groesser als das Dokument");
            return VARNPDF_NO_SIGNATURE_VALUE;
        }
        if (buffer != nullptr) std::memcpy(buffer, value.c_str(), value.size() + 1);
        if (length != nullptr) *length = static_cast<int>(value.size());
        if (tag != kContentsTag && tag != kCertTag) logDebug(loggers::pdf, " value: |", value, "|");
        return VARNPDF_OK;
    });
}

int CPdf::GetSignatureBlob(int index, unsigned char* buffer, unsigned long* length) {
    return guarded([&]() -> int {
        if (count(*state_) == 0) return VARNPDF_NO_SIGNATURE;
        ByteRange range;
        if (const int code = readByteRange(state_->document, counted(*state_, index), range); code != VARNPDF_OK)
            return code;
        if (!range.covers(state_->document.length, limits::kDocumentBytes)) return VARNPDF_BYTE_RANGE_UNUSABLE;
        const auto first = static_cast<std::size_t>(range.length0);
        const auto second = static_cast<std::size_t>(range.length1);
        if (buffer == nullptr) {
            if (length != nullptr) *length = first + second;
            return VARNPDF_OK;
        }
        // The first range begins with the document, whatever its offset says.
        std::memcpy(buffer, state_->document.bytes->data(), first);
        std::memcpy(buffer + first, state_->document.bytes->data() + range.offset1, second);
        return VARNPDF_OK;
    });
}

int CPdf::GetSignaturePKCS7(int index, unsigned char* buffer, unsigned long* length) {
    return guarded([&]() -> int {
        if (length == nullptr) return VARNPDF_PKCS7_UNREADABLE;
        ByteRange range;
        if (const int code = readByteRange(state_->document, counted(*state_, index), range); code != VARNPDF_OK)
            return code;
        if (range.isEmptyRoom()) return VARNPDF_PKCS7_EMPTY;
        const std::string_view digits = range.digits(state_->document.view());
        if (startsWithPadding(digits)) {
            *length = 0;
            return VARNPDF_PKCS7_EMPTY;
        }
        const auto size = elementSize(digits);
        if (!size) return VARNPDF_PKCS7_UNREADABLE;
        if (buffer == nullptr) {
            *length = *size;
            return VARNPDF_OK;
        }
        if (*length < *size || !decodeInto(digits, buffer, *size)) return VARNPDF_PKCS7_UNREADABLE;
        return VARNPDF_OK;
    });
}

int CPdf::GetSignPKCS1(int index, unsigned char* buffer, unsigned int* length) {
    return guarded([&]() -> int {
        if (length == nullptr) return VARNPDF_PKCS1_UNREADABLE;
        ByteRange range;
        if (const int code = readByteRange(state_->document, counted(*state_, index), range); code != VARNPDF_OK)
            return code;
        if (range.isEmptyRoom()) return VARNPDF_PKCS1_UNREADABLE;
        const std::string_view digits = range.digits(state_->document.view());
        const auto size = octetStringSize(digits, buffer == nullptr);
        if (!size) {
            *length = 0;
            return VARNPDF_PKCS1_UNREADABLE;
        }
        *length = static_cast<unsigned int>(*size);
        if (buffer == nullptr) return VARNPDF_OK;
        const std::string text = hexText(digits, *size);
        if (text.size() < 2 * *size) return VARNPDF_PKCS1_UNREADABLE;
        std::copy(text.begin(), text.end(), buffer);
        return VARNPDF_OK;
    });
}

int CPdf::GetSignaturePKCS1(int index, unsigned char* buffer, unsigned long* length) {
    return guarded([&]() -> int {
        if (length == nullptr) return VARNPDF_PKCS1_UNREADABLE;
        unsigned int size = 0;
        int code = GetSignPKCS1(index, nullptr, &size);
        if (code != VARNPDF_OK || buffer == nullptr) {
            *length = size;
            return code;
        }
        std::string digits(std::size_t{2} * size, '\0');
        code = GetSignPKCS1(index, reinterpret_cast<unsigned char*>(digits.data()), &size);
        if (code != VARNPDF_OK) return code;
        if (*length < size || !decodeInto(digits, buffer, size)) return VARNPDF_PKCS1_UNREADABLE;
        *length = size;
        return VARNPDF_OK;
    });
}

int CPdf::GetSignPKCS1Cert(int index, int certificate, unsigned char* buffer, unsigned int& length) {
    return guarded([&]() -> int {
        length = 0;
        if (index < 0 || certificate < 0) return VARNPDF_INDEX_NEGATIVE;
        std::string value;
        if (readSignatureValue(state_->document, counted(*state_, index), kCertTag, value) != VARNPDF_OK)
            return VARNPDF_CERTIFICATE_MISSING;
        const Certificates found = splitCertificates(value);
        if (static_cast<std::size_t>(certificate) >= found.texts.size()) return VARNPDF_CERTIFICATE_MISSING;
        const std::string_view text = found.texts[static_cast<std::size_t>(certificate)];
        length = static_cast<unsigned int>(found.hexadecimal ? text.size() / 2 : text.size());
        if (buffer != nullptr) {
            std::memcpy(buffer, text.data(), text.size());
            buffer[text.size()] = 0;
        }
        return VARNPDF_OK;
    });
}

int CPdf::GetSignaturePKCS1Cert(int index, int certificate, unsigned char* buffer, unsigned long* length) {
    return guarded([&]() -> int {
        if (length == nullptr) return VARNPDF_CERTIFICATE_MISSING;
        unsigned int size = 0;
        int code = GetSignPKCS1Cert(index, certificate, nullptr, size);
        if (code != VARNPDF_OK || buffer == nullptr) {
            *length = size;
            return code;
        }
        std::string text(std::size_t{2} * size + 2, '\0');
        code = GetSignPKCS1Cert(index, certificate, reinterpret_cast<unsigned char*>(text.data()), size);
        if (code != VARNPDF_OK) return code;
        return certificateBytes(text, std::min<std::size_t>(*length, size), buffer) ? VARNPDF_OK
                                                                                    : VARNPDF_PKCS1_UNREADABLE;
    });
}

void CPdf::check_lockstate() { state_->document.locked = lockedBySignatures(state_->document); }

int stringfind_lower(std::string haystack, std::string needle) {
    const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c | 0x20) : c; };
    std::transform(haystack.begin(), haystack.end(), haystack.begin(), lower);
    std::transform(needle.begin(), needle.end(), needle.begin(), lower);
    const std::size_t at = haystack.find(needle);
    return at == std::string::npos ? -1 : static_cast<int>(at);
}
