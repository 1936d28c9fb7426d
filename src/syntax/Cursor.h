// A bounds-checked position in a text. A take that fails moves nothing.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

#include "syntax/CharClass.h"

namespace varnpdf {

/// Half-open range of offsets; unlike a view it survives growth of the buffer it speaks of.
struct TextSpan {
    std::size_t begin = 0;
    std::size_t end = 0;

    [[nodiscard]] constexpr std::size_t size() const noexcept { return end - begin; }
    [[nodiscard]] constexpr std::string_view of(std::string_view text) const noexcept {
        return text.substr(begin, end - begin);
    }
    friend constexpr bool operator==(const TextSpan&, const TextSpan&) = default;
};

class Cursor {
public:
    constexpr explicit Cursor(std::string_view text, std::size_t at = 0) noexcept
        : text_(text), at_(at < text.size() ? at : text.size()) {}

    [[nodiscard]] constexpr std::size_t at() const noexcept { return at_; }
    [[nodiscard]] constexpr bool atEnd() const noexcept { return at_ == text_.size(); }
    [[nodiscard]] constexpr std::string_view rest() const noexcept { return text_.substr(at_); }
    /// The byte `ahead` places on, NUL behind the end.
    [[nodiscard]] constexpr char peek(std::size_t ahead = 0) const noexcept {
        return ahead < text_.size() - at_ ? text_[at_ + ahead] : '\0';
    }
    constexpr void advance(std::size_t count = 1) noexcept {
        const std::size_t left = text_.size() - at_;
        at_ += count < left ? count : left;
    }
    constexpr bool take(char c) noexcept {
        if (atEnd() || text_[at_] != c) return false;
        ++at_;
        return true;
    }
    constexpr bool take(std::string_view word) noexcept {
        if (!rest().starts_with(word)) return false;
        at_ += word.size();
        return true;
    }
    /// Skips the bytes of the given classes and says how many there were.
    constexpr std::size_t skip(unsigned classes) noexcept {
        const std::size_t begin = at_;
        while (at_ < text_.size() && isClass(text_[at_], classes)) ++at_;
        return at_ - begin;
    }
    constexpr std::size_t skipWhite() noexcept { return skip(kIsWhite); }
    /// Takes the bytes up to the next one of the given classes.
    constexpr TextSpan takeUntil(unsigned classes) noexcept {
        const std::size_t begin = at_;
        while (at_ < text_.size() && !isClass(text_[at_], classes)) ++at_;
        return TextSpan{begin, at_};
    }
    /// An integer as the C library's "%d" reads it (leading isspace bytes, a sign, decimal digits), independent of
    /// the locale; values outside the range of int saturate.
    std::optional<int> takeInt() noexcept;

private:
    std::string_view text_;
    std::size_t at_;
};

inline std::optional<int> Cursor::takeInt() noexcept {
    const char* at = text_.data() + at_;
    const char* const end = text_.data() + text_.size();
    while (at != end && isCSpace(*at)) ++at;
    const bool negative = at != end && *at == '-';
    if (at != end && (*at == '-' || *at == '+')) ++at;
    const char* const digits = at;
    constexpr unsigned long long kMost = 1ULL << 31U;
    unsigned long long value = 0;
    for (unsigned digit = 0; at != end && (digit = static_cast<unsigned char>(*at) - unsigned{'0'}) <= 9; ++at) {
        value = value * 10 + digit;
        if (value > kMost) value = kMost;
    }
    if (at == digits) return std::nullopt;
    at_ = static_cast<std::size_t>(at - text_.data());
    if (negative) return static_cast<int>(-static_cast<long long>(value));
    return static_cast<int>(value < kMost ? value : kMost - 1);
}

}  // namespace varnpdf
