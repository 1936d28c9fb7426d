// A file in memory that can be opened by name.
#pragma once

#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>
#include <string_view>

#include "fuzz/support/Check.h"

namespace varnpdf::fuzz {

class MemoryFile {
public:
    MemoryFile() : handle_(memfd_create("varnpdf", MFD_CLOEXEC)), path_("/proc/self/fd/" + std::to_string(handle_)) {
        check(handle_ >= 0, "a file in memory can be made");
    }
    void fill(std::string_view bytes) const {
        check(ftruncate(handle_, 0) == 0, "a file in memory can be emptied");
        const ssize_t written = pwrite(handle_, bytes.data(), bytes.size(), 0);
        check(written == static_cast<ssize_t>(bytes.size()), "a file in memory can be filled");
    }
    [[nodiscard]] std::string read() const {
        struct stat info {};
        check(fstat(handle_, &info) == 0, "a file in memory has a length");
        std::string bytes(static_cast<std::size_t>(info.st_size), '\0');
        const ssize_t got = pread(handle_, bytes.data(), bytes.size(), 0);
        check(got == static_cast<ssize_t>(bytes.size()), "a file in memory can be read");
        return bytes;
    }
    [[nodiscard]] const char* path() const { return path_.c_str(); }

private:
    int handle_;
    std::string path_;
};

}  // namespace varnpdf::fuzz
