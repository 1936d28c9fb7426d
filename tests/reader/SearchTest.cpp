// Keyword search and lines. The search is defined as a walk over overlapping blocks of 10,000 bytes; whatever way it is
// done, its results must be those of the literal walk.
#include <gtest/gtest.h>

#include <cctype>
#include <random>
#include <string>
#include <string_view>

#include "varnpdf/Pdf.h"

namespace {

/// The walk as it is defined: blocks, positions 1 to length - k - 2, blocks moved on by 9998 - k.
int blockWise(const std::string& content, const std::string& keyword, int mode, int start) {
    const int k = static_cast<int>(keyword.size());
    const int length = static_cast<int>(content.size());
    int at = mode == 1 ? start : 0;
    if (mode == 2 && keyword == "startxref" && length > 1024) at = length - 1024;
    int hit = -1;
    while (at < length) {
        const int size = std::min(10'000, length - at);
        if (size < 10'000 && size < k + 3) break;
        const std::string block = content.substr(static_cast<std::size_t>(at), static_cast<std::size_t>(size));
        for (int i = 1; i <= size - k - 2; ++i) {
            const auto p = static_cast<std::size_t>(i);
            if (block.compare(p, keyword.size(), keyword) != 0) continue;
            const unsigned char before = static_cast<unsigned char>(block[p - 1]);
            const unsigned char after = static_cast<unsigned char>(block[p + keyword.size()]);
            if (after != '<' && !(std::isspace(after) != 0 && std::isspace(before) != 0)) continue;
            hit = at + i;
            if (mode == 1) return hit;
        }
        if (size < 10'000) break;
        at += 9998 - k;
    }
    return hit;
}

void load(CPdf& pdf, std::string content) {
    pdf.ParseContent(reinterpret_cast<unsigned char*>(content.data()), static_cast<unsigned>(content.size()), false);
}

TEST(Search, EqualsTheBlockWiseWalk) {
    std::mt19937 random(20240501);
    const auto below = [&](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
    const std::string keywords[] = {"xref", "trailer", "startxref", "endobj"};
    const int anchors[] = {0, 9'980, 10'000, 19'970, 19'990, 20'000};
    const int lengths[] = {1, 5, 12, 1'023, 1'024, 1'025, 9'990, 9'999, 10'000, 10'001, 10'008, 19'987, 20'003};
    int hits = 0;
    for (int round = 0; round < 400; ++round) {
        std::string content(static_cast<std::size_t>(lengths[below(13)]), " xX\n"[below(4)]);
        for (int i = below(6); i >= 0; --i) {
            static constexpr std::string_view kAround(" \n\v<x%\0", 7);
            const std::string word = std::string(1, kAround[static_cast<std::size_t>(below(7))]) + keywords[below(4)] +
                                     kAround[static_cast<std::size_t>(below(7))];
            const int limit = static_cast<int>(content.size()) - static_cast<int>(word.size());
            const int at = below(3) == 0 ? limit - below(12) : anchors[below(6)] + below(40) - 20;
            if (at >= 0 && at <= limit) content.replace(static_cast<std::size_t>(at), word.size(), word);
        }
        CPdf pdf;
        load(pdf, content);
        for (const std::string& keyword : keywords) {
            for (const int mode : {0, 2}) {
                const int expected = blockWise(content, keyword, mode, 0);
                hits += expected >= 0;
                ASSERT_EQ(pdf.GotoIdGeneral(keyword.c_str(), mode, 0), expected) << keyword << " round " << round;
            }
            for (int i = 0; i < 6; ++i) {
                const int start = i == 0 ? 0 : std::max(0, anchors[below(6)] + below(40) - 20);
                const int expected = blockWise(content, keyword, 1, start);
                hits += expected >= 0;
                ASSERT_EQ(pdf.GotoNextId(keyword.c_str(), start), expected) << keyword << " from " << start;
            }
        }
    }
    EXPECT_GT(hits, 400);
}

TEST(Search, Rules) {
    const std::string tail(1030, ' ');
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
    };
    for (const auto& row : rows) {
        CPdf pdf;
        load(pdf, row.content);
        EXPECT_EQ(pdf.GotoLastId(row.keyword), row.last) << row.content;
        EXPECT_EQ(pdf.GotoNextId(row.keyword, 0), row.next) << row.content;
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
