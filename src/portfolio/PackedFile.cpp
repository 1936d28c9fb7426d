// A file read and packed for embedding.
#include "portfolio/PackedFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <limits>
#include <memory>
#include <new>

#include <zlib.h>

#include "syntax/Dates.h"

namespace varnpdf {
namespace {

constexpr std::size_t kPiece = std::size_t{256} << 10U;
// Lengths are written and read as int.
constexpr std::size_t kMost = std::numeric_limits<int>::max();

/// The handle of a file opened for reading. A pipe does not make the opening wait.
class InputHandle {
public:
    explicit InputHandle(const char* path) : handle_(::open(path, O_RDONLY | O_NONBLOCK | O_CLOEXEC)) {
        regular_ = handle_ >= 0 && ::fstat(handle_, &status_) == 0 && S_ISREG(status_.st_mode);
    }
    InputHandle(const InputHandle&) = delete;
    InputHandle& operator=(const InputHandle&) = delete;
    ~InputHandle() {
        if (handle_ >= 0) ::close(handle_);
    }
    [[nodiscard]] bool isRegular() const noexcept { return regular_; }
    [[nodiscard]] const struct stat& status() const noexcept { return status_; }
    /// Bytes read, 0 at the end, -1 on failure.
    ssize_t read(unsigned char* room) const noexcept {
        ssize_t got = 0;
        do {
            got = ::read(handle_, room, kPiece);
        } while (got < 0 && errno == EINTR);
        return got;
    }

private:
    int handle_;
    bool regular_;
    struct stat status_ {};
};

class Deflater {
public:
    Deflater() : code_(deflateInit(&stream_, Z_DEFAULT_COMPRESSION)) {}
    Deflater(const Deflater&) = delete;
    Deflater& operator=(const Deflater&) = delete;
    ~Deflater() { deflateEnd(&stream_); }
    [[nodiscard]] int code() const noexcept { return code_; }

    /// False when zlib fails; `code` tells how.
    bool put(unsigned char* bytes, std::size_t length, bool last, Bytes& out) {
        stream_.next_in = bytes;
        stream_.avail_in = static_cast<uInt>(length);
        do {
            if (out.size() == out.capacity()) out.reserve(out.capacity() + out.capacity() / 2 + kPiece);
            const std::size_t room = std::min<std::size_t>(out.capacity() - out.size(), kMost);
            stream_.next_out = reinterpret_cast<Bytef*>(out.data() + out.size());
            stream_.avail_out = static_cast<uInt>(room);
            code_ = deflate(&stream_, last ? Z_FINISH : Z_NO_FLUSH);
            out.setSize(out.size() + room - stream_.avail_out);
        } while (code_ == Z_OK && (stream_.avail_in > 0 || last));
        if (code_ == Z_BUF_ERROR) code_ = Z_OK;  // nothing was left to do
        return code_ == Z_OK || code_ == Z_STREAM_END;
    }

private:
    z_stream stream_{};
    int code_;
};

PackResult examine(const InputHandle& input) {
    if (!input.isRegular()) return PackResult::Unreadable;
    if (input.status().st_size == 0) return PackResult::Empty;
    return static_cast<std::size_t>(input.status().st_size) > kMost ? PackResult::TooLarge : PackResult::Good;
}

}  // namespace

PackResult examineFile(const char* path) { return examine(InputHandle(path)); }

PackResult packFile(const char* path, PackedFile& file, int* zlibCode) {
    const InputHandle input(path);
    if (const PackResult result = examine(input); result != PackResult::Good) return result;
    file.changed = input.status().st_ctime;
    file.modified = input.status().st_mtime;
    // Room that is never written to costs no memory.
    file.data.reserve(compressBound(static_cast<uLong>(input.status().st_size)) + 64);
    Deflater deflater;
    const auto piece = std::make_unique_for_overwrite<unsigned char[]>(kPiece);
    bool good = deflater.code() == Z_OK;
    while (good) {
        const ssize_t got = input.read(piece.get());
        if (got < 0) return PackResult::Unreadable;
        const auto length = static_cast<std::size_t>(got);
        file.length += length;
        if (file.length > kMost) return PackResult::TooLarge;
        good = deflater.put(piece.get(), length, length == 0, file.data);
        if (length == 0) break;
    }
    if (zlibCode != nullptr) *zlibCode = deflater.code();
    if (!good) return PackResult::ZlibFailed;
    return file.length == 0 ? PackResult::Empty : PackResult::Good;
}

std::string_view justFilename(std::string_view path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string_view::npos ? path : path.substr(slash + 1);
}

std::string fileDate(std::time_t time) { return pdfDate(zonedTime(time)); }

}  // namespace varnpdf
