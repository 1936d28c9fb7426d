// Places and sizes of visible signatures.
#include "measure.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <string_view>

#include "command.h"
#include "text.h"

namespace {

constexpr double kLargest = 14400;  // points; no page is larger (ISO 32000-1 annex C)

constexpr std::array<std::string_view, 4> kCorners = {"lower-left", "upper-left", "lower-right", "upper-right"};

struct Unit {
    std::string_view name;
    double points;
};
constexpr Unit kUnits[] = {{"", 1}, {"pt", 1}, {"mm", 72 / 25.4}, {"cm", 72 / 2.54}, {"in", 72}};

/// A length in points or a share of the page.
struct Length {
    double amount = 0;
    bool percent = false;
};

std::optional<Length> lengthOf(std::string_view text) {
    text = cli::trimmed(text);
    double number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number, std::chars_format::fixed);
    if (error != std::errc() || !(number >= 0)) return std::nullopt;
    const std::string_view unit = text.substr(static_cast<std::size_t>(end - text.data()));
    if (unit == "%") {
        if (number > 100) return std::nullopt;
        return Length{number, true};
    }
    for (const Unit& known : kUnits) {
        if (known.name == unit && number * known.points <= kLargest) return Length{number * known.points, false};
    }
    return std::nullopt;
}

std::optional<std::array<Length, 2>> pairOf(std::string_view text) {
    const std::size_t comma = text.find(',');
    if (comma == std::string_view::npos) return std::nullopt;
    const std::optional<Length> first = lengthOf(text.substr(0, comma));
    const std::optional<Length> second = lengthOf(text.substr(comma + 1));
    if (!first || !second) return std::nullopt;
    return std::array<Length, 2>{*first, *second};
}

int rounded(const Length& length) { return static_cast<int>(std::lround(length.amount)); }

bool wrong(const char* option, const std::string& sentence) {
    cli::complain(option, sentence);
    return false;
}

bool takePage(const std::string& text, cli::Placement& placement) {
    const std::optional<int> page = cli::pageOf(text);
    placement.page = page.value_or(0);
    return page.has_value();
}

bool takeSize(const std::string& text, cli::Placement& placement) {
    if (text.empty()) return true;
    const std::optional<std::array<Length, 2>> pair = pairOf(text);
    if (!pair || (*pair)[0].percent || (*pair)[1].percent || rounded((*pair)[0]) < 1 || rounded((*pair)[1]) < 1) {
        return wrong("--size", "this is no width and height such as 200,60 or 70mm,20mm: " + text);
    }
    placement.width = rounded((*pair)[0]);
    placement.height = rounded((*pair)[1]);
    return true;
}

/// Distances are meant from the corner of the page to the nearest corner of the signature; the library measures to its
/// lower left corner.
bool takePosition(const std::string& text, const std::string& corner, cli::Placement& placement) {
    const std::optional<std::array<Length, 2>> pair = pairOf(text);
    if (!pair || (*pair)[0].percent != (*pair)[1].percent) {
        return wrong("--position", "this is no place such as 30,40 or 10mm,20mm or 5%,10%: " + text);
    }
    placement.position.x = rounded((*pair)[0]);
    placement.position.y = rounded((*pair)[1]);
    const bool right = corner.ends_with("right");
    const bool upper = corner.starts_with("upper");
    if ((*pair)[0].percent) {
        placement.position.mode = 0;
        if (right || upper) return wrong("--position", "percentages are measured from the lower left corner only");
        const bool whole = placement.position.x == (*pair)[0].amount && placement.position.y == (*pair)[1].amount;
        return whole || wrong("--position", "percentages must be whole numbers: " + text);
    }
    placement.position.mode = 1 + (upper ? 1 : 0) + (right ? 2 : 0);
    if (right) placement.position.x += placement.width;
    if (upper) placement.position.y += placement.height;
    return true;
}

// Of a length that may lead to the left or down.
std::optional<int> signedPoints(std::string_view text) {
    text = cli::trimmed(text);
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+')) text.remove_prefix(1);
    const std::optional<Length> length = lengthOf(text);
    if (!length || length->percent) return std::nullopt;
    return negative ? -rounded(*length) : rounded(*length);
}

}  // namespace

std::optional<int> cli::pageOf(const std::string& text) {
    if (text == "last") return -1;
    int number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error == std::errc() && end == text.data() + text.size() && number >= 1) return number - 1;
    wrong("--page", "this is neither a number from 1 on nor \"last\": " + text);
    return std::nullopt;
}

std::optional<std::array<double, 4>> cli::rectangleOf(const std::string& text) {
    std::array<double, 4> out{};
    std::string_view rest = text;
    for (std::size_t i = 0; i < out.size(); ++i) {
        const std::size_t end = i + 1 < out.size() ? rest.find(',') : rest.size();
        const std::optional<Length> length =
            end == std::string_view::npos ? std::nullopt : lengthOf(rest.substr(0, end));
        if (!length || length->percent) {
            wrong("--rect", "these are no place and size such as 72,36,200,20 or 2cm,1cm,70mm,8mm: " + text);
            return std::nullopt;
        }
        out[i] = length->amount;
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return out;
}

std::optional<cli::Distance> cli::distanceOf(const std::string& text) {
    const std::size_t comma = text.find(',');
    if (comma == std::string::npos) return std::nullopt;
    const std::optional<int> x = signedPoints(std::string_view(text).substr(0, comma));
    const std::optional<int> y = signedPoints(std::string_view(text).substr(comma + 1));
    if (!x || !y) return std::nullopt;
    return Distance{*x, *y};
}

void cli::addPlacementOptions(const Parser& parser, PlacementOptions& options) {
    parser.option("--page", options.page, "Page that carries the signature: from 1, or \"last\"").shownAs("N");
    const Option size = parser.option("--size", options.size, "Makes the signature visible: width and height");
    size.shownAs("W,H");
    parser.option("--position", options.position, "Distance from the corner of the page; without it 36,36")
        .needs(size)
        .shownAs("X,Y");
    parser
        .option("--corner", options.corner,
                "The corner: lower-left (without it), lower-right, upper-left, "
                "upper-right")
        .needs(size)
        .among(std::vector<std::string>(kCorners.begin(), kCorners.end()))
        .shownAs("CORNER");
}

std::optional<cli::Placement> cli::placementOf(const PlacementOptions& options) {
    Placement placement;
    const std::string position = options.position.empty() ? "36,36" : options.position;
    if (!takePage(options.page, placement) || !takeSize(options.size, placement)) return std::nullopt;
    if (placement.visible() && !takePosition(position, options.corner, placement)) return std::nullopt;
    return placement;
}
