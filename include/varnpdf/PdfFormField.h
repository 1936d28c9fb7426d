// CPdfFormField: new fields in the form of a document.
#pragma once

#include "varnpdf/FormfieldInfo.h"
#include "varnpdf/export.h"

class CPdf;

/// One new field. Texts are NUL-terminated and stay the caller's.
struct PdfNewField {
    int kind;          ///< `CPdfFormField::Kind`
    const char* name;  ///< UTF-8; dots separate partial names, and fields that group others are made
    int page;          ///< index from 0; -1 the last
    double x;          ///< lower left corner, size: points in the page's own space, which /Rotate does not turn
    double y;
    double width;
    double height;
    int flags;               ///< /Ff, sum of `CPdfFormField::Flag`
    FormfieldInfo_tag text;  ///< family, style and size of the font; `label` is the tooltip (/TU), `value` the value
    const char* tooltip;     ///< UTF-8; not null: in place of `text.label`
    const char* value;       ///< UTF-8; not null: in place of `text.value`, which is short and WinAnsiEncoding
    const char* image;       ///< path of a PNG or JPEG for an image field; null: none yet
};

/// Adds fields to a form, which is made where the document has none. Each is one widget with an appearance of its own,
/// upright on turned pages: every viewer shows it, and those that fill forms fill it. Fonts go into the form's /DR. The
/// document is extended by an appended update; signatures made before stay intact, and viewers will say that the
/// document was changed after signing. XFA data of the form is dropped, as viewers would show its fields instead.
class VARNPDF_EXPORT CPdfFormField {
public:
    enum Kind {
        Text = 0,      ///< text field; its value has characters of WinAnsiEncoding only
        Image = 1,     ///< button that shows a picture, whole and as large as fits (ISO 32000-2 12.7.5.2.2)
        CheckBox = 2,  ///< not checked with the value "" or "Off"; its other state is "Yes"
        Signature = 3  ///< empty signature field; it takes no value
    };
    enum Flag { ReadOnly = 1, Required = 2, NoExport = 4, Multiline = 4096 };

    /// Writes the document with all the fields, or nothing when one is refused. `output` may be `input`.
    /// @return 0, an open code, or VARNPDF_INDEX_NEGATIVE (-1008: a null argument or no field), VARNPDF_LOCKED (-1082),
    ///         VARNPDF_FIELD_LOCKED (-1814), VARNPDF_FIELD_NAME_TAKEN (-1816), VARNPDF_FIELD_UNUSABLE (-1817: no such
    ///         kind, or a name that is empty, has an empty part or is too long), VARNPDF_FIELD_OUTSIDE_PAGE (-1818),
    ///         VARNPDF_FIELD_VALUE_UNSHOWABLE (-1819),
    ///         VARNPDF_PAGE_NOT_FOUND (-1050), VARNPDF_IMAGE_UNREADABLE (-1083), VARNPDF_TRAILER_INCOMPLETE (-1004),
    ///         VARNPDF_PDF_MAXSIZE (-1013), VARNPDF_COMPRESSING_FAILED (-1041), VARNPDF_SAVE_FAILED (-1023),
    ///         VARNPDF_PDF_MEMORY_ALLOCATION (-1014)
    static int AddFormFields(const char* input, const char* output, const PdfNewField* fields, int count);
    /// The same for an opened document: the old bytes and the update go into its output stream (`CPdf::GetByteStream`).
    static int AddFormFields(CPdf* pdf, const PdfNewField* fields, int count);
};
