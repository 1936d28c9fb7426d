// Adding a file to the embedded-files name tree of a document (ISO 32000-2 7.7.4, 7.9.6).
#pragma once

#include <set>
#include <string>
#include <string_view>

#include "writer/Update.h"

namespace varnpdf {

/// Old objects keep their numbers and wait in the update as changed, some of them perhaps without a change; new ones are
/// written at once.
class NameTreeUpdate {
public:
    NameTreeUpdate(const Document& document, Update& update, std::string key, int fileSpec)
        : document_(document), update_(update), key_(std::move(key)), fileSpec_(fileSpec) {}

    /// False when the tree is damaged: the update must not be used then. At most two new objects.
    bool run(const CPdfObj& catalogue);

private:
    using Edit = bool (NameTreeUpdate::*)(std::string& text);

    std::string* textOf(std::string_view reference);
    bool editValue(std::string& holder, std::string_view key, Edit edit);
    bool editNames(std::string& names);
    bool editNode(std::string& node);
    bool editLeaf(std::string& leaf);
    bool insertPair(std::string& holder);
    bool widenLimits(std::string& node);
    [[nodiscard]] bool isAbsent(std::string_view value) const;
    [[nodiscard]] std::string pair() const;
    int addTree();
    int addNames();

    const Document& document_;
    Update& update_;
    std::string key_;  // its bytes
    int fileSpec_;
    std::set<int> kidsSeen_;
    int depth_ = 0;
};

}  // namespace varnpdf
