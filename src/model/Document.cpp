// What is known of one file.
#include "model/Document.h"

#include <algorithm>

#include "support/Limits.h"

namespace varnpdf {

Document::Document() : newest(std::make_unique<CPdfTrailer>()), update(std::make_unique<CPdfTrailer>()) {}

Document::~Document() = default;

Bytes releaseBytes(Document& document) {
    Bytes bytes;
    if (document.bytes.use_count() == 1) {
        // Nobody else can see the bytes, and they were not made const.
        bytes = std::move(const_cast<Bytes&>(*document.bytes));
    } else {
        const std::string_view content = document.view();
        bytes.reserve(content.size() + 1);
        std::copy(content.begin(), content.end(), bytes.data());
        bytes.setSize(content.size());
    }
    document.bytes.reset();
    document.length = 0;
    return bytes;
}

std::size_t inflateBudget(const Document& document) noexcept {
    const std::size_t budget = limits::kInflatedBytesBase + limits::kInflatedBytesPerByte * document.length;
    return budget - std::min(budget, document.inflated);
}

}  // namespace varnpdf
