// The locks that signatures put on fields (ISO 32000-2 12.8.2.4).
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

#include "forms/Font.h"
#include "syntax/Dictionary.h"

namespace varnpdf {

/// The names of all locks in one tree: what a question costs depends on the length of the name, not on their number.
class FieldLocks {
public:
    /// Takes in a lock dictionary (/Action, /Fields). One that was met before is passed over unread.
    void add(std::string_view dictionary, const References& references);
    /// True the first time that this text is asked for.
    bool firstTime(std::string_view text) { return texts_.insert(text.data()).second; }
    /// A lock forbids to change the field. A name in a lock stands for its field and for all below it.
    [[nodiscard]] bool isLocked(std::string_view name) const;

private:
    struct Node {
        std::map<std::string, std::size_t, std::less<>> below;  // by partial name
        bool included = false;
        std::vector<std::size_t> excluded;  // by which of the locks that lock all but their names
    };
    Node* nodeOf(std::string_view name);

    bool all_ = false;  // also where there are more names than can be kept
    std::size_t locks_ = 0;
    std::size_t bytes_ = 0;  // of all names as they are written; names may be shared
    std::size_t excluding_ = 0;
    std::vector<Node> nodes_ = std::vector<Node>(1);
    std::unordered_set<const char*> texts_;
    std::unordered_set<const char*> names_[2];  // arrays that were read for a lock: of names, of exceptions
};

}  // namespace varnpdf
