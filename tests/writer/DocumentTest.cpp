// Documents from nothing, their identity, and operations on objects of the table.
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <csignal>

#include "support/LogCapture.h"
#include "tests/support/OpenedPdf.h"
#include "tests/support/PdfBuilder.h"
#include "varnpdf/Pdf.h"
#include "writer/RefArray.h"

namespace {

using namespace std::literals;
using varnpdf::test::LogCapture;
using varnpdf::test::TempFile;

int create(CPdf& pdf, std::string_view body, CPdfObj::ContentType type, const std::string& comment = "") {
    return pdf.CreateObject(comment, 0, body.data(), static_cast<int>(body.size()), type);
}

void appendTo(CPdf& pdf, std::string text, bool setPos = false, int slot = 0) {
    pdf.AppendToContent(text.data(), static_cast<int>(text.size()), setPos, slot);
}

void setHeader(CPdf& pdf, std::string header) { pdf.SetHeader(header.data()); }

std::string_view textOf(CPdf& pdf, int slot) { return pdf.get_pdf_obj_from_map(slot)->content(); }

/// The content without the terminator, which counts in its length.
std::string_view contentOf(CPdf& pdf) {
    const std::string_view all(reinterpret_cast<const char*>(pdf.GetContent()), pdf.GetContentLen());
    EXPECT_TRUE(all.ends_with('\0'));
    return all.substr(0, all.size() - 1);
}

TEST(CreateObject, TextByContentType) {
    const struct {
        CPdfObj::ContentType type;
        std::string comment;
        std::string_view body, text;
    } rows[] = {
        {CPdfObj::eContentDictionary, "", "/A 1", "1 0 obj\r\n<<\r\n/A 1\r\n>>\r\nendobj\r\n\r\n"},
        {CPdfObj::eContentArray, "", "2 0 R", "2 0 obj\r\n[2 0 R]\r\nendobj\r\n\r\n"},
        {CPdfObj::eContentOther, "", "7", "3 0 obj\r\n7\r\nendobj\r\n\r\n"},
        {CPdfObj::eContentDictionary, "why", "", "4 0 obj\r\n<<\r\n%why\r\n\r\n>>\r\nendobj\r\n\r\n"},
        {CPdfObj::eContentArray, "c", "1", "5 0 obj\r\n[%c\r\n1]\r\nendobj\r\n\r\n"},
        {CPdfObj::eContentOther, "c", "(a\0b)"sv, "6 0 obj\r\n%c\r\n(a\0b)\r\nendobj\r\n\r\n"sv},
        {CPdfObj::eContentUnknown, "c", "x", "%c\r\nx"},
        {CPdfObj::eContentUndefined, "", "x", "x"},
    };
    CPdf pdf;
    int slot = 0;
    for (const auto& [type, comment, body, text] : rows) {
        EXPECT_EQ(create(pdf, body, type, comment), 0);
        const CPdfObj& obj = *pdf.get_pdf_obj_from_map(slot++);
        EXPECT_EQ(obj.content(), text);
        EXPECT_EQ(obj.GetObjNum(), slot);
        EXPECT_EQ(obj.GetGenNumber(), 0);
        EXPECT_EQ(obj.GetObjectType(), type);
        EXPECT_EQ(pdf.GetObjNum(), slot);
    }
}

TEST(CreateObject, NeitherLosesNorReplacesAnObject) {
    CPdf pdf;
    EXPECT_EQ(pdf.CreateObject("", 0, nullptr, 5, CPdfObj::eContentDictionary), 0);
    EXPECT_EQ(pdf.CreateObject("", 0, "abc", -1, CPdfObj::eContentOther), 0);
    EXPECT_EQ(textOf(pdf, 1), "2 0 obj\r\n\r\nendobj\r\n\r\n");
    pdf.SetObjNum(1);
    EXPECT_EQ(create(pdf, "new", CPdfObj::eContentOther), -1) << "slot 1 is taken";
    EXPECT_EQ(pdf.GetObjNum(), 1);
    EXPECT_EQ(textOf(pdf, 1), "2 0 obj\r\n\r\nendobj\r\n\r\n");
}

TEST(Content, GrowsInFrontOfItsTerminator) {
    CPdf pdf;
    create(pdf, "a", CPdfObj::eContentOther);
    create(pdf, "b", CPdfObj::eContentOther);
    appendTo(pdf, "first", true, 0);
    EXPECT_EQ(pdf.get_pdf_obj_from_map(0)->GetFromPos(), 0);
    EXPECT_EQ(pdf.GetContentLen(), 6U);
    appendTo(pdf, "a\0b"s, true, 1);
    EXPECT_EQ(pdf.get_pdf_obj_from_map(1)->GetFromPos(), 5);
    appendTo(pdf, "c", false, 0);
    appendTo(pdf, "d", true, 9);
    pdf.AppendToContent(nullptr, 3, false, 0);
    EXPECT_EQ(pdf.get_pdf_obj_from_map(0)->GetFromPos(), 0);
    setHeader(pdf, "%PDF ");
    EXPECT_EQ(contentOf(pdf), "%PDF firsta\0bcd"sv);
    std::string twice(contentOf(pdf));
    for (int round = 0; round < 4; ++round) {  // appends the content to itself, which moves it
        const auto length = static_cast<int>(pdf.GetContentLen()) - 1;
        pdf.AppendToContent(reinterpret_cast<char*>(pdf.GetContent()), length, false, 0);
        twice += twice;
    }
    EXPECT_EQ(contentOf(pdf), twice);
    CPdf headed;
    setHeader(headed, "%PDF-1.7\r\n");
    EXPECT_EQ(headed.GetContentLen(), 11U);
    EXPECT_EQ(contentOf(headed), "%PDF-1.7\r\n");
}

TEST(Content, ManyAppendsMoveItRarely) {
    CPdf pdf;
    const unsigned char* at = nullptr;
    int moves = 0;
    for (int i = 0; i < 100'000; ++i) {
        appendTo(pdf, "0123456789");
        moves += pdf.GetContent() == at ? 0 : 1;
        at = pdf.GetContent();
    }
    EXPECT_EQ(pdf.GetContentLen(), 1'000'001U);
    EXPECT_LT(moves, 30);
}

TEST(Content, OfAnOpenedDocumentLeavesItsObjectsReadable) {
    const std::string bytes = varnpdf::test::smallDocument().table().bytes();
    varnpdf::test::OpenedPdf opened(bytes);
    ASSERT_EQ(opened.code, 0);
    const std::string before = opened.bodies({1, 2, 3});
    EXPECT_EQ(opened.pdf.GotoLastId("more"), -1);
    appendTo(opened.pdf, "\nmore\n");
    setHeader(opened.pdf, "%header\n");
    EXPECT_EQ(contentOf(opened.pdf), "%header\n" + bytes + "\nmore\n");
    EXPECT_EQ(opened.bodies({1, 2, 3}), before);
    for (const CPdfTrailer* const trailer : {opened.pdf.GetLastTrailer(), opened.pdf.GetUpdateTrailer()}) {
        EXPECT_NE(trailer->content().find("/Root"), std::string_view::npos);
    }
    EXPECT_EQ(opened.pdf.GotoLastId("more"), static_cast<int>(bytes.size()) + 9);
}

TEST(Document, FromNothing) {
    CPdf pdf;
    setHeader(pdf, "%PDF-1.7\r\n");
    create(pdf, "/Type /Pages\r\n/Kids []\r\n/Count 0", CPdfObj::eContentDictionary);
    pdf.CreateRoot("", "<<>>", "1 0 R", "/D (a)", "", "", "");
    create(pdf, "<< /Length 3 >>", CPdfObj::eContentOther, "data");
    char data[] = "a\0b";
    pdf.AddStreamInPdfArray(2, data, 3);
    pdf.CreateIdent();
    EXPECT_EQ(pdf.WriteObjArrayToContent(), 0);
    EXPECT_EQ(pdf.WriteXrefToContent(), 0);
    EXPECT_EQ(pdf.WriteTrailerToContent(4, pdf.GetIdent()), 0);
    // The stream's recorded length reaches two NUL bytes, which are white space, behind its "endobj".
    const std::string want =
        "%PDF-1.7\r\n"
        "1 0 obj\r\n<<\r\n/Type /Pages\r\n/Kids []\r\n/Count 0\r\n>>\r\nendobj\r\n\r\n"
        "2 0 obj\r\n<<\r\n\r\n"
        "\t/Type /Catalog\r\n\t/OpenAction null\r\n\t/Names <<>>\r\n\t/Lang (de-DE)\r\n\t/Pages 1 0 R\r\n"
        "\t/Collection <</View/T /Type/Collection /D (a)>>\r\n>>\r\nendobj\r\n\r\n"
        "3 0 obj\r\n%data\r\n<< /Length 3 >>\r\nstream\na\0b\nendstream\nendobj\n\n\0\0"
        "xref\r\n0 4\r\n"
        "0000000000 65535 f\r\n0000000010 00000 n\r\n0000000071 00000 n\r\n0000000231 00000 n\r\n"
        "trailer\r\n<<\r\n\t/size 4 \r\n\t/Root 2 0 R\r\n\t/ID [<123456> <123456>]\r\n>>\r\n"
        "startxref\r\n295\r\n%%EOF\r\n"s;
    EXPECT_EQ(contentOf(pdf), want);
    EXPECT_EQ(pdf.GetXRefStartPos(), static_cast<int>(want.find("xref")));
    for (const int slot : {0, 1, 2}) {
        EXPECT_EQ(pdf.get_pdf_obj_from_map(slot)->GetFromPos(), want.find(std::to_string(slot + 1) + " 0 obj"));
    }
}

TEST(Document, IsNotWrittenWithAGap) {
    CPdf pdf;
    pdf.SetXRefStartPos(77);
    create(pdf, "1", CPdfObj::eContentOther);
    pdf.SetObjNum(2);
    EXPECT_EQ(pdf.WriteObjArrayToContent(), -1);
    EXPECT_EQ(pdf.WriteXrefToContent(), -1);
    EXPECT_EQ(pdf.GetContent(), nullptr);
    EXPECT_EQ(pdf.GetXRefStartPos(), 77);
}

TEST(Catalogue, EntriesInOrder) {
    CPdf pdf;
    EXPECT_EQ(pdf.GetIdent(), "");
    pdf.CreateIdent();
    pdf.CreateIdent();
    EXPECT_EQ(pdf.GetIdent(), "<123456>");
    EXPECT_EQ(pdf.CreateRoot("[3 0 R /Fit]", "4 0 R", "2 0 R", "", "", "", ""), 0);
    EXPECT_EQ(pdf.GetRootObjNum(), 1);
    const std::string head = " 0 obj\r\n<<\r\n\r\n\t/Type /Catalog\r\n\t/OpenAction ";
    const std::string tail = "\r\n>>\r\nendobj\r\n\r\n";
    EXPECT_EQ(textOf(pdf, 0), "1" + head +
                                  "[3 0 R /Fit]\r\n\t/Names 4 0 R\r\n\t/Lang (de-DE)\r\n\t/Pages 2 0 R\r\n"
                                  "\t/Collection <</View/T /Type/Collection >>" +
                                  tail);
    EXPECT_EQ(pdf.CreateRoot("", "", "", "/D (\0a)"s, "7 0 R", "8 0 R", "[9 0 R]"), 0);
    EXPECT_EQ(pdf.GetRootObjNum(), 2);
    EXPECT_EQ(textOf(pdf, 1), "2" + head +
                                  "null\r\n\t/Names null\r\n\t/Lang (de-DE)\r\n\t/Pages null\r\n"
                                  "\t/Collection <</View/T /Type/Collection /D (\0a)>>\r\n"
                                  "\t/Metadata 7 0 R\r\n\t/PageLabels 8 0 R\r\n\t/OutputIntents [9 0 R]"s +
                                  tail);
    EXPECT_EQ(pdf.get_pdf_obj_from_map(1)->GetObjectType(), CPdfObj::eContentDictionary);
}

TEST(TableObjects, EntriesAndStreamsBySlot) {
    CPdf pdf;
    char data[] = "x";
    create(pdf, "", CPdfObj::eContentDictionary);
    EXPECT_EQ(pdf.AddDictionaryEntryInPdfArray(0, "/A", "1"), 1);
    pdf.AddStreamInPdfArray(0, data, 1);
    EXPECT_TRUE(textOf(pdf, 0).starts_with("1 0 obj\r\n<<\r\n\r\n/A 1\r\n>>\r\nstream\nx\nendstream\nendobj\n"));
    EXPECT_EQ(pdf.AddDictionaryEntryInPdfArray(1, "/A", "1"), 0);
    pdf.AddStreamInPdfArray(-1, data, 1);
}

TEST(RefArray, ItemGoesInFrontOfTheLastBracket) {
    const struct {
        std::string array, want;
    } rows[] = {
        {"[null 5 0 R]", "[5 0 R 7 0 R]"},
        {"5 0 R", "5 0 R 7 0 R"},
        {"[]", "[ 7 0 R]"},
        {"[null]", "[ 7 0 R]"},
        {"[1 0 R null]", "[1 0 R  7 0 R]"},
        {"[null null 1 0 R null  2 0 R]", "[1 0 R  2 0 R 7 0 R]"},
        {"[1 0 R] /B [2 0 R] x", "[1 0 R] /B [2 0 R 7 0 R] x"},
        {"] [", "] [ 7 0 R"},
        {"", " 7 0 R"},
        {"null", " 7 0 R"},
    };
    CPdf pdf;
    CPdfObj obj(7, 0, 0, 0);
    for (const auto& [array, want] : rows) {
        EXPECT_EQ(varnpdf::appendToRefArray(array, " 7 0 R"), want) << array;
        for (const bool byObject : {false, true}) {
            std::vector<char> buffer(std::max(array.size(), want.size()) + 1);
            array.copy(buffer.data(), array.size());
            byObject ? pdf.AppendToRefArray(buffer.data(), &obj) : pdf.AppendToRefArray(buffer.data(), " 7 0 R");
            EXPECT_EQ(buffer.data(), want);
        }
    }
    const std::string large(20'000, ' ');
    EXPECT_EQ(varnpdf::appendToRefArray("[" + large + "]" + large, "1"), "[" + large + "1]" + large);
}

TEST(WriteAndClose, WritesTheBytesWithoutTerminator) {
    const TempFile file("something longer that was there before");
    CPdf pdf;
    std::string name = file.path();
    pdf.set_pdf_file_name(name.data());
    EXPECT_EQ(pdf.WriteAndClose(), -1) << "no content";
    EXPECT_EQ(file.read(), "something longer that was there before");
    setHeader(pdf, "%PDF-1.7\r\n");
    appendTo(pdf, "a\0b"s);
    EXPECT_EQ(pdf.WriteAndClose(), 0);
    EXPECT_EQ(file.read(), "%PDF-1.7\r\na\0b"sv);
}

TEST(WriteAndClose, OfAnOpenedDocumentKeepsEveryByte) {
    const std::string bytes = varnpdf::test::smallDocument().table().bytes();
    varnpdf::test::OpenedPdf opened(bytes);
    EXPECT_EQ(opened.pdf.WriteAndClose(), 0);
    EXPECT_EQ(opened.file.read(), bytes);
}

TEST(WriteAndClose, LeavesNothingHalfWritten) {
    const TempFile file("old");
    std::string name = file.path();
    CPdf pdf;
    pdf.set_pdf_file_name(name.data());
    appendTo(pdf, std::string(100'000, 'x'));
    LogCapture log("VarnPDF.CPdf");
    rlimit old{};
    getrlimit(RLIMIT_FSIZE, &old);
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    const rlimit small{20'000, old.rlim_max};
    setrlimit(RLIMIT_FSIZE, &small);
    const int code = pdf.WriteAndClose();
    setrlimit(RLIMIT_FSIZE, &old);
    std::signal(SIGXFSZ, handler);
    EXPECT_EQ(code, -1);
    EXPECT_EQ(file.read(), "old");
    EXPECT_TRUE(log.has("ERROR_CAN_NOT_WRITE_PDF_FILE: " + name));
    std::string nowhere = name + "/no/such/directory";
    pdf.set_pdf_file_name(nowhere.data());
    EXPECT_EQ(pdf.WriteAndClose(), -1);
}

}  // namespace
