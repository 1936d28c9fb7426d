// White space of PDF syntax.
#pragma once

#include <string_view>

namespace cli {

/// `text` without white space (ISO 32000-2 table 1) at both ends.
inline std::string_view trimmed(std::string_view text) {
    constexpr std::string_view kWhite("\0\t\n\f\r ", 6);
    const std::size_t begin = text.find_first_not_of(kWhite);
    if (begin == std::string_view::npos) return {};
    return text.substr(begin, text.find_last_not_of(kWhite) - begin + 1);
}

}  // namespace cli
