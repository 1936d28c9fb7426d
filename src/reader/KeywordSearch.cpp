// Searching a document for one keyword.
#include "reader/KeywordSearch.h"

#include <algorithm>
#include <cstring>

#include "syntax/CharClass.h"

namespace varnpdf {

std::size_t KeywordSearch::next(std::size_t start) {
    const std::size_t from = standalone_ ? start + 1 : start;
    if (from >= content_.size()) return kNone;
    if (!listed_ && scanned_ > content_.size()) list();
    if (listed_) {
        const auto it = std::lower_bound(positions_.begin(), positions_.end(), from);
        return it == positions_.end() ? kNone : *it;
    }
    const std::size_t hit = scan(from);
    scanned_ += std::min(hit, content_.size()) - from + 1;
    return hit;
}

std::size_t KeywordSearch::last(std::size_t start) {
    std::size_t found = kNone;
    for (std::size_t at = next(start); at != kNone; at = next(at)) found = at;
    return found;
}

std::size_t KeywordSearch::scan(std::size_t at) const {
    while (at < content_.size()) {
        const void* const hit = memmem(content_.data() + at, content_.size() - at, keyword_.data(), keyword_.size());
        if (hit == nullptr) return kNone;
        at = static_cast<std::size_t>(static_cast<const char*>(hit) - content_.data());
        if (counts(at)) return at;
        ++at;
    }
    return kNone;
}

bool KeywordSearch::counts(std::size_t at) const {
    if (!standalone_) return true;
    const std::size_t end = at + keyword_.size();
    if (at == 0 || end + 2 > content_.size()) return false;
    return content_[end] == '<' || (isCSpace(content_[end]) && isCSpace(content_[at - 1]));
}

void KeywordSearch::list() {
    for (std::size_t at = scan(0); at != kNone; at = scan(at + 1)) {
        positions_.push_back(static_cast<std::uint32_t>(at));
    }
    listed_ = true;
}

}  // namespace varnpdf
