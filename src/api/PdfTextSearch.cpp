// CPdfTextSearch, and the search by CPdf.
#include "varnpdf/PdfTextSearch.h"

#include <algorithm>

#include "api/PdfState.h"
#include "content/TextSearch.h"
#include "support/Guarded.h"
#include "syntax/Encoding.h"
#include "syntax/Text.h"

using namespace varnpdf;

namespace {

int search(CPdf* pdf, const char* text, std::vector<SigPosStruct>& hits) {
    const auto characters = fromUtf8(viewOf(text));
    if (!characters || !isSearchable(*characters)) return VARNPDF_TEXT_UNUSABLE;
    const auto pages = pdf == nullptr ? std::nullopt : pagesOf(documentOf(*pdf));
    if (!pages) return VARNPDF_ROOT_OBJECT_MISSING;
    const TextHits found = findText(documentOf(*pdf), *pages, *characters);
    hits.reserve(found.hits.size());
    for (const TextHit& hit : found.hits) {
        hits.push_back({hit.page, hit.box.left, hit.box.bottom, hit.box.right, hit.box.top});
    }
    if (!found.complete) return VARNPDF_SEARCH_INCOMPLETE;
    return hits.empty() ? VARNPDF_TEXT_NOT_FOUND : VARNPDF_OK;
}

}  // namespace

struct CPdfTextSearch::State {
    CPdf* pdf;
    std::vector<SigPosStruct> hits;
};

CPdfTextSearch::CPdfTextSearch(CPdf* pdf) : state_(std::make_unique<State>(State{pdf, {}})) {}

CPdfTextSearch::~CPdfTextSearch() = default;

int CPdfTextSearch::Find(const char* text) {
    state_->hits.clear();
    return guarded([&] { return search(state_->pdf, text, state_->hits); });
}

const std::vector<SigPosStruct>& CPdfTextSearch::GetHits() const noexcept { return state_->hits; }

int CPdf::SearchSigPos_PDFFile(int* count, SigPosStruct* positions, char* text) {
    if (count == nullptr) return VARNPDF_TEXT_UNUSABLE;
    const int room = positions == nullptr ? 0 : std::max(*count, 0);
    *count = 0;
    return guarded([&] {
        std::vector<SigPosStruct> hits;
        const int code = search(this, text, hits);
        *count = static_cast<int>(hits.size());
        std::copy_n(hits.begin(), std::min(*count, room), positions);
        return code;
    });
}
