// Opening of documents for all commands.
#pragma once

#include <string>

#include "varnpdf/varnpdf.h"

namespace cli {

/// Opens a document for reading; 0, or the library's code after a complaint.
int openDocument(CPdf& pdf, const std::string& path);

/// A change behind a signature is no mistake, but viewers will mention it.
void warnIfSigned(CPdfForm& form, const std::string& path);

}  // namespace cli
