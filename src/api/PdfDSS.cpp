// c_pdf_dss: the exported face of the security store.
#include "varnpdf/PdfDSS.h"

#include <unistd.h>

#include <cerrno>
#include <exception>
#include <memory>
#include <span>

#include "api/PdfState.h"
#include "longterm/SecurityStore.h"
#include "longterm/StoreTexts.h"
#include "support/Loggers.h"
#include "support/StagedFile.h"
#include "varnpdf/result.h"

using namespace varnpdf;

namespace {

bool isMissing(const char* path) { return path == nullptr || *path == '\0'; }

/// A file that may not be read is there all the same.
bool isThere(const char* path) {
    std::FILE* file = nullptr;
    if (fopen_s(&file, path, "rb") != 0) return ::access(path, F_OK) == 0;
    std::fclose(file);
    return true;
}

int checkArguments(const char* input, const char* output, const pdf_dss_struct* records, int count, bool overwrite) {
    if (isMissing(input)) return VARNPDF_DSS_INPUT_MISSING;
    if (isMissing(output)) return VARNPDF_DSS_OUTPUT_MISSING;
    if (records == nullptr || count < 0) return VARNPDF_DSS_RECORDS_MISSING;
    if (::access(input, R_OK) != 0) return VARNPDF_DSS_INPUT_UNREADABLE;
    if (!overwrite && isThere(output)) return VARNPDF_DSS_OUTPUT_EXISTS;
    return VARNPDF_OK;
}

}  // namespace

c_pdf_dss::c_pdf_dss() = default;
c_pdf_dss::c_pdf_dss(const c_pdf_dss&) = default;
c_pdf_dss& c_pdf_dss::operator=(const c_pdf_dss&) = default;

c_pdf_dss::~c_pdf_dss() = default;

int c_pdf_dss::append_dss(char* input, char* output, pdf_dss_struct* records, int count, bool overwrite) const try {
    logDebug(loggers::store, "Starte append_dss");
    const auto failed = [](int code) {
        logError(loggers::store, "append_dss ABBRUCH: ", code);
        return code;
    };
    int code = checkArguments(input, output, records, count, overwrite);
    if (code != VARNPDF_OK) return failed(code);
    logDebug(loggers::store, "Parameter und Dateien scheinen okay");
    CPdf pdf;
    code = pdf.Open(input, "rb");
    if (code != VARNPDF_OK) return failed(code);
    pdf.Close();
    logDebug(loggers::store, "PDF geoeffnet");
    SecurityStore store(documentOf(pdf), {records, static_cast<std::size_t>(count)});
    code = store.run();
    if (code != VARNPDF_OK) return failed(code);
    logDebug(loggers::store, "Neues PDF erzeugen: ", static_cast<const char*>(output));
    StagedFile file(output);
    if (!file.isOpen()) return failed(VARNPDF_DSS_OUTPUT_FAILED);
    file.write(documentOf(pdf).view());
    for (const std::string_view piece : store.pieces()) file.write(piece);
    if (!file.commit()) return failed(VARNPDF_DSS_OUTPUT_FAILED);
    logDebug(loggers::store, "crossref ende");
    logDebug(loggers::store, "Beende append_dss");
    return VARNPDF_OK;
} catch (const std::exception& error) {
    logError(loggers::store, "append_dss ABBRUCH: ", error.what());
    return VARNPDF_PDF_MEMORY_ALLOCATION;
}

std::string c_pdf_dss::append_to_array(std::vector<int> numbers) const { return referenceArray(numbers); }

std::string c_pdf_dss::str_replace(std::string subject, std::string search, std::string replacement, int limit) const {
    return replaced(subject, search, replacement, limit);
}

int fopen_s(std::FILE** file, const char* path, const char* mode) {
    if (file == nullptr) return EINVAL;
    *file = nullptr;
    if (path == nullptr || mode == nullptr) return EINVAL;
    *file = std::fopen(path, mode);
    return *file != nullptr ? 0 : errno;
}
