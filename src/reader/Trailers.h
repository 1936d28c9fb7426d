// Locating cross-reference sections and reading their trailers (ISO 32000-2 7.5.5, 7.5.8, annex F).
#pragma once

#include "model/Document.h"

namespace varnpdf {

/// Finds the newest section from "startxref" and fills the document's newest and update trailer. What cannot be found
/// leaves them as they were; a stream that is announced and has no end takes them away.
void readNewestTrailer(Document& document);
/// Fills a trailer from the section at `offset`. One that cannot be read has no content.
void readTrailer(Document& document, CPdfTrailer& trailer, int offset);
/// Sets or clears the linearized flag.
void checkLinearization(Document& document);

}  // namespace varnpdf
