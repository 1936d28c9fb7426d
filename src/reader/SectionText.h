// The parts of a cross-reference section's text, and stream data inside an object's text.
#pragma once

#include <algorithm>
#include <optional>
#include <string_view>

#include "support/Log.h"
#include "varnpdf/PdfTrailer.h"

namespace varnpdf {

/// What the log says of a section's /Size.
struct SectionTexts {
    const char* size;
    const char* reset;
};

/// The part of a section's text that holds the trailer keys: from the "trailer" keyword of a table on, or the whole
/// stream object. The entries of a table are not worth a scan for each key.
inline std::string_view keyText(const CPdfTrailer& trailer) {
    const std::string_view text = trailer.content();
    if (trailer.GetIsCrossRefStream()) return text;
    if (trailer.GetFromPos() < trailer.GetXRef()) return text;
    const auto skipped = static_cast<std::size_t>(trailer.GetFromPos() - trailer.GetXRef());
    return text.substr(std::min(skipped, text.size()));
}

/// The data behind the "stream" keyword of an object's text, to the end of the text. Keywords followed by ')' stand in
/// a string and are passed over.
std::optional<std::string_view> streamData(std::string_view object, const ClassLogger& logger);

/// How a stream's /Filter value is to be undone.
enum class StreamFilter { None, Flate, Unknown };
StreamFilter streamFilter(std::string_view object);

}  // namespace varnpdf
