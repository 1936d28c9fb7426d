// The readers of PDF objects: result, numbers and text that each input gives.
#include "syntax/Readers.h"

#include <algorithm>
#include <cfloat>
#include <cstdlib>
#include <random>

#include "tests/syntax/Rows.h"
#include "varnpdf/PdfHelper.h"

namespace {

std::string number(const std::string& text, std::size_t bound) {
    float real = -1;
    int integer = -1, isFloat = -1, end = -1;
    const int result =
        CPdfHelper::ReadNumber(text.c_str(), static_cast<unsigned>(bound), &real, &integer, &isFloat, &end, false);
    return shown(result, isFloat, integer, real, end);
}

TEST(ReadNumber, ValueAndEnd) {
    const struct {
        std::string token, value;
    } rows[] = {{"1", "0 1 -1"},        {"123", "0 123 -1"}, {"1.0", "1 -1 1"},       {"1.", "1 -1 1"},
                {".1", "1 -1 0.1"},     {".", "1 -1 0"},     {"123.5", "1 -1 123.5"}, {"123.", "1 -1 123"},
                {".123", "1 -1 0.123"}, {"12R", "0 12 -1"}};
    for (const auto& [token, value] : rows) {
        for (const char* behind : {"", " ", " 23", "]", "/"}) {
            const std::string text = token + behind, shifted = " " + text;
            EXPECT_EQ(number(text, text.size()), shown(1, value, token.size())) << text;
            EXPECT_EQ(number(shifted, shifted.size()), shown(1, value, token.size() + 1)) << shifted;
        }
    }
    for (const char* text : {"", " ", "1A3", "ABC", "]", "/1"}) EXPECT_EQ(number(text, 3), "0 -1 -1 -1 -1") << text;
    EXPECT_EQ(number("1", 0), "0 -1 -1 -1 -1");
    EXPECT_EQ(number("  1", 2), "0 -1 -1 -1 -1") << "the bound holds only white space";
    EXPECT_EQ(number("  123", 3), "1 0 123 -1 5") << "the bound does not cut the number";
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

TEST(ReadNumber, PairsAndArrays) {
    check({" -> 0 -1 -1 -1 -1 -1 -1 -1", "1 -> 0 -1 -1 -1 -1 -1 -1 -1", "1 2 -> 1 -1 -1 1 2 0 0 3",
           " 1 2.5 3 -> 1 -1 2.5 1 -1 0 1 6"},
          [](const std::string& text) {
              float f1 = -1, f2 = -1;
              int i1 = -1, i2 = -1, is1 = -1, is2 = -1, end = -1;
              const int result = CPdfHelper::ReadPairOfNumbers(text.c_str(), &f1, &f2, &i1, &i2, &is1, &is2, &end);
              return shown(result, f1, f2, i1, i2, is1, is2, end);
          });
    check({"[1 2]  -> 1 2", "[1 2 3] -> 1 3", "1 2 -> 1 2", " 1 2  -> 1 2", " [123] -> 1 1", "[1 A 3] -> 0 1",
           "[] -> 0 0", "[1 [2]] -> 0 1"},
          [](const std::string& text) {
              int count = -1;
              const int result = CPdfHelper::GetNumArraySize(text.c_str(), &count);
              return shown(result, count);
          });
}

TEST(ReadObject, ResultTypeLengthAndText) {
    const auto read = [](const std::string& text) {
        Out out(text);
        int type = -1, len = -1;
        const int result = CPdfHelper::ReadObject(text.c_str(), out, &type, &len);
        return shown(result, type, len, out);
    };
    check({" -> 0 0 0 ", "false -> 1 1 5 false", "true -> 1 1 4 true", " true -> 1 1 6 true", " FALSE -> 1 1 6 FALSE",
           "true ] -> 0 0 0 ", "1 -> 1 2 1 1", "1.5 -> 1 2 3 1.5", "12 R -> 1 2 2 12", "nULL -> 1 8 4 nULL",
           " nullify -> 1 8 5 null", "nul -> 0 0 0 "},
          read);
    check({"(huhu) -> 1 3 6 (huhu)", " (hu -> 0 3 0 ", "< -> 0 3 0 ", "<AFFE9815> -> 1 3 10 <AFFE9815>",
           "/Name123 -> 1 4 8 /Name123", " /A/B -> 1 4 3 /A", "[1 2 -> 0 5 0 ", "[ -> 0 0 0 ", "<< -> 0 0 0 ",
           "13 0 R -> 1 9 6 13 0 R", " 13 0 Rest -> 1 9 7 13 0 R"},
          read);
    check({"[ 1 2 3 ] -> 1 5 9 [ 1 2 3 ]", " [ 1 2 3 ] -> 1 5 10 [ 1 2 3 ]", "<< /Dict >> -> 1 6 11 << /Dict >>",
           " << /Dict >> -> 1 6 12 << /Dict >>", " << Dict >> -> 0 6 0 ", "<< /Dict >>stream zeug -> 0 7 0 ",
           "<</A <</B [ 1 0 R ]>> >> tail -> 1 6 24 <</A <</B [ 1 0 R ]>> >>",
           "<< /Dict >>stream zeug endstream -> 1 7 22 << /Dict >>stream zeug",
           " << /Dict >>streamendstream -> 1 7 17 << /Dict >>strea",
           "<< /Dict >> stream zeug endstream -> 1 6 11 << /Dict >>"},
          read);
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

TEST(ReadArray, WholeAndElements) {
    check({"[ 1 2 3] -> 1 8 [ 1 2 3]", "[1 2 3 ] -> 1 8 [1 2 3 ]", " [ 1 2 3] -> 1 9  [ 1 2 3]",
           "[[1] 2]] -> 1 7 [[1] 2]", "[ /test1 2 <<dict>>] -> 0 0 ", "[] -> 0 0 ", "x [1] -> 0 0 ", "[1 2  -> 0 0 "},
          [](const std::string& text) {
              Out out(text);
              int len = 0;
              const int result = CPdfHelper::ReadArray(text.c_str(), out, &len);
              return shown(result, len, out);
          });
    check({"[ 1 2 3] -> 0: 1:1 1:2 1:3 0:", "[/A 1 0 R 20 0 R] -> 0: 1:1 0 R 1:20 0 R 0: 0:", "[] -> 0: 0: 0: 0: 0:"},
          [](const std::string& text) {
              std::string all;
              for (int index = -1; index < 4; ++index) {
                  Out out(text);
                  const int result = CPdfHelper::ReadArrayElement(text.c_str(), out, index);
                  all += (index < 0 ? "" : " ") + std::to_string(result) + ":" + out.bytes.data();
              }
              return all;
          });
}

TEST(ReadDict, WholeTextOrCut) {
    const auto read = [](const std::string& text, bool cut) {
        Out out(text);
        int len = -1;
        const int result = CPdfHelper::ReadDict(text.c_str(), out, &len, cut);
        return shown(result, len, out);
    };
    check({"[ 1 2 3] -> 0 0 ", "<< /test 113 >> -> 1 15 << /test 113 >>", " << /test 113 >> -> 1 16  << /test 113 >>",
           "<< /test 113 >>  -> 1 16 << /test 113 >> ", "<< /test 113 > -> 0 0 ", "<< test >> -> 0 0 ",
           "12 0 obj \r\n<< /test 113 >>\r\nendobj\r\n -> 1 36 12 0 obj \r\n<< /test 113 >>\r\nendobj\r\n"},
          [&](const std::string& text) { return read(text, false); });
    check({"<<>> -> 0 0 ", "<< /a test >> -> 0 0 ", "x << /a << /b 1 >>> > y -> 1 21 x << /a << /b 1 >>> >",
           "<< /a > /b >> >> -> 1 13 << /a > /b >>"},
          [&](const std::string& text) { return read(text, true); });
}

TEST(ReadDictEntry, KeyEndAndValue) {
    const auto read = [](const char* key) {
        return [key](const std::string& text) {
            Out out(text);
            int keyPos = -1, end = -1;
            const int result = CPdfHelper::ReadDictEntry(text.c_str(), key, out, &keyPos, &end);
            return shown(result, keyPos, end, out);
        };
    };
    check({"<</Test1 12 0 R /Test2 [1 2 3] /Test3 << /dict >> /Test4 (huhu)>> -> 1 50 63 (huhu)",
           "<</Test1 12 0 R /Test2 [1 2 3] /Test3 << dict >> /Test4 (huhu)>> -> 0 0 0 "},
          read("/Test4"));
    check({"<</TestKey 1109>> -> 1 2 15 1109", "<</TestKey 1109 >> -> 1 2 15 1109", "<< /TestKey 1109>> -> 1 3 16 1109",
           "<< /TestKey (1109)>> -> 1 3 18 (1109)"},
          read("/TestKey"));
    check({"1 0 obj<</T  3 0 R>> -> 1 9 18 3 0 R", "<< /A /T /T 1 >> -> 1 6 11 /T",
           "<< /R << /T 9 >> /T 1 >> -> 1 17 21 1", "<< /A 1 /T >> -> 1 8 10 ", "<< /T x >> -> 0 0 0 ",
           "<< /A 1 >> -> 0 0 0 ", "<< -> 0 0 0 ", "/T 1 -> 0 0 0 "},
          read("T"));
}

TEST(ReadString, KindLengthAndText) {
    check({"Abc12 -> 0 0 0 ", "(ABC12 3) -> 1 1 9 (ABC12 3)", "<AA450F> -> 1 2 8 <AA450F>",
           " (a(b)c)d) -> 1 1 8  (a(b)c)", "(a\\)b)c -> 1 1 6 (a\\)b)", "(a\\\\)b) -> 1 1 7 (a\\\\)b)",
           "(a(b) -> 0 0 0 ", "<AA -> 0 0 0 "},
          [](const std::string& text) {
              Out out(text);
              int kind = -1, len = -1;
              const int result = CPdfHelper::ReadString(text.c_str(), out, &kind, &len, true);
              return shown(result, kind, len, out);
          });
}

TEST(ReadTrailerDict, StartEndAndText) {
    const std::string table =
        "xref \r\n 1 2 N \r\n 2 3 N \r\n trailer\r\n<< /Size 123\r\n>>\r\n Startxref\r\n 123\r\n%%EOF";
    check({table + " -> 1 35 51 << /Size 123\r\n>>",
           " xref trailer <</I <</A 1>> /S 1>> >> -> 1 14 34 <</I <</A 1>> /S 1>>",
           "xref trailer<</I<</A 1>>>> 9 -> 1 12 25 <</I<</A 1>>>", "xref trailer << /Size 1 > -> 0 -1 -1 ",
           "xref trailer >> << -> 0 -1 -1 ", "xref << >> -> 0 -1 -1 ", "1 xref trailer << >> -> 0 -1 -1 "},
          [](const std::string& text) {
              Out out(text);
              int start = -1, end = -1;
              const int result = CPdfHelper::ReadTrailerDict(text.c_str(), out, &start, &end);
              return shown(result, start, end, out);
          });
}

TEST(Predicates, WhiteSpaceAndLengthBounds) {
    EXPECT_TRUE(CPdfHelper::IsTrailerDict("xref \r\n 1 2 N \r\n 2 3 N \r\n trailer\r\n", 35));
    EXPECT_FALSE(CPdfHelper::IsTrailerDict(" ", 1) || CPdfHelper::IsTrailerDict("  xref", 1));
    EXPECT_TRUE(CPdfHelper::IsArray(" [", 2));
    EXPECT_FALSE(CPdfHelper::IsArray("[", 1) || CPdfHelper::IsArray("x[", 2));
    EXPECT_TRUE(CPdfHelper::IsDict("\a<<", 3));
    EXPECT_FALSE(CPdfHelper::IsDict("<<", 2) || CPdfHelper::IsDict("< <", 3));
    EXPECT_TRUE(CPdfHelper::CheckOnlyWhiteSpaces("     ") && CPdfHelper::CheckOnlyWhiteSpaces(""));
    EXPECT_FALSE(CPdfHelper::CheckOnlyWhiteSpaces("[1 2]") || CPdfHelper::CheckOnlyWhiteSpaces(" 1 "));
    EXPECT_EQ(CPdfHelper::SkipWhitespaces(" \a\t1", 9), 3);
    EXPECT_EQ(CPdfHelper::SkipWhitespaces(" \a\t1", 2), 2);
    EXPECT_EQ(CPdfHelper::SkipWhitespaces("\v1", 2), 0);
    EXPECT_EQ(CPdfHelper::SkipWhitespaces("   ", -1), 0);
}

TEST(LiteralEscapes, WrittenAndRemoved) {
    check({"test -> test", "te(st -> te\\(st", "te(1)st -> te\\(1\\)st", "(a) -> (a\\)", "a\\) -> a\\\\)", " -> "},
          [](const std::string& text) {
              Out out(2 * text.size() + 1);
              EXPECT_EQ(CPdfHelper::CreateLiteralEscapeSeq(text.c_str(), out), 1);
              return shown(out);
          });
    check({"te\\(st -> te(st", "te\\(1\\)st -> te(1)st", "a\\\\) -> a)"}, [](std::string& text) {
        Out out(text);
        EXPECT_EQ(CPdfHelper::RemoveLiteralEscapeSeq(text.c_str(), out), 1);
        EXPECT_EQ(CPdfHelper::RemoveLiteralEscapeSeq(text.c_str(), text), 1);
        EXPECT_EQ(text, out.bytes.data());
        return text;
    });
}

TEST(GetObjectContent, BetweenTheKeywords) {
    check({"59 0 obj1234 endobj -> 1 5 1234 ", "1 0 obj \r\n[2]endobj endobj -> 1 3 [2]", "1 0 obj 7 -> 1 1 7",
           "7 -> 1 0 "},
          [](const std::string& text) {
              Out out(text);
              int len = -1;
              const int result = CPdfHelper::GetObjectContent(text.c_str(), 19, out, &len);
              return shown(result, len, out);
          });
}

}  // namespace
