// c_pdf_dss: the exported face of the security store.
#include "varnpdf/PdfDSS.h"

#include <unistd.h>

#include <cerrno>
#include <exception>
#include <memory>
#include <span>

#include "longterm/SecurityStore.h"
#include "support/Log.h"
#include "support/StagedFile.h"
#include "varnpdf/Pdf.h"
#include "varnpdf/result.h"

using namespace varnpdf;

constinit ClassLogger c_pdf_dss::m_logger{"VarnPDF.c_pdf_dss"};

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

c_pdf_dss::~c_pdf_dss() = default;

int c_pdf_dss::append_dss(char* input, char* output, pdf_dss_struct* records, int count, bool overwrite) const try {
    logDebug(m_logger, "Starte append_dss");
    const auto failed = [](int code) {
        logError(m_logger, "append_dss ABBRUCH: ", code);
        return code;
    };
    int code = checkArguments(input, output, records, count, overwrite);
    if (code != VARNPDF_OK) return failed(code);
    logDebug(m_logger, "Parameter und Dateien scheinen okay");
    CPdf pdf;
    code = pdf.Open(input, "rb");
    if (code != VARNPDF_OK) return failed(code);
    pdf.Close();
    logDebug(m_logger, "PDF geoeffnet");
    SecurityStore store(pdf, {records, static_cast<std::size_t>(count)}, *this, m_logger);
    code = store.run();
    if (code != VARNPDF_OK) return failed(code);
    logDebug(m_logger, "Neues PDF erzeugen: ", static_cast<const char*>(output));
    const std::string_view old(reinterpret_cast<const char*>(pdf.GetContent()), pdf.GetContentLen());
    StagedFile file(output);
    if (!file.isOpen()) return failed(VARNPDF_DSS_OUTPUT_FAILED);
    file.write(old);
    file.write(store.tail());
    if (!file.commit()) return failed(VARNPDF_DSS_OUTPUT_FAILED);
    logDebug(m_logger, "crossref ende");
    logDebug(m_logger, "Beende append_dss");
    return VARNPDF_OK;
} catch (const std::exception& error) {
    logError(m_logger, "append_dss ABBRUCH: ", error.what());
    return VARNPDF_PDF_MEMORY_ALLOCATION;
}

std::string c_pdf_dss::append_to_array(std::vector<int> numbers) const {
    std::string out = "[";
    for (const int number : numbers) append(out, out.size() > 1 ? " " : "", number, " 0 R");
    return out + ']';
}

std::string c_pdf_dss::str_replace(std::string subject, std::string search, std::string replacement, int limit) const {
    if (search.empty()) return subject;
    std::string out;
    std::size_t copied = 0;
    int replaced = 0;
    for (std::size_t at = subject.find(search); at != std::string::npos; at = subject.find(search, copied)) {
        out.append(subject, copied, at - copied).append(replacement);
        copied = at + search.size();
        if (++replaced == limit) break;
    }
    return out.append(subject, copied);
}

int fopen_s(std::FILE** file, const char* path, const char* mode) {
    if (file == nullptr) return EINVAL;
    *file = nullptr;
    if (path == nullptr || mode == nullptr) return EINVAL;
    *file = std::fopen(path, mode);
    return *file != nullptr ? 0 : errno;
}
