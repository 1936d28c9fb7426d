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
    check({"12 0 R -> 1 12 0", " 1.5 0 Rx -> 1 0 0", "12 R -> 0 -1 -1", "12 0R -> 0 -1 -1", "[12 0 R -> 0 -1 -1"},
          [](const std::string& text) {
              int num = -1, gen = -1;
              const bool result = CPdfHelper::IsReference2(text.c_str(), &num, &gen);
              return shown(result, num, gen);
          });
}

TEST(IsReference, ScanningIsLenient) {
    check({"12 0 R -> 1 12 0", "[12 0 R] -> 0 -1 -1", "12 0 -> 1 12 0", "/P 12 0 R -> 1 12 0", "/P 12 -> 1 -1 -1",
           "7 8 9 -> 1 8 9", "1x 2 R -> 1 1 -1", "12 -> 0 -1 -1", "]12 0[ -> 0 -1 -1", " \v12 0 -> 1 12 0",
           "[12 3 R -> 1 -1 -1", " -> 0 -1 -1"},
          [](std::string& text) {
              int num = -1, gen = -1;
              const bool result = CPdfHelper::IsReference(text.data(), &num, &gen);
              return shown(result, num, gen);
          });
    EXPECT_EQ(varnpdf::isReference("/P 12"), ObjectRef{}) << "what cannot be read counts 0 inside";
    EXPECT_EQ(varnpdf::scanReference(" 5 6"), (ObjectRef{5, 6}));
    EXPECT_EQ(varnpdf::scanReference("5 R"), std::nullopt);
}

TEST(IsDictionary, BalancedAngleBrackets) {
    check({" << /A 1 >>\v\n -> 1 1", "<< /A <1F> >> -> 1 1", "<< /A 1 > -> 0 0", "<< -> 0 0", "<< /A (<) >> -> 0 0",
           "<<>> -> 1 1", "<< /A 1 >> /B -> 0 0", "\a<< /A 1 >> -> 0 0"},
          [](std::string& text) {
              const bool whole = CPdfHelper::IsDictionary(text.data());
              const int len = static_cast<int>(text.size());
              text += " rest >";
              return shown(whole, CPdfHelper::IsDictionary2(text.data(), len));
          });
}

TEST(Brackets, StrippedAndCreatedInPlace) {
    check({"  [1 0 R]  -> 1 0 R:[1 0 R]:[1 0 R]", "[[1]] -> [1]:[[1]]:[[1]]", " <AB>  -> <AB>:AB:<AB>",
           "(a)  -> (a):(a):a", "[ a  ->  a:[ a:[ a", "a]  -> a:a]:a]", "  -> ::"},
          [](const std::string& text) {
              std::string results;
              for (const int kind : {1, 2, 3}) {
                  std::string copy = text;
                  CPdfHelper::StripBrackets(copy.data(), kind);
                  results += (kind == 1 ? "" : ":") + std::string(copy.c_str());
              }
              return results;
          });
    for (const auto& [kind, want] : {std::pair{1, "[1 0 R]"}, {0, "(1 0 R)"}, {2, "(1 0 R)"}}) {
        char text[8] = "1 0 R";
        CPdfHelper::CreateBrackets(text, kind);
        EXPECT_STREQ(text, want);
    }
    check({"a]b[1 [2] 3] -> 1 [1 [2]", "no -> 1 ", "]1[ -> 1 "}, [](std::string& text) {
        Out out(text);
        const int result = CPdfHelper::StripReferenceArray(text.data(), out);
        return shown(result, out);
    });
}

TEST(ReferenceArrays, CountTypeAndEntries) {
    check({"[1 0 R 20 0 R 25 0 R] -> 3 1 1 0 R 20 0 R 25 0 R:1 0 R 20 0 R 25 0 :1",
           "[3 12 0 R] -> 1 2 3 12 0 R:3 12 0 :3", "[/XYZ 1 2] -> 0 0 ::/", "[/R 1] -> 1 0 /R:/:/",
           "[] -> 0 0 ::", "1 0 R -> 0 1 ::1", "7 -> 0 0 7:7:7"},
          [](std::string& text) {
              const int len = static_cast<int>(text.size());
              Out through(text), before(text), other(text);
              CPdfHelper::GetArrayEntry(text.data(), len, -1, through);
              CPdfHelper::GetArrayEntry(text.data(), len, 0, before);
              CPdfHelper::GetArrayEntry(text.data(), len, 5, other);
              const std::string entries = shown(through) + ":" + shown(before) + ":" + shown(other);
              return shown(CPdfHelper::GetArrayAnz(text.data(), len), CPdfHelper::GetArrayType(text.data(), len),
                           entries);
          });
}

TEST(StringToHex, PairsWithoutCarriageReturns) {
    const auto bytes = [](unsigned len) {
        return [len](std::string& hex) {
            std::vector<unsigned char> out(len / 2 + 1, 0x77);
            EXPECT_EQ(CPdfHelper::StringToHex(hex.data(), len, out.data()), 1);
            return varnpdf::toHex({reinterpret_cast<const char*>(out.data()), out.size()});
        };
    };
    check({"0aFF -> 0aff77", "0\ra\rF\rf99 -> 0aff77", "1 G2 -> 100277", "AB -> ab0077"}, bytes(4));
    check({"0AFF1 -> 0a77"}, bytes(3));
    check({"AB -> 77"}, bytes(0));
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
