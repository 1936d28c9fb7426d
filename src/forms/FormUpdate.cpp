// Filling fields.
#include "forms/FormUpdate.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>
#include <vector>

#include "forms/TextLayout.h"
#include "forms/Widget.h"
#include "support/Text.h"
#include "syntax/Dictionary.h"
#include "syntax/Values.h"
#include "varnpdf/result.h"

namespace varnpdf {
namespace {

constexpr std::string_view kSubstituteName = "VarnHelv";
constexpr std::size_t kLongestAppearance = 4096;  // bytes of a default appearance that is believed

// Line ends of every kind become line feeds.
std::u32string withLineFeeds(std::u32string_view value) {
    std::u32string out;
    for (std::size_t i = 0; i < value.size(); ++i) {
        if (value[i] == '\r' && i + 1 < value.size() && value[i + 1] == '\n') continue;
        out.push_back(value[i] == '\r' ? U'\n' : value[i] == '\t' ? U' ' : value[i]);
    }
    return out;
}

// A standard font, which needs no file (ISO 32000-2 9.6.2.2).
std::string fontObject(int number, std::string_view baseFont) {
    return text(number, " 0 obj\r\n", "<<\r\n/Type /Font\r\n/Subtype /Type1\r\n", "/BaseFont /", baseFont,
                "\r\n/Encoding /WinAnsiEncoding\r\n>>\r\nendobj\r\n");
}

}  // namespace

// What a widget is to show.
struct FormUpdate::Shown {
    TextStyle style;
    std::string codes;
    std::string fontEntry;  // value of the font in /Resources
    const FieldFont* font = nullptr;
    Frame frame;  // of an appearance made anew
    std::string content;
    const CPdfObj* old = nullptr;      // appearance stream that is there
    std::optional<StreamParts> parts;  // of it, when its surroundings of the text are kept
};

FormUpdate::FormUpdate(FormTree& tree) : tree_(tree), update_(tree.document()) {
    const Dictionary fonts(tree.follow(Dictionary(tree.follow(tree.form().find("/DR"))).find("/Font")));
    for (const Dictionary::Entry& font : fonts.entries()) {
        fontsOfForm_[nameOf(font.key)] = font.value == "null" ? std::string_view{} : font.value;
    }
}

// What widgets and fonts refer to, at the expense of the budget: many may refer to one long object.
class FormUpdate::Charged : public References {
public:
    explicit Charged(FormUpdate& update) : update_(update) {}
    [[nodiscard]] std::string_view follow(std::string_view value) const override {
        return referenceOf(value) ? update_.part(value) : value;
    }

private:
    FormUpdate& update_;
};

// A value that may be shared by many widgets. Together they may not cost more than the budget.
std::string_view FormUpdate::part(std::string_view value) {
    const std::string_view followed = tree_.follow(value);
    if (followed.size() > budget_) return {};
    budget_ -= followed.size();
    return followed;
}

void FormUpdate::setValue(const FormField& field, std::u32string_view value) {
    std::string& text = update_.change(*field.object);
    setEntry(text, "/V", textStringObject(value));
    setEntry(text, "/RV", "");  // the same value as rich text, which would win in viewers that know it
    const std::u32string shown = withLineFeeds(value);
    for (CPdfObj* const widget : field.widgets) {
        // Some producers repeat the value in the widgets; an old one there would be shown.
        if (widget != field.object && !Dictionary(widget->content()).find("/V").empty()) {
            std::string& own = update_.change(*widget);
            setEntry(own, "/V", "");
        }
        showValue(field, *widget, shown);
    }
}

bool FormUpdate::canShow(std::u32string_view value) {
    return FieldFont::helvetica().encode(withLineFeeds(value)).has_value();
}

FormUpdate::Shown FormUpdate::styleOf(const FormField& field, const Dictionary& widget) {
    Shown shown;
    const auto own = [&](const char* key, std::string_view inherited) {
        const std::string_view value = widget.find(key);
        return tree_.follow(value.empty() ? inherited : value);
    };
    const std::string_view appearance = own("/DA", field.attributes.appearance);
    if (appearance.size() <= kLongestAppearance) {
        shown.style.appearance = parseDefaultAppearance(stringOf(appearance).value_or(""));
    }
    const double quadding = numberOf(own("/Q", field.attributes.quadding)).value_or(0);
    shown.style.quadding = static_cast<int>(std::clamp(quadding, 0.0, 2.0));
    shown.style.multiline = (field.flags() & kMultiline) != 0;
    const double most = numberOf(tree_.follow(field.attributes.maxLength)).value_or(0);
    const bool comb = (field.flags() & kComb) != 0 && !shown.style.multiline && most >= 1;
    constexpr double kMostCells = 10'000;
    shown.style.cells = comb ? static_cast<int>(std::min(most, kMostCells)) : 0;
    return shown;
}

void FormUpdate::showValue(const FormField& field, CPdfObj& widget, std::u32string_view value) {
    const Dictionary own(widget.content());
    const auto rect = boxOf(part(own.find("/Rect")));
    if (!rect) return;  // a field without a place on a page shows nothing
    const Dictionary look(part(own.find("/MK")));
    const Dictionary lines(part(own.find("/BS")));
    Shown shown = styleOf(field, own);
    shown.style.border = borderWidth(own, lines, Charged(*this));

    shown.old = tree_.object(Dictionary(part(own.find("/AP"))).find("/N"));
    if (shown.old != nullptr) shown.parts = streamParts(tree_.document(), *shown.old, budget_);
    const Dictionary form(shown.parts ? shown.parts->head : std::string_view{});
    const auto oldBox = boxOf(part(form.find("/BBox")));
    if (!oldBox || !markedText(shown.parts->data)) shown.parts.reset();

    const bool hidden = (field.flags() & kPassword) != 0;
    chooseFont(shown, part(form.find("/Resources")),
               hidden ? std::u32string(value.size(), U'*') : std::u32string(value));
    if (shown.font == nullptr) {
        leaveToViewers(widget);
        return;
    }
    const auto rotation = numberOf(look.find("/R")).value_or(0);
    const Frame frame = frameOf(rect->width, rect->height, static_cast<int>(rotation));
    const TextBox box = shown.parts ? *oldBox : frame.box;
    const std::string text = fieldText(box, shown.style, *shown.font, shown.codes);
    if (shown.parts) {
        shown.content = withMarkedText(shown.parts->data, text);
    } else {
        shown.content = decoration(look, lines, box, shown.style.border) + withMarkedText({}, text);
        shown.frame = frame;
    }
    writeAppearance(widget, shown);
}

std::string_view FormUpdate::fontEntry(std::string_view resources, std::string_view name) {
    return Dictionary(part(Dictionary(resources).find("/Font"))).find(text('/', name));
}

const std::optional<FieldFont>& FormUpdate::fontOf(std::string_view value) {
    const auto [font, isNew] = fonts_.try_emplace(std::string(value));
    if (isNew) font->second = FieldFont::from(part(value), Charged(*this));
    return font->second;
}

void FormUpdate::useFont(Shown& shown, std::string_view entry, std::u32string_view value) {
    if (entry.empty() || entry.size() > budget_) return;
    budget_ -= entry.size();
    const auto& font = fontOf(entry);
    auto codes = font ? font->encode(value) : std::nullopt;
    if (!codes) return;
    shown.codes = std::move(*codes);
    shown.fontEntry = entry;
    shown.font = &*font;
}

// The field's own font when it has all characters, else Helvetica, else none.
void FormUpdate::chooseFont(Shown& shown, std::string_view resources, std::u32string_view value) {
    std::string& name = shown.style.appearance.font;
    if (!name.empty()) {
        const auto known = fontsOfForm_.find(nameOf(text('/', name)));
        if (known != fontsOfForm_.end()) useFont(shown, known->second, value);
        if (shown.font == nullptr) useFont(shown, fontEntry(resources, name), value);
        if (shown.font != nullptr) return;
    }
    auto codes = FieldFont::helvetica().encode(value);
    if (!codes) return;
    shown.codes = std::move(*codes);
    shown.fontEntry = substituteFont();
    shown.font = &FieldFont::helvetica();
    name = kSubstituteName;
}

std::string FormUpdate::putFont(std::string_view baseFont) {
    const int number = update_.reserve();
    update_.put(number, fontObject(number, baseFont));
    return text(number, " 0 R");
}

const std::string& FormUpdate::substituteFont() {
    if (substitute_.empty()) substitute_ = putFont("Helvetica");
    return substitute_;
}

std::optional<std::string> FormUpdate::addFont(const std::string& name, std::string_view baseFont) {
    const auto [known, isNew] = fontsOfForm_.try_emplace(name);
    if (!isNew) return std::nullopt;
    const auto font = fonts_.try_emplace(putFont(baseFont), FieldFont::from(fontObject(0, baseFont), tree_)).first;
    known->second = font->first;
    return font->first;
}

std::string FormUpdate::resourcesWith(std::string_view resources, const Shown& shown) {
    const std::string_view fonts = part(Dictionary(resources).find("/Font"));
    std::string more(fonts.starts_with("<<") ? fonts : "<<>>");
    setEntry(more, text('/', shown.style.appearance.font), shown.fontEntry);
    std::string out(resources.starts_with("<<") ? resources : "<<>>");
    setEntry(out, "/Font", more);
    return out;
}

void FormUpdate::writeAppearance(CPdfObj& widget, const Shown& shown) {
    const bool reuse = shown.old != nullptr && !isShared(shown.old->GetObjNum());
    int number = reuse ? shown.old->GetObjNum() : 0;
    if (!reuse) {
        int& made = made_[widget.GetObjNum()];
        if (made == 0) made = update_.reserve();
        number = made;
    }
    std::string head = shown.parts ? text(number, " 0 obj\r\n", objectValue(shown.parts->head))
                                   : appearanceHead(number, shown.frame, "");
    if (!shown.codes.empty()) {
        const std::string resources(part(Dictionary(head).find("/Resources")));
        if (fontEntry(resources, shown.style.appearance.font) != shown.fontEntry) {
            setEntry(head, "/Resources", resourcesWith(resources, shown));
        }
    }
    std::string stream = streamObject(head, shown.content, shown.parts && shown.parts->packed);
    if (reuse) {
        update_.change(*shown.old) = std::move(stream);
    } else {
        update_.put(number, std::move(stream));
    }
    const Dictionary appearances(Dictionary(update_.current(widget)).find("/AP"));
    const bool leadsThere = appearances.entries().size() == 1 && referenceOf(appearances.find("/N")) == number;
    if (leadsThere) return;
    std::string& text = update_.change(widget);
    setEntry(text, "/AP", varnpdf::text("<</N ", number, " 0 R>>"));
}

// Without an appearance a viewer makes one, with the fonts that it has.
void FormUpdate::leaveToViewers(CPdfObj& widget) {
    std::string& text = update_.change(widget);
    setEntry(text, "/AP", "");
    needAppearances_ = true;
}

bool FormUpdate::isShared(int appearance) {
    if (!usesKnown_) {
        std::unordered_map<const CPdfObj*, std::optional<int>> shared;  // dictionaries, each read once
        for (const FormField& field : tree_.fields()) {
            for (const CPdfObj* const widget : field.widgets) {
                const std::string_view value = Dictionary(widget->content()).find("/AP");
                const CPdfObj* const held = tree_.object(value);
                const auto known = shared.find(held);
                const auto number = held != nullptr && known != shared.end()
                                        ? known->second
                                        : referenceOf(Dictionary(tree_.follow(value)).find("/N"));
                if (held != nullptr) shared.emplace(held, number);
                if (number) ++uses_[*number];
            }
        }
        usesKnown_ = true;
    }
    const auto found = uses_.find(appearance);
    return found != uses_.end() && found->second > 1;
}

// Values in /XFA would be shown instead of those of the fields (ISO 32000-2 annex K).
void FormUpdate::updateForm() {
    CPdfObj* const holder = tree_.formHolder();
    const bool needed = needAppearances_ && tree_.follow(tree_.form().find("/NeedAppearances")) != "true";
    const bool hasXfa = !tree_.form().find("/XFA").empty();
    if (holder == nullptr || (!needed && !hasXfa)) return;
    std::string& object = update_.change(*holder);
    std::string form(tree_.formIsDirect() ? Dictionary(object).find("/AcroForm") : std::string_view(object));
    if (needed) setEntry(form, "/NeedAppearances", "true");
    setEntry(form, "/XFA", "");
    if (tree_.formIsDirect()) {
        setEntry(object, "/AcroForm", form);
    } else {
        object = form;
    }
}

int FormUpdate::write(Update::Section section) {
    written_.reset();
    if (update_.empty()) return VARNPDF_OK;
    updateForm();
    written_.emplace(update_);
    written_->writeWaiting();
    return written_->close({.section = section});
}

std::vector<std::string_view> FormUpdate::pieces() const {
    return written_ ? written_->pieces() : std::vector<std::string_view>{};
}

}  // namespace varnpdf
