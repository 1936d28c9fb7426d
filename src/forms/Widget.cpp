// How a widget looks around its value.
#include "forms/Widget.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "support/Text.h"
#include "syntax/Values.h"

namespace varnpdf {
namespace {

std::string colour(std::string_view array, bool fill) {
    const std::vector<double> parts = numbersOf(array);
    const char* const op = parts.size() == 1   ? (fill ? "g" : "G")
                           : parts.size() == 3 ? (fill ? "rg" : "RG")
                           : parts.size() == 4 ? (fill ? "k" : "K")
                                               : nullptr;
    std::string out;
    if (op == nullptr) return out;
    for (const double part : parts) append(out, decimal(part), ' ');
    return out + op;
}

}  // namespace

std::string decoration(const Dictionary& look, const Dictionary& style, const TextBox& box, double border) {
    std::string out;
    const std::string background = colour(look.find("/BG"), true);
    if (!background.empty()) {
        append(out, "q\n", background, "\n0 0 ", decimal(box.width), ' ', decimal(box.height), " re\nf\nQ\n");
    }
    const std::string line = colour(look.find("/BC"), false);
    if (line.empty() || border <= 0) return out;
    append(out, "q\n", line, '\n', decimal(border), " w\n");
    if (style.find("/S") == "/D") append(out, "[3] 0 d\n");
    if (style.find("/S") == "/U") {
        append(out, "0 ", decimal(border / 2), " m\n", decimal(box.width), ' ', decimal(border / 2), " l\nS\nQ\n");
    } else {
        append(out, decimal(border / 2), ' ', decimal(border / 2), ' ', decimal(box.width - border), ' ',
               decimal(box.height - border), " re\nS\nQ\n");
    }
    return out;
}

Frame frameOf(double width, double height, int rotation) {
    switch ((rotation % 360 + 360) % 360) {
        case 90:
            return {{0, 0, height, width}, text("[0 1 -1 0 ", decimal(width), " 0]")};
        case 180:
            return {{0, 0, width, height}, text("[-1 0 0 -1 ", decimal(width), ' ', decimal(height), ']')};
        case 270:
            return {{0, 0, height, width}, text("[0 -1 1 0 0 ", decimal(height), ']')};
        default:
            return {{0, 0, width, height}, {}};
    }
}

std::optional<TextBox> boxOf(std::string_view array) {
    const std::vector<double> corners = numbersOf(array);
    if (corners.size() < 4) return std::nullopt;
    const TextBox box{std::min(corners[0], corners[2]), std::min(corners[1], corners[3]),
                      std::abs(corners[2] - corners[0]), std::abs(corners[3] - corners[1])};
    return box.width > 0 && box.height > 0 ? std::optional(box) : std::nullopt;
}

double borderWidth(const Dictionary& widget, const Dictionary& style, const References& references) {
    const auto width = numberOf(references.follow(style.find("/W")));
    if (width) return std::clamp(*width, 0.0, 100.0);
    const std::vector<double> border = numbersOf(references.follow(widget.find("/Border")));
    return border.size() >= 3 ? std::clamp(border[2], 0.0, 100.0) : 1;
}

std::string appearanceHead(int number, const Frame& frame, std::string_view resources) {
    std::string out = text(number, " 0 obj\r\n<<\r\n/Type /XObject\r\n/Subtype /Form\r\n/BBox [0 0 ",
                           decimal(frame.box.width), ' ', decimal(frame.box.height), "]\r\n");
    if (!frame.matrix.empty()) append(out, "/Matrix ", frame.matrix, "\r\n");
    if (!resources.empty()) append(out, "/Resources ", resources, "\r\n");
    return out + ">>";
}

}  // namespace varnpdf
