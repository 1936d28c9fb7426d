// Tokens and values of PDF syntax by the letter of ISO 32000-2 7.2 and 7.3: comments, nested parentheses and escapes
// are known. For text that is to be understood or copied completely; the readers of Readers.h keep the rules that hosts
// rely on.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace varnpdf {

enum class TokenKind { End, Broken, Name, String, HexString, DictOpen, DictClose, ArrayOpen, ArrayClose, Word };

struct Token {
    TokenKind kind = TokenKind::End;
    std::size_t begin = 0;  ///< offset in the lexer's text
    std::string_view text;

    [[nodiscard]] std::size_t end() const noexcept { return begin + text.size(); }
    /// There is one, and it is whole.
    explicit operator bool() const noexcept { return kind != TokenKind::End && kind != TokenKind::Broken; }
};

/// Reads a text from front to back; the views are those of the text.
class Lexer {
public:
    explicit Lexer(std::string_view text, std::size_t at = 0) noexcept : text_(text), at_(at) {}

    /// The next token; End behind the last one, Broken (and then End) for a string that is not closed.
    Token next() noexcept;
    /// The next value: a dictionary or array through its end, a reference with all its parts. Nothing at the end, at a
    /// closing bracket, which is passed, or when the value is not closed or nested deeper than limits::kNesting.
    std::optional<std::string_view> nextValue() noexcept;
    /// The number of the reference ("12 0 R") that comes next; what is none is not passed.
    std::optional<int> nextReference() noexcept;

    [[nodiscard]] std::size_t at() const noexcept { return at_; }
    [[nodiscard]] bool atEnd() const noexcept { return at_ >= text_.size(); }
    void moveTo(std::size_t at) noexcept { at_ = at; }

private:
    void skipBlank() noexcept;
    Token token(TokenKind kind, std::size_t begin) const noexcept;
    Token literal() noexcept;
    Token word(TokenKind kind) noexcept;
    Token bracket(char c) noexcept;

    std::string_view text_;
    std::size_t at_;
};

}  // namespace varnpdf
