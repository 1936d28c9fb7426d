// UTF-8 files read block by block, and their characters in WinAnsiEncoding.
#include "conversion/Utf8Text.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace varnpdf {
namespace {

constexpr char32_t kByteOrderMark = 0xFEFF;

struct Similar {
    char16_t character;
    char winAnsi;
};
constexpr Similar kSimilar[] = {{0x2007, ' '}, {0x2009, ' '}, {0x2010, '-'}, {0x2011, '-'},
                                {0x2012, '-'}, {0x202F, ' '}, {0x2212, '-'}};

char winAnsi(char32_t character) {
    if (character < 0x80) return static_cast<char>(character);
    if (const auto code = winAnsiCode(character)) return *code;
    const auto similar = std::ranges::find(kSimilar, character, &Similar::character);
    return similar != std::end(kSimilar) ? similar->winAnsi : '?';
}

// Length of the ASCII text in front, eight bytes at a time.
std::size_t asciiPrefix(std::string_view bytes) {
    constexpr std::uint64_t kHighBits = 0x8080808080808080U;
    std::size_t at = 0;
    for (; at + sizeof(std::uint64_t) <= bytes.size(); at += sizeof(std::uint64_t)) {
        std::uint64_t word = 0;
        std::memcpy(&word, bytes.data() + at, sizeof word);
        if ((word & kHighBits) != 0) break;
    }
    while (at < bytes.size() && static_cast<unsigned char>(bytes[at]) < 0x80) ++at;
    return at;
}

}  // namespace

bool Utf8Check::add(std::string_view bytes) noexcept {
    while (valid_ && !bytes.empty()) {
        if (!reader_.inside()) bytes.remove_prefix(asciiPrefix(bytes));
        if (bytes.empty()) break;
        beyondAscii_ = true;
        valid_ = reader_.take(static_cast<unsigned char>(bytes.front())) != Utf8Reader::Step::kInvalid;
        bytes.remove_prefix(1);
    }
    return valid_;
}

std::string_view WinAnsiText::convert(std::string_view bytes) {
    out_.clear();
    while (!bytes.empty()) {
        if (!reader_.inside()) {
            const std::size_t plain = asciiPrefix(bytes);
            out_.append(bytes.substr(0, plain));
            bytes.remove_prefix(plain);
        }
        if (bytes.empty()) break;
        const auto step = reader_.take(static_cast<unsigned char>(bytes.front()));
        bytes.remove_prefix(1);
        if (step == Utf8Reader::Step::kCharacter && reader_.character() != kByteOrderMark) {
            out_.push_back(winAnsi(reader_.character()));
        }
    }
    return out_;
}

}  // namespace varnpdf
