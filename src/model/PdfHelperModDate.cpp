// CPdfHelper: the modification date of an object.
#include "syntax/Dates.h"
#include "varnpdf/PdfHelper.h"
#include "varnpdf/PdfObj.h"

int CPdfHelper::ReplaceModDate(CPdfObj* obj, char* date) {
    if (obj == nullptr || date == nullptr) return 1;
    std::string text(obj->content());
    if (varnpdf::replaceModDate(text, date)) obj->setContent(text);
    return 1;
}
