// Adding a file to the embedded-files name tree of a document (ISO 32000-2 7.7.4, 7.9.6).
#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>

#include "varnpdf/Pdf.h"

namespace varnpdf {

/// What changes in a document when a pair is added to its tree. Old objects keep their numbers; new ones are numbered
/// from `next` on.
class NameTreeUpdate {
public:
    NameTreeUpdate(CPdf& pdf, std::string key, int fileSpec, int& next)
        : pdf_(pdf), key_(std::move(key)), fileSpec_(fileSpec), next_(next) {}

    /// False when the tree is damaged: nothing may be written then.
    bool run(CPdfObj& catalogue);

    /// New text of old objects, by number.
    [[nodiscard]] const std::map<int, std::string>& changed() const noexcept { return changed_; }
    /// Texts of new objects, in the order of their numbers.
    [[nodiscard]] const std::map<int, std::string>& added() const noexcept { return added_; }

private:
    using Edit = bool (NameTreeUpdate::*)(std::string& text);

    std::string* textOf(std::string_view reference);
    bool editValue(std::string& holder, std::string_view key, Edit edit);
    bool editNames(std::string& names);
    bool editNode(std::string& node);
    bool editLeaf(std::string& leaf);
    bool insertPair(std::string& holder);
    bool widenLimits(std::string& node);
    bool isAbsent(std::string_view value);
    [[nodiscard]] std::string pair() const;
    int addTree();
    int addNames();

    CPdf& pdf_;
    std::string key_;  // its bytes
    int fileSpec_;
    int& next_;
    std::map<int, std::string> changed_;
    std::map<int, std::string> added_;
    std::set<int> kidsSeen_;
    int depth_ = 0;
};

}  // namespace varnpdf
