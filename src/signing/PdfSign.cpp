// CPdfSign: the two steps of a signature.
#include "varnpdf/PdfSign.h"

#include <array>
#include <cstdlib>
#include <cstring>
#include <new>
#include <string>

#include "api/PdfState.h"
#include "signing/Preparation.h"
#include "support/Guarded.h"
#include "support/Loggers.h"
#include "support/StagedFile.h"
#include "varnpdf/result.h"

using namespace varnpdf;

namespace {

constexpr std::size_t kFileName = 256;

// The two digits of every byte.
constexpr std::array<std::array<char, 2>, 256> hexPairs() {
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    std::array<std::array<char, 2>, 256> pairs{};
    for (std::size_t i = 0; i < pairs.size(); ++i) pairs[i] = {kDigits[i >> 4U], kDigits[i & 15U]};
    return pairs;
}

std::string_view viewOf(const unsigned char* bytes, std::size_t length) {
    return {reinterpret_cast<const char*>(bytes), length};
}

}  // namespace

void CPdfSign::FreeBytes::operator()(unsigned char* bytes) const noexcept { std::free(bytes); }

CPdfSign::CPdfSign() = default;
CPdfSign::~CPdfSign() = default;

void CPdfSign::setUserETSISubFilter(bool etsi) { etsiSubFilter_ = etsi; }
bool CPdfSign::isUserETSISubFilter() const { return etsiSubFilter_; }
const unsigned char* CPdfSign::GetPreparedDocument() const { return prepared_.get(); }
std::uint32_t CPdfSign::GetPreparedLength() const { return preparedLength_; }
std::uint32_t CPdfSign::GetContentsOffset() const { return contentsOffset_; }

int CPdfSign::SignPDFFile(char* pdfFile, int page, int posMode, int x, int y, int width, int height,
                          int appearanceOption1, char* reason, char* location, char* name, char* signDate,
                          unsigned int contentsSize, bool /*reservedFlag*/, int appearanceOption2, int useImage,
                          char* imageFile, FormfieldInfo_tag* fields, int fieldCount, int lock, bool skipImageCheck) {
    if (pdfFile == nullptr) return VARNPDF_CAN_NOT_LOAD_PDF_FILE;
    if (std::strlen(pdfFile) > kFileName) return VARNPDF_FILE_NAME_TOO_LONG;
    try {
        CPdf pdf;
        pdf.setUserETSISubFilter(etsiSubFilter_);
        if (const int code = pdf.Open(pdfFile, "rb"); code != VARNPDF_OK) return code;
        if (pdf.get_lockstate() > 0) return VARNPDF_LOCKED;
        const SigningRequest request{
            page,      posMode, {x, y},     {width, height}, appearanceOption1,      reason,
            location,  name,    signDate,   contentsSize,    appearanceOption2 != 0, useImage != 0,
            imageFile, fields,  fieldCount, lock > 0,        skipImageCheck};
        return prepare(pdf, request, true);
    } catch (...) {
        return VARNPDF_CAN_NOT_LOAD_PDF_FILE;
    }
}

int CPdfSign::SignPDFStream(unsigned char* pdfData, unsigned int pdfLen, int page, int posMode, int x, int y, int width,
                            int height, int appearanceOption1, char* reason, char* location, char* name, char* signDate,
                            unsigned int contentsSize, bool reservedFlag, int appearanceOption2, int useImage,
                            char* imageFile, FormfieldInfo_tag* fields, int fieldCount, int lock) {
    return guarded([&]() -> int {
        CPdf pdf;
        const int code = pdf.ParseContent(pdfData, pdfLen, true);
        if (code == VARNPDF_PDF_MEMORY_ALLOCATION) return code;
        pdf.setUserETSISubFilter(etsiSubFilter_);
        return SignPDF(&pdf, page, posMode, x, y, width, height, appearanceOption1, reason, location, name, signDate,
                       contentsSize, reservedFlag, appearanceOption2, useImage, imageFile, fields, fieldCount, lock);
    });
}

int CPdfSign::SignPDF(CPdf* /*pdf*/, int /*page*/, int /*posMode*/, int /*x*/, int /*y*/, int /*width*/, int /*height*/,
                      int /*appearanceOption1*/, char* /*reason*/, char* /*location*/, char* /*name*/,
                      char* /*signDate*/, unsigned int /*contentsSize*/, bool /*reservedFlag*/,
                      int /*appearanceOption2*/, int /*useImage*/, char* /*imageFile*/, FormfieldInfo_tag* /*fields*/,
                      int /*fieldCount*/, int /*lock*/) {
    return VARNPDF_OK;
}

