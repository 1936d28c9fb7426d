// CPdf: the signed bytes, the PKCS#7 and PKCS#1 values and the certificates of a signature.
#include <algorithm>
#include <cstring>

#include "inspection/ByteRange.h"
#include "inspection/SignatureValue.h"
#include "support/Guarded.h"
#include "support/Limits.h"
#include "varnpdf/Pdf.h"
#include "varnpdf/result.h"

using namespace varnpdf;

namespace {

constexpr int kCertTag = 10;

}  // namespace

int CPdf::GetSignatureBlob(int index, unsigned char* buffer, unsigned long* length) {
    return guarded([&]() -> int {
        if (PdfGetNumSignatures() == 0) return VARNPDF_NO_SIGNATURE;
        ByteRange range;
        if (const int code = readByteRange(index, range); code != VARNPDF_OK) return code;
        if (!range.covers(contentLen_, limits::kDocumentBytes)) return VARNPDF_BYTE_RANGE_UNUSABLE;
        const auto first = static_cast<std::size_t>(range.length0);
        const auto second = static_cast<std::size_t>(range.length1);
        if (buffer == nullptr) {
            if (length != nullptr) *length = first + second;
            return VARNPDF_OK;
        }
        // The first range begins with the document, whatever its offset says.
        std::memcpy(buffer, content_.get(), first);
        std::memcpy(buffer + first, content_.get() + range.offset1, second);
        return VARNPDF_OK;
    });
}

int CPdf::GetSignaturePKCS7(int index, unsigned char* buffer, unsigned long* length) {
    return guarded([&]() -> int {
        if (length == nullptr) return VARNPDF_PKCS7_UNREADABLE;
        ByteRange range;
        if (const int code = readByteRange(index, range); code != VARNPDF_OK) return code;
        if (range.isEmptyRoom()) return VARNPDF_PKCS7_EMPTY;
        const std::string_view digits = range.digits(view());
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
        if (const int code = readByteRange(index, range); code != VARNPDF_OK) return code;
        if (range.isEmptyRoom()) return VARNPDF_PKCS1_UNREADABLE;
        const std::string_view digits = range.digits(view());
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
        if (readSignatureValue(index, kCertTag, value) != VARNPDF_OK) return VARNPDF_CERTIFICATE_MISSING;
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
