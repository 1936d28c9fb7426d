// Where a signature stands on its page, and whether a text may stand in a string.
#include "signing/Placement.h"

#include "varnpdf/result.h"

namespace varnpdf {
namespace {

struct Extent {
    long long width;
    long long height;
};

enum PositionMode { kPercent = 0, kLowerLeft = 1, kUpperLeft = 2, kLowerRight = 3, kUpperRight = 4 };

// The anchor in the coordinates of the page as it is seen.
Extent anchor(Extent seen, int posMode, const std::array<int, 2>& position) {
    const long long x = position[0];
    const long long y = position[1];
    switch (posMode) {
        case kPercent:
            return {seen.width * x / 100, seen.height * y / 100};
        case kUpperLeft:
            return {x, seen.height - y};
        case kLowerRight:
            return {seen.width - x, y};
        case kUpperRight:
            return {seen.width - x, seen.height - y};
        default:
            return {x, y};
    }
}

}  // namespace

std::optional<std::array<int, 4>> signatureRect(int rotation, const std::array<int, 4>& pageBox,
                                                const std::array<int, 2>& size, int posMode,
                                                const std::array<int, 2>& position) {
    const int turn = rotation % 360 / 90;
    const Extent page{static_cast<long long>(pageBox[2]) - pageBox[0], static_cast<long long>(pageBox[3]) - pageBox[1]};
    const bool upright = turn == 0 || turn == 2;
    const bool quarter = turn == 1 || turn == 3;
    const Extent seen = quarter ? Extent{page.height, page.width} : page;
    const long long w = size[0];
    const long long h = size[1];
    const bool fits = upright || quarter ? w <= seen.width && h <= seen.height : w == 0;
    if (!fits) return std::nullopt;

    const auto [x, y] = anchor(seen, posMode, position);
    std::array<long long, 4> corners{x, y, x + w, y + h};
    if (turn == 1) {
        corners = {page.width - y - h, x, page.width - y, x + w};
    } else if (turn == 2) {
        corners = {page.width - x, page.height - y, page.width - x - w, page.height - y - h};
    } else if (turn == 3) {
        corners = {y, page.height - x - w, y + h, page.height - x};
    }
    std::array<int, 4> rect{};
    for (std::size_t i = 0; i < rect.size(); ++i) {
        const long long most = i % 2 == 0 ? page.width : page.height;
        if (corners[i] < 0 || corners[i] > most) return std::nullopt;
        rect[i] = static_cast<int>(corners[i]);
    }
    return rect;
}

int checkLiteral(std::string_view text, std::size_t most) {
    if (text.size() > most) return VARNPDF_TEXT_TOO_LONG;
    int open = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\\') {
            if (++i == text.size()) return VARNPDF_TEXT_BREAKS_STRING;
        } else if (text[i] == '(') {
            ++open;
        } else if (text[i] == ')' && --open < 0) {
            return VARNPDF_TEXT_BREAKS_STRING;
        }
    }
    return open == 0 ? VARNPDF_OK : VARNPDF_TEXT_BREAKS_STRING;
}

std::string escapedLiteral(std::string_view text) {
    std::string out;
    for (const char c : text) {
        if (c == '(' || c == ')' || c == '\\') out.push_back('\\');
        out.push_back(c);
    }
    return out;
}

}  // namespace varnpdf