int CPdfSign::DummySign(CPdf* pdf, int page, int posMode, int x, int y, int width, int height, int appearanceOption1,
                        char* reason, char* location, char* name, char* signDate, unsigned int contentsSize,
                        bool /*reservedFlag*/, int appearanceOption2, int useImage, char* imageFile,
                        FormfieldInfo_tag* fields, int fieldCount, int lock, bool skipImageCheck) {
    if (pdf == nullptr) return VARNPDF_CAN_NOT_LOAD_PDF_FILE;
    const SigningRequest request{page,      posMode, {x, y},     {width, height}, appearanceOption1,      reason,
                                 location,  name,    signDate,   contentsSize,    appearanceOption2 != 0, useImage != 0,
                                 imageFile, fields,  fieldCount, lock > 0,        skipImageCheck};
    return guarded([&] { return prepare(*pdf, request, false); });
}

// The prepared bytes are the old ones and the update without the room of the value. A document that is given up may
// hand over its buffer: growing it does not copy a large file.
int CPdfSign::prepare(CPdf& pdf, const SigningRequest& request, bool takeContent) {
    Preparation preparation(pdf, request, loggers::sign);
    if (const int code = preparation.run(); code != VARNPDF_OK) return code;
    const std::size_t old = preparation.oldLength();
    const std::string_view tail = preparation.tail();
    const std::size_t begin = preparation.roomBegin() - old;
    const std::size_t end = preparation.roomEnd() - old;
    const std::size_t length = old + tail.size() - (end - begin);
    unsigned char* bytes = nullptr;
    if (takeContent) {
        bytes = static_cast<unsigned char*>(std::malloc(length));
        if (bytes != nullptr) std::memcpy(bytes, documentOf(pdf).view().data(), old);
    } else {
        bytes = static_cast<unsigned char*>(std::malloc(length));
        if (bytes != nullptr) std::memcpy(bytes, documentOf(pdf).view().data(), old);
    }
    if (bytes == nullptr) throw std::bad_alloc();
    std::memcpy(bytes + old, tail.data(), begin);
    std::memcpy(bytes + old + begin, tail.data() + end, tail.size() - end);
    logDebug(loggers::sign, "szContent mit gemerkter Länge setzen");
    prepared_.reset(bytes);
    preparedLength_ = static_cast<std::uint32_t>(length);
    contentsOffset_ = static_cast<std::uint32_t>(preparation.roomBegin());
    logDebug(loggers::sign, "Ende Dummysign");
    return VARNPDF_OK;
}

void CPdfSign::buildSignContent(char** out, std::uint32_t* outLen, unsigned char* sig, std::uint32_t sigLen,
                                std::uint32_t contentsSize) {
    static constexpr auto kPairs = hexPairs();
    logDebug(loggers::sign, "entering CPdfSign::buildSignContent");
    const std::size_t length = std::size_t{2} * contentsSize + 2;
    if (outLen != nullptr) *outLen = static_cast<std::uint32_t>(length);
    if (out == nullptr) return;
    auto content = std::make_unique<char[]>(length + 1);
    char* at = content.get();
    *at++ = '<';
    if (sig != nullptr && contentsSize >= sigLen) {
        for (std::uint32_t i = 0; i < sigLen; ++i, at += 2) std::memcpy(at, kPairs[sig[i]].data(), 2);
        for (std::uint32_t i = sigLen; i < contentsSize; ++i, at += 2) std::memcpy(at, "31", 2);
    }
    *at = '>';
    *out = content.release();
    logDebug(loggers::sign, "leaving CPdfSign::buildSignContent");
}

int CPdfSign::SaveSignature(char* pcSignedFile, unsigned char* sig, unsigned int sigLen, unsigned int contentsSize) {
    const auto save = [&]() -> int {
        logDebug(loggers::sign, "entering CPdfSign::SaveSignature");
        if (pcSignedFile == nullptr || sig == nullptr) return VARNPDF_SAVE_FAILED;
        StagedFile file(pcSignedFile);
        if (!file.isOpen()) return VARNPDF_SAVE_FAILED;
        logDebug(loggers::sign, "CPdfSign::SaveSignature: write data to pcSignedFile:", pcSignedFile);
        char* value = nullptr;
        std::uint32_t length = 0;
        buildSignContent(&value, &length, sig, sigLen, contentsSize);
        const std::unique_ptr<char[]> content(value);
        file.write(viewOf(prepared_.get(), contentsOffset_));
        file.write({content.get(), length});
        file.write(viewOf(prepared_.get() + contentsOffset_, preparedLength_ - contentsOffset_));
        const int code = file.commit() ? VARNPDF_OK : VARNPDF_SAVE_FAILED;
        logDebug(loggers::sign, "leaving CPdfSign::SaveSignature: ", code);
        return code;
    };
    return guarded(save, VARNPDF_SAVE_FAILED);
}
