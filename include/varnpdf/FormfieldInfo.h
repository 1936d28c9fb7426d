// FormfieldInfo_tag: one line of text of a visible signature.
#pragma once

/// One line of text of a visible signature.
struct FormfieldInfo_tag {
    int family;       ///< 0 Helvetica, 1 Times, 2 Courier; any other value is Helvetica
    int style;        ///< 0 regular, 1 bold, 2 italic, 3 bold italic
    int size;         ///< font size in points; 0 or less takes the largest that fits
    char label[257];  ///< put in front with ": " when not empty; must not contain '%'
    char value[257];  ///< WinAnsiEncoding
};
