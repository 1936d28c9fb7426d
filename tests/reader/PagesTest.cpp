// The page tree: order, inherited attributes, boxes.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/Limits.h"
#include "support/LogCapture.h"
#include "support/OpenedPdf.h"
#include "support/PdfBuilder.h"

namespace {

using namespace varnpdf::test;

struct Page {
    int number = 0;
    std::vector<int> box = {-1, -1, -1, -1};
    int rotation = -1;
    bool operator==(const Page&) const = default;
};

Page pageAt(CPdf& pdf, int index, int root = 2) {
    Page page;
    const CPdfObj* const obj =
        pdf.GetPdfPageObject(pdf.get_pdf_obj_from_map(root), index, page.box.data(), &page.rotation);
    if (obj != nullptr) page.number = obj->GetObjNum();
    return page;
}

std::string twoLevels() {
    return PdfBuilder()
        .object(1, "<< /Type /Catalog /Pages 2 0 R >>")
        .object(2, "<< /Type /Pages /Kids 9 0 R /Count 4 /MediaBox [0 0 200 300] >>")
        .object(4, "<< /Type /Pages /Parent 2 0 R /Kids [ 10 0 R\n6 0 R 11 0 R] /Count 2 /Rotate -90 >>")
        .object(5, "<< /Type /Page /Parent 2 0 R /MediaBox 12 0 R >>")
        .object(6, "<< /Type /Template /Parent 4 0 R >>")
        .object(7, "<< /Type /Page /Parent 2 0 R /MediaBox [ 0 0 595.276 841.89 ] /Rotate 180 >>")
        .object(9, "[4 0 R 5 0 R 7 0 R]")
        .object(10, "<< /Type /Page /Parent 4 0 R >>")
        .object(11, "<< /Type /Page /Parent 4 0 R /MediaBox [0 792 612 0] /Rotate 0 >>")
        .object(12, "[-10.7 0 100.9 50]")
        .table()
        .bytes();
}

TEST(Pages, OrderInheritanceAndBoxes) {
    OpenedPdf opened(twoLevels());
    ASSERT_EQ(opened.code, 0);
    const Page pages[] = {
        {10, {0, 0, 200, 300}, 270},  // box from the root, rotation from the node
        {11, {0, 0, 612, 792}, 0},
        {5, {-10, 0, 100, 50}, 0},
        {7, {0, 0, 595, 841}, 180},
    };
    for (int index : {0, 3, 1, 2, 0}) EXPECT_EQ(pageAt(opened.pdf, index), pages[index]) << index;
    for (int index : {4, 5, -1}) EXPECT_EQ(pageAt(opened.pdf, index).number, 0) << index;
    for (int index = 0; index < 4; ++index) {
        int number = pages[index].number;
        int generation = 0;
        EXPECT_EQ(opened.pdf.GetPageNoFromObjRef(&number, &generation), index);
    }
    int counter = 0;
    std::string list = "5 0 R 4 0 R";
    EXPECT_EQ(opened.pdf.GetPageObjectFromArray(list.data(), &counter, 2), opened.pdf.get_pdf_obj_from_map(11));
    list.clear();
    EXPECT_EQ(opened.pdf.GetPageObjectFromArray(list.data(), &counter, 0), nullptr);
}

TEST(Pages, ChangedTreesAreSeen) {
    OpenedPdf opened(twoLevels());
    EXPECT_EQ(pageAt(opened.pdf, 0).number, 10);
    std::string kids = "[5 0 R 7 0 R]";
    opened.pdf.get_pdf_obj_from_map(2)->ReplaceDictionaryEntry("/Kids", kids.data());
    EXPECT_EQ(pageAt(opened.pdf, 0).number, 5);
    EXPECT_EQ(pageAt(opened.pdf, 2).number, 0);
}

TEST(Pages, WhatIsMissingIsNamed) {
    OpenedPdf opened(twoLevels());
    const LogCapture log("VarnPDF.CPdf");
    EXPECT_EQ(pageAt(opened.pdf, 0, 99).number, 0);
    EXPECT_TRUE(log.has("Pages-Objekt leer, Abbruch!"));
    EXPECT_EQ(pageAt(opened.pdf, 0, 5).number, 0);
    EXPECT_TRUE(log.has("/Kids-Eintrag nicht gefunden, Abbruch!"));
}

// Trees that loop, lie about their parents or are deeper than any stack: an answer, in time.
// Nodes that share their kids would make more pages than any document has objects.
TEST(Pages, SharedKidsAreFollowedOnlySoOften) {
    PdfBuilder shared;
    shared.object(1, "<< /Type /Catalog /Pages 2 0 R >>").object(3, "<< /Type /Page >>");
    std::string nodes;
    std::string leaves = "[";
    for (int i = 0; i < 2'000; ++i) {
        nodes += std::to_string(10 + i) + " 0 R ";
        leaves += "3 0 R ";
        shared.object(10 + i, "<< /Kids 4 0 R >>");
    }
    shared.object(2, "<< /Type /Pages /Kids [" + nodes + "] >>").object(4, leaves + "]");
    OpenedPdf opened(shared.table().bytes());
    ASSERT_EQ(opened.code, 0);
    EXPECT_EQ(pageAt(opened.pdf, 100'000).number, 3);
    EXPECT_EQ(pageAt(opened.pdf, static_cast<int>(varnpdf::limits::kTreeReferences)).number, 0);
}

TEST(Pages, HostileTrees) {
    PdfBuilder chain;
    chain.object(1, "<< /Type /Catalog /Pages 2 0 R >>");
    for (int i = 2; i < 20'000; ++i) {
        chain.object(i, "<< /Type /Pages /Count 1 /Kids [" + std::to_string(i + 1) + " 0 R] /Parent " +
                            std::to_string(i - 1) + " 0 R >>");
    }
    const std::string trees[] = {
        chain.object(20'000, "<< /Type /Page /Parent 19999 0 R >>").table().bytes(),
        smallDocument().object(2, "<< /Type /Pages /Kids [2 0 R 3 0 R] /Count 9 /Parent 2 0 R >>").table().bytes(),
        smallDocument().object(2, "<< /Kids [4 0 R] >>").object(4, "<< /Kids [2 0 R 4 0 R] >>").table().bytes(),
        smallDocument().object(2, "<< /Kids 2 0 R /Count 999999999 >>").table().bytes(),
        smallDocument().object(2, "<< /Kids [99 0 R 0 0 R -1 0 R x R] /Count 2147483647 >>").table().bytes(),
        smallDocument().object(3, "<< /Type /Page /Parent 4 0 R >>").object(4, "<< /Parent 3 0 R >>").table().bytes(),
        smallDocument().object(3, "<< /Type /Page /MediaBox 3 0 R /Rotate 99999999999 >>").table().bytes(),
        smallDocument().object(3, "<< /Type /Page /MediaBox [99999999999 x] /Rotate x >>").table().bytes(),
    };
    for (const std::string& tree : trees) {
        SCOPED_TRACE("tree " + std::to_string(&tree - trees));
        OpenedPdf opened(tree);
        EXPECT_EQ(opened.code, 0);
        for (const int index : {0, 1, 1000}) {
            const Page page = pageAt(opened.pdf, index);
            EXPECT_TRUE(page.number == 0 || opened.body(page.number).find("/Page ") != std::string::npos);
        }
        int number = 77;
        int generation = 0;
        EXPECT_EQ(opened.pdf.GetPageNoFromObjRef(&number, &generation), -1);
    }
}

}  // namespace
