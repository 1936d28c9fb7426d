// Walking all fields for signatures.
#include "inspection/ShownSignatures.h"

#include <algorithm>
#include <optional>
#include <unordered_map>
#include <unordered_set>

#include "inspection/Signatures.h"
#include "support/Limits.h"
#include "syntax/Dictionary.h"
#include "syntax/Encoding.h"
#include "syntax/Text.h"
#include "syntax/Values.h"

namespace varnpdf {
namespace {

constexpr std::size_t kNoField = std::string_view::npos;

std::string joined(const std::string& prefix, const std::string& partial) {
    return prefix.empty() ? partial : prefix + "." + partial;
}

class Walk {
public:
    Walk(Document& document, Values& values) : document_(document), values_(values) {}

    std::vector<SignatureField> run() {
        walkForm();
        walkObjects();
        numberSignatures();
        return std::move(found_);
    }

private:
    struct Node {
        HeldDictionary dictionary;
        std::string prefix;
        bool isSignature;  // by the /FT of a node above
        bool inForm;
        std::size_t field;  // that a widget belongs to
        int depth;
    };

    void walkForm();
    void walkObjects();
    void walk(std::vector<Node> stack);
    void visit(Node node, std::vector<Node>& stack);
    std::size_t addField(const Node& node, std::string_view value);
    void numberSignatures();
    HeldDictionary dictionaryOf(std::string_view value, CPdfObj* around);
    std::vector<HeldDictionary> kids(std::string_view array, CPdfObj* around);
    std::optional<std::string> partialName(const Dictionary& dictionary);
    std::string prefixAbove(const Dictionary& dictionary);
    std::size_t fieldAbove(const Dictionary& dictionary);
    bool mayCost(std::size_t bytes);

