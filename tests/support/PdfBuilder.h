// Builds PDF files as readable text. Offsets and lengths are computed; each of them can be made to lie.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace varnpdf::test {

/// zlib form of the data.
std::string deflated(std::string_view data);
/// `text` with the first `from` replaced; throws when there is none, so that no test runs on an unchanged file. What
/// stands behind the place moves when the lengths differ.
std::string replaced(std::string text, std::string_view from, std::string_view to);
/// The document with another value behind its last "startxref".
std::string withStartxref(std::string document, long long offset);
/// Fills every "/ByteRange [...]" made by `PdfBuilder::signature` with the two ranges around its /Contents.
std::string withByteRanges(std::string document);

/// How a stream is written.
struct StreamForm {
    bool deflate = false;
    std::string length = {};              ///< what stands behind /Length, e.g. "9 0 R"; empty: the real length
    std::string filter = "/FlateDecode";  ///< of a deflated stream
};

/// How a cross-reference section is closed.
struct Closing {
    std::string entries = "/Root 1 0 R";   ///< trailer entries beside /Size and /Prev
    std::optional<std::string> size = {};  ///< instead of the highest object number + 1; "" leaves the entry out
    std::optional<std::string> prev = {};  ///< instead of the offset of the section before; "" leaves the entry out
    // cross-reference streams only
    int widths[3] = {1, 4, 2};
    bool index = true;  ///< false: no /Index, rows from 0 to /Size - 1
    int predictor = 1;  ///< 12 and 15 write rows in the Up form
    StreamForm form = {.deflate = true};
};

class PdfBuilder {
public:
    /// Starts a document. `lineEnd` ends every line that the builder writes.
    explicit PdfBuilder(std::string lineEnd = "\n", std::string_view header = "%PDF-1.7");

    /// Bytes as they are, in no object.
    PdfBuilder& raw(std::string_view bytes);
    PdfBuilder& object(int number, std::string_view body, int generation = 0);
    PdfBuilder& stream(int number, std::string_view entries, std::string_view data, const StreamForm& form = {});
    PdfBuilder& objectStream(int number, const std::vector<std::pair<int, std::string>>& members,
                             const StreamForm& form = {.deflate = true});
    /// A signature dictionary; its /ByteRange is blank until `withByteRanges`. `contents` with its brackets.
    PdfBuilder& signature(int number, std::string_view contents, std::string_view entries = "");
    /// What the section says about an object: 'n' (offset, generation), 'f' (next free object, generation) or
    /// 'c' (object stream, index). Replaces what is known from `object`.
    PdfBuilder& entry(int number, char type, long long first, int second);

    /// Close the section; the next one is an update that points back at it.
    PdfBuilder& table(const Closing& closing = {});
    PdfBuilder& crossReferenceStream(int number, const Closing& closing = {});
    /// A table that hides the objects of object streams, and their companion stream (/XRefStm).
    PdfBuilder& hybrid(int number, const Closing& closing = {});

    /// Offset of the newest section.
    [[nodiscard]] std::size_t section() const { return section_; }
    [[nodiscard]] const std::string& bytes() const { return bytes_; }

private:
    struct Entry {
        char type;
        long long first;
        int second;
    };
    using Entries = std::map<int, Entry>;

    void writeTable(const Closing& closing, std::string_view more);
    void writeStreamSection(int number, const Closing& closing, const Entries& entries);
    [[nodiscard]] std::string sizeAndPrev(const Closing& closing) const;
    void finish();

    std::string eol_;
    std::string bytes_;
    Entries entries_;
    int size_ = 1;
    std::size_t section_ = 0;
};

/// A document of one page, not yet closed: catalogue 1, page tree 2, page 3.
PdfBuilder smallDocument(std::string lineEnd = "\n");

}  // namespace varnpdf::test
