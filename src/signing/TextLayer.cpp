// The text layer of a visible signature.
#include "signing/TextLayer.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string_view>
#include <vector>

#include "support/Text.h"

namespace varnpdf {
namespace {

constexpr int kMargin = 2;             // points between the text and the edge
constexpr double kLeading = 1.2;       // of the font size
constexpr double kDescent = 0.25;      // of the font size, below the last baseline
constexpr double kBoldWidth = 1.1;     // bold faces are at most this much wider
constexpr int kLargestAutomatic = 12;  // points

// Widths of Helvetica, characters 32 to 126, in thousandths of the font size.
constexpr std::array<short, 95> kHelvetica = {
    278, 278, 355, 556, 556, 889, 667, 191, 333, 333, 389, 584, 278, 333,  278, 278, 556, 556, 556,
    556, 556, 556, 556, 556, 556, 556, 278, 278, 584, 584, 584, 556, 1015, 667, 667, 722, 722, 667,
    611, 778, 722, 278, 500, 667, 556, 833, 722, 778, 667, 778, 722, 667,  611, 722, 667, 944, 667,
    667, 611, 278, 278, 278, 469, 556, 333, 556, 556, 500, 556, 556, 278,  556, 556, 222, 222, 500,
    222, 833, 556, 556, 556, 556, 333, 500, 278, 556, 500, 722, 500, 500,  500, 334, 260, 334, 584};
constexpr int kOtherWidth = 667;
constexpr int kCourier = 600;

std::string_view fixedText(const char* text, std::size_t room) { return {text, strnlen(text, room)}; }

// "label: value", or the value alone. Parentheses become blanks; a doubled percent sign of the label is a single one.
std::string lineText(const FormfieldInfo_tag& field) {
    std::string line;
    const std::string_view label = fixedText(field.label, sizeof field.label - 1);
    for (std::size_t i = 0; i < label.size(); ++i) {
        line.push_back(label[i]);
        if (label.substr(i, 2) == "%%") ++i;
    }
    if (!line.empty()) line += ": ";
    line += fixedText(field.value, sizeof field.value - 1);
    for (char& c : line) {
        const bool breaks = c == '(' || c == ')' || c == '\r' || c == '\n';
        if (breaks) c = ' ';
    }
    return line;
}

double lineWidth(const FormfieldInfo_tag& field, std::string_view line) {
    int width = 0;
    for (const char c : line) {
        const auto index = static_cast<unsigned>(static_cast<unsigned char>(c)) - 32U;
        width += field.family == 2 ? kCourier : index < kHelvetica.size() ? kHelvetica[index] : kOtherWidth;
    }
    const bool bold = field.family != 2 && (field.style == 1 || field.style == 3);
    return width / 1000.0 * (bold ? kBoldWidth : 1.0);
}

// The largest size at which every line without a size of its own fits.
int automaticSize(int width, int height, std::span<const FormfieldInfo_tag> fields,
                  const std::vector<std::string>& lines) {
    double most = kLargestAutomatic;
    double room = height - 2 * kMargin;
    double count = 0;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        if (fields[i].size > 0) {
            room -= fields[i].size * kLeading;
        } else {
            ++count;
        }
    }
    most = std::min(most, room / (count * kLeading + kDescent));
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const double needed = lineWidth(fields[i], lines[i]);
        if (fields[i].size <= 0 && needed > 0) most = std::min(most, (width - 2 * kMargin) / needed);
    }
    return static_cast<int>(std::max(1.0, most));
}

std::string escaped(std::string_view line) {
    std::string out;
    for (const char c : line) {
        if (c == '\\') out.push_back('\\');
        out.push_back(c);
    }
    return out;
}

// "%f" as the C locale prints it.
std::string sixDigits(double value) {
    const auto millionths = static_cast<long long>(value * 1'000'000 + (value < 0 ? -0.5 : 0.5));
    const long long most = millionths < 0 ? -millionths : millionths;
    return text(millionths < 0 ? "-" : "", most / 1'000'000, '.', Digits{most % 1'000'000, 6});
}

}  // namespace

std::string fontName(int family, int style) {
    constexpr int kSymbols = 3;
    if (family == kSymbols) return "/T13_0";
    const int first = family == 1 || family == 2 ? family * 4 : 0;
    const int face = style >= 1 && style <= 3 ? style : 0;
    return text("/T", first + face + 1, "_0");
}

std::string textLayer(int width, int height, std::span<const FormfieldInfo_tag> fields) {
    std::vector<std::string> lines;
    for (const FormfieldInfo_tag& field : fields) lines.push_back(lineText(field));
    const int automatic = automaticSize(width, height, fields, lines);
    std::string out;
    double top = height - kMargin;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const int size = fields[i].size > 0 ? fields[i].size : automatic;
        const double baseline = top - size;
        append(out, "q BT ", fontName(fields[i].family, fields[i].style), ' ', size, " Tf ", kMargin, ' ',
               sixDigits(baseline), " Td (", escaped(lines[i]), ") Tj ET Q\n");
        top -= size * kLeading;
    }
    return out;
}

}  // namespace varnpdf
