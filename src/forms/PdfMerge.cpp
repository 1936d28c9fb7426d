// CPdfDoc: a time stamp's authority and date in the fields of a form.
#include <algorithm>
#include <memory>
#include <new>
#include <string>
#include <unordered_map>

#include "forms/FormTree.h"
#include "forms/FormUpdate.h"
#include "support/Loggers.h"
#include "syntax/Dictionary.h"
#include "syntax/Encoding.h"
#include "varnpdf/PdfDoc.h"
#include "varnpdf/PdfFields.h"
#include "varnpdf/result.h"

using namespace varnpdf;

namespace {

// DD-MM-YYYY of D:YYYYMMDD; what the date does not have is missing.
std::string dayMonthYear(std::string_view date) {
    const auto part = [&](std::size_t at, std::size_t size) { return date.substr(std::min(at, date.size()), size); };
    return text(part(8, 2), '-', part(6, 2), '-', part(2, 4));
}

// A field that the form's tree does not reach shows its value all the same when it is a widget.
FormField loneField(CPdfObj& object) {
    const Dictionary own(object.content());
    FormField field;
    field.object = &object;
    field.attributes = {own.find("/FT"), own.find("/Ff"), own.find("/V"),
                        own.find("/DA"), own.find("/Q"),  own.find("/MaxLen")};
    if (own.find("/Subtype") == "/Widget") field.widgets.push_back(&object);
    return field;
}

void putValues(CPdf& doc, CPdfFieldContainer& container) {
    FormTree tree(doc);
    FormUpdate update(doc, tree);
    std::unordered_map<int, const FormField*> known;
    for (const FormField& field : tree.fields()) known.emplace(field.object->GetObjNum(), &field);
    for (int i = 0; i < container.GetFieldNum(); ++i) {
        CPdfField& changed = *container.GetFields(i);
        if (changed.GetIsNew() != 1) continue;
        const int number = changed.GetOrgObj()->GetObjNum();
        const auto found = known.find(number);
        CPdfObj* const object = doc.get_pdf_obj_from_map(number);
        const FormField field = found != known.end() ? *found->second : loneField(*object);
        const bool isText = field.attributes.type.empty() || field.attributes.type == "/Tx";
        if (isText) update.setValue(field, fromUtf8OrLatin1(changed.GetNewValue()));
    }
    update.write();
}

}  // namespace

int CPdfDoc::MergePKCS7PDF(CPdf* doc, char* authority, char* date) {
    try {
        logDebug(loggers::document, "### MergePKCS7PDF START");
        const std::string day = dayMonthYear(date == nullptr ? "" : date);
        const std::unique_ptr<CPdfFieldContainer> container(doc == nullptr ? nullptr : doc->ReadFields());
        if (doc != nullptr && !container) throw std::bad_alloc();
        if (!container || container->GetFieldNum() == 0) {
            logDebug(loggers::document, "### MergePKCS7PDF ABBRUCH (keine Felder)");
            return VARNPDF_NO_FORM_FIELDS;
        }
        for (int i = 0; i < container->GetFieldNum(); ++i) {
            CPdfField& field = *container->GetFields(i);
            const std::string_view tag = field.GetTag();
            if (tag == "stampDate") field.SetNewValue(day.c_str());
            if (tag == "stampAuthority") field.SetNewValue(authority == nullptr ? "" : authority);
        }
        container->CheckAllForChanges();
        putValues(*doc, *container);
        logDebug(loggers::document, "### MergePKCS7PDF ENDE");
        return VARNPDF_OK;
    } catch (...) {
        logError(loggers::document, "### MergePKCS7PDF ABBRUCH");
        return VARNPDF_PDF_MEMORY_ALLOCATION;
    }
}
