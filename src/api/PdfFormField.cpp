// CPdfFormField: the exported face of new fields.
#include "varnpdf/PdfFormField.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "api/UpdateOutput.h"
#include "forms/NewFields.h"
#include "support/Guarded.h"
#include "support/Loggers.h"
#include "support/StagedFile.h"
#include "syntax/Encoding.h"
#include "varnpdf/result.h"

using namespace varnpdf;

namespace {

std::u32string textOf(const char* utf8, std::string_view winAnsi) {
    if (utf8 != nullptr) return fromUtf8OrLatin1(utf8);
    std::u32string out;
    for (const char code : winAnsi.substr(0, winAnsi.find('\0'))) {
        out.push_back(winAnsiEncoding()[static_cast<unsigned char>(code)]);
    }
    return out;
}

std::optional<NewField> fieldOf(const PdfNewField& record) {
    if (record.kind < CPdfFormField::Text || record.kind > CPdfFormField::Signature) return std::nullopt;
    NewField field;
    field.kind = static_cast<FieldKind>(record.kind);
    field.name = record.name == nullptr ? "" : toUtf8(fromUtf8OrLatin1(record.name));
    field.page = record.page;
    field.place = {record.x, record.y, record.width, record.height};
    field.flags = static_cast<unsigned>(record.flags);
    field.value = textOf(record.value, {record.text.value, sizeof record.text.value});
    field.tooltip = textOf(record.tooltip, {record.text.label, sizeof record.text.label});
    field.image = record.image == nullptr ? "" : record.image;
    field.family = record.text.family;
    field.style = record.text.style;
    field.size = record.text.size;
    return field;
}

int addAll(NewFields& form, std::span<const PdfNewField> records) {
    for (const PdfNewField& record : records) {
        const auto field = fieldOf(record);
        const int code = field ? form.add(*field) : VARNPDF_FIELD_UNUSABLE;
        if (code == VARNPDF_OK) continue;
        logError(loggers::form, "AddFormFields ABBRUCH: ", code, " ", record.name == nullptr ? "" : record.name);
        return code;
    }
    return form.write();
}

int addToFile(const char* input, const char* output, std::span<const PdfNewField> records) {
    CPdf pdf;
    int code = pdf.Open(input, "rb");
    if (code != VARNPDF_OK) return code;
    pdf.Close();
    NewFields form(documentOf(pdf));
    code = addAll(form, records);
    if (code != VARNPDF_OK) return code;
    StagedFile file(output);
    if (!file.isOpen()) return VARNPDF_SAVE_FAILED;
    file.write(documentOf(pdf).view());
    for (const std::string_view piece : form.pieces()) file.write(piece);
    return file.commit() ? VARNPDF_OK : VARNPDF_SAVE_FAILED;
}

}  // namespace

int CPdfFormField::AddFormFields(const char* input, const char* output, const PdfNewField* fields, int count) {
    if (input == nullptr || output == nullptr || fields == nullptr || count < 1) return VARNPDF_INDEX_NEGATIVE;
    return guarded([&]() -> int { return addToFile(input, output, {fields, static_cast<std::size_t>(count)}); });
}

int CPdfFormField::AddFormFields(CPdf* pdf, const PdfNewField* fields, int count) {
    if (pdf == nullptr || fields == nullptr || count < 1) return VARNPDF_INDEX_NEGATIVE;
    return guarded([&]() -> int {
        NewFields form(documentOf(*pdf));
        const int code = addAll(form, {fields, static_cast<std::size_t>(count)});
        if (code == VARNPDF_OK) writeOutput(*pdf, form.pieces());
        return code;
    });
}
