// CPdfSignatureList: the signature fields of a document as viewers show them, and what each signature says.
#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "varnpdf/PdfCoverage.h"
#include "varnpdf/export.h"

class CPdf;

namespace varnpdf {
struct SignatureListState;
}

/// A signature dictionary (ISO 32000-2 table 255).
struct PdfSignature {
    int object = -1;  ///< number of the object that is the dictionary or holds it
    /// The values of /Reason, /Location, /M, /Name, /ContactInfo, /Filter, /SubFilter, /Type, /FT and /R that are there,
    /// as UTF-8: by key without slash, names likewise.
    std::map<std::string, std::string> texts;
    std::string value;    ///< the DER value in /Contents without what stands behind it; "" without one
    long long room = -1;  ///< bytes of /Contents with its padding; -1 without one
    std::vector<std::string> certificates;  ///< the strings of /Cert as bytes
    std::vector<long long> byteRange;       ///< four numbers, or none
    PdfCoverage coverage = PdfCoverage::NoRange;
    std::size_t coveredBytes = 0;  ///< where the range ends; 0 when it does not lie inside the file
    bool coversWholeFile = false;  ///< complete, and to the last byte
    int laterUpdates = 0;          ///< revisions behind the range

    /// One of `texts`, "" without it.
    [[nodiscard]] std::string text(const std::string& key) const {
        const auto found = texts.find(key);
        return found == texts.end() ? std::string() : found->second;
    }
};

/// What a field locks when it is signed (ISO 32000-2 table 236).
struct PdfSignatureLock {
    std::string action;               ///< "All", "Include" or "Exclude"; "" without a lock
    std::vector<std::string> fields;  ///< full names
    int permissions = 0;              ///< /P; 0 without one
};

/// A signature field (ISO 32000-2 12.7.5.5).
struct PdfSignatureField {
    std::string name;       ///< full name, partial names joined by dots
    int index = -1;         ///< of a signature, as all operations count; -1 for an empty field
    bool inForm = false;    ///< reached from the form's /Fields
    bool isSigned = false;  ///< it has a value, even if that leads to no dictionary
    int object = -1;        ///< number of the object that is the field's dictionary or holds it
    int page = -1;          ///< index of the page that shows the first widget; -1 when none does
    bool hasRect = false;
    double rect[4] = {};  ///< of that widget: lower left and upper right corner in the page's own space
    /// Shared by fields with the same dictionary, of which the first hundred have it; null without one.
    std::shared_ptr<const PdfSignature> signature;
    std::shared_ptr<const PdfSignatureLock> lock;  ///< likewise
};

/// All signature fields of an opened document, read once: what the document says later is not seen. Signatures that
/// `CPdf::PdfGetNumSignatures` counts have the indexes that the members of `CPdf` take; the others, whose fields are no
/// annotations of their own, have the numbers behind these.
class VARNPDF_EXPORT CPdfSignatureList {
public:
    /// Lets std::bad_alloc out; the members do not.
    explicit CPdfSignatureList(CPdf& pdf);
    CPdfSignatureList(const CPdfSignatureList&) = delete;
    CPdfSignatureList& operator=(const CPdfSignatureList&) = delete;
    ~CPdfSignatureList();

    /// Those of the form in its order, then the others in the order of their objects.
    [[nodiscard]] const std::vector<PdfSignatureField>& GetFields() const noexcept;
    /// How many signatures there are: one more than the highest index.
    [[nodiscard]] int GetSignatureNum() const noexcept;
    /// The field of a signature; null for an index that is no signature's.
    [[nodiscard]] const PdfSignatureField* GetSignature(int index) const noexcept;

private:
    std::unique_ptr<varnpdf::SignatureListState> state_;
};
