// Loading of objects, object streams, and documents that are damaged or lie.
#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <vector>

#include "support/LogCapture.h"
#include "support/OpenedPdf.h"
#include "support/PdfBuilder.h"

namespace {

using namespace std::literals;
using namespace varnpdf::test;

bool documented(int code) {
    for (const int known : {0, -1001, -1018, -1021, -1029, -1060, -1061}) {
        if (code == known) return true;
    }
    return false;
}

const std::vector<std::pair<int, std::string>> kMembers = {{5, "<< /Type /Font /A 1 >>"}, {7, "(x)"}};

TEST(Objects, TextsAndPlaces) {
    PdfBuilder builder = smallDocument();
    const auto at = static_cast<int>(builder.bytes().size());
    OpenedPdf opened(builder.object(4, "(a\0endo)"s).objectStream(6, kMembers).crossReferenceStream(8).bytes());
    ASSERT_EQ(opened.code, 0);
    CPdfObj& plain = *opened.pdf.get_pdf_obj_from_map(4);
    EXPECT_EQ(plain.content(), "4 0 obj\n(a\0endo)\nendobj"sv);
    EXPECT_EQ(plain.GetFromPos(), at);
    EXPECT_TRUE(plain.IsInUse());
    EXPECT_FALSE(plain.GetIsCompressed());
    CPdfObj& packed = *opened.pdf.get_pdf_obj_from_map(5);
    EXPECT_TRUE(packed.content().starts_with("5 0 obj\r\n<< /Type /Font /A 1 >>"));
    EXPECT_STREQ(packed.get_dictionary_type(), "/Font");
    EXPECT_TRUE(packed.GetIsCompressed());
    EXPECT_EQ(packed.GetCompressStreamObjNr(), 6);
    EXPECT_EQ(opened.pdf.get_pdf_obj_from_map(7)->GetPositioninStreamArray(), 1);
    EXPECT_EQ(opened.body(7), "(x)");
}

TEST(Objects, StreamsOfObjects) {
    const StreamForm forms[] = {{},
                                {.deflate = true},
                                {.deflate = true, .filter = "[/FlateDecode]"},
                                {.deflate = false, .length = "4 0 R"},
                                {.deflate = true, .length = "4 0 R"}};
    for (const StreamForm& form : forms) {
        // The length as it will be: of the head "5 0 7 23 " and two lines, as they are or deflated.
        const std::string data = "5 0 7 23 " + kMembers[0].second + '\n' + kMembers[1].second + '\n';
        const std::string length = std::to_string(form.deflate ? deflated(data).size() : data.size());
        OpenedPdf opened(
            smallDocument().object(4, length).objectStream(6, kMembers, form).crossReferenceStream(8).bytes());
        SCOPED_TRACE("form " + std::to_string(&form - forms));
        EXPECT_EQ(opened.code, 0);
        EXPECT_EQ(opened.bodies({5, 7}), "<< /Type /Font /A 1 >> (x)");
    }
    std::vector<std::pair<int, std::string>> many;  // long enough for the second range of growth factors
    for (int i = 0; i < 3000; ++i) many.emplace_back(100 + i, '(' + std::to_string(i * 7919 % 10007) + ')');
    OpenedPdf opened(smallDocument().objectStream(6, many).crossReferenceStream(8, {.widths = {1, 4, 2}}).bytes());
    EXPECT_EQ(opened.bodies({100, 3099}), "(0) (" + std::to_string(2999 * 7919 % 10007) + ')');
}

TEST(Objects, LyingObjectStreams) {
    const struct {
        const char* entries;
        const char* data;
        StreamForm form = {};
    } rows[] = {
        {"/N 999999999 /First 8", "5 0 7 4 (a) (b)"},
        {"/N -1 /First 8", "5 0 7 4 (a) (b)"},
        {"/N 2147483648 /First 8", "5 0 7 4 (a) (b)"},
        {"/N 2 /First 999999999", "5 0 7 4 (a) (b)"},
        {"/N 2 /First -1", "5 0 7 4 (a) (b)"},
        {"/N 2 /First 15", "5 0 7 4 (a) (b)"},
        {"/N 2 /First 0", "5 0 7 4 (a) (b)"},
        {"/N 2", "5 0 7 4 (a) (b)"},
        {"/First 8", "5 0 7 4 (a) (b)"},
        {"/N 2 /First 8", "5 4 7 0 (a) (b)"},
        {"/N 2 /First 16", "5 0 7 999999999 (a)"},
        {"/N 2 /First 9", "5 0 7 -4 (a) (b)"},
        {"/N 2 /First 8", "a b c d (a) (b)"},
        {"/N 2 /First 8", "6 0 1 4 (a) (b)"},
        {"/N 2 /First 8", ""},
        {"/N 2 /First 8", "5 0 7 4 (a) (b)", {.length = "999999999"}},
        {"/N 2 /First 8", "5 0 7 4 (a) (b)", {.length = "-1"}},
        {"/N 2 /First 8", "5 0 7 4 (a) (b)", {.length = "99 0 R"}},
        {"/N 2 /First 8", "5 0 7 4 (a) (b)", {.length = "6 0 R"}},
        {"/N 2 /First 8", "5 0 7 4 (a) (b)", {.length = "5 0 R"}},
        {"/N 2 /First 8", "5 0 7 4 (a) (b)", {.length = "(x)"}},
        {"/N 2 /First 8 /Filter /FlateDecode", "not deflated at all"},
        {"/N 2 /First 8", "5 0 7 4 (a) (b)", {.deflate = true, .length = "5"}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE("row " + std::to_string(&row - rows));
        PdfBuilder builder = smallDocument();
        builder.stream(6, "/Type /ObjStm " + std::string(row.entries), row.data, row.form);
        OpenedPdf opened(builder.entry(5, 'c', 6, 0).entry(7, 'c', 6, 1).crossReferenceStream(8).bytes());
        EXPECT_TRUE(opened.code == 0 || opened.code == -1018) << opened.code;
        EXPECT_EQ(opened.body(3).substr(0, 8), "<< /Type");  // the plain objects are as they were
    }
    const LogCapture log("VarnPDF.CPdf");
    const OpenedPdf opened(smallDocument()
                               .stream(6, "/Type /ObjStm /N 1 /First 4 /Filter /FlateDecode", "no flate data")
                               .crossReferenceStream(8)
                               .bytes());
    EXPECT_EQ(opened.code, -1018);
    EXPECT_TRUE(log.has("### RetrieveObjects ABBRUCH (Problem beim Uncompress gepackter Stream)"));
}

TEST(Objects, NestingAndLoopsEnd) {
    const int deep = 200'000;
    const auto nested = [](std::string_view open, std::string_view close, int depth) {
        std::string text;
        for (int i = 0; i < depth; ++i) text += open;
        for (int i = 0; i < depth; ++i) text += close;
        return text;
    };
    std::vector<std::string> files;
    for (const auto& [open, close] :
         {std::pair("[", "]"), {"<< /A ", ">>"}, {"<</Kids[", "]>>"}, {"[", ""}, {"<<", ""}}) {
        const std::string text = nested(open, close, deep);
        files.push_back(smallDocument().object(1, "<< /Pages 2 0 R /X " + text + " >>").table().bytes());
        files.push_back(smallDocument().table({.entries = "/Root 1 0 R /X " + text}).bytes());
        files.push_back(smallDocument().crossReferenceStream(4, {.entries = "/Root 1 0 R /X " + text}).bytes());
        files.push_back(smallDocument().objectStream(6, {{5, text}}).crossReferenceStream(8).bytes());
    }
    const auto begin = std::chrono::steady_clock::now();
    for (const std::string& file : files) {
        OpenedPdf opened(file);
        EXPECT_TRUE(documented(opened.code)) << opened.code;
        int box[4];
        int rotation = 0;
        opened.pdf.GetPdfPageObject(opened.pdf.get_pdf_obj_from_map(2), 0, box, &rotation);
    }
    EXPECT_LT(std::chrono::steady_clock::now() - begin, 60s);
}

std::string signedDocument() {
    PdfBuilder builder = smallDocument();
    builder.object(4, "<< /Type /Annot /FT /Sig /T (a) /V 5 0 R /Lock 6 0 R >>")
        .signature(5, "<3003020101>", "/Cert <30>");
    return withByteRanges(builder.object(6, "<< /Action /Include >>").table().bytes());
}

/// Everything a reader may ask of a document, so that damage meets every operation.
void askEverything(CPdf& pdf) {
    int box[4];
    int rotation = 0;
    for (int page = 0; page < 2; ++page) pdf.GetPdfPageObject(pdf.get_pdf_obj_from_map(2), page, box, &rotation);
    int number = 3;
    int generation = 0;
    pdf.GetPageNoFromObjRef(&number, &generation);
    std::vector<std::string> names;
    pdf.create_vectorlist_of_signatures(names);
    std::vector<char> value(pdf.GetContentLen() + 1);
    int length = 0;
    for (int tag = 1; tag <= 13; ++tag) pdf.GetSignatureField(0, tag, value.data(), &length);
    unsigned long size = 0;
    for (const auto get : {&CPdf::GetSignatureBlob, &CPdf::GetSignaturePKCS7, &CPdf::GetSignaturePKCS1}) {
        if ((pdf.*get)(0, nullptr, &size) != 0) continue;
        ASSERT_LT(size, 2'000'000'000U);
        std::vector<unsigned char> bytes(size + 1);
        (pdf.*get)(0, bytes.data(), &size);
    }
    pdf.GetSignaturePKCS1Cert(0, 0, nullptr, &size);
}

// Cut at every byte, and with every byte changed: a documented code, no crash, and the next document opens as usual.
TEST(Damage, CutsAndMutations) {
    const std::pair<const char*, std::string> kinds[] = {
        {"table", smallDocument().table().object(3, "<< /Type /Page >>").table().bytes()},
        {"stream", smallDocument().objectStream(6, kMembers, {}).crossReferenceStream(8, {.form = {}}).bytes()},
        {"deflated", smallDocument().objectStream(6, kMembers).crossReferenceStream(8, {.predictor = 12}).bytes()},
        {"hybrid", smallDocument().objectStream(6, kMembers).hybrid(8).bytes()},
        {"signed", signedDocument()},
    };
    const TempFile file;
    for (const auto& [kind, good] : kinds) {
        const auto open = [&](const std::string& bytes) {
            file.write(bytes);
            CPdf pdf;
            const int code = pdf.Open(file.path().c_str(), "rb");
            if (code == 0) askEverything(pdf);
            return code;
        };
        int cut = 0;
        int changed = 0;
        for (std::size_t i = 0; i < good.size(); ++i) {
            const int code = open(good.substr(0, i));
            ASSERT_TRUE(documented(code)) << kind << " cut at " << i << ": " << code;
            cut += code != 0;
            for (const char byte : {static_cast<char>(good[i] ^ 1), '9', ' ', '\0'}) {
                std::string bytes = good;
                bytes[i] = byte;
                const int result = open(bytes);
                ASSERT_TRUE(documented(result)) << kind << " byte " << i << " changed: " << result;
                changed += result != 0;
            }
        }
        EXPECT_EQ(open(good), 0) << kind;
        // Without its last section a document is none, apart from the end-of-file marker.
        EXPECT_GT(cut, static_cast<int>(smallDocument().bytes().size())) << kind;
        EXPECT_GT(changed, 100) << kind;
    }
}

}  // namespace
