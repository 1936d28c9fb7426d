// CPdfCollection: the checks, and the small operations that serve the building.
#include "varnpdf/PdfCollection.h"

#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <utility>

#include "portfolio/CollectionBuilder.h"
#include "portfolio/EmbeddedFile.h"
#include "portfolio/ObjectCopier.h"
#include "support/Loggers.h"
#include "support/Text.h"
#include "syntax/Dictionary.h"
#include "syntax/Reference.h"
#include "varnpdf/Pdf.h"
#include "varnpdf/result.h"

using namespace varnpdf;

namespace {

using Items = std::list<CPdfCollectionListItem*>;

bool hasType(const CPdfCollectionListItem* item) {
    return item != nullptr && item->getFileType() >= CPdfCollectionListItem::ePdf &&
           item->getFileType() <= CPdfCollectionListItem::eOther;
}

bool isReachable(const CPdfCollectionListItem* item) { return access(item->getFileName().c_str(), R_OK) == 0; }

// The active document supplies a page, so it is a PDF whatever its type says.
int checkPdfs(const Items& items) {
    constexpr float kNewest = 1.4F;
    for (const CPdfCollectionListItem* const item : items) {
        if (item->getFileType() != CPdfCollectionListItem::ePdf && !item->getIsActivePage()) continue;
        CPdf pdf;
        if (pdf.Open(item->getFileName().c_str(), "rb") != VARNPDF_OK) return VARNPDF_COLLECTION_PDF_UNREADABLE;
        if (pdf.GetPDFVersion() > kNewest) return VARNPDF_COLLECTION_PDF_VERSION;
    }
    return VARNPDF_OK;
}

// The order of the checks is what hosts know; each is announced and, when passed, told.
int checkItems(const char* path, const Items& items, const ClassLogger& logger) {
    if (path == nullptr || *path == '\0') return VARNPDF_COLLECTION_PATH_MISSING;
    logDebug(logger, "Dateiname PDF-Collection okay");
    if (items.empty()) return VARNPDF_COLLECTION_EMPTY;
    logDebug(logger, "Liste für die Collection enthälten Einträge.");
    logDebug(logger, "Checke die Typen der Einträge");
    if (!std::ranges::all_of(items, hasType)) return VARNPDF_COLLECTION_FILE_TYPE;
    logDebug(logger, "Jeder Eintrag hat einen gültigen Typ.");
    logDebug(logger, "Checke den 'Active'-Eintrag");
    const auto isActive = [](const CPdfCollectionListItem* item) { return item->getIsActivePage(); };
    if (std::ranges::count_if(items, isActive) != 1) return VARNPDF_COLLECTION_ACTIVE;
    logDebug(logger, "Eine anzuzeigende Seite vorhanden (active)");
    const auto isNameless = [](const CPdfCollectionListItem* item) { return item->getFileName().empty(); };
    if (std::ranges::any_of(items, isNameless)) return VARNPDF_COLLECTION_NAME_MISSING;
    logDebug(logger, "Alle Dateinamen sind vorhanden");
    logDebug(logger, "Checke Erreichbarkeit Dateien, etc.");
    if (!std::ranges::all_of(items, isReachable)) return VARNPDF_COLLECTION_FILE_UNREADABLE;
    logDebug(logger, "Alle Dateien konnten erreicht werden.");
    return checkPdfs(items);
}

}  // namespace

CPdfCollectionListItem::CPdfCollectionListItem(std::string fileName, int fileType, bool activePage,
                                               std::string description)
    : fileName_(std::move(fileName)),
      fileType_(fileType),
      activePage_(activePage),
      description_(std::move(description)) {}

CPdfCollectionListItem::CPdfCollectionListItem(const CPdfCollectionListItem&) = default;
CPdfCollectionListItem& CPdfCollectionListItem::operator=(const CPdfCollectionListItem&) = default;
CPdfCollectionListItem::~CPdfCollectionListItem() = default;

std::string CPdfCollectionListItem::getFileName() const { return fileName_; }
void CPdfCollectionListItem::setFileName(std::string fileName) { fileName_ = std::move(fileName); }
int CPdfCollectionListItem::getFileType() const { return fileType_; }
bool CPdfCollectionListItem::getIsActivePage() const { return activePage_; }
std::string CPdfCollectionListItem::getDescription() const { return description_; }
void CPdfCollectionListItem::setDescription(std::string description) { description_ = std::move(description); }

CPdfCollection::CPdfCollection() = default;
CPdfCollection::~CPdfCollection() = default;

int CPdfCollection::CreateCollection(char* path, std::list<CPdfCollectionListItem*> items) {
    logDebug(loggers::collection, "CreateCollection START");
    int code = VARNPDF_OK;
    try {
        code = checkItems(path, items, loggers::collection);
        if (code == VARNPDF_OK) code = CollectionBuilder(*this, items, loggers::collection).run(path);
    } catch (...) {
        code = VARNPDF_COLLECTION_NOT_WRITTEN;
    }
    if (code != VARNPDF_OK) {
        logError(loggers::collection, "CreateCollection ABBRUCH: ", code);
    } else {
        logDebug(loggers::collection, "CreateCollection ENDE");
    }
    return code;
}

int CPdfCollection::CopyOldObjToNew(int objectNumber, CPdf* source, CPdf* target) {
    if (source == nullptr || target == nullptr) return VARNPDF_UPDATE_OBJECT_MISSING;
    try {
        const int copy = ObjectCopier(*source, *target, loggers::collection).copy(objectNumber);
        return copy > 0 ? copy : VARNPDF_UPDATE_OBJECT_MISSING;
    } catch (...) {
        return VARNPDF_PDF_MEMORY_ALLOCATION;
    }
}

std::string CPdfCollection::AppendToNamesArray(std::string array, std::string key, std::string reference) {
    if (array.ends_with(']')) {
        array.pop_back();
    } else {
        array = "[ ";
    }
    append(array, '(', key, ") ", reference, " 0 R ]");
    return array;
}

std::string CPdfCollection::JustFilename(std::string path) { return std::string(justFilename(path)); }

int CPdfCollection::StripRealContent(char* text, int len, char* out, int* outLen) {
    if (outLen != nullptr) *outLen = 0;
    if (text == nullptr || out == nullptr || outLen == nullptr || len <= 0) return 0;
    std::string_view body(text, static_cast<std::size_t>(len));
    body.remove_prefix(bodyBegin(body));
    body = trim(body);
    constexpr std::string_view kEndObj = "endobj";
    if (body.ends_with(kEndObj)) body = trim(body.substr(0, body.size() - kEndObj.size()));
    if (body.empty()) return 0;
    std::memcpy(out, body.data(), body.size());
    *outLen = static_cast<int>(body.size());
    return 1;
}

int CPdfCollection::ExamineValue(std::string value, CPdf* source) {
    if (source == nullptr) return 0;
    try {
        return valueKind(*source, value);
    } catch (...) {
        return 0;
    }
}
