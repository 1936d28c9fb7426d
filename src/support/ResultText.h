// The log text of each result code, by the name of its row.
#pragma once

namespace varnpdf::logtext {

#define VARNPDF_RESULT(name, number, logText, meaning) inline constexpr const char* name = (logText);
#include "varnpdf/result_codes.inc"
#undef VARNPDF_RESULT

}  // namespace varnpdf::logtext
