// Trimming, replacing, hexadecimal and literal-string escapes on views.
#include <algorithm>

#include "syntax/Cursor.h"
#include "syntax/Text.h"

namespace varnpdf {

std::string_view trimLeft(std::string_view text, std::string_view set) noexcept {
    return text.substr(std::min(text.find_first_not_of(set), text.size()));
}

std::string_view trimLeftHalf(std::string_view text, std::string_view set) noexcept {
    return text.substr(std::min(text.size() - trimLeft(text, set).size(), (text.size() + 1) / 2));
}

std::string_view trimRightUnescaped(std::string_view text, std::string_view set) noexcept {
    while (!text.empty() && set.find(text.back()) != std::string_view::npos) {
        const bool parenthesis = text.back() == '(' || text.back() == ')';
        if (parenthesis && text.size() > 1 && text[text.size() - 2] == '\\') break;
        text.remove_suffix(1);
    }
    return text;
}

std::string replaceAll(std::string_view text, std::string_view from, std::string_view to) {
    if (from == to || from.empty() || text.find(from) == std::string_view::npos) return std::string(text);
    // Starting over after each replacement means going back no further than the bytes in front of it, which hold no
    // whole occurrence: the replacement is put back in front of the input. Where that would never end, it is final.
    const bool endless = to.find(from) != std::string_view::npos;
    std::string pending(text.rbegin(), text.rend());
    std::string done;
    std::size_t final = 0;
    while (!pending.empty()) {
        done += pending.back();
        pending.pop_back();
        if (!std::string_view(done).substr(final).ends_with(from)) continue;
        done.resize(done.size() - from.size());
        if (endless) {
            done += to;
            final = done.size();
        } else {
            pending.append(to.rbegin(), to.rend());
        }
    }
    return done;
}

std::optional<std::string_view> word(std::string_view text, int index) noexcept {
    Cursor in(text);
    for (; index >= 0; --index) {
        in.skip(kIsCSpace);
        const TextSpan span = in.takeUntil(kIsCSpace);
        if (span.size() == 0) return std::nullopt;
        if (index == 0) return span.of(text);
    }
    return std::nullopt;
}

std::string toHex(std::string_view bytes, char separator) {
    constexpr std::string_view kLower = "0123456789abcdef";
    std::string hex;
    hex.reserve(3 * bytes.size());
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        if (separator != '\0' && !hex.empty()) hex += separator;
        hex += kLower[byte >> 4U];
        hex += kLower[byte & 0x0FU];
    }
    return hex;
}

namespace {

constexpr std::string_view kEscapes = "()\\bfnrt";
constexpr std::string_view kEscaped = "()\\\b\f\n\r\t";

bool holdsEscape(std::string_view body) noexcept {
    for (std::size_t at = 0; at + 1 < body.size(); ++at) {
        const char next = body[at + 1];
        if (body[at] == '\\' && (kEscapes.find(next) != std::string_view::npos || isDigit(next))) return true;
    }
    return false;
}

}  // namespace

std::optional<std::string> decodeLiteral(std::string_view body) {
    if (!holdsEscape(body)) return std::nullopt;
    std::string decoded;
    bool escaping = false;
    for (std::size_t at = 0; at < body.size(); ++at) {
        const char c = body[at];
        if (!escaping) {
            escaping = c == '\\';
            if (!escaping) decoded += c;
        } else if (const std::size_t escape = kEscapes.find(c); escape != std::string_view::npos) {
            decoded += kEscaped[escape];
            escaping = false;
        } else if (isDigit(c)) {
            // Up to three digits; what ends a shorter run goes with it. The value is 0 whatever they say: what reads
            // certificates out of strings counts on that.
            for (int digits = 1; digits < 3 && at + 1 < body.size(); ++digits) {
                if (!isDigit(body[++at])) break;
            }
            decoded += '\0';
            escaping = false;
        }
        // Anything else goes with its backslash, and the next byte is the escape.
    }
    return decoded;
}

}  // namespace varnpdf
