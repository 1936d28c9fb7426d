// CPdfFormField: new fields that viewers show and people fill.
#include <gtest/gtest.h>

#include <cstdio>
#include <limits>

#include "tests/forms/Forms.h"
#include "tests/support/TempFile.h"
#include "varnpdf/PdfFormField.h"
#include "varnpdf/result.h"

namespace {

using namespace std::literals;
using namespace varnpdf::test;

PdfNewField newField(int kind, const char* name, const char* value = "") {
    PdfNewField field{};
    field.kind = kind;
    field.name = name;
    field.x = 10;
    field.y = 20;
    field.width = 100;
    field.height = 16.5;
    field.value = value;
    return field;
}

std::string listed(CPdf& pdf) {
    CPdfForm form(&pdf);
    std::string out;
    for (int i = 0; i < form.GetFieldNum(); ++i) {
        const char* const value = form.GetValue(i);
        out += form.GetName(i) + ":"s + form.GetType(i) + ":" + std::to_string(form.GetPage(i)) +
               (value == nullptr ? " " : "="s + value + " ");
    }
    return out;
}

// A widget that the form does not list comes behind all that it lists.
constexpr const char* kLone = "<< /Subtype /Widget /FT /Tx /T (lone) /Rect [0 0 9 9] >>";

struct Source {
    const char *catalogue, *page, *form, *before;
};
// clang-format off
const Source kSources[] = {
    {"", "/Annots [9 0 R]", "null", ""},
    {"/AcroForm << >>", "/Annots 10 0 R", "null", ""},
    {"/AcroForm << /Fields [5 0 R] /SigFlags 2 /DR << /Font 11 0 R >> >>", "/Annots [5 0 R 9 0 R]", "null", "old:Tx:0=x "},
    {"/Odd (C:\\\\docs\\\\) /AcroForm 4 0 R", "/Odd (a(b)c) /Annots 10 0 R", "<< /Odd (\\\\\\)) /Fields 6 0 R /DR 7 0 R >>", "old:Tx:-1=x "},
};
// clang-format on

PdfBuilder documentOf(const Source& source) {
    PdfBuilder pdf;
    pdf.object(1, "<< /Type /Catalog /Pages 2 0 R "s + source.catalogue + " >>");
    pdf.object(2, "<< /Type /Pages /Kids [3 0 R] /Count 1 >>");
    pdf.object(3, "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 200 200] "s + source.page + " >>")
        .object(4, source.form);
    pdf.object(5, "<< /Subtype /Widget /FT /Tx /T (old) /V (x) /Rect [0 0 9 9] >>").object(6, "[5 0 R]");
    pdf.object(7, "<< /Font 11 0 R >>").object(9, kLone).object(10, "[9 0 R]").object(11, "<< /A 12 0 R >>");
    pdf.object(12, "<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica >>");
    return pdf;
}

TEST(NewFields, StandInFormAndPage) {
    for (const Source& source : kSources) {
        for (const bool stream : {false, true}) {
            PdfBuilder pdf = documentOf(source);
            OpenedPdf opened((stream ? pdf.crossReferenceStream(20) : pdf.table()).bytes());
            ASSERT_EQ(opened.code, 0);
            PdfNewField fields[] = {newField(CPdfFormField::Text, "person.name", "Grüße (1)"),
                                    newField(CPdfFormField::Text, "person.city", "a\tb"),
                                    newField(CPdfFormField::CheckBox, "box", "Yes"),
                                    newField(CPdfFormField::Signature, "sig"), newField(CPdfFormField::Image, "logo")};
            fields[0].text.family = 1;
            fields[0].tooltip = "Ihr Name";
            fields[0].flags = CPdfFormField::Required;
            ASSERT_EQ(CPdfFormField::AddFormFields(&opened.pdf, fields, 5), 0) << source.catalogue;
            OpenedPdf again(streamOf(opened.pdf));
            EXPECT_EQ(listed(again.pdf), source.before +
                                             "person.name:Tx:0=Grüße (1) person.city:Tx:0=a\tb box:Btn:0=Yes "s +
                                             "sig:Sig:0 logo:Btn:0 lone:Tx:0 ")
                << source.catalogue;
            EXPECT_NE(appended(opened).find(stream ? "/Type /XRef" : "xref\r\n"), std::string::npos);
            CPdfForm form(&again.pdf);
            EXPECT_EQ(form.SetValue("person.name", "neu"), 0);
            EXPECT_EQ(form.WriteUpdate(), 0);
            // Names that are there now.
            PdfNewField more = newField(CPdfFormField::Text, "person.street");
            EXPECT_EQ(CPdfFormField::AddFormFields(&again.pdf, &more, 1), 0);
            OpenedPdf grown(streamOf(again.pdf));
            EXPECT_NE(listed(grown.pdf).find("person.city:Tx:0=a\tb person.street:Tx:0= box"), std::string::npos)
                << listed(grown.pdf);
        }
    }
}

TEST(NewFields, TextsOfTheUpdate) {
    OpenedPdf opened(documentOf(kSources[0]).table().bytes());
    PdfNewField field = newField(CPdfFormField::Text, "a");
    std::snprintf(field.text.value, sizeof field.text.value, "b\xFC");
    std::snprintf(field.text.label, sizeof field.text.label, "Hint");
    field.value = nullptr;
    field.text.size = 9;
    field.text.family = 2;
    field.text.style = 1;
    ASSERT_EQ(CPdfFormField::AddFormFields(&opened.pdf, &field, 1), 0);
    const std::string update = appended(opened);
    EXPECT_EQ(
        update.substr(0, update.find("xref")),
        "1 0 obj\n<< /Type /Catalog /Pages 2 0 R  \r\n/AcroForm 16 0 R\r\n>>\nendobj\r\n"
        "3 0 obj\n<< /Type /Page /Parent 2 0 R /MediaBox [0 0 200 200] /Annots [9 0 R 13 0 R] >>\nendobj\r\n"
        "13 0 obj\r\n<<\r\n/Type /Annot\r\n/Subtype /Widget\r\n/FT /Tx\r\n/T (a)\r\n/P 3 0 R\r\n/TU (Hint)\r\n"
        "/Ff 0\r\n/F 4\r\n/Rect [10 20 110 36.5]\r\n/MK <</BC [0.5] /R 0>>\r\n/DA (/VarnCourBold 9 Tf 0 g)\r\n"
        "/V (b\\374)\r\n/AP <</N 15 0 R>>\r\n>>\r\nendobj\r\n"
        "16 0 obj\r\n<<\r\n/Fields [13 0 R]\r\n/DR <<\r\n/Font <<\r\n/VarnCourBold 14 0 R\r\n>>\r\n>>\r\n>>\r\nendobj\r\n"
        "14 0 obj\r\n<<\r\n/Type /Font\r\n/Subtype /Type1\r\n/BaseFont /Courier-Bold\r\n"
        "/Encoding /WinAnsiEncoding\r\n>>\r\nendobj\r\n"
        "15 0 obj\r\n<<\r\n/Type /XObject\r\n/Subtype /Form\r\n/BBox [0 0 100 16.5]\r\n"
        "/Resources <<\r\n/Font <<\r\n/VarnCourBold 14 0 R\r\n>>\r\n>>\r\n/Length 117\r\n>>\r\nstream\r\n"
        "q\n0.5 G\n1 w\n0.5 0.5 99 15.5 re\nS\nQ\n/Tx BMC\n"
        "q\n1 1 98 14.5 re\nW\nn\nBT\n0 g\n/VarnCourBold 9 Tf\n2 6 Td\n(b\\374) Tj\nET\nQ\nEMC\n"
        "\r\nendstream\r\nendobj\r\n");
}

TEST(NewFields, RefusedWithNothingWritten) {
    PdfBuilder pdf = documentOf(kSources[2]);
    pdf.object(5, "<< /T (old) /Kids [8 0 R] >>").object(8, "<< /T (below) /FT /Tx /Parent 5 0 R >>");
    const std::string bytes = pdf.table().bytes();
    const auto with = [](auto change) {
        PdfNewField field = newField(CPdfFormField::Text, "new");
        change(field);
        return field;
    };
    struct Row {
        PdfNewField field;
        int code;
    };
    const std::string longName(1001, 'n');
    const Row rows[] = {
        {with([](PdfNewField&) {}), 0},
        {with([](PdfNewField& f) { f.name = "old.new"; }), 0},
        {with([](PdfNewField& f) { f.name = "old"; }), VARNPDF_FIELD_NAME_TAKEN},
        {with([](PdfNewField& f) { f.name = "old.below"; }), VARNPDF_FIELD_NAME_TAKEN},
        {with([](PdfNewField& f) { f.name = "old.below.new"; }), VARNPDF_FIELD_NAME_TAKEN},
        {with([](PdfNewField& f) { f.name = nullptr; }), VARNPDF_FIELD_UNUSABLE},
        {with([](PdfNewField& f) { f.name = "a..b"; }), VARNPDF_FIELD_UNUSABLE},
        {with([](PdfNewField& f) { f.name = "a."; }), VARNPDF_FIELD_UNUSABLE},
        {with([&](PdfNewField& f) { f.name = longName.c_str(); }), VARNPDF_FIELD_UNUSABLE},
        {with([](PdfNewField& f) { f.kind = 4; }), VARNPDF_FIELD_UNUSABLE},
        {with([](PdfNewField& f) { f.page = -1; }), 0},
        {with([](PdfNewField& f) { f.page = 1; }), VARNPDF_PAGE_NOT_FOUND},
        {with([](PdfNewField& f) { f.page = -2; }), VARNPDF_PAGE_NOT_FOUND},
        {with([](PdfNewField& f) { f.x = 100.9; }), 0},
        {with([](PdfNewField& f) { f.x = 101; }), VARNPDF_FIELD_OUTSIDE_PAGE},
        {with([](PdfNewField& f) { f.y = -1; }), VARNPDF_FIELD_OUTSIDE_PAGE},
        {with([](PdfNewField& f) { f.height = 0; }), VARNPDF_FIELD_OUTSIDE_PAGE},
        {with([](PdfNewField& f) { f.width = std::numeric_limits<double>::quiet_NaN(); }), VARNPDF_FIELD_OUTSIDE_PAGE},
        {with([](PdfNewField& f) { f.value = "Ж"; }), VARNPDF_FIELD_VALUE_UNSHOWABLE},
        {with([](PdfNewField& f) { f.kind = CPdfFormField::Image, f.image = "/nowhere.png"; }),
         VARNPDF_IMAGE_UNREADABLE},
    };
    const TempFile in(bytes);
    const TempFile out("kept");
    for (const auto& [field, code] : rows) {
        const PdfNewField both[] = {newField(CPdfFormField::CheckBox, "first"), field};
        EXPECT_EQ(CPdfFormField::AddFormFields(in.path().c_str(), out.path().c_str(), both, 2), code)
            << (field.name == nullptr ? "" : field.name);
        EXPECT_EQ(out.read() == "kept", code != 0);
        EXPECT_EQ(out.read().starts_with(bytes), code == 0);
        out.write("kept");
    }
    EXPECT_EQ(CPdfFormField::AddFormFields(in.path().c_str(), "/nowhere/out.pdf", &rows[0].field, 1),
              VARNPDF_SAVE_FAILED);
    EXPECT_EQ(CPdfFormField::AddFormFields(in.path().c_str(), out.path().c_str(), nullptr, 1), VARNPDF_INDEX_NEGATIVE);
    pdf.object(9, "<< /Type /Annot /Subtype /Widget /FT /Sig /T (s) /V 13 0 R /Lock 14 0 R >>");
    pdf.object(13, "<< /Type /Sig >>").object(14, "<< /Type /SigFieldLock /Action /All >>");
    OpenedPdf locked(pdf.table().bytes());
    EXPECT_EQ(CPdfFormField::AddFormFields(&locked.pdf, &rows[0].field, 1), VARNPDF_LOCKED);
}

}  // namespace
