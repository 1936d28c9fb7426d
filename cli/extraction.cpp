// Writing files whose names come from a document.
#include "extraction.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "command.h"
#include "varnpdf/PdfText.h"

namespace {

constexpr std::size_t kLongestName = 200;  // leaves room for a number below the 255 bytes of file systems
constexpr int kMostNumbers = 10000;

/// "name.ext" with " (2)" in front of the extension.
std::string numbered(const std::string& name, int number) {
    if (number == 1) return name;
    const std::size_t dot = name.rfind('.');
    const std::size_t at = dot == std::string::npos || dot == 0 ? name.size() : dot;
    return name.substr(0, at) + " (" + std::to_string(number) + ')' + name.substr(at);
}

/// Gives the file its name, never that of a file that is there.
bool rename(int directory, const std::string& from, const std::string& to) {
    if (::renameat2(directory, from.c_str(), directory, to.c_str(), RENAME_NOREPLACE) == 0) return true;
    if (errno != EINVAL && errno != ENOSYS) return false;
    return ::linkat(directory, from.c_str(), directory, to.c_str(), 0) == 0;  // the old name is removed later
}

}  // namespace

std::string cli::harmlessName(const std::string& utf8) {
    std::string name = CPdfText::Printable(utf8.substr(utf8.find_last_of("/\\") + 1));
    if (name.size() > kLongestName) {
        const std::size_t dot = name.rfind('.');
        const std::string extension = dot == std::string::npos || name.size() - dot > 16 ? "" : name.substr(dot);
        std::size_t end = kLongestName - extension.size();
        while (end > 0 && (static_cast<unsigned char>(name[end]) & 0xC0U) == 0x80) --end;
        name = name.substr(0, end) + extension;
    }
    return name.find_first_not_of(". ") == std::string::npos ? "attachment" : name;
}

cli::Extraction::Extraction(const std::string& directory) : directory_(directory) {
    if (::mkdir(directory.c_str(), 0777) != 0 && errno != EEXIST) {
        handle_ = -1;
    } else {
        handle_ = ::open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    }
    if (handle_ < 0) complain(directory, std::strerror(errno));
}

cli::Extraction::~Extraction() {
    if (handle_ >= 0) ::close(handle_);
}

bool cli::Extraction::fill(const std::string& temporary, std::string_view bytes) {
    const int file = ::openat(handle_, temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666);
    if (file < 0) return false;
    bool good = true;
    while (good && !bytes.empty()) {
        const ssize_t done = ::write(file, bytes.data(), bytes.size());
        if (done > 0) bytes.remove_prefix(static_cast<std::size_t>(done));
        good = done >= 0 || errno == EINTR;
    }
    const int error = errno;
    if (::close(file) != 0) return false;
    errno = error;
    return good;
}

std::string cli::Extraction::write(const std::string& name, std::string_view bytes) {
    const std::string harmless = harmlessName(name);
    const std::string temporary = ".varnpdf-" + std::to_string(::getpid());
    bool good = fill(temporary, bytes);
    std::string path;
    for (int i = 1; good && path.empty() && i < kMostNumbers; ++i) {
        const std::string wanted = numbered(harmless, i);
        if (rename(handle_, temporary, wanted)) {
            path = directory_ + (directory_.ends_with('/') ? "" : "/") + wanted;
        } else {
            good = errno == EEXIST;
        }
    }
    if (path.empty()) complain(directory_ + '/' + harmless, std::strerror(errno));
    ::unlinkat(handle_, temporary.c_str(), 0);
    return path;
}
