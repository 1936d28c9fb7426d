// The objects of a portfolio (ISO 32000-2 12.3.5), from the files to the closed document.
#pragma once

#include <list>
#include <map>
#include <string>
#include <string_view>

#include "support/Log.h"
#include "varnpdf/Pdf.h"
#include "varnpdf/PdfCollection.h"

namespace varnpdf {

class CollectionBuilder {
public:
    using Items = std::list<CPdfCollectionListItem*>;
    CollectionBuilder(CPdfCollection& collection, const Items& items, const ClassLogger& logger)
        : collection_(collection), items_(items), logger_(logger) {}

    /// Makes the document and writes it; a result code. The items have been checked.
    int run(const char* path);

private:
    int addFiles();
    int addFile(const CPdfCollectionListItem& item);
    int addStream(const CPdfCollectionListItem& item);
    std::string uniqueKey(const std::string& name);
    int addNames();
    int addCover();
    int copyCover(CPdf& source);
    void addCatalogue();
    int save(const char* path);
    int addObject(std::string_view body, CPdfObj::ContentType type);
    void addEntry(int object, const char* key, const std::string& value);

    CPdfCollection& collection_;
    const Items& items_;
    const ClassLogger& logger_;
    CPdf target_;
    std::map<std::string, int> files_;   // file specifications by key: a name tree is sorted
    std::map<std::string, int> copies_;  // files of one name
    std::string initial_;                // key of the active file
    int names_ = 0;
    int page_ = 0;
    int pages_ = 0;
    std::string metadata_;
    std::string pageLabels_;
    std::string outputIntents_;
};

}  // namespace varnpdf
