// What is known of one file: its bytes, its objects, its cross-reference sections. Plain data: rooms above work on it.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "model/KeywordSearch.h"
#include "model/ObjectTable.h"
#include "support/Inflate.h"
#include "syntax/Reference.h"
#include "varnpdf/PdfObj.h"
#include "varnpdf/PdfTrailer.h"

namespace varnpdf {

/// Objects found by a walk, remembered while nothing changes.
struct ObjectList {
    const CPdfObj* root = nullptr;  ///< where the walk began, null for a walk over all objects
    std::uint64_t revision = 0;     ///< of the object table when it was walked
    std::vector<CPdfObj*> objects;
};

/// What a page or a node above it says itself about the attributes that pages inherit (ISO 32000-2 7.7.3.4).
struct PageNode {
    std::optional<std::array<int, 4>> box;             ///< /MediaBox, fractions dropped
    std::optional<std::array<double, 4>> media, crop;  ///< /MediaBox and /CropBox
    std::optional<int> rotation;
    const CPdfObj* parent = nullptr;
};

/// What was found once and is asked for again. All of it can be made anew from the rest of the document.
struct Caches {
    std::vector<std::unique_ptr<KeywordSearch>> searches;
    std::optional<ObjectList> pages;
    std::unordered_map<const CPdfObj*, PageNode> pageNodes;  ///< of the pages in `pages` and of nodes above them
    std::optional<ObjectList> signatures;
};

enum class LineEnd : int { Unknown = -1, CrLf = 0, Lf = 1, Cr = 2 };

/// Objects borrow their text from `bytes` or `unpacked`; they must not outlive the document.
struct Document {
    Document();
    Document(const Document&) = delete;
    Document& operator=(const Document&) = delete;
    ~Document();

    [[nodiscard]] std::string_view view() const noexcept {
        return bytes ? std::string_view(bytes->data(), length) : std::string_view{};
    }

    /// Never changed once they are read, and followed by a NUL. Null while the document holds none.
    std::shared_ptr<const Bytes> bytes;
    /// How many of them belong to this revision.
    std::size_t length = 0;
    float version = 0;  ///< of the header, e.g. 1.7
    LineEnd lineEnd = LineEnd::Unknown;
    bool linearized = false;
    bool encrypted = false;
    bool locked = false;  ///< a signature forbids every further change

    /// The newest section and the trailer of an update that would follow it. Both are null when a cross-reference
    /// stream was announced and none is there.
    std::unique_ptr<CPdfTrailer> newest;
    std::unique_ptr<CPdfTrailer> update;
    /// The sections behind the newest, in the order in which they were read.
    std::vector<std::unique_ptr<CPdfTrailer>> sections;

    ObjectTable objects;
    std::vector<std::unique_ptr<char[]>> unpacked;  ///< texts of the objects taken from object streams
    std::size_t inflated = 0;                       ///< bytes that streams have been inflated to so far

    Caches caches;
};

/// Takes the bytes out of a document that is given up; a copy of them when somebody else holds them too.
Bytes releaseBytes(Document& document);

/// How many bytes the streams of the document may still be inflated to.
std::size_t inflateBudget(const Document& document) noexcept;

/// The object that two numbers at the start of a value name, with or without an "R" behind them; null when there is
/// none. For values that are references; `objectOf` tells what is none.
inline CPdfObj* referencedObject(const Document& document, std::string_view value) {
    const auto reference = scanReference(value);
    return reference ? document.objects.find(reference->number) : nullptr;
}

}  // namespace varnpdf
