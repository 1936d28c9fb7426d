// Texts that the security store is made of.
#include "longterm/StoreTexts.h"

#include <algorithm>
#include <array>

#include "support/Text.h"
#include "varnpdf/Sha.h"

namespace varnpdf {

std::string referenceArray(const std::vector<int>& numbers) {
    std::string out = "[";
    for (const int number : numbers) append(out, out.size() > 1 ? " " : "", number, " 0 R");
    return out + ']';
}

std::string replaced(std::string_view text, std::string_view search, std::string_view replacement, int limit) {
    if (search.empty()) return std::string(text);
    std::string out;
    std::size_t copied = 0;
    int count = 0;
    for (std::size_t at = text.find(search); at != std::string_view::npos; at = text.find(search, copied)) {
        append(out, text.substr(copied, at - copied), replacement);
        copied = at + search.size();
        if (++count == limit) break;
    }
    append(out, text.substr(copied));
    return out;
}

std::string storeKey(std::string_view contents) {
    constexpr std::size_t kPiece = std::size_t{1} << 30U;  // AddData counts in int
    constexpr std::string_view kUpper = "0123456789ABCDEF";
    CSHA sha(0);
    for (; !contents.empty(); contents.remove_prefix(std::min(kPiece, contents.size()))) {
        sha.AddData(contents.data(), static_cast<int>(std::min(kPiece, contents.size())));
    }
    std::array<char, 20> digest{};
    sha.FinalDigest(digest.data());
    std::string key;
    for (const char byte : digest) {
        key.push_back(kUpper[static_cast<unsigned char>(byte) >> 4U]);
        key.push_back(kUpper[static_cast<unsigned char>(byte) & 0xfU]);
    }
    return key;
}

std::string upperDigits(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](char c) { return c >= 'a' && c <= 'f' ? static_cast<char>(c - 'a' + 'A') : c; });
    return text;
}

}  // namespace varnpdf
