// zlib decoding (RFC 1950) with a bound on the result.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string_view>

namespace varnpdf {

/// Bytes from malloc, so that they can grow without being copied or cleared.
class Bytes {
public:
    [[nodiscard]] std::string_view view() const noexcept { return {data_.get(), size_}; }
    [[nodiscard]] char* data() noexcept { return data_.get(); }
    [[nodiscard]] const char* data() const noexcept { return data_.get(); }
    [[nodiscard]] std::size_t size() const noexcept { return size_; }
    /// Makes room for at least `capacity` bytes; throws std::bad_alloc.
    void reserve(std::size_t capacity);
    void setSize(std::size_t size) noexcept { size_ = size; }
    [[nodiscard]] std::size_t capacity() const noexcept { return capacity_; }

private:
    struct Free {
        void operator()(char* bytes) const noexcept;
    };
    std::unique_ptr<char, Free> data_;
    std::size_t size_ = 0;
    std::size_t capacity_ = 0;
};

/// What came out of data that may be damaged.
struct Inflated {
    Bytes bytes;         ///< at most the bound
    bool whole = false;  ///< false: the data is damaged, ends too early or holds more than the bound
};

/// As much of the content of one zlib stream as can be had; bytes behind its end are ignored. `produced`: see below.
Inflated inflateMost(std::string_view data, std::size_t bound, std::size_t* produced = nullptr);

/// The whole content of one zlib stream; bytes behind its end are ignored. Nothing when the data is damaged, ends too
/// early or would be longer than `bound`.
/// `produced`, when given, grows by the bytes that came out, also of data that is refused: work that a caller's budget
/// has to pay for.
std::optional<Bytes> inflateAll(std::string_view data, std::size_t bound, std::size_t* produced = nullptr);

}  // namespace varnpdf
