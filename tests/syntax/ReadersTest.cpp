// The readers of PDF objects: result, numbers and text that each input gives.
#include "syntax/Readers.h"

#include <algorithm>
#include <cfloat>
#include <cstdlib>
#include <random>

#include "tests/syntax/Rows.h"
#include "varnpdf/PdfHelper.h"

namespace {

TEST(ReadNumber, BoundsOnlyTheSkip) {
    const auto end = [](const char* text, unsigned bound) {
        float real = -1;
        int integer = -1, isFloat = -1, at = -1;
        return CPdfHelper::ReadNumber(text, bound, &real, &integer, &isFloat, &at, false) == 1 ? at : -1;
    };
    EXPECT_EQ(end("1", 0), -1);
    EXPECT_EQ(end("  1", 2), -1) << "the bound holds only white space";
    EXPECT_EQ(end("  123", 3), 5) << "the bound does not cut the number";
}

TEST(ReadNumber, ConvertsLikeTheCLibraryAndSaturates) {
    std::mt19937 random(7);
    const std::string_view alphabet = "0012345679..+-eExR";
    int compared = 0;
    for (int round = 0; round < 200000; ++round) {
        std::string token(1 + random() % 9, '0');
        for (char& c : token) c = alphabet[random() % alphabet.size()];
        const auto read = varnpdf::readNumber(token);
        if (!read) continue;
        ++compared;
        if (read->isFloat) {
            const double value = std::clamp<double>(std::strtod(token.c_str(), nullptr), -FLT_MAX, FLT_MAX);
            ASSERT_EQ(read->real, static_cast<float>(value)) << token;
        } else {
            ASSERT_EQ(read->integer, std::strtol(token.c_str(), nullptr, 10)) << token;
        }
    }
    EXPECT_GT(compared, 10000);
    const std::string zeros(400, '0');
    const struct {
        std::string token;
        float value;
    } extremes[] = {{"1" + zeros + ".", FLT_MAX},        {"-1" + zeros + ".5", -FLT_MAX}, {"0." + zeros + "1", 0},
                    {zeros + zeros + ".5e999", FLT_MAX}, {"1000000.0e-99999", 0},         {"100000.0e+50", FLT_MAX}};
    for (const auto& row : extremes) EXPECT_EQ(varnpdf::readNumber(row.token).value().real, row.value) << row.token;
    EXPECT_EQ(varnpdf::readNumber("99999999999").value().integer, 2147483647);
    EXPECT_EQ(varnpdf::readNumber("-99999999999999999999999").value().integer, -2147483647 - 1);
}

TEST(ReadObject, NestingEndsAtTheLimitAndWorkGrowsWithTheText) {
    const auto nested = [](int depth) {
        std::string text;
        for (int i = 0; i < depth; ++i) text += i % 2 == 0 ? "[" : "<</K ";
        text += '1';
        while (depth-- > 0) text += depth % 2 == 0 ? "]" : ">>";
        return text;
    };
    const std::string deepest = nested(500);
    EXPECT_EQ(varnpdf::readObject(deepest).value().end, deepest.size());
    EXPECT_FALSE(varnpdf::readObject(nested(501)));
    EXPECT_TRUE(varnpdf::readObject("[<</A 1>>]", 2));
    EXPECT_FALSE(varnpdf::readObject("[<</A 1>>]", 1));
    // Searching the rest of the text once for each of a million elements would not come to an end here.
    std::string text = "[";
    for (int i = 0; i < 1'000'000; ++i) text += "17 (a) ";
    text += "]";
    EXPECT_EQ(varnpdf::readObject(text).value().end, text.size());
}

TEST(Predicates, WhiteSpaceAndLengthBounds) {
    EXPECT_FALSE(CPdfHelper::IsTrailerDict("  xref", 1));
    EXPECT_EQ(CPdfHelper::SkipWhitespaces(" \a\t1", 9), 3);
    EXPECT_EQ(CPdfHelper::SkipWhitespaces(" \a\t1", 2), 2);
    EXPECT_EQ(CPdfHelper::SkipWhitespaces("\v1", 2), 0);
    EXPECT_EQ(CPdfHelper::SkipWhitespaces("   ", -1), 0);
}

}  // namespace
