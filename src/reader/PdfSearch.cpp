// CPdf: searching the bytes of the document for keywords and lines.
#include <cstring>

#include "reader/KeywordSearch.h"
#include "syntax/Cursor.h"
#include "varnpdf/Pdf.h"

using namespace varnpdf;

namespace {

constexpr std::size_t kTail = 1024;  // where "startxref" is sought (ISO 32000-2 7.5.5, annex C.4)
constexpr int kModeNext = 1;
constexpr int kModeLast = 2;

int offsetOrNone(std::size_t at) { return at == KeywordSearch::kNone ? -1 : static_cast<int>(at); }

}  // namespace

KeywordSearch& CPdf::search(std::string_view keyword, bool standalone) {
    for (const auto& search : searches_) {
        if (search->serves(keyword, standalone)) return *search;
    }
    searches_.push_back(std::make_unique<KeywordSearch>(view(), keyword, standalone));
    return *searches_.back();
}

std::size_t CPdf::nextId(std::string_view keyword, std::size_t start) { return search(keyword, true).next(start); }

int CPdf::GotoIdGeneral(const char* keyword, int mode, int start) {
    if (!content_) return 0;
    if (keyword == nullptr || *keyword == '\0') return -1;
    if (mode == kModeNext) return start < 0 ? -1 : offsetOrNone(nextId(keyword, static_cast<std::size_t>(start)));
    const bool tailOnly = mode == kModeLast && std::strcmp(keyword, "startxref") == 0 && contentLen_ > kTail;
    return offsetOrNone(search(keyword, true).last(tailOnly ? contentLen_ - kTail : 0));
}

int CPdf::GotoLastId(const char* keyword) { return GotoIdGeneral(keyword, kModeLast, 0); }

int CPdf::GotoNextId(const char* keyword, int start) { return GotoIdGeneral(keyword, kModeNext, start); }

int CPdf::GetLine(char* out, int pos) { return GetLine(out, pos, static_cast<int>(contentLen_)); }

int CPdf::GetLine(char* out, int pos, int max) {
    if (out == nullptr) return pos;
    *out = '\0';
    if (pos < 0) return pos;
    Cursor cursor(view(), static_cast<std::size_t>(pos));
    cursor.skip(kIsEol);
    TextSpan line = cursor.takeUntil(kIsEol);
    const auto most = static_cast<std::size_t>(max < 0 ? 0 : max);
    if (line.size() > most) line.end = line.begin + most;
    std::memcpy(out, view().data() + line.begin, line.size());
    out[line.size()] = '\0';
    return static_cast<int>(line.end);
}
