// c_pdf_dss: the document security store for long-term validation (ISO 32000-2 12.8.4.3, ETSI EN 319 142-1 5.4.2).
#pragma once

#include <cstdio>
#include <string>
#include <vector>

#include "varnpdf/export.h"

/// Validation material for one signature. Several records may name the same signature.
struct pdf_dss_struct {
    int signature_number;  ///< index of the signature from 0 as `CPdf::PdfGetNumSignatures` counts; behind these
                           ///< come the others of `CPdfSignatureList`. -1: the last one counted, else the last of all
    std::string certificate;  ///< a DER certificate in Base64, "" for none; line breaks do not matter
    std::string crl;          ///< a DER certificate revocation list likewise
    std::string ocsp;         ///< a DER OCSP response likewise
};

/// Appends validation material to a signed document. Has no state: one object may serve several threads.
class VARNPDF_EXPORT c_pdf_dss {
public:
    c_pdf_dss();
    c_pdf_dss(const c_pdf_dss&);
    c_pdf_dss& operator=(const c_pdf_dss&);
    virtual ~c_pdf_dss();

    /// Writes the input with an appended update that holds the material. Every signature that a viewer shows gets an entry
    /// in /VRI. A store
    /// that the document has already is extended: its references and entries stay. The material is not examined, and a
    /// record whose number is no signature's adds nothing; both are up to the caller.
    /// @param input,output  paths, which may be the same; the output appears complete or not at all
    /// @param records,count the material; a count of 0 gives empty entries
    /// @param overwrite     whether `output` may exist
    /// @return 0, an open code, or VARNPDF_DSS_INPUT_MISSING (-1400), VARNPDF_DSS_OUTPUT_MISSING (-1401),
    ///         VARNPDF_DSS_RECORDS_MISSING (-1402: null, or a negative count), VARNPDF_DSS_INPUT_UNREADABLE (-1403),
    ///         VARNPDF_DSS_OUTPUT_EXISTS (-1404), VARNPDF_DSS_OUTPUT_FAILED (-1406: cannot be created or written),
    ///         VARNPDF_DSS_CATALOGUE_MISSING (-1413), VARNPDF_TRAILER_INCOMPLETE (-1004), VARNPDF_PDF_MAXSIZE (-1013:
    ///         the result would be too large), VARNPDF_PDF_MEMORY_ALLOCATION (-1014), VARNPDF_PDF_ENCRYPTED (-1021),
    ///         VARNPDF_COMPRESSING_FAILED (-1041)
    int append_dss(char* input, char* output, pdf_dss_struct* records, int count, bool overwrite) const;
    /// An array of references, e.g. "[4 0 R 7 0 R]".
    [[nodiscard]] std::string append_to_array(std::vector<int> numbers) const;
    /// Replaces `search` from left to right, not looking into what it has put in; at most `limit` times unless it is 0.
    [[nodiscard]] std::string str_replace(std::string subject, std::string search, std::string replacement,
                                          int limit) const;

private:
};

/// Opens a file as fopen does. 0, or the errno value, with `*file` null.
VARNPDF_EXPORT int fopen_s(std::FILE** file, const char* path, const char* mode);
