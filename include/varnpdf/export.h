// Visibility of the library's public symbols.
#pragma once

#if defined(__GNUC__)
#define VARNPDF_EXPORT __attribute__((visibility("default")))
/// A private member of an exported class.
#define VARNPDF_HIDDEN __attribute__((visibility("hidden")))
#else
#define VARNPDF_EXPORT
#define VARNPDF_HIDDEN
#endif
