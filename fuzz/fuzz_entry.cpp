// Lookup and edits of dictionary entries. The input is a key, a NUL and the text of an object.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "fuzz/support/Check.h"
#include "varnpdf/PdfObj.h"

using varnpdf::fuzz::check;
using varnpdf::fuzz::Room;
using varnpdf::fuzz::standsAt;

namespace {

struct Found {
    int result = 0;
    int at = -1;
    int end = -1;
    int length = -1;
    std::string value;
};

std::string slashed(const std::string& key) { return key.starts_with('/') ? key : '/' + key; }

/// Behind the value. That of a name that runs on into a hexadecimal string ("/N<41>") has its '>' behind the end that is
/// reported.
std::size_t behindValue(std::string_view text, const Found& found) {
    const auto end = static_cast<std::size_t>(found.end);
    const bool runsOn = found.value.starts_with('/') && found.value.find('<') != std::string::npos;
    return runsOn && text.substr(0, end + 1).ends_with(found.value) ? std::min(end + 1, text.size()) : end;
}

/// What holds of every lookup.
void checkFound(std::string_view text, const std::string& key, const Found& found) {
    if (found.result == 0) {
        check(found.at == 0 && found.end == 0, "no entry, no positions");
        return;
    }
    const auto at = static_cast<std::size_t>(found.at);
    check(found.result == 1 && found.at >= 0 && found.at < found.end &&
              static_cast<std::size_t>(found.end) <= text.size(),
          "an entry lies inside the text");
    const std::size_t end = behindValue(text, found);
    check(standsAt(text, at, slashed(key)), "the key stands at its position");
    check(found.length >= 0 && static_cast<std::size_t>(found.length) <= end - at, "a value lies behind its key");
    check(text.substr(at, end - at).find(found.value) != std::string_view::npos, "the value stands behind its key");
    check(found.value.empty() || text.substr(0, end).ends_with(found.value), "the entry ends with its value");
}

Found lookUp(std::string_view text, const std::string& key, int trimEnd, int namesAsValues, int start) {
    std::string copy(text);
    Found found;
    const Room out(std::max<std::size_t>(text.size(), 1));
    found.result = CPdfObj::ReadDictionaryEntry2(copy.data(), static_cast<int>(copy.size()), key.c_str(), out.data(),
                                                 &found.at, &found.end, trimEnd, &found.length, namesAsValues, start);
    check(copy == text, "a lookup does not change the text");
    if (found.result == 1) found.value.assign(out.data(), static_cast<std::size_t>(std::max(found.length, 0)));
    return found;
}

Found lookUp(CPdfObj& obj, const std::string& key, int trimEnd, int namesAsValues) {
    Found found;
    const Room out(obj.content().size() + 1);
    found.result =
        obj.ReadDictionaryEntry(key.c_str(), out.data(), &found.at, &found.end, trimEnd, &found.length, namesAsValues);
    if (found.result == 1) found.value.assign(out.data(), static_cast<std::size_t>(std::max(found.length, 0)));
    return found;
}

CPdfObj& filled(CPdfObj& obj, std::string_view text) {
    obj.setContent(text);
    return obj;
}

/// The two entries that are found in one pass are those of the lookup.
void typeEntries(std::string_view text) {
    CPdfObj obj;
    filled(obj, text);
    check(obj.typeEntry() == lookUp(obj, "/Type", 0, 1).value, "the kept /Type is that of the lookup");
    check(obj.fieldTypeEntry() == lookUp(obj, "/FT", 0, 1).value, "the kept /FT is that of the lookup");
}

void replaceEntry(std::string_view text, const std::string& key) {
    CPdfObj obj;
    const Found found = lookUp(filled(obj, text), key, 1, 1);
    std::string value = "(new)";
    check(obj.ReplaceDictionaryEntry(key.c_str(), value.data()) == found.result, "what is found can be replaced");
    std::string expected(text);
    if (found.result == 1) {
        expected.replace(static_cast<std::size_t>(found.at), static_cast<std::size_t>(found.end - found.at),
                         key + " (new)");
    }
    check(obj.content() == expected, "replacing an entry changes nothing else");
}

void deleteEntry(std::string_view text, const std::string& key, int namesAsValues) {
    CPdfObj obj;
    const Found found = lookUp(filled(obj, text), key, 0, namesAsValues);
    check(obj.DeleteDictionaryEntry(key.c_str(), namesAsValues) == found.result, "what is found can be deleted");
    std::string expected(text);
    if (found.result == 1) {
        const auto at = static_cast<std::size_t>(found.at);
        expected.erase(at, behindValue(text, found) - at);
    }
    check(obj.content() == expected, "deleting an entry changes nothing else");
}

void addEntry(std::string_view text, const std::string& key) {
    CPdfObj obj;
    const bool possible = text.find(">>") != std::string_view::npos;
    const int result = filled(obj, text).AddDictionaryEntry(key.c_str(), "7");
    check(result == (possible ? 1 : 0), "an entry can be added in front of \">>\"");
    std::string expected(text);
    if (possible) expected.insert(text.rfind(">>"), key + " 7\r\n");
    check(obj.content() == expected, "adding an entry changes nothing else");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t kKeyBytes = 32;
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    const std::size_t split = input.find('\0');
    if (split == 0 || split > kKeyBytes || split + 1 >= input.size()) return 0;
    const std::string key(input.substr(0, split));
    const std::string_view text = input.substr(split + 1);

    for (const int namesAsValues : {0, 1}) {
        for (const int trimEnd : {0, 1}) {
            const Found first = lookUp(text, key, trimEnd, namesAsValues, 0);
            checkFound(text, key, first);
            CPdfObj obj;
            const Found last = lookUp(filled(obj, text), key, trimEnd, namesAsValues);
            checkFound(text, key, last);
            check(last.result == first.result && last.at >= first.at, "of two occurrences the later wins");
        }
        const int half = static_cast<int>(text.size() / 2);
        const Found later = lookUp(text, key, 0, namesAsValues, half);
        checkFound(text, key, later);
        check(later.result == 0 || later.at >= half, "a scan from the middle finds nothing in front of it");
        deleteEntry(text, key, namesAsValues);
    }
    typeEntries(text);
    replaceEntry(text, key);
    addEntry(text, key);
    return 0;
}
