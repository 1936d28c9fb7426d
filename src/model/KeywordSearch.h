// Searching a document for one keyword again and again in linear time.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace varnpdf {

/// Finds occurrences of a keyword. Ordinary documents are searched forward piece by piece; when the pieces add up to
/// more than the document (overlapping objects, a hostile chain of sections), all positions are listed once.
class KeywordSearch {
public:
    static constexpr std::size_t kNone = std::string_view::npos;

    /// `standalone`: an occurrence counts only when '<' follows it, or white space stands on both sides. It must then
    /// also lie behind the start of the search and two bytes before the end.
    KeywordSearch(std::string_view content, std::string_view keyword, bool standalone)
        : content_(content), keyword_(keyword), standalone_(standalone) {}

    [[nodiscard]] bool serves(std::string_view keyword, bool standalone) const {
        return keyword_ == keyword && standalone_ == standalone;
    }

    /// The first occurrence at or (standalone) behind `start`.
    std::size_t next(std::size_t start);
    /// The last occurrence that `next` would find from `start` on.
    std::size_t last(std::size_t start);

private:
    [[nodiscard]] std::size_t scan(std::size_t at) const;
    [[nodiscard]] bool counts(std::size_t at) const;
    void list();

    std::string_view content_;
    std::string keyword_;
    bool standalone_;
    bool listed_ = false;
    std::size_t scanned_ = 0;
    std::vector<std::uint32_t> positions_;
};

}  // namespace varnpdf
