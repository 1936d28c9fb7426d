// Finding a text in lines.
#include "content/TextSearch.h"

#include <algorithm>

#include "model/Lookup.h"
#include "reader/Pages.h"
#include "support/Limits.h"

namespace varnpdf {
namespace {

/// The text that is sought: its characters, and where blanks stand in front of them.
struct Sought {
    std::u32string characters;
    std::vector<bool> blankBefore;
};

bool isRightToLeft(char32_t c) {
    return (c >= 0x590 && c < 0x900) || (c >= 0xFB1D && c < 0xFE00) || (c >= 0xFE70 && c < 0xFEFD);
}

Sought soughtOf(std::u32string_view text) {
    std::u32string comparableText = comparable(text);
    // Lines run from left to right here, whatever is read the other way.
    const auto fits = [](char32_t c) { return c == U' ' || isRightToLeft(c); };
    if (std::ranges::all_of(comparableText, fits)) std::ranges::reverse(comparableText);
    Sought sought;
    bool blank = false;
    for (const char32_t c : comparableText) {
        if (c != U' ') {
            sought.characters.push_back(c);
            sought.blankBefore.push_back(blank);
        }
        blank = c == U' ';
    }
    return sought;
}

bool gapsFit(const TextLine& line, std::size_t at, const Sought& sought) {
    for (std::size_t i = 1; i < sought.characters.size(); ++i) {
        const Gap gap = line[at + i].before;
        if (gap == (sought.blankBefore[i] ? Gap::None : Gap::Wide)) return false;
    }
    return true;
}

Rectangle boxOf(const TextLine& line, std::size_t at, std::size_t count) {
    Rectangle box = line[at].box;
    for (std::size_t i = 1; i < count; ++i) {
        const Rectangle& next = line[at + i].box;
        box.left = std::min(box.left, next.left);
        box.bottom = std::min(box.bottom, next.bottom);
        box.right = std::max(box.right, next.right);
        box.top = std::max(box.top, next.top);
    }
    return box;
}

void findInLine(const TextLine& line, const Sought& sought, int page, std::vector<TextHit>& hits) {
    std::u32string characters;
    characters.reserve(line.size());
    for (const LineCharacter& character : line) characters.push_back(character.character);
    const std::size_t count = sought.characters.size();
    std::size_t at = characters.find(sought.characters);
    while (at != std::u32string::npos) {
        const bool found = gapsFit(line, at, sought);
        if (found) hits.push_back({page, boxOf(line, at, count)});
        at = characters.find(sought.characters, at + (found ? count : 1));
    }
}

}  // namespace

bool isSearchable(std::u32string_view text) {
    return !comparable(text).empty() && text.size() <= limits::kSoughtCharacters;
}

std::optional<std::vector<CPdfObj*>> pagesOf(Document& document) {
    const CPdfObj* const catalogue = document.newest ? objectOf(document, document.newest->root()) : nullptr;
    if (catalogue == nullptr) return std::nullopt;
    CPdfObj* const root = pagesRoot(document, *catalogue);
    return root == nullptr ? std::vector<CPdfObj*>{} : pagesBelow(document, *root);
}

TextHits findText(const Document& document, const std::vector<CPdfObj*>& pages, std::u32string_view text) {
    TextHits result;
    const Sought sought = soughtOf(text);
    if (!isSearchable(text)) return result;
    PageTextReader reader(document);
    int number = 0;
    for (const CPdfObj* const page : pages) {
        ++number;
        for (const TextLine& line : linesOf(reader.read(*page))) findInLine(line, sought, number, result.hits);
        if (result.hits.size() > limits::kTextHits || reader.isExhausted()) {
            result.hits.resize(std::min(result.hits.size(), limits::kTextHits));
            result.complete = false;
            break;
        }
    }
    return result;
}

}  // namespace varnpdf
