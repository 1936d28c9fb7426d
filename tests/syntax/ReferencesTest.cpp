// References, arrays of references, brackets and hexadecimal values.
#include "syntax/Reference.h"

#include <random>

#include "syntax/Readers.h"
#include "syntax/Text.h"
#include "tests/syntax/Rows.h"
#include "varnpdf/PdfHelper.h"

namespace {

using varnpdf::ObjectRef;

/// The rule step by step: look for the first R of the text, cut there, read two numbers.
std::optional<ObjectRef> referenceStepByStep(const std::string& text) {
    const std::size_t keyword = text.find('R');
    if (text.starts_with('[') || keyword == std::string::npos) return std::nullopt;
    const std::string cut = text.substr(0, keyword + 1);
    const auto first = varnpdf::readNumber(cut, cut.size());
    if (!first) return std::nullopt;
    const std::string behind = cut.substr(first->end);
    const auto second = varnpdf::readNumber(behind, behind.size());
    if (!second) return std::nullopt;
    const std::size_t at = second->end + varnpdf::skipWhitespaces(behind.substr(second->end));
    if (at >= behind.size() || behind[at] != 'R') return std::nullopt;
    return ObjectRef{first->isFloat ? 0 : first->integer, second->isFloat ? 0 : second->integer};
}

TEST(IsReference2, EqualsTheStepwiseRule) {
    std::mt19937 random(11);
    const std::string pieces[] = {"1", "0", "12", " ", " ", " ", "R", "R", ".", "/", "[", "]", "\n", "A", "-"};
    int references = 0;
    for (int round = 0; round < 500000; ++round) {
        std::string text;
        for (std::size_t count = random() % 10; count > 0; --count) text += pieces[random() % std::size(pieces)];
        const auto want = referenceStepByStep(text);
        ASSERT_EQ(varnpdf::isReference2(text), want) << text;
        references += want ? 1 : 0;
    }
    EXPECT_GT(references, 500);
}

TEST(IsReference, ScanningIsLenient) {
    EXPECT_EQ(varnpdf::isReference("/P 12"), ObjectRef{}) << "what cannot be read counts 0 inside";
    EXPECT_EQ(varnpdf::scanReference(" 5 6"), (ObjectRef{5, 6}));
    EXPECT_EQ(varnpdf::scanReference("5 R"), std::nullopt);
}

TEST(SmallUtilities, InPlaceAndArithmetic) {
    check({" a \t\v\r\n ->  a", "a\a -> a\a", "   -> "}, [](std::string& text) {
        CPdfHelper::StringTrimRight(text.data());
        return std::string(text.c_str());
    });
    for (const auto& [n, want] : {std::pair{2, "ab"}, {9, "abc"}, {-1, ""}}) {
        char text[] = "abc";
        EXPECT_STREQ(CPdfHelper::left(text, n), want);
    }
    EXPECT_EQ(CPdfHelper::potenz(10, 9), 1000000000);
    EXPECT_EQ(CPdfHelper::potenz(3, 21), 1870418611) << "3^21 modulo 2^32";
    EXPECT_EQ(CPdfHelper::potenz(7, -1), 1);
    char flags[] = "a/F b/F";
    EXPECT_EQ(CPdfHelper::RemoveFlag(flags, ""), 1);
    EXPECT_EQ(CPdfHelper::RemoveFlag(flags, "/F"), 1);
    EXPECT_STREQ(flags, "a b/F");
    EXPECT_EQ(CPdfHelper::RemoveFlag(flags, "/X"), 0);
    EXPECT_EQ(CPdfHelper::FindPosition(flags, 5, "b/F"), 2);
    EXPECT_EQ(CPdfHelper::FindPosition(flags, 4, "b/F"), 0);
}

}  // namespace
