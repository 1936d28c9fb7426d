// CPdf: the signed bytes, the PKCS#7 and PKCS#1 values and the certificates of a signature.
#include <algorithm>
#include <cstring>
#include <vector>

#include "inspection/ByteRange.h"
#include "inspection/Der.h"
#include "support/Limits.h"
#include "syntax/Reference.h"
#include "varnpdf/Pdf.h"
#include "varnpdf/result.h"

using namespace varnpdf;

namespace {

constexpr int kCertTag = 10;
constexpr int kEmptyGap = 2;  // "<>"

std::string decode(std::string_view digits, std::size_t bytes) {
    std::string out(std::min(bytes, digits.size() / 2), '\0');
    out.resize(hexToBytes(digits, reinterpret_cast<unsigned char*>(out.data()), out.size()));
    return out;
}

// Decodes exactly `size` bytes; carriage returns between digits are passed over. False when there are too few digits
// or something else stands between them.
bool decodeInto(std::string_view digits, unsigned char* out, std::size_t size) {
    std::size_t found = 0;
    std::size_t end = 0;
    for (; end < digits.size() && found < 2 * size; ++end) {
        if (isClass(digits[end], kIsHexDigit)) {
            ++found;
        } else if (digits[end] != '\r') {
            return false;
        }
    }
    return found == 2 * size && hexToBytes(digits.substr(0, end), out, size) == size;
}

// Size of the DER element in the digits; the header says it, unless its length is indefinite.
std::optional<std::size_t> elementSize(std::string_view digits) {
    constexpr std::size_t kHeaderBytes = 32;
    const std::string head = decode(digits, kHeaderBytes);
    const auto header = derHeader(head);
    if (!header) return std::nullopt;
    if (!header->indefinite) return derElementLength(head);
    return derElementLength(decode(digits, digits.size() / 2));
}

// Size of the OCTET STRING in the digits. The low four bits of the length byte count the bytes of the length, also
// where it is short.
std::optional<std::size_t> octetStringSize(std::string_view digits, bool checkTag) {
    constexpr std::size_t kHeaderBytes = 8;
    constexpr char kOctetString = 0x04;
    const std::string head = decode(digits, kHeaderBytes);
    if (head.size() < 2 || (checkTag && head[0] != kOctetString)) return std::nullopt;
    const auto count = static_cast<std::size_t>(static_cast<unsigned char>(head[1]) & 0x0fU);
    if (count > head.size() - 2) return std::nullopt;
    std::size_t length = 0;
    for (std::size_t i = 0; i < count; ++i) length = (length << 8U) | static_cast<unsigned char>(head[2 + i]);
    const std::size_t size = count + length + 2;
    return 2 * size <= digits.size() ? std::optional(size) : std::nullopt;
}

struct Certificates {
    static constexpr std::size_t kTracked = 12;
    std::vector<std::string_view> texts;
    bool hexadecimal = false;
};

// The certificates of a /Cert value: one string, or an array of hexadecimal ones.
Certificates splitCertificates(std::string_view value) {
    Certificates found;
    if (value.starts_with('[')) {
        if (value.ends_with(']')) value.remove_suffix(1);
        value.remove_prefix(1);
        value = trim(value, kWhiteSpace);
    }
    if (value.empty()) return found;
    found.hexadecimal = value.starts_with('<');
    if (!found.hexadecimal) {
        found.texts.push_back(value);
        return found;
    }
    while (found.texts.size() < Certificates::kTracked) {
        const std::size_t open = value.find('<');
        const std::size_t close = open == std::string_view::npos ? open : value.find('>', open);
        if (close == std::string_view::npos) break;
        found.texts.push_back(value.substr(open + 1, close - open - 1));
        value.remove_prefix(close + 1);
    }
    return found;
}

}  // namespace

int CPdf::GetSignatureBlob(int index, unsigned char* buffer, unsigned long* length) {
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
}

int CPdf::GetSignaturePKCS7(int index, unsigned char* buffer, unsigned long* length) {
    constexpr std::string_view kPadding = "\x31\x31";
    if (length == nullptr) return VARNPDF_PKCS7_UNREADABLE;
    ByteRange range;
    if (const int code = readByteRange(index, range); code != VARNPDF_OK) return code;
    if (range.gap() == kEmptyGap) return VARNPDF_PKCS7_EMPTY;
    const std::string_view digits = range.digits(view());
    if (decode(digits, kPadding.size()) == kPadding) {
        *length = 0;
        return VARNPDF_PKCS7_EMPTY;
    }
    const auto size = elementSize(digits);
    if (!size || *size > digits.size() / 2) return VARNPDF_PKCS7_UNREADABLE;
    if (buffer == nullptr) {
        *length = *size;
        return VARNPDF_OK;
    }
    if (*length < *size || !decodeInto(digits, buffer, *size)) return VARNPDF_PKCS7_UNREADABLE;
    return VARNPDF_OK;
}

int CPdf::GetSignPKCS1(int index, unsigned char* buffer, unsigned int* length) {
    if (length == nullptr) return VARNPDF_PKCS1_UNREADABLE;
    ByteRange range;
    if (const int code = readByteRange(index, range); code != VARNPDF_OK) return code;
    if (range.gap() == kEmptyGap) return VARNPDF_PKCS1_UNREADABLE;
    const std::string_view digits = range.digits(view());
    const auto size = octetStringSize(digits, buffer == nullptr);
    if (!size) {
        *length = 0;
        return VARNPDF_PKCS1_UNREADABLE;
    }
    *length = static_cast<unsigned int>(*size);
    if (buffer != nullptr) std::memcpy(buffer, digits.data(), 2 * *size);
    return VARNPDF_OK;
}

int CPdf::GetSignaturePKCS1(int index, unsigned char* buffer, unsigned long* length) {
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
    if (*length > size || !decodeInto(digits, buffer, *length)) return VARNPDF_PKCS1_UNREADABLE;
    return VARNPDF_OK;
}

int CPdf::GetSignPKCS1Cert(int index, int certificate, unsigned char* buffer, unsigned int& length) {
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
}

int CPdf::GetSignaturePKCS1Cert(int index, int certificate, unsigned char* buffer, unsigned long* length) {
    constexpr std::size_t kLooksHexadecimal = 4;
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
    const std::size_t wanted = std::min<std::size_t>(*length, size);
    const std::string_view head = std::string_view(text).substr(0, kLooksHexadecimal);
    if (std::all_of(head.begin(), head.end(), [](char c) { return isClass(c, kIsHexDigit); })) {
        return decodeInto(text, buffer, wanted) ? VARNPDF_OK : VARNPDF_PKCS1_UNREADABLE;
    }
    std::memcpy(buffer, text.data(), wanted);
    return VARNPDF_OK;
}
