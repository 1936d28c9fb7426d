// Tokens by the letter of the standard, and the strings written for readers that do not know it.
#include <gtest/gtest.h>

#include "syntax/Lexer.h"

namespace {

using namespace std::literals;
using namespace varnpdf;

TEST(Lexer, ValuesEndWhereTheyEnd) {
    const struct {
        std::string_view text, value;
    } rows[] = {
        {" (a (b) \\) c) x", "(a (b) \\) c)"},
        {"(a\\\\) )", "(a\\\\)"},  // an escaped backslash escapes nothing
        {"% (\n/A/B", "/A"},
        {"[]]", "[]"},
        {"[ 1 [ (]) ] <5D> ] 2", "[ 1 [ (]) ] <5D> ]"},
        {"<< /A (>>) /B << >> >> >>", "<< /A (>>) /B << >> >>"},
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
    for (const auto& [text, value] : rows) {
        const auto found = valueAt(text, 0);
        EXPECT_EQ(found ? found->of(text) : "", value) << text;
    }
    EXPECT_TRUE(valueAt(std::string(500, '[') + std::string(500, ']'), 0));
    EXPECT_FALSE(valueAt(std::string(501, '[') + std::string(501, ']'), 0));
}

TEST(Lexer, DictionaryEntries) {
    const struct {
        std::string_view text, key, value, changed;
    } rows[] = {
        {"<< /A /B /B 1 >>", "/B", "1", "<< /A /B /B X >>"},
        {"<</A(x)>>", "/A", "(x)", "<</A X>>"},
        {"<< /A 1 /A 2 >>", "/A", "2", "<< /A 1 /A X >>"},
        {"<< /B << /A 1 >> >>", "/A", "", "<< /B << /A 1 >> /A X\r\n>>"},
        {"7 0 obj<< /B (a\\\\) /A 12 0 R >>endobj", "/A", "12 0 R", "7 0 obj<< /B (a\\\\) /A X >>endobj"},
        {"<< /B >>", "/B", "", "<< /B X >>"},
        {"[ /A 1 ]", "/A", "", "-"},
        {"<< /A 1", "/A", "", "-"},
        {"<< 1 /A 2 >>", "/A", "", "-"},
    };
    for (const auto& [text, key, value, changed] : rows) {
        EXPECT_EQ(valueOf(text, key), value) << text;
        EXPECT_EQ(withDictionaryEntry(text, key, "X").value_or("-"), changed) << text;
    }
}

TEST(Lexer, Strings) {
    const struct {
        std::string_view literal, bytes;
    } rows[] = {
        {"(a\\(\\)\\\\)", "a()\\"},
        {"(\\101\\1018\\5)", "AA8\5"},
        {"(a\\\r\nb\r\nc\rd)", "ab\nc\nd"},
        {"<4 142>", "AB"},
        {"<414>", "A@"},
        {"(\\n\\r\\q)", "\n\rq"},
    };
    for (const auto& [literal, bytes] : rows) EXPECT_EQ(stringBytes(literal).value_or("-"), bytes) << literal;
    EXPECT_FALSE(stringBytes("(a"));
    EXPECT_FALSE(stringBytes("/a"));
    // What is written is read back, and hides nothing that ends an object or a string.
    for (const std::string_view bytes : {"plain"sv, "((("sv, "\\"sv, "\r\n\0\xff"sv, "endobj) endobj"sv}) {
        const std::string literal = literalString(bytes);
        EXPECT_EQ(stringBytes(literal).value_or("-"), bytes);
        EXPECT_EQ(literal.find("endobj"), std::string::npos) << literal;
    }
}

TEST(Lexer, TextStrings) {
    const struct {
        std::string_view utf8, text;
    } rows[] = {
        {"a b", "a b"},
        {"\xc3\x84.pdf", "\xc4.pdf"},
        {"\xe2\x82\xac", "\xfe\xff\x20\xac"},
        {"a\xf0\x9f\x98\x80", "\xfe\xff\0a\xd8\x3d\xde\0"sv},
        {"\xc2\xad", "\xfe\xff\0\xad"sv},
        {"\xc3\xbe\xc3\xbfx", "\xfe\xff\0\xfe\0\xff\0x"sv},  // would look like a byte order mark
        {"\xe4.pdf", "\xe4.pdf"},                            // not UTF-8
    };
    for (const auto& [utf8, text] : rows) EXPECT_EQ(textString(utf8), text) << utf8;
}

}  // namespace
