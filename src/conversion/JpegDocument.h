// A JPEG image as a document of one page; the image data is embedded as it is.
#pragma once

#include <cstdio>
#include <optional>

#include "conversion/ObjectFile.h"

namespace varnpdf {

/// The frame header (ITU-T T.81 B.2.2).
struct JpegFrame {
    int kind = 0;  ///< second byte of its marker, C0 to CF
    int precision = 0;
    int width = 0;
    int height = 0;
    int components = 0;

    /// A kind that /DCTDecode covers (ISO 32000-2 7.4.8), with samples and components that the document can declare.
    [[nodiscard]] bool canBeShown() const noexcept;
};

/// Nothing when the file, from its present position on, is no JPEG with a frame header in front of the image data.
std::optional<JpegFrame> readFrame(std::FILE* file);

void putJpegHead(ObjectFile& out, int width, int height, int length, bool gray);
void putJpegFoot(ObjectFile& out, int width, int height);

}  // namespace varnpdf
