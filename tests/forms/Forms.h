// Documents with a form, and what an update of them wrote.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "tests/support/OpenedPdf.h"
#include "tests/support/PdfBuilder.h"
#include "varnpdf/PdfFields.h"
#include "varnpdf/PdfForm.h"

namespace varnpdf::test {

/// One page (3) that shows the annotations; the form's entries; Helv is 4. Objects from 5 on are the test's.
inline PdfBuilder formDocument(std::string_view fields, std::string_view annots, std::string_view entries = "") {
    PdfBuilder pdf;
    const auto join = [](std::initializer_list<std::string_view> parts) {
        std::string out;
        for (const std::string_view part : parts) out += part;
        return out;
    };
    pdf.object(1, join({"<< /Type /Catalog /Pages 2 0 R /AcroForm << /Fields [", fields,
                        "] /DA (/Helv 0 Tf 0 g) /DR << /Font << /Helv 4 0 R >> >> ", entries, " >> >>"}));
    pdf.object(2, "<< /Type /Pages /Kids [3 0 R] /Count 1 >>");
    pdf.object(3, join({"<< /Type /Page /Parent 2 0 R /MediaBox [0 0 200 200] /Annots [", annots, "] >>"}));
    pdf.object(4, "<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica /Encoding /WinAnsiEncoding >>");
    return pdf;
}

inline std::string streamOf(CPdf& pdf) {
    return {pdf.GetByteStream(), static_cast<std::size_t>(pdf.GetByteStreamLen())};
}

/// What stands behind the old document.
inline std::string appended(OpenedPdf& opened) { return streamOf(opened.pdf).substr(opened.file.read().size()); }

}  // namespace varnpdf::test
