// Writing of results, and the complaints of all commands.
#include "output.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "command.h"
#include "varnpdf/PdfText.h"
#include "varnpdf/result.h"

namespace {

int outputError = 0;

std::string reason(int error) { return std::strerror(error); }

using Pieces = std::span<const std::string_view>;

bool writeAll(int file, Pieces pieces) {
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
bool closeAfter(bool good, int file) {
    const int before = errno;
    if (::close(file) != 0 && good) return false;
    errno = before;
    return good;
}

/// The mode a file has already, or the one that the process gives to new files.
mode_t modeFor(const struct stat* existing) {
    if (existing != nullptr) return existing->st_mode & 07777;
    const mode_t mask = ::umask(0);
    ::umask(mask);
    return 0666 & ~mask;
}

bool replaceFile(const std::string& path, Pieces pieces, const struct stat* existing) {
    std::string temporary = path + ".XXXXXX";
    const int file = ::mkstemp(temporary.data());
    if (file < 0) return false;
    // The new bytes must be on the disk before they take the place of others.
    bool good =
        writeAll(file, pieces) && ::fchmod(file, modeFor(existing)) == 0 && (existing == nullptr || ::fsync(file) == 0);
    good = closeAfter(good, file);
    if (good && std::rename(temporary.c_str(), path.c_str()) == 0) return true;
    const int error = errno;
    ::unlink(temporary.c_str());
    errno = error;
    return false;
}

bool writeDirectly(const std::string& path, Pieces pieces) {
    const int file = ::open(path.c_str(), O_WRONLY | O_CLOEXEC);
    return file >= 0 && closeAfter(writeAll(file, pieces), file);
}

/// The name behind symbolic links: renaming would otherwise replace the link.
std::string linkTarget(const std::string& path) {
    const std::unique_ptr<char, decltype(&std::free)> real(::realpath(path.c_str(), nullptr), &std::free);
    return real ? std::string(real.get()) : path;
}

}  // namespace

void cli::put(std::string_view bytes) {
    if (outputError == 0 && std::fwrite(bytes.data(), 1, bytes.size(), stdout) != bytes.size()) outputError = errno;
}

int cli::finishOutput(int code) {
    if (std::fflush(stdout) != 0 && outputError == 0) outputError = errno;
    if (outputError == 0) return code;
    complain("standard output", reason(outputError));
    return kAllFailed;
}

bool cli::outputIsTerminal() { return ::isatty(STDOUT_FILENO) == 1; }

bool cli::writeFile(const std::string& path, std::string_view bytes) { return writeFile(path, std::span(&bytes, 1)); }

bool cli::writeFile(const std::string& path, Pieces pieces) {
    struct stat status {};
    const bool exists = ::stat(path.c_str(), &status) == 0;
    bool good = false;
    if (exists && S_ISDIR(status.st_mode)) {
        errno = EISDIR;
    } else if (exists && !S_ISREG(status.st_mode)) {
        good = writeDirectly(path, pieces);
    } else {
        good = replaceFile(linkTarget(path), pieces, exists ? &status : nullptr);
    }
    if (!good) complain(path, reason(errno));
    return good;
}

cli::WorkFile::WorkFile(const std::string& target, std::string_view bytes) : target_(linkTarget(target)) {
    struct stat status {};
    const bool exists = ::stat(target_.c_str(), &status) == 0;
    std::string path = target_ + ".XXXXXX";
    errno = exists && S_ISDIR(status.st_mode) ? EISDIR : EINVAL;
    const int file = exists && !S_ISREG(status.st_mode) ? -1 : ::mkstemp(path.data());
    if (file >= 0) {
        path_ = path;
        bool good = writeAll(file, std::span(&bytes, 1)) && ::fchmod(file, modeFor(exists ? &status : nullptr)) == 0;
        good = closeAfter(good, file);
        if (good) return;
        const int error = errno;
        ::unlink(path_.c_str());
        path_.clear();
        errno = error;
    }
    complain(target, reason(errno));
}

cli::WorkFile::~WorkFile() {
    if (!path_.empty()) ::unlink(path_.c_str());
}

bool cli::WorkFile::commit() {
    if (std::rename(path_.c_str(), target_.c_str()) != 0) {
        complain(target_, reason(errno));
        return false;
    }
    path_.clear();
    return true;
}

void cli::complain(const std::string& what, const std::string& sentence) {
    std::fflush(stdout);
    const std::string line = "varnpdf: " + CPdfText::Printable(what) + ": " + CPdfText::Printable(sentence) + '\n';
    std::fwrite(line.data(), 1, line.size(), stderr);
}

void cli::complain(const std::string& what, int code) {
    complain(what, std::string(varnpdf_message(code)) + " (" + std::to_string(code) + ")");
}
