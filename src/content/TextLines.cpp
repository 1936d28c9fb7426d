// Lines made of glyphs.
#include "content/TextLines.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace varnpdf {
namespace {

// In font sizes. Letters of one word stand closer than the first, words farther apart than the second.
constexpr double kSmallGap = 0.1;
constexpr double kWideGap = 0.3;
constexpr double kOverlap = 0.4;    // by which a glyph may reach back, as kerned pairs do
constexpr double kSameLine = 0.35;  // superscripts and subscripts belong to their line
constexpr double kSamePlace = 0.1;  // painted twice
constexpr double kTurns = 720;      // directions that are told apart: half degrees
constexpr std::size_t kMostStrands = 16;

bool isBlank(char32_t c) {
    return c <= 0x20 || c == 0xA0 || c == 0x1680 || (c >= 0x2000 && c <= 0x200B) || c == 0x202F || c == 0x205F ||
           c == 0x3000;
}

std::u32string_view plain(const char32_t& c) {
    constexpr std::u32string_view kLigatures[] = {U"ff", U"fi", U"fl", U"ffi", U"ffl", U"st", U"st"};
    constexpr char32_t kFirst = 0xFB00;
    if (c >= kFirst && c < kFirst + std::size(kLigatures)) return kLigatures[c - kFirst];
    if (c == 0xAD || c == 0x2010 || c == 0x2011) return U"-";
    return {&c, 1};
}

/// A glyph where it stands on its line.
struct Item {
    const PlacedGlyph* glyph;
    int turn;       // direction of the line, in parts of a full turn
    double across;  // height of the baseline above the origin, seen in that direction
    double along;   // where the glyph begins
    double length;
    double size;
};

double lengthOf(Vector v) { return std::sqrt(dot(v, v)); }

Vector directionOf(const PlacedGlyph& glyph) {
    const double length = lengthOf(glyph.up);
    if (length == 0) return {1, 0};
    const Vector up = glyph.up * (1 / length);
    if (glyph.vertical) return Vector{0, 0} - up;
    // Beside "up" on the side to which the text goes; mirrored text goes to the left.
    const Vector right{up.y, -up.x};
    return dot(right, glyph.advance) < 0 ? Vector{0, 0} - right : right;
}

/// The directions of lines in which places are measured: the same for a whole class, so that they can be compared.
struct Axes {
    int turn = 0;
    Vector along;
    Vector across;
    double size = 0;
};

Axes axesOf(const PlacedGlyph& glyph) {
    const Vector direction = directionOf(glyph);
    const double angle = std::atan2(direction.y, direction.x) / (2 * std::numbers::pi);
    const int turns = static_cast<int>(kTurns);
    const int turn = (static_cast<int>(std::lround(angle * kTurns)) + turns) % turns;
    const double exact = turn / kTurns * 2 * std::numbers::pi;
    const Vector along{std::cos(exact), std::sin(exact)};
    return {turn, along, {-along.y, along.x}, lengthOf(glyph.up)};
}

/// Places glyphs on their lines. Most stand as the one before, so that its axes serve again.
class Measure {
public:
    Item itemOf(const PlacedGlyph& glyph) {
        const bool same = last_ != nullptr && last_->up.x == glyph.up.x && last_->up.y == glyph.up.y &&
                          last_->vertical == glyph.vertical && dot(last_->advance, glyph.advance) > 0;
        if (!same) axes_ = axesOf(glyph);
        last_ = &glyph;
        return {&glyph,
                axes_.turn,
                dot(glyph.baseline, axes_.across),
                dot(glyph.origin, axes_.along),
                std::abs(dot(glyph.advance, axes_.along)),
                axes_.size};
    }

private:
    const PlacedGlyph* last_ = nullptr;
    Axes axes_;
};

bool isSound(const PlacedGlyph& glyph) {
    constexpr double kFar = 1e7;
    const auto sound = [](Vector v) { return std::abs(v.x) < kFar && std::abs(v.y) < kFar; };
    return sound(glyph.origin) && sound(glyph.baseline) && sound(glyph.advance) && sound(glyph.up);
}

// The part of a glyph from one share of its way to another.
Rectangle boxOf(const PlacedGlyph& glyph, double from, double to) {
    Rectangle box{1e9, 1e9, -1e9, -1e9};
    const Vector side = glyph.vertical ? Vector{glyph.up.y, -glyph.up.x} * 0.5 : Vector{};
    const double above = glyph.vertical ? 1 : static_cast<double>(glyph.ascent);
    const double below = glyph.vertical ? -1 : static_cast<double>(glyph.descent);
    for (const double share : {from, to}) {
        for (const double height : {above, below}) {
            const Vector across = glyph.vertical ? side * height : glyph.up * height;
            const Vector corner = glyph.origin + glyph.advance * share + across;
            box.left = std::min(box.left, corner.x);
            box.right = std::max(box.right, corner.x);
            box.bottom = std::min(box.bottom, corner.y);
            box.top = std::max(box.top, corner.y);
        }
    }
    return box;
}

/// Adds glyphs to a line from its beginning to its end.
class LineMaker {
public:
    void add(const Item& item) {
        const double size = std::max(item.size, 1e-6);
        const double gap = (item.along - end_) / size;
        if (!line_.empty() && gap > kSmallGap) widen(gap > kWideGap ? Gap::Wide : Gap::Small);
        std::u32string text;
        for (const char32_t& c : item.glyph->text) text += plain(c);
        const auto count = static_cast<double>(text.size());
        for (std::size_t i = 0; i < text.size(); ++i) {
            if (isBlank(text[i])) {
                widen(Gap::Wide);
                continue;
            }
            const auto at = static_cast<double>(i);
            line_.push_back({text[i], before_, boxOf(*item.glyph, at / count, (at + 1) / count)});
            before_ = Gap::None;
        }
        end_ = item.along + item.length;
        across_ = item.across;
    }
    /// The glyph stands behind what is there.
    [[nodiscard]] bool fits(const Item& item) const { return item.along >= end_ - kOverlap * item.size; }
    [[nodiscard]] double distance(const Item& item) const { return std::abs(item.across - across_); }
    TextLine take() { return std::move(line_); }

private:
    void widen(Gap gap) { before_ = std::max(before_, gap); }

