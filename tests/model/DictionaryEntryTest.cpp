// Finding and changing dictionary entries in raw text.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "varnpdf/PdfObj.h"

namespace {

using namespace std::literals;

struct Lookup {
    std::string_view text;
    const char* value;  // null: not found
    int keyPos = 0;
    int endPos = 0;
    const char* key = "TestKey";
    int namesAsValues = 1;
    int start = 0;
};

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

const Lookup kLookups[] = {
    {"<</huhu 1109>>", nullptr},
    {"<</TestKey2 1109>>", nullptr},
    // numbers and references
    {"<</TestKey 1109>>", "1109", 2, 15},
    {"<</TestKey 1109 >>", "1109", 2, 15},
    {"<< /TestKey 1109>>", "1109", 3, 16},
    {"<< /TestKey 1109 >>", "1109", 3, 16},
    {"<< /TestKey 10 0 R>>", "10 0 R", 3, 18},
    {"<< /TestKey 10 0 R >>", "10 0 R", 3, 18},
    {"<</TestKey 10 0 R /TestKey2 20 0 R>>", "10 0 R", 2, 17},
    {"<< /TestKey NULL>>", "NULL", 3, 16},
    {"<< /TestKey NULL >>", "NULL", 3, 16},
    // names
    {"<< /TestKey /TestValue /N 12>>", "/TestValue", 3, 22},
    {"<< /TestKey /TestValue>>", "/TestValue", 3, 22},
    {"<< /TestKey /Erg >>", "/Erg", 3, 16},
    {"<< /TestKey/Erg/Erg2 >>", "/Erg", 3, 15},
    {"<< /TestKey/Erg(test)/Erg2 >>", "/Erg(test)", 3, 21},
    {"<</TestKey/Contents<30821ABC>>>", "/Contents<30821ABC>", 2, 28},
    // strings
    {"<< /TestKey<0123456>>>", "<0123456>", 3, 20},
    {"<< /TestKey <0123456>>>", "<0123456>", 3, 21},
    {"<< /TestKey(huhu)>>", "(huhu)", 3, 17},
    {"<< /TestKey (huhu)>>", "(huhu)", 3, 18},
    {"<< /TestKey (hu[]hu)>>", "(hu[]hu)", 3, 20},
    {"<< /TestKey (hu/hu)>>", "(hu/hu)", 3, 19},
    {"<< /TestKey (hu(hu)>>", "(hu(hu)", 3, 19},
    {"<</Filter /Adobe /TestKey (abc\\) und huhu 1234) /WilliWusel>>", "(abc\\) und huhu 1234)", 17, 47, "/TestKey"},
    {"<</Filter /Adobe /TestKey () und huhu) /WilliWusel>>", "()", 17, 28, "/TestKey"},
    {"<</Size (Theo Test (1))>>", "(Theo Test (1)", 2, 22, "/Size"},
    {"<< /A (x\0/TestKey 9\0) /TestKey 8 >>"sv, "8", 22, 32},
    // arrays and dictionaries
    {"<</TestKey [<01234567890ABCDEF><01234567890ABCDEF>]/Info 2 0 R>>", "[<01234567890ABCDEF><01234567890ABCDEF>]", 2,
     51},
    {"<< /TestKey [<01234567890ABCDEF><01234567890ABCDEF>]>>", "[<01234567890ABCDEF><01234567890ABCDEF>]", 3, 52},
    {"<< /TestKey [<01234567890ABCDEF><01234567890ABCDEF>] >>", "[<01234567890ABCDEF><01234567890ABCDEF>]", 3, 52},
    {"<< /TestKey [<41]42>] >>", "[<41]42>]", 3, 21},
    {"<< /TestKey [10 0 R 20 0 R]>>", "[10 0 R 20 0 R]", 3, 27},
    {"<</TestKey <</neuesDicthier 1>>/TestKey2 2>>", "<</neuesDicthier 1>>", 2, 31},
    {"<</TestKey <</neuesDicthier 1>>>>", "<</neuesDicthier 1>>", 2, 31},
    {"<</TestKey <</neuesDicthier 1>> /TestKey2 2>>", "<</neuesDicthier 1>>", 2, 31},
    {"<< /TestKey [<</Array [0 0 0]>><</Array2 [0 0 0]>>] /TestKey2 2 >>", "[<</Array [0 0 0]>><</Array2 [0 0 0]>>]", 3,
     51},
    {"<</ID [<DEBCA6D45E8163346BE84C6F95804655> (123(123)] /Size 2648>>", "2648", 53, 63, "/Size"},
    // empty values
    {"<< /TestKey>>", "", 3, 11},
    {"<< /TestKey >>", "", 3, 12},
    // other entries in front
    {"<< /Huhu << /Egalwas>> /TestKey 10 0 R>>", "10 0 R", 23, 38},
    {"<< /Huhu <<Egalwas>> /TestKey 10 0 R>>", "10 0 R", 21, 36},
    {"<</Type/Page<</ProcSet[/PDF /Text]>>/TestKey 5 0 R>>", "5 0 R", 36, 50},
    {"<</Type/Page<</ProcSet[/PDF /Text]>> /TestKey <<Hupsi >>/Contents 5 0 R>>", "<<Hupsi >>", 37, 56, "/TestKey"},
    {"<</Key1 /DA(/Helv 0 Tf 0 g )/SigFlags 3/DR<</TestKey /falsch>>/TestKey/Korrekt>>", "/Korrekt", 62, 78,
     "/TestKey"},
    {"<</Ty/XOb/Res<</Pro [/PDF /Text]/Font<</Helv 2 0 R>>>>/BBox[0 0 282.5 110.56]/TestKey huhu>>", "huhu", 77, 90,
     "/TestKey"},
    {"<< /ID [(hu>hu)(hu>hu)]/TestKey\n1234>>", "1234", 23, 36, "/TestKey"},
    {"<< /ID /Test1 5 /Test 4>>", "4", 16, 23, "/Test"},
    {"<< /Type /Sig /Filter /X >>", "/Filter", 9, 21, "/Sig"},  // keys and name values are not told apart
    // line ends
    {"<< /TestKey 1234\r>>", "1234\r", 3, 17, "/TestKey"},
    {"<< /TestKey 1234\n>>", "1234\n", 3, 17, "/TestKey"},
    {"<< /TestKey ()\n>>", "()", 3, 14, "/TestKey"},
    {"<< /TestKey\n1234>>", "1234", 3, 16, "/TestKey"},
    // no dictionary around the key
    {"/TestKey 10 0 R", "10 0 R", 0, 15, "/TestKey"},
    {"[/TestKey 10 0 R]", "10 0 R", 1, 16, "/TestKey"},
    // names are keys
    {"<< /TestKey /Erg >>", "", 3, 12, "/TestKey", 0},
    {"<< /TestKey/Erg/Erg2 >>", "", 3, 11, "/TestKey", 0},
    {"<< /ID[(11/11)(11/11)]/TestKey Huhu >>", "Huhu", 22, 35, "/TestKey", 0},
    {"<< /ID Eins /ID Zwei >>", "Zwei", 12, 20, "ID", 0, 5},
    // nested, unfinished, ended
    {"<< /D << /TestKey 2 >> >>", nullptr},
    {"<< /TestKey 1 /D << /TestKey 2 >> >>", nullptr, 0, 0, "TestKey", 1, 11},
    {"<< /A [ << /TestKey 2 >> ] >>", nullptr},
    {"<< /A (/TestKey 1 >>", nullptr},
    {"<< /A <12 /TestKey 1 ", nullptr},
    {"<< /A [1 2 /TestKey 1 >>", nullptr},
    {"<< /A << /B 1 /TestKey 1 >>", nullptr},
    {"<< /A 1 >> /TestKey (x)", nullptr},
    {"<< /TestKey 12", nullptr},
    {"", nullptr},
};

TEST(ReadDictionaryEntry2, Table) {
    for (const Lookup& row : kLookups) {
        SCOPED_TRACE(row.text);
        const Result result = lookUp(row.text, row);
        EXPECT_EQ(result.found, row.value == nullptr ? 0 : 1);
        std::string value = row.value == nullptr ? "" : row.value;
        if (row.value != nullptr) {
            EXPECT_EQ(result.length, static_cast<int>(value.size()));
        }
        value.resize(result.out.size());  // nothing is written behind the value
        EXPECT_EQ(result.out, value);
        EXPECT_EQ(result.keyPos, row.keyPos);
        EXPECT_EQ(result.endPos, row.endPos);
    }
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
    const auto show = [](const char* text) {
        return [=](CPdfObj& obj) { return obj.ReplaceTjValue(std::string(text).data()); };
    };
    const std::string longName = '/' + std::string(10'000, 'n');
    const struct {
        std::function<int(CPdfObj&)> edit;
        std::string_view before;
        int result;
        std::string_view after;
    } rows[] = {
        {insert("/X 1"), "1 0 obj\n<< /A 1 >>\nendobj", 1, "1 0 obj\n<< /A 1 /X 1\r\n>>\nendobj"},
        {insert("/X 1\n"), "<< /D << /A 1 >>>>", 1, "<< /D << /A 1 >>/X 1\n>>"},
        {insert("/X 1\r"), "<< /A\0 1>>"sv, 1, "<< /A\0 1/X 1\r>>"sv},
        {insert("/X 1"), "[1 2]", 0, "[1 2]"},
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
        {show(" World"), "BT (Hello) Tj (x) Tj ET", 0, "BT (Hello World) Tj (x) Tj ET"},
        {show("x"), "BT <41>\r\n Tj ET", 0, "BT <41> (x)\r\n Tj ET"},
        {show("x"), "BT (x) TJ ET", -1801, "BT (x) TJ ET"},
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
