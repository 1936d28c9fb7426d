// What is known of one file.
#include "model/Document.h"

#include <algorithm>

#include "support/Limits.h"

namespace varnpdf {

Document::Document() : newest(std::make_unique<CPdfTrailer>()), update(std::make_unique<CPdfTrailer>()) {}

Document::~Document() = default;

std::size_t inflateBudget(const Document& document) noexcept {
    const std::size_t budget = limits::kInflatedBytesBase + limits::kInflatedBytesPerByte * document.length;
    return budget - std::min(budget, document.inflated);
}

}  // namespace varnpdf
