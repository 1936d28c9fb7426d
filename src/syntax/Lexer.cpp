// Tokens of PDF syntax.
#include "syntax/Lexer.h"

#include <algorithm>
#include <array>

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

bool isBlank(char c) noexcept { return kBlanks[static_cast<unsigned char>(c)]; }
bool isDelimiterByte(char c) noexcept { return kBrackets[static_cast<unsigned char>(c)]; }

std::optional<int> wholeNumber(std::string_view word) noexcept {
    if (word.empty() || word.find_first_not_of(kDigits) != kNone) return std::nullopt;
    return Cursor(word).takeInt();
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

Token Lexer::next() noexcept {
    skipBlank();
    if (at_ >= text_.size()) return {TokenKind::End, {text_.size(), text_.size()}};
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
            return {TokenKind::String, {begin, at_}};
        }
    }
    at_ = text_.size();
    return {TokenKind::Broken, {begin, at_}};
}

Token Lexer::word(TokenKind kind) noexcept {
    const std::size_t begin = at_++;
    while (at_ < text_.size() && !isBlank(text_[at_]) && !isDelimiterByte(text_[at_])) ++at_;
    return {kind, {begin, at_}};
}

Token Lexer::bracket(char c) noexcept {
    const std::size_t begin = at_++;
    const bool doubled = at_ < text_.size() && text_[at_] == c;
    if ((c == '<' || c == '>') && doubled) {
        ++at_;
        return {c == '<' ? TokenKind::DictOpen : TokenKind::DictClose, {begin, at_}};
    }
    if (c == '[' || c == ']') return {c == '[' ? TokenKind::ArrayOpen : TokenKind::ArrayClose, {begin, at_}};
    if (c != '<') return {TokenKind::Word, {begin, at_}};
    const std::size_t end = text_.find('>', at_);
    at_ = end == kNone ? text_.size() : end + 1;
    return {end == kNone ? TokenKind::Broken : TokenKind::HexString, {begin, at_}};
}

std::optional<int> takeReference(Lexer& lexer, std::string_view text) noexcept {
    const std::size_t before = lexer.at();
    const Token first = lexer.next();
    const auto number = first.kind == TokenKind::Word ? wholeNumber(first.span.of(text)) : std::nullopt;
    if (number) {
        const Token second = lexer.next();
        if (second.kind == TokenKind::Word && wholeNumber(second.span.of(text)) && lexer.next().span.of(text) == "R") {
            return number;
        }
    }
    lexer.moveTo(before);
    return std::nullopt;
}

