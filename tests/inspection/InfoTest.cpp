// One call per question on a file: sizes and values of signature parts, and their codes.
#include <gtest/gtest.h>
#include <log4cxx/appenderskeleton.h>
#include <log4cxx/logger.h>

#include <functional>
#include <string>
#include <string_view>

#include "support/LogCapture.h"
#include "support/OpenedPdf.h"
#include "support/PdfBuilder.h"
#include "tests/inspection/OneSignature.h"
#include "tests/signing/Signing.h"
#include "varnpdf/PdfDoc.h"
#include "varnpdf/PdfInfo.h"
#include "varnpdf/result.h"

namespace {

using namespace std::literals;
using namespace varnpdf::test;

/// The bytes of a signature's part, from a file by its name.
using Call = int (*)(char*, int, unsigned char*, unsigned long*);

template <int kCertificate>
int certificate(char* file, int index, unsigned char* buffer, unsigned long* length) {
    return CPdfInfo::GetSignaturePKCS1Cert(file, index, kCertificate, buffer, length);
}

/// Size query, then the value into a buffer of just that size; "code ..." for what fails.
std::string fetched(Call call, std::string path, int index = 0) {
    unsigned long size = 4711;
    if (const int code = call(path.data(), index, nullptr, &size); code != 0) return "code " + std::to_string(code);
    std::string bytes(size + 1, '#');
    auto* const buffer = reinterpret_cast<unsigned char*>(bytes.data());
    unsigned long small = size - 1;
    EXPECT_NE(call(path.data(), index, buffer, &small), 0) << "a length below the size";
    EXPECT_EQ(bytes, std::string(size + 1, '#'));
    if (const int code = call(path.data(), index, buffer, &size); code != 0) return "fetch " + std::to_string(code);
    EXPECT_EQ(bytes.back(), '#') << "written behind the buffer";
    bytes.pop_back();
    EXPECT_EQ(bytes.size(), size);
    return bytes;
}

TEST(Info, PartsOfWhatWasSigned) {
    CPdfSign sign;
    ASSERT_EQ(prepare(sign, smallDocument().table().bytes(), {.room = 7}), 0);
    const std::string signedBytes = preparedBytes(sign);
    const TempFile file(saved(sign, "\x30\x05\x02\x03\x01\x02\x03"s, 7));
    EXPECT_EQ(fetched(&CPdfInfo::GetSignaturePKCS7, file.path()), "\x30\x05\x02\x03\x01\x02\x03");
    EXPECT_EQ(fetched(&CPdfInfo::GetSignatureBlob, file.path()), signedBytes);
    EXPECT_EQ(CPdfInfo::GetNumSignature(std::string(file.path()).data()), 1);
    EXPECT_EQ(CPdfInfo::GetSignaturePKCS1CertNum(std::string(file.path()).data(), 0), 0);  // there is no /Cert
}

TEST(Info, PartsAndTheirCodes) {
    const std::string longRange = "[0 8" + std::string(3000, ' ') + "20 7]";
    const std::string longCert(4000, 'A');
    const struct {
        std::string document;
        Call call;
        std::string result;
    } rows[] = {
        {withContents("<3003020101000000>"), &CPdfInfo::GetSignaturePKCS7, "\x30\x03\x02\x01\x01"},
        {withContents("<300\r3020101000000>"), &CPdfInfo::GetSignaturePKCS7, "\x30\x03\x02\x01\x01"},
        {withContents("<>"), &CPdfInfo::GetSignaturePKCS7, "code -114"},
        {withContents("<3003zz0101>"), &CPdfInfo::GetSignaturePKCS7, "fetch -115"},
        {withContents("<0482000301020300>"), &CPdfInfo::GetSignaturePKCS1, "\x04\x82\0\x03\x01\x02\x03"s},
        {withContents("<>"), &CPdfInfo::GetSignaturePKCS1, "code -117"},
        {withDictionary("<< /Type /Sig /ByteRange [0 600000000 0 600000000 ] >>"), &CPdfInfo::GetSignatureBlob,
         "code -22"},
        {withDictionary("<< /Type /Sig /ByteRange " + longRange + " >>"), &CPdfInfo::GetSignatureBlob,
         "%PDF-1.7" + smallDocument().bytes().substr(20, 7)},
        {withDictionary("<< /Type /Sig /Cert [<300141> <300242>] >>"), &certificate<1>, "\x30\x02\x42"},
        {withDictionary("<< /Type /Sig /Cert <> >>"), &certificate<0>, "code -118"},
        {withDictionary("<< /Type /Sig /Cert (z\\)y\\nx) >>"), &certificate<0>, "z)y\nx"},
        {withDictionary("<< /Type /Sig /Cert <" + longCert + "> >>"), &certificate<0>, std::string(2000, '\xAA')},
        {withDictionary("<< /Type /Sig /Cert <30zz30> >>"), &certificate<0>, "30z"},
        {withDictionary("<< /Type /Sig /Cert <3030zz> >>"), &certificate<0>, "fetch -117"},
        {withDictionary("<< /Type /Sig >>"), &certificate<-1>, "code -1008"},
    };
    for (const auto& row : rows) {
        const TempFile file(row.document);
        EXPECT_EQ(fetched(row.call, file.path()), row.result) << row.document.substr(row.document.find("5 0 obj"));
    }
}

TEST(Info, WithoutTheFileOrASignature) {
    const TempFile encrypted(smallDocument().table({.entries = "/Root 1 0 R /Encrypt 9 0 R"}).bytes());
    const TempFile plain(smallDocument().table().bytes());
    const TempFile once(withContents("<3000>"));
    const struct {
        std::string path;
        int index;
        std::string part, certificate;
        int status, number, encryption;
    } rows[] = {
        {"/nowhere.pdf", 0, "code -1001", "code -1001", -1001, -1001, -1001},
        {encrypted.path(), 0, "code -1021", "code -1021", -1021, -1021, -1021},
        {plain.path(), 0, "code -113", "code -113", -113, 0, 0},
        {once.path(), 1, "code -1", "code -118", -1, 1, 0},
        {once.path(), -1, "code -1", "code -1008", -1, 1, 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.path + ' ' + std::to_string(row.index));
        std::string path = row.path;
        for (const Call call :
             {&CPdfInfo::GetSignatureBlob, &CPdfInfo::GetSignaturePKCS7, &CPdfInfo::GetSignaturePKCS1}) {
            EXPECT_EQ(fetched(call, path, row.index), row.part);
        }
        EXPECT_EQ(fetched(&certificate<0>, path, row.index), row.certificate);
        EXPECT_EQ(CPdfInfo::GetSignaturePKCS1CertNum(path.data(), row.index), row.status);
        EXPECT_EQ(CPdfInfo::GetNumSignature(path.data()), row.number);
        EXPECT_EQ(CPdfInfo::CheckEncryption(path.data()), row.encryption);
        // The opening's code; what became of the value is told by its length.
        int length = 4711;
        EXPECT_EQ(CPdfInfo::GetSignatureField(path.c_str(), row.index, 1, nullptr, &length), row.encryption);
        EXPECT_EQ(length, row.encryption == 0 ? 0 : 4711);
    }
    EXPECT_EQ(CPdfInfo::GetNumSignature(nullptr), -1001);
    unsigned long length = 0;
    EXPECT_EQ(CPdfInfo::GetSignaturePKCS1Cert(nullptr, 0, 0, nullptr, &length), -1008);
}

TEST(Doc, ValuesAreHexadecimalText) {
    const struct {
        const char* contents;
        int code;
        const char* text;
    } rows[] = {
        {"<3001aB00>", 0, "3001aB#"},  // as many characters as the value needs, no terminator
        {"<0401aB00>", 0, "0401aB#"},  // any element will do
        {"<3005aB00>", -115, "#######"},
    };
    for (const auto& row : rows) {
        const TempFile file(withContents(row.contents));
        unsigned int size = 3;
        unsigned char text[8] = "#######";
        EXPECT_EQ(CPdfDoc().GetSignPKCS7(file.path().c_str(), 0, text, &size), row.code);
        EXPECT_STREQ(reinterpret_cast<char*>(text), row.text);
    }
    // The low four bits of the length byte count the bytes of the length, also where it is short.
    TempFile octets(withContents("<0401020304>"));
    unsigned int size = 0;
    EXPECT_EQ(CPdfDoc().GetSignPKCS1(std::string(octets.path()).data(), 0, nullptr, &size), 0);
    EXPECT_EQ(size, 5U);
}

/// Does something whenever a document gives out a value: between its opening and the second reading of its file.
class OnValue : public log4cxx::AppenderSkeleton {
public:
    explicit OnValue(std::function<void()> action) : action_(std::move(action)) {}
    void append(const log4cxx::spi::LoggingEventPtr& event, log4cxx::helpers::Pool&) override {
        if (event->getMessage().starts_with(" value: |")) action_();
    }
    void close() override {}
    [[nodiscard]] bool requiresLayout() const override { return false; }

private:
    std::function<void()> action_;
};

TEST(Info, FileIsGoneOrShorterWhenReadAgain) {
    const std::string document = withContents("<3003020101>");
    const LogCapture debug("VarnPDF.CPdf");
    for (const bool gone : {true, false}) {
        for (const Call call :
             {&CPdfInfo::GetSignatureBlob, &CPdfInfo::GetSignaturePKCS7, &CPdfInfo::GetSignaturePKCS1}) {
            const TempFile file(document);
            const auto change = std::make_shared<OnValue>(
                [&] { gone ? void(std::filesystem::remove(file.path())) : file.write(document.substr(0, 40)); });
            const auto logger = log4cxx::Logger::getLogger("VarnPDF.CPdf");
            logger->addAppender(change);
            unsigned long size = document.size();
            std::string bytes(size, '\0');
            EXPECT_EQ(call(std::string(file.path()).data(), 0, reinterpret_cast<unsigned char*>(bytes.data()), &size),
                      -3);
            logger->removeAppender(change);
        }
    }
}

TEST(Info, OddMembers) {
    std::string text = "x";
    EXPECT_EQ(CPdfInfo::GetSignatureField_1(&text), 0);
    EXPECT_EQ(text, "x,mkhskjdhksajdhaskjdhkj");
    const LogCapture log("VarnPDF.CPdfInfo");
    CPdfInfo::OutputDebugString("Prüfung");
    EXPECT_TRUE(log.has("Prüfung"));
}

}  // namespace
