// The text of a field laid out in its box, as operators of a content stream (ISO 32000-2 12.7.4.3).
#pragma once

#include <string>
#include <string_view>

#include "forms/Font.h"

namespace varnpdf {

/// A rectangle in the space of the appearance.
struct TextBox {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;
};

/// A default appearance string taken apart.
struct DefaultAppearance {
    std::string font;       ///< resource name without slash, empty when none is given
    double size = 0;        ///< points, 0: as large as fits
    std::string operators;  ///< everything else, e.g. "0 0 1 rg"
};
DefaultAppearance parseDefaultAppearance(std::string_view text);

struct TextStyle {
    DefaultAppearance appearance;
    int quadding = 0;  ///< 0 left, 1 centred, 2 right
    bool multiline = false;
    int cells = 0;      ///< of a comb field, else 0
    double border = 1;  ///< width of the border in points
};

/// A number with at most three digits behind the point, whatever the locale.
std::string decimal(double value);

/// What stands between "/Tx BMC" and "EMC": the text clipped to the box inside its border. `codes` are those of the
/// font, line feeds between lines. Empty for an empty text.
std::string fieldText(const TextBox& box, const TextStyle& style, const FieldFont& font, std::string_view codes);

}  // namespace varnpdf
