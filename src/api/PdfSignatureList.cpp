// CPdfSignatureList: the signature fields of a document and what each signature says.
#include "varnpdf/PdfSignatureList.h"

#include <algorithm>
#include <unordered_map>

#include "api/PdfState.h"
#include "inspection/Coverage.h"
#include "inspection/ShownSignatures.h"
#include "reader/Pages.h"
#include "support/Limits.h"
#include "syntax/Cursor.h"
#include "syntax/Der.h"
#include "syntax/Dictionary.h"
#include "syntax/Encoding.h"
#include "syntax/Values.h"

using namespace varnpdf;

struct varnpdf::SignatureListState {
    std::vector<PdfSignatureField> fields;
    std::vector<std::size_t> signatures;  ///< by index: place in `fields`
};

namespace {

using Items = std::vector<std::string_view>;

constexpr const char* kTexts[] = {"/Reason", "/Location",  "/M",    "/Name", "/ContactInfo",
                                  "/Filter", "/SubFilter", "/Type", "/FT",   "/R"};

/// Makes records of what the walk has found. Dictionaries may share what they refer to; each pays for its copy, so that
/// a small file cannot ask for unbounded memory.
class Maker {
public:
    explicit Maker(Document& document)
        : document_(document),
          values_(document),
          coverages_(values_),
          budget_(limits::kObjectBytesBase + limits::kObjectBytesPerByte * document.length) {}

    std::vector<PdfSignatureField> run() {
        std::vector<PdfSignatureField> out;
        const std::vector<SignatureField> found = shownSignatures(document_, values_);
        if (!found.empty()) pages_ = annotationPages(document_);
        out.reserve(found.size());
        for (const SignatureField& field : found) out.push_back(record(field));
        return out;
    }

private:
    PdfSignatureField record(const SignatureField& found) {
        PdfSignatureField out;
        out.name = found.name;
        out.index = found.index;
        out.inForm = found.inForm;
        out.isSigned = found.isSigned;
        out.object = found.field.holder->GetObjNum();
        addWidget(found.widget, out);
        out.signature = signatureOf(found.signature);
        out.lock = lockOf(values_.resolved(valueOf(found.field.text, "/Lock")));
        return out;
    }

    void addWidget(const HeldDictionary& widget, PdfSignatureField& out) {
        if (widget.holder == nullptr) return;
        const auto page = widget.isObject() ? pages_.find(widget.holder->GetObjNum()) : pages_.end();
        if (page != pages_.end()) out.page = page->second;
        const Items corners = itemsOf(values_.resolved(valueOf(widget.text, "/Rect"))).value_or(Items{});
        if (corners.size() != std::size(out.rect)) return;
        double values[4];
        for (std::size_t i = 0; i < corners.size(); ++i) {
            const auto number = numberOf(values_.resolved(corners[i]));
            if (!number) return;
            values[i] = *number;
        }
        out.hasRect = true;
        for (std::size_t i = 0; i < 2; ++i) {
            out.rect[i] = std::min(values[i], values[i + 2]);
            out.rect[i + 2] = std::max(values[i], values[i + 2]);
        }
    }

    std::shared_ptr<const PdfSignature> signatureOf(const HeldDictionary& dictionary) {
        if (dictionary.holder == nullptr) return nullptr;
        auto& [known, shares] = signatures_[dictionary.text.data()];
        if (!known) known = std::make_shared<const PdfSignature>(makeSignature(dictionary));
        return ++shares <= limits::kSharedSignature ? known : nullptr;
    }

