// Dictionaries read token by token (ISO 32000-2 7.2, 7.3), for questions whose answer must be the one every viewer gets.
#pragma once

#include <optional>
#include <string_view>

#include "varnpdf/varnpdf.h"

namespace cli {

/// The tokens of a text. A view into the text is all that is handed out, so places are kept.
class Tokens {
public:
    explicit Tokens(std::string_view text) : text_(text) {}
    /// A string, name, number, keyword, or one of << >> [ ]; nothing at the end, or for a string that does not end.
    std::optional<std::string_view> next();
    /// A whole value: a dictionary or array through its end, a reference with all its parts.
    std::optional<std::string_view> nextValue();

private:
    void skipBlanks();
    [[nodiscard]] std::size_t stringEnd() const;
    [[nodiscard]] std::optional<std::string_view> reference() const;

    std::string_view text_;
    std::size_t at_ = 0;
};

/// The value of an object: what stands behind "obj", or at the start of a text without it.
std::optional<std::string_view> valueOf(const CPdfObj& obj);
/// The value of a key in a dictionary text, references not followed; of two occurrences the later. `key` without slash.
std::optional<std::string_view> lookUp(std::string_view dictionary, std::string_view key);
/// The same in an object's dictionary.
std::optional<std::string_view> lookUp(const CPdfObj& obj, std::string_view key);
/// The same with references followed; nothing for one that leads nowhere.
std::optional<std::string_view> lookUp(CPdf& pdf, const CPdfObj& obj, std::string_view key);

}  // namespace cli
