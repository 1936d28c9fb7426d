// Finding a key in the raw text of a dictionary.
#include "model/DictionaryEntry.h"

#include <algorithm>
#include <array>

#include "syntax/Dictionary.h"
#include "syntax/Lexer.h"
#include "syntax/Reference.h"

namespace varnpdf {
namespace {

constexpr std::size_t kNone = std::string_view::npos;

// Bytes at which the scan has to decide something; everything between them is stepped over.
constexpr std::array<bool, 256> stopTable(std::string_view stops) {
    std::array<bool, 256> table{};
    for (const char c : stops) table[static_cast<unsigned char>(c)] = true;
    return table;
}

// A key of which the later entry is looked for; settled when a second one, or a value that cannot be read, is met.
struct LaterEntry {
    std::string_view key;
    std::optional<DictionaryEntry> entry = {};
    bool settled = false;
};

class EntryScanner {
public:
    EntryScanner(std::string_view text, std::string_view key, EntryLookup how)
        : text_(text), key_(key.starts_with('/') ? key.substr(1) : key), how_(how), at_(how.start) {
        if (at_ > 0 && text.substr(0, at_).find("<<") != kNone) depth_ = 1;
    }

    // Goes on behind the key that was found.
    std::optional<DictionaryEntry> findAgain(const DictionaryEntry& found) {
        at_ = found.key + 1 + key_.size();
        return find();
    }

    // The first key there is; a rest of a dictionary ends with it.
    std::optional<DictionaryEntry> first() {
        for (;;) {
            at_ = nextStop(at_);
            if (at_ >= text_.size() || text_.substr(at_).starts_with(">>")) return std::nullopt;
            if (text_[at_] == '/') {
                std::size_t end = at_ + 1;
                while (end < text_.size() && isRegular(text_[end])) ++end;
                return readValue(at_, end);
            }
            if (!step()) return std::nullopt;
        }
    }

    std::optional<DictionaryEntry> find() {
        for (std::size_t name = nextName(); name != kNone; name = nextName()) {
            if (matches(name + 1, key_)) return readValue(name, name + 1 + key_.size());
        }
        return std::nullopt;
    }

    // The offset of the next name at the level that is searched; the scan goes on behind its '/'.
    std::size_t nextName() {
        for (;;) {
            at_ = nextStop(at_);
            if (at_ >= text_.size()) return kNone;
            if (text_[at_] == '/') return at_++;
            if (!step()) return kNone;
        }
    }

    // Takes the value behind the name if it is the key that is wanted.
    void offer(std::size_t name, LaterEntry& wanted) const {
        if (wanted.settled || !matches(name + 1, wanted.key)) return;
        const auto entry = readValue(name, name + 1 + wanted.key.size());
        wanted.settled = !entry || wanted.entry;
        if (entry) wanted.entry = entry;
    }

private:
    [[nodiscard]] std::size_t nextStop(std::size_t at) const {
        static constexpr auto kStops = stopTable("/(<>[");
        while (at < text_.size() && !kStops[static_cast<unsigned char>(text_[at])]) ++at;
        return at;
    }

    [[nodiscard]] bool has(std::size_t at, char c) const { return at < text_.size() && text_[at] == c; }

    [[nodiscard]] bool matches(std::size_t at, std::string_view key) const {
        if (text_.size() - at < key.size()) return false;
        for (std::size_t i = 0; i < key.size(); ++i) {
            if (text_[at + i] != key[i]) return false;
        }
        const std::size_t end = at + key.size();
        return end == text_.size() || !isRegular(text_[end]);
    }

    // Steps over what begins at a stop other than a name; false when the search is over.
    bool step() {
        const char c = text_[at_];
        if (c == '<' && has(at_ + 1, '<') && (depth_ == 0 || how_.nested)) {
            ++depth_;
            at_ += 2;
        } else if (c == '>') {
            if (!has(at_ + 1, '>')) {
                ++at_;
                return true;
            }
            at_ += 2;
            return depth_ == 0 || --depth_ > 0;
        } else if (c == '[' && (depth_ == 0 || how_.nested)) {
            ++at_;
        } else {
            at_ = unitEnd(at_);
        }
        return at_ != kNone;
    }

    // Behind the string, hexadecimal string, array or dictionary at `at`; kNone when it is not closed.
    [[nodiscard]] std::size_t unitEnd(std::size_t at) const {
        switch (text_[at]) {
            case '(':
                return stringEnd(at);
            case '[':
                return arrayEnd(at);
            default:
                return has(at + 1, '<') ? dictionaryEnd(at) : hexEnd(at);
        }
    }

