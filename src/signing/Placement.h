// Where a signature stands on its page, and whether a text may stand in a string.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace varnpdf {

/// The rectangle of a signature (`CPdfHelper::GetSignaturePos`); nothing when it does not lie on the page.
std::optional<std::array<int, 4>> signatureRect(int rotation, const std::array<int, 4>& pageBox,
                                                const std::array<int, 2>& size, int posMode,
                                                const std::array<int, 2>& position);

/// VARNPDF_OK when the text may stand between parentheses as it is, VARNPDF_TEXT_TOO_LONG beyond `most` bytes, or
/// VARNPDF_TEXT_BREAKS_STRING.
int checkLiteral(std::string_view text, std::size_t most);
/// The text with a backslash in front of every parenthesis and backslash.
std::string escapedLiteral(std::string_view text);

}  // namespace varnpdf
