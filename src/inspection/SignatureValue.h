// What stands in the room of a signature value (/Contents) and in /Cert.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace varnpdf {

/// The digits are those of 0x31 0x31, with which a value shorter than its room is filled up: there is no value.
bool startsWithPadding(std::string_view digits);

/// Bytes of the DER element in the digits; nothing when it cannot be read or is longer than its room. The header says
/// the size, unless the length is indefinite.
std::optional<std::size_t> elementSize(std::string_view digits);

/// Bytes of the OCTET STRING in the digits, likewise. The low four bits of the length byte count the bytes of the
/// length, also where it is short. Without `checkTag` any tag will do.
std::optional<std::size_t> octetStringSize(std::string_view digits, bool checkTag);

/// Decodes exactly `size` bytes; carriage returns between digits are passed over. False when there are too few digits
/// or something else stands between them.
bool decodeInto(std::string_view digits, unsigned char* out, std::size_t size);

/// The first 2 * `size` characters, carriage returns not counted and left out.
std::string hexText(std::string_view digits, std::size_t size);

struct Certificates {
    static constexpr std::size_t kTracked = 12;
    std::vector<std::string_view> texts;
    bool hexadecimal = false;

    /// Size of a certificate in bytes.
    [[nodiscard]] std::size_t size(std::string_view text) const { return hexadecimal ? text.size() / 2 : text.size(); }
};

/// The certificates of a /Cert value: one string, or an array of hexadecimal ones.
Certificates splitCertificates(std::string_view value);

/// The first `size` bytes of a certificate's text, decoded when it begins like hexadecimal digits. False when it
/// cannot be decoded.
bool certificateBytes(std::string_view text, std::size_t size, unsigned char* out);

}  // namespace varnpdf
