// The page tree: order, inherited attributes, boxes.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/Limits.h"
#include "support/LogCapture.h"
#include "support/OpenedPdf.h"
#include "support/PdfBuilder.h"
#include "varnpdf/PdfPages.h"

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
        .object(11, "<< /Type /Page /Parent 4 0 R /MediaBox [0 792 612 0] /CropBox [3 2 1.5 4] /Rotate 0 >>")
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

TEST(Pages, BoxesWithFractionsAndPlaces) {
    OpenedPdf opened(twoLevels());
    const std::vector<PdfPage> pages = CPdfPages::All(opened.pdf);
    const struct {
        int object;
        std::vector<double> media, crop;
        int rotation;
    } rows[] = {{10, {0, 0, 200, 300}, {0, 0, 200, 300}, 270},
                {11, {0, 0, 612, 792}, {1.5, 2, 3, 4}, 0},
                {5, {-10.7, 0, 100.9, 50}, {-10.7, 0, 100.9, 50}, 0},
                {7, {0, 0, 595.276, 841.89}, {0, 0, 595.276, 841.89}, 180}};
    ASSERT_EQ(pages.size(), std::size(rows));
    for (std::size_t i = 0; i < pages.size(); ++i) {
        EXPECT_EQ(pages[i].object, rows[i].object);
        EXPECT_EQ(std::vector(pages[i].mediaBox, pages[i].mediaBox + 4), rows[i].media) << i;
        EXPECT_EQ(std::vector(pages[i].cropBox, pages[i].cropBox + 4), rows[i].crop) << i;
        EXPECT_EQ(pages[i].rotation, rows[i].rotation) << i;
    }
    OpenedPdf none(smallDocument().object(1, "<< /Type /Catalog >>").table().bytes());
    EXPECT_TRUE(CPdfPages::All(none.pdf).empty());
}

// On a box that begins at 100 20 a place is the same one as on a box at 0 0, moved.
TEST(Pages, PlacesOnAnyBox) {
    const struct {
        int mode, rotation;
        std::vector<double> rect;  // of 10 x 20 points at 30 40; the page has 200 x 300
        std::vector<int> origin;   // mode and place from 0 0
    } rows[] = {
        {1, 0, {130, 60, 140, 80}, {1, 130, 60}},     {2, 0, {130, 280, 140, 300}, {2, 130, 20}},
        {3, 0, {270, 60, 280, 80}, {3, -70, 60}},     {4, 0, {270, 280, 280, 300}, {4, -70, 20}},
        {0, 0, {160, 140, 170, 160}, {1, 160, 140}},  {1, 90, {240, 50, 260, 60}, {1, 50, -60}},
        {1, 180, {260, 260, 270, 280}, {1, -70, 20}}, {1, 270, {140, 280, 160, 290}, {1, 10, 140}},
    };
    for (const auto& row : rows) {
        PdfPage page;
        std::copy_n(std::initializer_list<double>{100, 20, 300, 320}.begin(), 4, page.mediaBox);
        page.rotation = row.rotation;
        std::vector<double> rect(4);
        EXPECT_TRUE(CPdfPages::Place({row.mode, 30, 40}, 10, 20, page, rect.data()));
        EXPECT_EQ(rect, row.rect) << row.mode << ' ' << row.rotation;
        const PdfPosition moved = CPdfPages::FromOrigin({row.mode, 30, 40}, page);
        EXPECT_EQ((std::vector{moved.mode, moved.x, moved.y}), row.origin) << row.mode << ' ' << row.rotation;
    }
    PdfPage page;
    double rect[4];
    EXPECT_FALSE(CPdfPages::Place({1, 0, 0}, 10, 20, page, rect));
}

}  // namespace
