// The frame header of a JPEG file (ITU-T T.81 B.2.2).
#pragma once

#include <cstdio>
#include <optional>

namespace varnpdf {

struct JpegFrame {
    int kind = 0;  ///< second byte of its marker, C0 to CF
    int precision = 0;
    int width = 0;
    int height = 0;
    int components = 0;
    bool adobe = false;  ///< Adobe's marker stands in front of it: four components are written inverted

    /// Baseline, extended sequential or progressive Huffman coding of 8-bit samples: what /DCTDecode covers (ISO 32000-2
    /// 7.4.8).
    [[nodiscard]] bool isDct() const noexcept { return kind <= 0xC2 && precision == 8 && width > 0 && height > 0; }
};

/// Nothing when the file, from its present position on, is no JPEG with a frame header in front of the image data.
std::optional<JpegFrame> readFrame(std::FILE* file);

}  // namespace varnpdf
