// UTF-8 files read block by block, and their characters in WinAnsiEncoding.
#pragma once

#include <string>
#include <string_view>

#include "syntax/Encoding.h"

namespace varnpdf {

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
