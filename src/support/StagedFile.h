// A file that is written beside its place and renamed when it is complete.
#pragma once

#include <cstdio>
#include <string>
#include <string_view>

struct stat;

namespace varnpdf {

/// Under the final name stands the old content or the whole new one, never a part. An existing file's mode and owner
/// are kept, as far as the process may; a symbolic link stays and its target is replaced. What is no regular file, a
/// device or a pipe, is written directly. Where the directory lets no file be made, an existing one is written from
/// memory when all of the content is there.
class StagedFile {
public:
    /// Check `isOpen`: a directory, a file without write permission or a path that cannot be reached is refused; errno
    /// then says why.
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
    /// False with errno saying why.
    bool commit() noexcept;
    /// Path of the file that is being written; empty while there is none beside the place.
    [[nodiscard]] const std::string& temporary() const noexcept { return temporary_; }

private:
    void stage(const struct stat* old);
    bool overwrite() noexcept;

    std::string path_;
    std::string temporary_;  ///< empty when written directly or in memory
    std::FILE* file_ = nullptr;
    bool replaces_ = false;
    bool inMemory_ = false;
};

}  // namespace varnpdf
