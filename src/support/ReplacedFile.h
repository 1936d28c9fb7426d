// A file that is replaced in one step: whoever looks sees the old content or the new one, never a part of it.
#pragma once

#include <string>
#include <string_view>

namespace varnpdf {

/// Writes to a temporary file beside the one named. `commit` puts it in place; without it nothing happens to the named
/// file. A symbolic link is followed. What is no regular file, a device or a pipe, is written directly.
class ReplacedFile {
public:
    explicit ReplacedFile(const char* path);
    ReplacedFile(const ReplacedFile&) = delete;
    ReplacedFile& operator=(const ReplacedFile&) = delete;
    /// Removes the temporary file unless `commit` has succeeded.
    ~ReplacedFile();

    [[nodiscard]] bool isOpen() const noexcept { return file_ >= 0; }
    void write(std::string_view bytes) noexcept;
    /// Gives the new file mode and owner of the old one (an owner that the process may not set is left), or the mode of
    /// new files, syncs and renames it. False when anything failed; the named file is then as it was.
    bool commit() noexcept;

private:
    void openTemporary(unsigned mode);
    bool keepOwnership() noexcept;

    std::string path_;
    std::string temporary_;  // empty when written directly
    int file_ = -1;
    bool failed_ = false;
};

}  // namespace varnpdf