    Document& document_;
    Values& values_;
    std::vector<SignatureField> found_;
    std::unordered_set<const char*> seen_;                   // dictionaries, by where their text begins
    std::unordered_set<const CPdfObj*> arrays_;              // of kids that have been read
    std::unordered_map<const char*, std::size_t> fields_;    // places in found_, by dictionary
    std::unordered_map<const char*, std::string> prefixes_;  // names that fields outside of the form begin with
    std::size_t nameBytes_ = 0;
};

HeldDictionary Walk::dictionaryOf(std::string_view value, CPdfObj* around) {
    const Resolved found = values_.resolve(value);
    if (!found.value.starts_with("<<")) return {};
    return {found.holder != nullptr ? found.holder : around, found.value};
}

// The dictionaries of an array that have not been met before, each once. An array shared by several nodes is read for
// one.
std::vector<HeldDictionary> Walk::kids(std::string_view array, CPdfObj* around) {
    std::vector<HeldDictionary> out;
    const Resolved found = values_.resolve(array);
    if (found.holder != nullptr && !arrays_.insert(found.holder).second) return out;
    std::unordered_set<const char*> listed;
    for (const std::string_view item : itemsOf(found.value).value_or(std::vector<std::string_view>{})) {
        const HeldDictionary kid = dictionaryOf(item, found.holder != nullptr ? found.holder : around);
        if (kid.holder == nullptr || seen_.contains(kid.text.data())) continue;
        if (listed.insert(kid.text.data()).second) out.push_back(kid);
    }
    return out;
}

void Walk::walkForm() {
    CPdfObj* const catalogue = document_.newest ? objectOf(document_, document_.newest->root()) : nullptr;
    if (catalogue == nullptr) return;
    const HeldDictionary form = dictionaryOf(valueOf(catalogue->content(), "/AcroForm"), catalogue);
    if (form.holder == nullptr) return;
    std::vector<Node> stack;
    for (const HeldDictionary& field : kids(valueOf(form.text, "/Fields"), form.holder)) {
        stack.push_back({field, "", false, true, kNoField, 0});
    }
    std::reverse(stack.begin(), stack.end());
    walk(std::move(stack));
}

// Fields that the form does not list: counted as signatures, and found by the page by some viewers.
void Walk::walkObjects() {
    document_.objects.forEach([&](int, CPdfObj& obj) {
        // The /FT that every object keeps is read by the letter of the lookups, which a string may lead astray.
        const std::string_view content = obj.content();
        if (obj.fieldTypeEntry().empty() && (!contains(content, "/FT") || !contains(content, "/Sig"))) return;
        const std::string_view text = objectValue(content);
        if (!text.starts_with("<<") || seen_.contains(text.data())) return;
        const Dictionary dictionary(text);
        if (nameOf(values_.resolved(dictionary.find("/FT"))) != "Sig") return;
        const bool isWidget = dictionary.find("/T").empty() && dictionary.find("/V").empty();
        const std::size_t field = isWidget ? fieldAbove(dictionary) : kNoField;
        walk({{{&obj, text}, prefixAbove(dictionary), false, false, field, 0}});
    });
}

// Depth first, in the order of the arrays, without recursion. A node met before ends its branch.
void Walk::walk(std::vector<Node> stack) {
    while (!stack.empty()) {
        Node node = std::move(stack.back());
        stack.pop_back();
        if (seen_.insert(node.dictionary.text.data()).second) visit(std::move(node), stack);
    }
}

void Walk::visit(Node node, std::vector<Node>& stack) {
    const Dictionary own(node.dictionary.text);
    const auto partial = partialName(own);
    if (partial) node.prefix = joined(node.prefix, *partial);
    if (const std::string type = nameOf(values_.resolved(own.find("/FT"))); !type.empty())
        node.isSignature = type == "Sig";
    std::vector<HeldDictionary> below;
    if (node.depth < limits::kFieldDepth) below = kids(own.find("/Kids"), node.dictionary.holder);
    // Long names multiplied by many fields would cost what the file does not have.
    if (node.prefix.size() > limits::kFieldNameBytes || !mayCost(node.prefix.size() * (below.size() + 1))) return;

    const std::string_view value = own.find("/V");
    const bool isWidget = node.field != kNoField && !partial && value.empty();
    // Kids with a name of their own are fields; a field with such kids only groups them.
    const bool groups =
        std::ranges::any_of(below, [](const HeldDictionary& kid) { return !valueOf(kid.text, "/T").empty(); });
    if (!isWidget) node.field = kNoField;
    if (!isWidget && node.isSignature && (!groups || !value.empty())) node.field = addField(node, value);
    if (node.field != kNoField && nameOf(own.find("/Subtype")) == "Widget") {
        HeldDictionary& widget = found_[node.field].widget;
        if (widget.holder == nullptr) widget = node.dictionary;
    }
    const auto first = static_cast<std::ptrdiff_t>(stack.size());
    for (const HeldDictionary& kid : below) {
        stack.push_back({kid, node.prefix, node.isSignature, node.inForm, node.field, node.depth + 1});
    }
    std::reverse(stack.begin() + first, stack.end());
}

std::size_t Walk::addField(const Node& node, std::string_view value) {
    SignatureField field;
    field.name = node.prefix;
    field.inForm = node.inForm;
    field.isSigned = !value.empty();
    field.field = node.dictionary;
    field.signature = dictionaryOf(value, node.dictionary.holder);
    fields_.emplace(node.dictionary.text.data(), found_.size());
    found_.push_back(std::move(field));
    return found_.size() - 1;
}

// A number must mean the same wherever it is given: what the interface counts comes first.
void Walk::numberSignatures() {
    int next = 0;
    for (CPdfObj* const counted : signatureFields(document_)) {
        const std::string_view text = objectValue(counted->content());
        const auto known = fields_.find(text.data());
        std::size_t place = known != fields_.end() ? known->second : found_.size();
        if (known == fields_.end()) {
            const Dictionary own(text);
            if (own) place = addField({{counted, text}, prefixAbove(own), true, false, kNoField, 0}, own.find("/V"));
            if (own) found_[place].widget = {counted, text};
        }
        if (place < found_.size() && found_[place].index < 0) found_[place].index = next;
        ++next;
    }
    for (SignatureField& field : found_) {
        if (field.isSigned && field.index < 0) field.index = next++;
    }
}

std::optional<std::string> Walk::partialName(const Dictionary& dictionary) {
    const std::string_view written = values_.resolved(dictionary.find("/T"));
    if (written.size() > limits::kFieldNameWritten) return std::nullopt;
    // Some writers give a name instead of a text string.
    if (written.starts_with('/')) {
        const std::string name = nameOf(written);
        return toUtf8(fromUtf8(name).value_or(fromTextString(name)));
    }
    const auto bytes = stringOf(written);
    return bytes ? std::optional(toUtf8(fromTextString(*bytes))) : std::nullopt;
}

std::string Walk::prefixAbove(const Dictionary& dictionary) {
    std::vector<std::string_view> above;
    std::string_view parent = values_.resolved(dictionary.find("/Parent"));
    while (parent.starts_with("<<") && !prefixes_.contains(parent.data()) && above.size() < limits::kFieldDepth) {
        above.push_back(parent);
        prefixes_[parent.data()];  // a loop ends here
        parent = values_.resolved(valueOf(parent, "/Parent"));
    }
    std::string prefix = parent.starts_with("<<") && prefixes_.contains(parent.data()) ? prefixes_[parent.data()] : "";
    std::reverse(above.begin(), above.end());
    for (const std::string_view node : above) {
        if (const auto partial = partialName(Dictionary(node))) prefix = joined(prefix, *partial);
        if (prefix.size() > limits::kFieldNameBytes || !mayCost(prefix.size())) prefix.clear();
        prefixes_[node.data()] = prefix;
    }
    return prefix;
}

std::size_t Walk::fieldAbove(const Dictionary& dictionary) {
    const std::string_view parent = values_.resolved(dictionary.find("/Parent"));
    const auto known = parent.empty() ? fields_.end() : fields_.find(parent.data());
    return known != fields_.end() ? known->second : kNoField;
}

bool Walk::mayCost(std::size_t bytes) {
    if (bytes > limits::kFieldNamesBytes - nameBytes_) return false;
    nameBytes_ += bytes;
    return true;
}

}  // namespace

bool HeldDictionary::isObject() const {
    return holder != nullptr && objectValue(holder->content()).data() == text.data();
}

std::vector<SignatureField> shownSignatures(Document& document, Values& values) { return Walk(document, values).run(); }

}  // namespace varnpdf
