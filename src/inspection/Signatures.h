// The signature fields of a document and the values of their dictionaries (ISO 32000-2 12.7.5.5, 12.8.1).
#pragma once

#include <string>
#include <vector>

#include "inspection/ByteRange.h"
#include "model/Document.h"

namespace varnpdf {

/// The signed signature fields in ascending order of their numbers: annotations with /FT /Sig and a /V. Walked once for
/// each state of the objects.
const std::vector<CPdfObj*>& signatureFields(Document& document);
/// The /T of every signature field, signed or empty, as it stands in the file.
std::vector<std::string> signatureFieldNames(const Document& document);

/// One value of a signature's dictionary by tag (`CPdf::GetSignatureField`).
/// @param field  null where there is no signature
/// @return VARNPDF_OK or VARNPDF_NO_SIGNATURE_VALUE
int readSignatureValue(const Document& document, const CPdfObj* field, int tag, std::string& value);
/// Its /ByteRange; also VARNPDF_BYTE_RANGE_UNUSABLE.
int readByteRange(const Document& document, const CPdfObj* field, ByteRange& range);

}  // namespace varnpdf
