// Base64 (RFC 4648 section 4).
#include <array>
#include <cstdint>
#include <string_view>

#include "varnpdf/Sha.h"

namespace {

constexpr std::string_view kAlphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr unsigned kNoDigit = 64;

constexpr std::array<unsigned char, 256> digitTable() {
    std::array<unsigned char, 256> table{};
    table.fill(kNoDigit);
    for (std::size_t i = 0; i < kAlphabet.size(); ++i) {
        table[static_cast<unsigned char>(kAlphabet[i])] = static_cast<unsigned char>(i);
    }
    return table;
}
constexpr std::array<unsigned char, 256> kDigits = digitTable();

}  // namespace

std::string base64_encode(const unsigned char* data, unsigned int len) {
    if (data == nullptr) return {};
    std::string out;
    out.reserve((std::size_t{len} + 2) / 3 * 4);
    for (std::size_t at = 0; at < len; at += 3) {
        const std::size_t bytes = len - at < 3 ? len - at : 3;
        std::uint32_t group = static_cast<std::uint32_t>(data[at]) << 16U;
        if (bytes > 1) group |= static_cast<std::uint32_t>(data[at + 1]) << 8U;
        if (bytes > 2) group |= data[at + 2];
        for (std::size_t i = 0; i < 4; ++i) {
            out.push_back(i > bytes ? '=' : kAlphabet[(group >> (18U - 6U * static_cast<unsigned>(i))) & 63U]);
        }
    }
    return out;
}

std::vector<unsigned char> base64_decode(const std::string& text) {
    std::vector<unsigned char> out;
    out.reserve(text.size() / 4 * 3 + 2);
    std::uint32_t group = 0;
    unsigned bits = 0;
    for (const char c : text) {
        const unsigned digit = kDigits[static_cast<unsigned char>(c)];
        if (digit == kNoDigit) break;
        group = group << 6U | digit;
        bits += 6;
        if (bits < 8) continue;
        bits -= 8;
        out.push_back(static_cast<unsigned char>(group >> bits));
    }
    return out;
}
