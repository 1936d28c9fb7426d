// Texts that the security store is made of.
#include "longterm/StoreTexts.h"

#include "support/Text.h"

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

}  // namespace varnpdf
