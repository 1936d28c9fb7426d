// Following references from many places to the same objects.
#include "inspection/Values.h"

#include "syntax/Values.h"

namespace varnpdf {

Resolved Values::resolve(std::string_view value) {
    const auto number = referenceOf(value);
    if (!number) return {value == "null" ? std::string_view{} : value, nullptr};
    const CPdfObj* const object = document_.objects.find(*number);
    const auto [known, isNew] = known_.try_emplace(object);
    if (isNew && object != nullptr) known->second = varnpdf::resolve(document_, value);
    return known->second;
}

}  // namespace varnpdf
