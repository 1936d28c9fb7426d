// Finding and changing dictionary entries in raw text.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "selfcheck/DictionaryCases.h"
#include "varnpdf/PdfObj.h"

namespace {

using namespace std::literals;
using varnpdf::selfcheck::kLookups;
using varnpdf::selfcheck::Lookup;

struct Result {
    int found = -1;
    std::string out;
    int keyPos = -1;
    int endPos = -1;
    int length = -1;
};

// Neither the text nor the room for the value is one byte longer than promised, so that a sanitizer sees any step
// beyond them.
Result lookUp(std::string_view text, const Lookup& how) {
    std::vector<char> bytes(text.begin(), text.end());
    std::vector<char> out(std::max<std::size_t>(text.size(), 1));
    Result result;
    result.found =
        CPdfObj::ReadDictionaryEntry2(bytes.data(), static_cast<int>(bytes.size()), how.key, out.data(), &result.keyPos,
                                      &result.endPos, 0, &result.length, how.namesAsValues, how.start);
    result.out.assign(out.begin(), out.end());
    return result;
}

TEST(ReadDictionaryEntry2, StaysInsideCutTexts) {
    for (const Lookup& row : kLookups) {
        for (std::size_t n = 0; n < row.text.size(); ++n) {
            const std::string_view cut = row.text.substr(0, n);
            Lookup how = row;
            for (how.start = 0; how.start <= static_cast<int>(n) + 1; how.start += 3) {
                const Result result = lookUp(cut, how);
                ASSERT_TRUE(result.found == 0 || result.found == 1) << cut;
                ASSERT_LE(result.keyPos, result.endPos) << cut;
                ASSERT_LE(result.endPos, static_cast<int>(n)) << cut;
            }
        }
    }
}

TEST(ReadDictionaryEntry, ObjectTakesTheLaterOfTwo) {
    const struct {
        std::string_view content;
        const char* key;
        std::string_view value;
        int keyPos, endPos;
    } rows[] = {
        {"1 0 obj\n<< /T 1 >>\nendobj", "/T", "1", 11, 15},
        {"1 0 obj\n<< /T 1 /T 2 >>\nendobj", "T", "2", 16, 20},
        {"1 0 obj\n<< /T 1 /T 2 /T 3 >>\nendobj", "/T", "2", 16, 20},
        {"1 0 obj\n<< /T 1 /D << /T 2 >> >>\nendobj", "/T", "1", 11, 15},
        {"1 0 obj\n<< /D << /T 0 >> /T 1 /D << /T 2 >> /T 3 >>\nendobj", "/T", "3", 44, 48},
        {"1 0 obj\n<< /T 1 /S (/T 2) >>\nendobj", "/T", "1", 11, 15},
        {"1 0 obj\n<< /A (x\0y) /T 1 >>\nendobj"sv, "/A", "(x\0y)"sv, 11, 19},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.content);
        CPdfObj obj;
        obj.setContent(row.content);
        std::vector<char> out(row.content.size() + 1);
        int keyPos = -1;
        int endPos = -1;
        int length = -1;
        ASSERT_EQ(obj.ReadDictionaryEntry(row.key, out.data(), &keyPos, &endPos, 0, &length, 1), 1);
        EXPECT_EQ(std::string_view(out.data(), row.value.size() + 1), std::string(row.value) + '\0');
        EXPECT_EQ(keyPos, row.keyPos);
        EXPECT_EQ(endPos, row.endPos);
    }
}

TEST(DictionaryEntry, TypesFoundInOnePass) {
    const struct {
        std::string_view content, type, fieldType;
    } rows[] = {
        {"1 0 obj\n<< /Type /Annot /FT /Sig >>", "/Annot", "/Sig"},
        {"1 0 obj\n<< /FT /Tx /Type /A /Type /B /FT /Sig /FT /Ch /Type /C >>", "/B", "/Sig"},  // of two the later
        {"1 0 obj\n<< /Type /FT /Sig >>", "/FT", "/Sig"},                                      // names are keys too
        {"1 0 obj\n<< /K << /Type /X >> /A [/FT /Y] /S (/FT /Z) /FTx 1 >>", "", ""},
        {"1 0 obj\n<< /Type /A /FT (open >>", "/A", ""},
        {"1 0 obj\n<< /FT /Sig /Type <<", "", "/Sig"},
        {"", "", ""},
    };
    for (const auto& row : rows) {
        CPdfObj obj;
        obj.setContent(row.content);
        EXPECT_EQ(obj.typeEntry(), row.type) << row.content;
        EXPECT_EQ(obj.fieldTypeEntry(), row.fieldType) << row.content;
    }
    CPdfObj obj;
    obj.setContent("<< /FT /Tx >>");
    EXPECT_EQ(obj.fieldTypeEntry(), "/Tx");
    std::string value = "/Sig";
    obj.ReplaceDictionaryEntry("/FT", value.data());
    EXPECT_EQ(obj.fieldTypeEntry(), "/Sig");  // asked again after a change
}

