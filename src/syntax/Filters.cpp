// Filters of streams, and what they are called.
#include "syntax/Filters.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <utility>

#include "syntax/CharClass.h"
#include "syntax/Values.h"

namespace varnpdf {
namespace {

/// Collects bytes up to a bound.
class Sink {
public:
    explicit Sink(std::size_t bound) : bound_(bound) {}

    /// The next bytes to fill, at most as many as are left up to the bound; null when not all of them fit.
    char* extend(std::size_t count) {
        const std::size_t size = bytes_.size();
        if (count > bound_ - size) return nullptr;
        if (size + count > bytes_.capacity()) bytes_.reserve(std::max({size + count, size * 2, std::size_t{4096}}));
        bytes_.setSize(size + count);
        return bytes_.data() + size;
    }
    bool put(char byte) {
        char* const room = extend(1);
        if (room != nullptr) *room = byte;
        return room != nullptr;
    }
    bool put(std::string_view bytes) {
        char* const room = extend(bytes.size());
        if (room != nullptr && !bytes.empty()) std::memcpy(room, bytes.data(), bytes.size());
        return room != nullptr;
    }
    [[nodiscard]] char* data() noexcept { return bytes_.data(); }
    [[nodiscard]] std::size_t size() const noexcept { return bytes_.size(); }
    Bytes take() { return std::move(bytes_); }

private:
    Bytes bytes_;
    std::size_t bound_;
};

bool skipsInText(char c) { return isWhite(c) || c == '\0'; }

bool asciiHex(std::string_view data, Sink& out) {
    int high = -1;
    for (const char c : data) {
        if (c == '>') break;
        if (skipsInText(c)) continue;
        const int digit = hexValue(c);
        if (digit < 0) return false;
        if (high >= 0 && !out.put(static_cast<char>(high << 4 | digit))) return false;
        high = high >= 0 ? -1 : digit;
    }
    return high < 0 || out.put(static_cast<char>(high << 4));
}

// The bytes of one group of `count` digits; the missing ones count as the highest.
bool group85(const std::array<std::uint32_t, 5>& digits, std::size_t count, Sink& out) {
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < digits.size(); ++i) value = value * 85 + (i < count ? digits[i] : 84);
    if (value > 0xFFFFFFFFU || count < 2) return false;
    char bytes[4];
    for (unsigned i = 0; i < 4; ++i) bytes[i] = static_cast<char>(value >> (24U - 8U * i) & 0xFFU);
    return out.put({bytes, count - 1});
}

bool ascii85(std::string_view data, Sink& out) {
    std::array<std::uint32_t, 5> digits{};
    std::size_t count = 0;
    if (data.starts_with("<~")) data.remove_prefix(2);
    for (const char c : data) {
        if (c == '~') break;
        if (skipsInText(c)) continue;
        if (c == 'z' && count == 0) {
            if (!out.put(std::string_view("\0\0\0\0", 4))) return false;
            continue;
        }
        if (c < '!' || c > 'u') return false;
        digits[count++] = static_cast<std::uint32_t>(c - '!');
        if (count < digits.size()) continue;
        if (!group85(digits, count, out)) return false;
        count = 0;
    }
    return count == 0 || group85(digits, count, out);
}

bool runLength(std::string_view data, Sink& out) {
    constexpr unsigned kEnd = 128;
    while (!data.empty()) {
        const unsigned length = static_cast<unsigned char>(data.front());
        data.remove_prefix(1);
        if (length == kEnd) return true;
        const std::size_t taken = length < kEnd ? length + 1 : 1;
        if (data.size() < taken) {
            out.put(data);
            return false;
        }
        if (length < kEnd) {
            if (!out.put(data.substr(0, taken))) return false;
        } else {
            char* const room = out.extend(257 - length);
            if (room == nullptr) return false;
            std::memset(room, data.front(), 257 - length);
        }
        data.remove_prefix(taken);
    }
    return true;
}

/// Codes of 9 to 12 bits, the highest first.
class LzwCodes {
public:
    explicit LzwCodes(std::string_view data) : data_(data) {}
    /// -1 at the end.
    int next(unsigned width) {
        while (held_ < width) {
            if (data_.empty()) return -1;
            bits_ = bits_ << 8U | static_cast<unsigned char>(data_.front());
            data_.remove_prefix(1);
            held_ += 8;
        }
        held_ -= width;
        return static_cast<int>(bits_ >> held_ & ((1U << width) - 1U));
    }

private:
    std::string_view data_;
    std::uint32_t bits_ = 0;
    unsigned held_ = 0;
};

// Every string of the table stands in the output already: the one before, and the first byte of what follows it.
bool lzw(std::string_view data, bool earlyChange, Sink& out) {
    constexpr int kClear = 256;
    constexpr int kEnd = 257;
    constexpr std::size_t kFirst = 258;
    constexpr unsigned kLeastWidth = 9;
    constexpr unsigned kMostWidth = 12;
    struct String {
        std::size_t begin, length;
    };
    std::array<String, 1U << kMostWidth> table{};
    const std::size_t early = earlyChange ? 1 : 0;
    LzwCodes codes(data);
    std::size_t next = kFirst;
    unsigned width = kLeastWidth;
    std::size_t previous = 0;
    bool hasPrevious = false;
    for (int code = 0; (code = codes.next(width)) != kEnd;) {
        if (code < 0) return false;
        if (code == kClear) {
            next = kFirst;
            width = kLeastWidth;
            hasPrevious = false;
            continue;
        }
        const std::size_t begin = out.size();
        if (hasPrevious && next < table.size()) table[next++] = {previous, begin - previous + 1};
        if (code < kClear) {
            if (!out.put(static_cast<char>(code))) return false;
        } else {
            if (static_cast<std::size_t>(code) >= next) return false;
            const String string = table[static_cast<std::size_t>(code)];
            if (out.extend(string.length) == nullptr) return false;
            // Byte by byte: the last one of a string may be the first one written here.
            for (std::size_t i = 0; i < string.length; ++i) out.data()[begin + i] = out.data()[string.begin + i];
        }
        previous = begin;
        hasPrevious = true;
        while (width < kMostWidth && next + early >= (std::size_t{1} << width)) ++width;
    }
    return true;
}

enum PngFilter : unsigned char { kNone = 0, kSub = 1, kUp = 2, kAverage = 3, kPaeth = 4 };

int paeth(int left, int up, int corner) {
    const int estimate = left + up - corner;
    const int toLeft = std::abs(estimate - left);
    const int toUp = std::abs(estimate - up);
    const int toCorner = std::abs(estimate - corner);
    if (toLeft <= toUp && toLeft <= toCorner) return left;
    return toUp <= toCorner ? up : corner;
}

int prediction(unsigned char filter, int left, int up, int corner) {
    switch (filter) {
        case kSub:
            return left;
        case kUp:
            return up;
        case kAverage:
            return (left + up) / 2;
        case kPaeth:
            return paeth(left, up, corner);
        default:
            return 0;
    }
}

// Rows of one filter byte and `row` bytes; each row says itself how it was predicted.
bool undoPng(Bytes& data, std::size_t row, std::size_t pixel) {
    auto* const bytes = reinterpret_cast<unsigned char*>(data.data());
    const std::size_t size = data.size();
    std::size_t written = 0;
    bool good = true;
    for (std::size_t at = 0; good && at < size; at += row + 1) {
        const unsigned char filter = bytes[at];
        good = filter <= kPaeth;
        const std::size_t count = good ? std::min(row, size - at - 1) : 0;
        // The row before lies directly in front of what is written now.
        const unsigned char* const above = written == 0 ? nullptr : bytes + written - row;
        for (std::size_t i = 0; i < count; ++i) {
            const int up = above == nullptr ? 0 : above[i];
            const int left = i < pixel ? 0 : bytes[written + i - pixel];
            const int corner = above == nullptr || i < pixel ? 0 : above[i - pixel];
            bytes[written + i] = static_cast<unsigned char>(bytes[at + 1 + i] + prediction(filter, left, up, corner));
        }
        written += count;
    }
    data.setSize(written);
    return good;
}

// Every sample is the difference to the one of the same colour before it in its row.
void undoTiff(Bytes& data, std::size_t row, const FilterParms& parms) {
    const auto colors = static_cast<std::size_t>(parms.colors);
    const auto bits = static_cast<unsigned>(parms.bits);
    const unsigned mask = bits == 16 ? 0xFFFFU : (1U << bits) - 1U;
    auto* const bytes = reinterpret_cast<unsigned char*>(data.data());
    for (std::size_t begin = 0; begin < data.size(); begin += row) {
        unsigned char* const line = bytes + begin;
        const std::size_t samples = std::min(row, data.size() - begin) * 8 / bits;
        const auto sample = [&](std::size_t i) {
            if (bits == 16) return static_cast<unsigned>(line[2 * i] << 8U | line[2 * i + 1]);
            return static_cast<unsigned>(line[i * bits / 8]) >> (8 - bits - i * bits % 8) & mask;
        };
        for (std::size_t i = colors; i < samples; ++i) {
            const unsigned value = (sample(i) + sample(i - colors)) & mask;
            if (bits == 16) {
                line[2 * i] = static_cast<unsigned char>(value >> 8U);
                line[2 * i + 1] = static_cast<unsigned char>(value & 0xFFU);
            } else {
                const auto shift = static_cast<unsigned>(8 - bits - i * bits % 8);
                unsigned char& byte = line[i * bits / 8];
                byte = static_cast<unsigned char>((byte & ~(mask << shift)) | value << shift);
            }
        }
    }
}

bool isPredicted(const FilterParms& parms) { return parms.predictor != 1; }

}  // namespace

