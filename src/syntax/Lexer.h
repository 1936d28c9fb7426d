// Tokens of PDF syntax by the letter of ISO 32000-2 7.2 and 7.3: comments, nested parentheses and escapes are known.
// For text that is to be understood or copied completely; the readers of Readers.h keep the rules that hosts rely on.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "support/Limits.h"
#include "syntax/Cursor.h"

namespace varnpdf {

enum class TokenKind { End, Broken, Name, String, HexString, DictOpen, DictClose, ArrayOpen, ArrayClose, Word };

struct Token {
    TokenKind kind = TokenKind::End;
    TextSpan span;
};

class Lexer {
public:
    explicit Lexer(std::string_view text, std::size_t at = 0) noexcept : text_(text), at_(at) {}

    /// The next token; End behind the last one, Broken (and then End) for a string that is not closed.
    Token next() noexcept;
    [[nodiscard]] std::size_t at() const noexcept { return at_; }
    void moveTo(std::size_t at) noexcept { at_ = at; }

private:
    void skipBlank() noexcept;
    Token literal() noexcept;
    Token word(TokenKind kind) noexcept;
    Token bracket(char c) noexcept;

    std::string_view text_;
    std::size_t at_;
};

/// The number of the reference ("12 0 R") at the lexer's place, which it then passes.
std::optional<int> takeReference(Lexer& lexer, std::string_view text) noexcept;
/// The value at the lexer's place, which it then passes: a reference is one value. Nothing at the end, at a closing
/// bracket, or when the value is not closed or nested too deep.
std::optional<TextSpan> takeValue(Lexer& lexer, std::string_view text, int nesting = limits::kNesting) noexcept;
/// The value that begins at `at`, behind blanks.
std::optional<TextSpan> valueAt(std::string_view text, std::size_t at, int nesting = limits::kNesting) noexcept;

/// Where the body of an object begins: behind "obj". 0 for a text without this header.
std::size_t bodyBegin(std::string_view object) noexcept;

struct DictionaryItem {
    TextSpan key;
    TextSpan value;
};
/// The dictionary that begins at `at`: its entries in order, and where its ">>" stands. Nothing when there is none or
/// it is damaged.
struct DictionaryText {
    std::vector<DictionaryItem> items;
    std::size_t close = 0;

    /// The entry with this key ("/Type"); of several the last.
    [[nodiscard]] const DictionaryItem* find(std::string_view text, std::string_view key) const noexcept;
};
std::optional<DictionaryText> readDictionary(std::string_view text, std::size_t at = 0);
/// The same for the text of an object.
std::optional<DictionaryText> readObjectDictionary(std::string_view object);

/// The value of a key in the dictionary of an object's text or at the start of a text, empty when there is none.
std::string_view valueOf(std::string_view text, std::string_view key);
/// `text` with the entry's value replaced, or with the entry added in a line of its own before the ">>".
std::optional<std::string> withDictionaryEntry(std::string_view text, std::string_view key, std::string_view value);

/// The bytes of the literal or hexadecimal string at the start of a text (ISO 32000-2 7.3.4).
std::optional<std::string> stringBytes(std::string_view text);
/// A literal string of these bytes, which every reader takes for them.
std::string literalString(std::string_view bytes);
/// A text string (ISO 32000-2 7.9.2.2) of UTF-8 text: PDFDocEncoding where Latin-1 will do, else UTF-16. Bytes that are
/// no UTF-8 stay as they are.
std::string textString(std::string_view utf8);

}  // namespace varnpdf