TEST(DictionaryEdits, ChangeNothingElse) {
    const auto add = [](const char* key, const char* value) {
        return [=](CPdfObj& obj) { return obj.AddDictionaryEntry(key, value); };
    };
    const auto insert = [](std::string entry) {
        return [entry](CPdfObj& obj) { return obj.AddDictionaryEntry(std::string(entry).data()); };
    };
    const auto erase = [](const char* key, int names = 1) {
        return [=](CPdfObj& obj) { return obj.DeleteDictionaryEntry(key, names); };
    };
    const auto replace = [](const char* key, std::string value) {
        return [=](CPdfObj& obj) { return obj.ReplaceDictionaryEntry(key, std::string(value).data()); };
    };
    const std::string longName = '/' + std::string(10'000, 'n');
    const struct {
        std::function<int(CPdfObj&)> edit;
        std::string_view before;
        int result;
        std::string_view after;
    } rows[] = {
        {insert("/X 1"), "1 0 obj\n<< /A 1 >>\nendobj", 1, "1 0 obj\n<< /A 1 /X 1\r\n>>\nendobj"},
        {add("/X", "5 0 R"), "<< /Type /Catalog >> endobj", 1, "<< /Type /Catalog /X 5 0 R\r\n>> endobj"},
        {erase("/B"), "<< /A 1 /B 2 /C 3 >>", 1, "<< /A 1  /C 3 >>"},
        {erase("/B"), "<< /A (\0) /B [1 2]/C 3 >>"sv, 1, "<< /A (\0) /C 3 >>"sv},
        {erase("/B"), "<< /A << /B 1 >> >>", 0, "<< /A << /B 1 >> >>"},
        {erase("/B", 0), "<< /B /C >>", 1, "<< /C >>"},
        {replace("/B", "99"), "<< /A 1 /B 2 /C 3 >>", 1, "<< /A 1 /B 99 /C 3 >>"},
        {replace("/B", "99"), "<<\r\n/A 1\r\n/B 2 0 R\r\n/C 3\r\n>>", 1, "<<\r\n/A 1\r\n/B 99\r\n/C 3\r\n>>"},
        {replace("/B", "/N"), "<</A/x/B/y/C/z>>", 1, "<</A/x/B /N/C/z>>"},
        {replace("/B", "[]"), "<</B<</B 1>>/C(\0)>>"sv, 1, "<</B []/C(\0)>>"sv},
        {replace("/B", "1"), "<< /B 2 /B 3 >>", 1, "<< /B 2 /B 1 >>"},
        {replace("/B", longName), "<< /B 1 >>", 1, "<< /B /%longName% >>"},
        {replace("/Bx", "1"), "<< /B 2 >>", 0, "<< /B 2 >>"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.before);
        CPdfObj obj;
        obj.setContent(row.before);
        EXPECT_EQ(row.edit(obj), row.result);
        std::string after(row.after);
        if (const auto at = after.find("/%longName%"); at != std::string::npos) after.replace(at, 11, longName);
        EXPECT_EQ(obj.content(), after);
    }
}

TEST(DictionaryEdits, AddingReadsTheTypesAgain) {
    CPdfObj obj;
    obj.setContent("1 0 obj\n<< /Subtype /Widget >>\nendobj");
    EXPECT_EQ(obj.get_dictionary_type(), nullptr);
    EXPECT_EQ(obj.AddDictionaryEntry("/Type", "/Annot"), 1);
    EXPECT_STREQ(obj.get_dictionary_type(), "/Annot");
    EXPECT_STREQ(obj.get_dictionary_subtype(), "/Widget");
}

}  // namespace
