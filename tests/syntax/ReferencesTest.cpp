// References, arrays of references, brackets and hexadecimal values.
#include "syntax/Reference.h"

#include "syntax/Readers.h"
#include "syntax/Text.h"
#include "tests/syntax/Rows.h"
#include "varnpdf/PdfHelper.h"

namespace {

using varnpdf::ObjectRef;

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
