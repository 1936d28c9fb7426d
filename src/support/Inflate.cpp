// zlib decoding with a bound on the result.
#include "support/Inflate.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <new>

#include <zlib.h>

namespace varnpdf {
namespace {

class InflateStream {
public:
    InflateStream() {
        if (inflateInit(&stream_) != Z_OK) throw std::bad_alloc();
    }
    ~InflateStream() { inflateEnd(&stream_); }
    InflateStream(const InflateStream&) = delete;
    InflateStream& operator=(const InflateStream&) = delete;
    z_stream& get() noexcept { return stream_; }

private:
    z_stream stream_{};
};

uInt chunk(std::size_t size) {
    return static_cast<uInt>(std::min<std::size_t>(size, std::numeric_limits<uInt>::max()));
}

}  // namespace

void Bytes::Free::operator()(char* bytes) const noexcept { std::free(bytes); }

void Bytes::reserve(std::size_t capacity) {
    if (capacity <= capacity_) return;
    auto* grown = static_cast<char*>(std::realloc(data_.get(), capacity));
    if (grown == nullptr) throw std::bad_alloc();
    static_cast<void>(data_.release());
    data_.reset(grown);
    capacity_ = capacity;
}

std::optional<Bytes> inflateAll(std::string_view data, std::size_t bound, std::size_t* produced) {
    constexpr std::size_t kFirstRoom = 4096;
    InflateStream inflater;
    z_stream& stream = inflater.get();
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(data.data()));
    std::size_t left = data.size();
    Bytes out;
    out.reserve(std::min(bound, std::max(kFirstRoom, data.size() * 4)) + 1);
    for (;;) {
        if (stream.avail_in == 0) {
            stream.avail_in = chunk(left);
            left -= stream.avail_in;
        }
        // One byte of room beyond the bound tells a result that fits from one that does not.
        if (out.size() == out.capacity()) out.reserve(std::min(bound + 1, out.capacity() * 2));
        stream.next_out = reinterpret_cast<Bytef*>(out.data() + out.size());
        stream.avail_out = chunk(out.capacity() - out.size());
        const uInt room = stream.avail_out;
        const int result = inflate(&stream, Z_NO_FLUSH);
        out.setSize(out.size() + (room - stream.avail_out));
        if (produced != nullptr) *produced += room - stream.avail_out;
        if (out.size() > bound) return std::nullopt;
        if (result == Z_STREAM_END) return out;
        if (result != Z_OK) return std::nullopt;
        if (stream.avail_in == 0 && left == 0 && stream.avail_out != 0) return std::nullopt;
    }
}

}  // namespace varnpdf
