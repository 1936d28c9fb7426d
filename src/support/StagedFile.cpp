// A file that is written beside its place and renamed when it is complete.
#include "support/StagedFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <memory>

#include "support/Text.h"

namespace varnpdf {
namespace {

constexpr int kAttempts = 100;

// Renaming would replace a link instead of what it points to.
std::string linkTarget(const char* path) {
    const std::unique_ptr<char, decltype(&std::free)> real(::realpath(path, nullptr), &std::free);
    return real ? std::string(real.get()) : std::string(path);
}

// In the same directory, so that renaming works; short, so that the longest name allowed can be written.
std::string nameBeside(const std::string& path) {
    static std::atomic<unsigned> count{0};
    const std::size_t slash = path.rfind('/');
    const std::string directory = slash == std::string::npos ? "" : path.substr(0, slash + 1);
    return text(directory, ".varnpdf-", ::getpid(), '-', count.fetch_add(1, std::memory_order_relaxed));
}

// The owner first: changing it clears the set-id bits.
bool takeOver(int handle, const struct stat& old) {
    const int owned = ::fchown(handle, old.st_uid, old.st_gid);
    static_cast<void>(owned);  // only root may give files away
    return ::fchmod(handle, old.st_mode & 07777) == 0;
}

}  // namespace

StagedFile::StagedFile(const char* path) : path_(path) {
    struct stat old {};
    const bool exists = ::stat(path, &old) == 0;
    if (exists && !S_ISREG(old.st_mode)) {
        file_ = S_ISDIR(old.st_mode) ? nullptr : std::fopen(path, "wb");
    } else if (!exists || ::access(path, W_OK) == 0) {
        path_ = linkTarget(path);
        replaces_ = exists;
        stage();
        if (file_ != nullptr && exists && !takeOver(::fileno(file_), old)) {
            std::fclose(file_);
            file_ = nullptr;
            ::unlink(temporary_.c_str());
        }
    }
    // Large pieces are written as they are; a buffer would only copy them.
    if (file_ != nullptr) std::setvbuf(file_, nullptr, _IONBF, 0);
}

// Created with O_EXCL and the mode of any new file: the umask is applied without being asked for, which would change it
// for other threads.
void StagedFile::stage() {
    for (int i = 0; i < kAttempts && file_ == nullptr; ++i) {
        temporary_ = nameBeside(path_);
        const int handle = ::open(temporary_.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (handle < 0 && errno != EEXIST) return;
        if (handle < 0) continue;
        file_ = ::fdopen(handle, "wb+");
        if (file_ != nullptr) return;
        ::close(handle);
        ::unlink(temporary_.c_str());
        return;
    }
}

StagedFile::~StagedFile() {
    if (file_ == nullptr) return;
    std::fclose(file_);
    if (!temporary_.empty()) ::unlink(temporary_.c_str());
}

void StagedFile::write(std::string_view bytes) noexcept {
    // The stream remembers an error.
    if (!bytes.empty()) static_cast<void>(std::fwrite(bytes.data(), 1, bytes.size(), file_));
}

bool StagedFile::commit() noexcept {
    bool good = std::fflush(file_) == 0 && std::ferror(file_) == 0;
    if (good && replaces_) good = ::fsync(::fileno(file_)) == 0;
    good = std::fclose(file_) == 0 && good;
    file_ = nullptr;
    if (temporary_.empty()) return good;
    if (good && std::rename(temporary_.c_str(), path_.c_str()) == 0) return true;
    ::unlink(temporary_.c_str());
    return false;
}

}  // namespace varnpdf
