// Values taken apart token by token.
#include "longterm/Values.h"

#include "syntax/Cursor.h"

namespace varnpdf::store {
namespace {

bool isBlank(char c) { return c == '\0' || isWhite(c); }

class Tokens {
public:
    explicit Tokens(std::string_view text, std::size_t at = 0) : text_(text), at_(at) {}

    [[nodiscard]] std::size_t at() const { return at_; }

    void skipBlanks() {
        while (at_ < text_.size()) {
            if (text_[at_] == '%') {
                while (at_ < text_.size() && !isEol(text_[at_])) ++at_;
            } else if (isBlank(text_[at_])) {
                ++at_;
            } else {
                return;
            }
        }
    }

    /// A string, name, number, keyword, bracket, "<<" or ">>"; nothing at the end, or for a string without one.
    std::optional<std::string_view> next() {
        skipBlanks();
        if (at_ >= text_.size()) return std::nullopt;
        const std::size_t begin = at_;
        const char first = text_[begin];
        const bool doubled = (first == '<' || first == '>') && text_.substr(begin + 1).starts_with(first);
        if (doubled) {
            at_ += 2;
        } else if (first == '(' || first == '<') {
            const std::size_t end = first == '(' ? literalEnd() : text_.find('>', begin);
            if (end == std::string_view::npos) return std::nullopt;
            at_ = end + 1;
        } else {
            ++at_;
            if (first == '/' || isRegular(first)) {
                while (at_ < text_.size() && text_[at_] != '\0' && isRegular(text_[at_])) ++at_;
            }
        }
        return text_.substr(begin, at_ - begin);
    }

    /// A whole value: a dictionary or array through its end, a reference with all its parts.
    std::optional<std::string_view> nextValue() {
        const auto first = next();
        if (!first) return std::nullopt;
        const auto begin = static_cast<std::size_t>(first->data() - text_.data());
        int depth = 0;
        for (std::optional<std::string_view> token = first; token; token = next()) {
            if (*token == "<<" || *token == "[") ++depth;
            if (*token == ">>" || *token == "]") --depth;
            if (depth > 0) continue;
            if (*token == *first) takeReference(*first);
            return text_.substr(begin, at_ - begin);
        }
        return std::nullopt;
    }

private:
    /// Behind a first number: the rest of a reference, when that is what follows.
    void takeReference(std::string_view first) {
        if (first.find_first_not_of(kDigits) != std::string_view::npos) return;
        Tokens ahead = *this;
        const auto generation = ahead.next();
        if (!generation || generation->find_first_not_of(kDigits) != std::string_view::npos) return;
        if (ahead.next() == "R") at_ = ahead.at_;
    }

    /// Offset of the parenthesis that closes the one here.
    [[nodiscard]] std::size_t literalEnd() const {
        int depth = 0;
        for (std::size_t at = at_; at < text_.size(); ++at) {
            const char c = text_[at];
            if (c == '\\') ++at;
            if (c == '(') ++depth;
            if (c == ')' && --depth == 0) return at;
        }
        return std::string_view::npos;
    }

    std::string_view text_;
    std::size_t at_;
};

std::string hexadecimalBytes(std::string_view digits) {
    std::string out;
    int high = -1;
    for (const char c : digits) {
        const int value = hexValue(c);
        if (value < 0) continue;
        if (high >= 0) out.push_back(static_cast<char>(16 * high + value));
        high = high >= 0 ? -1 : value;
    }
    if (high >= 0) out.push_back(static_cast<char>(16 * high));
    return out;
}

/// What stands behind a backslash (ISO 32000-2 table 3).
void appendEscape(std::string& out, Cursor& cursor) {
    constexpr std::string_view kLetters = "nrtbf";
    constexpr std::string_view kMeanings = "\n\r\t\b\f";
    unsigned octal = 0;
    int digits = 0;
    for (; digits < 3 && cursor.peek() >= '0' && cursor.peek() <= '7'; ++digits, cursor.advance()) {
        octal = octal * 8 + static_cast<unsigned>(cursor.peek() - '0');
    }
    if (digits > 0) {
        out.push_back(static_cast<char>(octal));
        return;
    }
    if (cursor.take("\r\n") || cursor.take('\r') || cursor.take('\n') || cursor.atEnd()) return;
    const std::size_t letter = kLetters.find(cursor.peek());
    out.push_back(letter == std::string_view::npos ? cursor.peek() : kMeanings[letter]);
    cursor.advance();
}

std::string literalBytes(std::string_view body) {
    std::string out;
    for (Cursor cursor(body); !cursor.atEnd();) {
        if (cursor.take('\\')) {
            appendEscape(out, cursor);
        } else if (cursor.take("\r\n") || cursor.take('\r')) {
            out.push_back('\n');
        } else {
            out.push_back(cursor.peek());
            cursor.advance();
        }
    }
    return out;
}

}  // namespace

const KeyValue* DictionaryText::find(std::string_view key) const {
    for (std::size_t i = entries.size(); i-- > 0;) {
        if (plainName(entries[i].key) == key) return &entries[i];
    }
    return nullptr;
}

std::string_view bodyOf(std::string_view object) {
    Tokens header(object);
    header.next();
    header.next();
    const auto keyword = header.next();
    Tokens body(object, keyword && keyword->starts_with("obj") ? header.at() + 3 - keyword->size() : 0);
    body.skipBlanks();
    return object.substr(body.at());
}

std::optional<DictionaryText> readDictionary(std::string_view text) {
    Tokens tokens(text);
    if (tokens.next() != "<<") return std::nullopt;
    DictionaryText found;
    for (auto key = tokens.next(); key; key = tokens.next()) {
        if (*key == ">>") {
            found.close = tokens.at() - 2;
            return found;
        }
        if (!key->starts_with('/')) continue;
        Tokens ahead = tokens;
        const bool empty = ahead.next() == ">>";
        const auto value = empty ? text.substr(tokens.at(), 0) : tokens.nextValue();
        if (!value) return std::nullopt;
        found.entries.push_back({*key, *value});
    }
    return std::nullopt;
}

std::optional<std::vector<std::string_view>> readItems(std::string_view text) {
    Tokens tokens(text);
    if (tokens.next() != "[") return std::nullopt;
    std::vector<std::string_view> items;
    while (const auto item = tokens.nextValue()) {
        if (*item == "]") return items;
        items.push_back(*item);
    }
    return std::nullopt;
}

std::optional<int> referenceIn(std::string_view value) {
    Tokens tokens(value);
    const auto reference = tokens.nextValue();
    if (!reference || !isDigit(reference->front()) || !reference->ends_with('R')) return std::nullopt;
    return Cursor(*reference).takeInt();
}

std::optional<std::string> stringBytes(std::string_view value) {
    const auto token = Tokens(value).next();
    if (!token || token->size() < 2) return std::nullopt;
    const std::string_view body = token->substr(1, token->size() - 2);
    if (token->starts_with('(')) return literalBytes(body);
    if (token->starts_with('<') && *token != "<<") return hexadecimalBytes(body);
    return std::nullopt;
}

std::string plainName(std::string_view name) {
    std::string out;
    for (std::size_t at = 0; at < name.size(); ++at) {
        const int high = name[at] == '#' && at + 2 < name.size() ? hexValue(name[at + 1]) : -1;
        const int low = high >= 0 ? hexValue(name[at + 2]) : -1;
        out.push_back(low >= 0 ? static_cast<char>(16 * high + low) : name[at]);
        if (low >= 0) at += 2;
    }
    return out;
}

}  // namespace varnpdf::store
