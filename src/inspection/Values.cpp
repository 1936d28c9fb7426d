// Following references from many places to the same objects.
#include "inspection/Values.h"

#include "support/Limits.h"
#include "syntax/Dictionary.h"
#include "syntax/Values.h"

namespace varnpdf {

Resolved Values::resolve(std::string_view value) {
    Resolved found{value, nullptr};
    for (int i = 0; i < limits::kReferenceChain; ++i) {
        const auto number = referenceOf(found.value);
        if (!number) return found.value == "null" ? Resolved{{}, found.holder} : found;
        found.holder = document_.objects.find(*number);
        if (found.holder == nullptr) return {};
        const auto [known, isNew] = values_.try_emplace(found.holder);
        if (isNew) known->second = objectValue(found.holder->content());
        found.value = known->second;
    }
    return {};
}

}  // namespace varnpdf
