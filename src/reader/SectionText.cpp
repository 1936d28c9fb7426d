// Stream data inside an object's text.
#include "reader/SectionText.h"

#include <string>

#include "model/DictionaryEntry.h"

namespace varnpdf {

std::optional<std::string_view> streamData(std::string_view object, const ClassLogger& logger) {
    constexpr std::string_view kStream = "stream";
    for (std::size_t at = object.find(kStream); at != std::string_view::npos; at = object.find(kStream, at + 1)) {
        Cursor cursor(object, at + kStream.size());
        cursor.skipWhite();
        if (cursor.peek() != ')') return cursor.rest();
        logDebug(logger, " + Stream in Klammern gefunden. Suche weiter");
    }
    return std::nullopt;
}

StreamFilter streamFilter(std::string_view object) {
    const auto filter = findLaterEntry(object, "/Filter");
    if (!filter) return StreamFilter::None;
    std::string compact;
    for (const char c : filter->value.of(object)) {
        if (!isWhite(c)) compact.push_back(c);
    }
    const bool flate = compact == "/FlateDecode" || compact == "[/FlateDecode]";
    return flate ? StreamFilter::Flate : StreamFilter::Unknown;
}

}  // namespace varnpdf
