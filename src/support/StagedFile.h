// A file that is written beside its place and renamed when it is complete.
#pragma once

#include <cstdio>
#include <string>
#include <string_view>

namespace varnpdf {

/// Under the final name stands the old content or the whole new one, never a part. An existing file's mode and owner
/// are kept, as far as the process may; a symbolic link stays and its target is replaced. What is no regular file, a
/// device or a pipe, is written directly.
class StagedFile {
public:
    /// Check `isOpen`: a directory, a file without write permission or a path that cannot be reached is refused.
    explicit StagedFile(const char* path);
    StagedFile(const StagedFile&) = delete;
    StagedFile& operator=(const StagedFile&) = delete;
    /// Removes what was written unless `commit` has succeeded.
    ~StagedFile();

    [[nodiscard]] bool isOpen() const noexcept { return file_ != nullptr; }
    /// Unbuffered, at its start; owned by this object.
    [[nodiscard]] std::FILE* file() const noexcept { return file_; }
    /// A failure shows in `commit`.
    void write(std::string_view bytes) noexcept;
    /// Closes the file and gives it its name. A file that replaces another is synced first, so that a crash of the
    /// machine cannot take both.
    bool commit() noexcept;

private:
    void stage();

    std::string path_;
    std::string temporary_;  ///< empty when written directly
    std::FILE* file_ = nullptr;
    bool replaces_ = false;
};

}  // namespace varnpdf
