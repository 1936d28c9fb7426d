// Tokens of PDF syntax.
#include "syntax/Lexer.h"

#include <algorithm>
#include <array>

#include "support/Limits.h"
#include "syntax/Cursor.h"

namespace varnpdf {
namespace {

constexpr std::size_t kNone = std::string_view::npos;

// White space here is that of ISO 32000-2 table 1: with NUL and without BEL.
constexpr std::array<bool, 256> byteTable(std::string_view bytes) {
    std::array<bool, 256> table{};
    for (const char c : bytes) table[static_cast<unsigned char>(c)] = true;
    return table;
}
constexpr auto kBlanks = byteTable(std::string_view("\0\t\n\f\r ", 6));
constexpr auto kBrackets = byteTable(kDelimiters);
constexpr auto kWordEnds = byteTable(std::string_view("\0\t\n\f\r ()<>[]{}/%", 16));

bool isBlank(char c) noexcept { return kBlanks[static_cast<unsigned char>(c)]; }
bool isDelimiterByte(char c) noexcept { return kBrackets[static_cast<unsigned char>(c)]; }

std::optional<int> wholeNumber(const Token& token) noexcept {
    const bool digits = token.kind == TokenKind::Word && std::ranges::all_of(token.text, isDigit);
    return digits ? Cursor(token.text).takeInt() : std::nullopt;
}

}  // namespace

void Lexer::skipBlank() noexcept {
    for (; at_ < text_.size(); ++at_) {
        if (text_[at_] == '%') {
            at_ = std::min(text_.find_first_of("\r\n", at_), text_.size());
            if (at_ == text_.size()) return;
        } else if (!isBlank(text_[at_])) {
            return;
        }
    }
}

Token Lexer::token(TokenKind kind, std::size_t begin) const noexcept {
    return {kind, begin, text_.substr(begin, at_ - begin)};
}

Token Lexer::next() noexcept {
    skipBlank();
    if (at_ >= text_.size()) return {TokenKind::End, text_.size(), {}};
    const char c = text_[at_];
    if (c == '(') return literal();
    if (c == '/') return word(TokenKind::Name);
    return isDelimiterByte(c) ? bracket(c) : word(TokenKind::Word);
}

Token Lexer::literal() noexcept {
    const std::size_t begin = at_;
    int open = 0;
    while ((at_ = text_.find_first_of("()\\", at_)) != kNone) {
        const char c = text_[at_++];
        if (c == '\\') {
            ++at_;
        } else if (c == '(') {
            ++open;
        } else if (--open == 0) {
            return token(TokenKind::String, begin);
        }
    }
    at_ = text_.size();
    return token(TokenKind::Broken, begin);
}

Token Lexer::word(TokenKind kind) noexcept {
    const std::size_t begin = at_++;
    while (at_ < text_.size() && !kWordEnds[static_cast<unsigned char>(text_[at_])]) ++at_;
    return token(kind, begin);
}

Token Lexer::bracket(char c) noexcept {
    const std::size_t begin = at_++;
    const bool doubled = at_ < text_.size() && text_[at_] == c;
    if ((c == '<' || c == '>') && doubled) {
        ++at_;
        return token(c == '<' ? TokenKind::DictOpen : TokenKind::DictClose, begin);
    }
    if (c == '[' || c == ']') return token(c == '[' ? TokenKind::ArrayOpen : TokenKind::ArrayClose, begin);
    if (c != '<') return token(TokenKind::Word, begin);
    const std::size_t end = text_.find('>', at_);
    at_ = end == kNone ? text_.size() : end + 1;
    return token(end == kNone ? TokenKind::Broken : TokenKind::HexString, begin);
}

std::optional<int> Lexer::nextReference() noexcept {
    const std::size_t before = at_;
    const auto number = wholeNumber(next());
    if (number && wholeNumber(next()) && next().text == "R") return number;
    at_ = before;
    return std::nullopt;
}

std::optional<std::string_view> Lexer::nextValue() noexcept {
    Token token = next();
    const std::size_t begin = token.begin;
    if (token.kind == TokenKind::Word) {
        const std::size_t behindWord = at_;
        at_ = begin;
        if (!isDigit(text_[begin]) || !nextReference()) at_ = behindWord;
        return text_.substr(begin, at_ - begin);
    }
    for (int open = 0;; token = next()) {
        switch (token.kind) {
            case TokenKind::DictOpen:
            case TokenKind::ArrayOpen:
                if (++open > limits::kNesting) return std::nullopt;
                break;
            case TokenKind::DictClose:
            case TokenKind::ArrayClose:
                if (--open < 0) return std::nullopt;
                break;
            case TokenKind::End:
            case TokenKind::Broken:
                return std::nullopt;
            default:
                break;
        }
        if (open == 0) return text_.substr(begin, at_ - begin);
    }
}

}  // namespace varnpdf
