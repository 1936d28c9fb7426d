// Black and white rows as a zlib stream of RGB samples.
#include "conversion/RunDeflater.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace varnpdf {
namespace {

constexpr std::uint64_t kAdlerBase = 65521;
constexpr std::size_t kBlockTokens = std::size_t{1} << 16U;
constexpr unsigned kLongest = 258;
constexpr unsigned kShortest = 3;

constexpr unsigned kEnd = 2;
constexpr unsigned kFirstLength = 3;
constexpr unsigned kLengthCodes = 29;

struct LengthCode {
    std::uint16_t base;
    std::uint8_t extraBits;
};

// RFC 1951 3.2.5.
constexpr std::array<LengthCode, kLengthCodes> kLengths = [] {
    std::array<LengthCode, kLengthCodes> codes{};
    unsigned base = kShortest;
    for (unsigned i = 0; i < kLengthCodes - 1; ++i) {
        const unsigned extra = i < 8 ? 0 : i / 4 - 1;
        codes[i] = {static_cast<std::uint16_t>(base), static_cast<std::uint8_t>(extra)};
        base += 1U << extra;
    }
    codes.back() = {kLongest, 0};
    return codes;
}();

constexpr std::array<std::uint8_t, kLongest + 1> kCodeOfLength = [] {
    std::array<std::uint8_t, kLongest + 1> codes{};
    for (unsigned i = 0; i < kLengthCodes; ++i) {
        for (unsigned length = kLengths[i].base; length <= kLongest; ++length)
            codes[length] = static_cast<std::uint8_t>(i);
    }
    return codes;
}();

// Where the bits of the row change from `bit` to the other, or its end.
std::uint32_t endOfRun(const unsigned char* row, std::uint32_t from, std::uint32_t width, bool bit) {
    while (from < width) {
        std::uint64_t word = 0;
        std::memcpy(&word, row + from / 8, sizeof word);
        word = __builtin_bswap64(word) << (from % 8);
        const auto same = static_cast<std::uint32_t>(bit ? std::countl_one(word) : std::countl_zero(word));
        const std::uint32_t seen = 64 - from % 8;
        if (same < seen) return std::min(from + same, width);
        from += seen;
    }
    return width;
}

// Code lengths of a Huffman code. A symbol counts as used at least once in 512, which keeps every code within 15 bits.
template <std::size_t Count>
std::array<std::uint8_t, Count> codeLengths(const std::array<std::uint32_t, Count>& uses) {
    struct Node {
        std::uint64_t weight;
        int parent;
    };
    std::array<Node, 2 * Count> nodes{};
    std::uint64_t total = 0;
    for (const std::uint32_t use : uses) total += use;
    std::vector<std::size_t> open;
    for (std::size_t i = 0; i < Count; ++i) {
        if (uses[i] == 0) continue;
        nodes[i] = {std::max<std::uint64_t>(uses[i], total / 512 + 1), -1};
        open.push_back(i);
    }
    const auto lighter = [&](std::size_t a, std::size_t b) { return nodes[a].weight < nodes[b].weight; };
    for (std::size_t next = Count; open.size() > 1; ++next) {
        nodes[next] = {0, -1};
        for (int child = 0; child < 2; ++child) {
            const auto lightest = std::ranges::min_element(open, lighter);
            nodes[next].weight += nodes[*lightest].weight;
            nodes[*lightest].parent = static_cast<int>(next);
            open.erase(lightest);
        }
        open.push_back(next);
    }
    std::array<std::uint8_t, Count> lengths{};
    for (std::size_t i = 0; i < Count; ++i) {
        if (uses[i] == 0) continue;
        for (int at = nodes[i].parent; at >= 0; at = nodes[static_cast<std::size_t>(at)].parent) ++lengths[i];
    }
    return lengths;
}

// The codes of RFC 1951 3.2.2.
template <std::size_t Count>
std::array<std::uint16_t, Count> codesOf(const std::array<std::uint8_t, Count>& lengths) {
    std::array<std::uint16_t, Count> codes{};
    unsigned code = 0;
    for (unsigned length = 1; length <= 15; ++length, code <<= 1U) {
        for (std::size_t i = 0; i < Count; ++i) {
            if (lengths[i] == length) codes[i] = static_cast<std::uint16_t>(code++);
        }
    }
    return codes;
}

// Codes stand with their highest bit first.
unsigned reversed(unsigned code, unsigned count) {
    unsigned out = 0;
    for (unsigned i = 0; i < count; ++i) out |= (code >> i & 1U) << (count - 1 - i);
    return out;
}

}  // namespace

void RunDeflater::start() {
    out_.assign("\x78\x9C");  // 32 KB of window, default compression
    bits_ = 0;
    bitCount_ = 0;
    tokens_.clear();
    uses_ = {};
    run_ = 0;
    sumA_ = 1;
    sumB_ = 0;
}

void RunDeflater::addRow(const unsigned char* row, std::uint32_t width, unsigned char one) {
    bool bit = (row[0] & 0x80U) != 0;
    for (std::uint32_t at = 0; at < width; bit = !bit) {
        const std::uint32_t end = endOfRun(row, at, width, bit);
        add(bit ? one : static_cast<unsigned char>(255 - one), std::uint64_t{3} * (end - at));
        at = end;
    }
}

