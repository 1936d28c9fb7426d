// CPdfField and CPdfFieldContainer: fields and their values.
#include <cstdio>
#include <cstring>

#include "api/FieldFont.h"
#include "forms/FieldValue.h"
#include "support/Guarded.h"
#include "support/Limits.h"
#include "support/Loggers.h"
#include "support/StagedFile.h"
#include "syntax/Dictionary.h"
#include "syntax/Encoding.h"
#include "syntax/Values.h"
#include "varnpdf/PdfFields.h"
#include "varnpdf/result.h"

using namespace varnpdf;

namespace {

constexpr int kLine = 255;  // characters of a line that is read at once, terminator included

struct FileCloser {
    void operator()(std::FILE* file) const noexcept { std::fclose(file); }
};

const char* textOf(const std::optional<std::string>& text) { return text ? text->c_str() : nullptr; }

void store(std::optional<std::string>& target, const char* text) {
    target.reset();
    if (text != nullptr) target.emplace(text);
}

// The next piece of the text between "=", empty ones passed over.
std::optional<std::string_view> takePiece(std::string_view& text) {
    const std::size_t begin = text.find_first_not_of('=');
    if (begin == std::string_view::npos) return std::nullopt;
    const std::size_t end = std::min(text.find('=', begin), text.size());
    const std::string_view piece = text.substr(begin, end - begin);
    text.remove_prefix(std::min(end + 1, text.size()));
    return piece;
}

}  // namespace

CPdfField::CPdfField(int isNew) : isNew_(isNew) {}

CPdfField::CPdfField(CPdfObj* obj, int isNew) : isNew_(isNew) { SetOrgObj(obj); }

CPdfField::~CPdfField() = default;

CPdfObj* CPdfField::GetOrgObj() { return &orgObj_; }
int CPdfField::GetAppearanceCount() const { return appearanceCount_; }
void CPdfField::SetAppearanceCount(int count) { appearanceCount_ = count; }
const char* CPdfField::GetTag() const { return textOf(tag_); }
const char* CPdfField::GetOrgValue() const { return textOf(orgValue_); }
const char* CPdfField::GetNewValue() const { return textOf(newValue_); }
const char* CPdfField::GetAppearanceLink() const { return textOf(appearanceLink_); }
CFontObj* CPdfField::GetFont() const { return font_; }
void CPdfField::SetFont(CFontObj* font) { font_ = font; }
int CPdfField::GetIsNew() const { return isNew_; }
void CPdfField::SetIsNew(int isNew) { isNew_ = isNew; }
std::string_view CPdfField::orgValue() const { return orgValue_ ? std::string_view(*orgValue_) : std::string_view{}; }
void CPdfField::setOrgValue(std::string_view text) { orgValue_ = text; }
void CPdfField::setTag(std::string_view text) { tag_ = text; }
void CPdfField::setAppearanceLink(std::string_view text) { appearanceLink_ = text; }
std::string_view CPdfField::appearanceLink() const {
    return appearanceLink_ ? std::string_view(*appearanceLink_) : std::string_view{};
}

CPdfField& CPdfField::operator=(CPdfField& other) {
    CopyFrom(&other);
    return *this;
}

void CPdfField::CopyFrom(CPdfField* other) {
    if (other == nullptr || other == this) return;
    for (int i = 0; i < kAppearances; ++i) appearances_[i] = other->appearances_[i];
    orgObj_ = other->orgObj_;
    tag_ = other->tag_;
    orgValue_ = other->orgValue_;
    newValue_ = other->newValue_;
    appearanceLink_ = other->appearanceLink_;
    font_ = other->font_;
    appearanceCount_ = other->appearanceCount_;
    isNew_ = other->isNew_;
}

void CPdfField::SetTag(const char* text) { store(tag_, text); }

void CPdfField::SetOrgValue(const char* text) { store(orgValue_, text); }

void CPdfField::SetNewValue(const char* text) { store(newValue_, text); }

void CPdfField::SetAppearanceLink(const char* text) { store(appearanceLink_, text); }

void CPdfField::SetOrgObj(CPdfObj* obj) {
    if (obj != nullptr) orgObj_ = *obj;
}

CPdfObj* CPdfField::GetAppearanceObj(int i) { return i < 0 || i >= kAppearances ? nullptr : &appearances_[i]; }

int CPdfField::CompareValues() { return newValue_ && orgValue_ && *newValue_ != *orgValue_ ? 1 : 0; }

int CPdfField::CheckForChanges() {
    const int changed = CompareValues();
    if (changed == 1) isNew_ = 1;
    return changed;
}

