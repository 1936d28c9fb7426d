// Loading the objects of all sections (ISO 32000-2 7.5.6, 7.5.7).
#pragma once

#include "model/Document.h"

namespace varnpdf {

/// Reads the entries of the newest section and of all it leads to, then the text of every object, those packed in object
/// streams included. False when that cannot be done; what was loaded stays.
bool readObjects(Document& document);

/// The number at the start of the body of an object, as an indirect /Length has it.
std::optional<int> referencedNumber(const Document& document, int number);

/// Logs the object table at debug level.
void logObjects(const Document& document);
/// Logs the trailers at debug level.
void logTrailers(const Document& document);

}  // namespace varnpdf
