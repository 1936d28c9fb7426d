// The appended update of a document (ISO 32000-2 7.5.6): the one writer of all that is ever added to a file.
//
//     Update update(document);
//     const int number = update.reserve();
//     setEntry(update.change(page), "/Annots", text("[", number, " 0 R]"));
//     update.put(number, text(number, " 0 obj\r\n<<...>>\r\nendobj\r\n"));
//     update.writeWaiting();
//     const int code = update.close();
//     for (const std::string_view piece : update.pieces()) file.write(piece);    // behind the old bytes
#pragma once

#include <cstddef>
#include <deque>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "model/Document.h"
#include "support/Limits.h"
#include "writer/SectionTexts.h"

namespace varnpdf {

/// Text that will stand in a file from `base` on.
struct Tail {
    std::size_t base = 0;
    std::string text;

    [[nodiscard]] std::size_t position() const noexcept { return base + text.size(); }
};

/// Holds the tail only, so that no old byte can change. New numbers count from the declared /Size or from the highest
/// number in use plus one, whatever is larger: a file whose /Size is too small keeps all its objects.
class Update {
public:
    /// What stands in front of the first object: a line end where the old bytes do not end with one, or always.
    enum class FirstLine { WhereMissing, Always };
    struct Start {
        std::string_view lineEnd = "\r\n";
        FirstLine firstLine = FirstLine::WhereMissing;
        int firstNumber = 0;  ///< of new objects, where it is not the usual one
    };
    Update(Document& document, const Start& start);
    explicit Update(Document& document) : Update(document, Start()) {}

    /// So many numbers can still be given away.
    [[nodiscard]] bool canReserve(int count) const noexcept;
    /// The first of `count` new numbers.
    int reserve(int count = 1) noexcept;
    /// The number that would be given away next.
    [[nodiscard]] int next() const noexcept { return next_; }

    /// The text of an object of the document as changed so far. The first call takes a copy of what the document holds.
    std::string& change(const CPdfObj& object);
    /// The same text, or the document's while nothing has been changed in it.
    [[nodiscard]] std::string_view current(const CPdfObj& object) const;
    /// The text of a new object; a second one with its number takes its place.
    void put(int number, std::string text) { put_[number] = std::move(text); }
    /// Forgets the changed texts that are as the document has them.
    void dropUnchanged();
    /// Nothing has been changed or put.
    [[nodiscard]] bool empty() const noexcept { return changed_.empty() && put_.empty(); }

    /// Writes the changed objects and then the new ones, each in ascending order.
    void writeWaiting();
    /// Writes an object at once.
    void write(int number, int generation, std::string_view text);
    /// Records that an object begins here; its text is the caller's to append. `joins`: it stands in the subsection of the
    /// number before it also where runs are not joined.
    void begin(int number, int generation, bool joins = false) { record(number, generation, position(), joins); }
    /// The same for an object that has been appended at an offset in the file.
    void record(int number, int generation, std::size_t offset, bool joins = false);
    /// Where text is appended; offsets in the file come from `position`.
    [[nodiscard]] Tail& tail() noexcept { return tail_; }
    /// Appends bytes that stay the caller's, who keeps them until the pieces are written.
    void appendForeign(std::string_view bytes);
    /// The place in the file where the update goes on.
    [[nodiscard]] std::size_t position() const noexcept { return tail_.position(); }

    enum class Section {
        Table,         ///< whatever the document has
        LikeDocument,  ///< a stream where the newest section is one
    };
    struct Closing {
        Section section = Section::LikeDocument;
        bool joinRuns = true;                          ///< neighbouring numbers share a subsection
        std::size_t longest = limits::kDocumentBytes;  ///< of the file in front of the section
        StreamLayout layout = {};
    };
    /// The section would be a stream.
    [[nodiscard]] bool closesWithStream(Section section) const;
    /// The field widths of such a stream, which has the number `next`.
    [[nodiscard]] StreamFields streamFields();
    /// Its /Index, neighbouring numbers joined.
    [[nodiscard]] std::string index() const;
    /// Calls `visit(number, offset)` for all that has been written, in ascending order of the numbers.
    template <typename Visit>
    void forEachWritten(Visit&& visit) const {
        for (const auto& [number, place] : written_) visit(number, place.offset);
    }
    /// Writes the cross-reference section with a new second part of /ID. /Size is one more than the highest number
    /// written and never smaller than before.
    /// @return VARNPDF_OK, VARNPDF_PDF_MAXSIZE or VARNPDF_COMPRESSING_FAILED
    int close(const Closing& closing);
    int close() { return close(Closing()); }

    /// The appended bytes in order.
    [[nodiscard]] std::vector<std::string_view> pieces() const;

private:
    struct Place {
        int generation;
        std::size_t offset;
        bool joins;
    };
    void listSections(CPdfXRefContainer& xrefs, bool joinRuns) const;

    Document& document_;
    int next_;
    std::map<int, std::string> changed_;
    std::map<int, std::string> put_;
    std::multimap<int, Place> written_;  // a file whose /Size lies may give a number away that is taken
    struct Finished {
        std::string text;
        std::string_view foreign;
    };
    std::deque<Finished> finished_;
    Tail tail_;
};

}  // namespace varnpdf
