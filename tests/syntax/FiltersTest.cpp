// Filters of streams: what they give, whole or up to the damage or the bound.
#include "syntax/Filters.h"

#include <gtest/gtest.h>

#include <string>

#include "support/PdfBuilder.h"

namespace varnpdf {
namespace {

using namespace std::string_literals;

TEST(Filters, Names) {
    const struct {
        const char* name;
        Filter filter;
    } rows[] = {
        {"/FlateDecode", Filter::Flate}, {"/Fl", Filter::Flate},          {"/Flate#44ecode", Filter::Flate},
        {"/LZW", Filter::Lzw},           {"/A85", Filter::Ascii85},       {"/AHx", Filter::AsciiHex},
        {"/RL", Filter::RunLength},      {"/DCTDecode", Filter::Unknown}, {"FlateDecode", Filter::Unknown},
    };
    for (const auto& row : rows) EXPECT_EQ(filterOf(row.name), row.filter) << row.name;
}

// More codes than the table of 12 bits has room for, without a clear code: what encoders of the time write for "aaa...".
std::string longLzw(std::size_t codes, bool early) {
    std::string out;
    unsigned held = 0;
    unsigned bits = 0;
    unsigned width = 9;
    std::size_t next = 258;
    const auto put = [&](unsigned code) {
        bits = bits << width | code;
        held += width;
        for (; held >= 8; held -= 8) out.push_back(static_cast<char>(bits >> (held - 8) & 0xFFU));
    };
    put(256);
    put('a');
    for (std::size_t i = 1; i < codes; ++i) {
        put(static_cast<unsigned>(next < 4096 ? next : 4095));
        if (next < 4096) ++next;
        while (width < 12 && next + (early ? 1 : 0) >= (std::size_t{1} << width)) ++width;
    }
    put(257);
    out.push_back(static_cast<char>(bits << (8 - held) & 0xFFU));
    return out;
}

TEST(Filters, Data) {
    const struct {
        const char* name;
        Filter filter;
        std::string data;
        std::string result;
        bool whole;
        std::size_t bound = 1000;
    } rows[] = {
        {"Hex", Filter::AsciiHex, "61 62\n6>", "ab`", true},
        {"HexWithoutEnd", Filter::AsciiHex, "6162", "ab", true},
        {"HexDamaged", Filter::AsciiHex, "61x62>", "a", false},
        {"HexBound", Filter::AsciiHex, "616263>", "ab", false, 2},
        {"Base85", Filter::Ascii85, "<~87cURD]i,\"Ebo80~>", "Hello World!", true},
        {"Base85Zeros", Filter::Ascii85, "z 5sb~>", "\0\0\0\0AB"s, true},
        {"Base85TooLarge", Filter::Ascii85, "uuuuu~>", "", false},
        {"Base85OneDigit", Filter::Ascii85, "z5~>", "\0\0\0\0"s, false},
        {"Runs", Filter::RunLength,
         "\x02"
         "abc\xFEx\x80zz",
         "abcxxx", true},
        {"RunsCut", Filter::RunLength,
         "\x05"
         "abc",
         "abc", false},
        {"RunsBound", Filter::RunLength, "\x81x", "", false, 127},
        // ISO 32000-2 7.4.4.2: 45 45 45 45 45 65 45 45 45 66
        {"Lzw", Filter::Lzw, "\x80\x0B\x60\x50\x22\x0C\x0C\x85\x01", "-----A---B", true},
        {"LzwUnknownCode", Filter::Lzw, "\x80\x0B\x7F\xFF", "-", false},
        {"LzwCut", Filter::Lzw, "\x80\x0B\x60\x50", "---", false},
        {"Flate", Filter::Flate, test::deflated("abc"), "abc", true},
        {"FlateCut", Filter::Flate, test::deflated("abc").substr(0, 8), "abc", false},
        {"FlateBound", Filter::Flate, test::deflated("abc"), "ab", false, 2},
        {"Other", Filter::Unknown, "abc", "", false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        std::size_t produced = 0;
        const Filtered result = unfilter(row.filter, {}, row.data, row.bound, &produced);
        EXPECT_EQ(result.bytes.view(), row.result);
        EXPECT_EQ(result.whole, row.whole);
        EXPECT_GE(produced, row.result.size());
    }
}

TEST(Filters, LzwCodesGrowToTwelveBits) {
    for (const bool early : {true, false}) {
        const std::size_t codes = 4200;
        FilterParms parms;
        parms.earlyChange = early;
        const Filtered result = unfilter(Filter::Lzw, parms, longLzw(codes, early), 20'000'000);
        EXPECT_TRUE(result.whole);
        // 1 + 2 + ... up to the last string of the table, which then repeats
        const std::size_t longest = 4096 - 258 + 1;
        const std::size_t expected = longest * (longest + 1) / 2 + (codes - longest) * longest;
        EXPECT_EQ(result.bytes.size(), expected);
        EXPECT_EQ(result.bytes.view().find_first_not_of('a'), std::string_view::npos);
        parms.earlyChange = !early;
        EXPECT_FALSE(unfilter(Filter::Lzw, parms, longLzw(codes, early), 20'000'000).whole);
    }
}

Bytes bytesOf(std::string_view text) {
    Bytes bytes;
    bytes.reserve(text.size() + 1);
    text.copy(bytes.data(), text.size());
    bytes.setSize(text.size());
    return bytes;
}

TEST(Filters, Prediction) {
    const struct {
        const char* name;
        FilterParms parms;  // predictor, colours, bits, columns
        std::string data;
        std::string result;
        bool good;
    } rows[] = {
        {"None", {1, 1, 8, 3}, "abc", "abc", true},
        {"Up", {12, 1, 8, 3}, "\2\1\2\3\2\1\1\1"s, "\1\2\3\2\3\4"s, true},
        {"SubOfPixels", {11, 2, 8, 2}, "\1\1\2\3\4"s, "\1\2\4\6"s, true},
        {"AverageAndPaeth", {15, 1, 8, 2}, "\0\4\6\3\1\1\4\1\1"s, "\4\6\3\5\4\6"s, true},
        {"PartOfARow", {12, 1, 8, 3}, "\2\1\2\3\2\1"s, "\1\2\3\2"s, true},
        {"UnknownRow", {12, 1, 8, 2}, "\2\1\2\7\1\1"s, "\1\2"s, false},
        {"SixteenBitPng", {11, 1, 16, 2}, "\1\1\0\0\2"s, "\1\0\1\2"s, true},
        {"Tiff", {2, 1, 8, 3}, "\1\1\1\5\1\1"s, "\1\2\3\5\6\7"s, true},
        {"TiffColours", {2, 3, 8, 2}, "\1\2\3\1\1\1"s, "\1\2\3\2\3\4"s, true},
        {"TiffNibbles", {2, 1, 4, 4}, "\x1F\x11", "\x10\x12", true},
        {"TiffBits", {2, 1, 1, 8}, "\xFF", "\xAA", true},
        {"TiffWords", {2, 1, 16, 2}, "\0\xFF\0\1"s, "\0\xFF\1\0"s, true},
        {"UnknownPredictor", {7, 1, 8, 3}, "abc", "abc", false},
        {"NoColumns", {12, 1, 8, 0}, "abc", "abc", false},
        {"TooManyColours", {12, 2'000'000'000, 16, 2'000'000'000}, "abc", "abc", false},
        {"OddDepth", {2, 1, 5, 3}, "abc", "abc", false},
        {"RowsBeyondTheData", {12, 256, 16, 2'147'483'647}, "\2abc", "abc", true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        Bytes data = bytesOf(row.data);
        EXPECT_EQ(undoPrediction(data, row.parms), row.good);
        EXPECT_EQ(data.view(), row.result);
    }
}

}  // namespace
}  // namespace varnpdf
