// Laying out the text of a field.
#include "forms/TextLayout.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <utility>
#include <vector>

#include "support/Text.h"
#include "syntax/CharClass.h"
#include "syntax/Lexer.h"
#include "syntax/Values.h"

namespace varnpdf {
namespace {

constexpr double kSmallest = 4;              // points, of an automatic size
constexpr double kLargest = 144;             // likewise
constexpr double kMultilineSize = 12;        // where an automatic size begins
constexpr double kLeading = 1.15;            // of the font size
constexpr double kSingleLineOfHeight = 0.7;  // automatic size of a single line, of the height inside the border

struct Layout {
    double size;
    std::vector<std::string_view> lines;
};

// Takes from `rest` what fits into the width, up to a blank where there is one. At least one code goes, so that a box
// too narrow for a letter comes to an end.
std::string_view takeLine(std::string_view& rest, const FieldFont& font, double room) {
    double used = 0;
    std::size_t fits = 0;
    std::size_t blank = std::string_view::npos;
    while (fits < rest.size()) {
        used += font.width(rest.substr(fits, 1));
        if (used > room && rest[fits] != ' ' && fits > 0) break;
        if (rest[fits] == ' ') blank = fits;
        ++fits;
    }
    if (fits == rest.size()) return std::exchange(rest, {});
    const std::size_t end = blank == std::string_view::npos ? fits : blank + 1;
    const std::string_view line = rest.substr(0, end);
    rest.remove_prefix(end);
    return line;
}

std::vector<std::string_view> wrapped(std::string_view codes, const FieldFont& font, double room) {
    std::vector<std::string_view> lines;
    for (;;) {
        const std::size_t end = std::min(codes.find('\n'), codes.size());
        std::string_view rest = codes.substr(0, end);
        do {
            lines.push_back(takeLine(rest, font, room));
        } while (!rest.empty());
        if (end == codes.size()) return lines;
        codes.remove_prefix(end + 1);
    }
}

// The text runs a few points inside the border, like that of the viewers which wrote the other fields.
double padding(const TextStyle& style) { return 2 * std::max(style.border, 1.0); }

Layout multilineLayout(const TextBox& box, const TextStyle& style, const FieldFont& font, std::string_view codes) {
    const double width = box.width - 2 * padding(style);
    const double height = box.height - 2 * padding(style);
    double size = style.appearance.size > 0 ? style.appearance.size : kMultilineSize;
    for (;; size = std::max(size - 1, kSmallest)) {
        Layout layout{size, wrapped(codes, font, width / size)};
        const bool fits = static_cast<double>(layout.lines.size()) * size * kLeading <= height;
        if (style.appearance.size > 0 || fits || size <= kSmallest) return layout;
    }
}

double singleLineSize(const TextBox& box, const TextStyle& style, const FieldFont& font, std::string_view codes) {
    if (style.appearance.size > 0) return style.appearance.size;
    double size = (box.height - 2 * style.border) * kSingleLineOfHeight;
    const double width = font.width(codes);
    if (style.cells == 0 && width > 0) size = std::min(size, (box.width - 2 * padding(style)) / width);
    return std::clamp(std::floor(size * 10) / 10, kSmallest, kLargest);
}

class Writer {
public:
    Writer(const TextBox& box, const TextStyle& style, const FieldFont& font) : box_(box), style_(style), font_(font) {}

    std::string write(std::string_view codes) {
        begin();
        if (style_.multiline) {
            writeLines(multilineLayout(box_, style_, font_, codes));
        } else {
            std::string line(codes);
            std::replace(line.begin(), line.end(), '\n', ' ');
            const double size = singleLineSize(box_, style_, font_, line);
            const double height = (font_.ascent() + font_.descent()) * size;
            const double baseline = box_.y + (box_.height - height) / 2 + font_.descent() * size;
            setFont(size);
            style_.cells > 0 ? writeCells(line, size, baseline) : show(line, lineStart(line, size), baseline);
        }
        append(out_, "ET\nQ\n");
        return std::move(out_);
    }

private:
    void begin() {
        const double inset = std::min({style_.border, box_.width / 2, box_.height / 2});
        append(out_, "q\n", decimal(box_.x + inset), ' ', decimal(box_.y + inset), ' ', decimal(box_.width - 2 * inset),
               ' ', decimal(box_.height - 2 * inset), " re\nW\nn\nBT\n");
        if (!style_.appearance.operators.empty()) append(out_, style_.appearance.operators, '\n');
    }

