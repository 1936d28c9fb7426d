// The object record, operations on its text, references, and the output buffer.
#include "varnpdf/PdfObj.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "varnpdf/ByteStream.h"

namespace {

using namespace std::literals;

void setText(CPdfObj& obj, std::string_view text) {
    std::string copy(text);
    obj.SetContent(reinterpret_cast<unsigned char*>(copy.data()), static_cast<int>(copy.size()));
}

std::string textOf(CPdfObj& obj) {
    return {reinterpret_cast<const char*>(obj.GetContent()), static_cast<std::size_t>(obj.GetContentLen())};
}

TEST(PdfObj, TakesAndDropsText) {
    CPdfObj obj;
    setText(obj, "4 0 obj << /Type /Sig /Subtype /X /R (a\0b) >> endobj"sv);
    EXPECT_EQ(textOf(obj), "4 0 obj << /Type /Sig /Subtype /X /R (a\0b) >> endobj"sv);
    EXPECT_EQ(obj.GetContent()[obj.GetContentLen()], 0);
    EXPECT_STREQ(obj.get_dictionary_type(), "/Sig");
    EXPECT_STREQ(obj.get_dictionary_subtype(), "/X");
    obj.SetContentDummySpezial(nullptr, 9);
    EXPECT_EQ(textOf(obj), "4 0 obj <");
    obj.SetContent(nullptr, 5);
    EXPECT_EQ(obj.GetContent(), nullptr);
    EXPECT_EQ(obj.get_dictionary_type(), nullptr);
    EXPECT_EQ(obj.get_dictionary_subtype(), nullptr);
    EXPECT_EQ(obj.GetContentLen(), 9);
}

TEST(PdfObj, CopyIsDeepAndPartial) {
    CPdfObj target;
    setText(target, "<< /Type /Old >>");
    {
        CPdfObj source(7, 1, 100, 200);
        setText(source, "<< /Type /New /S (\0) >>"sv);
        source.SetInUseKeyword('n');
        source.SetStatus(false);
        source.SetObjectType(CPdfObj::eContentArray);
        source.SetIsCompressed(true);
        source.SetCompressStreamObjNr(5);
        source.SetiDecodeParms_Predictor(12);
        target.CopyFrom(&source);
    }
    EXPECT_EQ(textOf(target), "<< /Type /New /S (\0) >>"sv);
    EXPECT_EQ(target.GetObjNum() + target.GetGenNumber() + target.GetFromPos() + target.GetToPos(), 308);
    EXPECT_TRUE(target.IsInUse());
    EXPECT_FALSE(target.GetStatus());
    EXPECT_EQ(target.GetObjectType(), CPdfObj::eContentArray);
    EXPECT_FALSE(target.GetIsCompressed());
    EXPECT_EQ(target.GetCompressStreamObjNr(), 0);
    EXPECT_EQ(target.GetiDecodeParms_Predictor(), 1);
    EXPECT_STREQ(target.get_dictionary_type(), "/Old");
}

// The recorded length is the old length + data + 18 whatever stands behind "endobj"; the writer copies that many bytes.
TEST(PdfObj, AddStreamArithmetic) {
    const auto data = "da\0ta"sv;
    const std::string full = "5 0 obj\n<< >>\nstream\nda\0ta\nendstream\nendobj\n\n"s;
    for (const auto tail : {""sv, "\n"sv, "\r\n"sv, "\n% more"sv}) {
        CPdfObj obj;
        setText(obj, "5 0 obj\n<< >>\nendobj" + std::string(tail));
        const int before = obj.GetContentLen();
        obj.AddStream(const_cast<char*>(data.data()), static_cast<int>(data.size()));
        EXPECT_EQ(obj.GetContentLen(), before + 5 + 18);
        std::string expected = full;
        expected.resize(static_cast<std::size_t>(before) + 5 + 18);
        EXPECT_EQ(textOf(obj), expected);
    }
}

TEST(PdfObj, UpdateLengthTag) {
    const struct {
        std::string_view before, after;
    } rows[] = {
        {"<< /Length 0 >>\nstream\nabcdef\nendstream", "<< /Length 6 >>\nstream\nabcdef\nendstream"},
        {"<< /Length 99/A 1 >>\nstream\r\na\0b\nendstream"sv, "<< /Length 3/A 1 >>\nstream\r\na\0b\nendstream"sv},
        // One byte of line end is assumed before "endstream".
        {"<< /Length 1 >>\nstream\r\nabc\r\nendstream", "<< /Length 4 >>\nstream\r\nabc\r\nendstream"},
        {"<< /Length 1 >>\nstream\n\r\n\nabc\nendstream", "<< /Length 3 >>\nstream\n\r\n\nabc\nendstream"},
        {"<< /Length 7 0 R >>\nstream\nabc\nendstream", "<< /Length 3 0 R >>\nstream\nabc\nendstream"},
        // Other keys begin like it.
        {"<< /Length1 99 /Length 9 >>\nstream\nabc\nendstream", "<< /Length1 99 /Length 3 >>\nstream\nabc\nendstream"},
        {"<< /Length 1 /Length1 1 /Length11 >>\nstream\nabc\nendstream",
         "<< /Length 3 /Length1 1 /Length11 >>\nstream\nabc\nendstream"},
        // The new text contains the old one.
        {"<< /Length 1 >>\nstream\nabcdefghijkl\nendstream", "<< /Length 12 >>\nstream\nabcdefghijkl\nendstream"},
        {"<< /Length 1 /X /Length 1 >>\nstream\nabc\nendstream",
         "<< /Length 3 /X /Length 3 >>\nstream\nabc\nendstream"},
    };
    for (const auto& row : rows) {
        CPdfObj obj;
        setText(obj, row.before);
        obj.UpdateLengthTag();
        EXPECT_EQ(textOf(obj), row.after);
    }
}

TEST(PdfObj, TextWithoutTheKeywordsStaysAsItIs) {
    for (const auto text : {"<< /Length 3 >>"sv, "<< /Length 3 >> stream abc"sv, "<< >> stream\nabc\nendstream"sv}) {
        CPdfObj obj;
        setText(obj, text);
        obj.UpdateLengthTag();
        std::string data = "x";
        obj.AddStream(data.data(), 1);
        EXPECT_EQ(textOf(obj), text);
    }
}

TEST(PdfObj, FindEndObj) {
    const struct {
        const char* text;
        int length;
        bool found;
    } rows[] = {
        {"xxendobj", 8, true}, {"xxendobj", 7, false}, {"xxENDOBJ", 8, true}, {"EndObj ", 7, false}, {"", 0, false}};
    for (const auto& row : rows) {
        CPdfObj obj;
        std::string text = row.text;
        EXPECT_EQ(obj.FindEndObjinNext(text.data(), row.length), row.found) << row.text;
        EXPECT_EQ(FindEndObjinNext(text.data(), row.length), row.found) << row.text;
    }
}

TEST(PdfObj, CheckObjectType) {
    const struct {
        const char* text;
        int type;
    } rows[] = {
        {"1 0 obj [1 2] endobj", 32},
        {" \n12 0 obj\n[1 2]\nendobj", 32},
        {"1 0 obj << /A [1] >> endobj", 32},
        {"1 0 obj << /A 1 >> endobj", 256},
        {"1 0 obj<</A[1]>>endobj", 32},
        {"[1 0 obj", 256},
        {"x 1 0 obj [1]", 256},
        {"1 0x obj [1]", 256},
        {"1 0 object [1]", 256},
        {"1 0 ob [1]", 256},
        {"1 0 obj", 256},
        {"12", 256},
        {"", 256},
    };
    for (const auto& row : rows) {
        CPdfObj obj;
        std::string text = row.text;
        EXPECT_EQ(obj.check_object_type(text.data(), static_cast<int>(text.size())), row.type) << row.text;
    }
}

TEST(PdfObj, References) {
    const struct {
        const char* text;
        int number, generation;
    } single[] = {{"12 3 R", 12, 3}, {"/Kids 7 0 R", 7, 0}, {"abc", -1, -1}, {"", -1, -1}};
    for (const auto& row : single) {
        CPdfObj obj;
        std::string text = row.text;
        obj.GetIdFromReference(text.data());
        EXPECT_EQ(obj.GetObjNum(), row.number) << row.text;
        EXPECT_EQ(obj.GetGenNumber(), row.generation) << row.text;
    }
    const struct {
        const char* text;
        int index, found, number;
    } arrays[] = {
        {"[1 0 R 20 0 R 25 0 R]", 0, 1, 1},
        {"[1 0 R 20 0 R 25 0 R]", 1, 1, 20},
        {"[1 0 R 20 0 R 25 0 R]", 2, 1, 25},
        {"[1 0 R 20 0 R 25 0 R]", 3, 0, -1},
        {"/Kids [1 0 R\n2 0 R\r3 0 R ]", 2, 1, 3},
        {"[1 0 Rx 2 0 R]", 1, 0, -1},
        {"[1 0 R/A 2 0 R]", 0, 0, -1},
    };
    for (const auto& row : arrays) {
        CPdfObj obj;
        std::string text = row.text;
        EXPECT_EQ(obj.GetIdFromReferenceArray(text.data(), row.index), row.found) << row.text << row.index;
        EXPECT_TRUE(row.found == 0 || obj.GetObjNum() == row.number) << row.text << row.index;
    }
    const struct {
        const char* text;
        int count;
    } counts[] = {{"[1 0 R 2 0 R]", 2}, {"1 0 R 2 0 R", 2}, {"[1 0 R] R R", 1}, {"[]", 0}, {"", 0}};
    for (const auto& row : counts) {
        CPdfObj obj;
        std::string text = row.text;
        EXPECT_EQ(obj.GetNumberOfIDs(text.data()), row.count) << row.text;
    }
}

TEST(PdfObj, GetArrayContent) {
    CPdfObj obj;
    char out[64] = "";
    EXPECT_EQ(obj.GetArrayContent(out, 0), -1);
    setText(obj, "1 0 obj << >> endobj");
    EXPECT_EQ(obj.GetArrayContent(out, 0), -1);
    setText(obj, "1 0 obj << /A [1 2] /B [3] >> endobj");
    EXPECT_EQ(obj.GetArrayContent(out, 1), -1);
    EXPECT_EQ(obj.GetArrayContent(out, 0), 0);
    EXPECT_STREQ(out, "[1 2]");
}

TEST(ByteStream, GrowsByWhatIsNeededPlusAFixedRoom) {
    CByteStream stream;
    EXPECT_EQ(stream.capacity(), 20000U);
    EXPECT_EQ(stream.data()[19999], 0);
    std::string bytes(15000, 'a');
    stream.append(reinterpret_cast<unsigned char*>(bytes.data()), 15000);
    EXPECT_EQ(stream.capacity(), 20000U);
    bytes.assign(6000, 'b');
    EXPECT_EQ(stream.append(reinterpret_cast<unsigned char*>(bytes.data()), 6000), 0);
    EXPECT_EQ(stream.tell(), 21000U);
    EXPECT_EQ(stream.capacity(), 41000U);
    EXPECT_EQ(stream.data()[14999], 'a');
    EXPECT_EQ(stream.data()[15000], 'b');
    stream.setseek(10);
    stream.setseekend(5);
    std::string text = "xyz";
    stream.print(text.data());
    EXPECT_EQ(stream.tell(), 13U);
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(stream.data()) + 9, 5), "axyza");
    stream.setseek(100'000);  // the next append makes the room
    stream.print(text.data());
    EXPECT_EQ(stream.tell(), 100'003U);
    EXPECT_EQ(stream.data()[100'002], 'z');
    stream.init(4711);
    EXPECT_EQ(stream.tell(), 0U);
    EXPECT_EQ(stream.capacity(), 20000U);
    EXPECT_EQ(stream.getoldcontentsize(), 4711U);
}

}  // namespace
