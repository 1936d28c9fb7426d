// Encodings of text: tables, UTF-8, UTF-16, text strings.
#include "syntax/Encoding.h"

#include <algorithm>
#include <bit>
#include <span>

namespace varnpdf {
namespace {

constexpr std::string_view kUtf16BigEndian = "\xFE\xFF";
// Not in the standard, but written by some producers and read by all viewers.
constexpr std::string_view kUtf16LittleEndian = "\xFF\xFE";
constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";

constexpr char32_t kLastCharacter = 0x10FFFF;

// Where the encodings depart from Latin-1, by code; 0 stands for "no character".
constexpr char32_t kWinAnsiFrom80[] = {0x20AC, 0,      0x201A, 0x192,  0x201E, 0x2026, 0x2020, 0x2021,
                                       0x2C6,  0x2030, 0x160,  0x2039, 0x152,  0,      0x17D,  0,
                                       0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                       0x2DC,  0x2122, 0x161,  0x203A, 0x153,  0,      0x17E,  0x178};
constexpr char32_t kPdfDocFrom18[] = {0x2D8, 0x2C7, 0x2C6, 0x2D9, 0x2DD, 0x2DB, 0x2DA, 0x2DC};
constexpr char32_t kPdfDocFrom80[] = {0x2022, 0x2020, 0x2021, 0x2026, 0x2014, 0x2013, 0x192,  0x2044, 0x2039,
                                      0x203A, 0x2212, 0x2030, 0x201E, 0x201C, 0x201D, 0x2018, 0x2019, 0x201A,
                                      0x2122, 0xFB01, 0xFB02, 0x141,  0x152,  0x160,  0x178,  0x17D,  0x131,
                                      0x142,  0x153,  0x161,  0x17E,  0,      0x20AC};
constexpr char32_t kMacRomanFrom80[] = {
    0xC4,   0xC5,  0xC7,   0xC9,   0xD1,   0xD6,   0xDC,   0xE1,   0xE0,   0xE2,   0xE4,   0xE3, 0xE5,   0xE7,   0xE9,
    0xE8,   0xEA,  0xEB,   0xED,   0xEC,   0xEE,   0xEF,   0xF1,   0xF3,   0xF2,   0xF4,   0xF6, 0xF5,   0xFA,   0xF9,
    0xFB,   0xFC,  0x2020, 0xB0,   0xA2,   0xA3,   0xA7,   0x2022, 0xB6,   0xDF,   0xAE,   0xA9, 0x2122, 0xB4,   0xA8,
    0,      0xC6,  0xD8,   0,      0xB1,   0,      0,      0xA5,   0xB5,   0,      0,      0,    0,      0,      0xAA,
    0xBA,   0,     0xE6,   0xF8,   0xBF,   0xA1,   0xAC,   0,      0x192,  0,      0,      0xAB, 0xBB,   0x2026, 0x20,
    0xC0,   0xC3,  0xD5,   0x152,  0x153,  0x2013, 0x2014, 0x201C, 0x201D, 0x2018, 0x2019, 0xF7, 0,      0xFF,   0x178,
    0x2044, 0xA4,  0x2039, 0x203A, 0xFB01, 0xFB02, 0x2021, 0xB7,   0x201A, 0x201E, 0x2030, 0xC2, 0xCA,   0xC1,   0xCB,
    0xC8,   0xCD,  0xCE,   0xCF,   0xCC,   0xD3,   0xD4,   0,      0xD2,   0xDA,   0xDB,   0xD9, 0x131,  0x2C6,  0x2DC,
    0xAF,   0x2D8, 0x2D9,  0x2DA,  0xB8,   0x2DD,  0x2DB,  0x2C7};

constexpr Encoding latin1() {
    Encoding encoding{};
    for (std::size_t code = 0x20; code < encoding.size(); ++code) encoding[code] = static_cast<char32_t>(code);
    encoding[0x7F] = 0;
    return encoding;
}

constexpr Encoding overlaid(Encoding encoding, std::size_t from, std::span<const char32_t> characters) {
    std::copy(characters.begin(), characters.end(), encoding.begin() + static_cast<std::ptrdiff_t>(from));
    return encoding;
}

// ISO 32000-2 D.3, notes 3, 5 and 6.
constexpr Encoding asFontsRead(Encoding winAnsi) {
    std::replace(winAnsi.begin() + 0x80, winAnsi.begin() + 0xA0, char32_t{0}, char32_t{0x2022});
    winAnsi[0xA0] = 0x20;
    winAnsi[0xAD] = '-';
    return winAnsi;
}

constexpr Encoding withoutSoftHyphen(Encoding pdfDoc) {
    pdfDoc[0xAD] = 0;
    return pdfDoc;
}

constexpr Encoding kWinAnsi = overlaid(latin1(), 0x80, kWinAnsiFrom80);
constexpr Encoding kWinAnsiOfFonts = asFontsRead(kWinAnsi);
constexpr Encoding kMacRoman = overlaid(latin1(), 0x80, kMacRomanFrom80);
constexpr Encoding kPdfDoc = withoutSoftHyphen(overlaid(overlaid(latin1(), 0x18, kPdfDocFrom18), 0x80, kPdfDocFrom80));

std::optional<char> codeIn(const Encoding& encoding, char32_t character) noexcept {
    if (character == 0) return std::nullopt;
    // Most characters have the code of Latin-1.
    if (character < encoding.size() && encoding[character] == character) return static_cast<char>(character);
    const auto found = std::find(encoding.begin(), encoding.end(), character);
    return found == encoding.end() ? std::nullopt : std::optional(static_cast<char>(found - encoding.begin()));
}

unsigned char byteAt(std::string_view bytes, std::size_t at) { return static_cast<unsigned char>(bytes[at]); }

// The next character, moved behind it; a byte that begins none is passed over alone.
std::optional<char32_t> takeCharacter(std::string_view bytes, std::size_t& at) noexcept {
    Utf8Reader reader;
    auto step = Utf8Reader::Step::kMore;
    std::size_t end = at;
    while (step == Utf8Reader::Step::kMore && end < bytes.size()) step = reader.take(byteAt(bytes, end++));
    const bool good = step == Utf8Reader::Step::kCharacter;
    at = good ? end : at + 1;
    return good ? std::optional(reader.character()) : std::nullopt;
}

std::u32string fromUtf16(std::string_view bytes, bool bigEndian) {
    const auto unit = [&](std::size_t at) {
        const char32_t high = byteAt(bytes, bigEndian ? at : at + 1);
        return (high << 8U) | byteAt(bytes, bigEndian ? at + 1 : at);
    };
    std::u32string out;
    std::size_t at = 0;
    for (; at + 1 < bytes.size(); at += 2) {
        char32_t c = unit(at);
        if (c >= 0xD800 && c <= 0xDFFF) {
            const char32_t low = c < 0xDC00 && at + 3 < bytes.size() ? unit(at + 2) : 0;
            const bool pair = low >= 0xDC00 && low <= 0xDFFF;
            c = pair ? 0x10000 + ((c - 0xD800) << 10U) + (low - 0xDC00) : kReplacement;
            if (pair) at += 2;
        }
        out.push_back(c);
    }
    if (at < bytes.size()) out.push_back(kReplacement);
    return out;
}

std::string toUtf16(std::u32string_view characters) {
    std::string out(kUtf16BigEndian);
    const auto put = [&](char32_t unit) {
        out.push_back(static_cast<char>(unit >> 8U));
        out.push_back(static_cast<char>(unit & 0xFFU));
    };
    for (const char32_t c : characters) {
        if (c >= 0x10000) put(0xD800U + ((c - 0x10000U) >> 10U));
        put(c >= 0x10000 ? 0xDC00U + ((c - 0x10000U) & 0x3FFU) : c);
    }
    return out;
}

bool startsWithMark(std::string_view bytes) noexcept {
    return bytes.starts_with(kUtf16BigEndian) || bytes.starts_with(kUtf16LittleEndian) || bytes.starts_with(kUtf8Mark);
}

}  // namespace

const Encoding& winAnsiEncoding() noexcept { return kWinAnsiOfFonts; }
const Encoding& macRomanEncoding() noexcept { return kMacRoman; }
const Encoding& pdfDocEncoding() noexcept { return kPdfDoc; }

std::optional<char> winAnsiCode(char32_t character) noexcept { return codeIn(kWinAnsi, character); }

std::optional<char> pdfDocCode(char32_t character) noexcept {
    if (character == '\t' || character == '\n' || character == '\r') return static_cast<char>(character);
    return codeIn(kPdfDoc, character);
}

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

std::optional<std::u32string> fromUtf8(std::string_view bytes) {
    std::u32string out;
    for (std::size_t at = 0; at < bytes.size();) {
        const auto c = takeCharacter(bytes, at);
        if (!c) return std::nullopt;
        out.push_back(*c);
    }
    return out;
}

std::u32string fromBrokenUtf8(std::string_view bytes) {
    std::u32string out;
    for (std::size_t at = 0; at < bytes.size();) out.push_back(takeCharacter(bytes, at).value_or(kReplacement));
    return out;
}

std::u32string fromUtf8OrLatin1(std::string_view bytes) {
    if (auto characters = fromUtf8(bytes)) return *std::move(characters);
    std::u32string out;
    for (std::size_t at = 0; at < bytes.size(); ++at) out.push_back(byteAt(bytes, at));
    return out;
}

std::string toUtf8(std::u32string_view characters) {
    std::string out;
    const auto put = [&](char32_t c) { out.push_back(static_cast<char>(c)); };
    for (const char32_t c : characters) {
        if (c < 0x80) {
            put(c);
            continue;
        }
        if (c < 0x800) {
            put(0xC0U | (c >> 6U));
        } else if (c < 0x10000) {
            put(0xE0U | (c >> 12U));
            put(0x80U | ((c >> 6U) & 0x3FU));
        } else {
            put(0xF0U | (c >> 18U));
            put(0x80U | ((c >> 12U) & 0x3FU));
            put(0x80U | ((c >> 6U) & 0x3FU));
        }
        put(0x80U | (c & 0x3FU));
    }
    return out;
}

std::u32string printable(std::u32string_view characters) {
    std::u32string out;
    for (const char32_t c : characters) {
        const bool blank = c == '\t' || c == '\n' || c == '\r';
        const bool control = c < 0x20 || (c >= 0x7F && c < 0xA0);
        const bool direction = (c >= 0x202A && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069);
        out.push_back(blank ? U' ' : control || direction ? kReplacement : c);
    }
    return out;
}

std::u32string fromTextString(std::string_view bytes) {
    if (bytes.starts_with(kUtf16BigEndian)) return fromUtf16(bytes.substr(kUtf16BigEndian.size()), true);
    if (bytes.starts_with(kUtf16LittleEndian)) return fromUtf16(bytes.substr(kUtf16LittleEndian.size()), false);
    if (bytes.starts_with(kUtf8Mark)) return fromBrokenUtf8(bytes.substr(kUtf8Mark.size()));
    std::u32string out;
    for (std::size_t at = 0; at < bytes.size(); ++at) {
        const unsigned char code = byteAt(bytes, at);
        const char32_t c = kPdfDoc[code];
        out.push_back(code < 0x18 ? code : c == 0 ? kReplacement : c);
    }
    return out;
}

std::string toTextString(std::u32string_view characters) {
    std::string bytes;
    for (const char32_t c : characters) {
        const auto code = pdfDocCode(c);
        if (!code) return toUtf16(characters);
        bytes.push_back(*code);
    }
    // These bytes would be read as something else.
    return startsWithMark(bytes) ? toUtf16(characters) : bytes;
}

int highOnes(unsigned char byte) noexcept { return std::countl_one(byte); }

bool isUtf8Stream(std::string_view bytes) noexcept {
    int expected = 0;
    for (const char c : bytes) {
        const int ones = highOnes(static_cast<unsigned char>(c));
        if ((ones == 1) != (expected > 0)) return false;
        expected = ones == 1 ? expected - 1 : std::max(ones - 1, 0);
    }
    return expected == 0;
}

int takeUtf8(std::string_view bytes, std::size_t& at) noexcept {
    const unsigned char lead = byteAt(bytes, at++);
    const int ones = highOnes(lead);
    if (ones == 0) return lead;
    if (ones == 1 || ones > 6) return kBadUtf8;
    unsigned value = lead & (0x7FU >> static_cast<unsigned>(ones));
    for (int more = ones - 1; more > 0; --more) {
        if (at == bytes.size()) return kUtf8End;
        const unsigned char next = byteAt(bytes, at);
        if (highOnes(next) != 1) return kBadUtf8;
        value = (value << 6U) | (next & 0x3FU);
        ++at;
    }
    return static_cast<int>(value);
}

Latin1Text latin1FromUtf8(std::string_view bytes) {
    if (!isUtf8Stream(bytes)) return {std::string(bytes), 0};
    Latin1Text latin1;
    for (std::size_t at = 0; at < bytes.size();) {
        const int c = takeUtf8(bytes, at);
        if (c > 0xFF) ++latin1.replaced;
        latin1.text += c > 0xFF ? ' ' : static_cast<char>(c);
    }
    return latin1;
}

}  // namespace varnpdf
