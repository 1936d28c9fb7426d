// Where a visible signature goes: places and sizes as people give them, in the library's terms.
#pragma once

#include <optional>
#include <string>

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
    int mode = 1;  ///< 0 percent of the page, 1 to 4 points from lower left, upper left, lower right, upper right
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
    [[nodiscard]] bool visible() const { return width > 0; }
};

void addPlacementOptions(const Parser& parser, PlacementOptions& options);
/// Nothing after a complaint.
std::optional<Placement> placementOf(const PlacementOptions& options);
/// The same place on a page whose box (x1, y1, x2, y2) begins elsewhere than at 0 0, from where the library counts.
/// Percentages become points.
Placement movedOnto(Placement placement, const int* box, int rotation);

}  // namespace cli
