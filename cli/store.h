// Reads the document security store (ISO 32000-2 12.8.4.3) for display.
#pragma once

#include <nlohmann/json.hpp>

#include "varnpdf/varnpdf.h"

namespace cli {

/// What the store holds and which signature each entry of /VRI belongs to; null for a document without one.
nlohmann::ordered_json securityStore(CPdf& pdf);

}  // namespace cli
