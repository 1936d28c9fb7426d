// UTF-8 read piece by piece, and its characters in WinAnsiEncoding.
#include "conversion/Utf8Text.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace varnpdf {
namespace {

constexpr char32_t kLastCharacter = 0x10FFFF;
constexpr char32_t kByteOrderMark = 0xFEFF;

// The bytes 128 to 159; 0 where the encoding has nothing.
constexpr char16_t kUpper[32] = {0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
                                 0x2039, 0x0152, 0,      0x017D, 0,      0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
                                 0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

struct Similar {
    char16_t character;
    char winAnsi;
};
constexpr Similar kSimilar[] = {{0x2007, ' '}, {0x2009, ' '}, {0x2010, '-'}, {0x2011, '-'},
                                {0x2012, '-'}, {0x202F, ' '}, {0x2212, '-'}};

char winAnsi(char32_t character) {
    if (character < 0x80 || (character >= 0xA0 && character <= 0xFF)) return static_cast<char>(character);
    const auto upper = std::ranges::find(kUpper, character);
    if (character != 0 && upper != std::end(kUpper)) return static_cast<char>(0x80 + (upper - kUpper));
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

Utf8Reader::Step Utf8Reader::take(unsigned char byte) noexcept {
    if (left_ > 0) {
        if ((byte & 0xC0U) != 0x80) return Step::kInvalid;
        character_ = (character_ << 6U) | (byte & 0x3FU);
        if (--left_ > 0) return Step::kMore;
        const bool surrogate = character_ >= 0xD800 && character_ <= 0xDFFF;
        const bool good = character_ >= least_ && character_ <= kLastCharacter && !surrogate;
        return good ? Step::kCharacter : Step::kInvalid;
    }
    const int ones = std::countl_one(byte);
    if (ones == 0) {
        character_ = byte;
        return Step::kCharacter;
    }
    if (ones == 1 || ones > 4) return Step::kInvalid;
    constexpr char32_t kLeast[] = {0, 0, 0x80, 0x800, 0x10000};
    least_ = kLeast[ones];
    character_ = byte & (0x7FU >> static_cast<unsigned>(ones));
    left_ = ones - 1;
    return Step::kMore;
}

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
