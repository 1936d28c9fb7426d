// The form XObjects of a visible signature (ISO 32000-2 8.10, 12.5.5) as text.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "support/Image.h"

namespace varnpdf {

/// Numbers and geometry of one appearance. Width and height are those of the upright signature.
struct Appearance {
    int width = 0;
    int height = 0;
    int rotation = 0;     ///< of the page, in degrees
    bool layers = false;  ///< the additional layers /n1 and /n3
    int form = 0;         ///< object number of /FRM
    int blank = 0;        ///< of /n0, and of /n3
    int question = 0;     ///< of /n1
    int text = 0;         ///< of /n2
    int mask = 0;         ///< of the soft mask, 0 without one
    int image = 0;        ///< of the background image, 0 without one
    const JpegImage* picture = nullptr;
};

/// (rotation mod 360) / 90.
int rotationIndex(int rotation) noexcept;
/// The matrix that turns a layer upright on a page with this rotation.
std::string_view rotationMatrix(int rotation) noexcept;

std::string formObject(int number, const Appearance& form);                     ///< /FRM: paints the layers
std::string normalObject(int number, const Appearance& form);                   ///< /N: paints /FRM
std::string blankObject(int number, const Appearance& form);                    ///< /n0
std::optional<std::string> questionObject(int number, const Appearance& form);  ///< /n1
/// /n2: `content` shows the text.
std::optional<std::string> textObject(int number, const Appearance& form, std::string_view content);
std::string emptyObject(int number, const Appearance& form);  ///< invisible signature: PDF/A wants a form

}  // namespace varnpdf
