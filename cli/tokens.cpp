// Reading tokens and dictionaries.
#include "tokens.h"

#include <algorithm>

#include "document.h"
#include "varnpdf/PdfText.h"

namespace {

constexpr std::string_view kWhite("\0\t\n\f\r ", 6);
constexpr std::string_view kEnds("\0\t\n\f\r ()<>[]{}/%", 16);
constexpr int kLongestChain = 8;  // references to references; a loop ends here

bool isNumber(std::string_view token) {
    return std::all_of(token.begin(), token.end(), [](char c) { return c >= '0' && c <= '9'; });
}

}  // namespace

void cli::Tokens::skipBlanks() {
    for (;;) {
        at_ = std::min(text_.find_first_not_of(kWhite, at_), text_.size());
        if (!text_.substr(at_).starts_with('%')) return;
        at_ = std::min(text_.find_first_of("\r\n", at_), text_.size());
    }
}

/// Offset behind the string that begins here; npos when it does not end.
std::size_t cli::Tokens::stringEnd() const {
    if (text_[at_] == '<') {
        const std::size_t end = text_.find('>', at_);
        return end == std::string_view::npos ? end : end + 1;
    }
    int open = 0;
    for (std::size_t i = at_; i < text_.size(); ++i) {
        if (text_[i] == '\\') {
            ++i;
        } else if (text_[i] == '(') {
            ++open;
        } else if (text_[i] == ')' && --open == 0) {
            return i + 1;
        }
    }
    return std::string_view::npos;
}

std::optional<std::string_view> cli::Tokens::next() {
    skipBlanks();
    if (at_ == text_.size()) return std::nullopt;
    const std::string_view rest = text_.substr(at_);
    std::size_t end = 0;
    if (rest.starts_with("<<") || rest.starts_with(">>")) {
        end = at_ + 2;
    } else if (rest.starts_with('(') || rest.starts_with('<')) {
        end = stringEnd();
        if (end == std::string_view::npos) return std::nullopt;
    } else {
        end = at_ + 1;
        if (kEnds.find(rest.front()) == std::string_view::npos || rest.starts_with('/')) {
            end = std::min(text_.find_first_of(kEnds, end), text_.size());
        }
    }
    const std::string_view token = text_.substr(at_, end - at_);
    at_ = end;
    return token;
}

/// "12 0 R" from here on, with the number at its front taken already.
std::optional<std::string_view> cli::Tokens::reference() const {
    Tokens ahead = *this;
    const std::optional<std::string_view> generation = ahead.next();
    if (!generation || !isNumber(*generation)) return std::nullopt;
    const std::optional<std::string_view> keyword = ahead.next();
    return keyword == "R" ? keyword : std::nullopt;
}

std::optional<std::string_view> cli::Tokens::nextValue() {
    const std::optional<std::string_view> first = next();
    if (!first) return std::nullopt;
    const auto begin = static_cast<std::size_t>(first->data() - text_.data());
    if (isNumber(*first)) {
        if (const std::optional<std::string_view> keyword = reference()) {
            at_ = static_cast<std::size_t>(keyword->data() - text_.data()) + 1;
        }
    }
    int depth = *first == "<<" || *first == "[" ? 1 : 0;
    while (depth > 0) {
        const std::optional<std::string_view> token = next();
        if (!token) return std::nullopt;
        if (*token == "<<" || *token == "[") ++depth;
        if (*token == ">>" || *token == "]") --depth;
    }
    return text_.substr(begin, at_ - begin);
}

std::optional<std::string_view> cli::valueOf(const CPdfObj& obj) {
    Tokens tokens(obj.content());
    Tokens header = tokens;
    header.next();
    header.next();
    return header.next() == "obj" ? header.nextValue() : tokens.nextValue();
}

std::optional<std::string_view> cli::lookUp(std::string_view dictionary, std::string_view key) {
    Tokens tokens(dictionary);
    if (tokens.next() != "<<") return std::nullopt;
    std::optional<std::string_view> found;
    for (;;) {
        const std::optional<std::string_view> name = tokens.next();
        if (!name || !name->starts_with('/')) return found;
        const std::optional<std::string_view> value = tokens.nextValue();
        if (!value || *value == ">>") return found;
        if (CPdfText::NameBytes(*name) == key) found = value;
    }
}

std::optional<std::string_view> cli::lookUp(const CPdfObj& obj, std::string_view key) {
    const std::optional<std::string_view> dictionary = valueOf(obj);
    return dictionary ? lookUp(*dictionary, key) : std::nullopt;
}

std::optional<std::string_view> cli::lookUp(CPdf& pdf, const CPdfObj& obj, std::string_view key) {
    std::optional<std::string_view> value = lookUp(obj, key);
    for (int i = 0; value && value->ends_with('R') && i < kLongestChain; ++i) {
        const CPdfObj* target = referenced(pdf, *value);
        value = target != nullptr ? valueOf(*target) : std::nullopt;
    }
    return value;
}
