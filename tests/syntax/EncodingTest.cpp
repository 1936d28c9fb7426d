// Encodings: characters, the bytes of text strings, string objects, and back.
#include "syntax/Encoding.h"

#include <gtest/gtest.h>

#include "syntax/Values.h"

namespace {

using namespace std::literals;
using namespace varnpdf;

TEST(TextString, ReadsBackAsItWasMeant) {
    const struct {
        std::string_view utf8, bytes, object;
    } rows[] = {
        {"", "", "()"},
        {"Grüße", "Gr\xFC\xDF\x65", R"((Gr\374\337e))"},
        {"a(b)c", "a(b)c", R"((a\(b\)c))"},
        {"(", "(", R"((\())"},
        {"end\\", "end\\", R"((end\134))"},  // no "\\)" that could be taken for an escaped parenthesis
        {"1\r\n2\t3", "1\r\n2\t3", R"((1\015\0122\0113))"},
        {"€ Š", "\xA0 \x97", R"((\240 \227))"},
        {"˘˜", "\x18\x1F", R"((\030\037))"},
        {"x endobj y", "x endobj y", R"((x \145ndobj y))"},
        {"endstream", "endstream", R"((end\163tream))"},
        {"Łódź", "\xFE\xFF\1\x41\0\xF3\0d\1z"sv, "<FEFF014100F30064017A>"},
        {"a😀", "\xFE\xFF\0a\xD8\x3D\xDE\0"sv, "<FEFF0061D83DDE00>"},
        {"þÿx", "\xFE\xFF\0\xFE\0\xFF\0x"sv, "<FEFF00FE00FF0078>"},  // would begin like UTF-16
        {"ÿþ", "\xFE\xFF\0\xFF\0\xFE"sv, "<FEFF00FF00FE>"},
        {"ï»¿", "\xFE\xFF\0\xEF\0\xBB\0\xBF"sv, "<FEFF00EF00BB00BF>"},  // like UTF-8
        {"\x07", "\xFE\xFF\0\x07"sv, "<FEFF0007>"},
        {"\u00AD", "\xFE\xFF\0\xAD"sv, "<FEFF00AD>"},
    };
    for (const auto& [utf8, bytes, object] : rows) {
        EXPECT_EQ(textString(utf8), bytes) << utf8;
        EXPECT_EQ(textStringObject(fromUtf8OrLatin1(utf8)), object);
        EXPECT_EQ(toUtf8(fromTextString(stringOf(object).value())), utf8) << object;
    }
    EXPECT_EQ(textString("\xE4.pdf"), "\xE4.pdf") << "not UTF-8";
}

TEST(TextString, OfEveryKindIsRead) {
    const struct {
        std::string_view bytes, utf8;
    } rows[] = {
        {"J\366rg \x80\x9F\xAD\x18\x7F\x8E", "Jörg •��˘�”"},
        {"\xFF\xFEJ\0\xF6\0\x41\1"sv, "JöŁ"},
        {"\xFE\xFF\xD8\x3D\0\x41"sv, "�A"},
        {"\xFE\xFF\0\x41\xDE"sv, "A�"},
        {"\xFE\xFF\xDC\0\xDC\0"sv, "��"},
        {"\xFE\xFF\0A\xD8\0"sv, "A�"},
        {"\xEF\xBB\xBFü", "ü"},
        {"\xEF\xBB\xBF"
         "a\xC3",
         "a�"},
        {"\xEF\xBB\xBF\xC0\xAF\xED\xA0\x80\xE0\x80\xAF\xF4\x90\x80\x80", "������������"},
    };
    for (const auto& [bytes, utf8] : rows) EXPECT_EQ(toUtf8(fromTextString(bytes)), utf8);
}

TEST(Utf8, IsWellFormedOrNone) {
    const struct {
        std::string_view bytes;
        std::u32string_view characters;
    } rows[] = {
        {"", U""},
        {"aü€😀", U"aü€😀"},
        {"\0"sv, U"\0"sv},
        {"\x7F\xC2\x80\xDF\xBF\xE0\xA0\x80\xED\x9F\xBF\xEE\x80\x80\xF0\x90\x80\x80\xF4\x8F\xBF\xBF",
         U"\x7F\x80\x7FF\x800\xD7FF\xE000\x10000\x10FFFF"},
    };
    for (const auto& [bytes, characters] : rows) {
        EXPECT_EQ(fromUtf8(bytes), characters) << bytes;
        EXPECT_EQ(toUtf8(characters), bytes);
    }
    for (const auto bytes : {"\x80"sv, "\xC3"sv, "\xC3z"sv, "\xC1\xBF"sv, "\xE0\x9F\xBF"sv, "\xED\xA0\x80"sv,
                             "\xF0\x8F\xBF\xBF"sv, "\xF4\x90\x80\x80"sv, "\xF8\x88\x80\x80\x80"sv, "\xFF"sv}) {
        EXPECT_EQ(fromUtf8(bytes), std::nullopt);
    }
    EXPECT_EQ(toUtf8(fromUtf8OrLatin1("Gr\xFC\xDF")), "Grüß");
}

TEST(OneByteEncodings, GoBothWays) {
    std::string winAnsi, pdfDoc;
    for (std::size_t code = 0; code < 256; ++code) {
        const char byte = static_cast<char>(code);
        if (winAnsiCode(winAnsiEncoding()[code]) == byte) winAnsi += byte;
        if (pdfDocCode(pdfDocEncoding()[code]) == byte) pdfDoc += byte;
    }
    EXPECT_EQ(winAnsi.size(), 218U - 2U) << "all but the second places of blank and hyphen";
    EXPECT_EQ(pdfDoc.size(), 229U);
    const std::string_view text = "€‚Ž–ÿ";
    std::string codes;
    for (const char32_t c : fromUtf8OrLatin1(text)) codes += winAnsiCode(c).value_or('?');
    EXPECT_EQ(codes, "\x80\x82\x8E\x96\xFF");
    EXPECT_EQ(winAnsiCode(U'\u00AD'), '\xAD');
    for (const char32_t none : {U'\0', U'\n', U'\x7F', U'\x81', U'Ω'}) EXPECT_EQ(winAnsiCode(none), std::nullopt);
    EXPECT_EQ(winAnsiEncoding()[0x81], U'•') << "fonts show a bullet";
    EXPECT_EQ(macRomanEncoding()[0xCA], U' ');
}

}  // namespace
