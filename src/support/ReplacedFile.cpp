// A file that is replaced in one step.
#include "support/ReplacedFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <memory>

#include "support/Text.h"

namespace varnpdf {
namespace {

// The file behind symbolic links, also where it is not there yet: renaming would replace the link.
std::string behindLinks(std::string path) {
    struct Free {
        void operator()(char* text) const noexcept { std::free(text); }
    };
    const std::unique_ptr<char, Free> real(::realpath(path.c_str(), nullptr));
    return real ? std::string(real.get()) : path;
}

// A rename is on the disk when its directory is.
void syncDirectoryOf(const std::string& path) noexcept {
    try {
        const std::size_t slash = path.rfind('/');
        const std::string directory = slash == std::string::npos ? "." : path.substr(0, slash + 1);
        const int handle = ::open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        if (handle < 0) return;
        ::fsync(handle);
        ::close(handle);
    } catch (...) {
        return;  // the file itself is safe
    }
}

}  // namespace

ReplacedFile::ReplacedFile(const char* path) : path_(behindLinks(path)) {
    struct stat status {};
    errno = 0;
    if (::stat(path_.c_str(), &status) == 0 && !S_ISREG(status.st_mode)) {
        if (!S_ISDIR(status.st_mode)) file_ = ::open(path_.c_str(), O_WRONLY | O_CLOEXEC);
        return;
    }
    openTemporary(errno == ENOENT ? 0666 : 0600);
}

// mkstemp would make every file private, and only changing the process's umask could tell what a new one should be.
void ReplacedFile::openTemporary(unsigned mode) {
    constexpr int kTries = 100;
    static std::atomic<unsigned> count{0};
    for (int i = 0; i < kTries && file_ < 0; ++i) {
        const auto clock = std::chrono::steady_clock::now().time_since_epoch().count();
        temporary_ = text(path_, '.', ::getpid(), '.', count++, '.', clock % 1000);
        file_ = ::open(temporary_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, mode);
        if (file_ < 0 && errno != EEXIST) break;
    }
    if (file_ < 0) temporary_.clear();
}

ReplacedFile::~ReplacedFile() {
    if (file_ >= 0) ::close(file_);
    if (!temporary_.empty()) ::unlink(temporary_.c_str());
}

void ReplacedFile::write(std::string_view bytes) noexcept {
    while (!bytes.empty() && !failed_) {
        const ssize_t done = ::write(file_, bytes.data(), bytes.size());
        if (done >= 0) {
            bytes.remove_prefix(static_cast<std::size_t>(done));
        } else if (errno != EINTR) {
            failed_ = true;
        }
    }
}

bool ReplacedFile::keepOwnership() noexcept {
    struct stat old {};
    if (::stat(path_.c_str(), &old) != 0) return true;
    struct stat own {};
    if (::fstat(file_, &own) != 0) return false;
    const bool foreign = own.st_uid != old.st_uid || own.st_gid != old.st_gid;
    const bool given = !foreign || ::fchown(file_, old.st_uid, old.st_gid) == 0;
    // What runs under its owner's name must not run under somebody else's.
    return ::fchmod(file_, old.st_mode & (given ? 07777U : 0777U)) == 0;
}

bool ReplacedFile::commit() noexcept {
    const bool direct = temporary_.empty();
    bool good = !failed_ && (direct || (keepOwnership() && ::fsync(file_) == 0));
    if (::close(file_) != 0) good = false;
    file_ = -1;
    if (direct || !good) return good;
    if (std::rename(temporary_.c_str(), path_.c_str()) != 0) return false;
    temporary_.clear();
    syncDirectoryOf(path_);
    return true;
}

}  // namespace varnpdf
