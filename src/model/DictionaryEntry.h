// Finding a key in the raw text of a dictionary.
#pragma once

#include <optional>
#include <string_view>

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
/// Strings end at the first ')' without a backslash in front, as this library has always read them.
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

/// The text of that entry's value, empty when there is none.
std::string_view entryValue(std::string_view text, std::string_view key);

/// The value as an integer, as "%d" reads its beginning.
std::optional<int> entryInt(std::string_view text, std::string_view key);

}  // namespace varnpdf
