// UTF-8 read piece by piece, and its characters in WinAnsiEncoding.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace varnpdf {

/// Decodes UTF-8 (RFC 3629) that comes in pieces.
class Utf8Reader {
public:
    enum class Step { kMore, kCharacter, kInvalid };
    /// Takes one byte; the character is then `character()`.
    Step take(unsigned char byte) noexcept;
    [[nodiscard]] char32_t character() const noexcept { return character_; }
    [[nodiscard]] bool inside() const noexcept { return left_ > 0; }

private:
    char32_t character_ = 0;
    char32_t least_ = 0;
    int left_ = 0;
};

/// Whether everything seen is UTF-8, with at least one character beyond ASCII.
class Utf8Check {
public:
    /// False once the text is not UTF-8.
    bool add(std::string_view bytes) noexcept;
    [[nodiscard]] bool holds() const noexcept { return valid_ && beyondAscii_ && !reader_.inside(); }

private:
    Utf8Reader reader_;
    bool valid_ = true;
    bool beyondAscii_ = false;
};

/// Turns valid UTF-8 into WinAnsiEncoding (ISO 32000-2 annex D.2), "?" for what it lacks; byte order marks are left
/// out.
class WinAnsiText {
public:
    /// Valid until the next call.
    std::string_view convert(std::string_view bytes);

private:
    Utf8Reader reader_;
    std::string out_;
};

}  // namespace varnpdf
