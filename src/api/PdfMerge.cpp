// CPdfDoc: a time stamp's authority and date in the fields of a form.
#include <algorithm>
#include <memory>
#include <string>
#include <unordered_map>

#include "api/UpdateOutput.h"
#include "forms/FormTree.h"
#include "forms/FormUpdate.h"
#include "support/Guarded.h"
#include "support/Loggers.h"
#include "support/Text.h"
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

int writeValues(CPdf& pdf, CPdfFieldContainer& container) {
    Document& document = documentOf(pdf);
    FormTree tree(document);
    FormUpdate update(tree);
    std::unordered_map<int, const FormField*> known;
    for (const FormField& field : tree.fields()) known.emplace(field.object->GetObjNum(), &field);
    for (int i = 0; i < container.GetFieldNum(); ++i) {
        CPdfField& changed = *container.GetFields(i);
        if (changed.GetIsNew() != 1) continue;
        const int number = changed.GetOrgObj()->GetObjNum();
        const auto found = known.find(number);
        const FormField field = found != known.end() ? *found->second : loneField(*document.objects.find(number));
        const bool isText = field.attributes.type.empty() || field.attributes.type == "/Tx";
        if (isText) update.setValue(field, fromUtf8OrLatin1(changed.GetNewValue()));
    }
    const int code = update.write();
    if (code == VARNPDF_OK) writeOutput(pdf, update.pieces());
    return code;
}

int mergeStamp(CPdf& pdf, const char* authority, std::string_view date) {
    const std::string day = dayMonthYear(date);
    const std::unique_ptr<CPdfFieldContainer> container(pdf.ReadFields());
    if (!container) return VARNPDF_PDF_MEMORY_ALLOCATION;
    if (container->GetFieldNum() == 0) return VARNPDF_NO_FORM_FIELDS;
    for (int i = 0; i < container->GetFieldNum(); ++i) {
        CPdfField& field = *container->GetFields(i);
        const std::string_view tag = field.GetTag();
        if (tag == "stampDate") field.SetNewValue(day.c_str());
        if (tag == "stampAuthority") field.SetNewValue(authority == nullptr ? "" : authority);
    }
    container->CheckAllForChanges();
    return writeValues(pdf, *container);
}

}  // namespace

int CPdfDoc::MergePKCS7PDF(CPdf* doc, char* authority, char* date) {
    logDebug(loggers::document, "### MergePKCS7PDF START");
    const int code = doc == nullptr
                         ? VARNPDF_NO_FORM_FIELDS
                         : guarded([&]() -> int { return mergeStamp(*doc, authority, date == nullptr ? "" : date); });
    if (code == VARNPDF_OK) {
        logDebug(loggers::document, "### MergePKCS7PDF ENDE");
    } else if (code == VARNPDF_NO_FORM_FIELDS) {
        logDebug(loggers::document, "### MergePKCS7PDF ABBRUCH (keine Felder)");
    } else {
        logError(loggers::document, "### MergePKCS7PDF ABBRUCH");
    }
    return code;
}
