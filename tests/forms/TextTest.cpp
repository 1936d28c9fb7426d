// Text of fields: strings, layout, replacing what an appearance shows.
#include <gtest/gtest.h>

#include "content/Glyphs.h"
#include "forms/AppearanceContent.h"
#include "forms/TextLayout.h"
#include "syntax/Encoding.h"
#include "syntax/Values.h"
#include "varnpdf/FontWidths.h"

namespace {

using namespace std::literals;
using namespace varnpdf;

TEST(Layout, TextStandsWhereTheFieldSaysIt) {
    struct Row {
        std::string_view appearance;
        int quadding;
        bool multiline;
        int cells;
        std::string_view codes, text;
    };
    // clang-format off
    const Row rows[] = {
        {"/Helv 10 Tf 0 g", 0, false, 0, "Hi", "0 g\n/Helv 10 Tf\n2 7.5 Td\n(Hi) Tj\n"},
        {"/Helv 10 Tf 0 g", 2, false, 0, "Hi", "0 g\n/Helv 10 Tf\n88.56 7.5 Td\n(Hi) Tj\n"},    // 9.44 wide
        {"/Helv 10 Tf 0 g", 1, false, 0, "Hi", "0 g\n/Helv 10 Tf\n45.28 7.5 Td\n(Hi) Tj\n"},
        {"0 0 1 rg /F#20x 200 Tf", 2, false, 0, "Hi", "0 0 1 rg\n/F#20x 200 Tf\n2 -40 Td\n(Hi) Tj\n"},  // wider
        {"/Helv 0 Tf", 0, false, 0, "Hi", "/Helv 12.6 Tf\n2 6.85 Td\n(Hi) Tj\n"},
        {"/Helv 0 Tf", 0, false, 0, "(a)\nb", "/Helv 12.6 Tf\n2 6.85 Td\n(\\(a\\) b) Tj\n"},
        {"/Helv 5 Tf", 0, true, 0, "a\n\nb", "/Helv 5 Tf\n2 14.25 Td\n(a) Tj\n0 -11.5 Td\n(b) Tj\n"},
        {"/Helv 5 Tf", 0, true, 0, "aaaaaaaaaaaaaaaaaaaa bbbbbbbbbbbbbbbbbbbb",
         "/Helv 5 Tf\n2 14.25 Td\n(aaaaaaaaaaaaaaaaaaaa) Tj\n0 -5.75 Td\n(bbbbbbbbbbbbbbbbbbbb) Tj\n"},
        {"/Helv 10 Tf", 0, false, 4, "ii", "/Helv 10 Tf\n11.39 7.5 Td\n(i) Tj\n25 0 Td\n(i) Tj\n"},
        {"/Helv 10 Tf", 2, false, 4, "i", "/Helv 10 Tf\n86.39 7.5 Td\n(i) Tj\n"},
    };
    // clang-format on
    for (const auto& [appearance, quadding, multiline, cells, codes, text] : rows) {
        const TextStyle style{parseDefaultAppearance(appearance), quadding, multiline, cells, 1};
        const std::string found = fieldText({0, 0, 100, 20}, style, FieldFont::helvetica(), codes);
        EXPECT_EQ(found, "q\n1 1 98 18 re\nW\nn\nBT\n" + std::string(text) + "ET\nQ\n") << appearance << ' ' << codes;
    }
    // A size of its own shrinks until all lines fit.
    const TextStyle style{{"F", 0, ""}, 0, true, 0, 1};
    EXPECT_NE(fieldText({0, 0, 40, 40}, style, FieldFont::helvetica(), "many words in a small box").find("/F 7 Tf"),
              std::string::npos);
    EXPECT_EQ(fieldText({0, 0, 40, 40}, style, FieldFont::helvetica(), ""), "");
}

TEST(Appearance, OnlyTheShownTextChanges) {
    struct Row {
        std::string_view content, codes, result;
    };
    // clang-format off
    const Row rows[] = {
        {"0 g /Tx BMC q BT /F 9 Tf 2 3 Td (old) Tj ET Q EMC S", "new",
         "0 g /Tx BMC q BT /F 9 Tf 2 3 Td (new) Tj ET Q EMC S"},
        {"(keep) Tj /Tx BMC /P <</MCID 0>> BDC [(a) -3 (b)] TJ EMC 0 -9 Td (second) Tj EMC (keep) Tj", "new",
         "(keep) Tj /Tx BMC /P <</MCID 0>> BDC (new) Tj EMC 0 -9 Td  EMC (keep) Tj"},
        {"BT (EMC \\) ) Tj ET", "n)", "BT (n\\)) Tj ET"},
        {"/Tx BMC 3 w <41> ' EMC", "", "/Tx BMC 3 w () Tj EMC"},
        {"/Tx BMC EMC", "new", "-"},
        {"/Tx BMC (open", "new", "-"},
    };
    // clang-format on
    for (const auto& [content, codes, result] : rows) {
        EXPECT_EQ(withShownCodes(content, codes).value_or("-"), result) << content;
    }
    EXPECT_EQ(withMarkedText("1 g f /Tx BMC q (a) Tj Q EMC S", "T\n"), "1 g f /Tx BMC\nT\nEMC S");
    EXPECT_EQ(withMarkedText("anything", "T\n"), "/Tx BMC\nT\nEMC\n");
}

struct NoReferences : References {
    [[nodiscard]] std::string_view follow(std::string_view value) const override { return value; }
};

TEST(Font, WidthsAreThoseOfTheStandardFonts) {
    struct Row {
        const int* table;
        StandardFace face;
    };
    const Row rows[] = {{Font_Helvetica, StandardFace::Helvetica},
                        {Font_HelveticaBold, StandardFace::HelveticaBold},
                        {Font_HelveticaOblique, StandardFace::Helvetica},
                        {Font_HelveticaBoldOblique, StandardFace::HelveticaBold},
                        {Font_TimesRoman, StandardFace::Times},
                        {Font_TimesBold, StandardFace::TimesBold},
                        {Font_TimesItalic, StandardFace::TimesItalic},
                        {Font_TimesBoldItalic, StandardFace::TimesBoldItalic},
                        {Font_Courier, StandardFace::Courier},
                        {Font_CourierBold, StandardFace::Courier},
                        {Font_CourierOblique, StandardFace::Courier},
                        {Font_CourierBoldOblique, StandardFace::Courier}};
    for (const auto& [table, face] : rows) {
        for (std::size_t code = 0; code < 256; ++code) {
            const Glyph* const glyph = glyphOf(winAnsiEncoding()[code]);
            const int width = face == StandardFace::Courier ? 600
                              : glyph == nullptr            ? 0
                                                            : glyph->widths[static_cast<std::size_t>(face)];
            EXPECT_EQ(table[code], glyph == nullptr ? 0 : width) << static_cast<int>(face) << ' ' << code;
        }
    }
}

TEST(Font, CodesAreTheFontsOwn) {
    struct Row {
        std::string_view font, utf8, codes;  // "-": the font lacks a character, "!": no font for text
    };
    // clang-format off
    const Row rows[] = {
        {"<</Subtype/Type1/BaseFont/Helvetica/Encoding/WinAnsiEncoding>>", "ä€", "\xE4\x80"},
        {"<</Subtype/Type1/BaseFont/Helvetica/Encoding/PDFDocEncoding>>", "ä€", "\xE4\xA0"},
        {"<</Subtype/Type1/BaseFont/Times-Roman/Encoding/MacRomanEncoding>>", "ä", "\x8A"},
        {"<</Subtype/Type1/BaseFont/Courier>>", "’ä", "-"},                                   // StandardEncoding
        {"<</Subtype/Type1/BaseFont/Courier>>", "’", "\x27"},
        {"<</Subtype/Type1/BaseFont/Helvetica/Encoding<</Differences[1/aogonek/uni00E4 65/B]>>>>", "ąäB", "\x01\x02" "A"},
        {"<</Subtype/TrueType/BaseFont/X/FirstChar 65/Widths[500 0 700]>>", "AC", "AC"},
        {"<</Subtype/TrueType/BaseFont/X/FirstChar 65/Widths[500 0 700]>>", "B", "-"},       // not in the subset
        {"<</Subtype/Type1/BaseFont/Unknown>>", "A", "!"},
        {"<</Subtype/Type1/BaseFont/ZapfDingbats>>", "A", "!"},
        {"<</Subtype/Type0/BaseFont/X>>", "A", "!"},
    };
    // clang-format on
    for (const auto& [dictionary, utf8, codes] : rows) {
        const auto font = FieldFont::from(dictionary, NoReferences{});
        EXPECT_EQ(font ? font->encode(fromUtf8OrLatin1(utf8)).value_or("-") : "!", codes) << dictionary << utf8;
    }
    EXPECT_NEAR(FieldFont::helvetica().width("Ai"), 0.667 + 0.222, 0.0005);
    const auto described = FieldFont::from(
        "<</Subtype/Type1/BaseFont/Helvetica/FontDescriptor<</Ascent 900/Descent -200>> >>", NoReferences{});
    EXPECT_NEAR(described->ascent(), 0.9, 0.0005);
    EXPECT_NEAR(described->descent(), 0.2, 0.0005);
}

}  // namespace
