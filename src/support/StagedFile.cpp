// A file that is written beside its place and renamed when it is complete.
#include "support/StagedFile.h"

#include <fcntl.h>
#include <sys/mman.h>
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

std::FILE* fileInMemory() {
    const int handle = ::memfd_create("varnpdf", MFD_CLOEXEC);
    std::FILE* const file = handle < 0 ? nullptr : ::fdopen(handle, "wb+");
    if (handle >= 0 && file == nullptr) ::close(handle);
    return file;
}

bool copyAll(int from, int to) {
    char piece[1U << 16U];
    for (;;) {
        const ssize_t count = ::read(from, piece, sizeof piece);
        if (count == 0) return true;
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return false;
        for (ssize_t at = 0; at < count;) {
            const ssize_t done = ::write(to, piece + at, static_cast<std::size_t>(count - at));
            if (done < 0 && errno != EINTR) return false;
            at += done < 0 ? 0 : done;
        }
    }
}

}  // namespace

StagedFile::StagedFile(const char* path) : path_(path) {
    struct stat old {};
    const bool exists = ::stat(path, &old) == 0;
    if (exists && S_ISDIR(old.st_mode)) {
        errno = EISDIR;
    } else if (exists && !S_ISREG(old.st_mode)) {
        file_ = std::fopen(path, "wb");
    } else if (!exists || ::access(path, W_OK) == 0) {
        path_ = linkTarget(path);
        replaces_ = exists;
        stage(exists ? &old : nullptr);
        if (file_ == nullptr && exists && (errno == EACCES || errno == EPERM || errno == EROFS)) {
            inMemory_ = true;
            file_ = fileInMemory();
        }
    }
    // Large pieces are written as they are; a buffer would only copy them.
    if (file_ != nullptr) std::setvbuf(file_, nullptr, _IONBF, 0);
}

// Created with O_EXCL. A new file gets the mode of any new file: the umask is applied without being asked for, which
// would change it for other threads. One that replaces another is nobody else's until it has that one's owner and mode.
void StagedFile::stage(const struct stat* old) {
    for (int i = 0; i < kAttempts && file_ == nullptr; ++i) {
        temporary_ = nameBeside(path_);
        const int handle =
            ::open(temporary_.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, old == nullptr ? 0666 : 0600);
        if (handle < 0 && errno == EEXIST) continue;
        if (handle < 0) break;
        if (old == nullptr || takeOver(handle, *old)) file_ = ::fdopen(handle, "wb+");
        if (file_ != nullptr) return;
        const int error = errno;
        ::close(handle);
        ::unlink(temporary_.c_str());
        errno = error;
        break;
    }
    temporary_.clear();
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
    if (good && inMemory_) good = overwrite();
    if (good && replaces_ && !inMemory_) good = ::fsync(::fileno(file_)) == 0;
    int error = errno;
    if (std::fclose(file_) != 0 && good) {
        good = false;
        error = errno;
    }
    file_ = nullptr;
    if (!temporary_.empty()) {
        if (good && std::rename(temporary_.c_str(), path_.c_str()) == 0) return true;
        if (good) error = errno;
        good = false;
        ::unlink(temporary_.c_str());
    }
    errno = error;
    return good;
}

// The room is taken first, so that a full disk leaves the old content.
bool StagedFile::overwrite() noexcept {
    const int from = ::fileno(file_);
    struct stat old {};
    struct stat now {};
    const int to = ::open(path_.c_str(), O_WRONLY | O_CLOEXEC);
    if (to < 0) return false;
    bool good = ::fstat(from, &now) == 0 && ::fstat(to, &old) == 0 && ::lseek(from, 0, SEEK_SET) == 0;
    [[maybe_unused]] int undone = 0;
    if (good && now.st_size > old.st_size) {
        const int error = ::posix_fallocate(to, 0, now.st_size);
        good = error == 0;
        if (!good) undone = ::ftruncate(to, old.st_size);
        errno = error;
    }
    good = good && copyAll(from, to) && ::ftruncate(to, now.st_size) == 0 && ::fsync(to) == 0;
    const int error = errno;
    const bool closed = ::close(to) == 0;
    if (!good) errno = error;
    return good && closed;
}

}  // namespace varnpdf
