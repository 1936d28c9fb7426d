// Searching the bytes of a document for keywords.
#include "reader/Search.h"

namespace varnpdf {

KeywordSearch& search(Document& document, std::string_view keyword, bool standalone) {
    auto& searches = document.caches.searches;
    for (const auto& known : searches) {
        if (known->serves(keyword, standalone)) return *known;
    }
    searches.push_back(std::make_unique<KeywordSearch>(document.view(), keyword, standalone));
    return *searches.back();
}

std::size_t nextKeyword(Document& document, std::string_view keyword, std::size_t start) {
    return search(document, keyword, true).next(start);
}

std::size_t lastKeyword(Document& document, std::string_view keyword) {
    constexpr std::size_t kTail = 1024;
    const bool tailOnly = keyword == "startxref" && document.length > kTail;
    return search(document, keyword, true).last(tailOnly ? document.length - kTail : 0);
}

}  // namespace varnpdf
