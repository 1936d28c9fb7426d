// The objects of a portfolio.
#include "portfolio/CollectionBuilder.h"

#include <new>
#include <stdexcept>
#include <utility>

#include "portfolio/EmbeddedFile.h"
#include "portfolio/ObjectCopier.h"
#include "portfolio/Streams.h"
#include "support/Limits.h"
#include "support/StagedFile.h"
#include "support/Text.h"
#include "syntax/Dictionary.h"
#include "syntax/Values.h"
#include "varnpdf/result.h"
#include "writer/SectionTexts.h"

namespace varnpdf {
namespace {

// Collections came with 1.7. The comment makes programs take the file for binary (ISO 32000-2 7.5.2).
constexpr std::string_view kHeader = "%PDF-1.7\r\n%\xe2\xe3\xcf\xd3\r\n";

// Escaped, without the parentheses around it.
std::string stringBody(std::string_view bytes) {
    const std::string literal = literalString(bytes);
    return literal.substr(1, literal.size() - 2);
}

std::string reference(int number) { return text(number, " 0 R"); }

// What a page inherits from the nodes above it (ISO 32000-2 table 31) would be lost with them.
void takeInherited(CPdf& source, CPdfObj& page) {
    std::string own(page.content());
    for (const std::string_view key : {"/Resources", "/MediaBox", "/CropBox", "/Rotate"}) {
        const CPdfObj* node = &page;
        std::string_view value = valueOf(own, key);
        for (int i = 0; value.empty() && i < limits::kParents; ++i) {
            node = referenced(source, valueOf(node->content(), "/Parent"));
            if (node == nullptr) break;
            value = valueOf(node->content(), key);
        }
        if (node == nullptr || node == &page || value.empty()) continue;
        setEntry(own, key, value, EntryLayout::Splice);
    }
    page.setContent(own);
}

}  // namespace

int CollectionBuilder::run(const char* path) {
    logDebug(logger_, "Starte Erstellung der Collection");
    target_.SetObjNum(0);
    std::string header(kHeader);
    target_.SetHeader(header.data());
    if (const int code = addFiles(); code != VARNPDF_OK) return code;
    if (const int code = addNames(); code != VARNPDF_OK) return code;
    if (const int code = addCover(); code != VARNPDF_OK) return code;
    addCatalogue();
    return save(path);
}

// The number of the new object.
int CollectionBuilder::addObject(std::string_view body, CPdfObj::ContentType type) {
    if (target_.CreateObject("", 0, body.data(), static_cast<int>(body.size()), type) != 0) throw std::bad_alloc();
    return target_.GetObjNum();
}

void CollectionBuilder::addEntry(int object, const char* key, const std::string& value) {
    target_.AddDictionaryEntryInPdfArray(object - 1, key, value.c_str());
}

int CollectionBuilder::addFiles() {
    logDebug(logger_, "Durchlaufe anzuhängende Dateien:");
    for (const CPdfCollectionListItem* const item : items_) {
        if (const int code = addFile(*item); code != VARNPDF_OK) return code;
    }
    logDebug(logger_, "Durchlauf anzuhängende Dateien beendet");
    return VARNPDF_OK;
}

int CollectionBuilder::addFile(const CPdfCollectionListItem& item) {
    if (const int code = addStream(item); code != VARNPDF_OK) return code;
    const int stream = target_.GetObjNum() - 1;  // its length has been made behind it
    const std::string name = collection_.JustFilename(item.getFileName());
    const std::string shown = literalString(textString(name));
    const int spec = addObject("", CPdfObj::eContentDictionary);
    logDebug(logger_, "   Erstelle das FileSpec-Object mit den Datei-Daten (", spec, ")");
    addEntry(spec, "/Type", "/Filespec");
    addEntry(spec, "/F", shown);
    addEntry(spec, "/UF", shown);
    addEntry(spec, "/Desc", literalString(textString(item.getDescription())));
    addEntry(spec, "/EF", text("<</F ", stream, " 0 R/UF ", stream, " 0 R>>"));
    logDebug(logger_, "   Names-Object aufbauen bzw. Ergänzen den Datei-Daten");
    const std::string key = uniqueKey(name);
    files_[key] = spec;
    if (item.getIsActivePage()) {
        logDebug(logger_, "   Markierung als Direkt anzeigen (", key, ")");
        initial_ = key;
    }
    return VARNPDF_OK;
}

int CollectionBuilder::addStream(const CPdfCollectionListItem& item) {
    logDebug(logger_, "   Lese Datei ein und packe den Content");
    PackedFile file;
    const PackResult result = packFile(item.getFileName().c_str(), file);
    if (result == PackResult::Empty) {
        const auto nothing = deflated("");
        if (!nothing) return VARNPDF_COLLECTION_NOT_WRITTEN;
        file.data.reserve(nothing->size());
        nothing->copy(file.data.data(), nothing->size());
        file.data.setSize(nothing->size());
    } else if (result != PackResult::Good) {
        return result == PackResult::Unreadable ? VARNPDF_COLLECTION_FILE_UNREADABLE : VARNPDF_COLLECTION_NOT_WRITTEN;
    }
    const int stream = addObject("", CPdfObj::eContentDictionary);
    logDebug(logger_, "   Erstelle das EmbeddedFile-Objekt (", stream, ")");
    addEntry(stream, "/Type", "/EmbeddedFile");
    addEntry(stream, "/Filter", "/FlateDecode");
    addEntry(stream, "/Length", reference(stream + 1));
    std::string params = text("<</Size ", file.length);
    if (file.modified != 0) append(params, "/ModDate (", fileDate(file.modified), ')');
    addEntry(stream, "/Params", params + ">>");
    if (file.data.size() > limits::kDocumentBytes) return VARNPDF_COLLECTION_NOT_WRITTEN;
    target_.AddStreamInPdfArray(stream - 1, file.data.data(), static_cast<int>(file.data.size()));
    logDebug(logger_, "   Erstelle Length-Object für das Stream Objekt mit gepacktem Content (", stream + 1, ")");
    addObject(text(file.data.size()), CPdfObj::eContentOther);
    return VARNPDF_OK;
}

// Files of several directories may have one name.
std::string CollectionBuilder::uniqueKey(const std::string& name) {
    std::string key = textString(name);
    int& copies = copies_.try_emplace(name, 1).first->second;
    while (files_.contains(key)) key = textString(text(name, " (", ++copies, ')'));
    return key;
}

int CollectionBuilder::addNames() {
    std::string array;
    for (const auto& [key, spec] : files_) {
        array = collection_.AppendToNamesArray(std::move(array), stringBody(key), text(spec));
    }
    names_ = addObject("", CPdfObj::eContentDictionary);
    logDebug(logger_, "Names-Object erstellen(", names_, ")");
    target_.get_pdf_obj_from_map(names_ - 1)
        ->setContent(text(names_, " 0 obj\r\n<<\r\n/EmbeddedFiles <</Names ", array, ">>\r\n>>\r\nendobj\r\n\r\n"));
    return VARNPDF_OK;
}

int CollectionBuilder::addCover() {
    logDebug(logger_, "Erneuter Durchlauf für die Coverpage");
    for (const CPdfCollectionListItem* const item : items_) {
        if (!item->getIsActivePage()) continue;
        logDebug(logger_, "   PDF für das Coversheet gefunden");
        CPdf source;
        if (source.Open(item->getFileName().c_str(), "rb") != VARNPDF_OK) return VARNPDF_COLLECTION_PDF_UNREADABLE;
        if (const int code = copyCover(source); code != VARNPDF_OK) return code;
    }
    return VARNPDF_OK;
}

int CollectionBuilder::copyCover(CPdf& source) {
    const CPdfObj* const catalogue = referenced(source, source.GetLastTrailer()->root());
    CPdfObj* const tree = catalogue == nullptr ? nullptr : referenced(source, valueOf(catalogue->content(), "/Pages"));
    if (tree == nullptr) return VARNPDF_TRAILER_INCOMPLETE;
    logDebug(logger_, "   Suche Page-Object");
    CPdfObj* const page = source.GetPdfPageObject(tree, 0, nullptr, nullptr);
    if (page == nullptr) return VARNPDF_TRAILER_INCOMPLETE;
    takeInherited(source, *page);
    ObjectCopier copier(source, target_, logger_);
    page_ = copier.copy(page->GetObjNum());
    const auto carried = [&](std::string_view key) {
        const std::string_view value = valueOf(catalogue->content(), key);
        std::string copy = value.empty() ? std::string() : copier.copyValue(value);
        if (copy.starts_with(' ')) copy.erase(0, 1);
        return copy == "null" ? std::string() : copy;
    };
    metadata_ = carried("/Metadata");
    pageLabels_ = carried("/PageLabels");
    outputIntents_ = carried("/OutputIntents");

    logDebug(logger_, "   das neue Pages-Object erzeugen");
    pages_ = addObject(text("/Type /Pages\r\n/Kids [ ", page_, " 0 R ]\r\n/Count 1"), CPdfObj::eContentDictionary);
    logDebug(logger_, "   neues Pages-Objet erzeugt (", pages_, ")");
    target_.SetPagesParent(pages_);
    CPdfObj& copy = *target_.get_pdf_obj_from_map(page_ - 1);
    std::string withParent(copy.content());
    if (!setEntry(withParent, "/Parent", reference(pages_), EntryLayout::Splice)) return VARNPDF_TRAILER_INCOMPLETE;
    copy.setContent(withParent);
    logDebug(logger_, "   Coversheet okay");
    return VARNPDF_OK;
}

void CollectionBuilder::addCatalogue() {
    logDebug(logger_, "Root-Object erstellen (", target_.GetObjNum() + 1, ")");
    const std::string collection = text("/D (", stringBody(initial_), ")");
    target_.CreateRoot(text("[ ", page_, " 0 R /XYZ null null 0]"), reference(names_), reference(pages_), collection,
                       metadata_, pageLabels_, outputIntents_);
}

// The trailer of a document from nothing spells its size in lower case. An empty section behind it says what strict
// readers look for.
int CollectionBuilder::save(const char* path) {
    logDebug(logger_, "Alle PDF-Objekte schreiben");
    if (target_.WriteObjArrayToContent() != 0) return VARNPDF_COLLECTION_NOT_WRITTEN;
    logDebug(logger_, "XRef schreiben");
    if (target_.WriteXrefToContent() != 0) return VARNPDF_COLLECTION_NOT_WRITTEN;
    const int size = target_.GetObjNum() + 1;
    target_.CreateIdent();
    const std::string ident = target_.GetIdent();
    target_.WriteTrailerToContent(size, ident);

    CPdfXRefContainer nothing;
    CPdfXRef run;
    run.SetRefStart(0);
    nothing.AddXRef(&run);
    CPdfTrailer trailer;
    trailer.SetSize(size);
    trailer.setRoot(reference(target_.GetRootObjNum()));
    trailer.setId(text('[', ident, ' ', ident, ']'));
    trailer.SetPrev(target_.GetXRefStartPos());
    std::string section = crossReferenceTable(nothing) + trailerText(trailer, target_.GetContentLen() - 1);
    target_.AppendToContent(section.data(), static_cast<int>(section.size()), false, 0);

    const std::string_view bytes(reinterpret_cast<const char*>(target_.GetContent()), target_.GetContentLen() - 1);
    if (bytes.size() > limits::kDocumentBytes) return VARNPDF_COLLECTION_NOT_WRITTEN;
    StagedFile file(path);
    if (!file.isOpen()) return VARNPDF_COLLECTION_NOT_WRITTEN;
    file.write(bytes);
    return file.commit() ? VARNPDF_OK : VARNPDF_COLLECTION_NOT_WRITTEN;
}

}  // namespace varnpdf
