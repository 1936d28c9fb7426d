// Inserting the value.
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <memory>

#include "tests/signing/Signing.h"

namespace {

using namespace std::literals;
using namespace varnpdf::test;

std::string content(std::string value, unsigned room, bool null = false) {
    char* out = nullptr;
    std::uint32_t length = 0;
    CPdfSign::buildSignContent(&out, &length, null ? nullptr : reinterpret_cast<unsigned char*>(value.data()),
                               static_cast<std::uint32_t>(value.size()), room);
    const std::unique_ptr<char[]> owned(out);
    EXPECT_EQ(out[length], '\0');
    return {out, length};
}

TEST(SignContent, Table) {
    EXPECT_EQ(content("\x01\xAB\xFF", 4), "<01ABFF31>");
    EXPECT_EQ(content("\x01\xAB\xFF", 3), "<01ABFF>");
    EXPECT_EQ(content("\x01\xAB\xFF", 2), "<>\0\0\0\0"s);
    EXPECT_EQ(content("", 2), "<3131>");
    EXPECT_EQ(content("", 0), "<>");
    EXPECT_EQ(content("", 2, true), "<>\0\0\0\0"s);
    std::uint32_t length = 0;
    CPdfSign::buildSignContent(nullptr, &length, nullptr, 0, 5);
    EXPECT_EQ(length, 12U);
}

TEST(SaveSignature, FilesFromOnePreparation) {
    CPdfSign sign;
    EXPECT_EQ(saved(sign), "<01ABFF31>");  // nothing prepared yet
    const std::string document = smallDocument().table().bytes();
    ASSERT_EQ(prepare(sign, document, {}), 0);
    const std::string bytes = preparedBytes(sign);
    for (const auto& [value, hex] :
         {std::pair{"\x01\xAB\xFF"s, "<01ABFF31>"s}, {"abcd"s, "<61626364>"s}, {"abcde"s, "<>\0\0\0\0\0\0\0\0"s}}) {
        const std::string file = saved(sign, value);
        ASSERT_EQ(file.size(), bytes.size() + std::size_t{2} * kRoom + 2);
        EXPECT_EQ(file.substr(sign.GetContentsOffset(), hex.size()), hex);
        EXPECT_EQ(std::string(file).erase(sign.GetContentsOffset(), hex.size()), bytes);
    }
}

TEST(SaveSignature, Failures) {
    CPdfSign sign;
    ASSERT_EQ(prepare(sign, smallDocument().table().bytes(), {}), 0);
    unsigned char value[] = {1};
    const auto save = [&](std::string path, unsigned char* bytes) {
        return sign.SaveSignature(path.data(), bytes, 1, kRoom);
    };
    EXPECT_EQ(sign.SaveSignature(nullptr, value, 1, kRoom), -1023);
    const TempFile target;
    std::filesystem::remove(target.path());
    EXPECT_EQ(save(target.path(), nullptr), -1023);
    EXPECT_FALSE(std::filesystem::exists(target.path()));
    EXPECT_EQ(save("/nonexistent/file.pdf", value), -1023);
    EXPECT_EQ(save("/dev/full", value), -1023);
    EXPECT_TRUE(std::filesystem::exists("/dev/full"));
    // A file that cannot grow to its length is removed.
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit old{};
    getrlimit(RLIMIT_FSIZE, &old);
    const rlimit small{100, old.rlim_max};
    setrlimit(RLIMIT_FSIZE, &small);
    const int code = save(target.path(), value);
    setrlimit(RLIMIT_FSIZE, &old);
    std::signal(SIGXFSZ, handler);
    EXPECT_EQ(code, -1023);
    EXPECT_FALSE(std::filesystem::exists(target.path()));
    EXPECT_EQ(save(target.path(), value), 0);
}

// Sanitizers end the process when an allocation fails.
TEST(DummySign, LeavesTheUpdateWithTheDocument) {
    OpenedPdf opened(smallDocument().table().bytes());
    Request request;
    CPdfSign sign;
    std::string why = "why";
    ASSERT_EQ(sign.DummySign(&opened.pdf, 0, 1, 0, 0, 0, 0, 0, why.data(), why.data(), why.data(), request.date.data(),
                             kRoom, false, 0, 0, nullptr, nullptr, 0, 0, false),
              0);
    EXPECT_EQ(opened.pdf.GetObjNum(), 4);  // the number that new objects begin with
    std::string file = preparedBytes(sign);
    file.insert(sign.GetContentsOffset(), "<00000000>");
    const std::string_view update(opened.pdf.GetByteStream(), static_cast<std::size_t>(opened.pdf.GetByteStreamLen()));
    EXPECT_EQ(file.substr(opened.pdf.GetContentLen()), update);
}

#ifndef __SANITIZE_ADDRESS__
TEST(NoMemory, IsACodeAndNoException) {
    OpenedPdf opened(smallDocument().table().bytes());
    long pages = 0;
    std::ifstream("/proc/self/statm") >> pages;
    rlimit old{};
    ASSERT_EQ(getrlimit(RLIMIT_AS, &old), 0);
    const rlimit tight{static_cast<rlim_t>(pages * sysconf(_SC_PAGESIZE)) + (64U << 20U), old.rlim_max};
    Request request{.room = 300'000'000};
    CPdfSign sign;
    std::string nothing;
    ASSERT_EQ(setrlimit(RLIMIT_AS, &tight), 0);
    const int dummy = sign.DummySign(&opened.pdf, 0, 1, 0, 0, 0, 0, 0, nothing.data(), nothing.data(), nothing.data(),
                                     request.date.data(), request.room, false, 0, 0, nullptr, nullptr, 0, 0, false);
    const int fromFile = prepareFile(sign, opened.file.path(), request);
    setrlimit(RLIMIT_AS, &old);
    EXPECT_EQ(dummy, -1014);
    EXPECT_EQ(fromFile, -1001);
    EXPECT_EQ(sign.GetPreparedDocument(), nullptr);
}
#endif

}  // namespace
