// Texts found on pages: fonts, content streams, lines.
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "api/PdfState.h"
#include "content/TextSearch.h"
#include "support/OpenedPdf.h"
#include "support/PdfBuilder.h"
#include "support/Text.h"
#include "syntax/Encoding.h"
#include "varnpdf/PdfTextSearch.h"
#include "varnpdf/result.h"

namespace varnpdf::test {
namespace {

constexpr const char* kHelvetica = "<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica /Encoding /WinAnsiEncoding >>";

/// A document of one page with fonts F (object 5) and G (object 6), a form X (object 7), content in object 4.
struct PageParts {
    std::string content;
    std::string font = kHelvetica;
    std::string other = "null";
    std::string form = {};               // content of the form
    std::string formEntries = {};        // of its dictionary
    std::string page = {};               // further entries of the page
    std::vector<std::string> more = {};  // streams from object 8 on
};

std::string bytesOf(const PageParts& parts) {
    PdfBuilder builder;
    builder.object(1, "<< /Type /Catalog /Pages 2 0 R >>")
        .object(2,
                "<< /Type /Pages /Kids [3 0 R] /Count 1 /Resources << /Font << /F 5 0 R /G 6 0 R >> "
                "/XObject << /X 7 0 R >> >> >>")
        .object(3, text("<< /Type /Page /Parent 2 0 R /MediaBox [0 0 600 800] /Contents 4 0 R ", parts.page, " >>"))
        .stream(4, "", parts.content, {.deflate = true})
        .object(5, parts.font)
        .object(6, parts.other)
        .stream(7, text("/Type /XObject /Subtype /Form /BBox [0 0 1000 1000] ", parts.formEntries), parts.form);
    int number = 8;
    for (const std::string& stream : parts.more) builder.stream(number++, "", stream);
    builder.table();
    return builder.bytes();
}

/// "page:left,bottom,right,top" of every hit, rounded to tenths.
std::string found(const std::string& document, const std::string& sought) {
    OpenedPdf opened(document);
    EXPECT_EQ(opened.code, 0);
    Document& record = varnpdf::documentOf(opened.pdf);
    const auto pages = pagesOf(record);
    if (!pages) return "no pages";
    std::string out;
    const auto tenths = [](double value) {
        const long long number = std::llround(value * 10);
        return text(number < 0 ? "-" : "", std::abs(number) / 10, '.', std::abs(number) % 10);
    };
    for (const TextHit& hit : findText(record, *pages, *fromUtf8(sought)).hits) {
        append(out, out.empty() ? "" : " ", hit.page, ':', tenths(hit.box.left), ',', tenths(hit.box.bottom), ',',
               tenths(hit.box.right), ',', tenths(hit.box.top));
    }
    return out.empty() ? "-" : out;
}

// Helvetica: A 0.667, b 0.556, space 0.278; a line from -0.207 to 0.718.
TEST(Find, Operators) {
    const std::string at = "BT /F 10 Tf 100 200 Td ";
    const struct {
        const char* name;
        std::string content;
        const char* sought;
        const char* hits;
    } rows[] = {
        {"Whole", at + "(Ab) Tj ET", "Ab", "1:100.0,197.9,112.2,207.2"},
        {"Part", at + "(xAbx) Tj ET", "b", "1:111.7,197.9,117.2,207.2"},
        {"OtherCase", at + "(Ab) Tj ET", "ab", "-"},
        {"Twice", at + "(AA A) Tj ET", "A",
         "1:100.0,197.9,106.7,207.2 1:106.7,197.9,113.3,207.2 1:116.1,197.9,122.8,207.2"},
        {"Overlapping", at + "(AAA) Tj ET", "AA", "1:100.0,197.9,113.3,207.2"},
        {"Kerned", at + "[(A) 80 (b)] TJ ET", "Ab", "1:100.0,197.9,111.4,207.2"},
        {"Split", at + "(A) Tj ET BT /F 10 Tf 106.67 200 Td (b) Tj ET", "Ab", "1:100.0,197.9,112.2,207.2"},
        {"OutOfOrder", "BT /F 10 Tf 106.67 200 Td (b) Tj -6.67 0 Td (A) Tj ET", "Ab", "1:100.0,197.9,112.2,207.2"},
        {"BlankIsAGap", at + "[(A) -500 (b)] TJ ET", "A b", "1:100.0,197.9,117.2,207.2"},
        {"GapIsNoLetter", at + "[(A) -500 (b)] TJ ET", "Ab", "-"},
        {"NarrowGapIsBoth", at + "[(A) -200 (b)] TJ ET", "Ab", "1:100.0,197.9,114.2,207.2"},
        {"NarrowGapIsBoth", at + "[(A) -200 (b)] TJ ET", " A \t b ", "1:100.0,197.9,114.2,207.2"},
        {"Letterspaced", at + "2 Tc (Ab) Tj ET", "Ab", "1:100.0,197.9,114.2,207.2"},
        {"WordSpace", at + "50 Tw (A b) Tj ET", "A b", "1:100.0,197.9,165.0,207.2"},
        {"NotAcrossLines", at + "(A) Tj 0 -12 Td (b) Tj ET", "A b", "-"},
        {"NextLine", at + "12 TL (x) Tj T* (A) Tj (b) ' ET", "b", "1:100.0,173.9,105.6,183.2"},
        {"QuoteSetsSpacing", at + "12 TL 1 2 (A b) \" ET", "b", "1:114.4,185.9,120.0,195.2"},
        {"TdSetsLeading", at + "0 -20 TD T* (b) Tj ET", "b", "1:100.0,157.9,105.6,167.2"},
        {"Scaled", at + "200 Tz (Ab) Tj ET", "Ab", "1:100.0,197.9,124.5,207.2"},
        {"Rise", at + "(A) Tj 3 Ts (b) Tj ET", "Ab", "1:100.0,197.9,112.2,210.2"},
        {"Subscript", at + "(A) Tj /F 7 Tf 0 -2 Td 6.67 0 Td (b) Tj ET", "Ab", "1:100.0,196.6,110.6,207.2"},
        {"Matrix", "q 2 0 0 2 10 20 cm BT /F 5 Tf 1 0 0 1 45 90 Tm (Ab) Tj ET Q", "Ab", "1:100.0,197.9,112.2,207.2"},
        {"Upwards", "BT /F 10 Tf 0 1 -1 0 100 200 Tm (Ab) Tj ET", "Ab", "1:92.8,200.0,102.1,212.2"},
        {"UpsideDown", "BT /F 10 Tf -1 0 0 -1 100 200 Tm (Ab) Tj ET", "Ab", "1:87.8,192.8,100.0,202.1"},
        {"Invisible", at + "3 Tr (Ab) Tj ET", "Ab", "1:100.0,197.9,112.2,207.2"},
        {"PaintedTwice", at + "(Ab) Tj 0.2 0 Td (Ab) Tj ET", "Ab", "1:100.0,197.9,112.2,207.2"},
        {"PaintedOver", at + "(AAAAAA) Tj 3 2 Td (xAbx) Tj ET", "Ab", "1:108.0,199.9,120.2,209.2"},
        {"InlineImage", "BI /W 1 /H 1 /BPC 8 /CS /G ID (EI\x01 EI\xff) EI " + at + "(Ab) Tj ET", "Ab",
         "1:100.0,197.9,112.2,207.2"},
        {"HexString", at + "<41 62> Tj ET", "Ab", "1:100.0,197.9,112.2,207.2"},
        {"Escapes", at + "(\\101\\142) Tj ET", "Ab", "1:100.0,197.9,112.2,207.2"},
        {"Restored", "BT /F 10 Tf ET q BT /F 99 Tf ET Q BT 100 200 Td (Ab) Tj ET", "Ab", "1:100.0,197.9,112.2,207.2"},
        {"UnknownFont", "BT /Z 10 Tf 100 200 Td (Ab) Tj ET", "Ab", "1:100.0,197.9,112.2,207.2"},
        {"Garbage", "[ ( >> 1 2 Tj /F Tf Tm cm Q Q ' \" " + at + "(Ab) Tj ET", "Ab", "-"},
        {"OperandsMissing", "Q ET Tj TJ Tf Tm cm Do ' \" " + at + "(Ab) Tj ET", "Ab", "1:100.0,197.9,112.2,207.2"},
        {"HugeNumbers", "1e300 0 0 1 0 0 cm 999999999 0 0 1 0 0 cm 999999999 0 0 1 0 0 cm " + at + "(Ab) Tj ET", "Ab",
         "-"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(found(bytesOf({.content = row.content}), row.sought), row.hits);
    }
}

TEST(Find, SimpleFonts) {
    const std::string content = "BT /F 10 Tf 100 200 Td (aB\\344\\001) Tj ET";
    const std::string descriptor = "/FontDescriptor << /Ascent 800 /Descent -200 /MissingWidth 250 >>";
    const std::string widths = "/FirstChar 97 /Widths [500 600] " + descriptor;
    const struct {
        const char* name;
        std::string font;
        const char* sought;
        const char* hits;
        std::vector<std::string> more;
    } rows[] = {
        {"WinAnsi",
         "/Subtype /TrueType " + widths + " /Encoding /WinAnsiEncoding",
         "a",
         "1:100.0,198.0,105.0,208.0",
         {}},
        {"Umlaut",
         "/Subtype /TrueType " + widths + " /Encoding /WinAnsiEncoding",
         "\xC3\xA4",
         "1:107.5,198.0,110.0,208.0",
         {}},
        {"MacRoman",
         "/Subtype /TrueType " + widths + " /Encoding /MacRomanEncoding",
         "\xE2\x80\xB0",
         "1:107.5,198.0,110.0,208.0",
         {}},
        {"Differences",
         "/Subtype /Type1 " + widths + " /Encoding << /Differences [1 /Euro 66 /alpha /f_i] >>",
         "a\xCE\xB1",
         "1:100.0,198.0,107.5,208.0",
         {}},
        {"DifferencesOfAnother",
         "/Subtype /Type1 " + widths + " /Encoding << /Differences [1 /uni20AC.alt] >>",
         "\xE2\x82\xAC",
         "1:110.0,198.0,112.5,208.0",
         {}},
        {"ToUnicode",
         "/Subtype /Type1 " + widths + " /ToUnicode 8 0 R",
         "Sch\xC3\xB6n",
         "1:100.0,198.0,107.5,208.0",
         {"1 beginbfchar <61> <00530063> endbfchar 1 beginbfrange <42> <43> [<006800F6006E>] endbfrange"}},
        {"PartOfALigature",
         "/Subtype /Type1 " + widths + " /ToUnicode 8 0 R",
         "f",
         "1:100.0,198.0,102.5,208.0",
         {"1 beginbfchar <61> <FB01> endbfchar"}},
        {"Symbol", "/Subtype /Type1 /BaseFont /ABCDEF+Symbol", "\xCE\xB1", "1:100.0,197.1,106.3,210.1", {}},
        {"Courier", "/Subtype /Type1 /BaseFont /Courier-Bold", "aB", "1:100.0,198.4,112.0,206.3", {}},
        {"Type3",
         "/Subtype /Type3 /FontMatrix [0.01 0 0 0.01 0 0] /FontBBox [0 -20 100 70] /FirstChar 97 /Widths [50] "
         "/Encoding << /Differences [97 /a] >>",
         "a",
         "1:100.0,198.0,105.0,207.0",
         {}},
        {"OwnEncoding",
         "/Subtype /Type1 /FirstChar 97 /Widths [500] /FontDescriptor << /FontFile 8 0 R /Ascent 800 "
         "/Descent 200 >>",
         "\xCE\xA9",
         "1:100.0,198.0,105.0,208.0",
         {"%!PS\n/Encoding 256 array\ndup 97 /Omega put\nreadonly def\ncurrentfile eexec dup 97 /x put"}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const std::string font = text("<< /Type /Font ", row.font, " >>");
        EXPECT_EQ(found(bytesOf({.content = content, .font = font, .more = row.more}), row.sought), row.hits);
    }
}

TEST(Find, CompositeFonts) {
    const std::string fonts =
        "/DescendantFonts [<< /Subtype /CIDFontType2 /DW 500 /W [1 [700 800] 5 7 900] "
        "/FontDescriptor << /Ascent 800 /Descent -200 >> >>] /ToUnicode 8 0 R ";
    const std::string names =
        "1 begincodespacerange <0000> <FFFF> endcodespacerange "
        "2 beginbfrange <0001> <0009> <0041> <0010> <0010> <D83DDE00> endbfrange";
    const struct {
        const char* name;
        const char* encoding;
        const char* codes;
        const char* sought;
        const char* hits;
        std::vector<std::string> more;
    } rows[] = {
        {"Identity", "/Identity-H", "00010002000600090003", "AB", "1:100.0,198.0,115.0,208.0", {names}},
        {"Ranges", "/Identity-H", "00010002000600090003", "FI", "1:115.0,198.0,129.0,208.0", {names}},
        {"BeyondTheFirstPlane", "/Identity-H", "00100001", "\xF0\x9F\x98\x80", "1:100.0,198.0,105.0,208.0", {names}},
        {"Vertical", "/Identity-V", "00010002", "AB", "1:95.0,180.0,105.0,200.0", {names}},
        {"Embedded",
         "9 0 R",
         "4101",
         "A",
         "1:100.0,198.0,107.0,208.0",
         {"1 beginbfchar <41> <0041> endbfchar",
          "2 begincodespacerange <41> <41> <0000> <00FF> endcodespacerange 1 begincidrange <41> <42> 1 endcidrange"}},
        {"Unicode",
         "/UniJIS-UTF16-H",
         "00E40042",
         "\xC3\xA4"
         "B",
         "1:100.0,198.0,110.0,208.0",
         {""}},
        {"NoText", "/Identity-H", "0001", "A", "-", {""}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        const std::string font = text("<< /Type /Font /Subtype /Type0 /Encoding ", row.encoding, ' ', fonts, ">>");
        const std::string content = text("BT /F 10 Tf 100 200 Td <", row.codes, "> Tj ET");
        EXPECT_EQ(found(bytesOf({.content = content, .font = font, .more = row.more}), row.sought), row.hits);
    }
}

TEST(Find, FormsAndPages) {
    const std::string text = "BT /F 10 Tf 100 200 Td (Ab) Tj ET ";
    const struct {
        const char* name;
        PageParts parts;
        const char* hits;
    } rows[] = {
        {"Form", {.content = "q 1 0 0 1 10 0 cm /X Do Q", .form = text}, "1:110.0,197.9,122.2,207.2"},
        {"FormMatrix",
         {.content = "/X Do", .form = text, .formEntries = "/Matrix [1 0 0 1 0 50]"},
         "1:100.0,247.9,112.2,257.2"},
        {"OwnResources",
         {.content = "/X Do",
          .other = kHelvetica,
          .form = "BT /Q 10 Tf 100 200 Td (Ab) Tj ET",
          .formEntries = "/Resources << /Font << /Q 6 0 R >> >>"},
         "1:100.0,197.9,112.2,207.2"},
        {"NameOfThePage",
         {.content = "/X Do", .form = text, .formEntries = "/Resources << /Font << /Q 6 0 R >> >>"},
         "1:100.0,197.9,112.2,207.2"},
        {"FontOfAGraphicsState",
         {.content = "/S gs BT 100 200 Td (Ab) Tj ET",
          .page = "/Resources << /ExtGState << /S << /Font [5 0 R 10] >> >> >>"},
         "1:100.0,197.9,112.2,207.2"},
        {"FormLeavesNoState",
         {.content = "BT /F 10 Tf ET /X Do BT 100 200 Td (Ab) Tj ET", .form = "q q Q Q Q BT /F 99 Tf ET"},
         "1:100.0,197.9,112.2,207.2"},
        {"FormShowsItself", {.content = "/X Do", .form = "/X Do /X Do " + text + "/X Do"}, "1:100.0,197.9,112.2,207.2"},
        {"Parts",
         {.content = "BT /F 10 Tf",
          .page = "/Contents [4 0 R 8 0 R 99 0 R 9 0 R]",
          .more = {"100 200 Td", "(Ab) Tj ET"}},
         "1:100.0,197.9,112.2,207.2"},
        {"Turned", {.content = text, .page = "/Rotate 90 /MediaBox [50 60 600 800]"}, "1:100.0,197.9,112.2,207.2"},
        {"NoContent", {.content = "", .page = "/Contents null"}, "-"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(found(bytesOf(row.parts), "Ab"), row.hits);
    }
}

// Every level shows the next one ten times, which would be a thousand million texts.
TEST(Find, FormsThatMultiplyEnd) {
    PdfBuilder builder;
    builder.object(1, "<< /Type /Catalog /Pages 2 0 R >>")
        .object(2, "<< /Type /Pages /Kids [3 0 R] /Count 1 >>")
        .object(3, "<< /Type /Page /Parent 2 0 R /Contents 4 0 R /Resources << /XObject << /X 10 0 R >> >> >>")
        .stream(4, "", "/X Do");
    std::string ten;
    for (int i = 0; i < 10; ++i) ten += "/X Do ";
    for (int number = 10; number < 19; ++number) {
        builder.stream(number, text("/Subtype /Form /Resources << /XObject << /X ", number + 1, " 0 R >> >>"), ten);
    }
    builder.stream(19, "/Subtype /Form", "BT 1 0 0 1 100 200 Tm (Ab) Tj ET " + std::string(2000, ' ')).table();
    OpenedPdf opened(builder.bytes());
    Document& record = varnpdf::documentOf(opened.pdf);
    const TextHits hits = findText(record, *pagesOf(record), U"Ab");
    EXPECT_FALSE(hits.complete);
}

TEST(Find, Interface) {
    OpenedPdf opened(bytesOf({.content = "BT /F 10 Tf 100 200 Td (Ab Ab) Tj ET"}));
    char sought[] = "Ab";
    int count = 0;
    EXPECT_EQ(opened.pdf.SearchSigPos_PDFFile(&count, nullptr, sought), VARNPDF_OK);
    EXPECT_EQ(count, 2);
    SigPosStruct places[2] = {};
    places[1].page = 77;
    count = 1;
    EXPECT_EQ(opened.pdf.SearchSigPos_PDFFile(&count, places, sought), VARNPDF_OK);
    EXPECT_EQ(count, 2);
    EXPECT_EQ(places[0].page, 1);
    EXPECT_NEAR(places[0].x2, 112.23, 0.01);
    EXPECT_EQ(places[1].page, 77);  // there was room for one
    const struct {
        const char* text;
        int code;
    } rows[] = {{"Ab", VARNPDF_OK},
                {"x", VARNPDF_TEXT_NOT_FOUND},
                {"", VARNPDF_TEXT_UNUSABLE},
                {" \n", VARNPDF_TEXT_UNUSABLE},
                {nullptr, VARNPDF_TEXT_UNUSABLE},
                {"\xE4", VARNPDF_TEXT_UNUSABLE}};
    CPdfTextSearch search(&opened.pdf);
    for (const auto& row : rows) {
        EXPECT_EQ(search.Find(row.text), row.code);
        EXPECT_EQ(search.GetHits().size(), row.code == VARNPDF_OK ? 2U : 0U);
    }
    EXPECT_EQ(search.Find(std::string(1001, 'A').c_str()), VARNPDF_TEXT_UNUSABLE);
    CPdf closed;
    EXPECT_EQ(CPdfTextSearch(&closed).Find("Ab"), VARNPDF_ROOT_OBJECT_MISSING);
    EXPECT_EQ(CPdfTextSearch(nullptr).Find("Ab"), VARNPDF_ROOT_OBJECT_MISSING);
    EXPECT_EQ(closed.SearchSigPos_PDFFile(nullptr, nullptr, sought), VARNPDF_TEXT_UNUSABLE);
}

}  // namespace
}  // namespace varnpdf::test
