// Tokens, dictionaries and values by the letter of the standard, and the strings written for readers that do not know it.
#include <gtest/gtest.h>

#include "syntax/Dictionary.h"
#include "syntax/Lexer.h"
#include "syntax/Values.h"

namespace {

using namespace std::literals;
using namespace varnpdf;

// The value at the start of a text, "" when there is none.
std::string_view valueAt(std::string_view text) { return Lexer(text).nextValue().value_or(""sv); }

TEST(Lexer, ValuesEndWhereTheyEnd) {
    const struct {
        std::string_view text, value;
    } rows[] = {
        {" (a (b) \\) c) x", "(a (b) \\) c)"},
        {"(a\\\\) )", "(a\\\\)"},  // an escaped backslash escapes nothing
        {"% (\n/A/B", "/A"},
        {"[]]", "[]"},
        {"[ 1 [ (]) ] <5D> ] 2", "[ 1 [ (]) ] <5D> ]"},
        {"[% ] no end\n31 0 R]", "[% ] no end\n31 0 R]"},
        {"<< /A (>>) /B << >> >>", "<< /A (>>) /B << >> >>"},
        {"12 0 R 5", "12 0 R"},
        {"12 0 5 R", "12"},
        {"true]", "true"},
        {"\0\t-1.5e"sv, "-1.5e"},
        {"(never closed", ""},
        {"[ 1 2", ""},
        {"] 1", ""},
        {"<41", ""},
        {"", ""},
    };
    for (const auto& [text, value] : rows) EXPECT_EQ(valueAt(text), value) << text;
    EXPECT_NE(valueAt(std::string(500, '[') + std::string(500, ']')), "");
    EXPECT_EQ(valueAt(std::string(501, '[') + std::string(501, ']')), "");
    EXPECT_EQ(itemsOf("[1 0 R(])<<>>]"), (std::vector{"1 0 R"sv, "(])"sv, "<<>>"sv}));
    EXPECT_FALSE(itemsOf("[1 2"));
}

TEST(Dictionary, EntriesAreReplacedWhereEveryViewerSeesThem) {
    const struct {
        std::string_view text, key, value, lines, spliced;
    } rows[] = {
        {"<< /A /B /B 1 >>", "/B", "1", "<< /A /B /B X >>", "<< /A /B /B X >>"},
        {"<</A(x)>>", "/A", "(x)", "<</A X>>", "<</A X>>"},
        {"<</A\n<<>>>>", "/A", "<<>>", "<</A X>>", "<</A\nX>>"},
        {"<</V 1/#56 2>>", "/V", "2", "<</V X>>", "<</V X>>"},  // the same name, twice
        {"<< /#56 1 >>", "/V", "1", "<< /V X >>", "<< /#56 X >>"},
        {"<< /B << /A 1 >> >>", "/A", "", "<< /B << /A 1 >> \r\n/A X\r\n>>", "<< /B << /A 1 >> /A X\r\n>>"},
        {"7 0 obj<< /B (a\\\\) /A 12 0 R >>endobj", "/A", "12 0 R", "7 0 obj<< /B (a\\\\) /A X >>endobj",
         "7 0 obj<< /B (a\\\\) /A X >>endobj"},
        {"5 0 obj\n<</T (V) /V/V/X 1>>\nendobj", "/V", "/V", "5 0 obj\n<</T (V) /V X/X 1>>\nendobj",
         "5 0 obj\n<</T (V) /V X/X 1>>\nendobj"},
        {"<</K<</V 1>>%/V 2\n>>", "/V", "", "<</K<</V 1>>%/V 2\n/V X\r\n>>", "<</K<</V 1>>%/V 2\n/V X\r\n>>"},
        {"<<>> stream\n<</V 1>>", "/V", "", "<<\r\n/V X\r\n>> stream\n<</V 1>>", "<</V X\r\n>> stream\n<</V 1>>"},
        {"<</V 1 0 R /W[1 0 R]>>", "/V", "1 0 R", "<</V X /W[1 0 R]>>", "<</V X /W[1 0 R]>>"},
        {"<< /B >>", "/B", "", "<< /B X >>", "<< /B X >>"},
        {"<</A null>>", "/A", "", "<</A X>>", "<</A X>>"},
        {"<< 1 /A 2 ] >>", "/A", "2", "<< 1 /A X ] >>", "<< 1 /A X ] >>"},  // what is no key is passed over
        {"[ /A 1 ]", "/A", "", "-", "-"},
        {"<< /A 1", "/A", "", "-", "-"},
        {"<</A (open", "/A", "", "-", "-"},
    };
    const auto edited = [](std::string_view text, std::string_view key, std::string_view value, EntryLayout layout) {
        std::string out(text);
        const bool done = setEntry(out, key, value, layout);
        return done ? out : out == text ? "-" : "changed in spite of failure";
    };
    for (const auto& [text, key, value, lines, spliced] : rows) {
        EXPECT_EQ(valueOf(text, key), value) << text;
        EXPECT_EQ(edited(text, key, "X", EntryLayout::Lines), lines) << text;
        EXPECT_EQ(edited(text, key, "X", EntryLayout::Splice), spliced) << text;
    }
    EXPECT_EQ(edited("<</T ((V) \\) /V 1)/V 2>>", "/V", "", EntryLayout::Lines), "<</T ((V) \\) /V 1)>>");
}

TEST(Values, Strings) {
    const struct {
        std::string_view literal, bytes;
    } rows[] = {
        {"(a\\(\\)\\\\)", "a()\\"},
        {"(a (b) c)", "a (b) c"},
        {"(\\12345\\7x\\53)", "S45\ax+"},
        {"(\\101\\1018\\5)", "AA8\5"},
        {"(a\\\r\nb\r\nc\rd)", "ab\nc\nd"},
        {"<4 142>", "AB"},
        {"<414>", "A@"},
        {"% (\n(b)", "b"},
        {"(\\n\\r\\q)", "\n\rq"},
    };
    for (const auto& [literal, bytes] : rows) EXPECT_EQ(stringOf(literal).value_or("-"), bytes) << literal;
    EXPECT_FALSE(stringOf("(a"));
    EXPECT_FALSE(stringOf("/a"));
    // What is written is read back, and hides nothing that ends an object or a string.
    for (const std::string_view bytes : {"plain"sv, "((("sv, "\\"sv, "\r\n\0\xff"sv, "endobj) endobj"sv}) {
        const std::string literal = literalString(bytes);
        EXPECT_EQ(stringOf(literal).value_or("-"), bytes);
        EXPECT_EQ(literal.find("endobj"), std::string::npos) << literal;
    }
}

}  // namespace
