// Inserting the value.
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <csignal>
#include <filesystem>
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

}  // namespace