// A run goes on from row to row.
void RunDeflater::add(unsigned char sample, std::uint64_t count) {
    if (sample != sample_) endRun();
    sample_ = sample;
    run_ += count;
}

void RunDeflater::endRun() {
    if (run_ == 0) return;
    // Both sums of the run at once.
    const std::uint64_t n = run_ % (2 * kAdlerBase);
    sumB_ = (sumB_ + n * sumA_ + n * (n + 1) / 2 % kAdlerBase * sample_) % kAdlerBase;
    sumA_ = (sumA_ + n * sample_) % kAdlerBase;

    const unsigned literal = sample_ == 0 ? 0 : 1;
    addToken(literal);
    std::uint64_t left = run_ - 1;
    for (; left >= kShortest; left -= std::min<std::uint64_t>(left, kLongest)) {
        const auto length = static_cast<unsigned>(std::min<std::uint64_t>(left, kLongest));
        const unsigned code = kCodeOfLength[length];
        addToken(kFirstLength + code, length - kLengths[code].base);
    }
    for (; left > 0; --left) addToken(literal);
    run_ = 0;
}

void RunDeflater::addToken(unsigned symbol, unsigned extra) {
    tokens_.push_back(static_cast<std::uint16_t>(symbol | extra << 5U));
    ++uses_[symbol];
    if (tokens_.size() == kBlockTokens) endBlock(false);
}

// A block with a Huffman code of its own (RFC 1951 3.2.7).
void RunDeflater::endBlock(bool last) {
    uses_[kEnd] = 1;
    tokens_.push_back(kEnd);
    if (tokens_.size() == 1) uses_[0] = 1;  // a code of one symbol is not allowed here
    const Lengths lengths = codeLengths(uses_);
    putBits(last ? 5 : 4, 3);
    putLengths(lengths);
    putTokens(lengths);
    tokens_.clear();
    uses_ = {};
}

// Most of the time is spent here: a token is one entry of a table and one shift, and the room is made beforehand.
void RunDeflater::putTokens(const Lengths& lengths) {
    struct Entry {
        std::uint32_t bits;
        std::uint8_t length;
        std::uint8_t behind;  // extra bits, and for the distance one bit, which is 0: distance one is the only distance
    };
    std::array<Entry, kSymbols> table{};
    const auto codes = codesOf(lengths);
    for (std::size_t i = 0; i < kSymbols; ++i) {
        const bool isLength = i >= kFirstLength;
        const auto behind = static_cast<std::uint8_t>(isLength ? kLengths[i - kFirstLength].extraBits + 1U : 0U);
        table[i] = {reversed(codes[i], lengths[i]), lengths[i], behind};
    }
    const std::size_t begin = out_.size();
    out_.resize(begin + tokens_.size() * 3 + sizeof(std::uint64_t));
    char* to = out_.data() + begin;
    for (const std::uint16_t token : tokens_) {
        const Entry& entry = table[token & 31U];
        bits_ |= (entry.bits | std::uint64_t{token} >> 5U << entry.length) << bitCount_;
        bitCount_ += entry.length + entry.behind;
        if (bitCount_ < 32) continue;
        for (int i = 0; i < 4; ++i, bits_ >>= 8U) *to++ = static_cast<char>(bits_ & 255U);
        bitCount_ -= 32;
    }
    out_.resize(static_cast<std::size_t>(to - out_.data()));
}

void RunDeflater::putLengths(const Lengths& lengths) {
    // The code for the lengths: 13 symbols of four bits and six of five, in the order of RFC 1951.
    constexpr std::array<std::uint8_t, 19> kMeta = {4, 4, 4, 4, 4, 4, 4, 4, 4, 4, 4, 4, 5, 5, 5, 5, 5, 5, 4};
    constexpr std::uint8_t kOrder[] = {16, 17, 18, 0, 8, 7, 9, 6, 10, 5, 11, 4, 12, 3, 13, 2, 14, 1, 15};
    static const auto metaCodes = codesOf(kMeta);
    const auto put = [&](unsigned length) { putBits(reversed(metaCodes[length], kMeta[length]), kMeta[length]); };
    const auto putZeros = [&](unsigned count) {
        put(18);
        putBits(count - 11, 7);
    };
    putBits(kLengthCodes, 5);  // 286 literals and lengths
    putBits(0, 5);             // one distance
    putBits(15, 4);            // 19 lengths follow
    for (const std::uint8_t symbol : kOrder) putBits(kMeta[symbol], 3);
    put(lengths[0]);
    putZeros(127);
    putZeros(127);
    for (std::size_t i = 1; i < kSymbols; ++i) put(lengths[i]);
    put(1);
}

void RunDeflater::putBits(std::uint64_t bits, unsigned count) {
    bits_ |= bits << bitCount_;
    bitCount_ += count;
    while (bitCount_ >= 8) {
        out_.push_back(static_cast<char>(bits_ & 255U));
        bits_ >>= 8U;
        bitCount_ -= 8;
    }
}

std::string_view RunDeflater::finish() {
    endRun();
    endBlock(true);
    putBits(0, (8 - bitCount_) % 8);
    const std::uint64_t check = sumB_ << 16U | sumA_;
    for (int shift = 24; shift >= 0; shift -= 8)
        out_.push_back(static_cast<char>(check >> static_cast<unsigned>(shift) & 255U));
    return out_;
}

}  // namespace varnpdf
