// CPdfInfo: what is signed in a file, one call per question.
#include "varnpdf/PdfInfo.h"

#include <algorithm>
#include <limits>
#include <memory>

#include "api/FieldReader.h"
#include "inspection/SignatureValue.h"
#include "support/Guarded.h"
#include "support/Limits.h"
#include "support/Loggers.h"
#include "syntax/Reference.h"
#include "varnpdf/Pdf.h"
#include "varnpdf/PdfDoc.h"
#include "varnpdf/result.h"

using namespace varnpdf;

namespace {

// Asks an operation of CPdfDoc for the size, or for text into a buffer that has room for 2 * size + 2 characters, and
// lets `decode` make bytes of it. The caller's length is what its buffer holds.
template <typename Operation, typename Decode>
int fetch(int badCode, unsigned char* buffer, unsigned long* length, Operation operation, Decode decode) {
    if (length == nullptr) return badCode;
    unsigned int size = 0;
    std::unique_ptr<unsigned char[]> text;
    if (buffer != nullptr) {
        size = static_cast<unsigned int>(std::min<unsigned long>(*length, limits::kDocumentBytes));
        text = std::make_unique_for_overwrite<unsigned char[]>(std::size_t{2} * size + 2);
    }
    if (const int code = operation(text.get(), size); code != VARNPDF_OK) return code;
    *length = size;
    return buffer == nullptr || decode(reinterpret_cast<const char*>(text.get()), size) ? VARNPDF_OK : badCode;
}

}  // namespace

CPdfInfo::CPdfInfo() = default;
CPdfInfo::~CPdfInfo() = default;

int CPdfInfo::GetNumSignature(char* file) {
    return guarded([=]() -> int {
        CPdf pdf;
        const int code = pdf.Open(file, "rb");
        return code == VARNPDF_OK ? pdf.PdfGetNumSignatures() : code;
    });
}

int CPdfInfo::GetSignatureField(char const* file, int index, int tag, char* buffer, int* length) {
    return guarded([=]() -> int {
        CPdf pdf;
        if (const int code = pdf.Open(file, "rb"); code != VARNPDF_OK) return code;
        // What became of the value shows in its length; the interface fixes the 0.
        const int code = pdf.GetSignatureField(index, tag, buffer, length);
        return code == VARNPDF_PDF_MEMORY_ALLOCATION ? code : VARNPDF_OK;
    });
}

int CPdfInfo::GetSignatureBlob(char* file, int index, unsigned char* buffer, unsigned long* length) {
    if (length == nullptr) return VARNPDF_BYTE_RANGE_UNUSABLE;
    auto size = static_cast<unsigned int>(std::min<unsigned long>(*length, std::numeric_limits<unsigned int>::max()));
    const int code = CPdfDoc().GetSignatureBlob(file, index, buffer, &size);
    if (code == VARNPDF_OK) *length = size;
    return code;
}

int CPdfInfo::GetSignaturePKCS7(char* file, int index, unsigned char* buffer, unsigned long* length) {
    return guarded([=]() -> int {
        return fetch(
            VARNPDF_PKCS7_UNREADABLE, buffer, length,
            [=](unsigned char* text, unsigned int& size) { return CPdfDoc().GetSignPKCS7(file, index, text, &size); },
            [=](const char* text, std::size_t size) {
                return decodeInto({text, 2 * size}, buffer, size);
            });
    });
}

int CPdfInfo::GetSignaturePKCS1(char* file, int index, unsigned char* buffer, unsigned long* length) {
    return guarded([=]() -> int {
        return fetch(
            VARNPDF_PKCS1_UNREADABLE, buffer, length,
            [=](unsigned char* text, unsigned int& size) { return CPdfDoc().GetSignPKCS1(file, index, text, &size); },
            [=](const char* text, std::size_t size) {
                return decodeInto({text, 2 * size}, buffer, size);
            });
    });
}

int CPdfInfo::GetSignaturePKCS1CertNum(char* file, int index) { return CPdfDoc().GetSignPKCS1CertNum(file, index); }

int CPdfInfo::GetSignaturePKCS1Cert(char* file, int index, int certificate, unsigned char* buffer,
                                    unsigned long* length) {
    return guarded([=]() -> int {
        return fetch(
            VARNPDF_PKCS1_UNREADABLE, buffer, length,
            [=](unsigned char* text, unsigned int& size) {
                return CPdfDoc().GetSignPKCS1Cert(file, index, certificate, text, size);
            },
            [=](const char* text, std::size_t size) {
                return certificateBytes({text, 2 * size}, size, buffer);
            });
    });
}

int CPdfInfo::CheckEncryption(char* file) {
    return guarded([=]() -> int {
        CPdf pdf;
        const int code = pdf.Open(file, "rb");
        return code == VARNPDF_OK && pdf.PdfIsEncrypted() == 1 ? VARNPDF_PDF_ENCRYPTED : code;
    });
}

int CPdfInfo::GetSignatureField_1(std::string* text) {
    return guarded([=]() -> int {
        if (text != nullptr) text->append(",mkhskjdhksajdhaskjdhkj");
        return VARNPDF_OK;
    });
}

void CPdfInfo::OutputDebugString(char const* text) {
    guarded([=]() -> int {
        if (text != nullptr) logDebug(loggers::info, text);
        return VARNPDF_OK;
    });
}
