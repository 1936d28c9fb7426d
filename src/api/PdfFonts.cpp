// CFontObj, CPdfFontContainer and CAcroFormObj: the fonts of a form.
#include <algorithm>

#include "model/DictionaryEntry.h"
#include "support/Limits.h"
#include "support/Text.h"
#include "syntax/Cursor.h"
#include "varnpdf/PdfFields.h"

using namespace varnpdf;

namespace {

constexpr std::size_t kNone = std::string_view::npos;

// The next word between white space of the C library; empty at the end.
std::string_view takeWord(Cursor& cursor, std::string_view text) {
    cursor.skip(kIsCSpace);
    return cursor.takeUntil(kIsCSpace).of(text);
}

// "name number generation R", as far as it goes.
std::optional<CFontObj> fontOf(std::string_view piece) {
    Cursor cursor(piece);
    const std::string name(takeWord(cursor, piece));
    if (name.empty()) return std::nullopt;
    std::string reference;
    for (int i = 0; i < 3; ++i) {
        const std::string_view word = takeWord(cursor, piece);
        if (!word.empty()) append(reference, i == 0 ? "" : " ", word);
    }
    CFontObj font;
    font.SetShortName(name.c_str());
    font.SetRefNum(reference.c_str());
    return font;
}

}  // namespace

CFontObj::CFontObj() = default;
CFontObj::CFontObj(const CFontObj&) = default;
CFontObj& CFontObj::operator=(const CFontObj&) = default;
CFontObj::~CFontObj() = default;

const char* CFontObj::GetShortName() const { return shortName_.c_str(); }
void CFontObj::SetShortName(const char* name) { shortName_ = name == nullptr ? "" : name; }
const char* CFontObj::GetRefNum() const { return refNum_.c_str(); }
void CFontObj::SetRefNum(const char* reference) { refNum_ = reference == nullptr ? "" : reference; }

void CFontObj::CopyFrom(CFontObj* other) {
    if (other != nullptr) *this = static_cast<const CFontObj&>(*other);
}

CFontObj& CFontObj::operator=(CFontObj& other) {
    CopyFrom(&other);
    return *this;
}

CPdfFontContainer::CPdfFontContainer() = default;
CPdfFontContainer::~CPdfFontContainer() = default;

int CPdfFontContainer::GetFontNum() const { return static_cast<int>(fonts_.size()); }
CFontObj* CPdfFontContainer::GetFontObj() { return fonts_.empty() ? nullptr : fonts_.data(); }

void CPdfFontContainer::AddFont(CFontObj* font) {
    const std::unique_ptr<CFontObj> taken(font);
    if (taken) fonts_.push_back(*taken);
}

CFontObj* CPdfFontContainer::GetFontByShortName(const char* name) {
    if (name == nullptr) return nullptr;
    const auto found =
        std::ranges::find(fonts_, std::string_view(name), [](const CFontObj& font) { return font.GetShortName(); });
    return found == fonts_.end() ? nullptr : &*found;
}

CFontObj* CPdfFontContainer::GetDefaultFont() { return default_ ? &fonts_[*default_] : nullptr; }

void CPdfFontContainer::SetDefaultFont(CFontObj* font) {
    default_.reset();
    for (std::size_t i = 0; i < fonts_.size(); ++i) {
        if (&fonts_[i] == font) default_ = i;
    }
}

CAcroFormObj::CAcroFormObj() = default;
CAcroFormObj::~CAcroFormObj() = default;

int CAcroFormObj::ReadKey(const char* key, char* out) {
    if (key == nullptr || out == nullptr) return 0;
    const auto entry = findLaterEntry(content(), key);
    const std::string_view value = entry ? entry->value.of(content()) : std::string_view{};
    *std::copy(value.begin(), value.end(), out) = '\0';
    return entry ? 1 : 0;
}

CPdfFontContainer* CAcroFormObj::GetFontList(char* text) {
    return fontList(text == nullptr ? std::string_view{} : std::string_view(text)).release();
}

// Pieces between "/" and ">", to the end of the text: what stands behind the fonts is listed with them, and lookups by
// name are none the worse for it.
std::unique_ptr<CPdfFontContainer> CAcroFormObj::fontList(std::string_view text) {
    auto fonts = std::make_unique<CPdfFontContainer>();
    constexpr std::string_view kKey = "/Font";
    const std::size_t key = text.find(kKey);
    std::size_t at = key == kNone ? kNone : text.find('/', key + kKey.size());
    while (at < text.size() && fonts->GetFontNum() < limits::kFormFonts) {
        const std::size_t end = std::min(text.find_first_of("/>", at), text.size());
        if (const auto font = fontOf(text.substr(at, end - at))) fonts->AddFont(new CFontObj(*font));
        at = end + 1;
    }
    return fonts;
}

CPdfFontContainer* CAcroFormObj::ReadFontContainer() {
    const std::string_view text = content();
    const auto resources = findLaterEntry(text, "/DR");
    if (!resources) return nullptr;
    auto fonts = fontList(resources->value.of(text));
    if (const auto appearance = findLaterEntry(text, "/DA")) {
        constexpr std::size_t kName = 2;  // behind "(/"
        const std::string_view value = appearance->value.of(text);
        Cursor cursor(value, kName);
        const std::string name(takeWord(cursor, value));
        fonts->SetDefaultFont(fonts->GetFontByShortName(name.c_str()));
    }
    return fonts.release();
}
