// The objects of a document by slot, in ascending order.
#pragma once

#include <cstdint>
#include <limits>
#include <map>
#include <memory>
#include <utility>
#include <vector>

#include "varnpdf/PdfObj.h"

namespace varnpdf {

/// Slots of ordinary documents live in an array, outliers in a map, so that a lying object number costs one entry.
class ObjectTable {
public:
    [[nodiscard]] CPdfObj* find(int slot) const noexcept {
        if (isDense(slot)) return dense(slot);
        const auto it = outliers_.find(slot);
        return it == outliers_.end() ? nullptr : it->second;
    }

    /// A new object in the slot; null when the slot is taken.
    CPdfObj* create(int slot);
    /// False, and the object stays the caller's, when the slot is taken.
    bool insert(int slot, std::unique_ptr<CPdfObj>& object);

    /// The object with the lowest slot not below the given one, and its slot; null at the end.
    [[nodiscard]] std::pair<int, CPdfObj*> lowerBound(int slot) const noexcept;

    [[nodiscard]] std::size_t size() const noexcept { return size_; }
    /// Counts every change of the table and of the texts in it.
    [[nodiscard]] std::uint64_t revision() const noexcept { return revision_; }

    /// Calls `visit(slot, object)` for the slots 0 to `last` in ascending order.
    template <typename Visit>
    void forEach(int last, Visit&& visit) const {
        for (std::size_t i = 0; i < dense_.size() && static_cast<int>(i) <= last; ++i) {
            if (dense_[i]) visit(static_cast<int>(i), *dense_[i]);
        }
        for (auto it = outliers_.lower_bound(0); it != outliers_.end() && it->first <= last; ++it) {
            visit(it->first, *it->second);
        }
    }

    /// The same for all slots.
    template <typename Visit>
    void forEach(Visit&& visit) const {
        for (auto it = outliers_.begin(); it != outliers_.end() && it->first < 0; ++it) visit(it->first, *it->second);
        forEach(std::numeric_limits<int>::max(), visit);
    }

    /// The largest object number of all objects, 0 without objects.
    [[nodiscard]] int maxObjectNumber() const noexcept;

private:
    static constexpr int kDenseSlots = 1 << 20;
    static bool isDense(int slot) noexcept { return slot >= 0 && slot < kDenseSlots; }
    [[nodiscard]] CPdfObj* dense(int slot) const noexcept {
        const auto index = static_cast<std::size_t>(slot);
        return index < dense_.size() ? dense_[index] : nullptr;
    }
    void place(int slot, CPdfObj& object);
    CPdfObj& fresh();

    std::vector<CPdfObj*> dense_;
    std::map<int, CPdfObj*> outliers_;
    std::vector<std::unique_ptr<CPdfObj>> inserted_;
    // Objects made here stand side by side: one allocation for many, and scans over all of them stay in order.
    std::vector<std::unique_ptr<CPdfObj[]>> blocks_;
    std::size_t blockSize_ = 0;
    std::size_t blockUsed_ = 0;
    std::size_t size_ = 0;
    std::uint64_t revision_ = 0;
};

}  // namespace varnpdf
