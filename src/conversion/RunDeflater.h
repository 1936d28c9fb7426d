// Black and white rows as a zlib stream of RGB samples, without ever making the samples.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace varnpdf {

/// A scanned page of 300 dots per inch has one megabyte of bits and 26 megabytes of RGB samples, all of them in runs of
/// one byte. Each run is written as a literal and matches of distance one (RFC 1951), so that the time goes with the
/// number of runs.
class RunDeflater {
public:
    void start();
    /// One row of `width` bits, the first in the highest bit of the first byte. Eight bytes behind the row must be
    /// readable.
    /// @param one  the sample, 0 or 255, that a bit of 1 stands for; a bit of 0 is the other
    void addRow(const unsigned char* row, std::uint32_t width, unsigned char one);
    /// The compressed stream, valid until the next one is begun.
    std::string_view finish();
    /// Bytes compressed so far.
    [[nodiscard]] std::size_t size() const noexcept { return out_.size(); }

private:
    static constexpr std::size_t kSymbols = 32;  // two literals, the end of the block, 29 lengths
    using Lengths = std::array<std::uint8_t, kSymbols>;

    void add(unsigned char sample, std::uint64_t count);
    void endRun();
    void addToken(unsigned symbol, unsigned extra = 0);
    void endBlock(bool last);
    void putLengths(const Lengths& lengths);
    void putTokens(const Lengths& lengths);
    void putBits(std::uint64_t bits, unsigned count);

    std::string out_;
    std::uint64_t bits_ = 0;  ///< not yet written, the first in the lowest bit
    unsigned bitCount_ = 0;
    std::vector<std::uint16_t> tokens_;  ///< symbol in the low five bits, extra bits above
    std::array<std::uint32_t, kSymbols> uses_{};
    unsigned char sample_ = 0;  ///< of the run that goes on
    std::uint64_t run_ = 0;
    std::uint64_t sumA_ = 1;  ///< Adler-32 (RFC 1950)
    std::uint64_t sumB_ = 0;
};

}  // namespace varnpdf
