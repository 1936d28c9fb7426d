// Finding a key in the raw text of a dictionary.
#pragma once

#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "syntax/Cursor.h"

namespace varnpdf {

struct DictionaryEntry {
    std::size_t key = 0;  ///< offset of the key's '/'
    TextSpan value;       ///< trimmed of spaces at its end
    std::size_t end = 0;  ///< just behind the value; behind the white space of an empty one
};

struct EntryLookup {
    bool namesAsValues = true;  ///< false: a name behind the key is the next key
    bool nested = false;        ///< true: keys of nested dictionaries match too
    std::size_t start = 0;      ///< where the scan begins
};

/// The first occurrence of `key` (with or without '/') at the top level: inside the first dictionary of the text, or
/// outside of any. One pass; strings, arrays and nested dictionaries are stepped over without recursion.
/// Strings end at the first ')' without a backslash in front, as the interface of the exported readers fixes it.
std::optional<DictionaryEntry> findEntry(std::string_view text, std::string_view key, EntryLookup how = {});

/// Of two occurrences the later; a third is not looked for.
std::optional<DictionaryEntry> findLaterEntry(std::string_view text, std::string_view key, bool namesAsValues = true);

struct ObjectTypes {
    TextSpan type;       ///< value of /Type, empty when there is none
    TextSpan fieldType;  ///< value of /FT
};

/// Both in one pass, each as `findLaterEntry` finds it. Opening asks every object for them.
ObjectTypes findTypes(std::string_view text);

/// The first entry of the dictionary in the text, or of the rest of one; nothing where the dictionary ends.
std::optional<DictionaryEntry> firstEntry(std::string_view text);

// Looking by the letter of ISO 32000-2: for everything that the library decides itself. Only the functions above, which
// serve the exported readers, end strings at the first ")".

/// The value of a key, of two occurrences the later; empty behind a key without one. Words in front of the dictionary
/// ("trailer", the header of an object) and an array around it are passed over, and a value that begins with a number or
/// a bare word runs to the next token of another kind, as damaged files have it ("1 0R"). A dictionary with a string or an
/// array that never ends is read by the rules of `findLaterEntry`.
std::optional<std::string_view> lookUp(std::string_view text, std::string_view key);
/// The same; empty without the key and for null, which means as much (ISO 32000-2 7.3.7).
std::string_view lookUpValue(std::string_view text, std::string_view key);
/// Its beginning as "%d" reads it.
std::optional<int> lookUpInt(std::string_view text, std::string_view key);

/// The same for several keys of one text, which is read once.
class Lookups {
public:
    explicit Lookups(std::string_view text);
    [[nodiscard]] std::optional<std::string_view> find(std::string_view key) const;
    [[nodiscard]] std::string_view value(std::string_view key) const;
    [[nodiscard]] std::optional<int> number(std::string_view key) const;

private:
    std::string_view text_;
    std::vector<std::pair<std::string_view, std::string_view>> entries_;
    bool whole_ = false;
};

/// The text of that entry's value, empty when there is none.
std::string_view entryValue(std::string_view text, std::string_view key);

/// The value as an integer, as "%d" reads its beginning.
std::optional<int> entryInt(std::string_view text, std::string_view key);

}  // namespace varnpdf
