// A portfolio (ISO 32000-2 12.3.5): the objects, from the files to the closed document.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "writer/NewDocument.h"

namespace varnpdf {

/// One file of a portfolio.
struct PortfolioItem {
    std::string path;
    int type = 0;             ///< 1 a PDF, 2 an image, 3 text, 4 anything else
    bool isActive = false;    ///< supplies the cover sheet and is shown first; counts as a PDF
    std::string description;  ///< UTF-8
};

/// Checks the items and writes the document; a result code.
int createPortfolio(const std::string& path, const std::vector<PortfolioItem>& items);

/// The array of a name tree with one more pair; "" for none yet. The key as it stands between parentheses.
std::string appendToNamesArray(std::string array, std::string_view key, std::string_view reference);

class Portfolio {
public:
    /// The items have been checked.
    explicit Portfolio(const std::vector<PortfolioItem>& items) : items_(items) {}

    /// Makes the document; a result code.
    int build();
    /// Its bytes.
    [[nodiscard]] std::string_view bytes() const noexcept { return bytesOf(target_); }

private:
    int addFiles();
    int addFile(const PortfolioItem& item);
    int addStream(const PortfolioItem& item, int& stream);
    std::string uniqueKey(const std::string& name);
    void addNames();
    int addCover();
    int copyCover(Document& source);
    void addCatalogue();
    int close();
    int addObject(std::string_view body, CPdfObj::ContentType type);
    void addEntry(int object, const char* key, const std::string& value);

    const std::vector<PortfolioItem>& items_;
    NewDocument target_;
    std::map<std::string, int> files_;   // file specifications by key: a name tree is sorted
    std::map<std::string, int> copies_;  // files of one name
    std::string initial_;                // key of the active file
    int names_ = 0;
    int page_ = 0;
    std::string metadata_;
    std::string pageLabels_;
    std::string outputIntents_;
};

}  // namespace varnpdf
