// Byte classes, trimming, replacing, hexadecimal, UTF-8 and literal-string escapes.
#include "varnpdf/TokHelp.h"

#include <cstdlib>
#include <memory>

#include "syntax/Text.h"
#include "tests/syntax/Rows.h"

namespace {

using namespace std::string_literals;

std::unique_ptr<char, decltype(&std::free)> own(char* p) { return {p, &std::free}; }

TEST(Classes, MembersOfEachSetAndNoOthers) {
    const struct {
        bool (*is)(char);
        std::string members;
    } rows[] = {{&CTokHelp::isWhiteSpace, " \n\r\f\t\a"},
                {&CTokHelp::isDelimiter, "()<>[]{}/%"},
                {&CTokHelp::isBracket, "(<[{)>]}"},
                {&CTokHelp::isBracketOpen, "(<[{"},
                {&CTokHelp::isBracketClose, ")>]}"},
                {&CTokHelp::isNumeric, "0123456789"},
                {&CTokHelp::isNumber, "0123456789.+-"},
                {&CTokHelp::isAscii, "0123456789ABCDEFabcdef"},
                {&CTokHelp::IsEOL, "\n\r"}};
    for (const auto& row : rows) {
        for (int c = 0; c < 256; ++c) {
            const char byte = static_cast<char>(c);
            EXPECT_EQ(row.is(byte), row.members.find(byte) != std::string::npos) << row.members << " byte " << c;
        }
    }
}

TEST(Tokens, StringNameStreamNullAndDigits) {
    check({"(a) -> 1 0 0 0 0", "<4 -> 1 0 0 0 0", "< -> 1 0 0 0 0", "<< -> 0 0 0 0 0", "/A -> 0 1 0 0 0",
           " /A -> 0 0 0 0 0", "<< >> endstream -> 0 0 1 0 0", "< stream -> 1 0 0 0 0", "12ab -> 0 0 0 0 1",
           " -> 0 0 0 0 1", "1a -> 0 0 0 0 1", "1ab -> 0 0 0 0 0", "+-.xx -> 0 0 0 0 1", "1\0 -> 0 0 0 1 1"s},
          [](std::string& s) {
              return shown(CTokHelp::isString(s.c_str()), CTokHelp::isName(s.c_str()), CTokHelp::isStreamDict(s.data()),
                           CTokHelp::isUsingNull(s.data(), static_cast<long>(s.size())),
                           CTokHelp::OnlyDecimalDigits(s.data()));
          });
    EXPECT_FALSE(CTokHelp::isUsingNull(nullptr, -1));
}

TEST(Strings, CopiesAndAppends) {
    char source[] = "abc";
    EXPECT_STREQ(own(CTokHelp::Strdup(source, 2)).get(), "ab");
    EXPECT_STREQ(own(CTokHelp::Strdup(static_cast<const char*>(source))).get(), "abc");
    EXPECT_EQ(CTokHelp::Strdup(static_cast<char*>(nullptr)), nullptr);
    char text[8] = "ab\0xxxx";
    CTokHelp::AppendCharToString(text, 'c');
    CTokHelp::AppendChar(text, 'd');
    EXPECT_STREQ(text, "abcd");
    CTokHelp::AppendChar(text, 1, 'z');
    EXPECT_STREQ(text, "az");
    CTokHelp::AppendChar(nullptr, 'c');
    CTokHelp::AppendChar(nullptr, 3, 'c');
    // The address sanitizer sees whether the string is freed, and only once.
    char* block = CTokHelp::Strdup("abcdef");
    CTokHelp::AppendCharToString(&block, 'g');
    char* tooLong = CTokHelp::Strdup("abcdefg");
    CTokHelp::AppendCharToString(&tooLong, 'h');
    EXPECT_STREQ(own(tooLong).get(), "abcdefg");
}

TEST(Strings, NumbersAndWords) {
    check({" \v-12x -> -12", "+7 -> 7", "x -> 0", " -> 0", "99999999999 -> 2147483647"},
          [](std::string& text) { return shown(CTokHelp::String2Int(text.data())); });
    EXPECT_EQ(CTokHelp::String2Int(nullptr), 0);
    const std::string longest(255, 'd');
    check({"0 -> 0 a", "1 -> 0 bb", "3 -> 0 " + longest, "4 -> -1 ", "5 -> 0 f", "6 -> -1 ", "-1 -> -1 "},
          [&](const std::string& index) {
              std::string text = "a  bb c " + longest + " " + longest + "d\vf";
              Out out(256);
              out[0] = 'x';
              const int result = CTokHelp::GetWord(text.data(), out, std::stoi(index));
              return shown(result, out);
          });
}

TEST(StrReplace, StartsOverAfterEachReplacement) {
    const struct {
        std::string text, from, to, want;
    } rows[] = {{"a-b-c", "-", "", "abc"},   {"aabb", "ab", "", ""},  {"aaa", "aa", "b", "ba"},    {"a", "a", "a", "a"},
                {"5 5", "5", "50", "50 50"}, {"abc", "", "x", "abc"}, {"aaa", "aa", "aaa", "aaaa"}};
    for (auto [text, from, to, want] : rows) {
        EXPECT_STREQ(own(CTokHelp::StrReplace(text.data(), from.c_str(), to.c_str())).get(), want.c_str());
    }
}

TEST(Trim, LeftHalfAndRight) {
    check({"  a -> a\0\0"s, "   a ->  a\0\0"s, "   ->  \0"s, "  -> \0"s, " -> ", "a  -> a ", "      ->   \0\0\0"s},
          [](std::string& text) {
              EXPECT_EQ(CTokHelp::TrimLeft(text.data(), " "), 0);
              return text;
          });
    check({"a \r\n -> a \r\n|a|a\0\r\n"s, "   ->   ||\0 "s, "b  a -> b  a|b  a|b\0 a"s}, [](const std::string& text) {
        std::string none = text, all = text, part = text;
        CTokHelp::TrimRight(none.data(), "");
        CTokHelp::TrimRight(all.data(), " \r\n");
        CTokHelp::TrimRight(part.data(), static_cast<int>(text.size()) / 2, " ");
        return none + "|" + all.c_str() + "|" + part;
    });
}

TEST(Trim, LengthAwareKeepsEscapedParentheses) {
    const auto trimmed = [](const char* set, int mode) {
        return [=](std::string& text) {
            int len = -1;
            EXPECT_EQ(CTokHelp::NZTrimLeftRight_BH(text.data(), set, mode, &len), 0);
            return shown(len, text.c_str());
        };
    };
    check({"abc\\) -> 5 abc\\)", "abc)) -> 3 abc", ") -> 0 ", " -> 0 "}, trimmed(")", 2));
    check({"(Test -> 4 Test", "(\xFE\xFF -> 2 \xFE\xFF", "(( -> 0 ", " -> 0 "}, trimmed("(\t\a\r\n", 1));
    check({"Test) -> 4 Test", "a )\\(\r -> 5 a )\\(", "a\\\n -> 2 a\\"}, trimmed("()\t\a\r\n", 0));
    check({"a  -> 2 a "}, trimmed("", 2));
}

TEST(Hex, BothDirections) {
    unsigned char bytes[] = {0x0A, 0xFF, 0x10};
    char out[9] = "xxxxxxxx";
    EXPECT_STREQ(CTokHelp::BinaryToAsc(bytes, 3, out), "0aff10");
    EXPECT_STREQ(CTokHelp::BinaryToAsc(bytes, -1, out), "");
    EXPECT_EQ(CTokHelp::GenHexOutput(out, bytes, 3), 3);
    EXPECT_STREQ(out, "0a:ff:10");
    EXPECT_EQ(CTokHelp::GenHexOutput(out, bytes, 0), 0);
    EXPECT_STREQ(out, "");
    check({"0aFF -> 2 0aff", "0aFFc -> 2 0aff", " -> 0 ", " 1+2-1g22g0x -> 6 0102ff000200",
           "00112233445566778 -> 8 0011223344556677"},
          [](const std::string& hex) {
              unsigned char binary[8] = {};
              int len = 8;
              CTokHelp::AscToBinary(hex.c_str(), binary, &len);
              return shown(len, varnpdf::toHex({reinterpret_cast<char*>(binary), static_cast<std::size_t>(len)}));
          });
}

TEST(Utf8, CharactersAndWhatDoesNotFit) {
    EXPECT_EQ(shown(CTokHelp::high_ones(0x7F), CTokHelp::high_ones(0x1C3), CTokHelp::high_ones(0xFF)), "0 2 8");
    const struct {
        int c;
        const char* hex;
    } rows[] = {{0x7F, "7f"},
                {0x80, "c280"},
                {0x7FF, "dfbf"},
                {0x20AC, "e282ac"},
                {0xFFFF, "efbfbf"},
                {0x10000, "f0908080"},
                {0x1FFFFF, "f7bfbfbf"},
                {0x200000, "f888808080"},
                {0x3FFFFFF, "fbbfbfbfbf"},
                {0x4000000, "fc8480808080"},
                {0x7FFFFFFF, "fdbfbfbfbfbf"}};
    for (const auto& [c, hex] : rows) {
        unsigned char text[7] = {};
        unsigned char *end = text, *at = text;
        EXPECT_EQ(CTokHelp::utf8_putc(c | static_cast<int>(0x80000000U), &end), c);
        EXPECT_EQ(varnpdf::toHex(reinterpret_cast<char*>(text)), hex);
        EXPECT_EQ(CTokHelp::utf8_getc(&at), c);
        EXPECT_EQ(at, end) << hex;
    }
    check(
        {" -> -1 0", "\x80 -> 128 1", "\xE2\x82 -> -1 2", "\xE2\x82_ -> 128 2", "\xFEzzzz -> 128 1", "\xC0\x80 -> 0 2"},
        [](std::string& text) {
            auto* begin = reinterpret_cast<unsigned char*>(text.data());
            unsigned char* at = begin;
            const int c = CTokHelp::utf8_getc(&at);
            return shown(c, at - begin);
        });
}

TEST(Utf8, StreamsAndLatin1) {
    check({" -> 1 0 ", "a\xC3\xA4z -> 1 0 a\xE4z", "\xE2\x82\xAC\xC3\xBF -> 1 1  \xFF", "\xE4 -> 0 0 \xE4",
           "\xC3\xA4\x80 -> 0 0 \xC3\xA4\x80", "\xC3z -> 0 0 \xC3z", "\xE2\x82 -> 0 0 \xE2\x82",
           "\xFE\x81\x82\x83\x84\x85\x86 -> 1 0 \x80\x80\x80\x80\x80\x80\x80"},
          [](std::string& text) {
              Out out(text);
              const bool utf8 = CTokHelp::is_utf8_byte_stream(text.data());
              const int replaced = CTokHelp::ConvertUTF8ToISO88591(text.data(), out);
              return shown(utf8, replaced, out);
          });
    EXPECT_FALSE(CTokHelp::is_utf8_byte_stream(nullptr));
}

TEST(DecodeLiteralString, EscapesInPlace) {
    check({"a\\nb -> 1 3 a\nb\0"s, "abc -> 0 3 abc", "\\101 -> 1 1 \0\0\0\0"s,
           "\\(\\)\\\\\\b\\f\\r\\t -> 1 7 ()\\\b\f\r\t\0\0\0\0\0\0\0"s, "a\\ -> 0 2 a\\", "\\x -> 0 2 \\x",
           "\\x\\n -> 1 2 \\n\0\0"s, "\\\nn\\n -> 1 2 \n\n\0\0\0"s, "\\1ab -> 1 2 \0b\0\0"s,
           "\\1234 -> 1 2 \0004\0\0\0"s, "\\9 -> 1 1 \0\0"s, "\\n\\ -> 1 1 \n\0\0"s, " -> 0 0 "},
          [](std::string& body) {
              int len = static_cast<int>(body.size());
              const int result = CTokHelp::DecodeLiteralString(reinterpret_cast<unsigned char*>(body.data()), &len);
              return shown(result, len, body);
          });
}

}  // namespace
