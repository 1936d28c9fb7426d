// References followed, and streams: where their data is and what it says.
#include "model/Stream.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "model/Lookup.h"
#include "support/Limits.h"
#include "support/PdfBuilder.h"
#include "support/Text.h"

namespace varnpdf {
namespace {

using test::deflated;

/// A document of these objects, numbered from 1; the text of each ends at its first "endobj", as that of a reader does.
class Objects {
public:
    explicit Objects(const std::vector<std::string>& bodies) {
        std::vector<std::size_t> begins;
        std::string text;
        for (const std::string& body : bodies) {
            begins.push_back(text.size());
            append(text, begins.size(), " 0 obj\n", body, "\nendobj\n");
        }
        auto bytes = std::make_shared<Bytes>();
        bytes->reserve(text.size() + 1);
        std::memcpy(bytes->data(), text.data(), text.size());
        bytes->setSize(text.size());
        document.length = text.size();
        const std::string_view whole = bytes->view();
        document.bytes = std::move(bytes);
        for (std::size_t i = 0; i < begins.size(); ++i) {
            const std::size_t end = whole.find("endobj", begins[i]) + 6;
            document.objects.create(static_cast<int>(i + 1))->borrowContent(whole.substr(begins[i], end - begins[i]));
        }
    }
    [[nodiscard]] const CPdfObj& at(int number) const { return *document.objects.find(number); }

