// CPdfOutput: writing a file so that it appears complete or not at all.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "varnpdf/export.h"

namespace varnpdf {
class StagedFile;
}

/// A file that takes its name when all of it is there. Until then the old content stays, and a crash leaves it. Mode and
/// owner of an existing file are kept, as far as the process may; a symbolic link stays and its target is replaced. A
/// device or pipe is written directly, as is an existing file in a directory where none can be made, from memory.
class VARNPDF_EXPORT CPdfOutput {
public:
    /// Lets std::bad_alloc out; the members do not.
    explicit CPdfOutput(const char* path);
    CPdfOutput(const CPdfOutput&) = delete;
    CPdfOutput& operator=(const CPdfOutput&) = delete;
    /// Without `Commit` nothing remains of what was written.
    ~CPdfOutput();

    /// False for a directory, a file without write permission or a path that cannot be reached; errno says which.
    [[nodiscard]] bool IsOpen() const noexcept;
    /// A failure shows in `Commit`.
    void Write(std::string_view bytes) noexcept;
    /// Path of the file that waits to take its name, for operations that work on files; "" when there is none.
    [[nodiscard]] const char* GetWorkPath() const noexcept;
    /// Ends the work; false with errno saying why.
    bool Commit() noexcept;

private:
    std::unique_ptr<varnpdf::StagedFile> file_;
};
