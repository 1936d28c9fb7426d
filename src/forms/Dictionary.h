// Dictionaries read token by token and edited as text (ISO 32000-2 7.2, 7.3), where every viewer must agree on the
// answer: parentheses are counted, comments skipped, keys and values told apart.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace varnpdf {

/// The tokens of a text, as views into it.
class Tokens {
public:
    explicit Tokens(std::string_view text, std::size_t at = 0) : text_(text), at_(at) {}
    /// A string, name, number, keyword, or one of << >> [ ]; nothing at the end, or for a string that does not end.
    std::optional<std::string_view> next();
    /// A whole value: a dictionary or array through its end, a reference with all its parts.
    std::optional<std::string_view> nextValue();
    /// Offset behind the last token.
    [[nodiscard]] std::size_t at() const { return at_; }

private:
    void skipBlanks();
    [[nodiscard]] std::size_t stringEnd() const;
    [[nodiscard]] std::optional<std::size_t> referenceEnd() const;

    std::string_view text_;
    std::size_t at_;
};

/// One dictionary, read once. The views are those of the text it was read from.
class Dictionary {
public:
    Dictionary() = default;
    /// The dictionary at the start of the text, or behind the header of an object ("12 0 obj"). Empty when there is none.
    explicit Dictionary(std::string_view text);

    struct Entry {
        std::string_view key;  ///< with its slash, as written
        std::string_view value;
    };
    [[nodiscard]] const std::vector<Entry>& entries() const { return entries_; }
    /// The value of a key without slash, as written, empty without one; of two occurrences the later.
    [[nodiscard]] std::string_view find(std::string_view key) const;

private:
    std::vector<Entry> entries_;
};

/// The value of an object: what stands behind its header, or at the start of a text without one.
std::string_view objectValue(std::string_view object);

/// The text with the entry in its first dictionary replaced, or added at the dictionary's end. An empty value removes
/// the entry. `key` without slash. A text without a dictionary stays as it is.
std::string withEntry(std::string_view text, std::string_view key, std::string_view value);

/// The name at the start of the text without its slash, "#20" undone; empty when there is none.
std::string nameOf(std::string_view value);
/// The bytes of the literal or hexadecimal string; nothing when the text is none.
std::optional<std::string> stringOf(std::string_view value);
/// A number, whatever the locale.
std::optional<double> numberOf(std::string_view value);
/// The numbers at the start of an array, at most 256.
std::vector<double> numbersOf(std::string_view array);
/// The number of the object that a reference names.
std::optional<int> referenceOf(std::string_view value);

}  // namespace varnpdf
