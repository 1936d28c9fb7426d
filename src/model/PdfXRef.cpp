// Cross-reference entries, subsections and their list.
#include "varnpdf/PdfXRef.h"

#include <algorithm>
#include <memory>
#include <utility>
#include <vector>

CPdfXRefEntry::CPdfXRefEntry() = default;
CPdfXRefEntry::~CPdfXRefEntry() = default;

CPdfXRefEntry::CPdfXRefEntry(const CPdfXRefEntry&) = default;
CPdfXRefEntry& CPdfXRefEntry::operator=(const CPdfXRefEntry&) = default;
void CPdfXRefEntry::SetOffset(int offset) { Offset = offset; }
int CPdfXRefEntry::GetOffset() const { return Offset; }
void CPdfXRefEntry::SetGenNumber(int gen) { GenNumber = gen; }
int CPdfXRefEntry::GetGenNumber() const { return GenNumber; }
void CPdfXRefEntry::SetIsFree(int isFree) { IsFree = isFree; }
int CPdfXRefEntry::GetIsFree() const { return IsFree; }

void CPdfXRefEntry::SetPos(int pos) {
    IsFree = 0;
    Offset = pos;
    GenNumber = 0;
}

CPdfXRef::CPdfXRef() = default;

CPdfXRef::CPdfXRef(int start, int count) { SetRef(start, count); }

CPdfXRef::CPdfXRef(CPdfXRef* other) { CopyFrom(other); }

CPdfXRef::CPdfXRef(const CPdfXRef& other) { CopyFrom(const_cast<CPdfXRef*>(&other)); }

CPdfXRef::~CPdfXRef() { ClearAll(); }

void CPdfXRef::SetRefStart(int start) { RefStart = start; }
int CPdfXRef::GetRefStart() const { return RefStart; }
void CPdfXRef::SetRefNum(int count) { RefNum = count; }
int CPdfXRef::GetRefNum() const { return RefNum; }
CPdfXRefEntry* CPdfXRef::GetRefEntry() const { return RefEntry; }
void CPdfXRef::SetRefEntry(CPdfXRefEntry* entries) { RefEntry = entries; }
void CPdfXRef::SetIsFree(int isFree) { IsFree = isFree; }
int CPdfXRef::GetIsFree() const { return IsFree; }

CPdfXRef& CPdfXRef::operator=(CPdfXRef& other) {
    CopyFrom(&other);
    return *this;
}

void CPdfXRef::Init() {
    RefEntry = nullptr;
    RefStart = 0;
    RefNum = 0;
    IsFree = 1;
}

void CPdfXRef::SetRef(int start, int count) {
    const int entries = std::max(count, 0);
    auto made = std::make_unique<CPdfXRefEntry[]>(static_cast<std::size_t>(entries));
    for (int i = 0; i < entries; ++i) made[static_cast<std::size_t>(i)].SetIsFree(1);
    ClearAll();
    RefStart = start;
    RefNum = entries;
    RefEntry = made.release();
}

void CPdfXRef::AddEntry(CPdfXRefEntry entry) {
    const auto count = static_cast<std::size_t>(std::max(RefNum, 0));
    auto grown = std::make_unique<CPdfXRefEntry[]>(count + 1);
    std::copy_n(RefEntry, RefEntry == nullptr ? 0 : count, grown.get());
    grown[count] = entry;
    delete[] RefEntry;
    RefEntry = grown.release();
    RefNum = static_cast<int>(count) + 1;
}

void CPdfXRef::CopyFrom(CPdfXRef* other) {
    if (other == nullptr || other == this) return;
    std::unique_ptr<CPdfXRefEntry[]> copy;
    const int entries = other->RefEntry == nullptr ? 0 : std::max(other->RefNum, 0);
    if (entries > 0) {
        copy = std::make_unique<CPdfXRefEntry[]>(static_cast<std::size_t>(entries));
        std::copy_n(other->RefEntry, entries, copy.get());
    }
    ClearAll();
    RefStart = other->RefStart;
    IsFree = other->IsFree;
    RefNum = entries;
    RefEntry = copy.release();
}

void CPdfXRef::ClearAll() {
    delete[] RefEntry;
    RefEntry = nullptr;
    RefNum = 0;
}

CPdfXRefContainer::CPdfXRefContainer() = default;

CPdfXRefContainer::~CPdfXRefContainer() { delete[] XRef; }

int CPdfXRefContainer::GetXRefNum() const { return XRefNum; }
void CPdfXRefContainer::SetXRefNum(int count) { XRefNum = count; }
CPdfXRef* CPdfXRefContainer::GetXRef() const { return XRef; }
void CPdfXRefContainer::SetXRef(CPdfXRef* xrefs) {
    XRef = xrefs;
    room_ = 0;
}

void CPdfXRefContainer::AddXRef(CPdfXRef* xref) {
    if (xref == nullptr) return;
    CPdfXRef copy(*xref);  // it may be one of the container's
    // The room doubles: an update may have as many subsections as objects.
    if (XRefNum >= room_) {
        const auto used = static_cast<std::size_t>(std::max(XRefNum, 0));
        auto grown = std::make_unique<CPdfXRef[]>(used * 2 + 1);
        for (std::size_t i = 0; i < used; ++i) grown[i].swap(XRef[i]);
        delete[] XRef;
        XRef = grown.release();
        room_ = static_cast<int>(used * 2 + 1);
    }
    XRef[XRefNum++].swap(copy);
}

void CPdfXRefContainer::SortXRefList() {
    if (XRefNum < 2) return;
    const auto count = static_cast<std::size_t>(XRefNum);
    std::vector<std::size_t> order(count);
    for (std::size_t i = 0; i < count; ++i) order[i] = i;
    std::stable_sort(order.begin(), order.end(),
                     [this](std::size_t a, std::size_t b) { return XRef[a].GetRefStart() < XRef[b].GetRefStart(); });
    auto sorted = std::make_unique<CPdfXRef[]>(count);
    for (std::size_t i = 0; i < count; ++i) sorted[i].swap(XRef[order[i]]);
    delete[] XRef;
    XRef = sorted.release();
    room_ = 0;
}

void CPdfXRef::swap(CPdfXRef& other) noexcept {
    std::swap(RefEntry, other.RefEntry);
    std::swap(RefStart, other.RefStart);
    std::swap(RefNum, other.RefNum);
    std::swap(IsFree, other.IsFree);
}
