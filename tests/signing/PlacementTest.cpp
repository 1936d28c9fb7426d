// Where a signature stands on its page; texts that may stand in a string; lookups.
#include <gtest/gtest.h>

#include "tests/signing/Signing.h"
#include "varnpdf/PdfHelper.h"

namespace {

using namespace varnpdf::test;

/// "x0 y0 x1 y1", or "" where the signature does not fit.
std::string placed(int rotation, int mode, int x, int y, int width, int height,
                   std::vector<int> box = {0, 0, 600, 800}) {
    int size[] = {width, height};
    int position[] = {x, y};
    int rect[4] = {};
    if (CPdfHelper::GetSignaturePos(rotation, box.data(), size, mode, position, rect) != 1) return "";
    std::string text;
    for (const int value : rect) text += (text.empty() ? "" : " ") + std::to_string(value);
    return text;
}

TEST(Placement, Table) {
    const struct {
        int mode, x, y;
        const char* rects[4];  // on pages turned by 0, 90, 180 and 270 degrees
    } rows[] = {
        {0, 50, 25, {"300 200 400 240", "410 400 450 500", "300 600 200 560", "150 300 190 400"}},
        {1, 10, 20, {"10 20 110 60", "540 10 580 110", "590 780 490 740", "20 690 60 790"}},
        {2, 10, 50, {"10 750 110 790", "10 10 50 110", "590 50 490 10", "550 690 590 790"}},
        {3, 110, 20, {"490 20 590 60", "540 690 580 790", "110 780 10 740", "20 10 60 110"}},
        {4, 110, 50, {"490 750 590 790", "10 690 50 790", "110 50 10 10", "550 10 590 110"}},
    };
    for (const auto& [mode, x, y, rects] : rows) {
        for (int i = 0; i < 8; ++i)
            EXPECT_EQ(placed(90 * i, mode, x, y, 100, 40), rects[i % 4]) << mode << ' ' << 90 * i;
    }
    const struct {
        int rotation, x, y, width, height;
        bool fits;
    } edges[] = {
        {0, 0, 0, 600, 800, true},    {0, 0, 0, 601, 800, false},    {0, 0, 0, 600, 801, false},
        {0, 500, 760, 100, 40, true}, {0, 501, 760, 100, 40, false}, {0, 500, 761, 100, 40, false},
        {0, -1, 0, 100, 40, false},   {0, 0, -1, 100, 40, false},    {0, 2147483647, 0, 100, 40, false},
        {90, 0, 0, 800, 600, true},   {90, 0, 0, 601, 100, true},    {90, 0, 0, 801, 600, false},
        {90, 0, 0, 800, 601, false},  {180, 0, 0, 600, 800, true},   {180, 0, 1, 600, 800, false},
        {270, 0, 0, 800, 600, true},  {270, 1, 0, 800, 600, false},  {45, 0, 0, 100, 40, true},
        {-90, 0, 0, 100, 40, false},
    };
    for (const auto& [rotation, x, y, width, height, fits] : edges) {
        EXPECT_EQ(!placed(rotation, 1, x, y, width, height).empty(), fits)
            << rotation << " at " << x << ' ' << y << " size " << width << ' ' << height;
    }
    EXPECT_EQ(placed(0, 0, 50, 50, 100, 40, {0, 0, 595, 842}), "297 421 397 461");
    EXPECT_EQ(placed(0, 4, 100, 40, 100, 40, {50, 60, 650, 860}), "500 760 600 800");
}

TEST(CheckThis, Table) {
    const struct {
        const char* text;
        int max, code;
    } rows[] = {
        {nullptr, 0, 0}, {"", 0, 0},          {"abc", 3, 0},        {"abcd", 3, -1005}, {"a(b)c", 9, 0},
        {"(", 9, -1006}, {")", 9, -1006},     {")(", 9, -1006},     {"\\)", 9, 0},      {"a\\", 9, -1006},
        {"a\\\\", 9, 0}, {"\\\\)", 9, -1006}, {"((\\))", 9, -1006}, {"((\\)))", 9, 0},  {"a", -1, -1005},
    };
    for (const auto& [text, max, code] : rows) EXPECT_EQ(CPdfHelper::CheckThis(text, max), code) << (text ? text : "0");
}

TEST(Lookup, FormFieldsAndPositions) {
    OpenedPdf opened(PdfBuilder()
                         .object(1, "<< /Type /Catalog /Pages 2 0 R /AcroForm 5 0 R >>")
                         .object(2, "<< /Type /Pages /Kids [3 0 R 4 0 R] /Count 2 >>")
                         .object(3, "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 9 9] >>")
                         .object(4, "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 9 9] >>")
                         .object(5, "<< /Fields [6 0 R 9 0 R] >>")
                         .object(6, "<< /T (group) /Kids [7 0 R 8 0 R] >>")
                         .object(7, "<< /FT /Tx >>")
                         .object(8, "<< /T (no type) >>")
                         .object(9, "<< /Type /Annot /FT /Sig /V 10 0 R /P 4 0 R /Rect [ 1.9 -2.5 30 40 ] >>")
                         .object(10, "<< /Type /Sig >>")
                         .table()
                         .bytes());
    EXPECT_EQ(opened.pdf.GetAcroFormObj(), opened.pdf.get_pdf_obj_from_map(5));
    EXPECT_EQ(opened.pdf.GetObjNum(), 11);
    const int expected[] = {7, 9, 0};
    for (int i = 0; i < 3; ++i) {
        char fields[] = "6 0 R 9 0 R";
        opened.pdf.ResetFieldCounter();
        const CPdfObj* const field = opened.pdf.GetSigObjectFromArray(fields, i);
        EXPECT_EQ(field == nullptr ? 0 : field->GetObjNum(), expected[i]) << i;
    }
    int at[5] = {};
    EXPECT_EQ(opened.pdf.GetSignaturePositions(0, &at[0], &at[1], &at[2], &at[3], &at[4]), 0);
    EXPECT_EQ(std::vector<int>(at, at + 5), (std::vector<int>{1, -2, 30, 40, 1}));
    EXPECT_EQ(opened.pdf.GetSignaturePositions(1, &at[0], &at[1], &at[2], &at[3], &at[4]), -1);
    for (const char* const form : {"", "/AcroForm << /Fields [] >>", "/AcroForm 99 0 R"}) {
        OpenedPdf other(PdfBuilder().object(1, std::string("<< /Type /Catalog ") + form + " >>").table().bytes());
        EXPECT_EQ(other.pdf.GetAcroFormObj(), nullptr) << form;
    }
}

TEST(Lookup, DrawnFrame) {
    const std::string stroke = " 0.751953 0.751953 0.751953 RG ";
    const std::string frame = "1 1 1 rg BT ET" + stroke + "10.9 -0.5 100.25 20 re S";
    const struct {
        std::string first, second;
        std::vector<int> found;  // x, y, width, height, page
    } rows[] = {
        {frame, "", {10, -1, 100, 20, 0}},
        {"", frame, {10, -1, 100, 20, 1}},
        {frame, "0 0 1 rg ET" + stroke + "1 2 3 4 re", {1, 2, 3, 4, 1}},
        {frame + " 0 rg ET" + stroke + "5 6 7 8 re", "", {5, 6, 7, 8, 0}},
        {"1 rg ET" + stroke + "1 2 3 re " + frame, "", {10, -1, 100, 20, 0}},
        {"1 rg ET" + stroke + "1e99 2 99999999999999999999.5 4 re", "", {}},
        {"1 rg ET" + stroke + "1 2 99999999999999999999.5 4 re", "", {1, 2, 1000000000, 4, 0}},
        {"ET" + stroke + "1 2 3 4 re", "", {}},
        {"1 rg" + stroke + "1 2 3 4 re", "", {}},
        {"1 rg ET 0.5 0.5 0.5 RG 1 2 3 4 re", "", {}},
    };
    for (const auto& [first, second, found] : rows) {
        OpenedPdf opened(PdfBuilder()
                             .object(1, "<< /Type /Catalog /Pages 2 0 R >>")
                             .object(2, "<< /Type /Pages /Kids [3 0 R 4 0 R] /Count 2 >>")
                             .object(3, "<< /Type /Page /Parent 2 0 R /Contents 5 0 R >>")
                             .object(4, "<< /Type /Page /Parent 2 0 R /Contents 6 0 R >>")
                             .stream(5, "", first)
                             .stream(6, "", second, {.deflate = true, .length = "7 0 R"})
                             .object(7, std::to_string(deflated(second).size()))
                             .table()
                             .bytes());
        int at[5] = {-7, -7, -7, -7, -7};
        EXPECT_EQ(CPdfSign().TryFindOOField(&opened.pdf, &at[0], &at[1], &at[2], &at[3], &at[4]), 0);
        const std::vector<int> untouched(5, -7);
        EXPECT_EQ(std::vector<int>(at, at + 5), found.empty() ? untouched : found) << first << '|' << second;
    }
    CPdf none;
    int at = 0;
    EXPECT_EQ(CPdfSign().TryFindOOField(&none, &at, &at, &at, &at, &at), -1004);
}

}  // namespace
