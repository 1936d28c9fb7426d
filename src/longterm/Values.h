// Values taken apart token by token (ISO 32000-2 7.2, 7.3). A store that other software wrote must be carried over
// whole, so comments, nested parentheses and keys told apart from values matter here.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace varnpdf::store {

struct KeyValue {
    std::string_view key;    ///< with its slash, as written
    std::string_view value;  ///< as written; empty where the dictionary ends behind the key
};

/// A dictionary; the views look into the text it was read from.
struct DictionaryText {
    std::vector<KeyValue> entries;
    std::size_t close = 0;  ///< offset of the ">>" that ends it

    /// Of two entries with this key the later, as readers have it; null without one. `key` with its slash.
    [[nodiscard]] const KeyValue* find(std::string_view key) const;
};

/// The value of an object: what stands behind its header "12 0 obj", comments left aside.
std::string_view bodyOf(std::string_view object);
/// The dictionary at the start of a text; nothing when there is none or it does not end.
std::optional<DictionaryText> readDictionary(std::string_view text);
/// The elements of the array at the start of a text, references whole; nothing when there is none or it does not end.
std::optional<std::vector<std::string_view>> readItems(std::string_view text);
/// Object number of a value that is a reference.
std::optional<int> referenceIn(std::string_view value);
/// The bytes of the literal or hexadecimal string at the start of a text (ISO 32000-2 7.3.4).
std::optional<std::string> stringBytes(std::string_view value);
/// A name as it is meant, with its slash, "#41" undone (ISO 32000-2 7.3.5).
std::string plainName(std::string_view name);

}  // namespace varnpdf::store
