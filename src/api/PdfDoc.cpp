// CPdfDoc: the parts of a signature, read from a file by its name.
#include "varnpdf/PdfDoc.h"

#include <algorithm>
#include <cstdio>
#include <memory>
#include <string>

#include "api/FieldReader.h"
#include "inspection/ByteRange.h"
#include "inspection/SignatureValue.h"
#include "support/Guarded.h"
#include "support/Limits.h"
#include "support/Loggers.h"
#include "syntax/Text.h"
#include "varnpdf/Pdf.h"
#include "varnpdf/result.h"

using namespace varnpdf;

namespace {

constexpr int kByteRangeTag = 7;
constexpr int kCertTag = 10;

// Does the work of one call; a failure is told with the name of the call.
template <typename Work>
int perform(const ClassLogger& logger, const char* call, const char* file, Work work) {
    const int code = guarded(work);
    if (code != VARNPDF_OK) {
        logError(logger, call, " ABBRUCH: ", code, ", Dateiname: ", file == nullptr ? "" : file);
    }
    return code;
}

// One value of a signature, and the length of the document.
int readValue(const char* file, int index, int tag, std::string& value, std::size_t& documentLength) {
    CPdf pdf;
    if (const int code = pdf.Open(file, "rb"); code != VARNPDF_OK) return code;
    if (pdf.PdfGetNumSignatures() == 0) return VARNPDF_NO_SIGNATURE;
    documentLength = pdf.GetContentLen();
    return FieldReader(pdf).read(index, tag, value);
}

int readByteRange(const char* file, int index, ByteRange& range, std::size_t& documentLength) {
    std::string value;
    if (const int code = readValue(file, index, kByteRangeTag, value, documentLength); code != VARNPDF_OK) return code;
    const auto parsed = parseByteRange(value);
    if (!parsed) return VARNPDF_BYTE_RANGE_UNUSABLE;
    range = *parsed;
    return VARNPDF_OK;
}

// The file once more: what it holds now is what its reader gets.
class Reopened {
public:
    explicit Reopened(const char* file) : file_(std::fopen(file, "rb")) {}

    // False when there is no file any more, or fewer bytes.
    bool read(int offset, void* out, std::size_t size) {
        return file_ && std::fseek(file_.get(), offset, SEEK_SET) == 0 && std::fread(out, 1, size, file_.get()) == size;
    }

private:
    struct Closer {
        void operator()(std::FILE* file) const noexcept { std::fclose(file); }
    };
    std::unique_ptr<std::FILE, Closer> file_;
};

// The digits in the room of a signature; `emptyCode` when it has none.
int readRoom(const char* file, int index, int emptyCode, std::string& digits) {
    ByteRange range;
    std::size_t documentLength = 0;
    if (const int code = readByteRange(file, index, range, documentLength); code != VARNPDF_OK) return code;
    if (range.isEmptyRoom()) return emptyCode;
    digits.resize(range.digitCount(documentLength));
    if (digits.empty()) return VARNPDF_OK;  // no such place, and so no value in it
    return Reopened(file).read(range.length0 + 1, digits.data(), digits.size()) ? VARNPDF_OK : VARNPDF_REOPEN_FAILED;
}

// The size, or the value as hexadecimal text into a buffer for `*length` bytes; `unusable` when that is too little or
// the digits end early.
int giveText(const std::string& digits, std::size_t size, int unusable, unsigned char* buffer, unsigned int* length) {
    if (buffer != nullptr) {
        if (*length < size) return unusable;
        const std::string text = hexText(digits, size);
        if (text.size() < 2 * size) return unusable;
        std::copy(text.begin(), text.end(), buffer);
    }
    *length = static_cast<unsigned int>(size);
    return VARNPDF_OK;
}

}  // namespace

CPdfDoc::CPdfDoc() = default;
CPdfDoc::~CPdfDoc() = default;

