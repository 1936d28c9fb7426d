// The objects of a document by slot.
#include "model/ObjectTable.h"

#include <algorithm>

namespace varnpdf {

bool ObjectTable::insert(int slot, std::unique_ptr<CPdfObj>& object) {
    if (find(slot) != nullptr) return false;
    inserted_.emplace_back();
    place(slot, *object);
    inserted_.back() = std::move(object);  // behind all that can fail: until then it is the caller's
    return true;
}

CPdfObj* ObjectTable::create(int slot) {
    if (find(slot) != nullptr) return nullptr;
    CPdfObj& object = fresh();
    place(slot, object);
    return &object;
}

void ObjectTable::place(int slot, CPdfObj& object) {
    if (isDense(slot)) {
        const auto index = static_cast<std::size_t>(slot);
        if (index >= dense_.size()) dense_.resize(index + 1);
        dense_[index] = &object;
    } else {
        outliers_[slot] = &object;
    }
    object.reportChangesTo(&revision_);
    ++size_;
    ++revision_;
}

CPdfObj& ObjectTable::fresh() {
    constexpr std::size_t kFirstBlock = 32;
    constexpr std::size_t kLargestBlock = 2048;
    if (blockUsed_ == blockSize_) {
        const std::size_t size = std::clamp(blockSize_ * 2, kFirstBlock, kLargestBlock);
        blocks_.push_back(std::make_unique<CPdfObj[]>(size));
        blockSize_ = size;
        blockUsed_ = 0;
    }
    return blocks_.back()[blockUsed_++];
}

std::pair<int, CPdfObj*> ObjectTable::lowerBound(int slot) const noexcept {
    auto it = outliers_.lower_bound(slot);
    if (it != outliers_.end() && it->first < 0) return {it->first, it->second};
    const int begin = std::max(slot, 0);
    for (auto i = static_cast<std::size_t>(begin); i < dense_.size(); ++i) {
        if (dense_[i]) return {static_cast<int>(i), dense_[i]};
    }
    if (it == outliers_.end()) return {0, nullptr};
    return {it->first, it->second};
}

int ObjectTable::maxObjectNumber() const noexcept {
    int most = 0;
    for (const CPdfObj* const object : dense_) {
        if (object != nullptr) most = std::max(most, object->GetObjNum());
    }
    for (const auto& [slot, object] : outliers_) most = std::max(most, object->GetObjNum());
    return most;
}

}  // namespace varnpdf
