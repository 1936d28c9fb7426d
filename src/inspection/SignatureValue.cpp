// What stands in the room of a signature value and in /Cert.
#include "inspection/SignatureValue.h"

#include <algorithm>

#include "syntax/CharClass.h"
#include "syntax/Der.h"
#include "syntax/Reference.h"

namespace varnpdf {
namespace {

std::string decode(std::string_view digits, std::size_t bytes) {
    std::string out(std::min(bytes, digits.size() / 2), '\0');
    out.resize(hexToBytes(digits, reinterpret_cast<unsigned char*>(out.data()), out.size()));
    return out;
}

}  // namespace

bool startsWithPadding(std::string_view digits) {
    constexpr std::string_view kPadding = "\x31\x31";
    return decode(digits, kPadding.size()) == kPadding;
}

std::optional<std::size_t> elementSize(std::string_view digits) {
    constexpr std::size_t kHeaderBytes = 32;
    const std::string head = decode(digits, kHeaderBytes);
    const auto header = derHeader(head);
    if (!header) return std::nullopt;
    const auto size = derElementLength(header->indefinite ? decode(digits, digits.size() / 2) : head);
    return size && *size <= digits.size() / 2 ? size : std::nullopt;
}

std::optional<std::size_t> octetStringSize(std::string_view digits, bool checkTag) {
    constexpr std::size_t kHeaderBytes = 8;
    constexpr char kOctetString = 0x04;
    const std::string head = decode(digits, kHeaderBytes);
    if (head.size() < 2 || (checkTag && head[0] != kOctetString)) return std::nullopt;
    const auto count = static_cast<std::size_t>(static_cast<unsigned char>(head[1]) & 0x0fU);
    if (count > head.size() - 2) return std::nullopt;
    std::size_t length = 0;
    for (std::size_t i = 0; i < count; ++i) length = (length << 8U) | static_cast<unsigned char>(head[2 + i]);
    const std::size_t size = count + length + 2;
    return size <= digits.size() / 2 ? std::optional(size) : std::nullopt;
}

bool decodeInto(std::string_view digits, unsigned char* out, std::size_t size) {
    std::size_t found = 0;
    std::size_t end = 0;
    for (; end < digits.size() && found < 2 * size; ++end) {
        if (isClass(digits[end], kIsHexDigit)) {
            ++found;
        } else if (digits[end] != '\r') {
            return false;
        }
    }
    return found == 2 * size && hexToBytes(digits.substr(0, end), out, size) == size;
}

std::string hexText(std::string_view digits, std::size_t size) {
    std::string out;
    out.reserve(2 * size);
    for (std::size_t at = 0; at < digits.size() && out.size() < 2 * size; ++at) {
        if (digits[at] != '\r') out.push_back(digits[at]);
    }
    return out;
}

Certificates splitCertificates(std::string_view value) {
    Certificates found;
    if (value.starts_with('[')) {
        if (value.ends_with(']')) value.remove_suffix(1);
        value.remove_prefix(1);
        value = trim(value, kWhiteSpace);
    }
    if (value.empty()) return found;
    found.hexadecimal = value.starts_with('<');
    if (!found.hexadecimal) {
        found.texts.push_back(value);
        return found;
    }
    while (found.texts.size() < Certificates::kTracked) {
        const std::size_t open = value.find('<');
        const std::size_t close = open == std::string_view::npos ? open : value.find('>', open);
        if (close == std::string_view::npos) break;
        found.texts.push_back(value.substr(open + 1, close - open - 1));
        value.remove_prefix(close + 1);
    }
    return found;
}

bool certificateBytes(std::string_view text, std::size_t size, unsigned char* out) {
    constexpr std::size_t kLooksHexadecimal = 4;
    const std::string_view head = text.substr(0, kLooksHexadecimal);
    if (head.size() == kLooksHexadecimal &&
        std::all_of(head.begin(), head.end(), [](char c) { return isClass(c, kIsHexDigit); })) {
        return decodeInto(text, out, size);
    }
    if (size > text.size()) return false;
    std::copy_n(text.begin(), size, out);
    return true;
}

}  // namespace varnpdf
