// Cross-reference entry, subsection and list of subsections (ISO 32000-2 7.5.4).
#pragma once

#include "varnpdf/export.h"

/// One cross-reference entry. The default constructor leaves the fields to the producer.
class VARNPDF_EXPORT CPdfXRefEntry {
public:
    CPdfXRefEntry();
    CPdfXRefEntry(const CPdfXRefEntry&);
    CPdfXRefEntry& operator=(const CPdfXRefEntry&);
    virtual ~CPdfXRefEntry();

    /// Byte offset of the object in the file; for a free entry the next free object number.
    void SetOffset(int offset);
    [[nodiscard]] int GetOffset() const;
    void SetGenNumber(int gen);
    [[nodiscard]] int GetGenNumber() const;
    /// 1 for a free entry ("f"), 0 for one in use ("n").
    void SetIsFree(int isFree);
    [[nodiscard]] int GetIsFree() const;
    /// Makes an in-use entry of generation 0 at `pos`.
    void SetPos(int pos);

private:
    int Offset = 0;
    int GenNumber = 0;
    int IsFree = 0;
};

/// A run of consecutive object numbers: entry i describes object RefStart + i. Members that make or copy entries throw
/// std::bad_alloc without memory and change nothing then; those of the container as well.
class VARNPDF_EXPORT CPdfXRef {
public:
    CPdfXRef();
    CPdfXRef(int start, int count);
    explicit CPdfXRef(CPdfXRef* other);
    CPdfXRef(const CPdfXRef& other);
    ~CPdfXRef();
    CPdfXRef& operator=(CPdfXRef& other);

    /// No entries, RefStart 0, RefNum 0, IsFree 1. Does not free entries.
    void Init();
    /// `count` free entries (offset 0, generation 0) from object `start` on; those held before are freed. A negative
    /// count gives none.
    void SetRef(int start, int count);
    /// Appends a copy of the entry.
    void AddEntry(CPdfXRefEntry entry);
    /// Makes this a deep copy of `other`.
    void CopyFrom(CPdfXRef* other);
    /// Frees the entries; RefStart and IsFree stay.
    void ClearAll();

    void SetRefStart(int start);
    [[nodiscard]] int GetRefStart() const;
    void SetRefNum(int count);
    [[nodiscard]] int GetRefNum() const;
    /// The entries (`GetRefNum` of them), owned by the subsection.
    [[nodiscard]] CPdfXRefEntry* GetRefEntry() const;
    /// Replaces the array without freeing the old one; the new one (made with new[]) becomes the subsection's.
    void SetRefEntry(CPdfXRefEntry* entries);
    void SetIsFree(int isFree);
    [[nodiscard]] int GetIsFree() const;

    void swap(CPdfXRef& other) noexcept;

private:
    CPdfXRefEntry* RefEntry = nullptr;
    int RefStart = 0;
    int RefNum = 0;
    int IsFree = 1;
};

/// The subsections of an update being written; it owns deep copies.
class VARNPDF_EXPORT CPdfXRefContainer {
public:
    CPdfXRefContainer();
    CPdfXRefContainer(const CPdfXRefContainer&) = delete;
    CPdfXRefContainer& operator=(const CPdfXRefContainer&) = delete;
    virtual ~CPdfXRefContainer();

    /// Appends a deep copy; the argument stays the caller's.
    void AddXRef(CPdfXRef* xref);
    /// Orders the subsections by their first object number; equal ones keep their insertion order.
    void SortXRefList();
    [[nodiscard]] int GetXRefNum() const;
    void SetXRefNum(int count);
    /// The subsections (`GetXRefNum` of them), owned by the container.
    [[nodiscard]] CPdfXRef* GetXRef() const;
    /// Replaces the array without freeing the old one; the new one (made with new[]) becomes the container's.
    void SetXRef(CPdfXRef* xrefs);

private:
    int XRefNum = 0;
    CPdfXRef* XRef = nullptr;
    int room_ = 0;  // subsections that the array has room for, 0 when it is just long enough
};
