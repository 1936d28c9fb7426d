// CPdfStore: reading the document security store.
#include "varnpdf/PdfStore.h"

#include <algorithm>
#include <map>
#include <unordered_map>

#include "api/PdfState.h"
#include "inspection/ShownSignatures.h"
#include "longterm/StoreTexts.h"
#include "model/Stream.h"
#include "support/Limits.h"
#include "syntax/Dictionary.h"
#include "syntax/Encoding.h"
#include "syntax/Values.h"

using namespace varnpdf;

struct varnpdf::StoreState {
    Document& document;
    std::size_t budget;
    bool isThere = false;
    int object = -1;
    PdfStoreMaterial material;
    std::vector<PdfStoreEntry> entries;
};

namespace {

class Reader {
public:
    explicit Reader(StoreState& state)
        : state_(state),
          values_(state.document),
          budget_(limits::kObjectBytesBase + limits::kObjectBytesPerByte * state.document.length) {}

    void run() {
        const auto& newest = state_.document.newest;
        const std::string_view catalogue = newest ? values_.resolved(newest->root()) : std::string_view{};
        const Resolved store = values_.resolve(valueOf(catalogue, "/DSS"));
        if (!store.value.starts_with("<<")) return;
        state_.isThere = true;
        if (store.holder != nullptr) state_.object = store.holder->GetObjNum();
        const Dictionary dictionary(store.value);
        state_.material = {numbers(dictionary.find("/Certs")), numbers(dictionary.find("/CRLs")),
                           numbers(dictionary.find("/OCSPs"))};
        readEntries(Dictionary(values_.resolved(dictionary.find("/VRI"))));
    }

private:
    void readEntries(const Dictionary& dictionary) {
        if (dictionary.entries().empty()) return;
        const std::map<std::string, int> signatures = signatureKeys();
        for (const Dictionary::Entry& pair : dictionary.entries()) {
            const std::string name = nameOf(pair.key);
            PdfStoreEntry entry;
            entry.key = toUtf8(fromBrokenUtf8(name));
            const auto signature = signatures.find(upperDigits(name));
            if (signature != signatures.end()) entry.signature = signature->second;
            const std::string_view text = values_.resolved(pair.value);
            const Shared& shared = sharedOf(text);
            entry.time = shared.time;
            entry.material = shared.material;
            state_.entries.push_back(std::move(entry));
        }
    }

    // Entries may share a dictionary.
    struct Shared {
        std::shared_ptr<const PdfStoreMaterial> material;
        std::string time;
    };
    const Shared& sharedOf(std::string_view text) {
        Shared& known = shared_[text.data()];
        if (known.material) return known;
        const Dictionary dictionary(text);
        known.material = std::make_shared<const PdfStoreMaterial>(PdfStoreMaterial{
            numbers(dictionary.find("/Cert")), numbers(dictionary.find("/CRL")), numbers(dictionary.find("/OCSP"))});
        if (const auto time = stringOf(values_.resolved(dictionary.find("/TU")))) {
            known.time = toUtf8(fromTextString(*time));
        }
        return known;
    }

    // Many arrays may be one; together they may be only so long.
    std::vector<int> numbers(std::string_view array) {
        std::vector<int> out;
        array = values_.resolved(array);
        if (array.size() > budget_) return out;
        budget_ -= array.size();
        for (const std::string_view item : itemsOf(array).value_or(std::vector<std::string_view>{})) {
            const CPdfObj* const object = values_.resolve(item).holder;
            out.push_back(object != nullptr ? object->GetObjNum() : -1);
        }
        return out;
    }

    std::map<std::string, int> signatureKeys() {
        std::map<std::string, int> keys;
        std::unordered_map<const char*, std::string> known;  // fields may share a dictionary
        for (const SignatureField& field : shownSignatures(state_.document, values_)) {
            if (field.index < 0 || field.signature.holder == nullptr) continue;
            const auto [key, isNew] = known.try_emplace(field.signature.text.data());
            if (isNew) {
                const auto bytes = stringOf(values_.resolved(valueOf(field.signature.text, "/Contents")));
                if (bytes) key->second = storeKey(*bytes);
            }
            if (key->second.empty()) continue;
            const auto [place, isFirst] = keys.try_emplace(key->second, field.index);
            if (!isFirst) place->second = std::min(place->second, field.index);
        }
        return keys;
    }

    StoreState& state_;
    Values values_;
    std::size_t budget_;
    std::unordered_map<const char*, Shared> shared_;
};

}  // namespace

CPdfStore::CPdfStore(CPdf& pdf)
    : state_(new StoreState{documentOf(pdf), inflateBudget(documentOf(pdf)), false, -1, {}, {}}) {
    Reader(*state_).run();
}

CPdfStore::~CPdfStore() = default;

bool CPdfStore::IsThere() const noexcept { return state_->isThere; }

int CPdfStore::GetObjNum() const noexcept { return state_->object; }

const PdfStoreMaterial& CPdfStore::GetMaterial() const noexcept { return state_->material; }

const std::vector<PdfStoreEntry>& CPdfStore::GetEntries() const noexcept { return state_->entries; }

std::optional<std::string> CPdfStore::GetBytes(int object) {
    const CPdfObj* const found = state_->document.objects.find(object);
    const auto stream = found != nullptr ? streamOf(state_->document, *found) : std::nullopt;
    if (!stream) return std::nullopt;
    std::size_t produced = 0;
    const std::size_t bound = std::min(state_->budget, limits::kStoredBytes);
    const auto part = decodedPart(state_->document, *stream, bound, &produced);
    state_->budget -= std::min(state_->budget, produced);
    return part ? std::optional<std::string>(part->bytes.view()) : std::nullopt;
}