    void setFont(double size) { append(out_, '/', style_.appearance.font, ' ', decimal(size), " Tf\n"); }

    // Text that is wider than its box begins at the left, where reading begins.
    [[nodiscard]] double lineStart(std::string_view line, double size) const {
        const double free = box_.width - 2 * padding(style_) - font_.width(line) * size;
        const double share = free <= 0 ? 0 : style_.quadding == 1 ? free / 2 : style_.quadding == 2 ? free : 0;
        return box_.x + padding(style_) + share;
    }

    void writeLines(const Layout& layout) {
        setFont(layout.size);
        double baseline = box_.y + box_.height - padding(style_) - font_.ascent() * layout.size;
        for (const std::string_view line : layout.lines) {
            const std::string_view shown = line.substr(0, line.find_last_not_of(' ') + 1);
            if (!shown.empty()) show(shown, lineStart(shown, layout.size), baseline);
            baseline -= layout.size * kLeading;
        }
    }

    void writeCells(std::string_view line, double size, double baseline) {
        const double cell = box_.width / style_.cells;
        const auto unused = static_cast<double>(style_.cells) - static_cast<double>(line.size());
        const double first = style_.quadding == 2 ? unused : style_.quadding == 1 ? std::floor(unused / 2) : 0;
        for (std::size_t i = 0; i < line.size(); ++i) {
            const double middle = box_.x + (std::max(first, 0.0) + static_cast<double>(i) + 0.5) * cell;
            show(line.substr(i, 1), middle - font_.width(line.substr(i, 1)) * size / 2, baseline);
        }
    }

    void show(std::string_view codes, double x, double y) {
        append(out_, decimal(x - x_), ' ', decimal(y - y_), " Td\n", asciiString(codes), " Tj\n");
        x_ = rounded(x_ + rounded(x - x_));
        y_ = rounded(y_ + rounded(y - y_));
    }

    static double rounded(double value) { return std::round(value * 1000) / 1000; }

    const TextBox& box_;
    const TextStyle& style_;
    const FieldFont& font_;
    std::string out_;
    double x_ = 0;
    double y_ = 0;
};

}  // namespace

DefaultAppearance parseDefaultAppearance(std::string_view text) {
    std::vector<std::string_view> operands;
    DefaultAppearance out;
    Lexer tokens(text);
    while (const Token token = tokens.next()) {
        operands.push_back(token.text);
        const bool isOperand = isClass(token.text.front(), kIsNumberByte | kIsDelimiter);
        if (isOperand) continue;
        if (token.text == "Tf") {
            if (operands.size() >= 3 && operands[operands.size() - 3].starts_with('/')) {
                out.font = operands[operands.size() - 3].substr(1);
                out.size = std::clamp(numberOf(operands[operands.size() - 2]).value_or(0), 0.0, 1000.0);
            }
        } else {
            for (const std::string_view part : operands) append(out.operators, out.operators.empty() ? "" : " ", part);
        }
        operands.clear();
    }
    return out;
}

std::string decimal(double value) {
    const auto thousandths = std::llround(value * 1000);
    const auto size = thousandths < 0 ? -thousandths : thousandths;
    std::string out = text(thousandths < 0 ? "-" : "", size / 1000);
    if (size % 1000 == 0) return out;
    append(out, '.', Digits{size % 1000, 3});
    out.erase(out.find_last_not_of('0') + 1);
    return out;
}

std::string fieldText(const TextBox& box, const TextStyle& style, const FieldFont& font, std::string_view codes) {
    if (codes.empty()) return {};
    return Writer(box, style, font).write(codes);
}

}  // namespace varnpdf
