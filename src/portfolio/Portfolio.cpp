// A portfolio: the checks and the objects.
#include "portfolio/Portfolio.h"

#include <unistd.h>

#include <algorithm>
#include <new>

#include "model/Lookup.h"
#include "portfolio/ObjectCopier.h"
#include "portfolio/PackedFile.h"
#include "reader/Open.h"
#include "reader/Pages.h"
#include "support/Limits.h"
#include "support/Loggers.h"
#include "support/StagedFile.h"
#include "support/Text.h"
#include "syntax/Dictionary.h"
#include "syntax/Values.h"
#include "varnpdf/result.h"
#include "writer/SectionTexts.h"

namespace varnpdf {
namespace {

constexpr int kPdf = 1;
constexpr int kOther = 4;

// Collections came with 1.7. The comment makes programs take the file for binary (ISO 32000-2 7.5.2).
constexpr std::string_view kHeader = "%PDF-1.7\r\n%\xe2\xe3\xcf\xd3\r\n";

// Escaped, without the parentheses around it.
std::string stringBody(std::string_view bytes) {
    const std::string literal = literalString(bytes);
    return literal.substr(1, literal.size() - 2);
}

std::string reference(int number) { return text(number, " 0 R"); }

// What a page inherits from the nodes above it (ISO 32000-2 table 31) would be lost with them.
void takeInherited(const Document& source, CPdfObj& page) {
    std::string own(page.content());
    for (const std::string_view key : {"/Resources", "/MediaBox", "/CropBox", "/Rotate"}) {
        const CPdfObj* node = &page;
        std::string_view value = valueOf(own, key);
        for (int i = 0; value.empty() && i < limits::kParents; ++i) {
            node = objectOf(source, valueOf(node->content(), "/Parent"));
            if (node == nullptr) break;
            value = valueOf(node->content(), key);
        }
        if (node == nullptr || node == &page || value.empty()) continue;
        setEntry(own, key, value, EntryLayout::Splice);
    }
    page.setContent(own);
}

bool hasType(const PortfolioItem& item) { return item.type >= kPdf && item.type <= kOther; }
bool isActive(const PortfolioItem& item) { return item.isActive; }
bool isNameless(const PortfolioItem& item) { return item.path.empty(); }
bool isReachable(const PortfolioItem& item) { return access(item.path.c_str(), R_OK) == 0; }

// The active document supplies a page, so it is a PDF whatever its type says.
int checkPdfs(const std::vector<PortfolioItem>& items) {
    constexpr float kNewest = 1.4F;
    for (const PortfolioItem& item : items) {
        if (item.type != kPdf && !item.isActive) continue;
        Document pdf;
        if (openDocument(pdf, item.path.c_str()) != VARNPDF_OK) return VARNPDF_COLLECTION_PDF_UNREADABLE;
        if (pdf.version > kNewest) return VARNPDF_COLLECTION_PDF_VERSION;
    }
    return VARNPDF_OK;
}

// Each check is announced and, when passed, told; their order is part of the interface.
int checkItems(const std::string& path, const std::vector<PortfolioItem>& items) {
    if (path.empty()) return VARNPDF_COLLECTION_PATH_MISSING;
    logDebug(loggers::collection, "Dateiname PDF-Collection okay");
    if (items.empty()) return VARNPDF_COLLECTION_EMPTY;
    logDebug(loggers::collection, "Liste für die Collection enthälten Einträge.");
    logDebug(loggers::collection, "Checke die Typen der Einträge");
    if (!std::ranges::all_of(items, hasType)) return VARNPDF_COLLECTION_FILE_TYPE;
    logDebug(loggers::collection, "Jeder Eintrag hat einen gültigen Typ.");
    logDebug(loggers::collection, "Checke den 'Active'-Eintrag");
    if (std::ranges::count_if(items, isActive) != 1) return VARNPDF_COLLECTION_ACTIVE;
    logDebug(loggers::collection, "Eine anzuzeigende Seite vorhanden (active)");
    if (std::ranges::any_of(items, isNameless)) return VARNPDF_COLLECTION_NAME_MISSING;
    logDebug(loggers::collection, "Alle Dateinamen sind vorhanden");
    logDebug(loggers::collection, "Checke Erreichbarkeit Dateien, etc.");
    if (!std::ranges::all_of(items, isReachable)) return VARNPDF_COLLECTION_FILE_UNREADABLE;
    logDebug(loggers::collection, "Alle Dateien konnten erreicht werden.");
    return checkPdfs(items);
}

}  // namespace

int createPortfolio(const std::string& path, const std::vector<PortfolioItem>& items) {
    if (const int code = checkItems(path, items); code != VARNPDF_OK) return code;
    Portfolio portfolio(items);
    if (const int code = portfolio.build(); code != VARNPDF_OK) return code;
    StagedFile file(path.c_str());
    if (!file.isOpen()) return VARNPDF_COLLECTION_NOT_WRITTEN;
    file.write(portfolio.bytes());
    return file.commit() ? VARNPDF_OK : VARNPDF_COLLECTION_NOT_WRITTEN;
}

std::string appendToNamesArray(std::string array, std::string_view key, std::string_view reference) {
    if (array.ends_with(']')) {
        array.pop_back();
    } else {
        array = "[ ";
    }
    append(array, '(', key, ") ", reference, " 0 R ]");
    return array;
}

int Portfolio::build() {
    logDebug(loggers::collection, "Starte Erstellung der Collection");
    putHeader(target_, kHeader);
    if (const int code = addFiles(); code != VARNPDF_OK) return code;
    addNames();
    if (const int code = addCover(); code != VARNPDF_OK) return code;
    addCatalogue();
    return close();
}

// The number of the new object.
int Portfolio::addObject(std::string_view body, CPdfObj::ContentType type) {
    const int number = createObject(target_, body, type);
    if (number == 0) throw std::bad_alloc();
    return number;
}

void Portfolio::addEntry(int object, const char* key, const std::string& value) {
    if (objectAt(target_, object).AddDictionaryEntry(key, value.c_str()) != 1) throw std::bad_alloc();
}

int Portfolio::addFiles() {
    logDebug(loggers::collection, "Durchlaufe anzuhängende Dateien:");
    for (const PortfolioItem& item : items_) {
        if (const int code = addFile(item); code != VARNPDF_OK) return code;
    }
    logDebug(loggers::collection, "Durchlauf anzuhängende Dateien beendet");
    return VARNPDF_OK;
}

int Portfolio::addFile(const PortfolioItem& item) {
    int stream = 0;
    if (const int code = addStream(item, stream); code != VARNPDF_OK) return code;
    const std::string name(justFilename(item.path));
    const std::string shown = literalString(textString(name));
    const int spec = addObject("", CPdfObj::eContentDictionary);
    logDebug(loggers::collection, "   Erstelle das FileSpec-Object mit den Datei-Daten (", spec, ")");
    addEntry(spec, "/Type", "/Filespec");
    addEntry(spec, "/F", shown);
    addEntry(spec, "/UF", shown);
    addEntry(spec, "/Desc", literalString(textString(item.description)));
    addEntry(spec, "/EF", text("<</F ", stream, " 0 R/UF ", stream, " 0 R>>"));
    logDebug(loggers::collection, "   Names-Object aufbauen bzw. Ergänzen den Datei-Daten");
    const std::string key = uniqueKey(name);
    files_[key] = spec;
    if (item.isActive) {
        logDebug(loggers::collection, "   Markierung als Direkt anzeigen (", key, ")");
        initial_ = key;
    }
    return VARNPDF_OK;
}

int Portfolio::addStream(const PortfolioItem& item, int& stream) {
    logDebug(loggers::collection, "   Lese Datei ein und packe den Content");
    PackedFile file;
    const PackResult result = packFile(item.path.c_str(), file);
    if (result == PackResult::Empty) {
        const auto nothing = deflated("");
        if (!nothing) return VARNPDF_COLLECTION_NOT_WRITTEN;
        file.data.reserve(nothing->size());
        nothing->copy(file.data.data(), nothing->size());
        file.data.setSize(nothing->size());
    } else if (result != PackResult::Good) {
        return result == PackResult::Unreadable ? VARNPDF_COLLECTION_FILE_UNREADABLE : VARNPDF_COLLECTION_NOT_WRITTEN;
    }
    stream = addObject("", CPdfObj::eContentDictionary);
    logDebug(loggers::collection, "   Erstelle das EmbeddedFile-Objekt (", stream, ")");
    addEntry(stream, "/Type", "/EmbeddedFile");
    addEntry(stream, "/Filter", "/FlateDecode");
    addEntry(stream, "/Length", reference(stream + 1));
    std::string params = text("<</Size ", file.length);
    if (file.modified != 0) append(params, "/ModDate (", fileDate(file.modified), ')');
    addEntry(stream, "/Params", params + ">>");
    if (file.data.size() > limits::kDocumentBytes) return VARNPDF_COLLECTION_NOT_WRITTEN;
    objectAt(target_, stream).AddStream(file.data.data(), static_cast<int>(file.data.size()));
    logDebug(loggers::collection, "   Erstelle Length-Object für das Stream Objekt mit gepacktem Content (", stream + 1,
             ")");
    addObject(text(file.data.size()), CPdfObj::eContentOther);
    return VARNPDF_OK;
}

// Files of several directories may have one name.
std::string Portfolio::uniqueKey(const std::string& name) {
    std::string key = textString(name);
    int& copies = copies_.try_emplace(name, 1).first->second;
    while (files_.contains(key)) key = textString(text(name, " (", ++copies, ')'));
    return key;
}

void Portfolio::addNames() {
    std::string array;
    for (const auto& [key, spec] : files_) array = appendToNamesArray(std::move(array), stringBody(key), text(spec));
    names_ = addObject(text("/EmbeddedFiles <</Names ", array, ">>"), CPdfObj::eContentDictionary);
    logDebug(loggers::collection, "Names-Object erstellen(", names_, ")");
}

int Portfolio::addCover() {
    logDebug(loggers::collection, "Erneuter Durchlauf für die Coverpage");
    for (const PortfolioItem& item : items_) {
        if (!item.isActive) continue;
        logDebug(loggers::collection, "   PDF für das Coversheet gefunden");
        Document source;
        if (openDocument(source, item.path.c_str()) != VARNPDF_OK) return VARNPDF_COLLECTION_PDF_UNREADABLE;
        if (const int code = copyCover(source); code != VARNPDF_OK) return code;
    }
    return VARNPDF_OK;
}

int Portfolio::copyCover(Document& source) {
    const CPdfObj* const catalogue = objectOf(source, source.newest->root());
    CPdfObj* const tree = catalogue == nullptr ? nullptr : objectOf(source, valueOf(catalogue->content(), "/Pages"));
    if (tree == nullptr) return VARNPDF_TRAILER_INCOMPLETE;
    logDebug(loggers::collection, "   Suche Page-Object");
    const auto& pages = pagesBelow(source, *tree);
    if (pages.empty()) return VARNPDF_TRAILER_INCOMPLETE;
    CPdfObj& page = *pages.front();
    takeInherited(source, page);
    ObjectCopier copier(source, target_);
    page_ = copier.copy(page.GetObjNum());
    const auto carried = [&](std::string_view key) {
        const std::string_view value = valueOf(catalogue->content(), key);
        std::string copy = value.empty() ? std::string() : copier.copyValue(value);
        if (copy.starts_with(' ')) copy.erase(0, 1);
        return copy == "null" ? std::string() : copy;
    };
    metadata_ = carried("/Metadata");
    pageLabels_ = carried("/PageLabels");
    outputIntents_ = carried("/OutputIntents");

    logDebug(loggers::collection, "   das neue Pages-Object erzeugen");
    target_.pagesParent =
        addObject(text("/Type /Pages\r\n/Kids [ ", page_, " 0 R ]\r\n/Count 1"), CPdfObj::eContentDictionary);
    logDebug(loggers::collection, "   neues Pages-Objet erzeugt (", target_.pagesParent, ")");
    CPdfObj& copy = objectAt(target_, page_);
    std::string withParent(copy.content());
    if (!setEntry(withParent, "/Parent", reference(target_.pagesParent), EntryLayout::Splice)) {
        return VARNPDF_TRAILER_INCOMPLETE;
    }
    copy.setContent(withParent);
    logDebug(loggers::collection, "   Coversheet okay");
    return VARNPDF_OK;
}

void Portfolio::addCatalogue() {
    logDebug(loggers::collection, "Root-Object erstellen (", target_.objectCount + 1, ")");
    const std::string openAction = text("[ ", page_, " 0 R /XYZ null null 0]");
    const std::string names = reference(names_);
    const std::string pages = reference(target_.pagesParent);
    const std::string collection = text("/D (", stringBody(initial_), ")");
    const int root =
        createRoot(target_, {openAction, names, pages, collection, metadata_, pageLabels_, outputIntents_});
    if (root == 0) throw std::bad_alloc();
}

// The trailer of a document from nothing spells its size in lower case. An empty section behind it says what strict
// readers look for.
int Portfolio::close() {
    logDebug(loggers::collection, "Alle PDF-Objekte schreiben");
    if (!writeObjects(target_)) return VARNPDF_COLLECTION_NOT_WRITTEN;
    logDebug(loggers::collection, "XRef schreiben");
    if (!writeTable(target_)) return VARNPDF_COLLECTION_NOT_WRITTEN;
    const int size = target_.objectCount + 1;
    target_.ident = kNewIdent;
    writeTrailer(target_, size, target_.ident);

    CPdfXRefContainer nothing;
    CPdfXRef run;
    run.SetRefStart(0);
    nothing.AddXRef(&run);
    CPdfTrailer trailer;
    trailer.SetSize(size);
    trailer.setRoot(reference(target_.rootNumber));
    trailer.setId(text('[', target_.ident, ' ', target_.ident, ']'));
    trailer.SetPrev(target_.tableOffset);
    appendBytes(target_, crossReferenceTable(nothing) + trailerText(trailer, bytes().size()));
    return bytes().size() > limits::kDocumentBytes ? VARNPDF_COLLECTION_NOT_WRITTEN : VARNPDF_OK;
}

}  // namespace varnpdf
