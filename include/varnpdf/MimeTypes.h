// Media types by file extension.
#pragma once

#include "varnpdf/export.h"

/// Number of rows of the two tables.
VARNPDF_EXPORT extern const int iMaxMIMETypes;
/// File extensions in lower case with their dot, in alphabetical order. One may stand in several rows that follow each
/// other; the first is the one that counts.
VARNPDF_EXPORT extern const char* const FileExtensions[642];
/// Row i is the media type ("application/pdf") of extension row i.
VARNPDF_EXPORT extern const char* const MIME_Types[642];
