// A signature placed at a text that stands on the page.
#pragma once

#include <optional>
#include <string>

#include "measure.h"

class CPdf;

namespace cli {

/// As the command line says.
struct TextPlaceOptions {
    std::optional<std::string> text;
    std::string hit = "first";
    std::string offset = "0,0";
};

/// Which text, and how far from the lower left corner of its box.
struct TextPlace {
    std::string text;
    int hit = 1;  ///< from 1; -1 the last
    Distance offset;
};

/// Behind the options of the placement.
void addTextPlaceOptions(const Parser& parser, TextPlaceOptions& options);
/// Nothing after a complaint.
std::optional<TextPlace> textPlaceOf(const TextPlaceOptions& options);
/// The placement moved to the text; nothing after a complaint. Lower left and offset are meant as the page is seen.
std::optional<Placement> placedAtText(Placement placement, const TextPlace& place, CPdf& pdf, const std::string& file);

}  // namespace cli
