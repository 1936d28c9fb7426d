// SHA-1 and SHA-2 (FIPS 180-4).
#include "varnpdf/Sha.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "digest/ShaConstants.h"

using namespace varnpdf::sha;

namespace {

/// Rotations and shifts of the functions of SHA-256 and of SHA-384/512 (FIPS 180-4 4.1.2, 4.1.3).
struct Sha256 {
    using Word = std::uint32_t;
    static constexpr int kRounds = 64;
    static constexpr int kSum0[3] = {2, 13, 22};
    static constexpr int kSum1[3] = {6, 11, 25};
    static constexpr int kSigma0[3] = {7, 18, 3};
    static constexpr int kSigma1[3] = {17, 19, 10};
};

struct Sha512 {
    using Word = std::uint64_t;
    static constexpr int kRounds = 80;
    static constexpr int kSum0[3] = {28, 34, 39};
    static constexpr int kSum1[3] = {14, 18, 41};
    static constexpr int kSigma0[3] = {1, 8, 7};
    static constexpr int kSigma1[3] = {19, 61, 6};
};

template <typename Word>
Word rotated(Word word, const int (&by)[3]) {
    return std::rotr(word, by[0]) ^ std::rotr(word, by[1]) ^ std::rotr(word, by[2]);
}

template <typename Word>
Word sigma(Word word, const int (&by)[3]) {
    return std::rotr(word, by[0]) ^ std::rotr(word, by[1]) ^ (word >> static_cast<unsigned>(by[2]));
}

template <typename Word>
Word loadBig(const unsigned char* bytes) {
    Word word;
    std::memcpy(&word, bytes, sizeof word);
    if constexpr (sizeof word == 8) return __builtin_bswap64(word);
    return static_cast<Word>(__builtin_bswap32(static_cast<std::uint32_t>(word)));
}

template <typename Word>
void storeBig(unsigned char* out, Word word) {
    for (std::size_t i = sizeof word; i-- > 0; word = static_cast<Word>(word >> 8U)) {
        out[i] = static_cast<unsigned char>(word);
    }
}

template <typename Word>
Word choice(Word x, Word y, Word z) {
    return z ^ (x & (y ^ z));
}

template <typename Word>
Word majority(Word x, Word y, Word z) {
    return (x & y) | (z & (x | y));
}

/// One block of SHA-2 (FIPS 180-4 6.2.2, 6.4.2). Eight rounds at a time, so that the variables change places by name.
template <typename Sha>
void compressSha2(std::array<typename Sha::Word, 8>& chain, const unsigned char* block,
                  const typename Sha::Word* constants) {
    using Word = typename Sha::Word;
    Word w[Sha::kRounds];
    for (std::size_t t = 0; t < 16; ++t) w[t] = loadBig<Word>(block + t * sizeof(Word));
    for (std::size_t t = 16; t < Sha::kRounds; ++t) {
        w[t] = sigma(w[t - 2], Sha::kSigma1) + w[t - 7] + sigma(w[t - 15], Sha::kSigma0) + w[t - 16];
    }
    auto [a, b, c, d, e, f, g, h] = chain;
    const auto round = [](Word A, Word B, Word C, Word& D, Word E, Word F, Word G, Word& H, Word input) {
        const Word t1 = H + rotated(E, Sha::kSum1) + choice(E, F, G) + input;
        D += t1;
        H = t1 + rotated(A, Sha::kSum0) + majority(A, B, C);
    };
    for (std::size_t t = 0; t < Sha::kRounds; t += 8) {
        round(a, b, c, d, e, f, g, h, constants[t] + w[t]);
        round(h, a, b, c, d, e, f, g, constants[t + 1] + w[t + 1]);
        round(g, h, a, b, c, d, e, f, constants[t + 2] + w[t + 2]);
        round(f, g, h, a, b, c, d, e, constants[t + 3] + w[t + 3]);
        round(e, f, g, h, a, b, c, d, constants[t + 4] + w[t + 4]);
        round(d, e, f, g, h, a, b, c, constants[t + 5] + w[t + 5]);
        round(c, d, e, f, g, h, a, b, constants[t + 6] + w[t + 6]);
        round(b, c, d, e, f, g, h, a, constants[t + 7] + w[t + 7]);
    }
    const Word words[8] = {a, b, c, d, e, f, g, h};
    for (std::size_t i = 0; i < chain.size(); ++i) chain[i] += words[i];
}

/// Word number t of the schedule of SHA-1, of which 16 words are kept (FIPS 180-4 6.1.3). Made one by one: a loop of its
/// own would be vectorized, and reading back words that were just written in pairs costs more than that saves.
std::uint32_t scheduled(std::array<std::uint32_t, 16>& w, std::size_t t) {
    std::uint32_t& word = w[t % 16];
    if (t >= 16) word = std::rotl(w[(t + 13) % 16] ^ w[(t + 8) % 16] ^ w[(t + 2) % 16] ^ word, 1);
    return word;
}

/// Twenty rounds of SHA-1 with one function and one constant.
template <typename Mix>
void twentyRounds(std::array<std::uint32_t, 5>& variables, std::array<std::uint32_t, 16>& w, std::size_t from,
                  std::uint32_t constant, Mix mix) {
    using Word = std::uint32_t;
    auto [a, b, c, d, e] = variables;
    const auto round = [constant, mix](Word A, Word& B, Word C, Word D, Word& E, Word input) {
        E += std::rotl(A, 5) + mix(B, C, D) + constant + input;
        B = std::rotl(B, 30);
    };
    for (std::size_t t = from; t < from + 20; t += 5) {
        round(a, b, c, d, e, scheduled(w, t));
        round(e, a, b, c, d, scheduled(w, t + 1));
        round(d, e, a, b, c, scheduled(w, t + 2));
        round(c, d, e, a, b, scheduled(w, t + 3));
        round(b, c, d, e, a, scheduled(w, t + 4));
    }
    variables = {a, b, c, d, e};
}

/// One block of SHA-1.
void compressSha1(std::array<std::uint32_t, 8>& chain, const unsigned char* block, const std::uint32_t* constants) {
    using Word = std::uint32_t;
    std::array<Word, 16> w{};
    for (std::size_t t = 0; t < w.size(); ++t) w[t] = loadBig<Word>(block + t * sizeof(Word));
    std::array<Word, 5> variables = {chain[0], chain[1], chain[2], chain[3], chain[4]};
    // Lambdas have types of their own and so become part of the loop; function pointers would not.
    const auto parity = [](Word x, Word y, Word z) { return x ^ y ^ z; };
    twentyRounds(variables, w, 0, constants[0], [](Word x, Word y, Word z) { return choice(x, y, z); });
    twentyRounds(variables, w, 20, constants[1], parity);
    twentyRounds(variables, w, 40, constants[2], [](Word x, Word y, Word z) { return majority(x, y, z); });
    twentyRounds(variables, w, 60, constants[3], parity);
    for (std::size_t i = 0; i < variables.size(); ++i) chain[i] += variables[i];
}

bool isWide(int type) { return type >= 2; }

std::size_t blockSize(int type) { return isWide(type) ? 128 : 64; }

// Adds to the length of the message in bits, high and low word.
void countBits(std::uint64_t (&bits)[2], std::uint64_t bytes) {
    const std::uint64_t before = bits[1];
    bits[1] += bytes << 3U;
    bits[0] += (bytes >> 61U) + (bits[1] < before ? 1 : 0);
}

}  // namespace

