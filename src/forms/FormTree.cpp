// Walking the fields of a form.
#include "forms/FormTree.h"

#include <algorithm>

#include "reader/Pages.h"
#include "support/Limits.h"
#include "support/Text.h"
#include "syntax/Dictionary.h"
#include "syntax/Encoding.h"
#include "syntax/Lexer.h"
#include "syntax/Values.h"

namespace varnpdf {
namespace {

constexpr std::size_t kNoField = std::string_view::npos;

void inherit(std::string_view& attribute, std::string_view own) {
    if (!own.empty()) attribute = own;
}

FieldAttributes withOwn(FieldAttributes attributes, const Dictionary& own) {
    inherit(attributes.type, own.find("/FT"));
    inherit(attributes.flags, own.find("/Ff"));
    inherit(attributes.value, own.find("/V"));
    inherit(attributes.appearance, own.find("/DA"));
    inherit(attributes.quadding, own.find("/Q"));
    inherit(attributes.maxLength, own.find("/MaxLen"));
    return attributes;
}

std::string joined(const std::string& prefix, const std::string& partial) {
    return prefix.empty() ? partial : prefix + "." + partial;
}

}  // namespace

unsigned FormField::flags() const {
    return static_cast<unsigned>(std::clamp(numberOf(attributes.flags).value_or(0), 0.0, 2e9));
}

FormField loneField(CPdfObj& object) {
    const Dictionary own(object.content());
    FormField field{{}, withOwn({}, own), &object, {}};
    if (own.find("/Subtype") == "/Widget") field.widgets.push_back(&object);
    return field;
}

FormTree::FormTree(Document& document) : document_(document), lookup_(document) {
    CPdfObj* const catalogue = document.newest ? object(document.newest->root()) : nullptr;
    if (catalogue == nullptr) return;
    const std::string_view value = Dictionary(catalogue->content()).find("/AcroForm");
    formIsDirect_ = value.starts_with("<<");
    formHolder_ = formIsDirect_ ? catalogue : object(value);
    if (formHolder_ == nullptr) return;
    form_ = Dictionary(formIsDirect_ ? value : follow(value));
    FieldAttributes defaults;
    defaults.appearance = form_.find("/DA");
    defaults.quadding = form_.find("/Q");
    std::vector<Node> stack;
    for (CPdfObj* const field : kids(form_.find("/Fields"))) stack.push_back({field, "", defaults, kNoField, 0});
    std::reverse(stack.begin(), stack.end());
    walk(std::move(stack));
    findPages(*catalogue);
    walkWidgetsOutside(defaults);
}

CPdfObj* FormTree::object(std::string_view reference) const {
    CPdfObj* const found = lookup_.resolve(reference).holder;
    return found == nullptr || found->content().empty() ? nullptr : found;
}

std::string_view FormTree::follow(std::string_view value) const { return lookup_.resolve(value).value; }

// The objects of an array that have not been met before, each once. An array shared by several nodes is read for one.
std::vector<CPdfObj*> FormTree::kids(std::string_view array) {
    std::vector<CPdfObj*> out;
    const CPdfObj* const shared = object(array);
    if (shared != nullptr && !arrays_.insert(shared).second) return out;
    Lexer tokens(follow(array));
    if (tokens.next().kind != TokenKind::ArrayOpen) return out;
    std::unordered_set<const CPdfObj*> listed;
    while (const auto element = tokens.nextValue()) {
        CPdfObj* const kid = object(*element);
        if (kid != nullptr && !seen_.contains(kid) && listed.insert(kid).second) out.push_back(kid);
    }
    return out;
}

// Depth first, in the order of the arrays, without recursion. A node met before ends its branch.
void FormTree::walk(std::vector<Node> stack) {
    while (!stack.empty()) {
        Node node = std::move(stack.back());
        stack.pop_back();
        if (seen_.insert(node.object).second) visit(std::move(node), stack);
    }
}

// Widgets on pages that the form does not list: viewers show them, and let people fill them.
void FormTree::walkWidgetsOutside(const FieldAttributes& defaults) {
    std::unordered_set<const CPdfObj*> climbed;
    for (const int number : annotations_) {
        CPdfObj* const widget = document_.objects.find(number);
        if (widget == nullptr || seen_.contains(widget)) continue;
        if (Dictionary(widget->content()).find("/Subtype") != "/Widget") continue;
        walk({{topOf(widget, climbed), "", defaults, kNoField, 0}});
        walk({{widget, "", defaults, kNoField, 0}});
    }
}

CPdfObj* FormTree::topOf(CPdfObj* widget, std::unordered_set<const CPdfObj*>& climbed) const {
    for (int i = 0; i < limits::kFieldDepth && climbed.insert(widget).second; ++i) {
        CPdfObj* const parent = object(Dictionary(widget->content()).find("/Parent"));
        if (parent == nullptr || seen_.contains(parent)) break;
        widget = parent;
    }
    return widget;
}

void FormTree::visit(Node node, std::vector<Node>& stack) {
    const Dictionary own(node.object->content());
    const std::string_view written = follow(own.find("/T"));
    if (written.size() > limits::kFieldNameWritten) {
        ++omitted_;
        return;
    }
    const auto partial = stringOf(written);
    const bool isWidget = node.field != kNoField && !partial;
    if (!isWidget) {
        if (partial) node.prefix = joined(node.prefix, toUtf8(fromTextString(*partial)));
        node.attributes = withOwn(node.attributes, own);
    }
    const std::vector<CPdfObj*> below =
        node.depth < limits::kFieldDepth ? kids(own.find("/Kids")) : std::vector<CPdfObj*>{};
    // Long names multiplied by many fields would cost what the file does not have.
    const std::size_t cost = node.prefix.size() * (below.size() + 1);
    if (node.prefix.size() > limits::kFieldNameBytes || cost > limits::kFieldNamesBytes - nameBytes_) {
        ++omitted_;
        return;
    }
    nameBytes_ += cost;
    std::size_t field = node.field;
    if (!isWidget) {
        // Kids with a name of their own are fields; a field with such kids only groups them.
        const bool groups = std::any_of(below.begin(), below.end(), [](const CPdfObj* kid) {
            return !Dictionary(kid->content()).find("/T").empty();
        });
        field = kNoField;
        if (groups) {
            groups_.push_back({node.prefix, node.object});
        } else {
            field = fields_.size();
            fields_.push_back({node.prefix, node.attributes, node.object, {}});
        }
    }
    if (field != kNoField && below.empty()) fields_[field].widgets.push_back(node.object);
    const auto first = static_cast<std::ptrdiff_t>(stack.size());
    for (CPdfObj* const kid : below) stack.push_back({kid, node.prefix, node.attributes, field, node.depth + 1});
    std::reverse(stack.begin() + first, stack.end());
}

int FormTree::pageOf(const CPdfObj& widget) const {
    const auto found = pages_.find(widget.GetObjNum());
    return found == pages_.end() ? -1 : found->second;
}

// What counts is which page lists the widget; /P of the widget is optional and often wrong.
void FormTree::findPages(const CPdfObj& catalogue) {
    CPdfObj* const root = pagesRoot(document_, catalogue);
    if (root == nullptr) return;
    std::unordered_set<const CPdfObj*> read;
    int index = -1;
    for (const CPdfObj* const page : pagesBelow(document_, *root)) {
        ++index;
        if (!read.insert(page).second) continue;
        const std::string_view annots = Dictionary(page->content()).find("/Annots");
        const CPdfObj* const array = object(annots);
        if (array != nullptr && !read.insert(array).second) continue;
        Lexer tokens(follow(annots));
        tokens.next();
        while (const auto element = tokens.nextValue()) {
            const auto number = referenceOf(*element);
            if (number && pages_.emplace(*number, index).second) annotations_.push_back(*number);
        }
    }
}

bool FormTree::isLocked(std::string_view name) {
    if (!locksKnown_) readLocks();
    return locks_.isLocked(name);
}

// Everything here may be shared by many signatures, and is read for one.
void FormTree::readLocks() {
    locksKnown_ = true;
    for (const FormField& field : fields_) {
        if (field.attributes.type != "/Sig" || field.attributes.value.empty()) continue;
        locks_.add(follow(Dictionary(field.object->content()).find("/Lock")), *this);
        const std::string_view signature = follow(field.attributes.value);
        if (!locks_.firstTime(signature)) continue;
        const std::string_view references = follow(Dictionary(signature).find("/Reference"));
        if (!locks_.firstTime(references)) continue;
        Lexer tokens(references);
        if (tokens.next().kind != TokenKind::ArrayOpen) continue;
        while (const auto element = tokens.nextValue()) {
            const std::string_view text = follow(*element);
            if (!locks_.firstTime(text)) continue;
            const Dictionary reference(text);
            if (reference.find("/TransformMethod") == "/FieldMDP") {
                locks_.add(follow(reference.find("/TransformParams")), *this);
            }
        }
    }
}

}  // namespace varnpdf
