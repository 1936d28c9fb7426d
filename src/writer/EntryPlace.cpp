// Editing a value where it stands.
#include "writer/EntryPlace.h"

#include <span>

#include "model/Lookup.h"
#include "support/Text.h"
#include "syntax/Dictionary.h"
#include "syntax/Text.h"
#include "syntax/Values.h"

namespace varnpdf {
namespace {

std::string withEntry(std::string_view dictionary, std::span<const std::string> path, std::string_view value) {
    if (path.empty()) return std::string(value);
    std::string out(dictionary.starts_with("<<") ? dictionary : "<<>>");
    setEntry(out, path.front(), withEntry(valueOf(out, path.front()), path.subspan(1), value));
    return out;
}

}  // namespace

EntryPlace EntryPlace::entry(const Document& document, std::string_view key) const {
    const Resolved found = resolve(document, valueOf(value(), key));
    if (found.holder != nullptr && !found.value.empty()) return {*update_, *found.holder};
    EntryPlace place(*this);
    place.path_.emplace_back(key);
    return place;
}

std::string_view EntryPlace::value() const {
    std::string_view found = objectValue(update_->current(*holder_));
    for (const std::string& key : path_) found = valueOf(found, key);
    return found;
}

void EntryPlace::set(std::string_view value) const {
    std::string& object = update_->change(*holder_);
    const std::string_view body = objectValue(object);
    if (path_.empty()) {
        object.replace(offsetIn(object, body), body.size(), value);
        return;
    }
    const std::span<const std::string> path(path_);
    setEntry(object, path.front(), withEntry(valueOf(body, path.front()), path.subspan(1), value));
}

void EntryPlace::addReferences(const std::vector<int>& numbers) const {
    std::string array(itemsOf(value()) ? value() : "[]");
    array.pop_back();
    for (const int number : numbers) append(array, array.size() > 1 ? " " : "", number, " 0 R");
    set(array + ']');
}

}  // namespace varnpdf
