// A value that stands in an object of its own or inside of another, edited where it stands.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "writer/Update.h"

namespace varnpdf {

/// Leads from an object to an entry of it, across references: the object that is changed is the one that the value is
/// written in. The object must outlive the place.
class EntryPlace {
public:
    /// The value of the object itself.
    EntryPlace(Update& update, const CPdfObj& object) : update_(&update), holder_(&object) {}
    /// The value of a key in the dictionary that stands here, also one that is not there yet.
    [[nodiscard]] EntryPlace entry(const Document& document, std::string_view key) const;

    /// As changed so far; empty when there is none. Holds until the next change.
    [[nodiscard]] std::string_view value() const;
    /// Dictionaries on the way that are not there are made.
    void set(std::string_view value) const;
    /// Adds references to the array that stands here, and makes it where there is none.
    void addReferences(const std::vector<int>& numbers) const;

private:
    Update* update_;
    const CPdfObj* holder_;
    std::vector<std::string> path_;  // keys of dictionaries within each other
};

}  // namespace varnpdf