std::optional<TextSpan> takeValue(Lexer& lexer, std::string_view text, int nesting) noexcept {
    Token token = lexer.next();
    const std::size_t begin = token.span.begin;
    if (token.kind == TokenKind::Word) {
        lexer.moveTo(begin);
        if (!takeReference(lexer, text)) lexer.next();
        return TextSpan{begin, lexer.at()};
    }
    for (int open = 0;; token = lexer.next()) {
        switch (token.kind) {
            case TokenKind::DictOpen:
            case TokenKind::ArrayOpen:
                if (++open > nesting) return std::nullopt;
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
        if (open == 0) return TextSpan{begin, lexer.at()};
    }
}

std::optional<TextSpan> valueAt(std::string_view text, std::size_t at, int nesting) noexcept {
    Lexer lexer(text, at);
    return takeValue(lexer, text, nesting);
}

std::size_t bodyBegin(std::string_view object) noexcept {
    Lexer lexer(object);
    if (!wholeNumber(lexer.next().span.of(object)) || !wholeNumber(lexer.next().span.of(object))) return 0;
    const std::string_view keyword = lexer.next().span.of(object);
    // "obj" may be followed by a number or name without a blank.
    return keyword.starts_with("obj") ? lexer.at() - (keyword.size() - 3) : 0;
}

const DictionaryItem* DictionaryText::find(std::string_view text, std::string_view key) const noexcept {
    for (auto item = items.rbegin(); item != items.rend(); ++item) {
        if (item->key.of(text) == key) return &*item;
    }
    return nullptr;
}

std::optional<DictionaryText> readDictionary(std::string_view text, std::size_t at) {
    Lexer lexer(text, at);
    if (lexer.next().kind != TokenKind::DictOpen) return std::nullopt;
    DictionaryText dictionary;
    for (;;) {
        const Token key = lexer.next();
        if (key.kind == TokenKind::DictClose) {
            dictionary.close = key.span.begin;
            return dictionary;
        }
        if (key.kind != TokenKind::Name) return std::nullopt;
        const std::size_t behindKey = lexer.at();
        if (lexer.next().kind == TokenKind::DictClose) {  // a key without value at the end
            dictionary.items.push_back({key.span, {behindKey, behindKey}});
            lexer.moveTo(behindKey);
            continue;
        }
        lexer.moveTo(behindKey);
        const auto value = takeValue(lexer, text);
        if (!value) return std::nullopt;
        dictionary.items.push_back({key.span, *value});
    }
}

std::optional<DictionaryText> readObjectDictionary(std::string_view object) {
    return readDictionary(object, bodyBegin(object));
}

std::string_view valueOf(std::string_view text, std::string_view key) {
    const auto dictionary = readObjectDictionary(text);
    const DictionaryItem* const item = dictionary ? dictionary->find(text, key) : nullptr;
    return item == nullptr ? std::string_view{} : item->value.of(text);
}

std::optional<std::string> withDictionaryEntry(std::string_view text, std::string_view key, std::string_view value) {
    const auto dictionary = readObjectDictionary(text);
    if (!dictionary) return std::nullopt;
    std::string out(text);
    const DictionaryItem* const item = dictionary->find(text, key);
    if (item != nullptr) {
        const bool glued = item->value.begin == item->key.end;
        out.replace(item->value.begin, item->value.size(), (glued ? " " : "") + std::string(value));
    } else {
        out.insert(dictionary->close, std::string(key) + " " + std::string(value) + "\r\n");
    }
    return out;
}

namespace {

// What a backslash in front of text[at] stands for; `at` moves behind it.
void takeEscape(std::string_view text, std::size_t& at, std::string& out) {
    constexpr std::string_view kLetters = "nrtbf";
    constexpr std::string_view kMeanings = "\n\r\t\b\f";
    const char c = text[at++];
    if (c >= '0' && c <= '7') {
        int value = c - '0';
        for (int i = 0; i < 2 && at < text.size() && text[at] >= '0' && text[at] <= '7'; ++i) {
            value = value * 8 + (text[at++] - '0');
        }
        out.push_back(static_cast<char>(value & 0xff));
    } else if (c == '\r') {
        if (at < text.size() && text[at] == '\n') ++at;
    } else if (const std::size_t letter = kLetters.find(c); letter != kNone) {
        out.push_back(kMeanings[letter]);
    } else if (c != '\n') {
        out.push_back(c);
    }
}

std::string literalBytes(std::string_view body) {
    std::string out;
    for (std::size_t at = 0; at < body.size();) {
        const char c = body[at++];
        if (c == '\\') {
            if (at < body.size()) takeEscape(body, at, out);
        } else if (c == '\r') {  // every line end inside a string reads as a line feed
            if (at < body.size() && body[at] == '\n') ++at;
            out.push_back('\n');
        } else {
            out.push_back(c);
        }
    }
    return out;
}

std::string hexBytes(std::string_view body) {
    std::string out;
    int high = -1;
    for (const char c : body) {
        const int digit = hexValue(c);
        if (digit < 0) continue;
        if (high >= 0) out.push_back(static_cast<char>(high << 4 | digit));
        high = high >= 0 ? -1 : digit;
    }
    if (high >= 0) out.push_back(static_cast<char>(high << 4));
    return out;
}

// The next character of well-formed UTF-8; nothing where it is not well-formed.
std::optional<char32_t> takeUtf8(std::string_view text, std::size_t& at) {
    constexpr char32_t kLowest[] = {0, 0x80, 0x800, 0x10000};
    const auto first = static_cast<unsigned char>(text[at++]);
    if (first < 0x80) return first;
    const std::size_t more = first >= 0xf0 ? 3 : first >= 0xe0 ? 2 : 1;
    if (first < 0xc2 || first > 0xf4 || at + more > text.size()) return std::nullopt;
    char32_t c = first & (0x3fU >> more);
    for (std::size_t i = 0; i < more; ++i) {
        const auto next = static_cast<unsigned char>(text[at++]);
        if ((next & 0xc0U) != 0x80) return std::nullopt;
        c = c << 6U | (next & 0x3fU);
    }
    const bool surrogate = c >= 0xd800 && c <= 0xdfff;
    return c < kLowest[more] || c > 0x10ffff || surrogate ? std::nullopt : std::optional<char32_t>(c);
}

void appendUnit(std::string& out, char32_t unit) {
    out.push_back(static_cast<char>(unit >> 8U & 0xffU));
    out.push_back(static_cast<char>(unit & 0xffU));
}

}  // namespace

std::optional<std::string> stringBytes(std::string_view text) {
    const Token token = Lexer(text).next();
    const std::string_view body = token.span.of(text);
    if (token.kind == TokenKind::String) return literalBytes(body.substr(1, body.size() - 2));
    if (token.kind == TokenKind::HexString) return hexBytes(body.substr(1, body.size() - 2));
    return std::nullopt;
}

std::string literalString(std::string_view bytes) {
    // Readers that seek the end of an object by its keyword must not find it in a string.
    constexpr std::string_view kEndObj = "endobj";
    std::string out = "(";
    for (std::size_t at = 0; at < bytes.size(); ++at) {
        const char c = bytes[at];
        if (c == '\r') {
            out += "\\r";
        } else if (c == 'e' && bytes.substr(at).starts_with(kEndObj)) {
            out += "\\145";
        } else {
            if (c == '(' || c == ')' || c == '\\') out.push_back('\\');
            out.push_back(c);
        }
    }
    out.push_back(')');
    return out;
}

std::string textString(std::string_view utf8) {
    std::string latin;
    std::string wide = "\xfe\xff";
    bool isLatin = true;
    for (std::size_t at = 0; at < utf8.size();) {
        const auto c = takeUtf8(utf8, at);
        if (!c) return std::string(utf8);
        // PDFDocEncoding has other characters, or none, at 0x18 to 0x1f, 0x7f to 0xa0 and 0xad.
        isLatin = isLatin && (*c < 0x18 || (*c > 0x1f && *c < 0x7f) || (*c > 0xa0 && *c < 0x100 && *c != 0xad));
        if (isLatin) latin.push_back(static_cast<char>(*c));
        if (*c < 0x10000) {
            appendUnit(wide, *c);
        } else {
            appendUnit(wide, 0xd800 + ((*c - 0x10000) >> 10U));
            appendUnit(wide, 0xdc00 + ((*c - 0x10000) & 0x3ffU));
        }
    }
    // Latin-1 text that begins like a byte order mark would be read as UTF-16 or UTF-8.
    const bool misleading =
        latin.starts_with("\xfe\xff") || latin.starts_with("\xff\xfe") || latin.starts_with("\xef\xbb\xbf");
    return isLatin && !misleading ? latin : wide;
}

}  // namespace varnpdf
