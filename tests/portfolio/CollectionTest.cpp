// Portfolios: codes in their order, the objects, copying of hostile sources.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "support/Text.h"
#include "tests/support/LogCapture.h"
#include "tests/support/OpenedPdf.h"
#include "tests/support/PdfBuilder.h"
#include "varnpdf/PdfAttach.h"
#include "varnpdf/PdfCollection.h"
#include "varnpdf/result.h"

namespace {

using namespace std::literals;
using namespace varnpdf::test;

struct Item {
    std::string file;
    int type = 1;
    bool active = false;
    std::string description = {};
};

int create(const std::string& out, const std::vector<Item>& items) {
    std::vector<CPdfCollectionListItem> made;
    for (const Item& item : items) made.emplace_back(item.file, item.type, item.active, item.description);
    std::list<CPdfCollectionListItem*> list;
    for (CPdfCollectionListItem& item : made) list.push_back(&item);
    std::string path = out;
    return CPdfCollection().CreateCollection(path.data(), list);
}

PdfBuilder document(std::string_view header = "%PDF-1.4") {
    PdfBuilder builder("\n", header);
    return builder.object(1, "<< /Type /Catalog /Pages 2 0 R >>");
}

std::string onePage(std::string_view header = "%PDF-1.4") {
    return document(header)
        .object(2, "<< /Type /Pages /Kids [3 0 R] /Count 1 >>")
        .object(3, "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 9 9] >>")
        .table()
        .bytes();
}

TEST(Collection, CodesInTheirOrder) {
    const TempFile pdf(onePage());
    const TempFile newer(onePage("%PDF-1.5"));
    const TempFile text("text");
    const TempFile pageless(document().object(2, "<< /Type /Pages /Kids [] /Count 0 >>").table().bytes());
    const TempFile out;
    std::filesystem::remove(out.path());
    const struct {
        std::string out;
        std::vector<Item> items;
        int code;
    } rows[] = {
        {"", {}, -1300},
        {out.path(), {}, -1301},
        {out.path(), {{"", 0}}, -1303},
        {out.path(), {{"", 5, true}}, -1303},
        {out.path(), {{""}}, -1304},
        {out.path(), {{"missing", 1, true}, {"", 4, true}}, -1304},
        {out.path(), {{"missing", 1, true}, {"", 4}}, -1302},
        {out.path(), {{"/nowhere/missing", 1, true}, {newer.path()}}, -1305},
        {out.path(), {{pdf.path(), 1, true}, {text.path()}}, -1307},
        {out.path(), {{newer.path()}, {text.path(), 1, true}}, -1308},
        {out.path(), {{newer.path(), 4, true}}, -1308},
        {out.path(), {{text.path(), 4, true}}, -1307},
        {out.path(), {{pdf.path(), 1, true}, {"/tmp", 4}}, -1305},
        {out.path(), {{pageless.path(), 1, true}}, -1004},
        {"/nowhere/out.pdf", {{pdf.path(), 1, true}}, -1306},
        {"/dev/full", {{pdf.path(), 1, true}}, -1306},
    };
    for (const auto& [path, items, code] : rows) {
        EXPECT_EQ(create(path, items), code);
        EXPECT_FALSE(std::filesystem::exists(out.path())) << code;
    }
    EXPECT_EQ(CPdfCollection().CreateCollection(nullptr, {}), -1300);
    EXPECT_EQ(CPdfCollection().CreateCollection(std::string(out.path()).data(), {nullptr}), -1303);
    EXPECT_EQ(create(out.path(), {{pdf.path(), 1, true}, {newer.path(), 4}}), 0)
        << "of other files no version is asked";
    std::filesystem::remove(out.path());
}

std::string cover() {
    return document()
        .object(1,
                "<< /Type /Catalog /Pages 2 0 R /Metadata 9 0 R /PageLabels << /Nums [0 12 0 R] >> "
                "/OutputIntents [<< /S /GTS_PDFA1 /DestOutputProfile 9 0 R >>] >>")
        .object(2,
                "<< /Type /Pages /Kids [4 0 R 3 0 R] /Count 2 /MediaBox [0 0 200 100] "
                "/Resources << /Font << /A 5 0 R /B 5 0 R >> >> >>")
        .object(3, "<< /Type /Page /Parent 2 0 R >>")
        .object(4, "<< /Type /Pages /Parent 2 0 R /Kids [6 0 R] /Count 1 /Rotate 90 /CropBox [0 0 90 80] >>")
        .object(5, "<< /Type /Font /Name (5 0 R \\) \\\\) /Odd 77 0 R % 6 0 R\n>>")
        .object(6, "<< /Type /Page /Parent 4 0 R /Contents 7 0 R /Annots [8 0 R] /Rotate 0 >>")
        .stream(7, "", "q endobj Q 5 0 R", {.length = "10 0 R"})
        .object(8, "<< /Type /Annot /P 6 0 R /Parent 13 0 R /Popup 11 0 R /A << /D [3 0 R /Fit] >> >>")
        .stream(9, "/Type /Metadata", "<x/>", {.length = "99"})
        .object(10, "16")
        .object(11, "<< /Type /Annot /Parent 8 0 R >>")
        .object(12, "<< /S /D >>")
        .object(13, "<< /T (a field) /Kids [8 0 R] >>")
        .table()
        .bytes();
}

TEST(Collection, HoldsFilesCoverAndCatalogue) {
    const TempFile source(cover());
    const TempFile text("some text");
    const TempFile empty("");
    const TempFile out;
    LogCapture log("VarnPDF.CPdfCollection");
    ASSERT_EQ(
        create(out.path(), {{text.path(), 3, false, "\xc3\x84rger (1)"}, {source.path(), 1, true}, {empty.path(), 4}}),
        0);
    for (const char* const message :
         {"CreateCollection START", "Dateiname PDF-Collection okay", "Eine anzuzeigende Seite vorhanden (active)",
          "Liste für die Collection enthälten Einträge.", "Alle Dateien konnten erreicht werden.",
          "   Lese Datei ein und packe den Content", "Objekt NICHT in Transfertabelle gefunden, also NEU erstellen",
          "   Coversheet okay", "XRef schreiben"}) {
        EXPECT_TRUE(log.has(message)) << message;
    }
    OpenedPdf made(out.read());
    ASSERT_EQ(made.code, 0);
    const auto name = [](const TempFile& file) { return CPdfCollection().JustFilename(file.path()); };
    // Three objects for each file, the names, then the cover sheet in the order in which it is met.
    EXPECT_EQ(made.body(3), varnpdf::text("<<\r\n\r\n/Type /Filespec\r\n/F (", name(text), ")\r\n/UF (", name(text),
                                          ")\r\n/Desc (\xc4rger \\(1\\))\r\n/EF <</F 1 0 R/UF 1 0 R>>\r\n>>"));
    EXPECT_EQ(made.body(11),
              "<< /Type /Page  /Contents 12 0 R /Annots [ 14 0 R] /Rotate 0 /Resources << /Font << /A 17 0 R "
              "/B 17 0 R >> >>\r\n/MediaBox [0 0 200 100]\r\n/CropBox [0 0 90 80]\r\n/Parent 20 0 R\r\n>>");
    EXPECT_TRUE(made.body(12).starts_with("<<  /Length 13 0 R >>\r\nstream\r\nq")) << made.body(12);
    EXPECT_NE(out.read().find("stream\r\nq endobj Q 5 0 R\r\nendstream"), std::string::npos);
    EXPECT_EQ(made.body(14), "<< /Type /Annot /P 11 0 R  /Popup 15 0 R /A << /D [ 16 0 R /Fit] >> >>");
    EXPECT_EQ(made.body(15), "<< /Type /Annot /Parent 14 0 R >>");
    EXPECT_EQ(made.body(17), "<< /Type /Font /Name (5 0 R \\) \\\\) /Odd null % 6 0 R\n>>");
    EXPECT_TRUE(made.body(18).find("/Length 4 ") != std::string::npos) << made.body(18);
    EXPECT_EQ(made.body(20), "<<\r\n/Type /Pages\r\n/Kids [ 11 0 R ]\r\n/Count 1\r\n>>");
    EXPECT_EQ(
        made.body(21),
        varnpdf::text("<<\r\n\r\n\t/Type /Catalog\r\n\t/OpenAction [ 11 0 R /XYZ null null 0]\r\n\t/Names 10 0 R\r\n",
                      "\t/Lang (de-DE)\r\n\t/Pages 20 0 R\r\n\t/Collection <</View/T /Type/Collection /D (",
                      name(source), ")>>\r\n\t/Metadata 18 0 R\r\n\t/PageLabels << /Nums [0 19 0 R] >>\r\n",
                      "\t/OutputIntents [<< /S /GTS_PDFA1 /DestOutputProfile 18 0 R >>]\r\n>>"));

    CPdfAttachments files(&made.pdf);
    ASSERT_EQ(files.GetCount(), 3);
    std::vector<std::string> keys;
    for (int i = 0; i < 3; ++i) {
        keys.push_back(files.GetKey(i));
        unsigned long length = 0;
        ASSERT_EQ(files.GetContent(i, nullptr, &length), 0);
        std::string content(length, '?');
        files.GetContent(i, reinterpret_cast<unsigned char*>(content.data()), &length);
        const std::string wanted = keys.back() == name(text)     ? text.read()
                                   : keys.back() == name(source) ? source.read()
                                                                 : "";
        EXPECT_EQ(content, wanted);
        EXPECT_EQ(files.GetSize(i), static_cast<long long>(wanted.size()));
    }
    EXPECT_TRUE(std::ranges::is_sorted(keys));
    const std::string bytes = out.read();
    EXPECT_NE(bytes.find("\t/size 22 \r\n\t/Root 21 0 R\r\n\t/ID [<123456> <123456>]\r\n"), std::string::npos);
    const std::size_t first = bytes.find("xref\r\n0 22\r\n");
    const std::size_t second = bytes.find("xref\r\n0 0 \r\n");
    EXPECT_EQ(bytes.substr(second),
              varnpdf::text("xref\r\n0 0 \r\ntrailer\r\n<<\r\n/Size 22\r\n/ID [<123456> <123456>]\r\n",
                            "/Root 21 0 R\r\n/Prev ", first, "\r\n>>\r\nstartxref\r\n", second, "\r\n%%EOF\r\n"));
}

TEST(Collection, FilesOfOneNameKeepDifferentKeys) {
    const auto dir = std::filesystem::temp_directory_path() / ("varnpdf-clash-" + std::to_string(getpid()));
    for (const char* const sub : {"a", "b"}) {
        std::filesystem::create_directories(dir / sub);
        std::ofstream(dir / sub / "x.pdf") << onePage();
    }
    const std::string out = dir / "out.pdf";
    EXPECT_EQ(create(out, {{dir / "a/x.pdf"}, {dir / "b/x.pdf", 1, true}}), 0);
    CPdf pdf;
    EXPECT_EQ(pdf.Open(out.c_str(), "rb"), 0);
    CPdfAttachments files(&pdf);
    ASSERT_EQ(files.GetCount(), 2);
    EXPECT_EQ(files.GetKey(0) + "|" + files.GetKey(1) + "|" + files.GetName(1), "x.pdf|x.pdf (2)|x.pdf");
    std::filesystem::remove_all(dir);
}

TEST(Collection, CopiesHostileSources) {
    const struct {
        const char* name;
        std::string page, other, copy;
    } rows[] = {
        {"circle", "<< /A 4 0 R >>", "<< /B [3 0 R 4 0 R] >>", "<< /B [ 1 0 R 2 0 R] >>"},
        {"unbalanced", "<< /A 4 0 R >>", "<< /B ] >>", "null"},
        {"open string", "<< /A 4 0 R >>", "<< /B (x >>", "null"},
        {"too deep", "<< /A 4 0 R >>", std::string(501, '[') + std::string(501, ']'), "null"},
        {"generation", "<< /A 4 7 R >>", "[ true/N null<41> ]", "[ true/N null<41> ]"},
    };
    for (const auto& [name, page, other, copy] : rows) {
        OpenedPdf source(document().object(2, "<< >>").object(3, page).object(4, other).table().bytes());
        ASSERT_EQ(source.code, 0) << name;
        CPdf target;
        EXPECT_EQ(CPdfCollection().CopyOldObjToNew(3, &source.pdf, &target), 1) << name;
        EXPECT_EQ(CPdfCollection().CopyOldObjToNew(4, &source.pdf, &target), 2) << name;  // no second copy
        EXPECT_EQ(target.GetObjNum(), 2) << name;
        EXPECT_EQ(target.get_pdf_obj_from_map(1)->content(), "2 0 obj\r\n" + copy + "\r\nendobj\r\n\r\n") << name;
        EXPECT_EQ(CPdfCollection().CopyOldObjToNew(99, &source.pdf, &target), VARNPDF_UPDATE_OBJECT_MISSING);
    }
    // A chain of references as long as the document is no nesting.
    constexpr int kLength = 30'000;
    PdfBuilder chain = document();
    for (int i = 2; i < kLength; ++i) chain.object(i, varnpdf::text("<< /Next ", i + 1, " 0 R >>"));
    OpenedPdf source(chain.table().bytes());
    CPdf target;
    EXPECT_EQ(CPdfCollection().CopyOldObjToNew(2, &source.pdf, &target), 1);
    EXPECT_EQ(target.GetObjNum(), kLength - 2);
    EXPECT_EQ(CPdfCollection().CopyOldObjToNew(2, nullptr, &target), VARNPDF_UPDATE_OBJECT_MISSING);
}

// Each copy is told from its start to its end, also where it is found to have been made.
TEST(Collection, TellsEveryCopy) {
    OpenedPdf source(document().object(2, "<< /A [3 0 R 3 0 R] /Parent 1 0 R >>").object(3, "7").table().bytes());
    CPdf target;
    LogCapture log("VarnPDF.CPdfCollection");
    ASSERT_EQ(CPdfCollection().CopyOldObjToNew(2, &source.pdf, &target), 1);
    const std::vector<std::string> wanted = {
        "CopyOldObjToNew START",
        "Objekt NICHT in Transfertabelle gefunden, also NEU erstellen",
        "neues Objekt (std) in Transfertabelle 2 -> 1",
        "Ist ein Dictionary",
        "Enter Recursion DICT",
        " DICT 1. Key gefunden: /A",
        "Ist ein Array",
        "Ist eine Referenz",
        "Key ist Referenz und kein /Parent",
        "CopyOldObjToNew START",
        "Objekt NICHT in Transfertabelle gefunden, also NEU erstellen",
        "neues Objekt (std) in Transfertabelle 3 -> 2",
        " CopyOldObjToNew ENDE",
        "Ist eine Referenz",
        "Key ist Referenz und kein /Parent",
        "CopyOldObjToNew START",
        "Objekt in Transfertabelle gefunden.",
        " CopyOldObjToNew ENDE",
        " DICT n. Key gefunden: /Parent",
        "Ist eine Referenz (Parent)",
        " Exit Recursion DICT",
        " CopyOldObjToNew ENDE",
    };
    EXPECT_EQ(log.messages(), wanted);
}

// Each stream's /Length leads to the end of the last one.
TEST(Collection, OverlappingStreamsAreNotMultiplied) {
    constexpr int kStreams = 100;
    std::string references;
    for (int i = 0; i < kStreams; ++i) varnpdf::append(references, 4 + i, " 0 R ");
    PdfBuilder builder = document();
    builder.object(2, "<< /Type /Pages /Kids [3 0 R] /Count 1 >>");
    builder.object(3, "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 9 9] /Streams [" + references + "] >>");
    const std::string data(100'000, 'x');
    for (int i = 0; i < kStreams; ++i) {
        const bool last = i + 1 == kStreams;
        builder.object(4 + i, "<< /Length 0000000 >>\nstream\n" + (last ? data : "") + "\nendstream");
    }
    std::string bytes = builder.table().bytes();
    const std::size_t end = bytes.rfind("\nendstream");
    for (std::size_t at = 0; (at = bytes.find("0000000 >>\nstream\n", at)) != std::string::npos;) {
        const std::string length = std::to_string(end - (at + 18));
        bytes.replace(at + 7 - length.size(), length.size(), length);
    }
    const TempFile pdf(bytes);
    const TempFile out;
    ASSERT_EQ(create(out.path(), {{pdf.path(), 1, true}}), 0);
    EXPECT_LT(std::filesystem::file_size(out.path()), 6 * bytes.size());
    EXPECT_GT(std::filesystem::file_size(out.path()), 2 * bytes.size());
}

TEST(Collection, SmallOperations) {
    CPdfCollection collection;
    const std::string one = collection.AppendToNamesArray("", "a.pdf", "7");
    EXPECT_EQ(one, "[ (a.pdf) 7 0 R ]");
    EXPECT_EQ(collection.AppendToNamesArray(one, "b", "12"), "[ (a.pdf) 7 0 R (b) 12 0 R ]");
    EXPECT_EQ(collection.JustFilename("a/b/c.pdf") + collection.JustFilename("d") + collection.JustFilename("e/"),
              "c.pdfd");
    OpenedPdf source(document().object(2, "[1]").stream(3, "", "x").table().bytes());
    const std::pair<const char*, int> kinds[] = {{"true", 1},  {"-1.5", 2}, {"(a)", 3},   {"<41>", 3},
                                                 {"/A", 4},    {"[ ]", 5},  {"<<>>", 6},  {"3 0 R", 7},
                                                 {"2 0 R", 5}, {"null", 8}, {"9 0 R", 8}, {"what", 0}};
    for (const auto& [value, kind] : kinds) EXPECT_EQ(collection.ExamineValue(value, &source.pdf), kind) << value;
    const std::pair<std::string, std::string> bodies[] = {
        {"3 0 obj << /A 1 >>\r\nendobj", "<< /A 1 >>"}, {"  [1] ", "[1]"}, {"3 0 obj endobj", ""}, {"", ""}};
    for (auto [text, body] : bodies) {
        std::string out(text.size(), '\0');
        int length = -1;
        EXPECT_EQ(collection.StripRealContent(text.data(), static_cast<int>(text.size()), out.data(), &length),
                  body.empty() ? 0 : 1);
        EXPECT_EQ(out.substr(0, static_cast<std::size_t>(length)), body);
    }
}

}  // namespace
