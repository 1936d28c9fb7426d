// The content of a field's appearance stream: where its text stands, and replacing it.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "model/Document.h"
#include "syntax/Cursor.h"

namespace varnpdf {

/// What stands between the first "/Tx BMC" and its "EMC" (ISO 32000-2 12.7.4.3).
std::optional<TextSpan> markedText(std::string_view content);

/// The content with the text of its marked part laid out anew; a content without such a part is replaced whole.
std::string withMarkedText(std::string_view content, std::string_view text);

/// The content with other codes in place of the text it shows, in the same font, size, colour and place. Nothing when
/// it shows no text.
std::optional<std::string> withShownCodes(std::string_view content, std::string_view codes);

/// An object with a stream taken apart.
struct StreamParts {
    std::string_view head;  ///< through the end of the dictionary
    std::string data;       ///< unpacked
    bool packed = false;
};
/// Nothing when the object has no stream, or one that is packed otherwise than by /FlateDecode alone. `budget` is what
/// may still be unpacked or copied; what was is taken off.
std::optional<StreamParts> streamParts(const Document& document, const CPdfObj& object, std::size_t& budget);

/// The object with this data: /Length fits, /Filter says whether it is packed, /DecodeParms is gone.
std::string streamObject(std::string_view head, std::string_view data, bool packed);

}  // namespace varnpdf
