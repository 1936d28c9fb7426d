// CPdf: reading the text fields of a form and appending the changed ones.
#include <array>
#include <unordered_map>
#include <unordered_set>

#include "forms/FormTree.h"
#include "model/DictionaryEntry.h"
#include "model/ObjectTable.h"
#include "support/Guarded.h"
#include "support/Limits.h"
#include "support/Log.h"
#include "syntax/Dictionary.h"
#include "syntax/Reference.h"
#include "api/PdfState.h"
#include "reader/Objects.h"
#include "reader/Pages.h"
#include "support/Loggers.h"
#include "varnpdf/PdfFields.h"
#include "varnpdf/result.h"

using namespace varnpdf;

// What the fields of one document share.
struct varnpdf::FieldReading {
    CPdfFieldContainer& container;
    std::unordered_map<std::string_view, CFontObj*> fonts;
    std::size_t budget;  // of values that stand in objects of their own
};

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
std::size_t sharedBytes(std::size_t document) {
    return limits::kObjectBytesBase + limits::kObjectBytesPerByte * document;
}

}  // namespace

CPdfObj* CPdf::GetObjWithFieldsEntry() {
    CPdfObj* const catalogue = state_->document.newest ? referencedObject(state_->document, state_->document.newest->root()) : nullptr;
    const std::string_view form =
        catalogue == nullptr ? std::string_view{} : entryValue(catalogue->content(), "/AcroForm");
    CPdfObj* const holder = form.starts_with("<<") ? catalogue : referencedObject(state_->document, form);
    if (holder == nullptr) return nullptr;
    const std::string_view dictionary = holder == catalogue ? form : holder->content();
    return findLaterEntry(dictionary, "/Fields") ? holder : nullptr;
}

CPdfFieldContainer* CPdf::ReadFields() {
    std::unique_ptr<CPdfFieldContainer> container;
    const int code = guarded([&]() -> int {
        container = std::make_unique<CPdfFieldContainer>();
        readFields(*container);
        return VARNPDF_OK;
    });
    if (code != VARNPDF_OK) {
        logError(loggers::pdf, "ReadFields: kein Speicher");
        container.reset();
    }
    return container.release();
}

void CPdf::readFields(CPdfFieldContainer& container) {
    if (state_->document.newest) SetObjNum(state_->document.newest->GetSize());
    if (const CPdfObj* const holder = GetObjWithFieldsEntry()) {
        const bool isCatalogue = entryValue(holder->content(), "/Type") == "/Catalog";
        CAcroFormObj form;
        form.setContent(isCatalogue ? entryValue(holder->content(), "/AcroForm") : holder->content());
        // Resources and their fonts may stand in objects of their own.
        const auto inlined = [&](std::string_view text, const char* key) {
            const CPdfObj* const object = referencedObject(state_->document, Dictionary(text).find(key));
            std::string out(text);
            if (object != nullptr) setEntry(out, key, objectValue(object->content()));
            return out;
        };
        std::string resources = inlined(form.content(), "/DR");
        const std::string fonts = inlined(Dictionary(resources).find("/DR"), "/Font");
        if (!fonts.empty()) setEntry(resources, "/DR", fonts);
        form.setContent(resources);
        container.SetFontContainer(form.ReadFontContainer());
    }
    FieldReading reading{container, {}, sharedBytes(state_->document.length)};
    // The first of each name, as a search would find it.
    CPdfFontContainer* const fonts = container.GetFontContainer();
    for (int i = 0; fonts != nullptr && i < fonts->GetFontNum(); ++i) {
        CFontObj& font = fonts->GetFontObj()[i];
        reading.fonts.emplace(font.GetShortName(), &font);
    }
    // The last slot is not visited: hosts know the numbers that this gives.
    state_->document.objects.forEach(state_->objectCount - 2, [&](int slot, CPdfObj& obj) {
        if (slot > 0 && !obj.content().empty()) readField(obj, reading);
    });
    ReadApperanceObjects(&container);
}

