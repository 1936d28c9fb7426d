// CPdfSign: the two steps of a signature.
#include "varnpdf/PdfSign.h"

#include <algorithm>
#include <cstring>

#include "api/PdfState.h"
#include "signing/FrameSearch.h"
#include "signing/Insertion.h"
#include "signing/Preparation.h"
#include "support/Guarded.h"
#include "support/Loggers.h"
#include "support/StagedFile.h"
#include "varnpdf/result.h"

using namespace varnpdf;

namespace {

constexpr std::size_t kFileName = 256;

std::span<const FormfieldInfo_tag> viewOf(const FormfieldInfo_tag* fields, int count) {
    return {fields, static_cast<std::size_t>(fields == nullptr ? 0 : std::max(count, 0))};
}

}  // namespace

/// The prepared document.
struct varnpdf::SignState {
    bool etsi = true;
    Bytes prepared;
    std::size_t contentsOffset = 0;

    int prepare(PdfState& pdf, const SigningRequest& request, bool takeBytes);
};

// The prepared bytes are the old ones and the update without the room of the value. A document that is given up may
// hand over its bytes: growing them does not copy a large file.
int SignState::prepare(PdfState& pdf, const SigningRequest& request, bool takeBytes) {
    Document& document = pdf.document;
    UpdatedTrailer trailer(document.update.get());
    Preparation preparation(document, request);
    pdf.objectCount = preparation.firstNumber();
    if (const int code = preparation.run(); code != VARNPDF_OK) return trailer.keep(), code;
    const std::size_t old = document.length;
    const std::string_view tail = preparation.tail();
    const std::size_t begin = preparation.room().begin - old;
    const std::size_t end = preparation.room().end - old;
    Bytes bytes;
    if (takeBytes) {
        bytes = releaseBytes(document);
    } else {
        bytes.reserve(old + tail.size());
        const std::string_view content = document.view();
        std::copy(content.begin(), content.end(), bytes.data());
    }
    bytes.reserve(old + tail.size());
    // Hosts that keep the document find the update in its output stream.
    if (!takeBytes) {
        pdf.output.init(static_cast<unsigned>(old));
        print(pdf, tail);
    }
    std::copy_n(tail.begin(), begin, bytes.data() + old);
    std::copy(tail.begin() + static_cast<std::ptrdiff_t>(end), tail.end(), bytes.data() + old + begin);
    bytes.setSize(old + tail.size() - (end - begin));
    logDebug(loggers::sign, "szContent mit gemerkter Länge setzen");
    prepared = std::move(bytes);
    contentsOffset = preparation.room().begin;
    trailer.keep();
    logDebug(loggers::sign, "Ende Dummysign");
    return VARNPDF_OK;
}

CPdfSign::CPdfSign() : state_(std::make_unique<SignState>()) {}
CPdfSign::~CPdfSign() = default;

void CPdfSign::setUserETSISubFilter(bool etsi) { state_->etsi = etsi; }
bool CPdfSign::isUserETSISubFilter() const { return state_->etsi; }

const unsigned char* CPdfSign::GetPreparedDocument() const {
    return reinterpret_cast<const unsigned char*>(std::as_const(state_->prepared).data());
}

std::uint32_t CPdfSign::GetPreparedLength() const { return static_cast<std::uint32_t>(state_->prepared.size()); }
std::uint32_t CPdfSign::GetContentsOffset() const { return static_cast<std::uint32_t>(state_->contentsOffset); }

int CPdfSign::SignPDFFile(char* pdfFile, int page, int posMode, int x, int y, int width, int height,
                          int /*appearanceOption1*/, char* reason, char* location, char* name, char* signDate,
                          unsigned int contentsSize, bool /*reservedFlag*/, int appearanceOption2, int useImage,
                          char* imageFile, FormfieldInfo_tag* fields, int fieldCount, int lock, bool skipImageCheck) {
    if (pdfFile == nullptr) return VARNPDF_CAN_NOT_LOAD_PDF_FILE;
    if (std::strlen(pdfFile) > kFileName) return VARNPDF_FILE_NAME_TOO_LONG;
    const auto sign = [&]() -> int {
        CPdf pdf;
        if (const int code = pdf.Open(pdfFile, "rb"); code != VARNPDF_OK) return code;
        if (pdf.get_lockstate() > 0) return VARNPDF_LOCKED;
        const SigningRequest request{.etsi = state_->etsi,
                                     .page = page,
                                     .posMode = posMode,
                                     .position = {x, y},
                                     .size = {width, height},
                                     .reason = reason,
                                     .location = location,
                                     .name = name,
                                     .signDate = signDate,
                                     .contentsSize = contentsSize,
                                     .layers = appearanceOption2 != 0,
                                     .imageFile = useImage != 0 ? imageFile : nullptr,
                                     .fields = viewOf(fields, fieldCount),
                                     .lock = lock > 0,
                                     .skipImageCheck = skipImageCheck};
        return state_->prepare(Access::state(pdf), request, true);
    };
    return guarded(sign, VARNPDF_CAN_NOT_LOAD_PDF_FILE);
}

