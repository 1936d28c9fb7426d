// A file being written that leaves nothing behind when writing fails.
#include "support/OutputFile.h"

#include <sys/stat.h>

namespace varnpdf {
namespace {

// A device is written to, but never removed.
bool isRegular(std::FILE* file) noexcept {
    struct stat info {};
    return fstat(fileno(file), &info) == 0 && S_ISREG(info.st_mode);
}

}  // namespace

OutputFile::OutputFile(const char* path) : path_(path), file_(std::fopen(path, "wb+")) {
    // Large pieces are written as they are; a buffer would only copy them.
    if (file_ != nullptr) std::setvbuf(file_, nullptr, _IONBF, 0);
}

OutputFile::~OutputFile() {
    if (file_ != nullptr) abandon();
}

void OutputFile::write(std::string_view bytes) noexcept {
    if (!bytes.empty() && std::fwrite(bytes.data(), 1, bytes.size(), file_) != bytes.size()) failed_ = true;
}

bool OutputFile::close() noexcept {
    if (std::fflush(file_) != 0) failed_ = true;
    if (failed_) {
        abandon();
        return false;
    }
    const bool regular = isRegular(file_);
    const bool closed = std::fclose(file_) == 0;
    file_ = nullptr;
    if (!closed && regular) std::remove(path_.c_str());
    return closed;
}

void OutputFile::abandon() noexcept {
    const bool regular = isRegular(file_);
    std::fclose(file_);
    file_ = nullptr;
    if (regular) std::remove(path_.c_str());
}

}  // namespace varnpdf