    [[nodiscard]] std::size_t stringEnd(std::size_t at) const {
        do {
            at = text_.find(')', at + 1);
            if (at == kNone) return kNone;
        } while (text_[at - 1] == '\\');
        return at + 1;
    }

    [[nodiscard]] std::size_t hexEnd(std::size_t at) const {
        const std::size_t end = text_.find('>', at);
        return end == kNone ? kNone : end + 1;
    }

    [[nodiscard]] std::size_t arrayEnd(std::size_t at) const {
        static constexpr auto kStops = stopTable("[](<");
        std::size_t open = 0;
        while (at < text_.size()) {
            const char c = text_[at];
            if (!kStops[static_cast<unsigned char>(c)]) {
                ++at;
            } else if (c == '(') {
                at = stringEnd(at);
            } else if (c == '<') {
                at = has(at + 1, '<') ? at + 2 : hexEnd(at);
            } else {
                ++at;
                if (c == '[') {
                    ++open;
                } else if (--open == 0) {
                    return at;
                }
            }
        }
        return kNone;
    }

    [[nodiscard]] std::size_t dictionaryEnd(std::size_t at) const {
        static constexpr auto kStops = stopTable("<>(");
        std::size_t open = 0;
        while (at < text_.size()) {
            const char c = text_[at];
            if (!kStops[static_cast<unsigned char>(c)]) {
                ++at;
            } else if (c == '(') {
                at = stringEnd(at);
            } else if (!has(at + 1, c)) {
                at = c == '<' ? hexEnd(at) : at + 1;
            } else {
                at += 2;
                if (c == '<') {
                    ++open;
                } else if (--open == 0) {
                    return at;
                }
            }
        }
        return kNone;
    }

    std::optional<DictionaryEntry> readValue(std::size_t key, std::size_t at) const {
        while (at < text_.size() && std::string_view(" \n\r\t").find(text_[at]) != kNone) ++at;
        if (at == text_.size()) return std::nullopt;
        const char c = text_[at];
        std::size_t end = at;
        if (c == '(' || c == '[' || c == '<') {
            end = unitEnd(at);
        } else if (c == '/') {
            if (how_.namesAsValues) end = nameEnd(at);
        } else if (!closes(at)) {
            end = plainEnd(at);
        }
        if (end == kNone) return std::nullopt;
        std::size_t trimmed = end;
        while (trimmed > at && text_[trimmed - 1] == ' ') --trimmed;
        // The '>' of a hexadecimal string that runs on from a name belongs to the value, but the entry ends before it.
        const bool runsOn = c == '/' && has(end, '>') && text_.substr(at, end - at).find('<') != kNone;
        return DictionaryEntry{key, {at, runsOn ? end + 1 : trimmed}, trimmed};
    }

    [[nodiscard]] bool closes(std::size_t at) const {
        if (text_[at] == '>') return has(at + 1, '>');
        return depth_ == 0 && text_[at] == ']';
    }

    // A name as a value runs on across '(' and '<'.
    [[nodiscard]] std::size_t nameEnd(std::size_t at) const {
        for (++at; at < text_.size(); ++at) {
            const char c = text_[at];
            if (isWhite(c) || c == '/' || c == '>') break;
        }
        return at;
    }

    // Numbers, references and bare words run to the next name or the end of the dictionary; a comment in front of a
    // string or an array does as well, and takes it along.
    [[nodiscard]] std::size_t plainEnd(std::size_t at) const {
        static constexpr auto kStops = stopTable("/>]([<");
        while (at < text_.size()) {
            const char c = text_[at];
            if (!kStops[static_cast<unsigned char>(c)]) {
                ++at;
            } else if (c == '/' || closes(at)) {
                return at;
            } else {
                at = c == '>' || c == ']' ? at + 1 : unitEnd(at);
            }
        }
        return depth_ == 0 && at != kNone ? at : kNone;
    }

