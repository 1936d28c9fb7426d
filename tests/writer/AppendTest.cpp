// An update as it stands behind a document: numbers, objects, and the section that closes it.
#include <gtest/gtest.h>

#include "api/PdfState.h"
#include "support/Text.h"
#include "tests/support/OpenedPdf.h"
#include "tests/support/PdfBuilder.h"
#include "writer/Update.h"

namespace {

using namespace varnpdf::test;
using varnpdf::text;
using varnpdf::Update;

TEST(Append, AnUpdateReplacesNothingByChance) {
    const auto document = [](bool stream, const char* size) {
        PdfBuilder builder = smallDocument();
        builder.object(7, "(seven)");
        const Closing closing{.entries = "/Root 1 0 R /ID [<0A> <00112233445566778899AABBCCDDEEFF>]", .size = size};
        stream ? builder.crossReferenceStream(4, closing) : builder.table(closing);
        return builder.bytes();
    };
    const struct {
        bool stream;
        const char* size;
        int first;
    } rows[] = {{false, "8", 8}, {false, "5", 8}, {false, "7", 8}, {false, "20", 20}, {true, "8", 8}};
    for (const auto& row : rows) {
        SCOPED_TRACE(text(row.stream ? "stream " : "table ", row.size));
        const std::string before = document(row.stream, row.size);
        std::string file = before;
        for (int round = 0; round < 2; ++round) {
            OpenedPdf opened(file);
            Update update(varnpdf::documentOf(opened.pdf));
            const int number = update.reserve();
            EXPECT_EQ(number, row.first + round * (row.stream ? 2 : 1));
            update.change(*opened.pdf.get_pdf_obj_from_map(3)).insert(8, text("% round ", round, "\n"));
            update.put(number, text(number, " 0 obj\r\n(round ", round, ")\r\nendobj\r\n"));
            update.writeWaiting();
            ASSERT_EQ(update.close(), 0);
            for (const std::string_view piece : update.pieces()) file += piece;
            OpenedPdf again(file);
            ASSERT_EQ(again.code, 0) << file;
            EXPECT_EQ(again.body(number), text("(round ", round, ')'));
            EXPECT_TRUE(again.body(3).starts_with(text("% round ", round))) << again.body(3);
            EXPECT_EQ(again.body(7), "(seven)");
            EXPECT_EQ(again.pdf.GetTrailerCount(), round + 1);
            EXPECT_EQ(again.pdf.GetLastTrailer()->GetIsCrossRefStream(), row.stream);
            EXPECT_EQ(again.pdf.GetLastTrailer()->GetPrev(), opened.pdf.GetLastTrailer()->GetXRef());
            EXPECT_TRUE(again.pdf.GetLastTrailer()->id().starts_with("[<0A> <"));
            EXPECT_NE(again.pdf.GetLastTrailer()->id(), opened.pdf.GetLastTrailer()->id());
        }
        EXPECT_TRUE(file.starts_with(before));
    }
}

}  // namespace
