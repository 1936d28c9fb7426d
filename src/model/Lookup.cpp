// References followed.
#include "model/Lookup.h"

#include "support/Limits.h"
#include "syntax/Cursor.h"
#include "syntax/Dictionary.h"
#include "syntax/Values.h"

namespace varnpdf {
namespace {

bool isNothing(std::string_view value) { return value == "null" || value == "endobj"; }

template <typename ValueOf>
Resolved followed(const Document& document, std::string_view value, ValueOf valueOf) {
    Resolved found{value, nullptr};
    for (int i = 0; i < limits::kReferenceChain; ++i) {
        const auto number = referenceOf(found.value);
        if (!number) return isNothing(found.value) ? Resolved{{}, found.holder} : found;
        found.holder = document.objects.find(*number);
        if (found.holder == nullptr) return {};
        found.value = valueOf(*found.holder);
    }
    return {};
}

}  // namespace

Resolved resolve(const Document& document, std::string_view value) {
    return followed(document, value, [](const CPdfObj& object) { return objectValue(object.content()); });
}

Resolved LookupCache::resolve(std::string_view value) {
    return followed(document_, value, [this](const CPdfObj& object) {
        const auto [known, isNew] = values_.try_emplace(&object);
        if (isNew) known->second = objectValue(object.content());
        return known->second;
    });
}

CPdfObj* objectOf(const Document& document, std::string_view value) { return resolve(document, value).holder; }

std::string_view resolved(const Document& document, std::string_view value) { return resolve(document, value).value; }

std::string_view entryOf(const Document& document, std::string_view text, std::string_view key) {
    return resolved(document, valueOf(text, key));
}

std::optional<int> integerOf(const Document& document, std::string_view value) {
    return Cursor(resolved(document, value)).takeInt();
}

std::optional<double> realOf(const Document& document, std::string_view value) {
    return numberOf(resolved(document, value));
}

}  // namespace varnpdf
