// References, arrays of references and what surrounds them.
#include <algorithm>

#include "syntax/Readers.h"
#include "syntax/Reference.h"

namespace varnpdf {

std::optional<ObjectRef> scanReference(std::string_view text) noexcept {
    Cursor in(text);
    const auto number = in.takeInt();
    const auto generation = number ? in.takeInt() : std::nullopt;
    if (!generation) return std::nullopt;
    return ObjectRef{*number, *generation};
}

std::optional<ScannedReference> scanLenientReference(std::string_view text) noexcept {
    if (text.find('[') != std::string_view::npos && text.find(']') != std::string_view::npos) return std::nullopt;
    Cursor in(text);
    in.skip(kIsCSpace);
    if (in.takeUntil(kIsCSpace).size() == 0) return std::nullopt;
    const auto first = in.takeInt();
    if (!first) return std::nullopt;
    if (const auto second = in.takeInt()) return ScannedReference{first, second};
    Cursor again(text);
    const auto number = again.takeInt();
    return ScannedReference{number, number ? again.takeInt() : std::nullopt};
}

std::optional<ObjectRef> isReference(std::string_view text) noexcept {
    const auto scanned = scanLenientReference(text);
    if (!scanned) return std::nullopt;
    return ObjectRef{scanned->number.value_or(0), scanned->generation.value_or(0)};
}

std::optional<ReferenceToken> readReference(std::string_view text) noexcept {
    // The first R of the whole text must stand behind the two numbers, so a number with an R in it ends the search.
    // Looking at three tokens decides this without going through the rest of the text for each object.
    Cursor in(text);
    int values[2] = {};
    for (int& value : values) {
        const auto number = readNumber(in.rest());
        if (!number || in.rest().substr(0, number->end).find('R') != std::string_view::npos) return std::nullopt;
        value = number->integer;
        in.advance(number->end);
    }
    in.skipWhite();
    if (!in.take('R')) return std::nullopt;
    return ReferenceToken{{values[0], values[1]}, in.at()};
}

std::optional<ObjectRef> isReference2(std::string_view text) noexcept {
    const auto token = readReference(text);
    if (!token) return std::nullopt;
    return token->ref;
}

bool isDictionary(std::string_view text) noexcept {
    const std::string_view body = trim(text);
    if (!body.starts_with("<<") || !body.ends_with(">>")) return false;
    return std::ranges::count(body, '<') == std::ranges::count(body, '>');
}

std::string_view stripReferenceArray(std::string_view text) noexcept {
    const std::size_t open = text.find('[');
    if (open == std::string_view::npos) return {};
    const std::size_t close = text.find(']', open);
    if (close == std::string_view::npos) return {};
    return TextSpan{open, close + 1}.of(text);
}

std::string_view stripBrackets(std::string_view text, int kind) noexcept {
    text = trim(text);
    const BracketPair pair = bracketPair(kind);
    if (text.starts_with(pair.open)) text.remove_prefix(1);
    if (text.ends_with(pair.close)) text.remove_suffix(1);
    return text;
}

int arrayReferenceCount(std::string_view text, std::size_t len) noexcept {
    if (len < 2) return 0;
    return static_cast<int>(std::ranges::count(stripBrackets(text, 1).substr(0, len - 2), 'R'));
}

int arrayType(std::string_view text) noexcept {
    const std::string_view body = stripBrackets(text, 1);
    if (body.find('R') == std::string_view::npos) return 0;
    Cursor in(body);
    int numbers = 0;
    while (numbers < 3 && in.takeInt()) ++numbers;
    return numbers == 3 ? 2 : numbers == 2 ? 1 : 0;
}

std::string_view arrayEntry(std::string_view text, std::size_t len, int which) noexcept {
    const std::string_view body = stripBrackets(text, 1);
    if (len < 3) return body.substr(0, 1);
    const std::string_view head = body.substr(0, len - 2);
    if (which != 0 && which != -1) return head.substr(0, 1);
    const std::size_t last = head.rfind('R');
    if (last == std::string_view::npos) return {};
    return head.substr(0, which == 0 ? last : last + 1);
}

std::string_view trimRight(std::string_view text, std::string_view set) noexcept {
    const std::size_t last = text.find_last_not_of(set);
    return text.substr(0, last == std::string_view::npos ? 0 : last + 1);
}

std::string_view trim(std::string_view text, std::string_view set) noexcept {
    text = trimRight(text, set);
    return text.substr(std::min(text.find_first_not_of(set), text.size()));
}

std::size_t hexToBytes(std::string_view hex, unsigned char* out, std::size_t outLen) noexcept {
    std::size_t written = 0;
    bool half = false;
    int high = 0;
    for (const char c : hex) {
        if (written == outLen) break;
        if (c == '\r') continue;
        const int digit = std::max(hexValue(c), 0);
        if (half) out[written++] = static_cast<unsigned char>(16 * high + digit);
        high = digit;
        half = !half;
    }
    return written;
}

}  // namespace varnpdf
