// CPdfForm: the fields of a document as viewers show them.
#include "varnpdf/PdfForm.h"

#include <string>
#include <unordered_map>

#include "api/UpdateOutput.h"
#include "forms/AppearanceContent.h"
#include "forms/FormTree.h"
#include "forms/FormUpdate.h"
#include "support/Guarded.h"
#include "support/Limits.h"
#include "support/Loggers.h"
#include "support/Text.h"
#include "syntax/Encoding.h"
#include "syntax/Lexer.h"
#include "syntax/Values.h"
#include "varnpdf/result.h"

using namespace varnpdf;

struct varnpdf::FormState {
    explicit FormState(CPdf& document) : pdf(document), tree(documentOf(document)), update(tree) {
        for (std::size_t i = 0; i < tree.fields().size(); ++i) byName.emplace(tree.fields()[i].name, i);
    }
    [[nodiscard]] const FormField* field(int index) const {
        const auto i = static_cast<std::size_t>(index);
        return index < 0 || i >= tree.fields().size() ? nullptr : &tree.fields()[i];
    }
    [[nodiscard]] int check(const FormField& field, std::size_t length);
    int setValue(std::string_view name, std::string_view value);

    CPdf& pdf;
    FormTree tree;
    FormUpdate update;
    std::unordered_multimap<std::string_view, std::size_t> byName;
    std::string text;  // the one handed out last
};

namespace {

// The text of a value; nothing for one that has none.
std::optional<std::string> shownValue(std::string_view value, const FormTree& tree) {
    const CPdfObj* const object = tree.object(value);
    value = tree.follow(value);
    if (const auto bytes = stringOf(value)) return toUtf8(fromTextString(*bytes));
    if (value.starts_with('/')) return nameOf(value);
    if (value.starts_with('[')) {
        std::string lines;
        Lexer tokens(value);
        tokens.next();
        while (const auto element = tokens.nextValue()) {
            const auto bytes = stringOf(tree.follow(*element));
            if (bytes) append(lines, lines.empty() ? "" : "\n", toUtf8(fromTextString(*bytes)));
        }
        return lines;
    }
    std::size_t budget = limits::kAppearanceBytes;
    const auto parts = object == nullptr ? std::nullopt : streamParts(tree.document(), *object, budget);
    return parts ? toUtf8(fromTextString(parts->data)) : std::optional<std::string>();
}

}  // namespace

int FormState::check(const FormField& field, std::size_t length) {
    if (field.attributes.type != "/Tx") return VARNPDF_FIELD_NO_TEXT;
    if ((field.flags() & kReadOnly) != 0) return VARNPDF_FIELD_READ_ONLY;
    if (tree.isLocked(field.name)) return VARNPDF_FIELD_LOCKED;
    const double most = numberOf(tree.follow(field.attributes.maxLength)).value_or(0);
    return most > 0 && static_cast<double>(length) > most ? VARNPDF_FIELD_VALUE_TOO_LONG : VARNPDF_OK;
}

int FormState::setValue(std::string_view name, std::string_view value) {
    if (documentOf(pdf).locked) return VARNPDF_LOCKED;
    const std::u32string characters = fromUtf8OrLatin1(value);
    const auto [begin, end] = byName.equal_range(name);
    if (begin == end) return VARNPDF_FIELD_MISSING;
    for (auto it = begin; it != end; ++it) {
        const int code = check(tree.fields()[it->second], characters.size());
        if (code != VARNPDF_OK) return code;
    }
    for (auto it = begin; it != end; ++it) update.setValue(tree.fields()[it->second], characters);
    return VARNPDF_OK;
}

CPdfForm::CPdfForm(CPdf* pdf) {
    if (pdf == nullptr || pdf->GetLastTrailer() == nullptr) return;
    const int code = guarded([&]() -> int {
        state_ = std::make_unique<FormState>(*pdf);
        return VARNPDF_OK;
    });
    if (code != VARNPDF_OK) {
        logError(loggers::form, "CPdfForm: kein Speicher");
        return;
    }
    const int omitted = state_->tree.omitted();
    if (omitted > 0) logError(loggers::form, "Felder mit zu langen Namen ausgelassen: ", omitted);
}

CPdfForm::~CPdfForm() = default;

int CPdfForm::GetFieldNum() const { return state_ ? static_cast<int>(state_->tree.fields().size()) : 0; }

const char* CPdfForm::GetName(int index) {
    const FormField* const field = state_ ? state_->field(index) : nullptr;
    return field == nullptr ? nullptr : field->name.c_str();
}

const char* CPdfForm::GetType(int index) {
    const FormField* const field = state_ ? state_->field(index) : nullptr;
    if (field == nullptr) return nullptr;
    state_->text = nameOf(state_->tree.follow(field->attributes.type));
    return state_->text.c_str();
}

const char* CPdfForm::GetValue(int index) {
    const FormField* const field = state_ ? state_->field(index) : nullptr;
    if (field == nullptr || state_->tree.follow(field->attributes.value).empty()) return nullptr;
    state_->text = shownValue(field->attributes.value, state_->tree).value_or("");
    return state_->text.c_str();
}

int CPdfForm::GetFlags(int index) {
    const FormField* const field = state_ ? state_->field(index) : nullptr;
    return field == nullptr ? -1 : static_cast<int>(field->flags());
}

int CPdfForm::GetMaxLen(int index) {
    const FormField* const field = state_ ? state_->field(index) : nullptr;
    if (field == nullptr) return -1;
    return static_cast<int>(numberOf(state_->tree.follow(field->attributes.maxLength)).value_or(0));
}

int CPdfForm::GetObjNum(int index) {
    const FormField* const field = state_ ? state_->field(index) : nullptr;
    return field == nullptr ? -1 : field->object->GetObjNum();
}

int CPdfForm::GetPage(int index) {
    const FormField* const field = state_ ? state_->field(index) : nullptr;
    return field == nullptr || field->widgets.empty() ? -1 : state_->tree.pageOf(*field->widgets.front());
}

int CPdfForm::GetWidgetNum(int index) const {
    const FormField* const field = state_ ? state_->field(index) : nullptr;
    return field == nullptr ? -1 : static_cast<int>(field->widgets.size());
}

int CPdfForm::GetLocked(int index) {
    const FormField* const field = state_ ? state_->field(index) : nullptr;
    if (field == nullptr) return -1;
    return documentOf(state_->pdf).locked || state_->tree.isLocked(field->name) ? 1 : 0;
}

int CPdfForm::SetValue(const char* name, const char* value) {
    if (!state_ || name == nullptr || value == nullptr) return VARNPDF_FIELD_MISSING;
    return guarded([&]() -> int { return state_->setValue(name, value); });
}

int CPdfForm::WriteUpdate() {
    if (!state_) return VARNPDF_OK;
    return guarded([&]() -> int {
        const int code = state_->update.write();
        if (code == VARNPDF_OK) writeOutput(state_->pdf, state_->update.pieces());
        return code;
    });
}
