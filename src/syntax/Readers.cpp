// Readers of PDF objects. They recurse through the nesting only; every loop moves on by what was read.
#include <algorithm>
#include <cfloat>
#include <charconv>

#include "syntax/Readers.h"
#include "syntax/Reference.h"

namespace varnpdf {

namespace {

bool equalsNoCase(std::string_view text, std::string_view lower) noexcept {
    return std::ranges::equal(text, lower, [](char c, char want) {
        return (c >= 'A' && c <= 'Z' ? static_cast<char>(c | 0x20) : c) == want;
    });
}

/// Tells for a real that no double can hold whether it is too large or too small: by where its first digit other than
/// zero stands.
bool isHuge(std::string_view digits) noexcept {
    const std::size_t end = std::min(digits.find_first_not_of("0123456789."), digits.size());
    const auto first = static_cast<long>(digits.find_first_not_of("0."));
    const auto point = static_cast<long>(std::min(digits.find('.'), end));
    long magnitude = point - first;
    if (end < digits.size() && (digits[end] | 0x20) == 'e') {
        magnitude += Cursor(digits, end + 1).takeInt().value_or(0);
    }
    return magnitude > 0;
}

/// What strtod() makes of a token in the "C" locale, limited to the range of float. The bytes a token may begin with
/// leave out the hexadecimal forms, infinities and NaNs.
float toReal(std::string_view token) noexcept {
    const bool plus = token.starts_with('+');
    if (plus) token.remove_prefix(1);
    const bool minus = token.starts_with('-');
    if (plus && minus) return 0;
    double value = 0;
    const auto result = std::from_chars(token.data(), token.data() + token.size(), value);
    if (result.ec == std::errc::result_out_of_range) {
        if (minus) token.remove_prefix(1);
        value = isHuge(token) ? (minus ? -DBL_MAX : DBL_MAX) : 0;
    }
    return static_cast<float>(std::clamp(value, -double{FLT_MAX}, double{FLT_MAX}));
}

std::size_t readStream(std::string_view text, std::size_t dictEnd) noexcept {
    const std::size_t end = text.find("endstream", dictEnd);
    // The byte in front of the keyword, the line end of a stream, is no part of the length that hosts are given.
    return end == std::string_view::npos ? 0 : end - 1;
}

/// The object that begins with the first byte of the text; `end` is 0 when it cannot be read.
ObjectToken readHere(std::string_view text, int nesting) noexcept {
    if (text.empty()) return {};
    if (equalsNoCase(text, "true") || equalsNoCase(text, "false")) return {ObjectKind::Boolean, text.size()};
    if (const auto reference = readReference(text)) return {ObjectKind::Reference, reference->end};
    if (const auto number = readNumber(text)) return {ObjectKind::Number, number->end};
    if (isDict(text)) {
        const auto dict = readDict(text, nesting);
        if (!dict) return {ObjectKind::Dictionary};
        if (!text.substr(dict->end).starts_with("stream")) return {ObjectKind::Dictionary, dict->end};
        return {ObjectKind::Stream, readStream(text, dict->end)};
    }
    if (text.front() == '(' || (text.front() == '<' && !text.starts_with("<<"))) {
        const auto string = readString(text);
        return {ObjectKind::String, string ? string->end : 0};
    }
    if (text.front() == '/') {
        return {ObjectKind::Name, Cursor(text, 1).takeUntil(kIsWhite | kIsDelimiter).end};
    }
    if (isArray(text)) {
        const auto array = readArray(text, nesting);
        return {ObjectKind::Array, array ? array->end : 0};
    }
    if (equalsNoCase(text.substr(0, 4), "null")) return {ObjectKind::Null, 4};
    return {};
}

}  // namespace

std::size_t skipWhitespaces(std::string_view text) noexcept { return Cursor(text).skipWhite(); }

bool onlyDecimalDigits(std::string_view token) noexcept {
    return std::ranges::all_of(token.substr(0, (token.size() + 1) / 2),
                               [](char c) { return isClass(c, kIsNumberByte); });
}

std::optional<NumberToken> readNumber(std::string_view text, std::size_t skipBound) noexcept {
    const std::size_t bound = std::min(skipBound, text.size());
    const std::size_t begin = skipWhitespaces(text.substr(0, bound));
    if (begin == bound) return std::nullopt;
    const TextSpan span = Cursor(text, begin).takeUntil(kIsWhite | kIsDelimiter);
    const std::string_view token = span.of(text);
    if (token.empty() || !onlyDecimalDigits(token)) return std::nullopt;
    NumberToken number;
    number.end = span.end;
    number.isFloat = token.find('.') != std::string_view::npos;
    if (number.isFloat) {
        number.real = toReal(token);
    } else {
        number.integer = Cursor(token).takeInt().value_or(0);
    }
    return number;
}

std::optional<ObjectToken> readObject(std::string_view text, int nesting, ObjectKind* attempted) noexcept {
    const std::size_t begin = skipWhitespaces(text);
    ObjectToken token = readHere(text.substr(begin), nesting);
    if (attempted != nullptr) *attempted = token.kind;
    if (token.end == 0) return std::nullopt;
    token.begin = begin;
    token.end += begin;
    return token;
}

std::optional<StringToken> readString(std::string_view text) noexcept {
    const std::size_t begin = skipWhitespaces(text);
    const std::string_view rest = text.substr(begin);
    if (rest.starts_with('<')) {
        const std::size_t close = text.find('>', begin);
        if (close == std::string_view::npos) return std::nullopt;
        return StringToken{true, close + 1, begin};
    }
    if (!rest.starts_with('(')) return std::nullopt;
    std::size_t depth = 1;
    for (std::size_t at = begin + 1; at < text.size(); ++at) {
        // One byte back only: the second backslash of a pair escapes as well.
        if (text[at - 1] == '\\') continue;
        if (text[at] == '(') ++depth;
        if (text[at] == ')' && --depth == 0) return StringToken{false, at + 1, begin};
    }
    return std::nullopt;
}

std::optional<TextSpan> readArray(std::string_view text, int nesting) noexcept {
    Cursor in(text);
    in.skipWhite();
    const std::size_t begin = in.at();
    if (nesting < 1 || !in.take('[')) return std::nullopt;
    do {
        const auto element = readObject(in.rest(), nesting - 1);
        if (!element) return std::nullopt;
        in.advance(element->end);
        in.skipWhite();
    } while (!in.take(']'));
    return TextSpan{begin, in.at()};
}

std::optional<TextSpan> readDict(std::string_view text, int nesting) noexcept {
    const std::size_t begin = text.find("<<");
    if (nesting < 1 || begin == std::string_view::npos) return std::nullopt;
    Cursor in(text, begin + 2);
    for (;;) {
        const auto object = readObject(in.rest(), nesting - 1);
        if (!object) return std::nullopt;
        in.advance(object->end);
        in.skipWhite();
        if (!in.take('>')) continue;
        in.skipWhite();
        if (in.take('>')) return TextSpan{begin, in.at()};
    }
}

std::optional<TextSpan> readArrayElement(std::string_view text, std::size_t index) noexcept {
    Cursor in(text, std::min(text.find_first_of(kNumberBytes), text.size()));
    for (;; --index) {
        const auto element = readObject(in.rest());
        if (!element) return std::nullopt;
        if (index == 0) return TextSpan{in.at() + element->begin, in.at() + element->end};
        in.advance(element->end);
    }
}

std::optional<DictEntry> readDictEntry(std::string_view text, std::string_view key) noexcept {
    const std::size_t open = text.find("<<");
    if (open == std::string_view::npos) return std::nullopt;
    Cursor in(text, open + 2);
    for (;;) {
        const auto object = readObject(in.rest());
        if (!object) return std::nullopt;
        const TextSpan span{in.at() + object->begin, in.at() + object->end};
        in.advance(object->end);
        if (object->kind != ObjectKind::Name) continue;
        if (const std::string_view name = span.of(text); name != key && name.substr(1) != key) continue;
        if (const auto value = readObject(in.rest())) {
            return DictEntry{span.begin, TextSpan{in.at() + value->begin, in.at() + value->end}};
        }
        in.skipWhite();
        if (!in.take(">>")) return std::nullopt;
        return DictEntry{span.begin, TextSpan{span.end, span.end}};
    }
}

bool isArray(std::string_view text) noexcept {
    return text.size() >= 2 && text.substr(skipWhitespaces(text)).starts_with('[');
}

bool isDict(std::string_view text) noexcept {
    return text.size() >= 3 && text.substr(skipWhitespaces(text)).starts_with("<<");
}

bool isTrailerDict(std::string_view text) noexcept { return text.substr(skipWhitespaces(text)).starts_with("xref"); }

std::optional<TextSpan> readTrailerDict(std::string_view text) noexcept {
    constexpr std::string_view kKeyword = "trailer";
    if (!isTrailerDict(text)) return std::nullopt;
    const std::size_t keyword = text.find(kKeyword, skipWhitespaces(text));
    if (keyword == std::string_view::npos) return std::nullopt;
    Cursor in(text, keyword + kKeyword.size());
    in.skipWhite();
    std::size_t begin = 0;
    std::size_t depth = 0;
    // Every byte that equals the one in front counts, so that a run of three is two steps.
    for (std::size_t at = in.at() + 1; at < text.size(); ++at) {
        if (text[at] != text[at - 1]) continue;
        if (text[at] == '<' && depth++ == 0) begin = at - 1;
        if (text[at] != '>') continue;
        if (depth == 0) return std::nullopt;
        if (--depth == 0) return TextSpan{begin, at + 1};
    }
    return std::nullopt;
}

TextSpan objectContent(std::string_view text) noexcept {
    const std::size_t keyword = text.find("obj");
    if (keyword == std::string_view::npos) return {};
    Cursor in(text, keyword + 3);
    in.skipWhite();
    return TextSpan{in.at(), std::min(text.find("endobj", in.at()), text.size())};
}

NumberCount countNumbers(std::string_view text) noexcept {
    Cursor in(text, std::min(text.find_first_of(kNumberBytes), text.size()));
    for (NumberCount numbers;; ++numbers.count) {
        const auto number = readNumber(in.rest());
        if (!number) return numbers;
        in.advance(number->end);
        in.skipWhite();
        if (in.atEnd() || in.peek() == ']') return {true, numbers.count + 1};
    }
}

std::string escapeLiteral(std::string_view text) {
    std::string escaped;
    escaped.reserve(text.size() + 16);
    char before = '\\';
    for (const char c : text) {
        if ((c == '(' || c == ')' || c == '\\') && before != '\\') escaped += '\\';
        escaped += c;
        before = c;
    }
    return escaped;
}

std::string unescapeLiteral(std::string_view text) {
    std::string plain(text);
    std::erase(plain, '\\');
    return plain;
}

}  // namespace varnpdf