    std::string_view text_;
    std::string_view key_;
    EntryLookup how_;
    std::size_t at_;
    std::size_t depth_ = 0;
};

// Numbers and words behind a value that begins with one belong to it, up to the next token of another kind.
std::string_view withWords(Lexer& lexer, std::string_view text, std::string_view value) {
    Token token = lexer.next();
    while (token.kind == TokenKind::Word) token = lexer.next();
    lexer.moveTo(token.begin);
    const std::string_view run(value.data(), static_cast<std::size_t>(text.data() + token.begin - value.data()));
    return run.substr(0, run.find_last_not_of(' ') + 1);
}

// Calls `take(key, value)` for every entry by the letter of the standard; false for a dictionary
// that does not end.
template <typename Take>
bool readEntries(std::string_view text, Take take) {
    Lexer lexer(text);
    Token token = lexer.next();
    while (token.kind == TokenKind::Word || token.kind == TokenKind::ArrayOpen) token = lexer.next();
    if (token.kind != TokenKind::DictOpen) return true;
    while ((token = lexer.next()) && token.kind != TokenKind::DictClose) {
        if (token.kind != TokenKind::Name) continue;
        auto value = valueBehind(lexer, text, token);
        if (!value) return false;
        if (!value->empty() && !isDelimiter(value->front())) value = withWords(lexer, text, *value);
        take(token.text, *value);
    }
    return token.kind == TokenKind::DictClose;
}

// Most keys that are asked for are not there; where nothing is escaped, their letters are not either. In the text of a
// long stream looking for them would cost more than reading its dictionary.
bool isClearlyAbsent(std::string_view text, std::string_view key) {
    constexpr std::size_t kShort = 4096;
    return text.size() <= kShort && text.find(key) == kNone && text.find('#') == kNone;
}

std::string_view valueOrNone(std::optional<std::string_view> found) {
    return !found || trim(*found) == "null" ? std::string_view{} : *found;
}

}  // namespace

std::optional<DictionaryEntry> findEntry(std::string_view text, std::string_view key, EntryLookup how) {
    return EntryScanner(text, key, how).find();
}

std::optional<DictionaryEntry> firstEntry(std::string_view text) { return EntryScanner(text, {}, {}).first(); }

std::optional<DictionaryEntry> findLaterEntry(std::string_view text, std::string_view key, bool namesAsValues) {
    EntryScanner scanner(text, key, {.namesAsValues = namesAsValues});
    const auto first = scanner.find();
    if (!first) return first;
    const auto second = scanner.findAgain(*first);
    return second ? second : first;
}

ObjectTypes findTypes(std::string_view text) {
    EntryScanner scanner(text, {}, {});
    LaterEntry type{"Type"};
    LaterEntry fieldType{"FT"};
    for (std::size_t name = scanner.nextName(); name != kNone; name = scanner.nextName()) {
        scanner.offer(name, type);
        scanner.offer(name, fieldType);
    }
    return {type.entry ? type.entry->value : TextSpan{}, fieldType.entry ? fieldType.entry->value : TextSpan{}};
}

std::optional<std::string_view> lookUp(std::string_view text, std::string_view key) {
    std::optional<std::string_view> found;
    if (isClearlyAbsent(text, key)) return found;
    const bool whole = readEntries(text, [&](std::string_view name, std::string_view value) {
        if (isSameName(name, key)) found = value;
    });
    if (found || whole) return found;
    const auto entry = findLaterEntry(text, key);
    return entry ? std::optional(entry->value.of(text)) : std::nullopt;
}

std::string_view lookUpValue(std::string_view text, std::string_view key) { return valueOrNone(lookUp(text, key)); }

std::optional<int> lookUpInt(std::string_view text, std::string_view key) {
    return Cursor(lookUpValue(text, key)).takeInt();
}

Lookups::Lookups(std::string_view text) : text_(text) {
    whole_ = readEntries(text,
                         [this](std::string_view name, std::string_view value) { entries_.emplace_back(name, value); });
}

std::optional<std::string_view> Lookups::find(std::string_view key) const {
    const auto found =
        std::find_if(entries_.rbegin(), entries_.rend(), [&](const auto& it) { return isSameName(it.first, key); });
    if (found != entries_.rend()) return found->second;
    const auto entry = whole_ ? std::nullopt : findLaterEntry(text_, key);
    return entry ? std::optional(entry->value.of(text_)) : std::nullopt;
}

std::string_view Lookups::value(std::string_view key) const { return valueOrNone(find(key)); }

std::optional<int> Lookups::number(std::string_view key) const { return Cursor(value(key)).takeInt(); }

std::string_view entryValue(std::string_view text, std::string_view key) {
    const auto entry = findLaterEntry(text, key);
    return entry ? entry->value.of(text) : std::string_view{};
}

std::optional<int> entryInt(std::string_view text, std::string_view key) {
    return Cursor(entryValue(text, key)).takeInt();
}

}  // namespace varnpdf
