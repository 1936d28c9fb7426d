// The text of an appended update, byte for byte.
#include <gtest/gtest.h>

#include "support/Text.h"
#include "tests/support/OpenedPdf.h"
#include "tests/support/PdfBuilder.h"
#include "varnpdf/Pdf.h"
#include "writer/SectionTexts.h"

namespace {

using namespace std::literals;
using namespace varnpdf::test;

/// A container with one subsection for each row of entries.
struct Runs : CPdfXRefContainer {
    struct Entry {
        int offset, generation = 0, isFree = 0;
    };
    Runs& add(int start, const std::vector<Entry>& entries) {
        CPdfXRef run;
        run.SetRefStart(start);
        for (const auto& [offset, generation, isFree] : entries) {
            CPdfXRefEntry entry;
            entry.SetOffset(offset);
            entry.SetGenNumber(generation);
            entry.SetIsFree(isFree);
            run.AddEntry(entry);
        }
        AddXRef(&run);
        return *this;
    }
};

struct Trailer : CPdfTrailer {
    Trailer(int size, int prev, std::string_view info = "", std::string_view id = "", std::string_view encrypt = "") {
        SetSize(size);
        SetPrev(prev);
        setRoot("1 0 R");
        setInfo(info);
        setId(id);
        setEncrypt(encrypt);
    }
};

std::string streamOf(CPdf& pdf) { return {pdf.GetByteStream(), static_cast<std::size_t>(pdf.GetByteStreamLen())}; }

TEST(Update, TableAndTrailer) {
    CPdf pdf;
    pdf.ResetByteStream(10000);
    Runs runs;
    runs.add(24, {{12345}}).add(30, {{2147483647, 65535, 1}, {7, 3}});
    Trailer trailer(32, 11842, "3 0 R", "[<0A><0B>]", "9 0 R");
    EXPECT_EQ(pdf.WriteTrailer(&runs, &trailer, false, true), 0);
    EXPECT_EQ(streamOf(pdf),
              "xref\r\n24 1 \r\n0000012345 00000 n\r\n30 2 \r\n2147483647 65535 f\r\n0000000007 00003 n\r\n"
              "trailer\r\n<<\r\n/Size 32\r\n/Encrypt 9 0 R\r\n/ID [<0A><0B>]\r\n/Info 3 0 R\r\n/Root 1 0 R\r\n"
              "/Prev 11842\r\n>>\r\nstartxref\r\n10000\r\n%%EOF\r\n");
    EXPECT_EQ(trailer.GetXRef(), 10000);
    // Nothing but what must be there; in full mode the position alone counts.
    pdf.ResetByteStream(10000);
    Trailer bare(1, 0);
    pdf.WriteTrailer(&runs, &bare, true, false);
    const std::string text = streamOf(pdf);
    EXPECT_EQ(text.substr(text.find("trailer")),
              "trailer\r\n<<\r\n/Size 1\r\n/Root 1 0 R\r\n/Prev 0\r\n>>\r\nstartxref\r\n0\r\n%%EOF\r\n");
    // The first part of the identifier stays, the second is new.
    Trailer renewed(1, 0, "", "[<0A><0B0C0D0E0F10>]");
    pdf.WriteTrailer(&runs, &renewed, true, false);
    EXPECT_TRUE(renewed.id().starts_with("[<0A><")) << renewed.id();
    EXPECT_NE(renewed.id(), "[<0A><0B0C0D0E0F10>]");
}

TEST(Update, ObjectsAreRecordedAtTheirOffsets) {
    OpenedPdf old(smallDocument().table().bytes());
    const std::string before = old.file.read();
    // `WriteContent` knows both modes; `WriteTextAnnotation` records what is right in full mode.
    const struct { bool full, content; } rows[] = {{true, true}, {false, true}, {true, false}};
    for (const auto& [full, content] : rows) {
        old.pdf.ResetByteStream(static_cast<unsigned>(before.size()));
        if (full) old.pdf.WriteOld2ByteStream();
        Runs runs;
        for (const std::string_view text : {"20 0 obj\r\n(a\0b)\r\nendobj"sv, "21 0 obj\r\n5\r\nendobj\n"sv}) {
            CPdfObj obj(text[1] == '0' ? 20 : 21, 0, -1, -1);
            obj.setContent(text);
            if (content) {
                EXPECT_EQ(old.pdf.WriteContent(&runs, &obj, !full), 0);
            } else {
                old.pdf.WriteTextAnnotation(nullptr, &runs, &obj);
            }
        }
        EXPECT_EQ(streamOf(old.pdf),
                  (full ? before : "") + "20 0 obj\r\n(a\0b)\r\nendobj\r\n21 0 obj\r\n5\r\nendobj\n"s);
        using varnpdf::Digits;
        const auto first = static_cast<long long>(before.size());
        EXPECT_EQ(varnpdf::crossReferenceTable(runs),
                  varnpdf::text("xref\r\n20 1 \r\n", Digits{first, 10}, " 00000 n\r\n21 1 \r\n", Digits{first + 25, 10},
                                " 00000 n\r\n"));
    }
    Runs runs;
    CPdfObj nothing;
    CPdfObj empty(7, 0, -1, -1);
    EXPECT_EQ(old.pdf.WriteContent(nullptr, &empty, true), -1024);
    for (CPdfObj* const obj : {&nothing, &empty, static_cast<CPdfObj*>(nullptr)}) {
        EXPECT_EQ(old.pdf.WriteContent(&runs, obj, true), -1024);
    }
    EXPECT_EQ(runs.GetXRefNum(), 0);
}

TEST(Update, ObjectText) {
    const struct {
        std::string_view content, text;
        int number = 7, generation = 2;
    } rows[] = {
        {"7 2 obj\n5\nendobj\n", "7 2 obj\n5\nendobj\n"},
        {"\n7 2 obj 5 endobj", "7 2 obj 5 endobj\r\n"},
        {"7 2 obj 5 endobj\r", "7 2 obj 5 endobj\r"},
        {"8 0 obj<< /T (obj) >>endobj\n", "7 2 obj<< /T (obj) >>endobj\n"},
        {"7  0\nobj 5 endobj\n", "7 2 obj 5 endobj\n"},
        {"<< /T (9 0 obj) >>\n", "<< /T (9 0 obj) >>\n"},
        {"", "\r\n"},
        {"8 0 obj 5 endobj\n", "8 0 obj 5 endobj\n", -1, -1},
        {"8 0 obj 5 endobj\n", "8 0 obj 5 endobj\n", 0},
        {"8 0 obj 5 endobj\n", "8 0 obj 5 endobj\n", 7, -1},
        {"8 0 obj 5 endobj\n", "1 0 obj 5 endobj\n", 1, 0},
    };
    for (const auto& [content, text, number, generation] : rows) {
        EXPECT_EQ(varnpdf::objectText(number, generation, content), text) << number << ' ' << content;
    }
}

TEST(Update, StreamFieldsAreWidenedOnly) {
    const struct {
        const char* old;
        Runs::Entry entry;
        int type, second, third;
    } rows[] = {
        {"[1 2 1]", {255}, 1, 2, 1},        {"[1 2 1]", {65536}, 1, 3, 1}, {"[1 4 2]", {16}, 1, 4, 2},
        {"[0 2 0]", {16}, 1, 2, 0},         {"[1 2 0]", {16, 1}, 1, 2, 1}, {"[ 2 1 1 ]", {16, 256}, 2, 1, 2},
        {"[1 1 1]", {2147483647}, 1, 4, 1}, {"[1 99 -3]", {16}, 1, 8, 0},  {"", {16}, 1, 1, 1},
    };
    for (const auto& row : rows) {
        Runs runs;
        const auto fields = varnpdf::fieldsFor(runs.add(5, {row.entry}), row.old);
        EXPECT_EQ(fields.type, row.type) << row.old;
        EXPECT_EQ(fields.second, row.second) << row.old << row.entry.offset;
        EXPECT_EQ(fields.third, row.third) << row.old << row.entry.generation;
    }
}

TEST(Update, CrossReferenceStream) {
    Runs runs;
    runs.add(5, {{258, 1}}).add(9, {{0, 2, 1}, {16909060}});
    const Trailer bare(11, 77);
    const std::string rows("\1\0\0\1\2\1\0\0\0\0\0\2\1\1\2\3\4\0", 18);
    const auto stream = varnpdf::crossReferenceStream(runs, bare, 10, {1, 4, 1}, 16909060);
    EXPECT_EQ(stream,
              "10 0 obj\r\n<< \r\n/Type /XRef \r\n/Size 11 \r\n/Root 1 0 R \r\n/ID []\r\n/Index[5 1 9 2] \r\n"
              "/Filter /FlateDecode \r\n/W [1 4 1]\r\n/Length " +
                  std::to_string(deflated(rows).size()) + "\r\n/Prev 77\r\n>>\r\nstream\r\n" + deflated(rows) +
                  "\r\nendstream\r\nendobj\r\nstartxref\r\n16909060\r\n%%EOF\r\n");
    const Trailer full(11, 77, "3 0 R", "[<0A><0B>]");
    const auto more = varnpdf::crossReferenceStream(runs, full, 10, {1, 4, 1}, 0);
    EXPECT_NE(more->find("/Size 11 \r\n/Info 3 0 R\r\n/Root 1 0 R \r\n/ID [<0A><0B>]\r\n"), std::string::npos);
    // A field wider than the number is filled with zeros.
    EXPECT_NE(varnpdf::crossReferenceStream(runs, bare, 10, {1, 8, 1}, 0)
                  ->find(deflated("\1\0\0\0\0\0\0\1\2\1\0\0\0\0\0\0\0\0\0\2\1\0\0\0\0\1\2\3\4\0"sv)),
              std::string::npos);
}

}  // namespace
