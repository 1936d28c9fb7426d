// A file that appears under its name complete or not at all.
#include "support/ReplaceFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <memory>

namespace varnpdf {
namespace {

using Pieces = std::span<const std::string_view>;

bool writeAll(int file, Pieces pieces) noexcept {
    for (std::string_view bytes : pieces) {
        while (!bytes.empty()) {
            const ssize_t done = ::write(file, bytes.data(), bytes.size());
            if (done < 0 && errno == EINTR) continue;
            if (done < 0) return false;
            bytes.remove_prefix(static_cast<std::size_t>(done));
        }
    }
    return true;
}

/// Closing reports what a network file system could not write; it happens once, whatever came before.
bool closeAfter(bool good, int file) noexcept {
    const int before = errno;
    if (::close(file) != 0 && good) return false;
    errno = before;
    return good;
}

/// The mode that open gives to a new file here; asking for the process's mask would change it for other threads.
bool createBeside(std::string& name, int& file) {
    constexpr int kAttempts = 1000;
    const std::string stem = name + '.' + std::to_string(::getpid()) + '.';
    for (int i = 0; i < kAttempts; ++i) {
        name = stem + std::to_string(i) + ".tmp";
        file = ::open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (file >= 0) return true;
        if (errno != EEXIST) return false;
    }
    return false;
}

bool replaceRegular(const std::string& path, Pieces pieces, const struct stat* existing) {
    std::string temporary = path;
    int file = -1;
    if (!createBeside(temporary, file)) return false;
    bool good = writeAll(file, pieces);
    if (good && existing != nullptr) {
        // Only root may give files away; whoever replaces the file of another then owns the new one.
        static_cast<void>(::fchown(file, existing->st_uid, existing->st_gid) == 0);
        // The old bytes go only when the new ones are on the disk; a new file has nothing to lose, and waiting is slow.
        good = ::fchmod(file, existing->st_mode & 07777U) == 0 && ::fsync(file) == 0;
    }
    good = closeAfter(good, file);
    if (good && std::rename(temporary.c_str(), path.c_str()) == 0) return true;
    const int error = errno;
    ::unlink(temporary.c_str());
    errno = error;
    return false;
}

bool writeDirectly(const std::string& path, Pieces pieces) noexcept {
    const int file = ::open(path.c_str(), O_WRONLY | O_CLOEXEC);
    return file >= 0 && closeAfter(writeAll(file, pieces), file);
}

/// The name behind symbolic links: renaming would otherwise replace the link.
std::string linkTarget(const std::string& path) {
    const std::unique_ptr<char, decltype(&std::free)> real(::realpath(path.c_str(), nullptr), &std::free);
    return real ? std::string(real.get()) : path;
}

}  // namespace

bool replaceFile(const std::string& path, Pieces pieces) noexcept try {
    struct stat status {};
    const bool exists = ::stat(path.c_str(), &status) == 0;
    if (exists && S_ISDIR(status.st_mode)) {
        errno = EISDIR;
        return false;
    }
    if (exists && !S_ISREG(status.st_mode)) return writeDirectly(path, pieces);
    // Renaming needs the directory only; a file that may not be written is not to be replaced that way either.
    if (exists && ::access(path.c_str(), W_OK) != 0) return false;
    return replaceRegular(linkTarget(path), pieces, exists ? &status : nullptr);
} catch (const std::bad_alloc&) {
    errno = ENOMEM;
    return false;
}

}  // namespace varnpdf