    PdfSignature makeSignature(const HeldDictionary& dictionary) {
        PdfSignature out;
        out.object = dictionary.holder->GetObjNum();
        const Dictionary entries(dictionary.text);
        for (const char* const key : kTexts) {
            if (auto text = shownText(entries.find(key))) out.texts.emplace(key + 1, std::move(*text));
        }
        const std::string_view contents = values_.resolved(entries.find("/Contents"));
        if (const auto bytes = pays(contents) ? stringOf(contents) : std::nullopt) {
            out.room = static_cast<long long>(bytes->size());
            const bool isPadding = bytes->starts_with("\x31\x31");
            const auto size = isPadding ? std::nullopt : derElementLength(*bytes);
            if (size && *size <= bytes->size()) out.value = bytes->substr(0, *size);
        }
        addCertificates(values_.resolved(entries.find("/Cert")), out);
        Coverage coverage = coverages_.read(*dictionary.holder, dictionary.text);
        out.byteRange = std::move(coverage.range);
        out.coverage = coverage.finding;
        out.coveredBytes = coverage.end;
        out.coversWholeFile = coverage.wholeFile;
        out.laterUpdates = coverage.laterUpdates;
        return out;
    }

    void addCertificates(std::string_view value, PdfSignature& out) {
        for (const std::string_view item : itemsOf(value).value_or(Items{value})) {
            const std::string_view text = values_.resolved(item);
            auto bytes = pays(text) ? stringOf(text) : std::nullopt;
            if (bytes) out.certificates.push_back(std::move(*bytes));
        }
    }

    std::shared_ptr<const PdfSignatureLock> lockOf(std::string_view text) {
        if (!text.starts_with("<<")) return nullptr;
        auto& known = locks_[text.data()];
        if (known) return known;
        PdfSignatureLock out;
        out.action = nameOf(values_.resolved(valueOf(text, "/Action")));
        for (const std::string_view item : itemsOf(values_.resolved(valueOf(text, "/Fields"))).value_or(Items{})) {
            if (auto name = shownText(item)) out.fields.push_back(std::move(*name));
        }
        out.permissions = Cursor(values_.resolved(valueOf(text, "/P"))).takeInt().value_or(0);
        return known = std::make_shared<const PdfSignatureLock>(std::move(out));
    }

    // Strings decoded, names without slash, all else as it stands.
    std::optional<std::string> shownText(std::string_view value) {
        value = values_.resolved(value);
        if (value.empty() || !pays(value)) return std::nullopt;
        if (const auto bytes = stringOf(value)) return toUtf8(fromTextString(*bytes));
        if (value.starts_with('/')) return toUtf8(fromBrokenUtf8(nameOf(value)));
        return toUtf8(fromBrokenUtf8(value));
    }

    bool pays(std::string_view value) {
        if (value.size() > budget_) return false;
        budget_ -= value.size();
        return true;
    }

    Document& document_;
    Values values_;
    CoverageReader coverages_;
    std::size_t budget_;
    std::unordered_map<int, int> pages_;
    std::unordered_map<const char*, std::pair<std::shared_ptr<const PdfSignature>, std::size_t>> signatures_;
    std::unordered_map<const char*, std::shared_ptr<const PdfSignatureLock>> locks_;
};

}  // namespace

CPdfSignatureList::CPdfSignatureList(CPdf& pdf) : state_(std::make_unique<SignatureListState>()) {
    state_->fields = Maker(documentOf(pdf)).run();
    for (std::size_t i = 0; i < state_->fields.size(); ++i) {
        const int index = state_->fields[i].index;
        if (index < 0) continue;
        const auto place = static_cast<std::size_t>(index);
        if (place >= state_->signatures.size()) state_->signatures.resize(place + 1, std::string_view::npos);
        state_->signatures[place] = i;
    }
}

CPdfSignatureList::~CPdfSignatureList() = default;

const std::vector<PdfSignatureField>& CPdfSignatureList::GetFields() const noexcept { return state_->fields; }

int CPdfSignatureList::GetSignatureNum() const noexcept { return static_cast<int>(state_->signatures.size()); }

const PdfSignatureField* CPdfSignatureList::GetSignature(int index) const noexcept {
    const auto place = static_cast<std::size_t>(index);
    if (index < 0 || place >= state_->signatures.size()) return nullptr;
    const std::size_t field = state_->signatures[place];
    return field < state_->fields.size() ? &state_->fields[field] : nullptr;
}