int CPdfDoc::GetSignatureBlob(char const* file, int index, unsigned char* buffer, unsigned int* length) {
    return perform(loggers::document, "GetSignatureBlob", file, [=]() -> int {
        ByteRange range;
        std::size_t documentLength = 0;
        if (const int code = readByteRange(file, index, range, documentLength); code != VARNPDF_OK) return code;
        if (length == nullptr || !range.covers(documentLength, limits::kDocumentBytes)) {
            return VARNPDF_BYTE_RANGE_UNUSABLE;
        }
        const auto first = static_cast<std::size_t>(range.length0);
        const auto second = static_cast<std::size_t>(range.length1);
        if (buffer != nullptr) {
            // Between the two calls the file may have been replaced by one with a longer range.
            if (*length < first + second) return VARNPDF_BYTE_RANGE_UNUSABLE;
            Reopened again(file);
            if (!again.read(0, buffer, first) || !again.read(range.offset1, buffer + first, second)) {
                return VARNPDF_REOPEN_FAILED;
            }
        }
        *length = static_cast<unsigned int>(first + second);
        return VARNPDF_OK;
    });
}

int CPdfDoc::GetSignPKCS7(char const* file, int index, unsigned char* buffer, unsigned int* length) {
    return perform(loggers::document, "GetSignPKCS7", file, [=]() -> int {
        if (length == nullptr) return VARNPDF_PKCS7_UNREADABLE;
        std::string digits;
        if (const int code = readRoom(file, index, VARNPDF_PKCS7_EMPTY, digits); code != VARNPDF_OK) return code;
        if (buffer == nullptr && startsWithPadding(digits)) {
            *length = 0;
            return VARNPDF_PKCS7_EMPTY;
        }
        const auto size = elementSize(digits);
        if (!size) return VARNPDF_PKCS7_UNREADABLE;
        return giveText(digits, *size, VARNPDF_PKCS7_UNREADABLE, buffer, length);
    });
}

int CPdfDoc::GetSignPKCS1(char* file, int index, unsigned char* buffer, unsigned int* length) {
    return perform(loggers::document, "GetSignPKCS1", file, [=]() -> int {
        if (length == nullptr) return VARNPDF_PKCS1_UNREADABLE;
        std::string digits;
        if (const int code = readRoom(file, index, VARNPDF_PKCS1_UNREADABLE, digits); code != VARNPDF_OK) return code;
        const auto size = octetStringSize(digits, buffer == nullptr);
        if (!size) {
            *length = 0;
            return VARNPDF_PKCS1_UNREADABLE;
        }
        return giveText(digits, *size, VARNPDF_PKCS1_UNREADABLE, buffer, length);
    });
}

int CPdfDoc::GetSignPKCS1CertNum(char* file, int index) {
    return perform(loggers::document, "GetSignPKCS1CertNum", file, [=]() -> int {
        std::string value;
        std::size_t documentLength = 0;
        return readValue(file, index, kCertTag, value, documentLength);
    });
}

int CPdfDoc::GetSignPKCS1Cert(char* file, int index, int certificate, unsigned char* buffer, unsigned int& length) {
    return perform(loggers::document, "GetSignPKCS1Cert", file, [=, &length]() -> int {
        const std::size_t room = length;
        length = 0;
        if (file == nullptr || index < 0 || certificate < 0) return VARNPDF_PATH_MISSING;
        std::string value;
        std::size_t documentLength = 0;
        const int code = readValue(file, index, kCertTag, value, documentLength);
        if (code == VARNPDF_NO_SIGNATURE_VALUE) return VARNPDF_CERTIFICATE_MISSING;
        if (code != VARNPDF_OK) return code;
        if (auto decoded = decodeLiteral(value)) value = std::move(*decoded);
        const Certificates found = splitCertificates(value);
        if (static_cast<std::size_t>(certificate) >= found.texts.size()) return VARNPDF_CERTIFICATE_MISSING;
        const std::string_view text = found.texts[static_cast<std::size_t>(certificate)];
        const std::size_t size = found.size(text);
        if (text.empty() || (buffer != nullptr && room < size)) return VARNPDF_CERTIFICATE_MISSING;
        length = static_cast<unsigned int>(size);
        if (buffer != nullptr) *std::copy(text.begin(), text.end(), buffer) = 0;
        return VARNPDF_OK;
    });
}
