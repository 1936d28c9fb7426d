// New fields: where they may stand, and how form and page lead to them.
#include "forms/NewFields.h"

#include <algorithm>
#include <array>
#include <optional>

#include "forms/FieldWidget.h"
#include "model/Lookup.h"
#include "reader/Pages.h"
#include "support/Limits.h"
#include "support/Loggers.h"
#include "support/Text.h"
#include "syntax/Cursor.h"
#include "syntax/Encoding.h"
#include "syntax/Values.h"
#include "varnpdf/result.h"

namespace varnpdf {
namespace {

// Calls `visit` for the names of all fields above this one, the outermost first.
template <typename Visit>
void forEachAbove(std::string_view name, Visit visit) {
    for (std::size_t dot = name.find('.'); dot != std::string_view::npos; dot = name.find('.', dot + 1)) {
        visit(name.substr(0, dot));
    }
}

bool isUsable(std::string_view name) {
    const bool hasEmptyPart =
        name.empty() || name.front() == '.' || name.back() == '.' || name.find("..") != std::string_view::npos;
    return !hasEmptyPart && name.size() <= limits::kNewFieldName;
}

std::string partialName(std::string_view name) {
    return textStringObject(fromUtf8OrLatin1(name.substr(name.rfind('.') + 1)));
}

std::string reference(const CPdfObj& object) {
    return text(object.GetObjNum(), ' ', std::max(object.GetGenNumber(), 0), " R");
}

std::string parentEntry(const CPdfObj* parent) {
    return parent == nullptr ? std::string() : text("/Parent ", reference(*parent), "\r\n");
}

}  // namespace

NewFields::NewFields(Document& document) : document_(document), tree_(document), update_(tree_) {
    for (const FormField& field : tree_.fields()) names_.insert(field.name);
    for (const FormGroup& group : tree_.groups()) groups_.emplace(group.name, group.object);
    catalogue_ = document.newest ? objectOf(document, document.newest->root()) : nullptr;
    CPdfObj* const root = catalogue_ == nullptr ? nullptr : pagesRoot(document, *catalogue_);
    if (root != nullptr) pages_ = pagesBelow(document, *root);
}

int NewFields::checkName(std::string_view name) {
    if (!isUsable(name)) return VARNPDF_FIELD_UNUSABLE;
    bool taken = names_.contains(name) || groups_.contains(name);
    forEachAbove(name, [&](std::string_view above) { taken = taken || names_.contains(above); });
    if (taken) return VARNPDF_FIELD_NAME_TAKEN;
    return tree_.isLocked(name) ? VARNPDF_FIELD_LOCKED : VARNPDF_OK;
}

CPdfObj* NewFields::pageOf(const NewField& field) const {
    const auto page = field.page < 0 ? pages_.size() - 1 : static_cast<std::size_t>(field.page);
    return field.page < -1 || page >= pages_.size() ? nullptr : pages_[page];
}

// The box is known in whole points: a part of one more is forgiven.
int NewFields::checkPlace(const NewField& field) {
    const CPdfObj* const page = pageOf(field);
    if (page == nullptr) return VARNPDF_PAGE_NOT_FOUND;
    constexpr std::array<int, 4> kLetter = {0, 0, 612, 792};  // what viewers take where no box is given
    auto box = pageAttributes(document_, *page).box;
    if (box[2] <= box[0] || box[3] <= box[1]) box = kLetter;
    const TextBox& place = field.place;
    const bool inside = place.width > 0 && place.height > 0 && place.x > box[0] - 1 && place.y > box[1] - 1 &&
                        place.x + place.width < box[2] + 1 && place.y + place.height < box[3] + 1;
    return inside ? VARNPDF_OK : VARNPDF_FIELD_OUTSIDE_PAGE;
}

int NewFields::add(const NewField& field) {
    if (document_.locked) return VARNPDF_LOCKED;
    if (catalogue_ == nullptr) return VARNPDF_TRAILER_INCOMPLETE;
    if (const int code = checkName(field.name); code != VARNPDF_OK) return code;
    if (const int code = checkPlace(field); code != VARNPDF_OK) return code;
    // What is left to viewers makes them draw all appearances anew, and poorly.
    if (field.kind == FieldKind::Text && !FormUpdate::canShow(field.value)) return VARNPDF_FIELD_VALUE_UNSHOWABLE;
    std::optional<JpegImage> image;
    if (field.kind == FieldKind::Image && !field.image.empty()) {
        image = loadImage(field.image.c_str(), true, loggers::form);
        if (!image) return VARNPDF_IMAGE_UNREADABLE;
    }
    CPdfObj* const page = pageOf(field);
    CPdfObj* const parent = parentOf(field.name);
    CPdfObj& object = newObject();
    (parent == nullptr ? rootFields_ : kids_[parent]).push_back(object.GetObjNum());
    annotations_[page].push_back(object.GetObjNum());
    names_.insert(field.name);
    signatures_ = signatures_ || field.kind == FieldKind::Signature;

    const std::string where =
        text("/T ", partialName(field.name), "\r\n", parentEntry(parent), "/P ", reference(*page), "\r\n");
    FieldWidget widget(update_.update(), field, pageAttributes(document_, *page).rotation);
    if (field.kind == FieldKind::Text) {
        object.setContent(widget.textField(object.GetObjNum(), where, fontFor(field)));
        update_.setValue(loneField(object), field.value);
    } else {
        object.setContent(widget.field(object.GetObjNum(), where, image));
        update_.update().change(object);
    }
    return VARNPDF_OK;
}

CPdfObj& NewFields::newObject() {
    CPdfObj& object = objects_.emplace_back();
    object.SetObjNum(update_.update().reserve());
    object.SetGenNumber(0);
    return object;
}

// The field that the new one stands below, made with all above it where it is not there; null for the form itself.
CPdfObj* NewFields::parentOf(std::string_view name) {
    CPdfObj* parent = nullptr;
    forEachAbove(name, [&](std::string_view above) {
        const auto known = groups_.find(above);
        if (known != groups_.end()) {
            parent = known->second;
            return;
        }
        CPdfObj& group = newObject();
        group.setContent(text(group.GetObjNum(), " 0 obj\r\n<<\r\n/T ", partialName(above), "\r\n", parentEntry(parent),
                              "/Kids []\r\n>>\r\nendobj\r\n"));
        (parent == nullptr ? rootFields_ : kids_[parent]).push_back(group.GetObjNum());
        groups_.emplace(above, &group);
        parent = &group;
    });
    return parent;
}

// The name of the font in the form's resources.
std::string NewFields::fontFor(const NewField& field) {
    constexpr std::string_view kNames[] = {"Helv", "Times", "Cour"};
    constexpr std::string_view kStyles[] = {"", "Bold", "Italic", "BoldItalic"};
    constexpr std::string_view kFonts[][4] = {
        {"Helvetica", "Helvetica-Bold", "Helvetica-Oblique", "Helvetica-BoldOblique"},
        {"Times-Roman", "Times-Bold", "Times-Italic", "Times-BoldItalic"},
        {"Courier", "Courier-Bold", "Courier-Oblique", "Courier-BoldOblique"}};
    const auto family = static_cast<std::size_t>(field.family >= 0 && field.family < 3 ? field.family : 0);
    const auto style = static_cast<std::size_t>(field.style >= 0 && field.style < 4 ? field.style : 0);
    std::string name = text("Varn", kNames[family], kStyles[style]);
    if (const auto added = update_.addFont(name, kFonts[family][style])) fonts_.emplace(name, *added);
    return name;
}

EntryPlace NewFields::formPlace() {
    if (CPdfObj* const holder = tree_.formHolder()) {
        const EntryPlace place(update_.update(), *holder);
        return tree_.formIsDirect() ? place.entry(document_, "/AcroForm") : place;
    }
    CPdfObj& form = newObject();
    form.setContent(text(form.GetObjNum(), " 0 obj\r\n<<\r\n/Fields []\r\n>>\r\nendobj\r\n"));
    EntryPlace(update_.update(), *catalogue_).entry(document_, "/AcroForm").set(reference(form));
    return {update_.update(), form};
}

void NewFields::writeForm() {
    const EntryPlace form = formPlace();
    if (!rootFields_.empty()) form.entry(document_, "/Fields").addReferences(rootFields_);
    const EntryPlace fonts = form.entry(document_, "/DR").entry(document_, "/Font");
    for (const auto& [name, font] : fonts_) fonts.entry(document_, text('/', name)).set(font);
    if (signatures_) {
        constexpr int kSignaturesExist = 1;  // ISO 32000-2 table 225
        const EntryPlace flags = form.entry(document_, "/SigFlags");
        flags.set(text(Cursor(flags.value()).takeInt().value_or(0) | kSignaturesExist));
    }
}

int NewFields::write() {
    if (objects_.empty()) return VARNPDF_OK;
    Update& update = update_.update();
    writeForm();
    for (const auto& [parent, numbers] : kids_) {
        EntryPlace(update, *parent).entry(document_, "/Kids").addReferences(numbers);
    }
    for (const auto& [page, numbers] : annotations_) {
        EntryPlace(update, *page).entry(document_, "/Annots").addReferences(numbers);
    }
    return update_.write(Update::Section::LikeDocument);
}

}  // namespace varnpdf
