// Looking up entries by the letter of ISO 32000-2 and by the rules of the exported readers: both find the same in every
// well-formed dictionary whose strings hold neither parentheses nor backslashes. The input chooses the dictionary.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz/support/Check.h"
#include "model/DictionaryEntry.h"
#include "syntax/Dictionary.h"

using namespace varnpdf;
using varnpdf::fuzz::check;

namespace {

/// Writes what the bytes of the input choose; zeros behind its end.
class Generator {
public:
    Generator(const std::uint8_t* data, std::size_t size) : data_(data), size_(size) {}

    struct Entry {
        std::string key, value;
    };

    /// Entries with keys that differ and stand nowhere as a value.
    std::vector<Entry> entries() {
        std::vector<Entry> out(1 + pick(8));
        for (std::size_t i = 0; i < out.size(); ++i) out[i] = {keyOf(i), value(0)};
        return out;
    }

    /// The dictionary, as an object or by itself.
    std::string text(const std::vector<Entry>& entries) {
        std::string out = pick(2) == 0 ? "" : "12 0 obj" + white();
        out += "<<";
        for (const Entry& entry : entries) {
            out += white() + entry.key + ' ' + entry.value + (separates(entry.value) ? white() : " ");
        }
        return out + ">>" + white();
    }

private:
    static constexpr std::size_t kDepth = 6;

    std::size_t pick(std::size_t choices) { return at_ < size_ ? data_[at_++] % choices : 0; }

    /// Names that begin alike; values have another first letter.
    static std::string keyOf(std::size_t index) {
        return '/' + std::string(1 + index / 2, 'K') + (index % 2 ? "y" : "");
    }

    std::string white() {
        constexpr const char* kKinds[] = {"", " ", "\r\n", "\n\t", "  "};
        return kKinds[pick(std::size(kKinds))];
    }

    static bool separates(std::string_view value) { return std::string_view(")>]").find(value.back()) != value.npos; }

    std::string characters(std::string_view from, std::size_t least) {
        std::string out(least + pick(9), ' ');
        for (char& c : out) c = from[pick(from.size())];
        return out;
    }

    std::string value(std::size_t depth) {
        switch (pick(depth < kDepth ? 9 : 7)) {
            case 0:
                return std::to_string(static_cast<int>(pick(256)) - 99);
            case 1:
                return std::to_string(1 + pick(99)) + ' ' + std::to_string(pick(3)) + " R";
            case 2:
                return '(' + characters("ab /K<>[]%\r\n1R", 0) + ')';
            case 3:
                return '<' + characters("0123456789abcdefABCDEF \n", 0) + '>';
            case 4:
                return "/V" + characters("abK01.-", 0);
            case 5:
                return pick(2) == 0 ? "true" : "null";
            case 6:
                return '-' + std::to_string(pick(9)) + '.' + std::to_string(pick(100));
            case 7:
                return array(depth + 1);
            default:
                return dictionary(depth + 1);
        }
    }

    std::string array(std::size_t depth) {
        std::string out = "[" + white();
        for (std::size_t i = pick(5); i > 0; --i) out += value(depth) + ' ';
        return out + ']';
    }

    std::string dictionary(std::size_t depth) {
        std::string out = "<<" + white();
        const std::size_t count = pick(4);
        for (std::size_t i = 0; i < count; ++i) out += keyOf(pick(8)) + ' ' + value(depth) + ' ';
        return out + ">>";
    }

    const std::uint8_t* data_;
    std::size_t size_;
    std::size_t at_ = 0;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Generator generator(data, size);
    const auto entries = generator.entries();
    const std::string text = generator.text(entries);
    const Dictionary dictionary(text);
    check(static_cast<bool>(dictionary), "a well-formed dictionary can be read");
    check(dictionary.entries().size() == entries.size(), "it has the entries that were written");
    const auto same = [](std::string_view found, std::string_view written) {
        return found.substr(0, found.find_last_not_of(" \r\n\t") + 1) == written;
    };
    for (const auto& [key, value] : entries) {
        const auto strict = lookUp(text, key);
        const auto lenient = findLaterEntry(text, key);
        const auto* const entry = dictionary.entry(key);
        check(strict && lenient && entry != nullptr, "every reader finds every key");
        check(same(*strict, value) && same(lenient->value.of(text), value) && same(entry->value, value),
              "every reader finds the value that was written");
    }
    for (const std::string_view absent : {"/None", "/k", "/KKKKKKKKK"}) {
        const bool found = lookUp(text, absent) || findLaterEntry(text, absent) || dictionary.entry(absent) != nullptr;
        check(!found, "no reader finds a key that is not there");
    }
    return 0;
}
