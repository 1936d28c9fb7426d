// The preparation of a document: what is written, and when it is refused.
#include <gtest/gtest.h>

#include <algorithm>

#include "tests/signing/Signing.h"
#include "tests/support/LogCapture.h"

namespace {

using namespace std::literals;
using namespace varnpdf::test;

std::string small() { return smallDocument().table().bytes(); }

/// A document whose catalogue (1) and page (3) have further entries, and further objects from 4 on.
std::string document(const std::string& catalogue, const std::string& page = "",
                     const std::vector<std::string>& objects = {}, const std::string& trailer = "") {
    PdfBuilder builder;
    builder.object(1, "<< /Type /Catalog /Pages 2 0 R " + catalogue + " >>")
        .object(2, "<< /Type /Pages /Kids [3 0 R] /Count 1 >>")
        .object(3, "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 612 792] " + page + " >>");
    int number = 4;
    for (const std::string& object : objects) builder.object(number++, object);
    return builder.table({.entries = "/Root 1 0 R " + trailer}).bytes();
}

bool holds(std::string_view text, std::string_view part) { return text.find(part) != std::string_view::npos; }

TEST(Prepare, EveryNameStaysInItsString) {
    const std::pair<const char*, const char*> rows[] = {
        {"(Firma) Max", "/Name (\\(Firma\\) Max)\r\n"},
        {")", "/Name (\\))\r\n"},
        {"a\\)b", "/Name (a\\\\\\)b)\r\n"},
        {"\\\\", "/Name (\\\\\\\\)\r\n"},
        {"x\xC0\xA9/Injected true", "/Name (x\\)/Injected true)\r\n"},
    };
    for (const auto& [name, line] : rows) {
        const std::string file = signedFile(small(), {.name = name});
        EXPECT_TRUE(holds(file, line)) << name << '\n' << file;
    }
}

// A string that ends in an escaped backslash, or holds parentheses, must not hide what stands behind it.
TEST(Prepare, OddStringsHideNothing) {
    for (const std::string odd : {"(C:\\\\docs\\\\)", "(a\\\\\\)b)", "(a(b)c)"}) {
        const std::string string = "/F " + odd + ' ';
        const std::string annots = signedFile(document("", string + "/Annots [7 0 R] "));
        EXPECT_TRUE(holds(OpenedPdf(annots).body(3), "/Annots [7 0 R 10 0 R]")) << annots;
        for (const std::string& catalogue : {string + "/AcroForm 4 0 R ", std::string("/AcroForm 4 0 R ")}) {
            const std::string form =
                signedFile(document(catalogue, "", {"<< " + string + "/DR 9 0 R /Fields [5 0 R] >>"}));
            EXPECT_TRUE(holds(OpenedPdf(form).body(4), "/Fields [5 0 R 6 0 R]")) << form;
            EXPECT_TRUE(holds(OpenedPdf(form).body(4), odd)) << form;
        }
        const std::string field = "<< /Type /Annot /Subtype /Widget " + string + "/FT /Sig /T (Unterschrift1) >>";
        const std::string named = signedFile(document("/AcroForm << /Fields [4 0 R] >>", "", {field}));
        EXPECT_TRUE(holds(named, "/T (Unterschrift2)")) << named;
        PdfBuilder builder;
        builder.object(1, "<< /Type /Catalog " + string + "/Pages 2 0 R >>")
            .object(2, "<< /Type /Pages " + string + "/Kids [3 0 R] " + string + "/Count 1 >>")
            .object(3, "<< " + string + "/Type /Page /Parent 2 0 R /MediaBox [0 0 612 792] >>");
        const std::string trailer =
            signedFile(builder.table({.entries = string + "/ID [" + odd + " (b)] /Root 1 0 R "}).bytes());
        EXPECT_TRUE(holds(trailer.substr(trailer.rfind("trailer")), "/Root 1 0 R")) << trailer;
        EXPECT_EQ(OpenedPdf(trailer).pdf.PdfGetNumSignatures(), 1);
    }
}

TEST(Prepare, WidgetAndDictionary) {
    const std::string file = signedFile(small());
    OpenedPdf opened(file);
    EXPECT_EQ(
        opened.body(10),
        "% created using varnpdf 2.10.0.0\r\n<<\r\n/Type /Annot\r\n/Subtype /Widget\r\n/Rect [ 0 0 0 0 ]\r\n/F 4\r\n"
        "/P 3 0 R\r\n/FT /Sig\r\n/T (Unterschrift1)\r\n/MK << /BG [ 1 1 1 ] >>\r\n/V 11 0 R\r\n"
        "/AP << /N 12 0 R >>\r\n>>");
    const std::size_t begin = file.find("<01ABFF31>");
    std::string range = " 0 " + std::to_string(begin) + ' ' + std::to_string(begin + 10) + ' ' +
                        std::to_string(file.size() - begin - 10);
    range.resize(30, ' ');
    EXPECT_EQ(opened.body(11),
              "<<\r\n/Type /Sig\r\n/Reason (why)\r\n/Location (where)\r\n/M (D:20260102030405+01'00')\r\n"
              "/Filter /Korvane.varnapi\r\n/SubFilter /ETSI.CAdES.detached\r\n/R 65537\r\n/Name (who)\r\n"
              "/Contents <01ABFF31>\r\n/ByteRange [" +
                  range + "]\r\n>>");
    OpenedPdf visible(signedFile(small(), {.x = 10, .y = 20, .width = 30, .height = 40}));
    EXPECT_TRUE(holds(visible.body(10), "/Rect [ 10 20 40 60 ]\r\n"));
    EXPECT_EQ(visible.pdf.GetLastTrailer()->GetSize(), 16);  // /n2 is the last object, though more are reserved
    EXPECT_TRUE(holds(visible.body(10), "/AP << /N 13 0 R >>\r\n"));
    OpenedPdf flat(signedFile(small(), {.x = 10, .y = 20, .width = 30, .height = 0, .image = "/none"}));
    EXPECT_TRUE(holds(flat.body(10), "/Rect [ 0 0 0 0 ]\r\n"));
    CPdfSign pkcs7;
    pkcs7.setUserETSISubFilter(false);
    ASSERT_EQ(prepare(pkcs7, small(),
                      {.reason = "", .name = "Gr\xC3\xBC\xC3\x9F (a)\\", .date = "D:20260102030405-5'00'", .room = 0}),
              0);
    OpenedPdf other(saved(pkcs7, "", 0));
    for (const char* const text :
         {"/SubFilter /adbe.pkcs7.detached\r\n", "/Reason ()\r\n", "/Name (Gr\xFC\xDF \\(a\\)\\\\)\r\n",
          "/M (D:20260102030405-05'00')\r\n", "/Contents <>\r\n"}) {
        EXPECT_TRUE(holds(other.body(11), text)) << text << other.body(11);
    }
}

TEST(Prepare, FieldNames) {
    const auto field = [](const char* name, const char* type = "/Sig") {
        return "<< /FT "s + type + " /T " + name + " >>";
    };
    const std::pair<std::vector<std::string>, const char*> rows[] = {
        {{}, "(Unterschrift1)"},
        {{field("(a)")}, "(Unterschrift2)"},
        {{field("(Unterschrift2)")}, "(Unterschrift3)"},
        {{field("(Unterschrift3)"), field("(Unterschrift4)")}, "(Unterschrift5)"},
        {{field("(Unterschrift1)", "/Tx")}, "(Unterschrift1)"},
        {{field("<556E>"), field("(Unterschrift03)")}, "(Unterschrift3)"},
    };
    for (const auto& [fields, name] : rows) {
        EXPECT_TRUE(holds(signedFile(document("", "", fields)), "/T "s + name + "\r\n/MK")) << name;
    }
}

TEST(Prepare, RefusedDocumentsLeaveThePreparedOne) {
    const std::string sig = "<< /FT /Sig /T (a) >>";
    const std::string data = "<< /Type /Metadata /Length ";
    const struct {
        std::string document;
        Request request;
        int code;
    } rows[] = {
        {small(), {.reason = std::string(257, 'x')}, -1005},
        {small(), {.reason = std::string(256, 'x')}, 0},
        {small(), {.location = std::string(257, 'x')}, -1005},
        {small(), {.reason = "("}, -1006},
        {small(), {.reason = std::string(257, 'x'), .location = "a\\"}, -1006},  // the location comes first
        {small(), {.date = "D:2026)"}, -1006},
        {small(), {.width = 9, .height = 9, .image = "/nonexistent"}, -1083},
        {small(), {.width = 9, .height = 9, .image = "/nonexistent", .skipImageCheck = true}, -1083},
        {document("", "", {sig, sig}), {.width = 9, .height = 9, .image = "/x", .skipImageCheck = true}, -1034},
        {document("", "", {}, "/Encrypt << >>"), {}, -1021},
        {"nothing", {}, -1029},
        {document("/Metadata 4 0 R", "", {data + "3 >>\nstream\nabcd\nendstream"}), {}, -1009},
        {document("/Metadata 4 0 R", "", {data + "6 >>\nstream\nabcd\nendstream"}), {}, -1009},
        {document("/Metadata 4 0 R", "", {data + "5 >>\nstream\nabcd\nendstream"}), {}, 0},
        {replaced(small(), "/Pages 2", "/Pagez 2"), {}, -1004},
        {replaced(small(), "/Count 1", "/Cownt 1"), {}, -1030},
        {replaced(small(), "/Count 1", "/Count 0"), {}, -1033},
        {replaced(small(), "[3 0 R]", "[8 0 R]"), {}, -1050},
        {small(), {.x = 600, .width = 13, .height = 9}, -1022},
        {small(), {.room = 0x7FFFFFFF}, -1042},
        {document("", "",
                  {"<< /Type /Annot /FT /Sig /T (a) /V 5 0 R /Lock 6 0 R >>", "<< /Type /Sig >>",
                   "<< /Type /SigFieldLock /Action /All >>"}),
         {},
         -1082},
    };
    CPdfSign sign;
    ASSERT_EQ(prepare(sign, small(), {}), 0);
    for (const auto& row : rows) {
        const std::string before = preparedBytes(sign);
        const std::uint32_t offset = sign.GetContentsOffset();
        EXPECT_EQ(prepare(sign, row.document, row.request), row.code)
            << row.document << row.request.reason << '|' << row.request.name << '|' << row.request.date;
        const bool same = preparedBytes(sign) == before && sign.GetContentsOffset() == offset;
        EXPECT_TRUE(row.code == 0 || same) << row.code;
    }
    EXPECT_EQ(prepareFile(sign, std::string(256, 'x'), {}), -1001);
    EXPECT_EQ(prepareFile(sign, std::string(257, 'x'), {}), -1007);
    std::string bytes = small();
    char empty[1] = "";
    EXPECT_EQ(
        CPdfSign().SignPDFStream(reinterpret_cast<unsigned char*>(bytes.data()), static_cast<unsigned>(bytes.size()), 0,
                                 0, 0, 0, 0, 0, 0, empty, empty, empty, empty, 4, false, 0, 0, nullptr, nullptr, 0, 0),
        0);
    CPdf none;
    EXPECT_EQ(sign.DummySign(&none, 0, 0, 0, 0, 0, 0, 0, empty, empty, empty, empty, 4, false, 0, 0, nullptr, nullptr,
                             0, 0, true),
              -1004);
}

TEST(Prepare, PageIndex) {
    const auto twoPages = [](const char* count) {
        return PdfBuilder()
            .object(1, "<< /Type /Catalog /Pages 2 0 R >>")
            .object(2, "<< /Type /Pages /Kids [3 0 R 4 0 R] /Count "s + count + " >>")
            .object(3, "<< /Type /Page /Parent 2 0 R >>")
            .object(4, "<< /Type /Page /Parent 2 0 R >>")
            .object(5, "2")
            .table()
            .bytes();
    };
    for (const auto& [index, page] : {std::pair{0, "/P 3 0 R"}, {1, "/P 4 0 R"}, {2, "/P 4 0 R"}, {-1, "/P 4 0 R"}}) {
        EXPECT_TRUE(holds(signedFile(twoPages("2"), {.page = index}), page)) << index;
        EXPECT_TRUE(holds(signedFile(twoPages("5 0 R"), {.page = index}), page)) << index;
    }
    EXPECT_TRUE(holds(signedFile(twoPages("3 0 R"), {.page = 0}), "/P 3 0 R")) << "leads to no number";
}

TEST(Prepare, AcroForm) {
    const std::string fonts =
        "/SigFlags 3\r\n/DR << \r\n/Font << \r\n/ZaDb 8 0 R \r\n/Helv 7 0 R \r\n>> \r\n/Encoding << "
        "\r\n/PDFDocEncoding 9 0 R \r\n>> \r\n>> \r\n/DA (/Helv 0 Tf 0 g ) \r\n>>";
    OpenedPdf none(signedFile(small()));
    EXPECT_EQ(none.body(5), "[\r\n   10 0 R\r\n]");
    EXPECT_EQ(none.body(6), "<<\r\n/Fields 5 0 R\r\n" + fonts);
    EXPECT_TRUE(holds(none.body(1), "/AcroForm 6 0 R"));
    EXPECT_EQ(none.body(7),
              "<< \r\n/Type /Font \r\n/Name /Helv \r\n/BaseFont /Helvetica \r\n/Subtype /Type1 \r\n"
              "/Encoding 9 0 R \r\n>>");
    EXPECT_EQ(none.body(8),
              "<< \r\n/Type /Font \r\n/Name /ZaDb \r\n/BaseFont /ZapfDingbats \r\n/Subtype /Type1 \r\n>>");
    EXPECT_TRUE(
        none.body(9).starts_with("<< \r\n/Type /Encoding \r\n/Differences [ 24 /breve /caron /circumflex /dotaccent "
                                 "/hungarumlaut /ogonek /ring \r\n/tilde 39 /quotesingle 96 /grave 128 /bullet"));

    // Object 4 is the form, 5 a further object; the widget's number follows from what else is new.
    const char* const full = "/DR << >> /DA (x)";
    const struct {
        std::string form, further, expectedForm, expectedFurther;
    } rows[] = {
        {"/Fields [] "s + full, "0", "/Fields [ 7 0 R] "s + full, "0"},
        {"/Fields [ ] "s + full, "0", "/Fields [  7 0 R] "s + full, "0"},
        {"/Fields [null 5 0 R] /SigFlags 1 "s + full, "0", "/Fields [5 0 R 7 0 R] /SigFlags 3 "s + full, "0"},
        {"/Fields 5 0 R "s + full, "[ 9 0 R ]", "/Fields 5 0 R "s + full, "[ 9 0 R  7 0 R]"},
        {"/Fields 99 0 R "s + full, "0", "/Fields [7 0 R] "s + full, "0"},
        {full, "0", "/Fields [ 7 0 R]", "0"},
        {"/NeedAppearances true /Fields [] "s + full, "0", "/NeedAppearances false /Fields [ 7 0 R]", "0"},
        {"/NeedAppearances false /Fields [] "s + full, "0", "/NeedAppearances false /Fields [ 7 0 R]", "0"},
        {"/Fields []", "0", "/DA (/Helv 0 Tf 0 g )", "0"},
        {"/Fields [] /DA (x)", "0", "/ZaDb 8 0 R \r\n/Helv 7 0 R \r\n", "0"},
    };
    const auto normal = [](std::string text) {  // an added entry stands on a line of its own
        std::replace_if(
            text.begin(), text.end(), [](char c) { return c == '\r' || c == '\n'; }, ' ');
        text.erase(std::unique(text.begin(), text.end(), [](char a, char b) { return a == ' ' && b == ' '; }),
                   text.end());
        return text;
    };
    for (const auto& row : rows) {
        for (const bool direct : {false, true}) {
            const std::string form = "<< " + row.form + " >>";
            OpenedPdf opened(signedFile(
                document("/AcroForm " + (direct ? form : "4 0 R"s), "", {direct ? "0" : form, row.further})));
            const std::string text = normal(opened.body(direct ? 1 : 4));
            EXPECT_TRUE(holds(text, normal(row.expectedForm))) << text << row.form;
            EXPECT_TRUE(holds(text, "/SigFlags 3")) << text;
            EXPECT_EQ(normal(opened.body(5)), normal(row.expectedFurther)) << row.form;
        }
    }
}

TEST(Prepare, CatalogueAndAnnotations) {
    OpenedPdf plain(signedFile(document("/OpenAction << /S /JavaScript >> /Lang (de)")));
    EXPECT_TRUE(holds(plain.body(1), "/MarkInfo <</Marked false>>"));
    EXPECT_TRUE(holds(plain.body(1), "/Lang (de)"));
    EXPECT_FALSE(holds(plain.body(1), "JavaScript"));
    OpenedPdf marked(signedFile(document("/MarkInfo << /Marked true >>")));
    EXPECT_FALSE(holds(marked.body(1), "false"));

    const struct {
        const char *annots, *object, *page, *four, *five;
    } rows[] = {
        // object 4 is there; 5 is the array's number, 11 the widget's
        {"", "0", "/Annots 5 0 R\r\n", "0", "% neues Annots-Objekt-Array durch SignPDF \r\n[\r\n    11 0 R\r\n]"},
        {"/Annots null", "0", "/Annots 5 0 R", "0",
         "% neues Annots-Objekt-Array durch SignPDF (special case war NULL)\r\n[\r\n    11 0 R\r\n]"},
        {"/Annots [ 8 0 R ]", "0", "/Annots [ 8 0 R  11 0 R]", "0", "-"},
        {"/Annots 4 0 R", "[8 0 R]", "/Annots 4 0 R", "[8 0 R 11 0 R]", "-"},
        {"/Annots 99 0 R", "0", "/Annots 5 0 R", "0",
         "% neues Annots-Objekt-Array durch SignPDF \r\n[\r\n    11 0 R\r\n]"},
        {"/Annots 4 0 R", "null", "/Annots 5 0 R", "null",
         "% neues Annots-Objekt-Array durch SignPDF \r\n[\r\n    11 0 R\r\n]"},
    };
    for (const auto& row : rows) {
        OpenedPdf opened(signedFile(document("", row.annots, {row.object})));
        EXPECT_TRUE(holds(opened.body(3), row.page)) << row.annots << opened.body(3);
        EXPECT_EQ(opened.bodies({4, 5}), row.four + " "s + row.five) << row.annots;
    }

    // An array of two pages stays with the other one.
    const std::string two = PdfBuilder()
                                .object(1, "<< /Type /Catalog /Pages 2 0 R >>")
                                .object(2, "<< /Type /Pages /Kids [3 0 R 4 0 R] /Count 2 >>")
                                .object(3, "<< /Type /Page /Parent 2 0 R /Annots 5 0 R >>")
                                .object(4, "<< /Type /Page /Parent 2 0 R /Annots 5 0 R >>")
                                .object(5, "[8 0 R]")
                                .table()
                                .bytes();
    OpenedPdf opened(signedFile(two, {.page = 1}));
    EXPECT_TRUE(holds(opened.body(3), "/Annots 5 0 R"));
    EXPECT_TRUE(holds(opened.body(4), "/Annots 6 0 R"));
    EXPECT_EQ(opened.bodies({5, 6}), "[8 0 R] [8 0 R 12 0 R]");
}

// Strings of direct objects may hold NULs, and words that mean something elsewhere.
TEST(Prepare, DirectObjectsKeepTheirBytes) {
    const std::string annotation = "<< /Contents (\xFE\xFF\0H null) /A null /B 1 >>"s;
    OpenedPdf page(signedFile(document("", "/Annots [ " + annotation + " ] /B 2", {"[ " + annotation + " ]"})));
    EXPECT_TRUE(holds(page.body(3), "/Annots [ " + annotation + "  11 0 R] /B 2")) << page.body(3);
    OpenedPdf array(signedFile(document("", "/Annots 4 0 R", {"[ " + annotation + " ]"})));
    EXPECT_EQ(array.body(4), "[ " + annotation + "  11 0 R]");
    const std::string form = " /DR << >> /DA (\0x) /SigFlags 3\r\n>>"s;
    OpenedPdf direct(signedFile(document("/AcroForm << /Fields []" + form)));
    EXPECT_TRUE(holds(direct.body(1), "/Fields [ 5 0 R]" + form)) << direct.body(1);
}

// A number that is in use would replace its object; a /Size that is too small does not tell.
TEST(Prepare, NewNumbersAreFree) {
    OpenedPdf opened(signedFile(smallDocument().object(7, "<< /Kept true >>").table({.size = "5"}).bytes()));
    EXPECT_EQ(opened.body(7), "<< /Kept true >>");
    EXPECT_NE(opened.body(8), "-");
}

// The highest number that is written, not the highest that was reserved (ISO 32000-2 table 15).
TEST(Prepare, SizeFollowsTheHighestNumber) {
    for (const int width : {0, 50}) {
        for (const int layers : {0, 1}) {
            const std::string file = signedFile(small(), {.width = width, .height = 20, .layers = layers});
            const std::string numbers = listedNumbers(file);
            const std::size_t last = numbers.rfind(' ', numbers.size() - 2) + 1;
            const int highest = std::stoi(numbers.substr(last));
            EXPECT_TRUE(holds(file.substr(file.rfind("trailer")), "/Size " + std::to_string(highest + 1) + "\r\n"))
                << numbers;
        }
    }
}

TEST(Prepare, ModificationDates) {
    const auto info = [](const char* entry) {
        return signedFile(document("", "", {"<< /Producer (p) "s + entry + " >>"}, "/Info 4 0 R"));
    };
    EXPECT_TRUE(holds(OpenedPdf(info("/ModDate (D:1999)")).body(4), "/ModDate (D:20260102030405+01'00')"));
    EXPECT_TRUE(holds(OpenedPdf(info("/T (ModDate) /ModDate (D:1999)")).body(4), "(ModDate) /ModDate (D:20260102"));
    EXPECT_EQ(listedNumbers(info("")), listedNumbers(info("/ModDate <44>")));
    EXPECT_FALSE(listedNumbers(info("")).starts_with("1 3 4 "));

    const std::string old = "<xmp:ModifyDate>1999</xmp:ModifyDate>";
    const std::string renewed = "<xmp:ModifyDate>2026-01-02T03:04:05+01:00</xmp:ModifyDate>";
    const struct {
        std::string xmp, renewed;
        StreamForm form;
    } rows[] = {
        {old, renewed, {}},
        {old, renewed, {.deflate = true}},
        {old, renewed, {.length = "5 0 R"}},
        {"<xmp:CreateDate>1999</xmp:CreateDate>", "", {}},
        {"<x xmp:ModifyDate=\"1999\"/><?xpacket end='w'?>", "", {}},
        {old, "", {.deflate = true, .filter = "/LZWDecode"}},
    };
    for (const auto& [xmp, expected, form] : rows) {
        PdfBuilder builder;
        builder.object(1, "<< /Type /Catalog /Pages 2 0 R /Metadata 4 0 R >>")
            .object(2, "<< /Type /Pages /Kids [3 0 R] /Count 1 >>")
            .object(3, "<< /Type /Page /Parent 2 0 R >>")
            .stream(4, "/Type /Metadata", xmp, form)
            .object(5, std::to_string(xmp.size()));
        OpenedPdf opened(signedFile(builder.table().bytes()));
        ASSERT_EQ(opened.code, 0);
        const bool anew = !expected.empty();
        EXPECT_TRUE(holds(opened.body(1), anew ? "/Metadata 15 0 R" : "/Metadata 4 0 R")) << xmp << opened.body(1);
        const std::string data = form.deflate ? deflated(expected) : expected;
        const std::string body = opened.body(15);
        EXPECT_EQ(body == "-", !anew) << xmp;
        EXPECT_TRUE(!anew || holds(body, "/Length " + std::to_string(data.size()) + ' ')) << body;
        EXPECT_TRUE(!anew || body.ends_with(">>\nstream\r\n" + data + "\r\nendstream")) << body;
    }
}

TEST(Prepare, Locks) {
    const std::string file = signedFile(small(), {.lock = 1});
    OpenedPdf opened(file);
    EXPECT_EQ(opened.body(10),
              "% neues sig field lock dict-Objekt\r\n<<\r\n/Type /SigFieldLock\r\n/Action /All\r\n/P 1\r\n>>");
    EXPECT_EQ(opened.body(11), "<<\r\n/Type /TransformParams\r\n/Action /All\r\n/V /1.2\r\n>>");
    EXPECT_TRUE(opened.body(12).ends_with("/AP << /N 14 0 R >>\r\n/Lock 10 0 R\r\n>>"));
    EXPECT_TRUE(
        opened.body(13).ends_with("]\r\n/Reference [<< /Type /SigRef /TransformMethod /FieldMDP /TransformParams "
                                  "11 0 R /DigestMethod /MD5 /Data 1 0 R >>]\r\n>>"));
    EXPECT_EQ(signedFile(file), "code -1082");
    EXPECT_FALSE(holds(signedFile(small()), "/Lock"));
    EXPECT_FALSE(holds(signedFile(small()), "/Reference"));
}

/// One document in every form in which sections and objects can be written.
std::vector<std::string> kinds() {
    std::vector<std::string> all;
    for (const char* const eol : {"\n", "\r", "\r\n"}) {
        all.push_back(smallDocument(eol).table({.entries = "/Root 1 0 R /ID [<0A><0B>]"}).bytes());
        all.push_back(smallDocument(eol).crossReferenceStream(4, {.widths = {1, 2, 1}}).bytes());
        PdfBuilder packed(eol);
        packed.object(2, "<< /Type /Pages /Kids [3 0 R] /Count 1 >>")
            .objectStream(5, {{1, "<< /Type /Catalog /Pages 2 0 R >>"},
                              {3, "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 612 792] >>"}});
        all.push_back(packed.crossReferenceStream(6).bytes());
        all.push_back(smallDocument(eol).objectStream(5, {{4, "<< /Hidden true >>"}}).hybrid(6).bytes());
    }
    all.push_back(small().substr(0, small().size() - 1));         // no line end at the end
    all.push_back(smallDocument().table({.size = "3"}).bytes());  // /Size equals the highest number
    return all;
}

std::string blob(CPdf& pdf, int index) {
    unsigned long length = 0;
    if (pdf.GetSignatureBlob(index, nullptr, &length) != 0) return "none";
    std::string bytes(length, '\0');
    pdf.GetSignatureBlob(index, reinterpret_cast<unsigned char*>(bytes.data()), &length);
    return bytes;
}

TEST(Prepare, ThreeSignaturesOnEveryKindOfDocument) {
    for (std::string file : kinds()) {
        const bool stream = !holds(file, "trailer");
        std::vector<std::string> blobs;
        for (int round = 0; round < 3; ++round) {
            const std::string before = file;
            CPdfSign sign;
            ASSERT_EQ(prepare(sign, before, {.width = round * 50, .height = 20}), 0) << before;
            file = saved(sign);
            ASSERT_TRUE(file.starts_with(before + "\r\n"));
            blobs.push_back(preparedBytes(sign));
            EXPECT_EQ(file.substr(sign.GetContentsOffset(), 10), "<01ABFF31>");
            EXPECT_EQ(holds(file.substr(before.size()), "/Type /XRef"), stream) << before;
            EXPECT_EQ(holds(file.substr(before.size()), "\r\ntrailer\r\n"), !stream) << before;
            OpenedPdf opened(file);
            ASSERT_EQ(opened.code, 0) << file;
            ASSERT_EQ(opened.pdf.PdfGetNumSignatures(), round + 1);
            for (int i = 0; i <= round; ++i) EXPECT_EQ(blob(opened.pdf, i), blobs[static_cast<std::size_t>(i)]) << i;
        }
        EXPECT_TRUE(holds(file, "/T (Unterschrift3)"));
        if (!holds(file, "/ID [<0A><0B>]")) continue;
        EXPECT_TRUE(holds(file.substr(file.rfind("/ID")), "/ID [<0A><")) << file;
    }
}

TEST(Prepare, StreamDocumentsAreClosedByOne) {
    const std::string old = smallDocument().crossReferenceStream(4, {.widths = {1, 2, 1}}).bytes();
    const std::string file = signedFile(old);
    OpenedPdf opened(file);
    // Objects 5 to 13, the section itself 14; an empty identifier, no /Info, /Prev to the old section.
    const std::size_t section = file.find("14 0 obj");
    EXPECT_TRUE(holds(file.substr(section),
                      "/Size 15 \r\n/Root 1 0 R \r\n/ID []\r\n/Index[1 1 3 1 5 1 6 1 7 1 8 1 9 1 10 1 "
                      "11 3 14 1] \r\n/Filter /FlateDecode \r\n/W [1 2 1]\r\n"));
    EXPECT_TRUE(file.ends_with("startxref\r\n" + std::to_string(section) + "\r\n%%EOF\r\n"));
    EXPECT_EQ(opened.pdf.get_pdf_obj_from_map(14)->GetFromPos(), static_cast<int>(section));
    LogCapture log("VarnPDF.CPdfSign");
    CPdfSign sign;
    prepare(sign, old, {});
    EXPECT_TRUE(log.has("xrefStream!") && log.has("Stream gepackt") &&
                log.has("ID des Dokuments ist leer, setze [] ein."));
    EXPECT_EQ(log.messages().front(), "entering CPdfSign::DummySign");
    EXPECT_EQ(log.messages().back(), "Ende Dummysign");
}

}  // namespace
