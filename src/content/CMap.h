// Code maps of fonts (ISO 32000-2 9.7.5, 9.10.3): how strings are split into codes, and what these stand for.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace varnpdf {

struct CharCode {
    std::uint32_t value = 0;
    std::size_t bytes = 1;
};

class CMap {
public:
    /// Every two bytes are a code, and the code is the CID.
    static CMap identity();
    /// The file of a code map; what cannot be read is passed over.
    static CMap read(std::string_view file);

    /// The code at the start of a string that is not empty.
    [[nodiscard]] CharCode next(std::string_view codes) const noexcept;
    /// The CID of a code, 0 when there is none.
    [[nodiscard]] std::uint32_t cid(std::uint32_t code) const noexcept;
    /// The characters of a code; none when the map does not know.
    [[nodiscard]] std::u32string text(std::uint32_t code) const;
    [[nodiscard]] bool hasText() const noexcept { return !texts_.empty(); }
    [[nodiscard]] bool isVertical() const noexcept { return vertical_; }
    void setVertical(bool vertical) noexcept { vertical_ = vertical; }

private:
    friend class CMapReader;
    struct CodeSpace {
        std::size_t bytes;
        std::uint32_t low, high;
    };
    struct CidRange {
        std::uint32_t first, last, cid;
    };
    struct TextRange {
        std::uint32_t first, last;
        std::u32string text;  // of the first; the last character counts up
    };

    std::vector<CodeSpace> spaces_;
    std::vector<CidRange> cids_;
    std::vector<TextRange> texts_;
    bool identity_ = false;
    bool vertical_ = false;
};

/// The characters of big-endian UTF-16; halves of pairs that stand alone are left out.
std::u32string fromUtf16(std::string_view bytes);

}  // namespace varnpdf
