// Writing of DER.
#include "der.h"

#include <openssl/asn1.h>
#include <openssl/objects.h>

#include <algorithm>

std::string cli::der::element(Tag tag, std::string_view content) {
    std::string out(1, static_cast<char>(tag));
    if (content.size() < 0x80) {
        out += static_cast<char>(content.size());
    } else {
        std::string digits;
        for (std::size_t rest = content.size(); rest > 0; rest >>= 8U) digits += static_cast<char>(rest & 0xFFU);
        out += static_cast<char>(0x80U | digits.size());
        out.append(digits.rbegin(), digits.rend());
    }
    return out.append(content);
}

std::string cli::der::setOf(Tag tag, std::vector<std::string> elements) {
    // Lexicographic order of bytes; char_traits<char> compares them unsigned.
    std::sort(elements.begin(), elements.end());
    std::string content;
    for (const std::string& part : elements) content += part;
    return element(tag, content);
}

std::string cli::der::objectIdentifier(int nid) { return encoded(OBJ_nid2obj(nid), i2d_ASN1_OBJECT); }
