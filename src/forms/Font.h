// A simple font as the text of a field needs it: which characters it has, and how wide they are.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "content/Glyphs.h"

namespace varnpdf {

/// Follows references: the value that a value stands for, itself when it is no reference, empty when it leads nowhere.
class References {
public:
    References() = default;
    References(const References&) = default;
    References& operator=(const References&) = default;
    virtual ~References() = default;
    [[nodiscard]] virtual std::string_view follow(std::string_view value) const = 0;
};

class FieldFont {
public:
    /// A font dictionary (ISO 32000-2 9.6). Nothing for a composite font, or one whose codes cannot be told.
    static std::optional<FieldFont> from(std::string_view dictionary, const References& references);
    /// Helvetica in WinAnsiEncoding.
    static const FieldFont& helvetica();

    /// The characters as codes of this font, line feeds kept. Nothing when it lacks one of them.
    [[nodiscard]] std::optional<std::string> encode(std::u32string_view characters) const;
    /// Width of the codes in units of the font size.
    [[nodiscard]] double width(std::string_view codes) const;
    /// Heights above and below the baseline in units of the font size, both positive.
    [[nodiscard]] double ascent() const { return ascent_; }
    [[nodiscard]] double descent() const { return descent_; }

private:
    FieldFont() = default;
    void readWidths(std::string_view first, std::string_view widths);
    void useStandardWidths(StandardFace face, const Encoding& encoding);
    void finish(const Encoding& encoding);

    std::unordered_map<char32_t, char> codes_;
    std::array<float, 256> widths_{};
    double ascent_ = 0.75;
    double descent_ = 0.25;
};

}  // namespace varnpdf
