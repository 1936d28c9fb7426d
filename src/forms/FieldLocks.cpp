// Reading field locks and asking for a name.
#include "forms/FieldLocks.h"

#include <algorithm>

#include "support/Limits.h"
#include "syntax/Dictionary.h"
#include "syntax/Encoding.h"
#include "syntax/Lexer.h"
#include "syntax/Values.h"

namespace varnpdf {
namespace {

std::string_view takePartial(std::string_view& name) {
    const std::size_t end = std::min(name.find('.'), name.size());
    const std::string_view partial = name.substr(0, end);
    name.remove_prefix(std::min(end + 1, name.size()));
    return partial;
}

}  // namespace

void FieldLocks::add(std::string_view dictionary, const References& references) {
    if (all_ || dictionary.empty() || !firstTime(dictionary)) return;
    const Dictionary entries(dictionary);
    const std::string_view action = references.follow(entries.find("/Action"));
    if (action.empty() || locks_ >= limits::kFieldLocks) return;
    ++locks_;
    if (action == "/All") {
        all_ = true;
        return;
    }
    const bool excludes = action == "/Exclude";
    const std::string_view fields = references.follow(entries.find("/Fields"));
    // The same names once more say nothing new.
    if (!fields.empty() && !names_[excludes ? 1 : 0].insert(fields.data()).second) return;
    const std::size_t lock = excludes ? excluding_++ : 0;
    Lexer tokens(fields);
    tokens.next();
    while (const auto element = tokens.nextValue()) {
        const std::string_view written = references.follow(*element);
        // No field that is listed has a longer name.
        if (written.size() > limits::kFieldNameWritten) continue;
        bytes_ += written.size();
        all_ = bytes_ > limits::kFieldNamesBytes;
        if (all_) return;
        const auto name = stringOf(written);
        if (!name || name->empty()) continue;
        Node* const node = nodeOf(toUtf8(fromTextString(*name)));
        if (node == nullptr) return;
        if (!excludes) {
            node->included = true;
        } else if (node->excluded.empty() || node->excluded.back() != lock) {
            node->excluded.push_back(lock);
        }
    }
}

// The node of a name, made where there is none yet.
FieldLocks::Node* FieldLocks::nodeOf(std::string_view name) {
    std::size_t at = 0;
    while (!name.empty()) {
        const std::string_view partial = takePartial(name);
        const auto known = nodes_[at].below.find(partial);
        if (known != nodes_[at].below.end()) {
            at = known->second;
            continue;
        }
        if (nodes_.size() > limits::kFieldLockNames) {
            all_ = true;
            return nullptr;
        }
        nodes_[at].below.emplace(partial, nodes_.size());
        at = nodes_.size();
        nodes_.emplace_back();
    }
    return &nodes_[at];
}

bool FieldLocks::isLocked(std::string_view name) const {
    if (all_) return true;
    std::vector<bool> excluded(excluding_);
    std::size_t at = 0;
    while (!name.empty()) {
        const auto next = nodes_[at].below.find(takePartial(name));
        if (next == nodes_[at].below.end()) break;
        at = next->second;
        if (nodes_[at].included) return true;
        for (const std::size_t lock : nodes_[at].excluded) excluded[lock] = true;
    }
    return std::find(excluded.begin(), excluded.end(), false) != excluded.end();
}

}  // namespace varnpdf
