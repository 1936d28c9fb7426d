// The dictionary operations of an object: faces of the scanner, and edits by splicing.
#include <algorithm>
#include <cstring>

#include "model/DictionaryEntry.h"
#include "support/Guarded.h"
#include "support/Text.h"
#include "syntax/Text.h"
#include "varnpdf/PdfObj.h"
#include "varnpdf/result.h"

using namespace varnpdf;

namespace {

// Hands an entry out; the value is copied without a terminator.
int store(std::string_view text, const std::optional<DictionaryEntry>& entry, char* out, int* keyPos, int* endPos,
          int* outLen) {
    if (out != nullptr) *out = '\0';
    if (keyPos != nullptr) *keyPos = entry ? static_cast<int>(entry->key) : 0;
    if (endPos != nullptr) *endPos = entry ? static_cast<int>(entry->end) : 0;
    if (!entry) return 0;
    if (outLen != nullptr) *outLen = static_cast<int>(entry->value.size());
    if (out != nullptr) std::memcpy(out, text.data() + entry->value.begin, entry->value.size());
    return 1;
}

// For splicing the entry ends with its value: white space behind it stays where it is.
std::optional<DictionaryEntry> endWithValue(std::string_view text, std::optional<DictionaryEntry> entry) {
    if (!entry) return entry;
    while (entry->value.size() > 0 && isWhite(text[entry->value.end - 1])) --entry->value.end;
    entry->end = entry->value.end;
    return entry;
}

}  // namespace

int CPdfObj::ReadDictionaryEntry2(char* text, int len, const char* key, char* out, int* keyPos, int* endPos,
                                  int trimEnd, int* outLen, int namesAsValues, int start) {
    const bool usable = text != nullptr && len > 0 && start >= 0 && start <= len;
    const std::string_view scanned(text, usable ? static_cast<std::size_t>(len) : 0);
    std::optional<DictionaryEntry> entry;
    if (usable) {
        entry = findEntry(scanned, viewOf(key),
                          {.namesAsValues = namesAsValues != 0, .start = static_cast<std::size_t>(start)});
    }
    if (trimEnd != 0) entry = endWithValue(scanned, entry);
    return store(scanned, entry, out, keyPos, endPos, outLen);
}

int CPdfObj::ReadDictionaryEntry(char* text, int len, const char* key, char* out, int* keyPos, int* endPos) {
    return ReadDictionaryEntry2(text, len, key, out, keyPos, endPos, 0, nullptr, 1, 0);
}

int CPdfObj::ReadDictionaryEntry(const char* key, char* out, int* keyPos, int* endPos, int trimEnd, int* outLen,
                                 int namesAsValues) {
    const std::string_view text = content();
    auto entry = findLaterEntry(text, viewOf(key), namesAsValues != 0);
    if (trimEnd != 0) entry = endWithValue(text, entry);
    return store(text, entry, out, keyPos, endPos, outLen);
}

int CPdfObj::AddDictionaryEntry(char* entry) {
    return guardedOr(0, [&] {
        const std::string_view text = content();
        const std::size_t at = text.rfind(">>");
        if (at == std::string_view::npos) return 0;
        const std::string_view added = viewOf(entry);
        const bool endsLine = !added.empty() && isEol(added.back());
        std::string built;
        built.reserve(text.size() + added.size() + 2);
        append(built, text.substr(0, at), added, endsLine ? "" : "\r\n", text.substr(at));
        setContent(built);
        return 1;
    });
}

int CPdfObj::AddDictionaryEntry(const char* key, const char* value) {
    return guardedOr(0, [&] {
        std::string entry = varnpdf::text(viewOf(key), " ", viewOf(value), "\r\n");
        return AddDictionaryEntry(entry.data());
    });
}

int CPdfObj::DeleteDictionaryEntry(const char* key, int namesAsValues) {
    const auto entry = findLaterEntry(content(), viewOf(key), namesAsValues != 0);
    if (!entry) return 0;
    return guardedOr(0, [&] {
        splice(entry->key, std::max(entry->end, entry->value.end), {});
        return 1;
    });
}

int CPdfObj::ReplaceDictionaryEntry(const char* key, char* value) {
    const auto entry = endWithValue(content(), findLaterEntry(content(), viewOf(key)));
    if (!entry) return 0;
    return guardedOr(0, [&] {
        splice(entry->key, entry->end, varnpdf::text(viewOf(key), " ", viewOf(value)));
        return 1;
    });
}

int CPdfObj::ReplaceTjValue(char* text) {
    const std::string_view old = content();
    std::size_t at = old.find("Tj");
    if (at == std::string_view::npos) return VARNPDF_NO_TJ;
    while (at > 0 && isWhite(old[at - 1])) --at;
    const bool insideString = at > 0 && old[at - 1] == ')';
    if (insideString) --at;
    return guarded([&]() -> int {
        std::string built;
        append(built, old.substr(0, at), insideString ? "" : " (", viewOf(text), insideString ? "" : ")",
               old.substr(at));
        setContent(built);
        return VARNPDF_OK;
    });
}

int CPdfObj::ReadFirstDictionaryEntry(char* text, int len, char* key, char* value, int* keyPos, int* valuePos,
                                      int* endPos) {
    const std::string_view scanned(text, text == nullptr || len < 0 ? 0 : static_cast<std::size_t>(len));
    const auto entry = firstEntry(scanned);
    std::string_view name;
    if (entry) {
        name = scanned.substr(entry->key, entry->value.begin - entry->key);
        std::size_t end = 1;
        while (end < name.size() && isRegular(name[end])) ++end;
        name = name.substr(0, end);
    }
    const std::string_view found = entry ? entry->value.of(scanned) : std::string_view{};
    if (key != nullptr) *std::copy(name.begin(), name.end(), key) = '\0';
    if (value != nullptr) *std::copy(found.begin(), found.end(), value) = '\0';
    if (keyPos != nullptr) *keyPos = entry ? static_cast<int>(entry->key) : 0;
    if (valuePos != nullptr) *valuePos = entry ? static_cast<int>(entry->value.begin) : 0;
    if (endPos != nullptr) *endPos = entry ? static_cast<int>(std::max(entry->end, entry->value.end)) : 0;
    return entry ? 1 : 0;
}

int CPdfObj::ReadNextDictionaryEntry(char* text, int len, int offset, char* key, char* value, int* keyPos,
                                     int* valuePos, int* endPos) {
    const bool inside = text != nullptr && offset >= 0 && offset <= len;
    return ReadFirstDictionaryEntry(inside ? text + offset : nullptr, inside ? len - offset : 0, key, value, keyPos,
                                    valuePos, endPos);
}
