// What a fuzz target needs to state a property.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

namespace varnpdf::fuzz {

/// Ends the run, so that the fuzzer keeps the input, when a property does not hold.
inline void check(bool holds, const char* property) {
    if (holds) return;
    std::fprintf(stderr, "property violated: %s\n", property);
    std::abort();
}

/// `part` stands in `whole` at `at`.
inline bool standsAt(std::string_view whole, std::size_t at, std::string_view part) {
    return at <= whole.size() && whole.substr(at).starts_with(part);
}

/// A terminated copy that a reader may write to. It lies on the heap of its own, so that a sanitizer sees every byte
/// behind it.
class Terminated {
public:
    explicit Terminated(std::string_view text) : size_(text.size()), bytes_(new char[text.size() + 1]) {
        text.copy(bytes_, text.size());
        bytes_[text.size()] = '\0';
    }
    Terminated(const Terminated&) = delete;
    Terminated& operator=(const Terminated&) = delete;
    ~Terminated() { delete[] bytes_; }
    [[nodiscard]] char* data() const { return bytes_; }
    [[nodiscard]] int size() const { return static_cast<int>(size_); }

private:
    std::size_t size_;
    char* bytes_;
};

/// Zeroed room of exactly `size` bytes, on the heap of its own.
class Room {
public:
    explicit Room(std::size_t size) : bytes_(new char[size == 0 ? 1 : size]()) {}
    Room(const Room&) = delete;
    Room& operator=(const Room&) = delete;
    ~Room() { delete[] bytes_; }
    [[nodiscard]] char* data() const { return bytes_; }
    [[nodiscard]] unsigned char* bytes() const { return reinterpret_cast<unsigned char*>(bytes_); }

private:
    char* bytes_;
};

}  // namespace varnpdf::fuzz