int CPdfSign::SignPDFStream(unsigned char* pdfData, unsigned int pdfLen, int page, int posMode, int x, int y, int width,
                            int height, int appearanceOption1, char* reason, char* location, char* name, char* signDate,
                            unsigned int contentsSize, bool reservedFlag, int appearanceOption2, int useImage,
                            char* imageFile, FormfieldInfo_tag* fields, int fieldCount, int lock) {
    return guarded([&]() -> int {
        CPdf pdf;
        const int code = pdf.ParseContent(pdfData, pdfLen, true);
        if (code == VARNPDF_PDF_MEMORY_ALLOCATION) return code;
        pdf.setUserETSISubFilter(state_->etsi);
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

int CPdfSign::DummySign(CPdf* pdf, int page, int posMode, int x, int y, int width, int height,
                        int /*appearanceOption1*/, char* reason, char* location, char* name, char* signDate,
                        unsigned int contentsSize, bool /*reservedFlag*/, int appearanceOption2, int useImage,
                        char* imageFile, FormfieldInfo_tag* fields, int fieldCount, int lock, bool skipImageCheck) {
    if (pdf == nullptr) return VARNPDF_CAN_NOT_LOAD_PDF_FILE;
    const SigningRequest request{.etsi = pdf->isUserETSISubFilter(),
                                 .page = page,
                                 .posMode = posMode,
                                 .position = {x, y},
                                 .size = {width, height},
                                 .reason = reason,
                                 .location = location,
                                 .name = name,
                                 .signDate = signDate,
                                 .contentsSize = contentsSize,
                                 .layers = appearanceOption2 != 0,
                                 .imageFile = useImage != 0 ? imageFile : nullptr,
                                 .fields = viewOf(fields, fieldCount),
                                 .lock = lock > 0,
                                 .skipImageCheck = skipImageCheck};
    return guarded([&]() -> int {
        pdf->PdfGetNumSignatures();
        return state_->prepare(Access::state(*pdf), request, false);
    });
}

void CPdfSign::buildSignContent(char** out, std::uint32_t* outLen, unsigned char* sig, std::uint32_t sigLen,
                                std::uint32_t contentsSize) {
    logDebug(loggers::sign, "entering CPdfSign::buildSignContent");
    const std::size_t length = roomLength(contentsSize);
    auto content = out == nullptr ? nullptr : std::make_unique<char[]>(length + 1);
    if (outLen != nullptr) *outLen = static_cast<std::uint32_t>(length);
    if (out == nullptr) return;
    fillRoom(content.get(), sig, sigLen, contentsSize);
    *out = content.release();
    logDebug(loggers::sign, "leaving CPdfSign::buildSignContent");
}

int CPdfSign::SaveSignature(char* pcSignedFile, unsigned char* sig, unsigned int sigLen, unsigned int contentsSize) {
    const auto save = [&]() -> int {
        logDebug(loggers::sign, "entering CPdfSign::SaveSignature");
        if (pcSignedFile == nullptr || sig == nullptr) return VARNPDF_SAVE_FAILED;
        char* value = nullptr;
        std::uint32_t length = 0;
        StagedFile file(pcSignedFile);
        if (!file.isOpen()) return VARNPDF_SAVE_FAILED;
        logDebug(loggers::sign, "CPdfSign::SaveSignature: write data to pcSignedFile:", pcSignedFile);
        buildSignContent(&value, &length, sig, sigLen, contentsSize);
        const std::unique_ptr<char[]> content(value);
        const std::string_view prepared = state_->prepared.view();
        file.write(prepared.substr(0, state_->contentsOffset));
        file.write({content.get(), length});
        file.write(prepared.substr(state_->contentsOffset));
        const int code = file.commit() ? VARNPDF_OK : VARNPDF_SAVE_FAILED;
        logDebug(loggers::sign, "leaving CPdfSign::SaveSignature: ", code);
        return code;
    };
    return guarded(save, VARNPDF_SAVE_FAILED);
}

int CPdfSign::TryFindOOField(CPdf* pdf, int* x, int* y, int* width, int* height, int* page) {
    if (pdf == nullptr) return VARNPDF_TRAILER_INCOMPLETE;
    return guarded([&]() -> int {
        int code = VARNPDF_OK;
        const auto frame = findDrawnFrame(documentOf(*pdf), code);
        if (!frame) return code;
        int* const targets[] = {x, y, width, height};
        for (std::size_t i = 0; i < frame->rectangle.size(); ++i) *targets[i] = frame->rectangle[i];
        *page = frame->page;
        return VARNPDF_OK;
    });
}
