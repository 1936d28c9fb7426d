// CPdfAttachments: the face of the embedded files of a document.
#include <algorithm>

#include "api/PdfState.h"
#include "portfolio/EmbeddedFiles.h"
#include "support/Guarded.h"
#include "varnpdf/PdfAttach.h"

using namespace varnpdf;

namespace {

bool holds(const EmbeddedFiles* list, int index) {
    return list != nullptr && index >= 0 && static_cast<std::size_t>(index) < list->size();
}

}  // namespace

CPdfAttachments::CPdfAttachments(CPdf* pdf) {
    if (pdf == nullptr) return;
    guarded([&]() -> int {
        list_ = std::make_unique<EmbeddedFiles>(documentOf(*pdf));
        return VARNPDF_OK;
    });
}

CPdfAttachments::~CPdfAttachments() = default;

int CPdfAttachments::GetCount() const { return list_ ? static_cast<int>(list_->size()) : 0; }

std::string CPdfAttachments::GetKey(int index) const {
    return holds(list_.get(), index) ? list_->key(static_cast<std::size_t>(index)) : std::string();
}

std::string CPdfAttachments::GetName(int index) const {
    return holds(list_.get(), index) ? list_->name(static_cast<std::size_t>(index)) : std::string();
}

std::string CPdfAttachments::GetDescription(int index) const {
    return holds(list_.get(), index) ? list_->description(static_cast<std::size_t>(index)) : std::string();
}

std::string CPdfAttachments::GetMimeType(int index) const {
    return holds(list_.get(), index) ? list_->mimeType(static_cast<std::size_t>(index)) : std::string();
}

long long CPdfAttachments::GetSize(int index) const {
    return holds(list_.get(), index) ? list_->statedSize(static_cast<std::size_t>(index)) : -1;
}

int CPdfAttachments::GetContent(int index, unsigned char* buffer, unsigned long* length) {
    if (!holds(list_.get(), index) || length == nullptr) return VARNPDF_EMBEDDED_FILE_MISSING;
    const auto fetch = [&]() -> int {
        std::string_view bytes;
        const int code = list_->content(static_cast<std::size_t>(index), bytes);
        if (code != VARNPDF_OK) return code;
        *length = bytes.size();
        if (buffer != nullptr) std::copy(bytes.begin(), bytes.end(), buffer);
        return VARNPDF_OK;
    };
    return guarded(fetch, VARNPDF_PDF_MEMORY_ALLOCATION, VARNPDF_EMBEDDED_FILE_UNREADABLE);
}