IMessageDigest::IMessageDigest() = default;
IMessageDigest::IMessageDigest(const IMessageDigest&) = default;
IMessageDigest& IMessageDigest::operator=(const IMessageDigest&) = default;
IMessageDigest::~IMessageDigest() = default;

CSHA::CSHA(int type) : type_(type < 0 || type > 3 ? 0 : type) { CSHA::Reset(); }

CSHA::CSHA(const CSHA&) = default;
CSHA& CSHA::operator=(const CSHA&) = default;
CSHA::~CSHA() = default;

void CSHA::Reset() {
    used_ = 0;
    bits_[0] = bits_[1] = 0;
    switch (type_) {
        case 1:
            std::copy(std::begin(kH256), std::end(kH256), narrow_.begin());
            break;
        case 2:
            std::copy(std::begin(kH384), std::end(kH384), wide_.begin());
            break;
        case 3:
            std::copy(std::begin(kH512), std::end(kH512), wide_.begin());
            break;
        default:
            std::copy(std::begin(kH160), std::end(kH160), narrow_.begin());
            break;
    }
}

void CSHA::Transform() {
    if (isWide(type_)) {
        compressSha2<Sha512>(wide_, block_.data(), kK512);
    } else if (type_ == 1) {
        compressSha2<Sha256>(narrow_, block_.data(), kK256);
    } else {
        compressSha1(narrow_, block_.data(), kK160);
    }
}

void CSHA::AddData(const char* data, int len) {
    if (data == nullptr || len < 1) return;
    auto left = static_cast<std::size_t>(len);
    countBits(bits_, left);
    while (left > 0) {
        const std::size_t taken = std::min(left, blockSize(type_) - used_);
        std::memcpy(block_.data() + used_, data, taken);
        data += taken;
        left -= taken;
        used_ += taken;
        if (used_ < blockSize(type_)) return;
        Transform();
        used_ = 0;
    }
}

void CSHA::FinalDigest(char* out) {
    constexpr unsigned char kEndOfMessage = 0x80;
    const std::size_t lengthRoom = isWide(type_) ? 16 : 8;
    block_[used_++] = kEndOfMessage;
    if (used_ > blockSize(type_) - lengthRoom) {
        std::fill(block_.begin() + static_cast<std::ptrdiff_t>(used_), block_.end(), static_cast<unsigned char>(0));
        Transform();
        used_ = 0;
    }
    std::fill(block_.begin() + static_cast<std::ptrdiff_t>(used_), block_.end(), static_cast<unsigned char>(0));
    if (isWide(type_)) storeBig(block_.data() + blockSize(type_) - 16, bits_[0]);
    storeBig(block_.data() + blockSize(type_) - 8, bits_[1]);
    Transform();

    constexpr std::size_t kDigestBytes[] = {20, 32, 48, 64};
    std::array<unsigned char, 64> digest{};
    for (std::size_t i = 0; i < 8; ++i) {
        if (isWide(type_)) {
            storeBig(digest.data() + 8 * i, wide_[i]);
        } else {
            storeBig(digest.data() + 4 * i, narrow_[i]);
        }
    }
    if (out != nullptr) std::memcpy(out, digest.data(), kDigestBytes[type_]);
    Reset();
}

SUI64 CSHA::SIG0(const SUI64& word) { return {sigma(word.value, Sha512::kSigma0)}; }

SUI64 CSHA::SIG1(const SUI64& word) { return {sigma(word.value, Sha512::kSigma1)}; }
