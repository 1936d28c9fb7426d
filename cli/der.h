// Writing of DER (ITU-T X.690): the few shapes that a signature value is made of.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace cli::der {

enum Tag : unsigned char {
    kInteger = 0x02,
    kOctetString = 0x04,
    kSequence = 0x30,
    kSet = 0x31,
    kContext0 = 0xA0,  ///< [0], constructed
    kContext4 = 0xA4,  ///< [4], constructed
};

/// Tag, definite length and content.
std::string element(Tag tag, std::string_view content);
/// A SET OF: the elements in the order that DER demands (X.690 11.6).
std::string setOf(Tag tag, std::vector<std::string> elements);
/// OBJECT IDENTIFIER of an OpenSSL number.
std::string objectIdentifier(int nid);

/// DER of an OpenSSL structure by its i2d function; empty when it cannot be written.
template <typename T>
std::string encoded(const T* structure, int (*i2d)(const T*, unsigned char**)) {
    const int length = i2d(structure, nullptr);
    if (length <= 0) return {};
    std::string out(static_cast<std::size_t>(length), '\0');
    auto* at = reinterpret_cast<unsigned char*>(out.data());
    return i2d(structure, &at) == length ? out : std::string();
}

}  // namespace cli::der
