// CPdf: reading the text fields of a form and appending the changed ones.
#include <array>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>

#include "api/PdfState.h"
#include "model/DictionaryEntry.h"
#include "model/Lookup.h"
#include "support/Guarded.h"
#include "support/Limits.h"
#include "support/Loggers.h"
#include "support/Text.h"
#include "syntax/Dictionary.h"
#include "syntax/Reference.h"
#include "varnpdf/PdfFields.h"
#include "varnpdf/result.h"

using namespace varnpdf;

namespace {

constexpr std::string_view kBlanks = " \n\r\t";
constexpr int kParentheses = 0;

// The first word of a default appearance, without the slash it begins with.
std::string fontName(std::string_view appearance) {
    Cursor cursor(stripBrackets(appearance, kParentheses), 1);
    cursor.skip(kIsCSpace);
    const std::string_view rest = cursor.rest();
    return std::string(rest.substr(0, rest.find_first_of(kCSpace)));
}

// The object number behind a key in the text of /AP: from three characters behind the key's slash to the next name or
// the end of the dictionary.
std::optional<int> appearanceNumber(std::string_view link, std::string_view key) {
    const std::size_t at = link.find(key);
    if (at == std::string_view::npos || at + 3 > link.size()) return std::nullopt;
    std::string_view reference = link.substr(at + 3);
    const std::size_t begin = reference.find_first_not_of("/>");
    if (begin == std::string_view::npos) return std::nullopt;
    reference = reference.substr(begin);
    reference = reference.substr(0, reference.find_first_of("/>"));
    reference.remove_suffix(reference.empty() ? 0 : 1);
    return Cursor(reference).takeInt();
}

using Appearances = std::array<std::optional<int>, CPdfField::kAppearances>;

Appearances appearancesIn(std::string_view link) {
    return {appearanceNumber(link, "/N"), appearanceNumber(link, "/R"), appearanceNumber(link, "/D")};
}

// What fields may hold of objects that they share.
std::size_t sharedBytes(const Document& document) {
    return limits::kObjectBytesBase + limits::kObjectBytesPerByte * document.length;
}

// The entries of a form that its fonts are read from. Resources and their fonts may stand in objects of their own.
std::string fontEntries(const Document& document, std::string_view form) {
    std::string resources(lookUpValue(form, "/DR"));
    if (const CPdfObj* const object = objectOf(document, resources)) resources = objectValue(object->content());
    if (const CPdfObj* const fonts = objectOf(document, valueOf(resources, "/Font"))) {
        setEntry(resources, "/Font", objectValue(fonts->content()));
    }
    const std::string_view appearance = lookUpValue(form, "/DA");
    return text("<<", resources.empty() ? "" : "/DR ", resources, appearance.empty() ? "" : " /DA ", appearance, ">>");
}

// Reads the fields of one document.
class FieldReader {
public:
    FieldReader(CPdf& pdf, CPdfFieldContainer& container)
        : document_(documentOf(pdf)), container_(container), budget_(sharedBytes(document_)) {}
    void readFonts(const CPdfObj& holder);
    void readFields(int slots);

private:
    void readField(CPdfObj& obj);

