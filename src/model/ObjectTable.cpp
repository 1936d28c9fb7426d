// The objects of a document by slot.
#include "model/ObjectTable.h"

#include <algorithm>

namespace varnpdf {

bool ObjectTable::insert(int slot, std::unique_ptr<CPdfObj>& object) {
    if (find(slot) != nullptr) return false;
    CPdfObj* const added = object.get();
    if (isDense(slot)) {
        const auto index = static_cast<std::size_t>(slot);
        if (index >= dense_.size()) dense_.resize(index + 1);
        dense_[index] = std::move(object);
    } else {
        outliers_[slot] = std::move(object);
    }
    added->reportChangesTo(&revision_);
    ++size_;
    ++revision_;
    return true;
}

std::pair<int, CPdfObj*> ObjectTable::lowerBound(int slot) const noexcept {
    auto it = outliers_.lower_bound(slot);
    if (it != outliers_.end() && it->first < 0) return {it->first, it->second.get()};
    const int begin = std::max(slot, 0);
    for (auto i = static_cast<std::size_t>(begin); i < dense_.size(); ++i) {
        if (dense_[i]) return {static_cast<int>(i), dense_[i].get()};
    }
    if (it == outliers_.end()) return {0, nullptr};
    return {it->first, it->second.get()};
}

int ObjectTable::maxObjectNumber() const noexcept {
    int most = 0;
    for (const auto& object : dense_) {
        if (object) most = std::max(most, object->GetObjNum());
    }
    for (const auto& [slot, object] : outliers_) most = std::max(most, object->GetObjNum());
    return most;
}

}  // namespace varnpdf
