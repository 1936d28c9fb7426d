// Facts about the signatures of a document, as JSON.
#pragma once

#include <nlohmann/json.hpp>

#include "varnpdf/varnpdf.h"

namespace cli {

/// A signature that the members of `CPdf` hand out: they keep a register of the first ones that they count.
bool isRegistered(CPdf& pdf, int index);
/// The full name of a field; null without one.
nlohmann::ordered_json nameOrNull(const PdfSignatureField& field);
/// Every signature field, signed or empty, in object order: {name, signed}.
nlohmann::ordered_json signatureFields(const CPdfSignatureList& list);
/// Every signature by its index with the values of its dictionary (ISO 32000-2 table 255); absent values are null.
nlohmann::ordered_json signatures(CPdf& pdf, const CPdfSignatureList& list);

}  // namespace cli
