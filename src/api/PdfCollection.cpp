// CPdfCollection: the face of portfolios and of the operations that serve them.
#include "varnpdf/PdfCollection.h"

#include <algorithm>
#include <utility>

#include "api/PdfState.h"
#include "portfolio/ObjectCopier.h"
#include "portfolio/PackedFile.h"
#include "portfolio/Portfolio.h"
#include "support/Guarded.h"
#include "support/Loggers.h"
#include "syntax/Dictionary.h"
#include "syntax/Reference.h"
#include "syntax/Text.h"

using namespace varnpdf;

namespace {

// An item that is missing has no type.
std::vector<PortfolioItem> plainItems(const std::list<CPdfCollectionListItem*>& items) {
    std::vector<PortfolioItem> out;
    for (const CPdfCollectionListItem* const item : items) {
        PortfolioItem& plain = out.emplace_back();
        if (item == nullptr) continue;
        plain = {item->getFileName(), item->getFileType(), item->getIsActivePage(), item->getDescription()};
    }
    return out;
}

// What stands between "obj" and "endobj", without white space around it.
std::string_view realContent(std::string_view text) {
    constexpr std::string_view kEndObj = "endobj";
    std::string_view body = trim(text.substr(bodyBegin(text)));
    if (body.ends_with(kEndObj)) body = trim(body.substr(0, body.size() - kEndObj.size()));
    return body;
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
    const int code = guarded([&] { return createPortfolio(std::string(varnpdf::viewOf(path)), plainItems(items)); },
                             VARNPDF_PDF_MEMORY_ALLOCATION, VARNPDF_COLLECTION_NOT_WRITTEN);
    if (code != VARNPDF_OK) {
        logError(loggers::collection, "CreateCollection ABBRUCH: ", code);
    } else {
        logDebug(loggers::collection, "CreateCollection ENDE");
    }
    return code;
}

int CPdfCollection::CopyOldObjToNew(int objectNumber, CPdf* source, CPdf* target) {
    if (source == nullptr || target == nullptr) return VARNPDF_UPDATE_OBJECT_MISSING;
    return guarded([&]() -> int {
        const int copy = ObjectCopier(documentOf(*source), Access::state(*target)).copy(objectNumber);
        return copy > 0 ? copy : VARNPDF_UPDATE_OBJECT_MISSING;
    });
}

std::string CPdfCollection::AppendToNamesArray(std::string array, std::string key, std::string reference) {
    return appendToNamesArray(std::move(array), key, reference);
}

std::string CPdfCollection::JustFilename(std::string path) { return std::string(justFilename(path)); }

int CPdfCollection::StripRealContent(char* text, int len, char* out, int* outLen) {
    if (outLen != nullptr) *outLen = 0;
    if (text == nullptr || out == nullptr || outLen == nullptr || len <= 0) return 0;
    const std::string_view body = realContent({text, static_cast<std::size_t>(len)});
    if (body.empty()) return 0;
    std::copy(body.begin(), body.end(), out);
    *outLen = static_cast<int>(body.size());
    return 1;
}

int CPdfCollection::ExamineValue(std::string value, CPdf* source) {
    constexpr int kNone = static_cast<int>(ObjectKind::None);
    if (source == nullptr) return kNone;
    return guarded([&] { return static_cast<int>(valueKind(documentOf(*source), value)); }, kNone);
}
