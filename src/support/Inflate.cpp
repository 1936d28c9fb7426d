// zlib decoding with a bound on the result.
#include "support/Inflate.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <new>
#include <utility>

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

Inflated inflateMost(std::string_view data, std::size_t bound, std::size_t* produced) {
    constexpr std::size_t kFirstRoom = 4096;
    InflateStream inflater;
    z_stream& stream = inflater.get();
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(data.data()));
    std::size_t left = data.size();
    Inflated result;
    Bytes& out = result.bytes;
    out.reserve(std::min(bound, std::max(kFirstRoom, data.size() * 4)) + 1);
    int status = Z_OK;
    while (status == Z_OK && out.size() <= bound) {
        if (stream.avail_in == 0) {
            stream.avail_in = chunk(left);
            left -= stream.avail_in;
        }
        // One byte of room beyond the bound tells a result that fits from one that does not.
        if (out.size() == out.capacity()) out.reserve(std::min(bound + 1, out.capacity() * 2));
        stream.next_out = reinterpret_cast<Bytef*>(out.data() + out.size());
        stream.avail_out = chunk(out.capacity() - out.size());
        const uInt room = stream.avail_out;
        status = inflate(&stream, Z_NO_FLUSH);
        out.setSize(out.size() + (room - stream.avail_out));
        if (status == Z_OK && stream.avail_in == 0 && left == 0 && stream.avail_out != 0) break;
    }
    if (produced != nullptr) *produced += out.size();
    result.whole = status == Z_STREAM_END && out.size() <= bound;
    out.setSize(std::min(out.size(), bound));
    return result;
}

std::optional<Bytes> inflateAll(std::string_view data, std::size_t bound, std::size_t* produced) {
    Inflated result = inflateMost(data, bound, produced);
    return result.whole ? std::optional(std::move(result.bytes)) : std::nullopt;
}

}  // namespace varnpdf
