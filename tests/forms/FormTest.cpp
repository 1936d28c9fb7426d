// CPdfForm: the fields as viewers see them, and filling them.
#include <gtest/gtest.h>

#include "tests/forms/Forms.h"
#include "varnpdf/PdfDoc.h"
#include "varnpdf/result.h"

namespace {

using namespace std::literals;
using namespace varnpdf::test;

std::string listed(CPdf& pdf) {
    CPdfForm form(&pdf);
    std::string out;
    for (int i = 0; i < form.GetFieldNum(); ++i) {
        out += form.GetName(i) + ":"s + form.GetType(i) + ":" + std::to_string(form.GetFlags(i)) + ":" +
               std::to_string(form.GetPage(i)) + ":" + std::to_string(form.GetWidgetNum(i));
        const char* const value = form.GetValue(i);
        out += value == nullptr ? " " : "="s + value + " ";
    }
    return out;
}

TEST(Form, FieldsAreThoseThatViewersShow) {
    PdfBuilder pdf = formDocument("5 0 R 9 0 R 10 0 R 11 0 R 12 0 R 9 0 R", "6 0 R 14 0 R 15 0 R 3 0 R 16 0 R");
    // Attributes come from above; kids without a name are widgets.
    pdf.object(5, "<< /T (a) /FT /Tx /Ff 4096 /V (up) /Kids [6 0 R 7 0 R 5 0 R] >>");
    pdf.object(6, "<< /T (b\\(1\\)) /Parent 5 0 R /Subtype /Widget /Rect [0 0 9 9] >>");
    pdf.object(7, "<< /T <FEFF00FC> /Ff 0 /V 8 0 R /Kids [13 0 R 14 0 R] >>").object(8, "<FEFF20AC>");
    pdf.object(9, "<< /T 17 0 R /FT /Btn /Ff 32768 /V /On#20e >>");
    pdf.object(10, "<< /T (c) /FT /Ch /V [(x) (y)] >>");
    pdf.object(11, "<< /T (s) /FT /Sig /V << /Type /Sig >> >>");
    pdf.object(12, "<< /FT /Tx /V 18 0 R >>");
    pdf.object(13, "<< /Parent 7 0 R /Subtype /Widget >>").object(14, "<< /Parent 7 0 R /Subtype /Widget >>");
    // Widgets on the page that the form does not list, one below a field of its own.
    pdf.object(15, "<< /Subtype /Widget /Parent 19 0 R >>").object(16, "<< /Subtype /Widget /T (o) /FT /Tx >>");
    pdf.object(17, "(by reference)")
        .stream(18, "", "text in a stream")
        .object(19, "<< /T (p) /FT /Tx /Kids [15 0 R] >>");
    OpenedPdf opened(pdf.table().bytes());
    ASSERT_EQ(opened.code, 0);
    EXPECT_EQ(listed(opened.pdf),
              "a.b(1):Tx:4096:0:1=up a.ü:Tx:0:-1:2=€ by reference:Btn:32768:-1:1=On e c:Ch:0:-1:1=x\ny "
              "s:Sig:0:-1:1= :Tx:0:-1:1=text in a stream p:Tx:0:0:1 o:Tx:0:0:1 ");
    CPdfForm form(&opened.pdf);
    EXPECT_EQ(form.GetName(8), nullptr);
    EXPECT_EQ(form.GetFlags(-1), -1);
    OpenedPdf none(smallDocument().table().bytes());
    EXPECT_EQ(listed(none.pdf), "");
}

/// The document filled and read again, with the code of the last value.
struct Filled {
    Filled(const std::string& bytes, std::initializer_list<std::pair<const char*, const char*>> values) : old(bytes) {
        CPdfForm form(&old.pdf);
        for (const auto& [name, value] : values) code = form.SetValue(name, value);
        EXPECT_EQ(form.WriteUpdate(), 0);
        update = appended(old);
        again = std::make_unique<OpenedPdf>(streamOf(old.pdf));
        EXPECT_EQ(again->code, 0);
    }
    OpenedPdf old;
    int code = 0;
    std::string update;
    std::unique_ptr<OpenedPdf> again;
};

TEST(Form, UpdateIsReadable) {
    PdfBuilder pdf = formDocument("5 0 R", "5 0 R", "/XFA [] /NeedAppearances false");
    pdf.object(5,
               "<< /Subtype /Widget /FT /Tx /T (a) /V (old) /RV (rich) /Rect [10 10 110 30] "
               "/MK << /BG [1 1 0] /BC [0] >> >>");
    const std::string bytes = pdf.table().bytes();
    const Filled filled(bytes.substr(0, bytes.size() - 1), {{"a", "first"}, {"a", "Grüße"}});
    EXPECT_EQ(filled.update.substr(0, filled.update.find("xref")),
              "\r\n1 0 obj\n<< /Type /Catalog /Pages 2 0 R /AcroForm << /Fields [5 0 R] /DA (/Helv 0 Tf 0 g) /DR << "
              "/Font << /Helv 4 0 R >> >>  /NeedAppearances false >> >>\nendobj\r\n"
              "5 0 obj\n<< /Subtype /Widget /FT /Tx /T (a) /V (Gr\\374\\337e)  /Rect [10 10 110 30] "
              "/MK << /BG [1 1 0] /BC [0] >> \r\n/AP <</N 6 0 R>>\r\n>>\nendobj\r\n"
              "6 0 obj\r\n<<\r\n/Type /XObject\r\n/Subtype /Form\r\n/BBox [0 0 100 20]\r\n"
              "/Resources <<\r\n/Font <<\r\n/Helv 4 0 R\r\n>>\r\n>>\r\n/Length 144\r\n>>\r\nstream\r\n"
              "q\n1 1 0 rg\n0 0 100 20 re\nf\nQ\nq\n0 G\n1 w\n0.5 0.5 99 19 re\nS\nQ\n/Tx BMC\n"
              "q\n1 1 98 18 re\nW\nn\nBT\n0 g\n/Helv 12.6 Tf\n2 6.85 Td\n(Gr\\374\\337e) Tj\nET\nQ\nEMC\n"
              "\r\nendstream\r\nendobj\r\n");
    EXPECT_NE(filled.update.find("xref\r\n1 1 \r\n"), std::string::npos);
    EXPECT_NE(filled.update.find("\r\n5 2 \r\n"), std::string::npos);
    EXPECT_EQ(listed(filled.again->pdf), "a:Tx:0:0:1=Grüße ");
}

TEST(Form, AppearancesKeepWhatIsAroundTheText) {
    for (const bool packed : {false, true}) {
        PdfBuilder pdf = formDocument("5 0 R", "6 0 R 7 0 R");
        // Two widgets share one appearance; then each needs its own.
        pdf.object(5, "<< /FT /Tx /T (a) /DA (/F 9 Tf 1 0 0 rg) /Kids [6 0 R 7 0 R] >>");
        pdf.object(6, "<< /Subtype /Widget /V (old) /Rect [0 0 50 20] /AP << /N 8 0 R /D 8 0 R >> >>");
        pdf.object(7, "<< /Subtype /Widget /Rect [0 0 90 20] /Q 2 /AP << /N 8 0 R >> /MK << /R 90 >> >>");
        pdf.stream(8, "/BBox [0 0 50 20] /Resources 9 0 R", "1 g f /Tx BMC (old) Tj EMC 0 G S", {.deflate = packed});
        pdf.object(9, "<< /Font << /F 4 0 R >> /ProcSet [/PDF] >>");
        const Filled filled(pdf.crossReferenceStream(20).bytes(), {{"a", "x"}});
        EXPECT_EQ(filled.again->body(8).find("(x)"), std::string::npos);
        EXPECT_EQ(filled.again->body(6).find("/V"), std::string::npos);
        for (const int widget : {6, 7}) {
            CPdfObj* const stream = filled.again->pdf.get_pdf_obj_from_map(widget + 15);
            ASSERT_NE(stream, nullptr);
            EXPECT_NE(filled.again->body(widget).find("/AP <</N " + std::to_string(widget + 15) + " 0 R>>"),
                      std::string::npos);
            EXPECT_NE(stream->content().find("/Resources 9 0 R"), std::string_view::npos);
            EXPECT_EQ(stream->content().find("/FlateDecode") != std::string_view::npos, packed);
            if (packed) continue;
            EXPECT_NE(stream->content().find("1 g f /Tx BMC\nq\n1 1 48 18 re"), std::string_view::npos);
            EXPECT_NE(
                stream->content().find("1 0 0 rg\n/F 9 Tf\n" + (widget == 6 ? "2"s : "43.5"s) + " 7.75 Td\n(x) Tj"),
                std::string_view::npos)
                << stream->content();
            EXPECT_NE(stream->content().find("Q\nEMC 0 G S"), std::string_view::npos);
        }
        EXPECT_NE(filled.update.find("\r\nxref\r\n"), std::string::npos);  // a table also behind a stream
    }
}

TEST(Form, TurnedFieldsAreLaidOutUpright) {
    const std::string rows[][2] = {
        {"0", "/BBox [0 0 100 20]\r\n/Resources"},
        {"90", "/BBox [0 0 20 100]\r\n/Matrix [0 1 -1 0 100 0]"},
        {"180", "/BBox [0 0 100 20]\r\n/Matrix [-1 0 0 -1 100 20]"},
        {"-90", "/BBox [0 0 20 100]\r\n/Matrix [0 -1 1 0 0 20]"},
    };
    for (const auto& [rotation, frame] : rows) {
        PdfBuilder pdf = formDocument("5 0 R", "5 0 R");
        pdf.object(5, "<< /Subtype /Widget /FT /Tx /T (a) /Rect [10 10 110 30] /MK << /R " + rotation + " >> >>");
        const Filled filled(pdf.table().bytes(), {{"a", "x"}});
        EXPECT_NE(filled.update.find(frame), std::string::npos) << rotation << filled.update;
    }
}

TEST(Form, FontsThatLackACharacterAreReplaced) {
    struct Row {
        const char *appearance, *value, *font, *shown;
    };
    // clang-format off
    const Row rows[] = {
        {"/Helv 9 Tf", "ä(\\)", "/Helv 4 0 R", "(\\344\\(\\134\\)) Tj"},
        {"/Sub 9 Tf", "AB", "/Sub 6 0 R", "(AB) Tj"},
        {"/Sub 9 Tf", "C", "/VarnHelv 8 0 R", "/VarnHelv 9 Tf"},     // not in the subset
        {"/Gone 9 Tf", "A", "/VarnHelv 8 0 R", "(A) Tj"},
        {"", "A", "/VarnHelv 8 0 R", "(A) Tj"},
        {"/Helv 9 Tf", "Ж", "-", "-"},                               // left to the viewer
    };
    // clang-format on
    for (const auto& [appearance, value, font, shown] : rows) {
        PdfBuilder pdf = formDocument("5 0 R", "5 0 R");
        pdf.object(
            5, "<< /Subtype /Widget /FT /Tx /T (a) /Rect [0 0 99 20] /DA ("s + appearance + ") /AP << /N 7 0 R >> >>");
        pdf.object(6, "<< /Subtype /TrueType /BaseFont /AAAAAA+X /FirstChar 65 /Widths [500 500 0] >>");
        pdf.stream(7, "/BBox [0 0 99 20] /Resources << /Font << /Sub 6 0 R >> >>", "/Tx BMC EMC");
        const Filled filled(pdf.table().bytes(), {{"a", value}});
        const std::string stream = filled.again->body(7).data();
        if (*font == '-') {
            EXPECT_EQ(filled.again->body(5).find("/AP"), std::string::npos);
            EXPECT_NE(filled.again->body(1).find("/NeedAppearances true"), std::string::npos);
            continue;
        }
        EXPECT_NE(stream.find(font), std::string::npos) << stream;
        EXPECT_NE(stream.find(shown), std::string::npos) << stream;
    }
}

TEST(Form, StringsBeforeAnEntryHideNothing) {
    for (const std::string odd : {"/Odd (C:\\\\docs\\\\) ", "/Odd (\\\\\\)) ", "/Odd (a(b)c) "}) {
        PdfBuilder pdf;
        pdf.object(1, "<< " + odd + "/Type /Catalog " + odd + "/Pages 2 0 R /AcroForm 7 0 R >>");
        pdf.object(2, "<< /Type /Pages /Kids [3 0 R] /Count 1 >>");
        pdf.object(3, "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 200 200] " + odd + "/Annots [6 0 R] >>");
        pdf.object(4, "<< /Type /Font /Subtype /Type1 " + odd + "/BaseFont /Helvetica /Encoding /WinAnsiEncoding >>");
        pdf.object(5, "<< " + odd + "/FT /Tx /T (a) " + odd + "/Kids [6 0 R] >>");
        pdf.object(6, "<< /T (stampDate) /V (old) " + odd + "/Subtype /Widget /Parent 5 0 R /Rect [0 0 99 20] >>");
        pdf.object(7, "<< " + odd + "/Fields [5 0 R] /DA (/F 0 Tf) " + odd + "/DR << /Font << /F 4 0 R >> >> >>");
        pdf.object(8, "null");
        const Filled filled(pdf.table().bytes(), {{"a.stampDate", "x"}});
        EXPECT_EQ(filled.code, 0) << odd;
        EXPECT_EQ(listed(filled.again->pdf), "a.stampDate:Tx:0:0:1=x ") << odd;
        EXPECT_NE(filled.again->body(9).find("/F 4 0 R"), std::string::npos) << filled.again->body(9);
        // The readers of single fields find the form and its fonts as well.
        OpenedPdf opened(pdf.bytes());
        const std::unique_ptr<CPdfFieldContainer> fields(opened.pdf.ReadFields());
        ASSERT_NE(fields->GetFontContainer(), nullptr) << odd;
        EXPECT_STREQ(fields->GetFontContainer()->GetFontByShortName("F")->GetRefNum(), "4 0 R") << odd;
        EXPECT_EQ(CPdfDoc().MergePKCS7PDF(&opened.pdf, nullptr, "D:20261115"s.data()), 0);
        OpenedPdf stamped(streamOf(opened.pdf));
        EXPECT_EQ(listed(stamped.pdf), "a.stampDate:Tx:0:0:1=15-11-2026 ") << odd;
    }
}

TEST(Form, EachUpdateHoldsAllValues) {
    PdfBuilder pdf = formDocument("5 0 R 6 0 R", "");
    pdf.object(5, "<< /FT /Tx /T (a) >>").object(6, "<< /FT /Tx /T (b) >>");
    OpenedPdf opened(pdf.table().bytes());
    CPdfForm form(&opened.pdf);
    EXPECT_EQ(form.WriteUpdate(), 0);
    EXPECT_EQ(appended(opened), "");
    for (const char* const name : {"a", "b"}) {
        EXPECT_EQ(form.SetValue(name, "x"), 0);
        EXPECT_EQ(form.WriteUpdate(), 0);
    }
    OpenedPdf again(streamOf(opened.pdf));
    EXPECT_EQ(listed(again.pdf), "a:Tx:0:-1:1=x b:Tx:0:-1:1=x ");
}

TEST(Form, RefusesWhatMustNotChange) {
    PdfBuilder pdf = formDocument("5 0 R 6 0 R 7 0 R 8 0 R 9 0 R 10 0 R", "5 0 R");
    pdf.object(5, "<< /FT /Tx /T (read-only) /Ff 1 >>").object(6, "<< /FT /Btn /T (button) >>");
    pdf.object(7, "<< /FT /Tx /T (short) /MaxLen 2 >>");
    pdf.object(8, "<< /FT /Tx /T (locked) /Kids [11 0 R] >>").object(11, "<< /T (below) /Parent 8 0 R >>");
    pdf.object(9, "<< /FT /Sig /T (s) /V 12 0 R >>").object(10, "<< /FT /Tx /T (free) >>");
    pdf.object(12, "<< /Type /Sig /Reference [<< /TransformMethod /FieldMDP /TransformParams 13 0 R >>] >>");
    pdf.object(13, "<< /Type /TransformParams /Action /Include /Fields [(locked)] >>");
    struct Row {
        const char *name, *value;
        int code;
    };
    const Row rows[] = {{"read-only", "x", VARNPDF_FIELD_READ_ONLY},
                        {"button", "x", VARNPDF_FIELD_NO_TEXT},
                        {"short", "äöü", VARNPDF_FIELD_VALUE_TOO_LONG},
                        {"short", "äö", 0},
                        {"locked.below", "x", VARNPDF_FIELD_LOCKED},
                        {"below", "x", VARNPDF_FIELD_MISSING},
                        {"free", "x", 0},
                        {"Free", "x", VARNPDF_FIELD_MISSING}};
    const std::string bytes = pdf.table().bytes();
    for (const auto& [name, value, code] : rows) {
        const Filled filled(bytes, {{name, value}});
        EXPECT_EQ(filled.code, code) << name;
        EXPECT_EQ(filled.update.empty(), code != 0) << name;
    }
    const Filled excluded(replaced(bytes, "/Include", "/Exclude"), {{"free", "x"}});
    EXPECT_EQ(excluded.code, VARNPDF_FIELD_LOCKED);
}

TEST(Form, LocksThatShareNamesAreReadOnce) {
    constexpr int kMany = 500;
    std::string dots;
    for (int i = 0; i < 15'000; ++i) dots += "a.";
    std::string names;
    for (int i = 0; i < 100'000; ++i) names += "(n" + std::to_string(i) + ")";
    std::string signatures;
    for (int i = 0; i < kMany; ++i) signatures += " " + std::to_string(20 + i) + " 0 R";
    PdfBuilder pdf = formDocument("5 0 R 6 0 R 7 0 R 8 0 R" + signatures, "");
    pdf.object(5, "<</FT/Tx/T(" + dots + ")>>").object(6, "<</FT/Tx/T(n7.b)>>").object(7, "<</FT/Tx/T(n7b)>>");
    pdf.object(8, "<</FT/Tx/T(q1)>>").object(9, "[" + names + "]");
    for (int i = 0; i < kMany; ++i) {
        const std::string lock = i % 2 == 0 ? "9 0 R" : "[(q" + std::to_string(i) + ")]";
        pdf.object(20 + i, "<</FT/Sig/T(s)/V<</X 1>>/Lock<</Action/Include/Fields " + lock + ">>>>");
    }
    OpenedPdf opened(pdf.table().bytes());
    CPdfForm form(&opened.pdf);
    const int locked[] = {0, 1, 0, 1};
    for (int i = 0; i < 4; ++i) EXPECT_EQ(form.GetLocked(i), locked[i]) << i;
    // Of two locks that leave out some names each, what both leave out stays free.
    pdf.object(20, "<</FT/Sig/T(s)/V<</X 1>>/Lock<</Action/Exclude/Fields[(x)(n7b)]>>>>");
    pdf.object(21, "<</FT/Sig/T(s)/V<</X 1>>/Lock<</Action/Exclude/Fields[(n7b)(n7)(n7b)]>>>>");
    OpenedPdf excluding(pdf.table().bytes());
    CPdfForm others(&excluding.pdf);
    const int lockedThen[] = {1, 1, 0, 1};
    for (int i = 0; i < 4; ++i) EXPECT_EQ(others.GetLocked(i), lockedThen[i]) << i;
}

TEST(Form, HostileTreesCostNoMoreThanTheirBytes) {
    constexpr int kMany = 10'000;
    std::string all;
    for (int i = 0; i < kMany; ++i) all += std::to_string(20 + i) + " 0 R ";
    // Every field lists all others, shares a long dictionary, and is a kid of a field with a long name.
    PdfBuilder pdf = formDocument("5 0 R", all);
    pdf.object(5, "<</FT/Tx/T(" + std::string(30'000, 'n') + ")/Kids[" + all + "]>>");
    pdf.object(6, "[" + all + "]").object(7, "<</R 0/X(" + std::string(20'000, 'm') + ")>>");
    for (int i = 0; i < kMany; ++i) {
        pdf.object(20 + i, "<</T(a)/FT/Tx/Parent 5 0 R/Kids 6 0 R/MK 7 0 R/Q 7 0 R/Subtype/Widget/Rect[0 0 9 9]>>");
    }
    OpenedPdf opened(pdf.table().bytes());
    CPdfForm form(&opened.pdf);
    EXPECT_LT(form.GetFieldNum(), kMany);
    EXPECT_EQ(form.SetValue(form.GetName(0), "x"), 0);
    EXPECT_EQ(form.WriteUpdate(), 0);
}

}  // namespace
