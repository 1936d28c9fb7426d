// Visibility of the library's public symbols.
#pragma once

#if defined(__GNUC__)
#define VARNPDF_EXPORT __attribute__((visibility("default")))
#else
#define VARNPDF_EXPORT
#endif
