// Reading and asking code maps.
#include "content/CMap.h"

#include <algorithm>

#include "support/Limits.h"
#include "syntax/Cursor.h"
#include "syntax/Lexer.h"
#include "syntax/Values.h"

namespace varnpdf {
namespace {

constexpr std::size_t kLongestCode = 4;

std::uint32_t numberOfBytes(std::string_view bytes) noexcept {
    std::uint32_t value = 0;
    for (const char byte : bytes.substr(0, kLongestCode)) value = value << 8U | static_cast<unsigned char>(byte);
    return value;
}

template <typename Range>
const Range* rangeOf(const std::vector<Range>& ranges, std::uint32_t code) noexcept {
    auto at = std::ranges::upper_bound(ranges, code, {}, &Range::first);
    if (at == ranges.begin()) return nullptr;
    --at;
    return code <= at->last ? &*at : nullptr;
}

}  // namespace

std::u32string fromUtf16(std::string_view bytes) {
    std::u32string out;
    char32_t high = 0;
    for (std::size_t at = 0; at + 1 < bytes.size(); at += 2) {
        const auto unit = static_cast<char32_t>(numberOfBytes(bytes.substr(at, 2)));
        if (unit >= 0xD800 && unit < 0xDC00) {
            high = unit;
        } else if (unit < 0xDC00 || unit > 0xDFFF) {
            out.push_back(unit);
        } else if (high != 0) {
            out.push_back(0x10000 + ((high - 0xD800) << 10U) + (unit - 0xDC00));
            high = 0;
        }
    }
    return out;
}

/// Goes through the sections of a code map's file.
class CMapReader {
public:
    explicit CMapReader(std::string_view file) : lexer_(file) {}

    CMap read() {
        Token before;
        while (const Token token = lexer_.next()) {
            if (token.text == "begincodespacerange") {
                codeSpaces();
            } else if (token.text == "begincidrange" || token.text == "begincidchar") {
                cids(token.text.ends_with("range"));
            } else if (token.text == "beginbfrange" || token.text == "beginbfchar") {
                texts(token.text.ends_with("range"));
            } else if (token.text == "usecmap") {
                map_.identity_ = before.text.starts_with("/Identity");
            } else if (before.text == "/WMode") {
                map_.vertical_ = token.text == "1";
            }
            before = token;
        }
        // Of codes that are mapped twice the later one counts.
        std::ranges::stable_sort(map_.cids_, {}, &CMap::CidRange::first);
        std::ranges::stable_sort(map_.texts_, {}, &CMap::TextRange::first);
        return std::move(map_);
    }

private:
    // Nothing at the end of a section.
    std::optional<std::string> code() {
        const Token token = lexer_.next();
        return token.kind == TokenKind::HexString ? stringOf(token.text) : std::nullopt;
    }

    void codeSpaces() {
        for (;;) {
            const auto low = code();
            const auto high = low ? code() : std::nullopt;
            if (!high) return;
            const bool sane = !low->empty() && low->size() == high->size() && low->size() <= kLongestCode;
            if (!sane || map_.spaces_.size() == limits::kCodeSpaces) continue;
            map_.spaces_.push_back({low->size(), numberOfBytes(*low), numberOfBytes(*high)});
        }
    }

    void cids(bool ranges) {
        for (;;) {
            const auto first = code();
            const auto last = first && ranges ? code() : first;
            const auto cid = last ? Cursor(lexer_.next().text).takeInt() : std::nullopt;
            if (!cid) return;
            map_.cids_.push_back({numberOfBytes(*first), numberOfBytes(*last), static_cast<std::uint32_t>(*cid)});
        }
    }

    void texts(bool ranges) {
        for (;;) {
            const auto first = code();
            const auto last = first && ranges ? code() : first;
            const auto target = last ? lexer_.nextValue() : std::nullopt;
            if (!target) return;
            const std::uint32_t begin = numberOfBytes(*first);
            if (!target->starts_with('[')) {
                addText(begin, numberOfBytes(*last), *target);
                continue;
            }
            std::uint32_t code = begin;
            Lexer items(*target, 1);
            while (const auto item = items.nextValue()) {
                addText(code, code, *item);
                ++code;
            }
        }
    }

    void addText(std::uint32_t first, std::uint32_t last, std::string_view target) {
        const auto bytes = stringOf(target);
        if (!bytes || last < first) return;
        // One byte is no UTF-16, but some write it.
        std::u32string text =
            bytes->size() == 1 ? std::u32string(1, static_cast<unsigned char>(bytes->front())) : fromUtf16(*bytes);
        map_.texts_.push_back({first, last, std::move(text)});
    }

    Lexer lexer_;
    CMap map_;
};

CMap CMap::identity() {
    CMap map;
    map.identity_ = true;
    return map;
}

CMap CMap::read(std::string_view file) { return CMapReader(file).read(); }

CharCode CMap::next(std::string_view codes) const noexcept {
    constexpr std::size_t kUsual = 2;
    if (spaces_.empty()) {
        const std::size_t bytes = std::min(kUsual, codes.size());
        return {numberOfBytes(codes.substr(0, bytes)), bytes};
    }
    std::size_t shortest = kLongestCode;
    for (const CodeSpace& space : spaces_) {
        shortest = std::min(shortest, space.bytes);
        if (space.bytes > codes.size()) continue;
        const std::uint32_t value = numberOfBytes(codes.substr(0, space.bytes));
        bool inside = true;
        for (unsigned shift = 0; shift < 8 * space.bytes; shift += 8) {  // every byte by itself
            const std::uint32_t byte = value >> shift & 0xFFU;
            inside = inside && byte >= (space.low >> shift & 0xFFU) && byte <= (space.high >> shift & 0xFFU);
        }
        if (inside) return {value, space.bytes};
    }
    const std::size_t bytes = std::min(shortest, codes.size());
    return {numberOfBytes(codes.substr(0, bytes)), bytes};
}

std::uint32_t CMap::cid(std::uint32_t code) const noexcept {
    const CidRange* const range = rangeOf(cids_, code);
    if (range != nullptr) return range->cid + (code - range->first);
    return identity_ ? code : 0;
}

std::u32string CMap::text(std::uint32_t code) const {
    const TextRange* const range = rangeOf(texts_, code);
    if (range == nullptr) return {};
    std::u32string text = range->text;
    if (!text.empty()) text.back() += code - range->first;
    std::erase(text, U'\0');
    return text;
}

}  // namespace varnpdf
