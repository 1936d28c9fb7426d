// Adding a file to the embedded-files name tree.
#include "portfolio/NameTreeUpdate.h"

#include "model/Lookup.h"
#include "support/Limits.h"
#include "support/Text.h"
#include "syntax/Dictionary.h"
#include "syntax/Lexer.h"
#include "syntax/Text.h"
#include "syntax/Values.h"

namespace varnpdf {
namespace {

// The last element of an array that is a reference.
std::optional<std::string_view> lastKid(std::string_view array) {
    Lexer lexer(array);
    if (lexer.next().kind != TokenKind::ArrayOpen) return std::nullopt;
    std::string_view last;
    while (const auto value = lexer.nextValue()) last = *value;
    return last;
}

}  // namespace

std::string NameTreeUpdate::pair() const { return text(literalString(key_), ' ', fileSpec_, " 0 R"); }

// The text, as changed so far, of the object that a value refers to; null for any other value.
std::string* NameTreeUpdate::textOf(std::string_view reference) {
    const CPdfObj* const object = objectOf(document_, reference);
    return object == nullptr || object->content().empty() ? nullptr : &update_.change(*object);
}

// A missing object is null (ISO 32000-2 7.3.10); one that is there but cannot be read is not.
bool NameTreeUpdate::isAbsent(std::string_view value) const {
    const auto [text, holder] = resolve(document_, value);
    if (!text.empty()) return false;
    return holder == nullptr || holder->content().empty() || !objectValue(holder->content()).empty();
}

// Applies an edit to what a key leads to: to the object that is referred to, or to the value in place.
bool NameTreeUpdate::editValue(std::string& holder, std::string_view key, Edit edit) {
    std::string value(valueOf(holder, key));
    if (std::string* const object = textOf(value)) return (this->*edit)(*object);
    if (!(this->*edit)(value)) return false;
    return setEntry(holder, key, value, EntryLayout::Splice);
}

bool NameTreeUpdate::run(const CPdfObj& catalogue) {
    std::string& root = update_.change(catalogue);
    if (!isAbsent(valueOf(root, "/Names"))) return editValue(root, "/Names", &NameTreeUpdate::editNames);
    return setEntry(root, "/Names", text(addNames(), " 0 R"), EntryLayout::Splice);
}

int NameTreeUpdate::addNames() {
    const int names = update_.reserve();
    update_.write(names, 0, text(names, " 0 obj\r<<\r/EmbeddedFiles ", names + 1, " 0 R\r>>\rendobj\r"));
    addTree();
    return names;
}

int NameTreeUpdate::addTree() {
    const int tree = update_.reserve();
    update_.write(tree, 0, text(tree, " 0 obj\r\n<<\r\n/Names [", pair(), "]\r\n>>\r\nendobj\r\n"));
    return tree;
}

bool NameTreeUpdate::editNames(std::string& names) {
    const std::string_view tree = valueOf(names, "/EmbeddedFiles");
    if (!isAbsent(tree)) return editValue(names, "/EmbeddedFiles", &NameTreeUpdate::editNode);
    return setEntry(names, "/EmbeddedFiles", text(addTree(), " 0 R"), EntryLayout::Splice);
}

// The pair goes into the last leaf, so that it is the last one of the whole tree.
bool NameTreeUpdate::editNode(std::string& node) {
    if (!Dictionary(node) || ++depth_ > limits::kNesting) return false;
    const std::string_view kids = valueOf(node, "/Kids");
    if (isAbsent(kids)) return editLeaf(node);
    const auto kid = lastKid(resolved(document_, kids));
    if (!kid) return false;
    if (kid->empty()) return editLeaf(node);
    const CPdfObj* const object = objectOf(document_, *kid);
    if (object == nullptr || !kidsSeen_.insert(object->GetObjNum()).second) return false;
    std::string* const leaf = textOf(*kid);
    return leaf != nullptr && leaf != &node && editNode(*leaf) && widenLimits(node);
}

bool NameTreeUpdate::editLeaf(std::string& leaf) {
    if (!isAbsent(valueOf(leaf, "/Names"))) {
        return editValue(leaf, "/Names", &NameTreeUpdate::insertPair) && widenLimits(leaf);
    }
    if (!setEntry(leaf, "/Names", text('[', pair(), ']'), EntryLayout::Splice)) return false;
    return widenLimits(leaf);
}

// In front of the "]" that closes the array; what does not end so is refused.
bool NameTreeUpdate::insertPair(std::string& holder) {
    const std::string_view array = objectValue(holder);
    if (!array.starts_with('[') || !array.ends_with(']')) return false;
    const std::size_t close = offsetIn(holder, array) + array.size() - 1;
    holder.insert(close, (array.size() > 2 ? " " : "") + pair());
    return true;
}

// Keys are compared byte by byte (ISO 32000-2 7.9.6).
bool NameTreeUpdate::widenLimits(std::string& node) {
    const std::string_view value = valueOf(node, "/Limits");
    if (isAbsent(value)) return true;
    const std::string_view array = resolved(document_, value);
    Lexer lexer(array);
    if (lexer.next().kind != TokenKind::ArrayOpen) return false;
    const auto least = lexer.nextValue();
    const auto most = lexer.nextValue();
    const auto low = least ? stringOf(*least) : std::nullopt;
    const auto high = most ? stringOf(*most) : std::nullopt;
    if (!low || !high) return false;
    if (*low <= key_ && key_ <= *high) return true;
    const std::string own = literalString(key_);
    const std::string_view from = key_ < *low ? std::string_view(own) : *least;
    const std::string_view to = key_ > *high ? std::string_view(own) : *most;
    return setEntry(node, "/Limits", text('[', from, ' ', to, ']'), EntryLayout::Splice);
}

}  // namespace varnpdf
