// The page tree.
#include "reader/Pages.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

#include "model/DictionaryEntry.h"
#include "model/Lookup.h"
#include "support/Limits.h"
#include "support/Loggers.h"
#include "syntax/Dictionary.h"
#include "syntax/Reference.h"
#include "syntax/Values.h"

namespace varnpdf {
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

std::string_view kidsOf(const Document& document, const CPdfObj& node) {
    const std::string_view value = trim(lookUpValue(node.content(), "/Kids"), " \n\r\t");
    if (value.empty() || !isReference(value)) return withoutBrackets(value);
    logDebug(loggers::pdf, "/Kids-Eintrag ist Referenz also Array von dort holen");
    const CPdfObj* const array = referencedObject(document, value);
    return array == nullptr ? std::string_view{} : withoutBrackets(array->content());
}

std::optional<std::array<double, 4>> boxOf(const Document& document, std::string_view value) {
    const auto items = itemsOf(resolved(document, value));
    if (!items || items->size() != 4) return std::nullopt;
    std::array<double, 4> box{};
    for (std::size_t i = 0; i < box.size(); ++i) {
        const auto number = realOf(document, (*items)[i]);
        if (!number) return std::nullopt;
        box[i] = *number;
    }
    if (box[0] > box[2]) std::swap(box[0], box[2]);
    if (box[1] > box[3]) std::swap(box[1], box[3]);
    return box;
}

const PageNode& pageNode(Document& document, const CPdfObj& obj) {
    auto& known = document.caches.pageNodes;
    if (const auto it = known.find(&obj); it != known.end()) return it->second;
    const std::string_view text = obj.content();
    PageNode node;
    if (const auto value = lookUp(text, "/MediaBox")) {
        node.box.emplace();
        readBox(arrayText(*value, referencedObject(document, *value)), node.box->data());
        node.media = boxOf(document, *value);
    }
    node.crop = boxOf(document, lookUpValue(text, "/CropBox"));
    node.rotation = lookUpInt(text, "/Rotate");
    node.parent = referencedObject(document, lookUpValue(text, "/Parent"));
    return known.emplace(&obj, node).first->second;
}

}  // namespace

// Depth first, left to right, without recursion. A node met before ends its branch: it would only repeat pages, or
// never end.
void walkTree(const Document& document, std::string_view references, const CPdfObj* root, bool (*isLeaf)(CPdfObj&),
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
        CPdfObj* const obj = document.objects.find(*number);
        if (obj == nullptr) continue;
        const auto [known, isNew] = kinds.try_emplace(obj, Kind::Other);
        if (isNew && lookUp(obj->content(), "/Kids")) {
            known->second = Kind::Node;
            if (levels.size() < static_cast<std::size_t>(limits::kNesting)) levels.emplace_back(kidsOf(document, *obj));
            continue;
        }
        if (isNew && isLeaf(*obj)) known->second = Kind::Leaf;
        if (known->second == Kind::Leaf) leaves.push_back(obj);
    }
}

// The types that every object keeps are read by the letter of the lookups, which a string may lead astray.
bool isPage(CPdfObj& obj) {
    const std::string_view type = obj.typeEntry();
    return type == "/Page" || (type.empty() && lookUpValue(obj.content(), "/Type") == "/Page");
}

CPdfObj* pagesRoot(const Document& document, const CPdfObj& catalogue) {
    return referencedObject(document, lookUpValue(catalogue.content(), "/Pages"));
}

// Walking the tree for every page, or reading the long /Kids of a flat tree for each, would make a host that visits
// all pages quadratic.
const std::vector<CPdfObj*>& pagesBelow(Document& document, CPdfObj& root) {
    auto& pages = document.caches.pages;
    const std::uint64_t revision = document.objects.revision();
    if (!pages || pages->root != &root || pages->revision != revision) {
        document.caches.pageNodes.clear();
        ObjectList found{&root, revision, {}};
        walkTree(document, kidsOf(document, root), &root, isPage, found.objects);
        pages = std::move(found);
    }
    return pages->objects;
}

PageAttributes pageAttributes(Document& document, const CPdfObj& page) {
    std::optional<std::array<int, 4>> box;
    std::optional<int> turned;
    const CPdfObj* obj = &page;
    for (int i = 0; obj != nullptr && i < limits::kParents && !(box && turned); ++i) {
        const PageNode& node = pageNode(document, *obj);
        if (!box) box = node.box;
        if (!turned) turned = node.rotation;
        obj = node.parent;
    }
    const int degrees = turned.value_or(0);
    return {box.value_or(std::array<int, 4>{}), degrees < 0 ? degrees + 360 : degrees};
}

PageBoxes pageBoxes(Document& document, const CPdfObj& page) {
    std::optional<std::array<double, 4>> media;
    std::optional<std::array<double, 4>> crop;
    const CPdfObj* obj = &page;
    for (int i = 0; obj != nullptr && i < limits::kParents && !(media && crop); ++i) {
        const PageNode& node = pageNode(document, *obj);
        if (!media) media = node.media;
        if (!crop) crop = node.crop;
        obj = node.parent;
    }
    const auto whole = media.value_or(std::array<double, 4>{});
    return {whole, crop.value_or(whole)};
}

const std::vector<CPdfObj*>& allPages(Document& document) {
    static const std::vector<CPdfObj*> none;
    const CPdfObj* const catalogue = document.newest ? referencedObject(document, document.newest->root()) : nullptr;
    CPdfObj* const root = catalogue == nullptr ? nullptr : pagesRoot(document, *catalogue);
    return root == nullptr ? none : pagesBelow(document, *root);
}

std::unordered_map<int, int> annotationPages(Document& document) {
    std::unordered_map<int, int> pages;
    std::unordered_set<const CPdfObj*> read;
    int index = -1;
    for (const CPdfObj* const page : allPages(document)) {
        ++index;
        if (!read.insert(page).second) continue;
        const Resolved array = resolve(document, valueOf(page->content(), "/Annots"));
        if (array.holder != nullptr && !read.insert(array.holder).second) continue;
        for (const std::string_view item : itemsOf(array.value).value_or(std::vector<std::string_view>{})) {
            if (const auto number = referenceOf(item)) pages.emplace(*number, index);
        }
    }
    return pages;
}

int pageIndexOf(Document& document, int number) {
    if (!document.newest || document.newest->GetSize() < 1 || document.encrypted) return -1;
    const CPdfObj* const catalogue = referencedObject(document, document.newest->root());
    CPdfObj* const root = catalogue == nullptr ? nullptr : pagesRoot(document, *catalogue);
    if (root == nullptr) return -1;
    const int count = lookUpInt(root->content(), "/Count").value_or(0);
    const auto& pages = pagesBelow(document, *root);
    const auto visited = std::min(pages.size(), static_cast<std::size_t>(std::max(count, 0)));
    for (std::size_t i = 0; i < visited; ++i) {
        if (pages[i]->GetObjNum() == number) return static_cast<int>(i);
    }
    return -1;
}

}  // namespace varnpdf
