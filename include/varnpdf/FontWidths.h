// Widths of the standard 14 fonts that show text (ISO 32000-2 9.6.2.2).
#pragma once

#include "varnpdf/export.h"

/// By code of WinAnsiEncoding (ISO 32000-2 annex D), in thousandths of the font size: a text in Helvetica of 12 points
/// is as long as the sum of Font_Helvetica[code] * 12 / 1000 over its bytes. Codes without a character have the width
/// of the bullet that viewers show for them, those below 0x20 none. Slanted faces are as wide as the upright ones where
/// the fonts say so: the oblique of Helvetica and all of Courier.
VARNPDF_EXPORT extern const int Font_Helvetica[256];
VARNPDF_EXPORT extern const int Font_HelveticaBold[256];
VARNPDF_EXPORT extern const int Font_HelveticaOblique[256];
VARNPDF_EXPORT extern const int Font_HelveticaBoldOblique[256];
VARNPDF_EXPORT extern const int Font_TimesRoman[256];
VARNPDF_EXPORT extern const int Font_TimesBold[256];
VARNPDF_EXPORT extern const int Font_TimesItalic[256];
VARNPDF_EXPORT extern const int Font_TimesBoldItalic[256];
VARNPDF_EXPORT extern const int Font_Courier[256];
VARNPDF_EXPORT extern const int Font_CourierBold[256];
VARNPDF_EXPORT extern const int Font_CourierOblique[256];
VARNPDF_EXPORT extern const int Font_CourierBoldOblique[256];
