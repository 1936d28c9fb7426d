// Reading and editing dictionaries token by token.
#include "forms/Dictionary.h"

#include <algorithm>
#include <charconv>

#include "support/Text.h"
#include "syntax/CharClass.h"

namespace varnpdf {
namespace {

constexpr std::size_t kNone = std::string_view::npos;
constexpr std::size_t kMostNumbers = 256;  // the widths of a simple font; no other array here has more
constexpr std::string_view kBlank("\0\t\n\f\r ", 6);
constexpr std::string_view kEnds("\0\t\n\f\r ()<>[]{}/%", 16);

bool isNumber(std::string_view token) {
    return std::all_of(token.begin(), token.end(), [](char c) { return isDigit(c); });
}

// What a backslash in front of text[at] makes; moves behind it.
void takeEscape(std::string_view text, std::size_t& at, std::string& out) {
    constexpr std::string_view kLetters = "nrtbf";
    constexpr std::string_view kMeanings = "\n\r\t\b\f";
    const char c = text[at++];
    if (c >= '0' && c <= '7') {
        auto value = static_cast<unsigned>(c - '0');
        for (int i = 0; i < 2 && at < text.size() && text[at] >= '0' && text[at] <= '7'; ++i) {
            value = value * 8 + static_cast<unsigned>(text[at++] - '0');
        }
        out.push_back(static_cast<char>(value & 0xFFU));
    } else if (c == '\r') {
        if (at < text.size() && text[at] == '\n') ++at;
    } else if (const std::size_t letter = kLetters.find(c); letter != kNone) {
        out.push_back(kMeanings[letter]);
    } else if (c != '\n') {
        out.push_back(c);
    }
}

std::optional<std::string> literalBytes(std::string_view text) {
    std::string out;
    int depth = 1;
    for (std::size_t at = 1; at < text.size();) {
        const char c = text[at++];
        if (c == '\\') {
            if (at < text.size()) takeEscape(text, at, out);
            continue;
        }
        if (c == '(') ++depth;
        if (c == ')' && --depth == 0) return out;
        // Every line end inside a string reads as a line feed (ISO 32000-2 7.3.4.2).
        if (c == '\r' && at < text.size() && text[at] == '\n') ++at;
        out.push_back(c == '\r' ? '\n' : c);
    }
    return std::nullopt;
}

std::optional<std::string> hexBytes(std::string_view text) {
    std::string out;
    int high = -1;
    for (std::size_t at = 1; at < text.size(); ++at) {
        if (text[at] == '>') {
            if (high >= 0) out.push_back(static_cast<char>(high * 16));
            return out;
        }
        const int digit = hexValue(text[at]);
        if (digit < 0) continue;
        if (high >= 0) out.push_back(static_cast<char>(high * 16 + digit));
        high = high >= 0 ? -1 : digit;
    }
    return std::nullopt;
}

// A reader of what stands behind the "<<" of the first dictionary, or at the end of a text without one.
Tokens dictionaryTokens(std::string_view text) {
    const std::string_view value = objectValue(text);
    if (!value.starts_with("<<")) return Tokens(text, text.size());
    return Tokens(text, static_cast<std::size_t>(value.data() - text.data()) + 2);
}

}  // namespace

void Tokens::skipBlanks() {
    for (;;) {
        at_ = std::min(text_.find_first_not_of(kBlank, at_), text_.size());
        if (!text_.substr(at_).starts_with('%')) return;
        at_ = std::min(text_.find_first_of("\r\n", at_), text_.size());
    }
}

std::size_t Tokens::stringEnd() const {
    if (text_[at_] == '<') {
        const std::size_t end = text_.find('>', at_);
        return end == kNone ? end : end + 1;
    }
    std::size_t open = 0;
    for (std::size_t i = at_; i < text_.size(); ++i) {
        if (text_[i] == '\\') {
            ++i;
        } else if (text_[i] == '(') {
            ++open;
        } else if (text_[i] == ')' && --open == 0) {
            return i + 1;
        }
    }
    return kNone;
}

std::optional<std::string_view> Tokens::next() {
    skipBlanks();
    if (at_ >= text_.size()) return std::nullopt;
    const std::string_view rest = text_.substr(at_);
    std::size_t end = 0;
    if (rest.starts_with("<<") || rest.starts_with(">>")) {
        end = at_ + 2;
    } else if (rest.front() == '(' || rest.front() == '<') {
        end = stringEnd();
        if (end == kNone) return std::nullopt;
    } else {
        end = at_ + 1;
        if (kEnds.find(rest.front()) == kNone || rest.front() == '/') {
            end = std::min(text_.find_first_of(kEnds, end), text_.size());
        }
    }
    const std::string_view token = text_.substr(at_, end - at_);
    at_ = end;
    return token;
}

// Where "12 0 R" ends whose first number has been taken.
std::optional<std::size_t> Tokens::referenceEnd() const {
    Tokens ahead = *this;
    const auto generation = ahead.next();
    if (!generation || !isNumber(*generation)) return std::nullopt;
    return ahead.next() == "R" ? std::optional(ahead.at_) : std::nullopt;
}

std::optional<std::string_view> Tokens::nextValue() {
    const auto first = next();
    if (!first) return std::nullopt;
    const auto begin = static_cast<std::size_t>(first->data() - text_.data());
    if (isNumber(*first)) at_ = referenceEnd().value_or(at_);
    int depth = *first == "<<" || *first == "[" ? 1 : 0;
    while (depth > 0) {
        const auto token = next();
        if (!token) return std::nullopt;
        if (*token == "<<" || *token == "[") ++depth;
        if (*token == ">>" || *token == "]") --depth;
    }
    return text_.substr(begin, at_ - begin);
}

std::string_view objectValue(std::string_view object) {
    Tokens plain(object);
    Tokens header(object);
    header.next();
    header.next();
    return (header.next() == "obj" ? header : plain).nextValue().value_or(std::string_view{});
}

Dictionary::Dictionary(std::string_view text) {
    Tokens tokens = dictionaryTokens(text);
    for (;;) {
        const auto key = tokens.next();
        if (!key || !key->starts_with('/')) return;
        const auto value = tokens.nextValue();
        if (!value || *value == ">>") return;
        entries_.push_back({*key, *value});
    }
}

std::string_view Dictionary::find(std::string_view key) const {
    std::string_view found;
    for (const Entry& entry : entries_) {
        const bool plain = entry.key.find('#') == kNone;
        if (plain ? entry.key.substr(1) == key : nameOf(entry.key) == key) found = entry.value;
    }
    return found == "null" ? std::string_view{} : found;
}

std::string withEntry(std::string_view text, std::string_view key, std::string_view value) {
    const Tokens start = dictionaryTokens(text);
    Tokens tokens = start;
    std::string out(text.substr(0, start.at()));
    std::size_t kept = start.at();
    bool written = value.empty();
    for (;;) {
        const auto name = tokens.next();
        if (!name || !name->starts_with('/')) break;
        if (!tokens.nextValue()) break;
        if (nameOf(*name) != key) continue;
        append(out, text.substr(kept, static_cast<std::size_t>(name->data() - text.data()) - kept));
        if (!written) append(out, '/', key, ' ', value);
        written = true;
        kept = tokens.at();
    }
    if (!written && start.at() < text.size()) {
        // A dictionary that is not closed is left alone: what belongs to it is anybody's guess.
        const bool closed = tokens.at() >= 2 && text.substr(tokens.at() - 2, 2) == ">>";
        if (!closed) return std::string(text);
        append(out, text.substr(kept, tokens.at() - 2 - kept));
        append(out, isEol(out.back()) ? "" : "\r\n", '/', key, ' ', value, "\r\n");
        kept = tokens.at() - 2;
    }
    append(out, text.substr(kept));
    return out;
}

std::string nameOf(std::string_view value) {
    std::string out;
    if (!value.starts_with('/')) return out;
    for (std::size_t at = 1; at < value.size() && kEnds.find(value[at]) == kNone; ++at) {
        const bool escaped =
            value[at] == '#' && at + 2 < value.size() && hexValue(value[at + 1]) >= 0 && hexValue(value[at + 2]) >= 0;
        out.push_back(escaped ? static_cast<char>(hexValue(value[at + 1]) * 16 + hexValue(value[at + 2])) : value[at]);
        if (escaped) at += 2;
    }
    return out;
}

std::optional<std::string> stringOf(std::string_view value) {
    if (value.starts_with('(')) return literalBytes(value);
    if (value.starts_with('<') && !value.starts_with("<<")) return hexBytes(value);
    return std::nullopt;
}

std::optional<double> numberOf(std::string_view value) {
    if (value.starts_with('+')) value.remove_prefix(1);
    double number = 0;
    const auto [end, error] =
        std::from_chars(value.data(), value.data() + value.size(), number, std::chars_format::fixed);
    if (error != std::errc() || end == value.data()) return std::nullopt;
    // "inf" and "nan" are no numbers in PDF; what is beyond any page is of no use either.
    constexpr double kMost = 1e9;
    return number >= -kMost && number <= kMost ? std::optional(number) : std::nullopt;
}

std::vector<double> numbersOf(std::string_view array) {
    std::vector<double> out;
    Tokens tokens(array);
    if (tokens.next() != "[") return out;
    while (const auto token = tokens.next()) {
        const auto number = numberOf(*token);
        if (!number || out.size() == kMostNumbers) break;
        out.push_back(*number);
    }
    return out;
}

std::optional<int> referenceOf(std::string_view value) {
    if (!value.ends_with('R')) return std::nullopt;
    int number = 0;
    const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), number);
    if (error != std::errc() || end == value.data() + value.size() || number < 1) return std::nullopt;
    return number;
}

}  // namespace varnpdf
