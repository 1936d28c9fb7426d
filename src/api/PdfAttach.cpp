// CPdfAttach: the face of attaching.
#include "varnpdf/PdfAttach.h"

#include <cstring>

#include "api/PdfState.h"
#include "portfolio/Attachment.h"
#include "support/Guarded.h"
#include "support/Loggers.h"
#include "support/StagedFile.h"

using namespace varnpdf;

namespace {

// The file comes first: without one to embed the document is not looked at.
int attach(const char* document, const char* path) {
    AttachedFile file;
    if (const int code = readAttachedFile(path, file); code != VARNPDF_OK) return code;
    CPdf pdf;
    if (const int code = pdf.Open(document, "rb"); code != VARNPDF_OK) return code;
    if (pdf.PdfIsEncrypted() == 1) return VARNPDF_PDF_ENCRYPTED;
    Attachment attachment(documentOf(pdf), file);
    if (const int code = attachment.run(); code != VARNPDF_OK) return code;
    StagedFile target(document);
    if (!target.isOpen()) return VARNPDF_SAVE_FAILED;
    target.write(documentOf(pdf).view());
    for (const std::string_view piece : attachment.pieces()) target.write(piece);
    return target.commit() ? VARNPDF_OK : VARNPDF_SAVE_FAILED;
}

}  // namespace

CPdfAttach::CPdfAttach() = default;
CPdfAttach::~CPdfAttach() = default;

int CPdfAttach::AttachFileToPDF(unsigned char* pdfPath, unsigned char* filePath, int /*reserved*/) {
    constexpr std::size_t kPath = 257;  // with its terminator
    logDebug(loggers::attach, "### AttachFileToPDF START");
    if (pdfPath == nullptr || filePath == nullptr) return VARNPDF_PATH_MISSING;
    const auto* const document = reinterpret_cast<const char*>(pdfPath);
    const auto* const file = reinterpret_cast<const char*>(filePath);
    if (strnlen(document, kPath) == kPath || strnlen(file, kPath) == kPath) return VARNPDF_FILE_NAME_TOO_LONG;
    const int code =
        guarded([&] { return attach(document, file); }, VARNPDF_PDF_MEMORY_ALLOCATION, VARNPDF_SAVE_FAILED);
    if (code == VARNPDF_OK) {
        logDebug(loggers::attach, "### AttachFileToPDF ENDE");
    } else {
        logError(loggers::attach, "### AttachFileToPDF ABBRUCH: ", code);
    }
    return code;
}
