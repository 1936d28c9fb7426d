// Text files as documents: what stands on which page.
#include <gtest/gtest.h>

#include <algorithm>

#include "tests/conversion/Conversion.h"

using namespace varnpdf::test;
using namespace std::string_literals;

namespace {

/// The entries of each page, the pages divided by "|".
std::string pagesOf(const std::string& pdf) {
    const std::string head = "BT\n/F1 12 Tf 12 TL 18 756 Td\n";
    const std::string end = "() Tj\nET";
    std::string pages;
    for (int number = 7; !objectText(pdf, number).empty(); number += 2) {
        const std::string content = streamOf(pdf, number);
        if (!content.starts_with(head) || !content.ends_with(end)) return "no page: " + content;
        pages += (number > 7 ? "|" : "") + content.substr(head.size(), content.size() - head.size() - end.size());
    }
    return pages;
}

std::string repeated(int count, const std::string& text) {
    std::string out;
    for (int i = 0; i < count; ++i) out += text;
    return out;
}

std::string entry(const std::string& text) { return "(" + text + ") ' "; }

const std::string k80(80, 'x');

struct TextCase {
    const char* name;
    std::string text;
    std::string pages;
};

const TextCase kTexts[] = {
    {"Empty", "", ""},
    {"LineEnds", "a\nb\r\nc\rd\n\n\r\n\re", "(a) ' (b) ' (c) ' (d) ' () ' () ' () ' (e) ' "},
    {"Escapes", "it's (a) \\n\n\\", "(it\\'s \\(a\\) \\\\n) ' (\\\\) ' "},
    {"Line80", k80 + "\n" + k80, entry(k80) + entry(k80)},
    {"Line200", std::string(200, 'x') + "\nz", entry(k80) + entry(k80) + entry(std::string(40, 'x')) + "(z) ' "},
    {"CutBeforeEscape", std::string(79, 'x') + "((", entry(std::string(79, 'x') + "\\(") + entry("\\(")},
    {"LineOf100000", std::string(100'000, 'x'),
     repeated(22, repeated(55, entry(k80)) + "|") + repeated(40, entry(k80))},
    {"Entries55", repeated(55, "a\n"), repeated(55, "(a) ' ")},
    {"Entries56", repeated(56, "a\n"), repeated(55, "(a) ' ") + "|(a) ' "},
    {"FormFeeds", "a\fb\n\f\fc\f", "(a) ' |(b) ' ||(c) ' "},
    {"Tabs", "\tx\n1234567\tx\n12345678\tx\n" + k80 + "\tx",
     "(        x) ' (1234567 x) ' (12345678        x) ' " + entry(k80) + "(        x) ' "},
    {"Control", "a\0b\x1B\x7F"s, "(a b  ) ' "},
    {"DosLetters", "\x81\x84\x8E\x94\x99\x9A\xE1 \xE9\x80", "(\\374\\344\\304\\366\\326\\334\\337 \xE9\x80) ' "},
    {"Utf8",
     "\xEF\xBB\xBF"
     "ä€é„ Ω🙂",
     "(\\344\\200\\351\\204 ?\?) ' "},
    {"Utf8Columns", repeated(81, "ä"), entry(repeated(80, "\\344")) + "(\\344) ' "},
    {"Utf8Broken", "ä\xFF", "(\xC3\xA4\xFF) ' "},
    {"Utf8Overlong", "ä\xC0\xAF", "(\xC3\xA4\xC0\xAF) ' "},
    {"Utf8CutShort", "ä\xC3", "(\xC3\xA4\xC3) ' "},
};

class Text : public testing::TestWithParam<TextCase> {};

TEST_P(Text, IsSet) {
    const WorkDirectory work;
    ASSERT_EQ(convert(work.write("in.txt", GetParam().text), work.at("out.pdf")), 0);
    const std::string pdf = work.read("out.pdf");
    expectSound(work, "out.pdf");
    EXPECT_EQ(pagesOf(pdf), GetParam().pages);
}

INSTANTIATE_TEST_SUITE_P(Kinds, Text, testing::ValuesIn(kTexts), [](const auto& test) { return test.param.name; });

// Characters and line ends that two blocks of the input share.
TEST(TextBlocks, AreJoined) {
    const WorkDirectory work;
    const std::string line = "ä\r\n";
    ASSERT_EQ(convert(work.write("in.txt", "x\n" + repeated(39'999, line)), work.at("out.pdf")), 0);
    const std::string pages = pagesOf(work.read("out.pdf"));
    EXPECT_EQ(std::count(pages.begin(), pages.end(), '('), 40'000);
    EXPECT_EQ(pages.find("()"), std::string::npos);
    EXPECT_EQ(pages.find('?'), std::string::npos);
}

TEST(TextDocument, FramesAreAsDocumented) {
    const WorkDirectory work;
    std::FILE* const file = std::fopen(work.at("framed").c_str(), "wb");
    char entries[] = "(a) ' ";
    EXPECT_EQ(WriteHeaderTxt(file), 0);
    EXPECT_EQ(WritePage(file, entries, 5), 7);
    EXPECT_EQ(WritePage(file, entries, 7), 9);
    EXPECT_EQ(WriteFooterTxt(file, 11, 3), -602) << "a page that was not written";
    EXPECT_EQ(WriteFooterTxt(file, 9, 2), 0);
    EXPECT_EQ(WritePage(file, entries, 9), -602);
    std::fclose(file);
    const std::string pdf = work.read("framed");
    expectSound(work, "framed");
    EXPECT_EQ(pagesOf(pdf), "(a) ' |(a) ' ");
    EXPECT_EQ(objectText(pdf, 3), "3 0 obj\n<<\n/Type /Pages\n/Kids [6 0 R 8 0 R ]\n/Count 2\n>>\nendobj");
    EXPECT_EQ(objectText(pdf, 6),
              "6 0 obj\n<<\n/Type /Page\n/Resources <</ProcSet [/PDF /Text] /Font << /F1 5 0 R >>>>\n"
              "/MediaBox [0 0 612 792]\n/Parent 3 0 R\n/Contents 7 0 R\n>>\nendobj");
    for (const int font : {4, 5}) {
        EXPECT_EQ(objectText(pdf, font).substr(7),
                  "\n<<\n/Type /Font\n/Subtype /Type1\n/Name /F1\n/BaseFont /Courier\n/FirstChar 32\n/LastChar 255\n"
                  "/Encoding /WinAnsiEncoding\n>>\nendobj");
    }
}

TEST(TextLine, IsEscapedInPlace) {
    char line[64] = "a'(\x81)\\";
    EXPECT_EQ(ConvertTextLine(line), 13);
    EXPECT_STREQ(line, "a\\'\\(\\374\\)\\\\");
    char octet[5] = "zzzz";
    Char2Octet(7, octet);
    EXPECT_STREQ(octet, "\\007");
    EXPECT_EQ(ConvertTextLine(nullptr), 0);
}

TEST(TextDocument, TooManyPagesAreRefused) {
    const WorkDirectory work;
    EXPECT_EQ(convert(work.write("in.txt", std::string(249'997, '\f')), work.at("out.pdf")), 3);
}

}  // namespace