Filter filterOf(std::string_view name) {
    constexpr std::pair<std::string_view, Filter> kNames[] = {
        {"FlateDecode", Filter::Flate},
        {"Fl", Filter::Flate},
        {"LZWDecode", Filter::Lzw},
        {"LZW", Filter::Lzw},
        {"ASCII85Decode", Filter::Ascii85},
        {"A85", Filter::Ascii85},
        {"ASCIIHexDecode", Filter::AsciiHex},
        {"AHx", Filter::AsciiHex},
        {"RunLengthDecode", Filter::RunLength},
        {"RL", Filter::RunLength},
    };
    const std::string wanted = nameOf(name);
    for (const auto& [known, filter] : kNames) {
        if (known == wanted) return filter;
    }
    return Filter::Unknown;
}

bool undoPrediction(Bytes& data, const FilterParms& parms) {
    constexpr int kTiff = 2;
    constexpr int kFirstPng = 10;
    constexpr int kLastPng = 15;
    constexpr int kMostColors = 256;
    if (!isPredicted(parms)) return true;
    constexpr std::array<int, 5> kDepths = {1, 2, 4, 8, 16};
    const bool sane = parms.colors >= 1 && parms.colors <= kMostColors && parms.columns >= 1 &&
                      std::ranges::find(kDepths, parms.bits) != kDepths.end();
    if (!sane) return false;
    const std::size_t pixelBits = static_cast<std::size_t>(parms.colors) * static_cast<std::size_t>(parms.bits);
    const std::size_t row = (pixelBits * static_cast<std::size_t>(parms.columns) + 7) / 8;
    if (parms.predictor == kTiff) {
        undoTiff(data, row, parms);
        return true;
    }
    if (parms.predictor < kFirstPng || parms.predictor > kLastPng) return false;
    return undoPng(data, row, std::max<std::size_t>(pixelBits / 8, 1));
}

Filtered unfilter(Filter filter, const FilterParms& parms, std::string_view data, std::size_t bound,
                  std::size_t* produced) {
    Filtered result;
    if (filter == Filter::Flate) {
        result = inflateMost(data, bound, produced);
    } else {
        Sink out(bound);
        result.whole = (filter == Filter::Lzw && lzw(data, parms.earlyChange, out)) ||
                       (filter == Filter::AsciiHex && asciiHex(data, out)) ||
                       (filter == Filter::Ascii85 && ascii85(data, out)) ||
                       (filter == Filter::RunLength && runLength(data, out));
        if (produced != nullptr) *produced += out.size();
        result.bytes = out.take();
    }
    const bool predictable = filter == Filter::Flate || filter == Filter::Lzw;
    if (predictable && !undoPrediction(result.bytes, parms)) result.whole = false;
    return result;
}

}  // namespace varnpdf
