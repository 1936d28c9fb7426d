// Everything the reading calls say about an open document, as one text that two openings can be compared by.
#pragma once

#include <string>

#include "varnpdf/Pdf.h"

namespace varnpdf::fuzz {

/// Makes every reading call and states what must hold of the results. `code` is the result of the opening.
std::string transcript(CPdf& pdf, int code);

}  // namespace varnpdf::fuzz
