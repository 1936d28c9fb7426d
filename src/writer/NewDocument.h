// Documents from nothing: their objects, their bytes, their closing section.
//
//     NewDocument made;
//     putHeader(made, "%PDF-1.7\r\n");
//     const int page = createObject(made, "/Type /Page ...", CPdfObj::eContentDictionary);
//     createRoot(made, {.pages = text(page, " 0 R")});
//     if (!writeObjects(made) || !writeTable(made)) return ...;
//     writeTrailer(made, made.objectCount + 1, "<123456>");
//     file.write(bytesOf(made));
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "model/Document.h"

namespace varnpdf {

/// The bytes of a document that is being written: a terminated text whose length counts the terminator. What the
/// document held before stays alive for the objects that borrow from it.
class GrowingBytes {
public:
    /// Before the first change the document's bytes become ours.
    void own(Document& document);
    [[nodiscard]] bool owns() const noexcept { return own_ != nullptr; }
    /// Room for so many bytes more. Throws std::bad_alloc, or std::length_error beyond 2 GB. The room doubles,
    /// so that many insertions at the end cost no more than what they insert.
    void makeRoom(Document& document, std::size_t more);
    /// Puts text in front of the byte at `at`.
    void insert(Document& document, std::size_t at, std::string_view text);
    /// In front of the terminator.
    void append(Document& document, std::string_view text);

private:
    std::shared_ptr<Bytes> own_;
    std::shared_ptr<const Bytes> before_;
};

/// A document on its way to a file. Its objects 1, 2, 3 ... stand in the slots 0, 1, 2 ...
struct NewDocument {
    Document document;
    int objectCount = 0;
    GrowingBytes content;
    std::string ident;    ///< stands for both file identifiers
    int rootNumber = 0;   ///< of the catalogue
    int pagesParent = 0;  ///< of the node above the pages
    int tableOffset = 0;  ///< of the cross-reference table
    /// Objects copied from another document: their numbers there and here.
    std::vector<std::unique_ptr<CPdfObjTransferListItem>> transfers;
};

/// The file identifier of every document from nothing.
inline constexpr std::string_view kNewIdent = "<123456>";

/// Makes the next object; its number, or 0 with nothing changed when its slot is taken. What stands around the body is
/// chosen by the type; a comment gets a line of its own behind the head.
int createObject(NewDocument& made, std::string_view body, CPdfObj::ContentType type, std::string_view comment = {});
/// The object with this number, which has been made.
inline CPdfObj& objectAt(const NewDocument& made, int number) noexcept {
    return *made.document.objects.find(number - 1);
}

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
/// Makes the catalogue; its number is the root's also where its slot is taken (0).
int createRoot(NewDocument& made, const PortfolioCatalogue& catalogue);

/// Puts the file header in front of the bytes.
void putHeader(NewDocument& made, std::string_view header);
/// Appends bytes and says at which offset.
std::size_t appendBytes(NewDocument& made, std::string_view bytes);
/// Appends all objects, which record their offsets. False, and nothing appended, when a slot is empty.
bool writeObjects(NewDocument& made);
/// Appends the cross-reference table of these objects; false likewise.
bool writeTable(NewDocument& made);
/// Appends the trailer, with `id` as both file identifiers.
void writeTrailer(NewDocument& made, int size, std::string_view id);
/// The bytes so far, without the terminator.
std::string_view bytesOf(const NewDocument& made) noexcept;

}  // namespace varnpdf
