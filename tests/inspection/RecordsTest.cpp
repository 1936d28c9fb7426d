// The kept records of signature values: when a file is read, when it is read again, and what is forgotten.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <string>
#include <vector>

#include "support/LogCapture.h"
#include "support/OpenedPdf.h"
#include "support/PdfBuilder.h"
#include "varnpdf/PdfInfo.h"

namespace {

using namespace std::literals;
using namespace varnpdf::test;

std::string document(const std::string& entries, int signatures = 1) {
    PdfBuilder builder = smallDocument();
    for (int i = 0; i < signatures; ++i) {
        builder.object(4 + i, "<< /Type /Annot /FT /Sig /V 9 0 R >>");
    }
    return builder.object(9, "<< /Type /Sig " + entries + " >>").table().bytes();
}

void setDate(const TempFile& file, std::time_t seconds) {
    const timespec times[2] = {{seconds, 0}, {seconds, 0}};
    ASSERT_EQ(utimensat(AT_FDCWD, file.path().c_str(), times, 0), 0);
}

class Records : public testing::Test {
protected:
    void TearDown() override { CPdfInfo::clearSigFieldList(); }

    static std::string value(const TempFile& file, int index, int tag) {
        std::string result = "unset";
        const int code = CPdfInfo::GetSignatureFieldEx(file.path(), index, tag, &result, CPdfInfo::m_PdfSigF);
        return code == 0 ? result : "code " + std::to_string(code);
    }
    [[nodiscard]] long opened() const { return std::ranges::count(log.messages(), "opening pdf"); }

    LogCapture log{"VarnPDF.CPdfInfo"};
};

TEST_F(Records, AllValuesWithOneOpening) {
    const TempFile file(document(
        "/Reason (why) /Location (where) /M (D:2026) /Name (a \\(b\\)) /Filter /F /SubFilter /S /ByteRange [0 1 2 3 ] "
        "/Contents <30aB> /FT /Sig /Cert <3A> /R 7 /ContactInfo (who)"));
    const std::vector<std::string> expected = {"",     "why",  "where",    "D:2026", "a (b)", "/F",  "/S", "[0 1 2 3 ]",
                                               "30aB", "/Sig", "3c33413e", "/Sig",   "7",     "who", ""};
    for (int tag = 0; tag < static_cast<int>(expected.size()); ++tag) {
        EXPECT_EQ(value(file, 0, tag), expected[static_cast<std::size_t>(tag)]) << tag;
    }
    EXPECT_EQ(CPdfInfo::GetNumSignatureEx(std::string(file.path()).data()), 1);
    std::string messages;
    for (const std::string& line : log.messages()) messages += line + (line.ends_with('\n') ? "" : "\n");
    EXPECT_EQ(messages, "opening pdf\nnum signatures: 1\npdf content len: " + std::to_string(file.read().size()) + R"(
Reason
Tag 1 (reason) len:3
Location
Tag 2 (location) len:5
Date
Tag 3 (Date) len:6
Tag 4 (Name) len:7
Filter
Tag 5 (Filter) len:2
Subfilter
Tag 6 (Subfilter) len:2
Byterange
Tag 7 (byterange) len:10
Contents
Tag 8 (content) len:4
Formtag
Tag 9 (formtag) len:4
Cert
Tag 10 (cert) len:4
Type
Tag 11 (type) len:4
Tag 12 (R) len:1
contactinfo
Tag 13 (contactinfo) len:3
---
after deleting temp buffers
create cPdfSignatureFields object
closing pdf
GetSignatureFieldEx END regulaer
)");
}

// The text of a UTF-16 value as the interface narrows it, without the NUL behind it.
TEST_F(Records, TextsEndWhereTheyEnd) {
    const TempFile file(document("/Name <FEFF004D00610078> /Contents <00> /Cert (\\000)"));
    EXPECT_EQ(value(file, 0, 4), "Mx");
    EXPECT_EQ(value(file, 0, 8), "00");
    EXPECT_EQ(value(file, 0, 10), "5c303030");
}

TEST_F(Records, FileIsReadAgainWhenItsDateChanges) {
    const TempFile file(document("/Reason (old)"));
    setDate(file, 1794709446);
    EXPECT_EQ(value(file, 0, 1), "old");
    EXPECT_EQ(CPdfInfo::m_PdfSigF.front()->Get_szPdfFileDate(), "126.10.15-2:24:6");
    file.write(document("/Reason (new)", 2));
    setDate(file, 1794709446);
    EXPECT_EQ(value(file, 0, 1), "old");  // the date has whole seconds and is all that is asked for
    setDate(file, 1794709447);
    for (int i = 0; i < 2; ++i) EXPECT_EQ(value(file, 0, 1), "new");  // the stale record stays, but is passed over
    EXPECT_EQ(opened(), 2);
    EXPECT_EQ(CPdfInfo::m_PdfSigF.size(), 2U);
    EXPECT_EQ(CPdfInfo::GetNumSignatureEx(std::string(file.path()).data()), 2);
    std::filesystem::remove(file.path());
    EXPECT_EQ(value(file, 0, 1), "code -1001");
}

TEST_F(Records, TheEleventhEvictsTheFirst) {
    const TempFile file(document("/Reason (x)"));
    for (int index = 0; index < 10; ++index) value(file, index, 1);
    EXPECT_EQ(value(file, 0, 1), "x");
    EXPECT_EQ(opened(), 10);
    EXPECT_EQ(value(file, 10, 1), "");  // no such signature: a record without values
    EXPECT_EQ(CPdfInfo::m_PdfSigF.size(), 10U);
    EXPECT_EQ(CPdfInfo::m_PdfSigF.front()->Get_iSigNr(), 1);
    EXPECT_EQ(CPdfInfo::m_PdfSigF.back()->Get_iSigNr(), 10);
    EXPECT_EQ(value(file, 0, 1), "x");
    EXPECT_EQ(opened(), 12);
    CPdfInfo::clearSigFieldList();
    EXPECT_TRUE(CPdfInfo::m_PdfSigF.empty());
    EXPECT_EQ(value(file, 0, 1), "x");
    EXPECT_EQ(opened(), 13);
}

TEST_F(Records, Counts) {
    const TempFile none(smallDocument().table().bytes());
    EXPECT_EQ(CPdfInfo::GetNumSignatureEx(std::string(none.path()).data()), 0);
    EXPECT_EQ(CPdfInfo::GetNumSignatureEx("/nowhere.pdf"s.data()), -1001);
    EXPECT_EQ(CPdfInfo::GetNumSignatureEx(nullptr), -1001);
    EXPECT_EQ(CPdfInfo::m_PdfSigF.size(), 1U);
}

}  // namespace
