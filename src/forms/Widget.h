// How a widget looks around its value (ISO 32000-2 12.5.6.19): box, border, background.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "forms/Font.h"
#include "forms/TextLayout.h"
#include "syntax/Dictionary.h"

namespace varnpdf {

/// The rectangle of an array; nothing for one without an area.
std::optional<TextBox> boxOf(std::string_view array);

/// The width of a widget's border; `style` is its /BS.
double borderWidth(const Dictionary& widget, const Dictionary& style, const References& references);

/// Background and border; `look` is the widget's /MK.
std::string decoration(const Dictionary& look, const Dictionary& style, const TextBox& box, double border);

/// The box [0 0 w h] of an appearance that is turned by a multiple of 90 degrees, and its matrix.
struct Frame {
    TextBox box;
    std::string matrix;
};
Frame frameOf(double width, double height, int rotation);

/// An appearance from its object's header to the end of its dictionary; what is empty is left out.
std::string appearanceHead(int number, const Frame& frame, std::string_view resources);

}  // namespace varnpdf
