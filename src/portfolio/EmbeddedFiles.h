// The files embedded in a document: those of the name tree in its order, then those of file attachment annotations
// (ISO 32000-2 7.11.4, 12.5.6.15).
#pragma once

#include <cstddef>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "model/Document.h"
#include "model/Stream.h"
#include "syntax/Dictionary.h"

namespace varnpdf {

/// Texts are those of the document as it encodes them. Used not longer than the document.
class EmbeddedFiles {
public:
    /// Looks through the document. Damaged parts of the tree are passed over; the list ends early when names lead to the
    /// same large objects again and again.
    explicit EmbeddedFiles(const Document& document);

    [[nodiscard]] std::size_t size() const noexcept { return files_.size(); }
    [[nodiscard]] const std::string& key(std::size_t index) const { return files_[index].key; }
    [[nodiscard]] std::string name(std::size_t index) const;
    [[nodiscard]] std::string description(std::size_t index) const;
    [[nodiscard]] std::string mimeType(std::size_t index) const;
    /// As the document states it, -1 when it does not.
    [[nodiscard]] long long statedSize(std::size_t index) const;
    /// 0 and the bytes, which stay as they are until another file is asked for, or a result code.
    int content(std::size_t index, std::string_view& bytes);

private:
    struct File {
        std::string key;
        std::string_view name;         // a string; empty without one
        std::string_view description;  // likewise
        const CPdfObj* stream;
    };

    void spend(std::size_t bytes) noexcept;
    std::string_view value(std::string_view text);
    CPdfObj* stream(const Dictionary& embedded);
    void readTree();
    void readLeaf(std::string_view names);
    void readAnnotations();
    void readAnnotation(const CPdfObj& object);
    void add(std::string key, std::string_view spec);

    const Document& document_;
    std::size_t room_;  // bytes that may still be gone through; at 0 the list ends
    std::vector<File> files_;
    std::set<const CPdfObj*> listed_;
    std::size_t unpackedIndex_ = 0;
    std::optional<StreamBytes> unpacked_;  // of the file asked for last: a host's two calls for it inflate once
};

}  // namespace varnpdf
