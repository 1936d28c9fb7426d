// JPEG files as documents: which are taken, and every byte of the result.
#include <gtest/gtest.h>

#include "tests/conversion/Conversion.h"

using namespace varnpdf::test;
using namespace std::string_literals;

namespace {

std::string word(int value) { return {static_cast<char>(value >> 8), static_cast<char>(value & 255)}; }

std::string frame(char marker, int width, int height, int components, char precision = 8) {
    return "\xFF"s + marker + word(8 + 3 * components) + precision + word(height) + word(width) +
           static_cast<char>(components) + std::string(static_cast<std::size_t>(3 * components), '\x11');
}

const std::string kStart = "\xFF\xD8\xFF\xE0\x00\x04yz"s;
const std::string kScan = "\xFF\xDA\x00\x02 endstream endobj \x00\xFF\xD9"s;

struct HeadCase {
    const char* name;
    std::string bytes;
    int code;  // of the conversion
    int found;
    int width;
    int height;
    int gray;
};

const HeadCase kHeads[] = {
    {"Colour", kStart + frame('\xC0', 2480, 3508, 3) + kScan, 0, 1, 2480, 3508, 0},
    {"Grey", kStart + frame('\xC2', 65535, 1, 1) + kScan, 0, 1, 65535, 1, 1},
    {"FillBytes", kStart + "\xFF\xFF\xFF" + frame('\xC1', 3, 4, 3) + kScan, 0, 1, 3, 4, 0},
    {"TablesFirst", kStart + "\xFF\xC4\x00\x03z\xFF\xC8\x00\x02\xFF\xCC\x00\x02"s + frame('\xC0', 3, 4, 1), 0, 1, 3, 4,
     1},
    {"FourComponents", kStart + frame('\xC0', 3, 4, 4) + kScan, 3, 1, 3, 4, 0},
    {"TwelveBits", kStart + frame('\xC1', 3, 4, 3, 12) + kScan, 3, 1, 3, 4, 0},
    {"Lossless", kStart + frame('\xC3', 3, 4, 3) + kScan, 3, 1, 3, 4, 0},
    {"NoHeight", kStart + frame('\xC0', 3, 0, 3) + kScan, 3, 1, 3, 0, 0},
    {"ScanFirst", kStart + kScan + frame('\xC0', 3, 4, 3), 3, 0, 7, 7, 7},
    {"EndFirst", kStart + "\xFF\xD9" + frame('\xC0', 3, 4, 3), 3, 0, 7, 7, 7},
    {"ShortSegment", kStart + "\xFF\xE1\x00\x01"s + frame('\xC0', 3, 4, 3), 3, 0, 7, 7, 7},
    {"CutInFrame", (kStart + frame('\xC0', 3, 4, 3)).substr(0, 14), 3, 0, 7, 7, 7},
    {"CutInSegment", "\xFF\xD8\xFF\xE0\x80\x00zzz"s, 3, 0, 7, 7, 7},
    {"NoStart", "\xFF\xD7" + frame('\xC0', 3, 4, 3), 3, 0, 7, 7, 7},
    {"Empty", "", 3, 0, 7, 7, 7},
};

class JpegHead : public testing::TestWithParam<HeadCase> {};

TEST_P(JpegHead, IsReadAndConverted) {
    const HeadCase& c = GetParam();
    const WorkDirectory work;
    const std::string in = work.write("in.JPeG", c.bytes);
    std::FILE* const file = std::fopen(in.c_str(), "rb");
    int width = 7;
    int height = 7;
    int gray = 7;
    EXPECT_EQ(scanhead(file, &width, &height, &gray), c.found);
    EXPECT_EQ(GetFileSize_varnimg(file), static_cast<int>(c.bytes.size()));
    std::fclose(file);
    EXPECT_EQ(width, c.width);
    EXPECT_EQ(height, c.height);
    EXPECT_EQ(gray, c.gray);
    EXPECT_EQ(convert(in, work.at("out.pdf")), c.code);
    EXPECT_EQ(work.files(), c.code == 0 ? 2 : 1);
}

INSTANTIATE_TEST_SUITE_P(Kinds, JpegHead, testing::ValuesIn(kHeads), [](const auto& test) { return test.param.name; });

TEST(Jpeg, DocumentIsAsDocumented) {
    const WorkDirectory work;
    const std::string jpeg = kStart + frame('\xC0', 2480, 3508, 1) + kScan;
    ASSERT_EQ(convert(work.write("in.jpg", jpeg), work.at("out.pdf")), 0);
    const std::string pdf = work.read("out.pdf");
    expectSound(work, "out.pdf");
    const std::string head =
        "%PDF-1.2\n%????\n1 0 obj\n<<\n/Producer (varnpdf JPEG converter 1.0)\n/Creator (https://varnpdf.example)\n"
        "/CreationDate (DATE)\n>>\nendobj\n2 0 obj\n<<\n/Type /Catalog\n/Pages 3 0 R\n>>\nendobj\n"
        "3 0 obj\n<<\n/Type /Pages\n/Kids [4 0 R]\n/Count 1\n>>\nendobj\n"
        "4 0 obj\n<<\n/Type /Page\n/Resources <</XObject <</I-0 5 0 R>> /ProcSet [/PDF /ImageC]>>\n"
        "/MediaBox [0 0 595.20 841.92]\n/Parent 3 0 R\n/Contents 6 0 R\n>>\nendobj\n"
        "5 0 obj\n<< /Type /XObject /Subtype /Image /Name /I-0 /Width 2480 /Height 3508\n"
        "/BitsPerComponent 8 /Filter /DCTDecode /ColorSpace /DeviceGray /Length " +
        std::to_string(jpeg.size()) + " >>\nstream\n" + jpeg +
        "\nendstream\nendobj\n6 0 obj\n<</Filter [/FlateDecode] /Length ";
    const std::string masked = maskedDates(pdf);
    EXPECT_EQ(masked.substr(0, head.size()), head);
    EXPECT_EQ(streamOf(pdf, 6), "q\n595.20 0 0 841.92 0 0 cm\n/I-0 Do\nQ\n");
    const std::size_t table = pdf.find("xref\n0 7\n0000000000 65535 f \n");
    ASSERT_NE(table, std::string::npos);
    EXPECT_EQ(pdf.substr(table + 9 + 7 * 20),
              "trailer\n<<\n/Size 7\n/Root 2 0 R\n/Info 1 0 R\n/ID [<4b36819ed116b6c689b6003bbae1cc53>"
              "<4b36819ed116b6c689b6003bbae1cc53>]\n>>\nstartxref\n" +
                  std::to_string(table) + "\n%%EOF\n");
}

TEST(Jpeg, FramesMakeTheSameDocument) {
    const WorkDirectory work;
    const std::string jpeg = kStart + frame('\xC0', 10, 20, 3) + kScan;
    ASSERT_EQ(convert(work.write("in.jpg", jpeg), work.at("out.pdf")), 0);
    std::FILE* const file = std::fopen(work.at("framed").c_str(), "wb");
    EXPECT_EQ(WriteHeader(file, 10, 20, static_cast<int>(jpeg.size()), 0), 0);
    std::fwrite(jpeg.data(), 1, jpeg.size(), file);
    EXPECT_EQ(WriteFooter(file, 10, 20), 0);
    EXPECT_EQ(WriteFooter(file, 10, 20), -602) << "a foot without a head";
    std::fclose(file);
    EXPECT_EQ(maskedDates(work.read("framed")), maskedDates(work.read("out.pdf")));
}

// --- what goes wrong whatever the kind --------------------------------------------------------------------------------

TEST(VarnImage, RefusalsLeaveAnExistingFileAlone) {
    const WorkDirectory work;
    const std::string out = work.write("out.pdf", "old");
    const std::string good = work.write("good.txt", "text");
    EXPECT_EQ(convert(work.at("missing.txt"), out), 1);
    EXPECT_EQ(convert(work.at("."), out), 1);
    EXPECT_EQ(convert(good, work.at("none/out.pdf")), 2);
    EXPECT_EQ(convert(good, work.at(".")), 2);
    EXPECT_EQ(convert(good, good), 2);
    std::filesystem::create_symlink(good, work.at("link.pdf"));
    EXPECT_EQ(convert(good, work.at("link.pdf")), 2);
    EXPECT_EQ(convert(work.write("in.bmp", "BM"), out), 3);
    EXPECT_EQ(convert(work.write("txt", "no extension"), out), 3);
    EXPECT_EQ(convert(work.write("in.jpg", "no image"), out), 3);
    EXPECT_EQ(convert(work.write("in.tif", "no image"), out), -601);
    EXPECT_EQ(convert(good, "/dev/full"), -602);
    EXPECT_EQ(VarnImage(nullptr, nullptr), 1);
    EXPECT_EQ(work.read("out.pdf"), "old");
    EXPECT_EQ(work.read("good.txt"), "text");
    EXPECT_EQ(work.files(), 7);
}

TEST(VarnImage, AnExistingFileKeepsItsModeAndItsLinks) {
    const WorkDirectory work;
    std::filesystem::permissions(work.write("old.pdf", "old"), std::filesystem::perms(0640));
    std::filesystem::create_symlink(work.at("old.pdf"), work.at("link.pdf"));
    ASSERT_EQ(convert(work.write("in.TXT", ""), work.at("link.pdf")), 0);
    EXPECT_TRUE(std::filesystem::is_symlink(work.at("link.pdf")));
    EXPECT_EQ(work.read("old.pdf").substr(0, 9), "%PDF-1.2\n");
    EXPECT_EQ(std::filesystem::status(work.at("old.pdf")).permissions(), std::filesystem::perms(0640));
}

}  // namespace
