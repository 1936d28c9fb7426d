// Stream data inside an object's text.
#include "reader/SectionText.h"

#include "model/DictionaryEntry.h"
#include "syntax/Reference.h"

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
    const auto filter = lookUp(object, "/Filter");
    if (!filter) return StreamFilter::None;
    // Blanks may stand beside the brackets, but not within the name.
    std::string_view name = trim(*filter);
    if (name.starts_with('[') && name.ends_with(']')) name = trim(name.substr(1, name.size() - 2));
    return name == "/FlateDecode" ? StreamFilter::Flate : StreamFilter::Unknown;
}

}  // namespace varnpdf
