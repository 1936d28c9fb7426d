// The field classes with the rules that their interface fixes.
#include <gtest/gtest.h>

#include "tests/forms/Forms.h"
#include "tests/support/TempFile.h"
#include "varnpdf/PdfDoc.h"

namespace {

using namespace std::literals;
using namespace varnpdf::test;

using Container = std::unique_ptr<CPdfFieldContainer>;

std::string listed(CPdfFieldContainer& container) {
    std::string out;
    for (int i = 0; i < container.GetFieldNum(); ++i) {
        CPdfField& field = *container.GetFields(i);
        out += field.GetTag() + "="s + field.GetOrgValue() + "|" + field.GetAppearanceLink() + "|" +
               (field.GetFont() == nullptr ? "-" : field.GetFont()->GetRefNum()) + "|" +
               std::to_string(field.GetAppearanceCount()) + "\n";
    }
    return out;
}

TEST(Fonts, ListedFromTheResourcesText) {
    struct Row {
        const char *text, *fonts, *defaultFont;
    };
    // clang-format off
    const Row rows[] = {
        {"<</DR<</Font<</Helv 5 0 R/ZaDb 6 0 R>>>>/DA(/ZaDb 0 Tf)>>", "Helv:5 0 R ZaDb:6 0 R ", "ZaDb"},
        {"<</DR<</Font<</Helv 5 0 R >>/Encoding<</PDFDocEncoding 7 0 R>>>>/DA(/helv 0 Tf)>>",
         "Helv:5 0 R Encoding<<: PDFDocEncoding:7 0 R ", "-"},
        {"<</DR<</ProcSet[/PDF]>>>>", "", "-"},
        {"<</DR<</Font<<", "none", "-"},
        {"<</DA(/Helv 0 Tf)>>", "none", "-"},
    };
    // clang-format on
    for (const auto& [text, fonts, defaultFont] : rows) {
        CAcroFormObj form;
        form.setContent(text);
        const std::unique_ptr<CPdfFontContainer> container(form.ReadFontContainer());
        std::string found = container ? "" : "none";
        for (int i = 0; container && i < container->GetFontNum(); ++i) {
            const CFontObj& font = container->GetFontObj()[i];
            found += font.GetShortName() + ":"s + font.GetRefNum() + " ";
        }
        EXPECT_EQ(found, fonts) << text;
        CFontObj* const chosen = container ? container->GetDefaultFont() : nullptr;
        EXPECT_STREQ(chosen == nullptr ? "-" : chosen->GetShortName(), defaultFont) << text;
    }
}

TEST(Fonts, ContainerKeepsItsOwnCopies) {
    CPdfFontContainer fonts;
    for (const char* const name : {"A", "B", "A"}) {
        auto* const font = new CFontObj;  // the container deletes it
        font->SetShortName(name);
        font->SetRefNum(std::to_string(fonts.GetFontNum()).c_str());
        fonts.AddFont(font);
        if (fonts.GetFontNum() == 2) fonts.SetDefaultFont(fonts.GetFontByShortName("B"));
    }
    EXPECT_STREQ(fonts.GetFontByShortName("A")->GetRefNum(), "0");
    EXPECT_EQ(fonts.GetFontByShortName("a"), nullptr);
    EXPECT_EQ(fonts.GetDefaultFont(), fonts.GetFontObj() + 1);  // also after growing
    CFontObj foreign;
    fonts.SetDefaultFont(&foreign);
    EXPECT_EQ(fonts.GetDefaultFont(), nullptr);
}

TEST(Fields, ReadByTheRulesOfTheObjects) {
    const std::string longValue(30'000, 'x');
    PdfBuilder pdf = formDocument("5 0 R 6 0 R 7 0 R 8 0 R 9 0 R", "");
    pdf.object(5, "<< /FT /Tx /T  ( Name )  /V (a\\)b) /DA (/Helv 0 Tf 0 g) /AP << /N 10 0 R /D 11 0 R>> >>");
    pdf.object(6, "<< /FT /Tx /T <4142> /V (no literal name) >>");
    pdf.object(7, "<< /FT /Tx /T (Long) /V (" + longValue + ") /DA (/None 9 Tf) /AP 13 0 R >>");
    pdf.object(8, "<< /FT /Tx /T (Ref) /V 12 0 R /AP << /N 99 0 R >> >>");
    pdf.object(9, "<< /FT /Btn /T (Wide) /V (\xFE\xFF\0A\0B) >>"sv);
    pdf.stream(10, "/BBox [0 0 9 9]", "/Tx BMC EMC").stream(11, "/BBox [0 0 9 9]", "down");
    pdf.object(12, "(held)").object(13, "<</N 10 0 R>>").object(14, "<< /T (last slot) >>");
    OpenedPdf opened(pdf.table().bytes());
    ASSERT_EQ(opened.code, 0);
    EXPECT_EQ(opened.pdf.GetObjWithFieldsEntry()->GetObjNum(), 1);
    const Container container(opened.pdf.ReadFields());
    EXPECT_EQ(listed(*container), " Name =a\\)b|<< /N 10 0 R /D 11 0 R>>|4 0 R|2\nLong=" + longValue +
                                      "|13 0 R|-|1\nRef=held|<< /N 99 0 R >>|-|0\nWide=\xFE\xFF||-|0\n");
    EXPECT_EQ(container->GetFields(3)->orgValue(), "\xFE\xFF\0A\0B"sv);
    EXPECT_EQ(container->GetFields(0)->GetAppearanceObj(1)->GetObjNum(), 11);
    EXPECT_EQ(container->GetFields(4), nullptr);
    const TempFile dump;
    container->DumpFieldsToFile(dump.path().c_str());
    EXPECT_EQ(dump.read(), "FieldCount=3\r\n Name =a\\)b\r\nLong=" + longValue + "\r\nRef=held\r\n");
}

TEST(Fields, FormInAnObjectOfItsOwn) {
    PdfBuilder pdf = smallDocument();
    pdf.object(1, "<< /Type /Catalog /Pages 2 0 R /AcroForm 4 0 R >>");
    pdf.object(4, "<< /Fields [6 0 R] /DR 5 0 R /DA (/F 0 Tf) >>").object(5, "<< /Font << /F 9 0 R >> >>");
    pdf.object(6, "<< /T (a) >>").object(7, "null");
    OpenedPdf opened(pdf.table().bytes());
    EXPECT_EQ(opened.pdf.GetObjWithFieldsEntry()->GetObjNum(), 4);
    const Container container(opened.pdf.ReadFields());
    EXPECT_STREQ(container->GetFontContainer()->GetDefaultFont()->GetRefNum(), "9 0 R");
    OpenedPdf none(smallDocument().table().bytes());
    EXPECT_EQ(none.pdf.GetObjWithFieldsEntry(), nullptr);
    EXPECT_EQ(Container(none.pdf.ReadFields())->GetFieldNum(), 0);
}

TEST(Fields, ChangedWhenAnotherValueWasSet) {
    struct Row {
        const char *before, *after;
        int changed;
    };
    for (const auto& [before, after, changed] :
         {Row{"a", "b", 1}, {"a", "a", 0}, {"a", "", 1}, {"", "b", 1}, {nullptr, "b", 0}, {"a", nullptr, 0}}) {
        CPdfField field(0);
        field.SetOrgValue(before);
        field.SetNewValue(after);
        EXPECT_EQ(field.CheckForChanges(), changed);
        EXPECT_EQ(field.GetIsNew(), changed);
    }
}

TEST(Fields, IniLinesRenameFields) {
    const TempFile file("Name1=Value1\n=A==B=C\nName2\nD=\nE=" + std::string(300, 'e') + "\nF=x");
    CPdfFieldContainer container;
    for (const char* const tag : {"Name1", "A", "Name2", "D", "E", "F", "Name1"}) {
        CPdfField field(0);
        field.SetTag(tag);
        container.AddField(&field);
    }
    EXPECT_EQ(container.ReadNewValuesFromIniFile(file.path().c_str()), 0);
    std::string tags;
    for (int i = 0; i < container.GetFieldNum(); ++i) tags += container.GetFields(i)->GetTag() + " "s;
    EXPECT_EQ(tags, "Value1 B Name2  " + std::string(252, 'e') + " x Value1 ");
    EXPECT_EQ(container.GetFields(0)->GetNewValue(), nullptr);
    EXPECT_EQ(container.ReadNewValuesFromIniFile("/nowhere/values"), -1);
}

TEST(Fields, NewValuesReachObjectsAndAppearances) {
    for (const bool packed : {false, true}) {
        PdfBuilder pdf = formDocument("5 0 R 6 0 R", "5 0 R");
        pdf.object(5, "<< /FT /Tx /T (a) /V (old) /DA (/Helv 9 Tf) /AP << /N 7 0 R>> >>");
        pdf.object(6, "<< /FT /Tx /T (b) /V (kept) /AP << /N 7 0 R>> >>");
        pdf.stream(7, "/BBox [0 0 99 20]", "q /Tx BMC BT /Helv 9 Tf 2 3 Td (old) Tj ET EMC Q", {.deflate = packed});
        pdf.stream(8, "/BBox [0 0 99 20]", "/Tx BMC EMC", {.deflate = packed}).object(9, "null");
        OpenedPdf opened(pdf.table().bytes());
        const Container container(opened.pdf.ReadFields());
        container->GetFields(0)->SetNewValue("f(ü)");
        container->GetFields(1)->SetNewValue("kept");
        container->PutNewValuesToFields();
        opened.pdf.ResetByteStream(0);
        opened.pdf.WriteOld2ByteStream();
        CPdfXRefContainer xrefs;
        EXPECT_EQ(opened.pdf.AppendObjects(nullptr, &xrefs, container.get()), 2);
        opened.pdf.WriteTrailer(&xrefs, opened.pdf.GetUpdateTrailer(), true, false);
        EXPECT_EQ(xrefs.GetXRefNum(), 2);
        OpenedPdf filled(streamOf(opened.pdf));
        ASSERT_EQ(filled.code, 0);
        EXPECT_NE(filled.body(5).find(R"(/V (f\(\374\)))"), std::string::npos) << filled.body(5);
        EXPECT_NE(filled.body(6).find("/V (kept)"), std::string::npos);
        CPdfObj& appearance = *filled.pdf.get_pdf_obj_from_map(7);
        EXPECT_EQ(appearance.content().find("/FlateDecode") != std::string::npos, packed);
        EXPECT_EQ(appearance.ReplaceStream(nullptr, -1), -1802);
        // An appearance that showed nothing gets a line; without a mark only text that is there can be replaced.
        CPdfObj& empty = *filled.pdf.get_pdf_obj_from_map(8);
        EXPECT_EQ(empty.ReplaceValue("x", nullptr, 0), -1801);
        EXPECT_EQ(empty.ReplaceValue("x", nullptr, 1), 0);
        unsigned char plain[] = "(old) Tj";
        EXPECT_EQ(appearance.ReplaceStream(plain, 8), 0);
        EXPECT_EQ(appearance.ReplaceValue("new", nullptr, 0), 0);
        if (packed) continue;
        EXPECT_EQ(filled.body(7), "<< /BBox [0 0 99 20] /Length 8 >>\r\nstream\r\n(new) Tj\r\nendstream");
        EXPECT_NE(filled.body(8).find("/Helv 12 Tf\n2 7 Td\n(x) Tj"), std::string::npos) << filled.body(8);
    }
}

TEST(Fields, OfTextsForOneAppearanceTheLastIsWritten) {
    PdfBuilder pdf = formDocument("5 0 R 6 0 R", "");
    pdf.object(5, "<< /FT /Tx /T (a) /V (old) /AP << /N 7 0 R>> >>");
    pdf.object(6, "<< /FT /Tx /T (b) /V (old) /AP << /N 7 0 R>> >>");
    pdf.stream(7, "/BBox [0 0 99 20]", "/Tx BMC (old) Tj EMC").object(8, "null");
    OpenedPdf opened(pdf.table().bytes());
    const Container container(opened.pdf.ReadFields());
    container->GetFields(0)->SetNewValue("first");
    container->GetFields(1)->SetNewValue("second");
    container->PutNewValuesToFields();
    opened.pdf.WriteOld2ByteStream();
    CPdfXRefContainer xrefs;
    EXPECT_EQ(opened.pdf.AppendObjects(nullptr, &xrefs, container.get()), 2);
    EXPECT_EQ(xrefs.GetXRefNum(), 3);
    opened.pdf.WriteTrailer(&xrefs, opened.pdf.GetUpdateTrailer(), true, false);
    EXPECT_NE(OpenedPdf(streamOf(opened.pdf)).body(7).find("(second) Tj"), std::string::npos);
}

TEST(Fields, ManyFieldsTakeLinearTime) {
    PdfBuilder pdf = formDocument("", "");
    constexpr int kMany = 20'000;
    for (int i = 0; i < kMany; ++i) pdf.object(6 + i, "<</FT/Tx/T(stampDate)/V()/AP<</N 5 0 R>>>>");
    pdf.stream(5, "/BBox[0 0 9 9]", std::string(100'000, ' '));
    OpenedPdf opened(pdf.table().bytes());
    const Container container(opened.pdf.ReadFields());
    EXPECT_EQ(container->GetFieldNum(), kMany - 1);
    CPdfDoc doc;
    EXPECT_EQ(doc.MergePKCS7PDF(&opened.pdf, nullptr, "D:20261115"s.data()), 0);
    EXPECT_EQ(OpenedPdf(streamOf(opened.pdf)).code, 0);
}

TEST(Fields, SharedObjectsAreReadOnce) {
    constexpr int kMany = 5'000;
    std::string fonts;
    for (int i = 0; i < 100'000; ++i) fonts += "/a 4 0 R";
    PdfBuilder pdf = formDocument("", "", "/DR<</Font<<" + fonts + "/Late 4 0 R>>>>");
    pdf.object(5, "(" + std::string(1'000'000, 'x') + ")");
    std::string keys;
    for (int i = 0; i < 500'000; ++i) keys += "/q";
    pdf.object(6, "<</X(" + keys + ")>>");
    for (int i = 0; i < kMany; ++i) pdf.object(10 + i, "<</FT/Tx/T(a)/V 5 0 R/AP 6 0 R/DA(/a 0 Tf)>>");
    OpenedPdf opened(pdf.table().bytes());
    const Container container(opened.pdf.ReadFields());
    ASSERT_EQ(container->GetFieldNum(), kMany - 1);
    EXPECT_EQ(container->GetFields(0)->orgValue().size(), 1'000'000);
    EXPECT_EQ(container->GetFields(0)->GetFont(), container->GetFontContainer()->GetFontObj());
    std::size_t bytes = 0;
    for (int i = 0; i < container->GetFieldNum(); ++i) bytes += container->GetFields(i)->orgValue().size();
    EXPECT_LT(bytes, 200'000'000);
}

TEST(Merge, StampFieldsGetDateAndAuthority) {
    PdfBuilder pdf = formDocument("5 0 R 6 0 R", "7 0 R 6 0 R");
    pdf.object(5, "<< /FT /Tx /T (stampDate) /Ff 1 /Kids [7 0 R] >>");
    pdf.object(6, "<< /Subtype /Widget /FT /Tx /T (stampAuthority) /V (TSA) /Rect [0 0 99 20] >>");
    pdf.object(7, "<< /Subtype /Widget /Parent 5 0 R /Rect [0 0 99 20] >>").object(8, "null");
    const std::string bytes = pdf.table().bytes();
    OpenedPdf opened(bytes);
    CPdfDoc doc;
    EXPECT_EQ(doc.MergePKCS7PDF(&opened.pdf, "TSA"s.data(), "D:20261115022406Z"s.data()), 0);
    OpenedPdf merged(streamOf(opened.pdf));
    EXPECT_NE(merged.body(5).find("/V (15-11-2026)"), std::string::npos) << merged.body(5);
    EXPECT_NE(merged.body(7).find("/AP <</N 9 0 R>>"), std::string::npos) << merged.body(7);
    EXPECT_NE(merged.body(9).find("(15-11-2026) Tj"), std::string::npos) << merged.body(9);
    EXPECT_EQ(appended(opened).find("6 0 obj"), std::string::npos);
    EXPECT_TRUE(streamOf(opened.pdf).starts_with(bytes));
    // Nothing to change: the old bytes alone.
    OpenedPdf same(merged.file.read());
    EXPECT_EQ(doc.MergePKCS7PDF(&same.pdf, "TSA"s.data(), "D:20261115"s.data()), 0);
    EXPECT_EQ(streamOf(same.pdf), merged.file.read());
    OpenedPdf none(smallDocument().table().bytes());
    EXPECT_EQ(doc.MergePKCS7PDF(&none.pdf, nullptr, nullptr), -1016);
}

TEST(Entries, AreEnumerated) {
    struct Row {
        std::string_view text, entries;
    };
    // clang-format off
    const Row rows[] = {
        {"5 0 obj\n<</A 1/B (x/C)/D<</E 1>>/F[/G]/H 6 0 R >>\nendobj", "/A=1@13 /B=(x/C)@17 /D=<</E 1>>@24 /F=[/G]@34 /H=6 0 R@41 "},
        {"<</A/B/C>>", "/A=/B@4 /C=@8 "},      // the name "/C" would be the value of a key
        {"<<>>", ""},
        {"<</A (open", ""},
        {"", ""},
    };
    // clang-format on
    for (const auto& [text, entries] : rows) {
        std::string copy(text), key(text.size() + 1, 0), value(text.size() + 1, 0), found;
        const int len = static_cast<int>(text.size());
        int at = 0, keyPos = 0, valuePos = 0, endPos = 0;
        while (CPdfObj::ReadNextDictionaryEntry(copy.data(), len, at, key.data(), value.data(), &keyPos, &valuePos,
                                                &endPos) == 1) {
            found += key.c_str() + "="s + value.c_str() + "@" + std::to_string(at + valuePos) + " ";
            at += endPos;
        }
        EXPECT_EQ(found, entries);
    }
}

}  // namespace
