// CPdfForm: the fields of a document as viewers show them, and filling them.
#pragma once

#include <memory>

#include "varnpdf/export.h"

class CPdf;

namespace varnpdf {
struct FormState;
}

/// The form of an opened document (ISO 32000-2 12.7): all terminal fields with full names, inherited attributes and
/// widgets, in the order of the form; then fields of widgets on pages which the form does not list. Names and values
/// are UTF-8. The document must not be changed while the form is in use, and outlives it. Indexes count from 0; for an
/// index out of range a text is null and a number -1. A returned text holds until the next call. Members that return no
/// result code let std::bad_alloc out.
class VARNPDF_EXPORT CPdfForm {
public:
    /// A form without fields when the document has none, `pdf` is null, or there is no memory.
    explicit CPdfForm(CPdf* pdf);
    CPdfForm(const CPdfForm&) = delete;
    CPdfForm& operator=(const CPdfForm&) = delete;
    virtual ~CPdfForm();

    [[nodiscard]] int GetFieldNum() const;
    /// Partial names joined by dots, e.g. "person.address.city".
    const char* GetName(int index);
    /// /FT without slash: "Tx", "Btn", "Ch", "Sig", or "" when the field says none.
    const char* GetType(int index);
    /// The value: a string decoded, a name without slash, the items of an array on lines of their own, the text of a
    /// stream; "" for another value, e.g. a signature. Null when the field has none.
    const char* GetValue(int index);
    /// /Ff (ISO 32000-2 tables 227, 228, 230, 231).
    int GetFlags(int index);
    /// /MaxLen, 0 when there is none.
    int GetMaxLen(int index);
    /// Number of the field's own object.
    int GetObjNum(int index);
    /// Index of the page that shows the first widget of the field, -1 when none does.
    int GetPage(int index);
    [[nodiscard]] int GetWidgetNum(int index) const;
    /// 1 when a signature that was made locks the field or the whole document, else 0.
    int GetLocked(int index);

    /// Gives the text field with this name (all fields of it) another value, and appearances that show it: in the
    /// field's own font, or in Helvetica when that lacks a character. When Helvetica does too, the appearance is left to
    /// the viewer (/NeedAppearances). Calculations and formats in JavaScript are not run. Nothing changes on an error.
    /// @return 0, or VARNPDF_FIELD_MISSING (-1811), VARNPDF_FIELD_NO_TEXT (-1812), VARNPDF_FIELD_READ_ONLY (-1813),
    ///         VARNPDF_FIELD_LOCKED (-1814), VARNPDF_FIELD_VALUE_TOO_LONG (-1815), VARNPDF_LOCKED (-1082),
    ///         VARNPDF_PDF_MEMORY_ALLOCATION (-1014)
    int SetValue(const char* name, const char* value);
    /// Writes the old document and, when a value was set, the update into the document's output stream
    /// (`CPdf::GetByteStream`). XFA data of the form is dropped, as viewers would show its values instead.
    /// @return 0, or VARNPDF_PDF_MEMORY_ALLOCATION (-1014), VARNPDF_PDF_MAXSIZE (-1013)
    int WriteUpdate();

private:
    std::unique_ptr<varnpdf::FormState> state_;
};
