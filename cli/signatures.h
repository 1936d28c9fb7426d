// Facts about the signatures of a document, as JSON.
#pragma once

#include <nlohmann/json.hpp>

#include "varnpdf/varnpdf.h"

namespace cli {

/// Every signature field, signed or empty, in object order: {name, signed}.
nlohmann::ordered_json signatureFields(CPdf& pdf);
/// Every counted signature with the values of its dictionary (ISO 32000-2 table 255); absent values are null.
nlohmann::ordered_json signatures(CPdf& pdf);

}  // namespace cli
