// CPdf: the page tree (ISO 32000-2 7.7.3).
#include <algorithm>
#include <cstdlib>
#include <limits>
#include <unordered_map>

#include "model/DictionaryEntry.h"
#include "model/ObjectTable.h"
#include "reader/PageTree.h"
#include "support/Limits.h"
#include "support/Log.h"
#include "syntax/Reference.h"
#include "varnpdf/Pdf.h"

using namespace varnpdf;

namespace {

// The next reference of a list; whatever else stands in it is passed over.
std::optional<int> takeReference(Cursor& cursor) {
    while (!cursor.atEnd()) {
        Cursor ahead = cursor;
        const auto number = ahead.takeInt();
        const auto generation = number ? ahead.takeInt() : std::nullopt;
        ahead.skip(kIsCSpace);
        if (generation && ahead.take('R')) {
            cursor = ahead;
            return number;
        }
        cursor.skip(kIsCSpace);
        if (cursor.skip(kIsDigit) == 0) cursor.advance();
    }
    return std::nullopt;
}

std::string_view withoutBrackets(std::string_view array) {
    array = stripReferenceArray(array);
    return array.size() < 2 ? std::string_view{} : array.substr(1, array.size() - 2);
}

int wholeNumber(std::string_view token) { return Cursor(token).takeInt().value_or(0); }

// "[%s %s %s %s]" with the first corner made the lower left.
void readBox(std::string_view array, int* box) {
    Cursor cursor(array);
    if (!cursor.take('[')) return;
    int values[4] = {};
    for (int& value : values) {
        cursor.skip(kIsCSpace);
        const std::string_view token = cursor.takeUntil(kIsCSpace).of(array);
        if (token.empty()) return;
        value = wholeNumber(token);
    }
    box[0] = std::min(values[0], values[2]);
    box[1] = std::min(values[1], values[3]);
    box[2] = std::max(values[0], values[2]);
    box[3] = std::max(values[1], values[3]);
}

// The text of an array that is there itself or by reference.
std::string_view arrayText(std::string_view value, const CPdfObj* referenced) {
    if (value.starts_with('[')) return value;
    if (referenced == nullptr) return {};
    const std::string_view text = referenced->content();
    return text.substr(std::min(text.find('['), text.size()));
}

bool isPage(CPdfObj& obj) { return obj.typeEntry() == "/Page"; }

}  // namespace

std::string_view CPdf::kidsOf(CPdfObj& node) {
    const std::string_view value = trim(entryValue(node.content(), "/Kids"), " \n\r\t");
    if (value.empty() || !isReference(value)) return withoutBrackets(value);
    logDebug(m_logger, "/Kids-Eintrag ist Referenz also Array von dort holen");
    const CPdfObj* const array = referencedObject(value);
    return array == nullptr ? std::string_view{} : withoutBrackets(array->content());
}

// Depth first, left to right, without recursion. A node met before ends its branch: it would only repeat pages, or
// never end.
void CPdf::walkTree(std::string_view references, const CPdfObj* root, bool (*isLeaf)(CPdfObj&),
                    std::vector<CPdfObj*>& leaves) {
    std::vector<Cursor> levels{Cursor(references)};
    // What each object is, asked once: a leaf may be listed many times.
    enum class Kind { Node, Leaf, Other };
    std::unordered_map<const CPdfObj*, Kind> kinds{{root, Kind::Node}};
    for (std::size_t followed = 0; !levels.empty() && followed < limits::kTreeReferences; ++followed) {
        const auto number = takeReference(levels.back());
        if (!number) {
            levels.pop_back();
            continue;
        }
        CPdfObj* const obj = objects_->find(*number);
        if (obj == nullptr) continue;
        const auto [known, isNew] = kinds.try_emplace(obj, Kind::Other);
        if (isNew && findLaterEntry(obj->content(), "/Kids")) {
            known->second = Kind::Node;
            if (levels.size() < static_cast<std::size_t>(limits::kNesting)) levels.emplace_back(kidsOf(*obj));
            continue;
        }
        if (isNew && isLeaf(*obj)) known->second = Kind::Leaf;
        if (known->second == Kind::Leaf) leaves.push_back(obj);
    }
}