void CPdfField::UpdateValues(CFontObj* defaultFont) {
    std::size_t budget = limits::kAppearanceBytes * kAppearances;
    updateValues(defaultFont, budget);
}

void CPdfField::updateValues(CFontObj* defaultFont, std::size_t& budget) {
    if (!newValue_) return;
    std::string text(orgObj_.content());
    setEntry(text, "/V", textStringObject(fromUtf8OrLatin1(*newValue_)));
    setEntry(text, "/RV", "");
    orgObj_.setContent(text);
    const CFontObj* const font = font_ != nullptr ? font_ : defaultFont;
    for (CPdfObj& appearance : appearances_) {
        if (appearance.GetContentLen() != 0) replaceShownValue(appearance, *newValue_, nameOfFont(font), true, budget);
    }
}

CPdfFieldContainer::CPdfFieldContainer() = default;

CPdfFieldContainer::~CPdfFieldContainer() = default;

int CPdfFieldContainer::GetFieldNum() const { return static_cast<int>(fields_.size()); }
CPdfFontContainer* CPdfFieldContainer::GetFontContainer() { return fonts_.get(); }

void CPdfFieldContainer::AddField(CPdfField* field) {
    if (field == nullptr) return;
    fields_.push_back(std::make_unique<CPdfField>(0));
    fields_.back()->CopyFrom(field);
}

CPdfField* CPdfFieldContainer::GetFields(int i) {
    return i < 0 || i >= GetFieldNum() ? nullptr : fields_[static_cast<std::size_t>(i)].get();
}

void CPdfFieldContainer::SetFontContainer(CPdfFontContainer* fonts) {
    if (fonts != fonts_.get()) fonts_.reset(fonts);
}

void CPdfFieldContainer::CheckAllForChanges() {
    for (const auto& field : fields_) field->CheckForChanges();
}

void CPdfFieldContainer::PutNewValuesToFields() {
    CheckAllForChanges();
    CFontObj* const defaultFont = fonts_ ? fonts_->GetDefaultFont() : nullptr;
    const int code = guarded([&]() -> int {
        std::size_t budget = limits::kAppearancesBytes;
        for (const auto& field : fields_) {
            if (field->GetIsNew() == 1) field->updateValues(defaultFont, budget);
        }
        return VARNPDF_OK;
    });
    if (code != VARNPDF_OK) logError(loggers::fields, "PutNewValuesToFields: kein Speicher");
}

int CPdfFieldContainer::ReadNewValuesFromIniFile(const char* path) {
    const std::unique_ptr<std::FILE, FileCloser> file(path == nullptr ? nullptr : std::fopen(path, "r"));
    if (!file) {
        logError(loggers::fields, "ReadNewValuesFromIniFile: ", path == nullptr ? "" : path);
        return -1;
    }
    return guarded([&]() -> int {
        char buffer[kLine];
        while (std::fgets(buffer, sizeof buffer, file.get()) != nullptr) {
            std::string_view line(buffer);
            const auto name = takePiece(line);
            auto value = name ? takePiece(line) : std::nullopt;
            if (!value) continue;
            if (value->ends_with('\n')) value->remove_suffix(1);
            for (const auto& field : fields_) {
                if (field->tag_ && *field->tag_ == *name) field->setTag(*value);
            }
        }
        return VARNPDF_OK;
    });
}

std::string CPdfFieldContainer::dump() {
    std::string lines;
    int count = 0;
    for (const auto& field : fields_) {
        if (field->orgObj_.content().find("/FT /Tx") == std::string_view::npos) continue;
        ++count;
        const std::string_view value = field->orgValue();
        const bool wide = value.starts_with("\xFE\xFF");
        append(lines, field->tag_.value_or(""), '=', wide ? toUtf8(fromTextString(value)) : std::string(value), "\r\n");
    }
    return text("FieldCount=", count, "\r\n", lines);
}

void CPdfFieldContainer::DumpFieldsToStdOut() {
    const std::string lines = dump();
    std::fwrite(lines.data(), 1, lines.size(), stdout);
}

void CPdfFieldContainer::DumpFieldsToFile(const char* path) {
    if (path == nullptr) return;
    const int code = guarded([&]() -> int {
        StagedFile file(path);
        if (file.isOpen()) file.write(dump());
        return file.isOpen() && file.commit() ? VARNPDF_OK : -1;
    });
    if (code != VARNPDF_OK) logError(loggers::fields, "DumpFieldsToFile: ", path);
}
