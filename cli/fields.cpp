// Walking the fields of a form (ISO 32000-2 12.7.4).
#include "fields.h"

#include <algorithm>
#include <functional>

#include "document.h"
#include "tokens.h"
#include "varnpdf/PdfText.h"

namespace {

constexpr int kDeepest = 64;
constexpr std::size_t kMostFields = 200'000;  // direct dictionaries have no numbers to be recognised by

}  // namespace

std::vector<cli::SignatureField> cli::SignatureSearch::run() {
    walkForm();
    walkObjects();
    return std::move(found_);
}

void cli::SignatureSearch::walkForm() {
    CPdfObj* catalogue = referenced(*pdf_, pdf_->GetLastTrailer()->root());
    const std::optional<std::string_view> form = catalogue != nullptr ? lookUp(*catalogue, "AcroForm") : std::nullopt;
    const std::optional<Dictionary> dictionary = form ? resolve(*form) : std::nullopt;
    const std::optional<std::string_view> fields =
        dictionary ? lookUp(*pdf_, *dictionary->object, "Fields") : std::nullopt;
    if (!fields) return;
    std::vector<Node> stack;
    for (const Dictionary& field : elements(*fields)) stack.push_back({field, "", false, 0});
    std::reverse(stack.begin(), stack.end());
    for (std::size_t count = 0; !stack.empty() && count < kMostFields; ++count) {
        const Node node = std::move(stack.back());
        stack.pop_back();
        if (!firstVisit(*node.field.object)) continue;
        visit(node, true);
        const bool signature = isSignature(*node.field.object, node.signature);
        if (node.depth < kDeepest) pushKids(node, fullName(*node.field.object, node.prefix), signature, stack);
    }
}

/// Fields outside of the form's tree: the library counts them, and some viewers find them by the page.
void cli::SignatureSearch::walkObjects() {
    forEachObject(*pdf_, [this](CPdfObj& obj) {
        const std::string_view text = obj.content();
        if (text.find("/FT") == std::string_view::npos || text.find("/V") == std::string_view::npos) return;
        if (!firstVisit(obj)) return;
        visit({{&obj, fileOffset(obj)}, "", false, 0}, false);
    });
}

void cli::SignatureSearch::visit(const Node& node, bool inForm) {
    const CPdfObj& field = *node.field.object;
    if (!isSignature(field, node.signature)) return;
    const std::optional<std::string_view> text = lookUp(field, "V");
    if (!text || *text == "null") return;
    SignatureField found;
    if (std::string name = fullName(field, node.prefix); !name.empty()) found.name = std::move(name);
    found.inForm = inForm;
    if (text->starts_with("<<")) {
        found.value = wrap(*text);
        found.value.begin = offsetOf(node.field, *text);
    } else if (std::optional<Dictionary> target = resolve(*text)) {
        found.value = *target;
    }
    found_.push_back(std::move(found));
}

void cli::SignatureSearch::pushKids(const Node& node, const std::string& name, bool signature,
                                    std::vector<Node>& stack) {
    const std::optional<std::string_view> kids = lookUp(*pdf_, *node.field.object, "Kids");
    if (!kids) return;
    std::vector<Dictionary> all = elements(*kids);
    std::reverse(all.begin(), all.end());
    for (const Dictionary& kid : all) stack.push_back({kid, name, signature, node.depth + 1});
}

/// The dictionaries in an array, direct or by reference.
std::vector<cli::Dictionary> cli::SignatureSearch::elements(std::string_view array) {
    std::vector<Dictionary> out;
    Tokens tokens(array);
    if (tokens.next() != "[") return out;
    while (const std::optional<std::string_view> element = tokens.nextValue()) {
        if (std::optional<Dictionary> dictionary = resolve(*element)) out.push_back(*dictionary);
    }
    return out;
}

std::optional<cli::Dictionary> cli::SignatureSearch::resolve(std::string_view text) {
    if (text.starts_with("<<")) {
        Dictionary out = wrap(text);
        out.begin = fileOffset(text);
        return out;
    }
    CPdfObj* target = referenced(*pdf_, text);
    if (target == nullptr || target->GetContentLen() < 1) return std::nullopt;
    return Dictionary{target, fileOffset(*target)};
}

/// A direct dictionary as an object of its own, so that it is read by the same rules.
cli::Dictionary cli::SignatureSearch::wrap(std::string_view text) {
    direct_.push_back(std::make_unique<CPdfObj>());
    direct_.back()->setContent(text);
    return {direct_.back().get(), std::nullopt};
}

std::optional<std::size_t> cli::SignatureSearch::fileOffset(std::string_view text) const {
    const char* all = reinterpret_cast<const char*>(pdf_->GetContent());
    const std::less_equal<> notBehind;
    if (!notBehind(all, text.data()) || !notBehind(text.data() + text.size(), all + pdf_->GetContentLen())) {
        return std::nullopt;  // unpacked from an object stream
    }
    return static_cast<std::size_t>(text.data() - all);
}

std::optional<std::size_t> cli::SignatureSearch::fileOffset(const CPdfObj& obj) const {
    const std::string_view text = obj.content();
    if (const std::optional<std::size_t> borrowed = fileOffset(text)) return borrowed;
    // A copy of its own, made since the document was opened.
    const std::string_view all(reinterpret_cast<const char*>(pdf_->GetContent()), pdf_->GetContentLen());
    const int from = obj.GetFromPos();
    if (obj.GetIsCompressed() || from < 0 || static_cast<std::size_t>(from) > all.size()) return std::nullopt;
    const auto begin = static_cast<std::size_t>(from);
    return all.substr(begin).starts_with(text) ? std::optional(begin) : std::nullopt;
}

bool cli::SignatureSearch::firstVisit(const CPdfObj& obj) {
    return obj.GetObjNum() < 0 || seen_.insert(obj.GetObjNum()).second;
}

bool cli::SignatureSearch::isSignature(const CPdfObj& field, bool inherited) {
    const std::optional<std::string_view> type = lookUp(*pdf_, field, "FT");
    return type ? CPdfText::NameBytes(*type) == "Sig" : inherited;
}

std::string cli::SignatureSearch::fullName(const CPdfObj& field, const std::string& prefix) {
    const std::optional<std::string> partial = displayed(lookUp(*pdf_, field, "T"));
    if (!partial) return prefix;
    return prefix.empty() ? *partial : prefix + "." + *partial;
}

std::optional<std::size_t> cli::offsetOf(const Dictionary& dictionary, std::string_view inside) {
    const char* begin = dictionary.object->content().data();
    const std::less_equal<> notBehind;
    if (!dictionary.begin || !notBehind(begin, inside.data()) ||
        !notBehind(inside.data() + inside.size(), begin + dictionary.object->content().size())) {
        return std::nullopt;
    }
    return *dictionary.begin + static_cast<std::size_t>(inside.data() - begin);
}
