// Documents from nothing: their bytes and the texts they are made of.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "model/Document.h"

namespace varnpdf {

/// The bytes of a document that is being written: a terminated text whose length counts the terminator. What the
/// document held before stays alive for the objects that borrow from it.
class GrowingBytes {
public:
    /// Before the first change the document's bytes become ours.
    void own(Document& document);
    [[nodiscard]] bool owns() const noexcept { return own_ != nullptr; }
    /// Puts text in front of the byte at `at`. Throws std::bad_alloc, or std::length_error beyond 2 GB. The room doubles,
    /// so that many insertions at the end cost no more than what they insert.
    void insert(Document& document, std::size_t at, std::string_view text);
    /// In front of the terminator.
    void append(Document& document, std::string_view text);

private:
    std::shared_ptr<Bytes> own_;
    std::shared_ptr<const Bytes> before_;
};

/// The text of object `number`; the type of its content chooses what stands around the body.
std::string newObjectText(int number, std::string_view comment, std::string_view body, CPdfObj::ContentType type);
/// The objects in slots 0 to `count` - 1 are all there.
bool slotsFilled(const Document& document, int count);
/// The cross-reference table of these objects.
std::string newTableText(const Document& document, int count);
/// The trailer, with `id` as both file identifiers.
std::string newTrailerText(int size, int root, std::string_view id, int table);

/// The entries of a portfolio's catalogue; all are values as they stand in a file, an empty one is null or left out.
struct PortfolioCatalogue {
    std::string_view openAction;
    std::string_view names;
    std::string_view pages;
    std::string_view collection;
    std::string_view metadata;
    std::string_view pageLabels;
    std::string_view outputIntents;
};
/// The body of the catalogue's dictionary.
std::string catalogueBody(const PortfolioCatalogue& catalogue);

}  // namespace varnpdf
