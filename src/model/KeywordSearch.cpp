// Searching a document for one keyword.
#include "model/KeywordSearch.h"

#include <emmintrin.h>

#include <algorithm>
#include <bit>
#include <cstring>

#include "syntax/CharClass.h"

namespace varnpdf {
namespace {

constexpr std::size_t kNone = KeywordSearch::kNone;

std::size_t findPlainly(std::string_view text, std::string_view keyword, std::size_t at) {
    const void* const hit = memmem(text.data() + at, text.size() - at, keyword.data(), keyword.size());
    return hit == nullptr ? kNone : static_cast<std::size_t>(static_cast<const char*>(hit) - text.data());
}

// Asks 16 places at once whether the first and the last byte of the keyword are there, and compares where they are.
// The C library's search prepares a table in each call, which costs more than the search itself where objects are short.
// SSE2 is part of every x86-64.
std::size_t find(std::string_view text, std::string_view keyword, std::size_t at) {
    constexpr std::size_t kLanes = sizeof(__m128i);
    constexpr std::size_t kLongest = 32;  // longer ones could be compared too often
    const std::size_t length = keyword.size();
    if (length > kLongest) return findPlainly(text, keyword, at);
    const __m128i first = _mm_set1_epi8(keyword.front());
    const __m128i last = _mm_set1_epi8(keyword.back());
    const auto equal = [](const char* bytes, __m128i wanted) {
        return _mm_cmpeq_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes)), wanted);
    };
    for (; at + length - 1 + kLanes <= text.size(); at += kLanes) {
        const char* const begin = text.data() + at;
        const __m128i both = _mm_and_si128(equal(begin, first), equal(begin + length - 1, last));
        for (auto hits = static_cast<unsigned>(_mm_movemask_epi8(both)); hits != 0; hits &= hits - 1) {
            const auto lane = static_cast<std::size_t>(std::countr_zero(hits));
            if (std::memcmp(begin + lane, keyword.data(), length) == 0) return at + lane;
        }
    }
    return findPlainly(text, keyword, at);
}

}  // namespace

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
        at = find(content_, keyword_, at);
        if (at == kNone || counts(at)) return at;
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
