// A file in the temporary directory, removed at the end of its scope.
#pragma once

#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>

namespace varnpdf::test {

class TempFile {
public:
    explicit TempFile(std::string_view bytes = {}) {
        path_ = (std::filesystem::temp_directory_path() / "varnpdf-test-XXXXXX").string();
        const int handle = mkstemp(path_.data());
        if (handle < 0) throw std::runtime_error("no temporary file");
        close(handle);
        write(bytes);
    }
    TempFile(const TempFile&) = delete;
    TempFile& operator=(const TempFile&) = delete;
    ~TempFile() { std::filesystem::remove(path_); }

    void write(std::string_view bytes) const {
        std::filesystem::remove(path_);  // writing over a file makes some file systems wait for the disk
        std::ofstream(path_, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    }
    [[nodiscard]] std::string read() const {
        std::ostringstream bytes;
        bytes << std::ifstream(path_, std::ios::binary).rdbuf();
        return bytes.str();
    }
    [[nodiscard]] const std::string& path() const { return path_; }

private:
    std::string path_;
};

}  // namespace varnpdf::test
