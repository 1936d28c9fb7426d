// Files that take their name when they are complete.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>

#include "support/StagedFile.h"
#include "support/TempFile.h"

namespace {

using namespace varnpdf;
using namespace varnpdf::test;
namespace fs = std::filesystem;

unsigned modeOf(const std::string& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 ? status.st_mode & 07777U : 0U;
}

TEST(StagedFile, ReplacesOnCommitOnly) {
    const TempFile file("old");
    ::chmod(file.path().c_str(), 0600);
    for (const bool commits : {false, true}) {
        StagedFile staged(file.path().c_str());
        ASSERT_TRUE(staged.isOpen());
        EXPECT_EQ(modeOf(staged.temporary()), 0600U);
        staged.write("new");
        EXPECT_EQ(file.read(), "old");
        EXPECT_EQ(commits && staged.commit(), commits);
    }
    EXPECT_EQ(file.read(), "new");
    EXPECT_EQ(modeOf(file.path()), 0600U);
}

/// Runs the rest as somebody who needs permissions; the child's result is the number of the step that failed.
template <typename Work>
int asNobody(Work work) {
    const pid_t child = ::fork();
    if (child == 0) ::_exit(::geteuid() == 0 && ::setuid(65534) != 0 ? 99 : work());
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 98;
}

TEST(StagedFile, FolderWithoutWritePermission) {
    const fs::path folder = fs::temp_directory_path() / ("staged-" + std::to_string(::getpid()));
    fs::create_directory(folder);
    const std::string writable = folder / "writable";
    const std::string readable = folder / "readable";
    for (const std::string& path : {writable, readable}) std::ofstream(path) << "old content";
    ::chmod(writable.c_str(), 0666);
    ::chmod(readable.c_str(), 0444);
    ::chmod(folder.c_str(), 0555);
    const auto read = [](const std::string& path) {
        std::ostringstream bytes;
        bytes << std::ifstream(path).rdbuf();
        return bytes.str();
    };
    const int step = asNobody([&] {
        if (StagedFile(std::string(folder / "new").c_str()).isOpen()) return 1;
        if (StagedFile(readable.c_str()).isOpen()) return 2;
        StagedFile(writable.c_str()).write("dropped");
        if (read(writable) != "old content") return 3;
        for (const std::string& content : {std::string("short"), std::string(200'000, 'x')}) {
            StagedFile staged(writable.c_str());
            if (!staged.isOpen()) return 4;
            staged.write(content);
            if (!staged.commit() || read(writable) != content) return 5;
        }
        return 0;
    });
    EXPECT_EQ(step, 0);
    ::chmod(folder.c_str(), 0755);
    fs::remove_all(folder);
}

}  // namespace