    Document& document_;
    CPdfFieldContainer& container_;
    std::unordered_map<std::string_view, CFontObj*> fonts_;
    std::size_t budget_;  // of values that stand in objects of their own
};

void FieldReader::readFonts(const CPdfObj& holder) {
    const bool isCatalogue = lookUpValue(holder.content(), "/Type") == "/Catalog";
    CAcroFormObj form;
    form.setContent(
        fontEntries(document_, isCatalogue ? lookUpValue(holder.content(), "/AcroForm") : holder.content()));
    CPdfFontContainer* const fonts = form.ReadFontContainer();
    container_.SetFontContainer(fonts);
    // The first of each name, as a search would find it.
    for (int i = 0; fonts != nullptr && i < fonts->GetFontNum(); ++i) {
        CFontObj& font = fonts->GetFontObj()[i];
        fonts_.emplace(font.GetShortName(), &font);
    }
}

// The last slot is not visited: the interface counts fields without it.
void FieldReader::readFields(int slots) {
    document_.objects.forEach(slots - 2, [&](int slot, CPdfObj& obj) {
        if (slot > 0 && !obj.content().empty()) readField(obj);
    });
}

void FieldReader::readField(CPdfObj& obj) {
    const std::string_view text = obj.content();
    const std::string_view name = entryValue(text, "/T");
    if (name.find('(') == std::string_view::npos) return;
    std::string_view value = entryValue(text, "/V");
    const CPdfObj* const held = referencedObject(document_, value);
    if (held != nullptr && held->content().size() <= budget_) {
        budget_ -= held->content().size();
        const std::string_view string = objectValue(held->content());
        if (string.starts_with('(')) value = string;
    }
    CPdfField field(&obj, 0);
    field.setTag(stripBrackets(trim(name, kBlanks), kParentheses));
    field.setOrgValue(stripBrackets(value, kParentheses));
    field.setAppearanceLink(entryValue(text, "/AP"));
    const auto known = fonts_.find(fontName(entryValue(text, "/DA")));
    if (known != fonts_.end()) field.SetFont(known->second);
    container_.AddField(&field);
}

// The objects that the text of an /AP names. Several fields may lead to one object that holds it, which is read once.
class AppearanceLinks {
public:
    explicit AppearanceLinks(const Document& document) : document_(document) {}
    Appearances of(std::string_view link) {
        const CPdfObj* const held = link.starts_with("<<") ? nullptr : referencedObject(document_, link);
        if (held == nullptr) return appearancesIn(link);
        const auto [known, isNew] = shared_.try_emplace(held);
        if (isNew) known->second = appearancesIn(held->content());
        return known->second;
    }

private:
    const Document& document_;
    std::unordered_map<const CPdfObj*, Appearances> shared_;
};

// Fields may share one long stream, and each gets a copy.
void readAppearances(const Document& document, CPdfFieldContainer& container) {
    std::size_t budget = sharedBytes(document);
    AppearanceLinks links(document);
    for (int i = 0; i < container.GetFieldNum(); ++i) {
        CPdfField& field = *container.GetFields(i);
        for (const std::optional<int>& number : links.of(field.appearanceLink())) {
            CPdfObj* const stream = number ? document.objects.find(*number) : nullptr;
            const int count = field.GetAppearanceCount();
            if (stream == nullptr || stream->content().empty() || count >= CPdfField::kAppearances) continue;
            if (stream->content().size() > budget) {
                logError(loggers::pdf, "ReadApperanceObjects: zu viele Daten, Obj ", *number);
                return;
            }
            budget -= stream->content().size();
            *field.GetAppearanceObj(count) = *stream;
            field.SetAppearanceCount(count + 1);
        }
    }
}

// Of several texts for an appearance that fields share the last is written.
using LastTexts = std::unordered_map<int, const CPdfObj*>;

template <typename Visit>
void forEachAppearance(CPdfField& field, Visit visit) {
    for (int i = 0; i < field.GetAppearanceCount(); ++i) {
        if (CPdfObj* const appearance = field.GetAppearanceObj(i)) visit(*appearance);
    }
}

LastTexts lastTexts(CPdfFieldContainer& container) {
    LastTexts last;
    for (int i = 0; i < container.GetFieldNum(); ++i) {
        CPdfField& field = *container.GetFields(i);
        if (field.GetIsNew() != 1) continue;
        forEachAppearance(field, [&](CPdfObj& appearance) { last[appearance.GetObjNum()] = &appearance; });
    }
    return last;
}

}  // namespace

CPdfObj* CPdf::GetObjWithFieldsEntry() {
    const Document& document = state_->document;
    CPdfObj* const catalogue = document.newest ? referencedObject(document, document.newest->root()) : nullptr;
    const std::string_view form =
        catalogue == nullptr ? std::string_view{} : lookUpValue(catalogue->content(), "/AcroForm");
    CPdfObj* const holder = form.starts_with("<<") ? catalogue : referencedObject(document, form);
    if (holder == nullptr) return nullptr;
    const std::string_view dictionary = holder == catalogue ? form : holder->content();
    return lookUp(dictionary, "/Fields") ? holder : nullptr;
}

CPdfFieldContainer* CPdf::ReadFields() {
    std::unique_ptr<CPdfFieldContainer> container;
    const int code = guarded([&]() -> int {
        container = std::make_unique<CPdfFieldContainer>();
        if (state_->document.newest) SetObjNum(state_->document.newest->GetSize());
        FieldReader reader(*this, *container);
        if (const CPdfObj* const holder = GetObjWithFieldsEntry()) reader.readFonts(*holder);
        reader.readFields(state_->objectCount);
        ReadApperanceObjects(container.get());
        return VARNPDF_OK;
    });
    if (code != VARNPDF_OK) {
        logError(loggers::pdf, "ReadFields: kein Speicher");
        container.reset();
    }
    return container.release();
}

void CPdf::ReadApperanceObjects(CPdfFieldContainer* container) {
    if (container == nullptr) return;
    const int code = guarded([&]() -> int {
        readAppearances(state_->document, *container);
        return VARNPDF_OK;
    });
    if (code != VARNPDF_OK) logError(loggers::pdf, "ReadApperanceObjects: kein Speicher");
}

int CPdf::AppendObjects(CPdfTrailer* trailer, CPdfXRefContainer* xrefs, CPdfFieldContainer* container) {
    if (container == nullptr) return 0;
    return guarded([&]() -> int {
        const LastTexts last = lastTexts(*container);
        for (int i = 0; i < container->GetFieldNum(); ++i) {
            CPdfField& field = *container->GetFields(i);
            if (field.GetIsNew() != 1) continue;
            WriteTextAnnotation(trailer, xrefs, field.GetOrgObj());
            forEachAppearance(field, [&](CPdfObj& appearance) {
                if (last.at(appearance.GetObjNum()) == &appearance) WriteTextAnnotation(trailer, xrefs, &appearance);
            });
        }
        return container->GetFieldNum();
    });
}
