// What a signature covers, and which fields a viewer shows as signatures.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/OpenedPdf.h"
#include "support/PdfBuilder.h"
#include "support/Text.h"
#include "tests/inspection/OneSignature.h"
#include "varnpdf/PdfSignatureList.h"

namespace {

using namespace std::literals;
using namespace varnpdf::test;
using varnpdf::append;
using varnpdf::text;

const std::string kValue = "3003020101";
const std::string kRoom = kValue + std::string(100, '0');

/// The document signed with this room, with `bytes` written over the padding.
std::string planted(std::string_view bytes, std::size_t at = 20) {
    std::string document = withContents('<' + kRoom + '>');
    return document.replace(document.find(kRoom) + at, bytes.size(), bytes);
}

/// The signed document with another text of the same length.
std::string changed(std::string_view from, std::string_view to) {
    EXPECT_EQ(from.size(), to.size());
    return replaced(withContents('<' + kRoom + '>'), from, to);
}

/// The signed document with another text as /ByteRange.
std::string withRange(std::string range) {
    std::string document = withContents('<' + kRoom + '>');
    const std::size_t begin = document.find("/ByteRange ") + 11;
    range.resize(document.find(']', begin) + 1 - begin, ' ');
    return document.replace(begin, range.size(), range);
}

/// With its four numbers moved.
std::string moved(int offset0, int length0, int offset1, int length1) {
    const std::string document = withContents('<' + kRoom + '>');
    const auto open = static_cast<int>(document.find(kRoom)) - 1;
    const int close = open + static_cast<int>(kRoom.size()) + 2;
    const int rest = static_cast<int>(document.size()) - close;
    return withRange(text('[', offset0, ' ', open + length0, ' ', close + offset1, ' ', rest + length1, ']'));
}

TEST(Coverage, Findings) {
    using enum PdfCoverage;
    const std::string ones = kValue + "31313131";
    const std::string two = withByteRanges(
        smallDocument().object(4, kField).signature(5, '<' + kRoom + '>', "/Unsigned <" + kRoom + ">").table().bytes());
    const struct {
        const char* name;
        std::string document;
        PdfCoverage finding;
    } rows[] = {
        {"as signed", planted(""), Complete},
        {"no padding", withContents('<' + kValue + '>'), Complete},
        {"padding of the library", withContents('<' + ones + '>'), Complete},
        {"small digits", withContents("<30030201aB0000>"), Complete},
        {"no DER", withContents("<01FF030405>"), Complete},
        {"an object", planted("7 0 obj[6 0 R] "), NoDigits},
        {"a dictionary", planted("7 0 obj<</A 1>> "), NotItsValue},
        {"a table", planted("xref\n0 1\n0000000000 65535 f \ntrailer"), NoDigits},
        {"a blank", planted(" "), NoDigits},
        {"a line end", planted("\r\n"), NoDigits},
        {"raw bytes", planted("\x80\0\xff\n"sv), NoDigits},
        {"the end of a file", planted("%%EOF"), NoDigits},
        {"in front of the value", planted("(", 0), NoDigits},
        {"odd number of digits", withContents('<' + kValue + "0>"), OddDigits},
        {"other digits", planted("AB"), NoPadding},
        {"zeros and 0x31", withContents('<' + ones + "00>"), NoPadding},
        {"0x31 and zeros", withContents('<' + kValue + "0031>"), NoPadding},
        {"0x31, shifted", withContents('<' + kValue + "1313>"), NoPadding},
        {"another string left out", replaced(replaced(two, "/Contents", "/Signatur"), "/Unsigned", "/Contents"),
         NotItsValue},
        {"literal string", withContents("(>)"), NotItsValue},
        {"no string", changed("/Contents <", "/ContentX <"), NotItsValue},
        {"no range", changed("/ByteRange", "/ByteRangX"), NoRange},
        {"three numbers", withRange("[0 1 2]"), NoRange},
        {"five numbers", withRange("[0 1 2 3 4]"), NoRange},
        {"negative", withRange("[0 100 300 -1]"), NoRange},
        {"beyond all numbers", withRange("[0 100 300 9223372036854775807]"), OutsideFile},
        {"not from the start", moved(1, 0, 0, 0), NotFromStart},
        {"beyond the end", moved(0, 0, 0, 1), OutsideFile},
        {"overlapping", moved(0, 0, -200, 0), OutsideFile},
        {"a byte more left out", moved(0, 0, 1, -1), NotItsValue},
        {"a byte less", moved(0, 1, 0, 0), NotItsValue},
        {"not to the end", moved(0, 0, 0, -7), InsideRevision},
        {"packed",
         smallDocument()
             .object(4, kField)
             .objectStream(6, {{5, "<< /ByteRange [0 1 13 100] /Contents <" + kValue + "> >>"}})
             .crossReferenceStream(7)
             .bytes(),
         NotItsValue},
    };
    for (const auto& row : rows) {
        OpenedPdf opened(row.document);
        ASSERT_EQ(opened.code, 0) << row.name;
        const CPdfSignatureList list(opened.pdf);
        ASSERT_EQ(list.GetSignatureNum(), 1) << row.name;
        const PdfSignature& signature = *list.GetSignature(0)->signature;
        EXPECT_EQ(signature.coverage, row.finding) << row.name << ": " << varnpdf_coverage_message(signature.coverage);
        EXPECT_EQ(signature.coversWholeFile, row.finding == Complete) << row.name;
    }
}

TEST(Coverage, EndsWhereAnUpdateBegins) {
    const PdfBuilder once = smallDocument().object(4, kField).signature(5, '<' + kRoom + '>').table();
    const std::string document = withByteRanges(once.bytes());
    PdfBuilder twice = once;
    const std::string update =
        twice.object(6, "null").table().object(7, "null").table().bytes().substr(document.size());
    const struct {
        std::string behind;
        int updates;
    } rows[] = {{update, 2}, {"more", 0}};
    for (const auto& row : rows) {
        OpenedPdf opened(document + row.behind);
        const CPdfSignatureList list(opened.pdf);
        const PdfSignature& signature = *list.GetSignature(0)->signature;
        EXPECT_EQ(signature.coverage, PdfCoverage::Complete);
        EXPECT_FALSE(signature.coversWholeFile);
        EXPECT_EQ(signature.coveredBytes, document.size());
        EXPECT_EQ(signature.laterUpdates, row.updates);
    }
}

/// "name index+form@page" for each field; "?" for one without dictionary, "-" for an empty one.
std::string fieldsOf(const PdfBuilder& document) {
    OpenedPdf opened(document.bytes());
    std::string out;
    const CPdfSignatureList list(opened.pdf);
    for (const PdfSignatureField& field : list.GetFields()) {
        append(out, out.empty() ? "" : ", ", field.name, ' ', field.index, field.inForm ? "+" : "", '@', field.page,
               !field.isSigned              ? "-"
               : field.signature == nullptr ? "?"
                                            : "");
    }
    return out;
}

TEST(ShownSignatures, Fields) {
    const std::string dictionary = "<< /Type /Sig /Reason (r) >>";
    const struct {
        const char* name;
        std::vector<std::pair<int, std::string>> objects;  // the form has 10 and 11, the page shows 20 and 21
        const char* fields;
    } rows[] = {
        {"none", {}, ""},
        {"widget and field in one", {{10, "<< /FT /Sig /T (a) /V 5 0 R /Subtype /Widget >>"}}, "a 0+@-1"},
        {"empty", {{10, "<< /FT /Sig /T (a) >>"}}, "a -1+@-1-"},
        {"null", {{10, "<< /FT /Sig /T (a) /V null >>"}}, "a -1+@-1-"},
        {"value nowhere", {{10, "<< /FT /Sig /T (a) /V 99 0 R >>"}}, "a 0+@-1?"},
        {"value in place", {{10, "<< /FT /Sig /T (a\\)) /V << /Type /Sig >> >>"}}, "a) 0+@-1"},
        {"text field", {{10, "<< /FT /Tx /T (a) /V (x) >>"}}, ""},
        {"widget apart",
         {{10, "<< /FT /Sig /T (a) /V 5 0 R /Kids [20 0 R] >>"}, {20, "<< /Subtype /Widget /Parent 10 0 R >>"}},
         "a 0+@0"},
        {"inherited type and name",
         {{10, "<< /FT /Sig /T (a) /Kids [12 0 R 13 0 R] >>"},
          {12, "<< /T (b) /V 5 0 R >>"},
          {13, "<< /T <FEFF00E4> >>"}},
         "a.b 0+@-1, a.\xC3\xA4 -1+@-1-"},
        {"loop",
         {{10, "<< /FT /Sig /T (a) /Kids [10 0 R 12 0 R] >>"}, {12, "<< /T (b) /Kids [10 0 R] /V 5 0 R >>"}},
         "a.b 0+@-1"},
        {"counted ones have the first numbers, wherever they stand",
         {{10, "<< /FT /Sig /T (a) /V 5 0 R >>"},
          {11, "<< /Type /Annot /FT /Sig /T (b) /V 5 0 R >>"},
          {30, "<< /Type /Annot /FT /Sig /T (c) /V 5 0 R >>"}},
         "a 2+@-1, b 0+@-1, c 1@-1"},
        {"outside, with a name from above",
         {{20, "<< /Subtype /Widget /T (b) /FT /Sig /V 5 0 R /Parent 30 0 R >>"}, {30, "<< /T (a) /Kids [20 0 R] >>"}},
         "a.b 0@0"},
        {"outside, type and value above the widget",
         {{21, "<< /Subtype /Widget /Parent 30 0 R >>"}, {30, "<< /FT /Sig /T (a) /V 5 0 R /Kids [21 0 R] >>"}},
         "a 0@0"},
        {"widget that its field does not list",
         {{10, "<< /FT /Sig /T (a) /V 5 0 R >>"}, {21, "<< /Subtype /Widget /FT /Sig /Parent 10 0 R >>"}},
         "a 0+@0"},
        {"strings that end in a backslash",
         {{10, R"(<< /X (C:\\) /FT /Sig /T (a) /V 5 0 R /Kids [20 0 R] >>)"},
          {20, R"(<< /X (\(\\) /Subtype /Widget /Parent 10 0 R >>)"},
          {21, R"(<< /X (C:\\) /Subtype /Widget /FT /Sig /T (b(\\)\)) /V 5 0 R >>)"}},
         R"(a 0+@0, b(\)) 1@0)"},
        {"counted without a value", {{10, "<< /Type /Annot /FT /Sig /T (a) /V null >>"}}, "a 0+@-1-"},
    };
    for (const auto& row : rows) {
        PdfBuilder builder;
        builder.object(1, "<< /Type /Catalog /Pages 2 0 R /AcroForm << /Fields [10 0 R 11 0 R] >> >>");
        builder.object(2, "<< /Type /Pages /Kids [3 0 R] /Count 1 >>");
        builder.object(3, "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 9 9] /Annots [20 0 R 21 0 R] >>");
        builder.object(5, dictionary);
        for (const auto& [number, body] : row.objects) builder.object(number, body);
        EXPECT_EQ(fieldsOf(builder.table()), row.fields) << row.name;
    }
}

TEST(ShownSignatures, WhatTheySay) {
    const PdfBuilder builder =
        smallDocument()
            .object(1, "<< /Type /Catalog /Pages 2 0 R /AcroForm << /Fields [4 0 R] >> >>")
            .object(3, "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 9 9] /Annots [4 0 R] >>")
            .object(4, "<< /Type /Annot /Subtype /Widget /Rect [5 7.5 1 2] /FT /Sig /T (a) /V 5 0 R /Lock 6 0 R >>")
            .signature(5, "<30030201010000>",
                       "/Name <FEFF004D00610078> /Reason (\\(x\\)) /Location 7 0 R /SubFilter /a#20b /M null /R 1 "
                       "/Cert [<AB> (c\\)) <0>]")
            .object(6, "<< /Action /Include /Fields [(a) <62>] /P 2 >>")
            .object(7, "(here)")
            .table();
    OpenedPdf opened(withByteRanges(builder.bytes()));
    const CPdfSignatureList list(opened.pdf);
    ASSERT_EQ(list.GetFields().size(), 1U);
    const PdfSignatureField& field = *list.GetSignature(0);
    EXPECT_EQ(field.object, 4);
    EXPECT_EQ(std::vector(field.rect, field.rect + 4), (std::vector{1.0, 2.0, 5.0, 7.5}));
    ASSERT_NE(field.lock, nullptr);
    EXPECT_EQ(field.lock->action, "Include");
    EXPECT_EQ(field.lock->fields, (std::vector<std::string>{"a", "b"}));
    EXPECT_EQ(field.lock->permissions, 2);
    ASSERT_NE(field.signature, nullptr);
    const PdfSignature& signature = *field.signature;
    const std::map<std::string, std::string> texts = {{"Name", "Max"},      {"Reason", "(x)"}, {"Location", "here"},
                                                      {"SubFilter", "a b"}, {"Type", "Sig"},   {"R", "1"}};
    EXPECT_EQ(signature.texts, texts);
    EXPECT_EQ(signature.value, "\x30\x03\x02\x01\x01");
    EXPECT_EQ(signature.room, 7);
    EXPECT_EQ(signature.certificates, (std::vector<std::string>{"\xAB", "c)", "\0"s}));
    EXPECT_EQ(list.GetSignature(1), nullptr);
    EXPECT_EQ(list.GetSignature(-1), nullptr);
}

}  // namespace
