// Signatures of a document: counting, values by tag, signed bytes, PKCS#7 and PKCS#1 values, certificates.
#include <gtest/gtest.h>

#include <clocale>
#include <string>
#include <string_view>
#include <vector>

#include "support/LogCapture.h"
#include "support/OpenedPdf.h"
#include "support/PdfBuilder.h"
#include "tests/inspection/OneSignature.h"

namespace {

using namespace std::literals;
using namespace varnpdf::test;

TEST(Signatures, CountingAndNames) {
    const struct {
        const char* field;
        int counted;
        std::vector<std::string> names;
    } rows[] = {
        {"<< /Type /Annot /FT /Sig /T (a) /V 5 0 R >>", 1, {"(a)"}},
        {"<< /Type /Annot /FT/Sig/T(a)/V<</Type/Sig>> >>", 1, {"(a)"}},
        {"<< /Type /Annot /FT /Sig /T <6162> >>", 0, {"<6162>"}},               // empty field
        {"<< /FT /Sig /T (a) /V 5 0 R >>", 0, {"(a)"}},                         // no widget
        {"<< /Type /Annot /FT /Tx /T (a) /V (x) >>", 0, {}},                    // text field
        {"<< /Type /Annot /T (a) /V 5 0 R >>", 0, {}},                          // inherits its type
        {"<< /Type /Annot /FT /Sig /T (a) /MK << /V 5 0 R >> >>", 0, {"(a)"}},  // only a nested /V
    };
    for (const auto& row : rows) {
        for (const bool packed : {false, true}) {
            SCOPED_TRACE(row.field);
            PdfBuilder builder = smallDocument();
            if (packed) builder.objectStream(6, {{4, row.field}}).crossReferenceStream(7);
            if (!packed) builder.object(4, row.field).table();
            OpenedPdf opened(builder.bytes());
            ASSERT_EQ(opened.code, 0);
            EXPECT_EQ(opened.pdf.PdfGetNumSignatures(), row.counted);
            EXPECT_EQ(opened.pdf.GetSigInfo()->GetSigNumber(), row.counted);
            std::vector<std::string> names;
            opened.pdf.create_vectorlist_of_signatures(names);
            EXPECT_EQ(names, row.names);
        }
    }
}

TEST(Signatures, RegisterHoldsAHundred) {
    PdfBuilder builder = smallDocument();
    for (int i = 110; i >= 10; --i) {
        builder.object(
            i, "<< /Type /Annot /FT /Sig /T (" + std::to_string(i) + ") /V " + std::to_string(i + 200) + " 0 R >>");
        builder.object(i + 200, "<< /Type /Sig /Reason (" + std::to_string(i) + ") >>");
    }
    OpenedPdf opened(builder.table().bytes());
    CPdf& pdf = opened.pdf;
    EXPECT_EQ(pdf.PdfGetNumSignatures(), 101);
    char value[200];
    int length = 0;
    EXPECT_EQ(pdf.GetSignatureField(99, 1, value, &length), 0);
    EXPECT_STREQ(value, "109");  // ascending object numbers, whatever their order in the file
    EXPECT_EQ(pdf.GetSignatureField(100, 1, value, &length), -1);
    EXPECT_EQ(length, 0);
    EXPECT_EQ(pdf.GetSignatureField(-1, 1, value, &length), -1);
    EXPECT_EQ(pdf.GetSigInfo()->GetSignRef(100), nullptr);
    EXPECT_EQ(pdf.GetSigInfo()->GetSignRef(-1), nullptr);
}

TEST(Signatures, LookupByIndexUsesTheCachedCountMinusOne) {
    PdfBuilder builder = smallDocument();
    for (const int i : {4, 5, 6}) builder.object(i, "<< /Type /Annot /FT /Sig /V 7 0 R >>");
    OpenedPdf opened(builder.object(7, "<< /Type /Sig >>").table().bytes());
    CPdf& pdf = opened.pdf;
    EXPECT_EQ(pdf.GetPdfObjBySigIndex(0), nullptr);  // nothing cached yet
    char value[64];
    int length = 0;
    EXPECT_EQ(pdf.GetSignatureField(0, 11, value, &length), 0);
    EXPECT_EQ(pdf.GetPdfObjBySigIndex(0), pdf.get_pdf_obj_from_map(4));
    EXPECT_EQ(pdf.GetPdfObjBySigIndex(1), pdf.get_pdf_obj_from_map(5));
    EXPECT_EQ(pdf.GetPdfObjBySigIndex(2), nullptr);
    EXPECT_EQ(pdf.GetPdfObjBySigIndex(-1), nullptr);
}

TEST(Signatures, ValuesByTag) {
    const struct {
        std::string_view entry;
        int tag;
        std::string_view value;
    } rows[] = {
        {"/Reason (abc)", 1, "abc"},
        {"/Reason (a) /Reason (b)", 1, "b"},
        {"/Reason ( (abc\\))", 1, "abc\\)"},
        {"/Reason (a\0b)"sv, 1, "a\0b"sv},
        {"/Reason (\xE4\xF6)", 1, "\xE4\xF6"},
        {"/Reason ()", 1, ""},
        {"/Location <414243>", 2, "ABC"},
        {"/Location <4100e4>", 2, "A\0\xE4"sv},
        {"/M (D:20240501120000+02'00')", 3, "D:20240501120000+02'00'"},
        // UTF-16 values are read as wide characters of 32 bits behind the third byte, each narrowed to its low byte.
        {"/Name <FEFF004100420043004400000000 00>", 4, "AC\0"sv},
        {"/Name (\xFE\xFF\0A\0B\0C\0D\0\0\0\0\0)"sv, 4, "AC\0"sv},
        {"/Name <FE41>", 4, "\xFE\x41"},
        {"/Filter /Adobe.PPKLite", 5, "/Adobe.PPKLite"},
        {"/SubFilter/ETSI.CAdES.detached", 6, "/ETSI.CAdES.detached"},
        {"/ByteRange [0 1 2 3 ]", 7, "[0 1 2 3 ]"},
        {"/Contents <30aB00>", 8, "30aB00"},
        {"/Contents <>", 8, ""},
        {"/Cert [<3001> <3002>]", 10, "[<3001> <3002>]"},
        {"/Cert <3001>", 10, "<3001>"},
        {"", 11, "/Sig"},
        {"/R 123 /N 1", 12, "123"},
        {"/ContactInfo (c)", 13, "c"},
        {"/Reference [<< /Reason (nested) >>]", 1, ""},
        {"", 9, ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.entry);
        std::string entry(row.entry);
        if (const auto blank = entry.find(" 00>"); blank != std::string::npos) entry.erase(blank, 1);
        OpenedPdf opened(withDictionary("<< /Type /Sig " + entry + " >>"));
        std::vector<char> buffer(opened.pdf.GetContentLen() + 1, 'x');
        int length = -1;
        EXPECT_EQ(opened.pdf.GetSignatureField(0, row.tag, buffer.data(), &length), 0);
        EXPECT_EQ(std::string_view(buffer.data(), static_cast<std::size_t>(length)), row.value);
    }
}

TEST(Signatures, EntriesOfAnObject) {
    OpenedPdf opened(withDictionary("<< /D << /A (in) >> /A (out) /A (later) >>"));
    CPdfObj* const obj = opened.pdf.get_pdf_obj_from_map(5);
    std::string key = "/A";
    char out[200] = {};
    int begin = 0;
    int end = 0;
    int length = 0;
    EXPECT_EQ(opened.pdf.GetSignRefVal(obj, key.data(), out, &length), 1);
    EXPECT_STREQ(out, "(later)");
    EXPECT_EQ(length, 7);
    EXPECT_EQ(opened.pdf.GetSignRefVal(obj, key.data(), out, nullptr), 1);
    EXPECT_EQ(opened.pdf.GetSignRefVal(obj, std::string("/B").data(), out, &length), 0);
    std::fill(std::begin(out), std::end(out), '\0');
    EXPECT_EQ(opened.pdf.ReadDictionaryEntryWithInDict(obj, "/A", out, &begin, &end), 1);
    EXPECT_STREQ(out, "(in)");
    std::fill(std::begin(out), std::end(out), '\0');
    EXPECT_EQ(opened.pdf.ReadDictionaryEntry(obj, "/A", out, &begin, &end), 1);
    EXPECT_STREQ(out, "(later)");
    EXPECT_EQ(obj->content().substr(static_cast<std::size_t>(begin), static_cast<std::size_t>(end - begin)),
              "/A (later)");
}

struct Fetched {
    int code;
    std::string bytes;
    bool operator==(const Fetched&) const = default;
};

/// Size query, then the value into a buffer of just that size.
template <typename Size>
Fetched fetch(CPdf& pdf, int (CPdf::*get)(int, unsigned char*, Size*), int index = 0, std::size_t unit = 1) {
    Size size = 4711;
    if (const int code = (pdf.*get)(index, nullptr, &size); code != 0) return {code, ""};
    std::string bytes(size * unit, '\0');
    bytes.reserve(1);
    const int code = (pdf.*get)(index, reinterpret_cast<unsigned char*>(bytes.data()), &size);
    return {code, code == 0 ? bytes : ""};
}

TEST(Signatures, SignedBytes) {
    const std::string document = withContents("<3003020101>");
    OpenedPdf whole(document);
    const std::size_t open = document.find("<3003020101>");
    EXPECT_EQ(fetch(whole.pdf, &CPdf::GetSignatureBlob),
              (Fetched{0, document.substr(0, open) + document.substr(open + 12)}));
    EXPECT_EQ(fetch(whole.pdf, &CPdf::GetSignatureBlob, 1).code, -1);
    const struct {
        const char* range;
        int code;
        std::size_t first, offset, second;
    } rows[] = {
        {"[5 8 20 7 ]", 0, 8, 20, 7},  // the first offset is not used
        {"[0 9 100 0]", 0, 9, 100, 0},
        {"[0 600000000 0 600000000 ]", -22, 0, 0, 0},
        {"[0 2147483647 0 2147483647 ]", -22, 0, 0, 0},
        {"[0 8 999999 7 ]", -22, 0, 0, 0},
        {"[0 8 20 999999 ]", -22, 0, 0, 0},
        {"[0 -8 20 7 ]", -22, 0, 0, 0},
        {"[0 8 -20 7 ]", -22, 0, 0, 0},
        {"[0 8]", -22, 0, 0, 0},
    };
    for (const auto& row : rows) {
        const std::string bytes = withDictionary("<< /Type /Sig /ByteRange "s + row.range + " >>");
        OpenedPdf opened(bytes);
        const Fetched expected{row.code, bytes.substr(0, row.first) + bytes.substr(row.offset, row.second)};
        EXPECT_EQ(fetch(opened.pdf, &CPdf::GetSignatureBlob), expected) << row.range;
    }
    OpenedPdf unsignedOne(smallDocument().table().bytes());
    EXPECT_EQ(fetch(unsignedOne.pdf, &CPdf::GetSignatureBlob).code, -113);
}

std::string hex(std::string_view bytes) {
    std::string out;
    for (const char c : bytes) out.append({"0123456789ABCDEF"[(c >> 4) & 15], "0123456789ABCDEF"[c & 15]});
    return out;
}

TEST(Signatures, Pkcs7Value) {
    const std::string padding(40, '0');
    const std::string longValue = "30820100" + std::string(512, 'A');
    const struct {
        std::string contents;
        int code;
        std::string value;  // hexadecimal
    } rows[] = {
        {"3003020101" + padding, 0, "3003020101"},
        {"3003020101", 0, "3003020101"},
        {"3000" + padding, 0, "3000"},
        {"30810102" + padding, 0, "30810102"},
        {longValue + padding, 0, longValue},
        {"308400000003020101" + padding, 0, "308400000003020101"},  // a header longer than five bytes
        {"30860000000000030201ff" + padding, 0, "30860000000000030201FF"},
        {"30800201010000" + padding, 0, "30800201010000"},  // indefinite length
        {"30800440" + std::string(128, 'A') + "0000" + padding, 0, "30800440" + std::string(128, 'A') + "0000"},
        {"308030800201010000040100"
         "0000" +
             padding,
         0, "3080308002010100000401000000"},
        {"3131" + padding, -114, ""},
        {"", -114, ""},
        {"30zz020101", -115, ""},
        {"3003zz0101" + padding, -115, ""},
        {"3003020101"s.substr(0, 8), -115, ""},  // longer than its room
        {"3080020101", -115, ""},                // never ends
        {"30", -115, ""},
    };
    for (const auto& row : rows) {
        OpenedPdf opened(withContents('<' + row.contents + '>'));
        const Fetched fetched = fetch(opened.pdf, &CPdf::GetSignaturePKCS7);
        EXPECT_EQ(fetched.code, row.code) << row.contents;
        EXPECT_EQ(hex(fetched.bytes), row.value) << row.contents;
    }
    OpenedPdf padded(withContents("<31310000000000>"));
    unsigned long size = 5;
    EXPECT_EQ(padded.pdf.GetSignaturePKCS7(0, nullptr, &size), -114);
    EXPECT_EQ(size, 0U);
}

TEST(Signatures, Pkcs1Value) {
    const struct {
        const char* contents;
        int code;
        const char* value;
    } rows[] = {
        {"<0482000401020304ff>", 0, "0482000401020304"},
        {"<04810201020000000000>", 0, "0481020102"},
        {"<0480000000000000>", 0, "0480"},
        {"<0401051122334455000000>", 0, "0401051122334455"},  // a short length is read as a count of length bytes
        {"<041200031122330000>", 0, "04120003112233"},        // of which the low four bits count
        {"<0482\r000401020304ff00>", 0, "0482000401020304"},  // as pretty printers break lines
        {"<3003020101000000>", -117, ""},
        {"<>", -117, ""},
    };
    for (const auto& row : rows) {
        OpenedPdf opened(withContents(row.contents));
        const Fetched bytes = fetch(opened.pdf, &CPdf::GetSignaturePKCS1);
        EXPECT_EQ(bytes.code, row.code) << row.contents;
        EXPECT_EQ(hex(bytes.bytes), row.value) << row.contents;
        EXPECT_EQ(fetch(opened.pdf, &CPdf::GetSignPKCS1, 0, 2), (Fetched{row.code, row.value})) << row.contents;
    }
    OpenedPdf opened(withContents("<0482000401020304ff>"));
    for (const unsigned long room : {7UL, 8UL, 20UL}) {
        unsigned char bytes[21] = "####################";
        unsigned long length = room;
        EXPECT_EQ(opened.pdf.GetSignaturePKCS1(0, bytes, &length), room < 8 ? -117 : 0) << room;
        EXPECT_EQ(length, room < 8 ? 7UL : 8UL);
        EXPECT_EQ(bytes[8], '#');
    }
}

TEST(Signatures, Certificates) {
    std::string thirteen = "/Cert [";
    for (int i = 0; i < 13; ++i) thirteen += "<30A" + std::string(1, "0123456789ABC"[i]) + '>';
    thirteen += ']';
    const struct {
        std::string_view entry;
        int signature, certificate, code;
        std::string text, bytes;
    } rows[] = {
        {"/Cert <30013002>", 0, 0, 0, "30013002", "\x30\x01\x30\x02"},
        {"/Cert <30013002>", 0, 1, -118, "", ""},
        {"/Cert [<AA01><BB0203>]", 0, 0, 0, "AA01", "\xAA\x01"},
        {"/Cert [ <AA01>\n<BB0203> ]", 0, 1, 0, "BB0203", "\xBB\x02\x03"},
        {"/Cert [<AA01><BB0203>]", 0, 2, -118, "", ""},
        {"/Cert (\xFFqrst)", 0, 0, 0, "\xFFqrst", "\xFFqrst"},
        {thirteen, 0, 11, 0, "30AB", "\x30\xAB"},
        {thirteen, 0, 12, -118, "", ""},
        {"", 0, 0, -118, "", ""},
        {"/Cert <30>", 1, 0, -118, "", ""},
        {"/Cert <30>", -1, 0, -1008, "", ""},
        {"/Cert <30>", 0, -1, -1008, "", ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.entry);
        OpenedPdf opened(withDictionary("<< /Type /Sig " + std::string(row.entry) + " >>"));
        unsigned int length = 4711;
        EXPECT_EQ(opened.pdf.GetSignPKCS1Cert(row.signature, row.certificate, nullptr, length), row.code);
        EXPECT_EQ(length, row.bytes.size());
        unsigned long size = 0;
        EXPECT_EQ(opened.pdf.GetSignaturePKCS1Cert(row.signature, row.certificate, nullptr, &size), row.code);
        if (row.code != 0) continue;
        std::string text(std::size_t{2} * length + 2, 'x');
        EXPECT_EQ(opened.pdf.GetSignPKCS1Cert(row.signature, row.certificate,
                                              reinterpret_cast<unsigned char*>(text.data()), length),
                  0);
        EXPECT_EQ(text.c_str(), row.text);
        std::string bytes(size, '\0');
        EXPECT_EQ(opened.pdf.GetSignaturePKCS1Cert(row.signature, row.certificate,
                                                   reinterpret_cast<unsigned char*>(bytes.data()), &size),
                  0);
        EXPECT_EQ(bytes, row.bytes);
    }
}

TEST(Signatures, LogArrivesIntactInTheCLocale) {
    std::setlocale(LC_ALL, "C");
    OpenedPdf opened(smallDocument().object(4, kField).object(6, "<< /Type /Annot /FT /Sig >>").table().bytes());
    const LogCapture log("VarnPDF.CPdf");
    opened.pdf.PdfGetNumSignatures();
    std::vector<std::string> names;
    opened.pdf.create_vectorlist_of_signatures(names);
    for (const char* message : {"/V gefunden z\xC3\xA4hle Signatur!", "/V NICHT gefunden!", "/Sig gefunden in Obj 4",
                                "Create_Vectorlist_of_signatures START", "/V gefunden, checke heiter weiter",
                                "kein /V gefunden, checke heiter weiter k\xC3\xB6nnte leeres Sigfeld sein",
                                "/T gefunden, also Namen merken!"}) {
        EXPECT_TRUE(log.has(message)) << message;
    }
}

TEST(Signatures, ValuesAreLoggedButForTheLongOnes) {
    OpenedPdf opened(withDictionary("<< /Type /Sig /Reason (r) /Contents <30> /Cert <30> >>"));
    const LogCapture log("VarnPDF.CPdf");
    std::vector<char> buffer(opened.pdf.GetContentLen() + 1);
    for (const int tag : {8, 10, 1}) opened.pdf.GetSignatureField(0, tag, buffer.data(), nullptr);
    std::vector<std::string> values;
    for (const std::string& line : log.messages()) {
        if (line.starts_with(" value: |")) values.push_back(line);
    }
    EXPECT_EQ(values, std::vector<std::string>{" value: |r|"});
}

TEST(Signatures, StringFindLower) {
    EXPECT_EQ(stringfind_lower("Hello World", "WORLD"), 6);
    EXPECT_EQ(stringfind_lower("Hello", "x"), -1);
    EXPECT_EQ(stringfind_lower("Hello", ""), 0);
}

}  // namespace
