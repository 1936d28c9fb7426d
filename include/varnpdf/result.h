// Result codes and their sentences.
#pragma once

#include "varnpdf/export.h"

/// Result codes of document-level operations; 0 is success. Several causes may share a number.
enum VarnpdfResult {
#define VARNPDF_RESULT(name, number, logText, meaning) VARNPDF_##name = (number),
#include "varnpdf/result_codes.inc"
#undef VARNPDF_RESULT
};

/// What a result code means, as an English sentence without a full stop. Never null; static storage.
extern "C" VARNPDF_EXPORT const char* varnpdf_message(int code);