CPdfObj* CPdf::GetPageObjectFromArray(char* refList, int* counter, int pageIndex) {
    if (refList == nullptr || counter == nullptr || *refList == '\0') return nullptr;
    std::vector<CPdfObj*> pages;
    walkTree(refList, nullptr, isPage, pages);
    for (CPdfObj* const page : pages) {
        if (*counter == pageIndex) return page;
        ++*counter;
    }
    return nullptr;
}

// Walking the tree for every page, or reading the long /Kids of a flat tree for each, would make a host that visits
// all pages quadratic.
PageTree& CPdf::pageTree(CPdfObj& root) {
    if (!pages_) pages_ = std::make_unique<PageTree>();
    if (pages_->root != &root || pages_->revision != objects_->revision()) {
        pages_->objects.clear();
        pages_->nodes.clear();
        walkTree(kidsOf(root), &root, isPage, pages_->objects);
        pages_->root = &root;
        pages_->revision = objects_->revision();
    }
    return *pages_;
}

const PageNode& CPdf::pageNode(PageTree& tree, const CPdfObj& obj) {
    const auto [it, added] = tree.nodes.try_emplace(&obj);
    if (!added) return it->second;
    const std::string_view text = obj.content();
    if (const auto entry = findLaterEntry(text, "/MediaBox")) {
        const std::string_view value = entry->value.of(text);
        it->second.box.emplace();
        readBox(arrayText(value, referencedObject(value)), it->second.box->data());
    }
    it->second.rotation = entryInt(text, "/Rotate");
    it->second.parent = referencedObject(entryValue(text, "/Parent"));
    return it->second;
}

CPdfObj* CPdf::GetPdfPageObject(CPdfObj* pagesRoot, int pageIndex, int* mediaBox, int* rotate) {
    if (pagesRoot == nullptr) {
        logDebug(m_logger, "Pages-Objekt leer, Abbruch!");
        return nullptr;
    }
    PageTree& tree = pageTree(*pagesRoot);
    if (tree.objects.empty() && !findLaterEntry(pagesRoot->content(), "/Kids")) {
        logDebug(m_logger, "/Kids-Eintrag nicht gefunden, Abbruch!");
        return nullptr;
    }
    if (pageIndex < 0 || static_cast<std::size_t>(pageIndex) >= tree.objects.size()) return nullptr;
    CPdfObj* const page = tree.objects[static_cast<std::size_t>(pageIndex)];
    std::optional<std::array<int, 4>> box;
    std::optional<int> turned;
    const CPdfObj* obj = page;
    for (int i = 0; obj != nullptr && i < limits::kParents && !(box && turned); ++i) {
        const PageNode& node = pageNode(tree, *obj);
        if (!box) box = node.box;
        if (!turned) turned = node.rotation;
        obj = node.parent;
    }
    if (mediaBox != nullptr) {
        const std::array<int, 4> found = box.value_or(std::array<int, 4>{});
        std::copy(found.begin(), found.end(), mediaBox);
    }
    const int degrees = turned.value_or(0);
    if (rotate != nullptr) *rotate = degrees < 0 ? degrees + 360 : degrees;
    return page;
}

int CPdf::GetPageNoFromObjRef(int* objNum, int* /*genNum*/) {
    if (objNum == nullptr || !lastTrailer_ || lastTrailer_->GetSize() < 1 || encrypted_ == 1) return -1;
    const CPdfObj* const catalogue = referencedObject(lastTrailer_->root());
    if (catalogue == nullptr) return -1;
    CPdfObj* const root = referencedObject(entryValue(catalogue->content(), "/Pages"));
    if (root == nullptr) return -1;
    const int count = entryInt(root->content(), "/Count").value_or(0);
    const auto& pages = pageTree(*root).objects;
    const auto visited = std::min(pages.size(), static_cast<std::size_t>(std::max(count, 0)));
    for (std::size_t i = 0; i < visited; ++i) {
        if (pages[i]->GetObjNum() == *objNum) return static_cast<int>(i);
    }
    return -1;
}
