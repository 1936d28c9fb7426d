// Where a visible signature goes: places and sizes as people give them, in the library's terms.
#pragma once

#include <array>
#include <optional>
#include <string>

#include "varnpdf/PdfPages.h"

#include "parser.h"

namespace cli {

/// As the command line says.
struct PlacementOptions {
    std::string page = "1";
    std::string position;
    std::string corner = "lower-left";
    std::string size;
};

/// As the preparation takes it; an invisible signature has no width.
struct Placement {
    int page = 0;  ///< from 0; -1 the last
    PdfPosition position;
    int width = 0;
    int height = 0;
    [[nodiscard]] bool visible() const { return width > 0; }
};

/// In points, to the right and up.
struct Distance {
    int x = 0;
    int y = 0;
};
/// Two lengths, each with or without a sign: "0,-40", "10mm,-5mm".
std::optional<Distance> distanceOf(const std::string& text);

void addPlacementOptions(const Parser& parser, PlacementOptions& options);
/// Nothing after a complaint.
std::optional<Placement> placementOf(const PlacementOptions& options);
/// Index of a page counted from 1, -1 for "last"; nothing after a complaint.
std::optional<int> pageOf(const std::string& text);
/// Four lengths in points, e.g. of 72,36,70mm,1cm; nothing after a complaint.
std::optional<std::array<double, 4>> rectangleOf(const std::string& text);

}  // namespace cli