    Document document;
};

TEST(Lookup, FollowsReferences) {
    const Objects objects({"<< /Kind /A >>", "1 0 R", "2 0 R", "(a \\) b)", "null", "6 0 R", "8 0 R", "7 0 R", "",
                           "<< /Length 3 >>\nstream\nabc\nendstream", "-12.5", "[1 0 R"});
    const struct {
        const char* value;
        const char* resolved;
        int holder;  // 0: none
    } rows[] = {
        {"/Name", "/Name", 0},
        {"1 0 R", "<< /Kind /A >>", 1},
        {"3 0 R", "<< /Kind /A >>", 1},
        {"4 0 R", "(a \\) b)", 4},
        {"5 0 R", "", 5},
        {"null", "", 0},
        {"6 0 R", "", 0},
        {"7 0 R", "", 0},
        {"9 0 R", "", 9},
        {"99 0 R", "", 0},
        {"10 0 R", "<< /Length 3 >>", 10},
        {"12 0 R", "", 12},
        {"", "", 0},
        {"12 0", "12", 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.value);
        EXPECT_EQ(resolved(objects.document, row.value).substr(0, row.value == std::string_view("12 0") ? 2 : 99),
                  row.resolved);
        const CPdfObj* const wanted = row.holder == 0 ? nullptr : &objects.at(row.holder);
        EXPECT_EQ(objectOf(objects.document, row.value), wanted);
    }
    EXPECT_EQ(integerOf(objects.document, "11 0 R"), -12);
    EXPECT_EQ(realOf(objects.document, "11 0 R"), -12.5);
    EXPECT_EQ(integerOf(objects.document, "4 0 R"), std::nullopt);
    EXPECT_EQ(entryOf(objects.document, "<< /N << /K 1 >> /K 11 0 R >>", "/K"), "-12.5");
    const Objects chain({"2 0 R", "3 0 R", "4 0 R", "5 0 R", "6 0 R", "7 0 R", "8 0 R", "(end)"});
    EXPECT_EQ(resolved(chain.document, "2 0 R"), "(end)");
    EXPECT_EQ(resolved(chain.document, "1 0 R"), "") << "a chain too long";
}

TEST(Stream, DataSpan) {
    const Objects objects({
        "<< /Length 3 >>\nstream\nabc\nendstream",
        "<< /Length 17 0 R >> stream\r\nabc\r\nendstream",
        "<< /Length 6 >>\nstream\nabc\r\n\nendstream",             // blanks may belong to the data
        "<< /Length 9 >>\nstream\nabc\r\nendstream",               // too long
        "<< >>\nstream\na endstream b\nendstream",                 // the last keyword counts
        "<< /Length 16 >>\nstream\na endobj b\nabcde\nendstream",  // reaches beyond the object's text
        "<< /Length 99999 >>\nstream\na endobj b\nendstream",      // wrong: what the text holds
        "<< /Length 3 >>\nstreamabc endstream",                    // no line end
        "<< /Length 3 >>\nstream\rabc\rendstream",
        "<< /Length -1 >>\nstream\n\nendstream",
        "<< /Length 0 >>\nstream\nendstream",
        "<< /Length 3 >>",
        "[ /Length 3 ]\nstream\nabc\nendstream",
        "<< /Title (stream) /Length 2 >>\n% stream\nstream\nab\nendstream",
        "<< /Length 2147483647 >>\nstream\nabc",
        "<< /Length 3 0 R >>\nstream\nabc\nendstream",
        "3",
    });
    const struct {
        int number;
        const char* data;  // null: no stream
        bool holds;
    } rows[] = {
        {1, "abc", true},
        {2, "abc", true},
        {3, "abc\r\n\n", true},
        {4, "abc", false},
        {5, "a endstream b", false},
        {6, "a endobj b\nabcde", true},
        {7, "a ", false},
        {8, "abc", true},
        {9, "abc", true},
        {10, "", false},
        {11, "", true},
        {12, nullptr, false},
        {13, nullptr, false},
        {14, "ab", true},
        {15, "abc", false},
        {16, "abc", false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.number);
        const auto stream = streamOf(objects.document, objects.at(row.number));
        ASSERT_EQ(stream.has_value(), row.data != nullptr);
        if (!stream) continue;
        EXPECT_EQ(stream->data, row.data);
        EXPECT_EQ(stream->lengthHolds, row.holds);
        EXPECT_TRUE(stream->dictionary.starts_with("<<") && stream->dictionary.ends_with(">>"));
    }
}

std::string streamBody(const std::string& entries, const std::string& data) {
    return text("<< /Length ", data.size(), ' ', entries, " >>\nstream\n", data, "\nendstream");
}

TEST(Stream, DecodedBytes) {
    const std::string packed = deflated("abcabc");
    const std::string damaged = packed.substr(0, packed.size() - 2);
    const Objects objects({
        streamBody("", "abc"),
        streamBody("/Filter /FlateDecode", packed),
        streamBody("/Filter [ /AHx /Fl ]", "789C4B4C4A060002 4D0127>"),  // "abc"
        streamBody("/Filter 12 0 R /DecodeParms 13 0 R", deflated(std::string("\2\1\2\2\1\1", 6))),
        streamBody("/Filter /FlateDecode", damaged),
        streamBody("/Filter [/FlateDecode /DCTDecode]", packed),
        streamBody("/Filter [ ]", "abc"),
        streamBody("/Filter null", "abc"),
        streamBody("/Filter [/RL /RL /RL /RL /RL /RL /RL /RL /RL]", "\x80"),
        streamBody("/Filter /FlateDecode /DecodeParms << /Predictor 1 >>", packed),
        streamBody("/Filter [null]", "abc"),
        "[ 14 0 R ]",
        "[ << /Predictor 15 /Columns 15 0 R >> ]",
        "/FlateDecode",
        "2",
    });
    const struct {
        int number;
        const char* whole;  // null: refused
        const char* part;   // of at most 4 bytes; null: refused
        Packing packing;
    } rows[] = {
        {1, "abc", "abc", Packing::None},       {2, "abcabc", "abca", Packing::Flate},
        {3, "abc", "abc", Packing::Other},      {4, "\1\2\2\3", "\1\2", Packing::Other},
        {5, nullptr, "abca", Packing::Flate},   {6, nullptr, nullptr, Packing::Other},
        {7, "abc", "abc", Packing::None},       {8, "abc", "abc", Packing::None},
        {9, nullptr, nullptr, Packing::Other},  {10, "abcabc", "abca", Packing::Flate},
        {11, nullptr, nullptr, Packing::Other},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.number);
        const auto stream = streamOf(objects.document, objects.at(row.number));
        ASSERT_TRUE(stream);
        const auto whole = decoded(objects.document, *stream, 6);
        ASSERT_EQ(whole.has_value(), row.whole != nullptr);
        if (whole) {
            EXPECT_EQ(whole->view(), row.whole);
        }
        const auto part = decodedPart(objects.document, *stream, 4);
        ASSERT_EQ(part.has_value(), row.part != nullptr);
        if (part) {
            EXPECT_EQ(part->bytes.view(), row.part);
        }
        EXPECT_EQ(packingOf(objects.document, stream->dictionary), row.packing);
    }
}

TEST(Stream, BudgetPaysForAllThatComesOut) {
    const Objects objects(
        {streamBody("/Filter /FlateDecode", deflated(std::string(1000, 'x'))), streamBody("", std::string(300, 'y'))});
    const Stream packed = *streamOf(objects.document, objects.at(1));
    const Stream plain = *streamOf(objects.document, objects.at(2));
    std::size_t budget = 2500;
    EXPECT_TRUE(decodedWithin(objects.document, packed, 1000, budget));
    EXPECT_EQ(budget, 1500U);
    EXPECT_FALSE(decodedWithin(objects.document, packed, 999, budget));  // refused, but the work was done
    EXPECT_LE(budget, 501U);
    EXPECT_TRUE(decodedWithin(objects.document, plain, 1000, budget));
    EXPECT_FALSE(decodedWithin(objects.document, plain, 1000, budget));
    EXPECT_FALSE(decodedWithin(objects.document, packed, 1000, budget));
    EXPECT_EQ(budget, 0U);
}

}  // namespace
}  // namespace varnpdf
