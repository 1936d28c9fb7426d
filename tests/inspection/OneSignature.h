// Documents with one signature field (4) and its signature dictionary (5).
#pragma once

#include <string>
#include <string_view>

#include "support/PdfBuilder.h"

namespace varnpdf::test {

inline constexpr const char* kField = "<< /Type /Annot /FT /Sig /T (Sig1) /V 5 0 R >>";

inline std::string withDictionary(const std::string& body) {
    return smallDocument().object(4, kField).object(5, body).table().bytes();
}

inline std::string withContents(std::string_view contents) {
    return withByteRanges(smallDocument().object(4, kField).signature(5, contents).table().bytes());
}

}  // namespace varnpdf::test
