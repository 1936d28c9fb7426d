// Following references from many places to the same objects.
#pragma once

#include <string_view>
#include <unordered_map>

#include "model/Lookup.h"

namespace varnpdf {

/// `resolve` for walks: many values may refer to one long object, which is read once. The objects must not change
/// meanwhile.
class Values {
public:
    explicit Values(const Document& document) : document_(document) {}
    [[nodiscard]] const Document& document() const noexcept { return document_; }

    Resolved resolve(std::string_view value);
    std::string_view resolved(std::string_view value) { return resolve(value).value; }

private:
    const Document& document_;
    std::unordered_map<const CPdfObj*, Resolved> known_;
};

}  // namespace varnpdf
