// Fonts, forms and other resources of content streams.
#include "content/Resources.h"

#include <algorithm>
#include <vector>

#include "model/Lookup.h"
#include "support/Limits.h"
#include "syntax/Values.h"

namespace varnpdf {
namespace {

Matrix matrixOf(std::string_view array) {
    const auto numbers = numbersOf(array);
    if (numbers.size() != 6) return {};
    return {numbers[0], numbers[1], numbers[2], numbers[3], numbers[4], numbers[5]};
}

}  // namespace

Resources::Resources(const Document& document, std::string_view dictionary)
    : document_(document), dictionary_(dictionary) {}

std::string_view Resources::find(std::string_view category, std::string_view name) {
    const auto [known, isNew] = categories_.try_emplace(std::string(category));
    if (isNew) {
        const Dictionary entries(resolved(document_, dictionary_.find(category)));
        for (const Dictionary::Entry& entry : entries.entries()) known->second[nameOf(entry.key)] = entry.value;
    }
    const auto found = known->second.find(nameOf(name));
    return found == known->second.end() ? std::string_view{} : found->second;
}

Resources* ResourceCache::resources(std::string_view dictionary) {
    if (dictionary.empty()) return nullptr;
    auto& kept = resources_[dictionary.data()];
    if (!kept) {
        budget_ -= std::min(budget_, dictionary.size());
        kept = std::make_unique<Resources>(document_, dictionary);
    }
    return kept.get();
}

// Every node is asked once, however many pages stand below it.
std::string_view ResourceCache::resourcesOfPage(const CPdfObj& page) {
    std::vector<const CPdfObj*> asked;
    std::string_view found;
    const CPdfObj* node = &page;
    for (int i = 0; node != nullptr && i <= limits::kParents; ++i) {
        if (const auto known = inherited_.find(node); known != inherited_.end()) {
            found = known->second;
            break;
        }
        asked.push_back(node);
        inherited_.emplace(node, std::string_view{});  // a loop ends here
        const Dictionary dictionary(node->content());
        found = resolved(document_, dictionary.find("/Resources"));
        if (!found.empty()) break;
        node = objectOf(document_, dictionary.find("/Parent"));
    }
    for (const CPdfObj* const each : asked) inherited_[each] = found;
    return found;
}

const TextFont* ResourceCache::font(std::string_view value) {
    const auto [known, isNew] = fontsByValue_.try_emplace(value.data(), nullptr);
    if (isNew) known->second = readFont(value);
    return known->second;
}

const TextFont* ResourceCache::readFont(std::string_view value) {
    const std::string_view dictionary = resolved(document_, value);
    if (!dictionary.starts_with("<<")) return nullptr;
    auto& kept = fonts_[dictionary.data()];
    if (!kept) {
        budget_ -= std::min(budget_, sizeof(TextFont) + dictionary.size());
        kept = std::make_unique<TextFont>(TextFont::from(document_, dictionary, budget_));
    }
    return kept.get();
}

std::optional<FontOfState> ResourceCache::fontOfState(std::string_view value) {
    if (value.empty()) return std::nullopt;
    const auto [known, isNew] = statesByValue_.try_emplace(value.data());
    if (!isNew) return known->second;
    const std::string_view state = resolved(document_, value);
    budget_ -= std::min(budget_, state.size());
    const auto items = itemsOf(entryOf(document_, state, "/Font"));
    if (!items || items->size() != 2) return std::nullopt;
    return known->second = FontOfState{font(items->front()), realOf(document_, items->back()).value_or(0)};
}

const Form* ResourceCache::form(std::string_view value) {
    const auto [known, isNew] = formsByValue_.try_emplace(value.data(), nullptr);
    if (isNew) known->second = readForm(value);
    return known->second;
}

const Form* ResourceCache::readForm(std::string_view value) {
    const CPdfObj* const object = objectOf(document_, value);
    if (object == nullptr) return nullptr;
    const auto [kept, isNew] = forms_.try_emplace(object);
    if (!isNew) return kept->second.get();
    budget_ -= std::min(budget_, object->content().size());
    const Dictionary dictionary(object->content());
    if (resolved(document_, dictionary.find("/Subtype")) != "/Form") return nullptr;
    kept->second = std::make_unique<Form>();
    Form& form = *kept->second;
    form.object = object;
    form.matrix = matrixOf(resolved(document_, dictionary.find("/Matrix")));
    form.resources = resolved(document_, dictionary.find("/Resources"));
    return &form;
}

StreamBytes ResourceCache::content(const CPdfObj& object) {
    const auto stream = streamOf(document_, object);
    std::size_t produced = stream ? stream->dictionary.size() : 0;
    const std::size_t bound = std::min(limits::kContentBytes, budget_);
    auto part = stream ? decodedPart(document_, *stream, bound, &produced) : std::nullopt;
    budget_ -= std::min(budget_, produced);
    return part ? std::move(part->bytes) : StreamBytes(std::string_view{});
}

SharedContent ResourceCache::contentOf(const Form& form) {
    SharedContent& kept = contents_[form.object];
    if (kept) return kept;
    auto content = std::make_shared<const StreamBytes>(this->content(*form.object));
    if (keptContent_ + content->view().size() > limits::kKeptContentBytes) {
        keptContent_ = 0;
        contents_.clear();
    }
    keptContent_ += content->view().size();
    contents_[form.object] = content;
    return content;
}

}  // namespace varnpdf