void CPdf::readField(CPdfObj& obj, FieldReading& reading) {
    const std::string_view text = obj.content();
    const std::string_view name = entryValue(text, "/T");
    if (name.find('(') == std::string_view::npos) return;
    std::string_view value = entryValue(text, "/V");
    const CPdfObj* const held = referencedObject(state_->document, value);
    if (held != nullptr && held->content().size() <= reading.budget) {
        reading.budget -= held->content().size();
        const std::string_view string = objectValue(held->content());
        if (string.starts_with('(')) value = string;
    }
    CPdfField field(&obj, 0);
    field.setTag(stripBrackets(trim(name, kBlanks), kParentheses));
    field.setOrgValue(stripBrackets(value, kParentheses));
    field.setAppearanceLink(entryValue(text, "/AP"));
    const std::string font = fontName(entryValue(text, "/DA"));
    const auto known = reading.fonts.find(font);
    if (known != reading.fonts.end()) field.SetFont(known->second);
    reading.container.AddField(&field);
}

void CPdf::ReadApperanceObjects(CPdfFieldContainer* container) {
    if (container == nullptr) return;
    const int code = guarded([&]() -> int {
        readAppearances(*container);
        return VARNPDF_OK;
    });
    if (code != VARNPDF_OK) logError(loggers::pdf, "ReadApperanceObjects: kein Speicher");
}

void CPdf::readAppearances(CPdfFieldContainer& container) {
    // Fields may share one long stream, and each gets a copy.
    std::size_t budget = sharedBytes(state_->document.length);
    std::unordered_map<const CPdfObj*, Appearances> shared;
    for (int i = 0; i < container.GetFieldNum(); ++i) {
        CPdfField& field = *container.GetFields(i);
        const std::string_view link = field.appearanceLink();
        const CPdfObj* const held = link.starts_with("<<") ? nullptr : referencedObject(state_->document, link);
        const auto known = shared.find(held);
        const Appearances found =
            known != shared.end() ? known->second : appearancesIn(held != nullptr ? held->content() : link);
        if (held != nullptr) shared.emplace(held, found);
        for (const std::optional<int>& number : found) {
            CPdfObj* const stream = number ? state_->document.objects.find(*number) : nullptr;
            if (stream == nullptr || stream->content().empty() ||
                field.GetAppearanceCount() >= CPdfField::kAppearances) {
                continue;
            }
            if (stream->content().size() > budget) {
                logError(loggers::pdf, "ReadApperanceObjects: zu viele Daten, Obj ", *number);
                return;
            }
            budget -= stream->content().size();
            *field.GetAppearanceObj(field.GetAppearanceCount()) = *stream;
            field.SetAppearanceCount(field.GetAppearanceCount() + 1);
        }
    }
}

int CPdf::AppendObjects(CPdfTrailer* trailer, CPdfXRefContainer* xrefs, CPdfFieldContainer* container) {
    if (container == nullptr) return 0;
    return guarded([&]() -> int { return appendFields(trailer, xrefs, *container); });
}

int CPdf::appendFields(CPdfTrailer* trailer, CPdfXRefContainer* xrefs, CPdfFieldContainer& container) {
    std::unordered_set<int> written;
    for (int i = 0; i < container.GetFieldNum(); ++i) {
        CPdfField& field = *container.GetFields(i);
        if (field.GetIsNew() != 1) continue;
        WriteTextAnnotation(trailer, xrefs, field.GetOrgObj());
        for (int k = 0; k < field.GetAppearanceCount(); ++k) {
            CPdfObj* const appearance = field.GetAppearanceObj(k);
            if (appearance != nullptr && written.insert(appearance->GetObjNum()).second) {
                WriteTextAnnotation(trailer, xrefs, appearance);
            }
        }
    }
    return container.GetFieldNum();
}