    TextLine line_;
    Gap before_ = Gap::Wide;
    double end_ = 0;
    double across_ = 0;
};

/// Texts on nearly the same baseline. Those that are painted over each other are told apart.
class Strands {
public:
    void add(const Item& item) {
        if (repeats(item)) return;
        LineMaker* best = nullptr;
        for (LineMaker& maker : makers_) {
            if (maker.fits(item) && (best == nullptr || maker.distance(item) < best->distance(item))) best = &maker;
        }
        if (best == nullptr) best = makers_.size() < kMostStrands ? &makers_.emplace_back() : &makers_.back();
        best->add(item);
        recent_[next_++ % std::size(recent_)] = &item;
    }
    void moveTo(std::vector<TextLine>& lines) {
        for (LineMaker& maker : makers_) {
            TextLine line = maker.take();
            if (!line.empty()) lines.push_back(std::move(line));
        }
    }

private:
    // The same glyph at nearly the same place has just been there.
    [[nodiscard]] bool repeats(const Item& item) const {
        return std::ranges::any_of(recent_, [&](const Item* other) {
            return other != nullptr && std::abs(other->along - item.along) < kSamePlace * item.size &&
                   std::abs(other->across - item.across) < kSamePlace * item.size && item.length > 0 &&
                   other->glyph->text == item.glyph->text;
        });
    }

    std::vector<LineMaker> makers_;
    const Item* recent_[4] = {};
    std::size_t next_ = 0;
};

void addLines(std::vector<Item>::iterator begin, std::vector<Item>::iterator end, std::vector<TextLine>& lines) {
    std::stable_sort(begin, end, [](const Item& a, const Item& b) { return a.along < b.along; });
    Strands strands;
    for (auto item = begin; item != end; ++item) strands.add(*item);
    strands.moveTo(lines);
}

}  // namespace

std::u32string comparable(std::u32string_view text) {
    std::u32string out;
    bool blank = false;
    for (const char32_t& c : text) {
        if (isBlank(c)) {
            blank = !out.empty();
            continue;
        }
        if (blank) out.push_back(U' ');
        blank = false;
        out += plain(c);
    }
    return out;
}

std::vector<TextLine> linesOf(std::vector<PlacedGlyph> glyphs) {
    std::erase_if(glyphs, [](const PlacedGlyph& glyph) { return !isSound(glyph) || glyph.text.empty(); });
    std::vector<Item> items;
    items.reserve(glyphs.size());
    Measure measure;
    for (const PlacedGlyph& glyph : glyphs) items.push_back(measure.itemOf(glyph));
    std::ranges::stable_sort(
        items, [](const Item& a, const Item& b) { return a.turn != b.turn ? a.turn < b.turn : a.across > b.across; });
    std::vector<TextLine> lines;
    for (auto begin = items.begin(); begin != items.end();) {
        const auto end = std::find_if(begin, items.end(), [&](const Item& item) {
            const double room = kSameLine * std::min(begin->size, item.size);
            return item.turn != begin->turn || begin->across - item.across > room;
        });
        addLines(begin, end, lines);
        begin = end;
    }
    return lines;
}

}  // namespace varnpdf
