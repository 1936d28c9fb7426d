// The form XObjects of a visible signature and its lines of text.
#include <gtest/gtest.h>

#include "tests/signing/Pictures.h"
#include "tests/signing/Signing.h"
#include "varnpdf/PdfHelper.h"

namespace {

using namespace varnpdf::test;

std::string layer(int width, int height, std::vector<FormfieldInfo_tag> fields) {
    const auto count = static_cast<int>(fields.size());
    int length = -1;
    CPdfHelper::GetTextStreamLayer(nullptr, &length, width, height, fields.data(), count);
    std::string text(static_cast<std::size_t>(length) + 1, '#');
    CPdfHelper::GetTextStreamLayer(text.data(), &length, width, height, fields.data(), count);
    EXPECT_EQ(text.back(), '\0');
    text.pop_back();
    return text;
}

TEST(TextLayer, FontByFamilyAndStyle) {
    const char* const fonts[5][5] = {{"/T1_0", "/T2_0", "/T3_0", "/T4_0", "/T1_0"},
                                     {"/T5_0", "/T6_0", "/T7_0", "/T8_0", "/T5_0"},
                                     {"/T9_0", "/T10_0", "/T11_0", "/T12_0", "/T9_0"},
                                     {"/T13_0", "/T13_0", "/T13_0", "/T13_0", "/T13_0"},
                                     {"/T1_0", "/T2_0", "/T3_0", "/T4_0", "/T1_0"}};
    for (int family = 0; family < 5; ++family) {
        for (int style = 0; style < 5; ++style) {
            char name[8] = {};
            CPdfHelper::IntFontname(name, family, style);
            EXPECT_STREQ(name, fonts[family][style]) << family << ' ' << style;
        }
    }
}

TEST(TextLayer, Lines) {
    const std::string many(257, 'x');
    FormfieldInfo_tag full = line("", "");
    many.copy(full.value, sizeof full.value);  // no terminator
    const struct {
        FormfieldInfo_tag field;
        std::string line;
    } rows[] = {
        {line("", "value", 0, 0, 10), "q BT /T1_0 10 Tf 2 38.000000 Td (value) Tj ET Q\n"},
        {line("Label", "v", 1, 3, 8), "q BT /T8_0 8 Tf 2 40.000000 Td (Label: v) Tj ET Q\n"},
        {line("L", "", 2, 1, 60), "q BT /T10_0 60 Tf 2 -12.000000 Td (L: ) Tj ET Q\n"},
        {line("a(b", "c)d(e", 0, 0, 10), "q BT /T1_0 10 Tf 2 38.000000 Td (a b: c d e) Tj ET Q\n"},
        {line("a\\", "b\\", 0, 0, 10), "q BT /T1_0 10 Tf 2 38.000000 Td (a\\\\: b\\\\) Tj ET Q\n"},
        {line("5%%", "5%%", 0, 0, 10), "q BT /T1_0 10 Tf 2 38.000000 Td (5%: 5%%) Tj ET Q\n"},
        {line("", "a\r\nb", 0, 0, 10), "q BT /T1_0 10 Tf 2 38.000000 Td (a  b) Tj ET Q\n"},
        {line("", "short"), "q BT /T1_0 12 Tf 2 36.000000 Td (short) Tj ET Q\n"},
        {line("", "iiiiiiiiiiiiiiiiiiiiiiiiiiiiiiiiiiiiiiii"),
         "q BT /T1_0 10 Tf 2 38.000000 Td (iiiiiiiiiiiiiiiiiiiiiiiiiiiiiiiiiiiiiiii) Tj ET Q\n"},
        {full, "q BT /T1_0 1 Tf 2 47.000000 Td (" + many.substr(1) + ") Tj ET Q\n"},
    };
    for (const auto& [field, text] : rows) EXPECT_EQ(layer(100, 50, {field}), text);
    EXPECT_EQ(layer(100, 50, {}), "");
    // Automatic sizes leave room for what is below: 46 points for 1.2 * (8 + 2 * size) and the descent.
    EXPECT_EQ(layer(100, 50, {line("", "a"), line("", "b", 0, 0, 8), line("", "c")}),
              "q BT /T1_0 12 Tf 2 36.000000 Td (a) Tj ET Q\nq BT /T1_0 8 Tf 2 25.600000 Td (b) Tj ET Q\n"
              "q BT /T1_0 12 Tf 2 12.000000 Td (c) Tj ET Q\n");
    EXPECT_EQ(layer(100, 34, {line("", "a"), line("", "b", 0, 0, 10)}),
              "q BT /T1_0 12 Tf 2 20.000000 Td (a) Tj ET Q\nq BT /T1_0 10 Tf 2 7.600000 Td (b) Tj ET Q\n");
}

std::string form(const char* box, const char* objects, const std::string& content) {
    return "<< /Length " + std::to_string(content.size()) + " /BBox [ 0 0 " + box +
           " ] /Resources << /ProcSet [ /PDF ] /XObject << " + objects +
           " >> >> \r\n/Type /XObject /Subtype /Form /FormType 1 /Matrix [ 1 0 0 1 0 0 ] >> \r\nstream\r\n" + content +
           "\r\nendstream";
}

TEST(Appearance, FormPaintsTheLayers) {
    const TempFile image(picture(FIF_PNG, 24));
    const std::string upright = "q 1 0 0 1 0 0 cm\r\n1 0 0 1 0 0 cm ";
    const std::string quarter = "q 1 0 0 1 40 0 cm\r\n0 1 -1 0 0 0 cm ";
    const struct {
        int rotation, layers;
        bool image;
        std::string form;
    } rows[] = {
        {0, 0, false, form("100 40", "/n0 14 0 R /n2 15 0 R", upright + "/n0 Do Q\r\n" + upright + "/n2 Do Q\r\n")},
        {90, 0, false, form("40 100", "/n0 14 0 R /n2 15 0 R", quarter + "/n0 Do Q\r\n" + quarter + "/n2 Do Q\r\n")},
        {180, 0, false,
         form("100 40", "/n0 14 0 R /n2 15 0 R",
              "q 1 0 0 1 100 40 cm\r\n-1 0 0 -1 0 0 cm /n0 Do Q\r\n"
              "q 1 0 0 1 100 40 cm\r\n-1 0 0 -1 0 0 cm /n2 Do Q\r\n")},
        {270, 0, false,
         form("40 100", "/n0 14 0 R /n2 15 0 R",
              "q 1 0 0 1 0 100 cm\r\n0 -1 1 0 0 0 cm /n0 Do Q\r\n"
              "q 1 0 0 1 0 100 cm\r\n0 -1 1 0 0 0 cm /n2 Do Q\r\n")},
        {0, 1, false,
         form("100 40", "/n0 14 0 R /n1 15 0 R /n2 16 0 R /n3 14 0 R",
              upright + "/n0 Do Q\r\nq 0.40 0 0 0.40 0 0 cm\r\n1 0 0 1 0 0 cm /n1 Do Q\r\n" + upright +
                  "/n2 Do Q\r\nq 0.40 0 0 0.40 0 0 cm\r\n1 0 0 1 0 0 cm /n3 Do Q\r\n")},
        {0, 0, true,
         form("100 40", "/KorvImg 16 0 R /n0 14 0 R /n2 15 0 R",
              "q 100 0 0 40 0 0 cm\r\n1 0 0 1 0 0 cm /KorvImg Do Q \r\n" + upright + "/n0 Do Q\r\n" + upright +
                  "/n2 Do Q\r\n")},
        {90, 1, true,
         form("40 100", "/KorvImg 17 0 R /n0 14 0 R /n1 15 0 R /n2 16 0 R /n3 14 0 R",
              "q 40 0 0 100 40 0 cm\r\n0 1 -1 0 0 0 cm /KorvImg Do Q \r\n"
              "q 0.40 0 0 0.40 40 0 cm\r\n0 1 -1 0 0 0 cm /n1 Do Q\r\n" +
                  quarter + "/n2 Do Q\r\nq 0.40 0 0 0.40 40 0 cm\r\n0 1 -1 0 0 0 cm /n3 Do Q\r\n")},
    };
    for (const auto& row : rows) {
        Request request = kVisible;
        request.layers = row.layers;
        if (row.image) request.image = image.path();
        OpenedPdf file(signedFile(document(row.rotation), request));
        ASSERT_EQ(file.code, 0);
        EXPECT_EQ(file.body(12), row.form) << row.rotation << ' ' << row.layers << row.image;
    }
}

TEST(Appearance, OtherForms) {
    const std::string normal =
        "<< /Subtype /Form /Length 26 /BBox [ 0 0 100 40 ] /Resources << /ProcSet [ /PDF /Text /ImageB /ImageC "
        "/ImageI ] /XObject << /FRM 12 0 R >> >> >>\r\nstream\r\nq 1 0 0 1 0 0 cm /FRM Do Q\r\nendstream";
    Request request = kVisible;
    request.layers = 1;
    OpenedPdf upright(signedFile(document(0), request));
    EXPECT_EQ(upright.body(13), normal);
    // The viewer stretches the box into the turned rectangle; the content undoes it.
    OpenedPdf quarter(signedFile(document(270), kVisible));
    EXPECT_EQ(quarter.body(13), replaced(replaced(normal, "q 1 0 0 1 0 0 cm", "q 2.500000 0 0 0.400000 0 0 cm"),
                                         "/Length 26", "/Length 40"));
    EXPECT_EQ(
        upright.body(14),
        "<<\r\n/Filter /FlateDecode\r\n/Length 18\r\n/Subtype /Form\r\n/BBox [ 0 0 100 40 ]\r\n/Resources << "
        "/ProcSet [ /PDF /Text /ImageB /ImageC /ImageI ] >>\r\n/Type /XObject\r\n/FormType 1\r\n/Matrix [ 1 0 0 1 "
        "0 0 ]\r\n>>\r\nstream\r\n" +
            deflated("% DSBlank.") + "\r\nendstream");
    EXPECT_NE(upright.body(15).find("/BBox [ 0 0 100 100]\r\n/Resources << /ProcSet [ /PDF ] >>\r\n"),
              std::string::npos);
    const std::string text = deflated(layer(100, 40, kVisible.fields));
    const std::string n2 = upright.body(16);
    EXPECT_TRUE(n2.starts_with("<< \r\n /Type /XObject \r\n /Subtype /Form \r\n /BBox [ 0 0 100 40 ] \r\n /Length " +
                               std::to_string(text.size()) +
                               " \r\n /Filter/FlateDecode \r\n /Resources << \r\n    /Font << \r\n      /T1_0 << /Type "
                               "/Font /Subtype /Type1 /BaseFont /Helvetica /Encoding /WinAnsiEncoding >> \r\n"))
        << n2;
    EXPECT_NE(n2.find("/T12_0 << /Type /Font /Subtype /Type1 /BaseFont /Courier-BoldOblique /Enc"), std::string::npos);
    EXPECT_TRUE(n2.ends_with("\r\nstream\r\n" + text + "\r\nendstream"));
    const char* const matrices[] = {"1 0 0 1 0 0", "0 1 -1 0 0 0", "-1 0 0 -1 0 0", "0 -1 1 0 0 0"};
    for (int i = 0; i < 4; ++i) {
        OpenedPdf invisible(signedFile(document(90 * i)));
        EXPECT_EQ(invisible.body(12), std::string("<< \r\n/Matrix[") + matrices[i] +
                                          "]\r\n/Type /XObject \r\n   /FormType 1\r\n   /Length 0\r\n   /Resources "
                                          "<<\r\n   >>\r\n   /Subtype /Form\r\n   /BBox [0 0 0 0]\r\n>> \r\nstream\r\n"
                                          "\r\nendstream");
    }
}

}  // namespace
