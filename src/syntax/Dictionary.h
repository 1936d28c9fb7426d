// Dictionaries and the objects that hold them, read token by token and edited as text (ISO 32000-2 7.3.7, 7.3.10).
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "syntax/Lexer.h"

namespace varnpdf {

/// Where the body of an object begins: behind "obj". 0 for a text without this header.
std::size_t bodyBegin(std::string_view object) noexcept;
/// What stands behind the header of an object, or a text without one, from the first token on.
std::string_view bodyOf(std::string_view object) noexcept;
/// The value of an object: the first one of its body, empty when there is none or it is not closed.
std::string_view objectValue(std::string_view object) noexcept;
/// Where the data of a stream begins whose keyword "stream" stands at `keyword`: behind LF or CR LF (ISO 32000-2
/// 7.3.8.1), or behind a lone CR, which is no line end here, but some write it.
std::size_t streamDataBegin(std::string_view object, std::size_t keyword) noexcept;

/// Two names mean the same ("#41" is "A"); both with their slash.
bool isSameName(std::string_view written, std::string_view key);
/// The value behind a key of a dictionary in `text`, empty where the dictionary ends; nothing when it is not closed.
std::optional<std::string_view> valueBehind(Lexer& lexer, std::string_view text, const Token& key);

/// One dictionary, read once. The views are those of the text it was read from. Keys have their slash and are compared
/// as they are meant ("#41" is "A"); a token that should be a key and is no name is passed over, as viewers do.
class Dictionary {
public:
    Dictionary() = default;
    /// The dictionary at the start of the text, or behind the header of an object ("12 0 obj").
    explicit Dictionary(std::string_view text);

    struct Entry {
        std::string_view key;    ///< with its slash, as written
        std::string_view value;  ///< as written; empty behind the key where there is none
    };

    /// There is a dictionary, and it ends.
    explicit operator bool() const noexcept { return close_ > 0; }
    [[nodiscard]] const std::vector<Entry>& entries() const noexcept { return entries_; }
    /// Of two entries with this key the later; null without one.
    [[nodiscard]] const Entry* entry(std::string_view key) const;
    /// The value of this entry, empty without one and for null, which means the same (ISO 32000-2 7.3.7).
    [[nodiscard]] std::string_view find(std::string_view key) const;
    /// Offset in the text of the ">>" that ends the dictionary.
    [[nodiscard]] std::size_t close() const noexcept { return close_; }

private:
    std::vector<Entry> entries_;
    std::size_t close_ = 0;
};

/// The value of a key in the dictionary of a text, as `Dictionary` finds it.
std::string_view valueOf(std::string_view text, std::string_view key);

/// How an edit treats the bytes around the value.
enum class EntryLayout {
    Lines,   ///< an entry is written anew, and one that is added gets lines of its own
    Splice,  ///< only the value changes, and one that is added stands right before the ">>"
};
/// Replaces the entry in the dictionary of a text, or adds it at the dictionary's end; further entries with this key,
/// of which viewers might show either, go. An empty value removes the entry. False, and nothing changed, for a text
/// without a whole dictionary.
bool setEntry(std::string& text, std::string_view key, std::string_view value, EntryLayout layout = EntryLayout::Lines);

}  // namespace varnpdf
