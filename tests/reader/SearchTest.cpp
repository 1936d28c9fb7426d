// Keyword search and lines.
#include <gtest/gtest.h>

#include <string>
#include <string_view>

#include "varnpdf/Pdf.h"

namespace {

void load(CPdf& pdf, std::string content) {
    pdf.ParseContent(reinterpret_cast<unsigned char*>(content.data()), static_cast<unsigned>(content.size()), false);
}

TEST(Search, Rules) {
    const std::string tail(1030, ' ');
    const auto placed = [](std::size_t at) { return std::string(at, ' ') + "xref" + std::string(20, ' '); };
    const struct {
        std::string content;
        const char* keyword;
        int last, next;  // the latter from 0
    } rows[] = {
        {"xref \nxref \n   ", "xref", 6, 6},  // never at offset 0
        {" xref  xref   ", "xref", 7, 1},
        {" startxref  ", "xref", -1, -1},
        {" trailer<<   atrailer<< ", "trailer", 14, 1},  // '<' behind is enough
        {" atrailer \n   ", "trailer", -1, -1},
        {" startxref 5" + tail, "startxref", -1, 1},  // only the last 1024 bytes
        {" startxref 5" + tail.substr(0, 1013), "startxref", -1, 1},
        {"  startxref 5" + tail.substr(0, 1012), "startxref", 2, 2},
        {" trailer 5" + tail, "trailer", 1, 1},
        {placed(9'994), "xref", 9'994, 9'994},  // the last place of a block of 10,000 bytes,
        {placed(9'995), "xref", 9'995, 9'995},  // and the first of the next
        {placed(19'988), "xref", 19'988, 19'988},
        {placed(19'989), "xref", 19'989, 19'989},
    };
    for (const auto& row : rows) {
        CPdf pdf;
        load(pdf, row.content);
        SCOPED_TRACE("row " + std::to_string(&row - rows));
        EXPECT_EQ(pdf.GotoLastId(row.keyword), row.last);
        EXPECT_EQ(pdf.GotoNextId(row.keyword, 0), row.next);
    }
    EXPECT_EQ(CPdf().GotoLastId("xref"), 0);
}

TEST(Search, GetLine) {
    CPdf pdf;
    load(pdf, "\r\nabc\r\n\ndef");
    const struct {
        int pos, max;  // max 0: the form without it
        const char* line;
        int end;
    } rows[] = {{0, 0, "abc", 5}, {3, 0, "bc", 5},   {5, 0, "def", 11},
                {0, 2, "ab", 4},  {8, 9, "def", 11}, {11, 0, "", 11}};
    for (const auto& row : rows) {
        char out[16] = "unset";
        EXPECT_EQ(row.max == 0 ? pdf.GetLine(out, row.pos) : pdf.GetLine(out, row.pos, row.max), row.end) << row.pos;
        EXPECT_STREQ(out, row.line);
    }
}

}  // namespace
