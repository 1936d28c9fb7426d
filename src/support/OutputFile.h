// A file being written that leaves nothing behind when writing fails.
#pragma once

#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

namespace varnpdf {

class OutputFile {
public:
    /// Creates the file or empties the one that is there. Check `isOpen`.
    explicit OutputFile(const char* path);
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;
    /// Removes the file unless `close` has succeeded.
    ~OutputFile();

    [[nodiscard]] bool isOpen() const noexcept { return file_ != nullptr; }
    void write(std::string_view bytes) noexcept;
    /// True when everything has been written; false removes the file.
    bool close() noexcept;

private:
    void abandon() noexcept;

    std::string path_;
    std::FILE* file_;
    bool failed_ = false;
};

}  // namespace varnpdf
