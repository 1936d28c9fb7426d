// Does a signature forbid every further change (ISO 32000-2 12.8.2)?
#pragma once

#include "model/Document.h"

namespace varnpdf {

/// By the transform parameters of a signature that was made, or by a field's /Lock.
bool lockedBySignatures(Document& document);

}  // namespace varnpdf
