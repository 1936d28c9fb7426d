// Reading and editing dictionaries token by token.
#include "syntax/Dictionary.h"

#include <algorithm>

#include "support/Text.h"
#include "syntax/CharClass.h"
#include "syntax/Lexer.h"
#include "syntax/Text.h"
#include "syntax/Values.h"

namespace varnpdf {
namespace {

bool isNumber(std::string_view token) {
    return !token.empty() && token.find_first_not_of(kDigits) == std::string_view::npos;
}

}  // namespace

bool isSameName(std::string_view written, std::string_view key) {
    const bool plain = written.find('#') == std::string_view::npos && key.find('#') == std::string_view::npos;
    return plain ? written == key : nameOf(written) == nameOf(key);
}

std::optional<std::string_view> valueBehind(Lexer& lexer, std::string_view text, const Token& key) {
    const Token first = lexer.next();
    lexer.moveTo(key.end());
    const bool closes = first.kind == TokenKind::DictClose || first.kind == TokenKind::ArrayClose;
    return closes ? text.substr(key.end(), 0) : lexer.nextValue();
}

std::size_t bodyBegin(std::string_view object) noexcept {
    Lexer lexer(object);
    if (!isNumber(lexer.next().text) || !isNumber(lexer.next().text)) return 0;
    const std::string_view keyword = lexer.next().text;
    // "obj" may be followed by a number or name without a blank.
    return keyword.starts_with("obj") ? lexer.at() - (keyword.size() - 3) : 0;
}

std::string_view bodyOf(std::string_view object) noexcept {
    return object.substr(Lexer(object, bodyBegin(object)).next().begin);
}

std::string_view objectValue(std::string_view object) noexcept {
    return Lexer(object, bodyBegin(object)).nextValue().value_or(std::string_view{});
}

std::size_t streamDataBegin(std::string_view object, std::size_t keyword) noexcept {
    constexpr std::string_view kKeyword = "stream";
    std::size_t at = keyword + kKeyword.size();
    if (at < object.size() && object[at] == '\r') ++at;
    if (at < object.size() && object[at] == '\n') ++at;
    return at;
}

Dictionary::Dictionary(std::string_view text) {
    Lexer lexer(text, bodyBegin(text));
    if (lexer.next().kind != TokenKind::DictOpen) return;
    while (const Token key = lexer.next()) {
        if (key.kind == TokenKind::DictClose) {
            close_ = key.begin;
            return;
        }
        if (key.kind != TokenKind::Name) continue;
        const auto value = valueBehind(lexer, text, key);
        if (!value) break;
        entries_.push_back({key.text, *value});
    }
    entries_.clear();
}

const Dictionary::Entry* Dictionary::entry(std::string_view key) const {
    const auto found = std::find_if(entries_.rbegin(), entries_.rend(),
                                    [&](const Entry& entry) { return isSameName(entry.key, key); });
    return found == entries_.rend() ? nullptr : &*found;
}

std::string_view Dictionary::find(std::string_view key) const {
    const Entry* const found = entry(key);
    return found == nullptr || found->value == "null" ? std::string_view{} : found->value;
}

std::string_view valueOf(std::string_view text, std::string_view key) { return Dictionary(text).find(key); }

bool setEntry(std::string& text, std::string_view key, std::string_view value, EntryLayout layout) {
    const std::string_view old = text;
    const Dictionary dictionary(old);
    if (!dictionary) return false;
    std::string out;
    std::size_t kept = 0;
    bool written = value.empty();
    for (const Dictionary::Entry& entry : dictionary.entries()) {
        if (!isSameName(entry.key, key)) continue;
        const std::size_t begin = offsetIn(old, entry.key);
        const std::size_t valueBegin = offsetIn(old, entry.value);
        append(out, old.substr(kept, begin - kept));
        if (!written && layout == EntryLayout::Lines) {
            append(out, key, ' ', value);
        } else if (!written) {
            const std::string_view untilValue = old.substr(begin, valueBegin - begin);
            append(out, untilValue, untilValue == entry.key ? " " : "", value);
        }
        written = true;
        kept = valueBegin + entry.value.size();
    }
    append(out, old.substr(kept, dictionary.close() - kept));
    if (!written) {
        const bool startsLine = layout == EntryLayout::Lines && !isEol(out.back());
        append(out, startsLine ? "\r\n" : "", key, ' ', value, "\r\n");
    }
    append(out, old.substr(dictionary.close()));
    text = std::move(out);
    return true;
}

}  // namespace varnpdf
