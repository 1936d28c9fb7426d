// The text fields of a form as objects and their texts: fonts, fields, and the containers of both. Members that return
// no result code let std::bad_alloc out, except where they say what comes instead.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "varnpdf/PdfObj.h"
#include "varnpdf/export.h"

/// A font of the form's resources: the name by which content refers to it, and the object.
class VARNPDF_EXPORT CFontObj {
public:
    CFontObj();
    CFontObj(const CFontObj&);
    virtual ~CFontObj();

    /// Name without slash, e.g. "F1"; "" until set. Owned by the font.
    [[nodiscard]] const char* GetShortName() const;
    /// Keeps a copy; null is "".
    void SetShortName(const char* name);
    /// Reference text, e.g. "5 0 R"; "" until set. Owned by the font.
    [[nodiscard]] const char* GetRefNum() const;
    void SetRefNum(const char* reference);
    void CopyFrom(CFontObj* other);
    CFontObj& operator=(CFontObj& other);
    CFontObj& operator=(const CFontObj&);

private:
    std::string shortName_;
    std::string refNum_;
};

/// Fonts by value, in the order they were added. A pointer to one holds until the next `AddFont`.
class VARNPDF_EXPORT CPdfFontContainer {
public:
    CPdfFontContainer();
    CPdfFontContainer(const CPdfFontContainer&) = delete;
    CPdfFontContainer& operator=(const CPdfFontContainer&) = delete;
    virtual ~CPdfFontContainer();

    /// Copies the font into the container and deletes it: what is handed in must come from `new`. Null is ignored.
    void AddFont(CFontObj* font);
    /// The first font with exactly this name, or null.
    CFontObj* GetFontByShortName(const char* name);
    /// The default font or null; one of the container's.
    CFontObj* GetDefaultFont();
    /// A font that is not in the container counts as null.
    void SetDefaultFont(CFontObj* font);
    [[nodiscard]] int GetFontNum() const;
    /// The fonts (`GetFontNum` of them), null without any.
    CFontObj* GetFontObj();

private:
    std::vector<CFontObj> fonts_;
    std::optional<std::size_t> default_;
};

/// One field: copies of its object and of its appearance streams, and the texts read from them.
class VARNPDF_EXPORT CPdfField {
public:
    static constexpr int kAppearances = 3;

    explicit CPdfField(int isNew);
    CPdfField(CPdfObj* obj, int isNew);
    CPdfField(const CPdfField&) = delete;
    CPdfField& operator=(CPdfField& other);
    virtual ~CPdfField();
    void CopyFrom(CPdfField* other);

    /// The field's own object; what `CPdf::AppendObjects` writes. Owned by the field.
    CPdfObj* GetOrgObj();
    /// Copies the object.
    void SetOrgObj(CPdfObj* obj);
    /// Appearance stream `i` (from 0), in the order normal, rollover, down as far as the field has them; null for an
    /// index outside 0 to 2. Owned by the field.
    CPdfObj* GetAppearanceObj(int i);
    /// How many appearance objects are filled, 0 to 3.
    [[nodiscard]] int GetAppearanceCount() const;
    void SetAppearanceCount(int count);

    /// The texts below are owned by the field and hold until the next change; null when never set. Setting keeps a copy.
    /// Name: /T without its parentheses.
    [[nodiscard]] const char* GetTag() const;
    void SetTag(const char* text);
    /// /V as read, without parentheses. A UTF-16 value holds NULs; `orgValue` has all of it.
    [[nodiscard]] const char* GetOrgValue() const;
    void SetOrgValue(const char* text);
    /// The value to be written, UTF-8; text that is not UTF-8 is taken to be Latin-1.
    [[nodiscard]] const char* GetNewValue() const;
    void SetNewValue(const char* text);
    /// The text of /AP.
    [[nodiscard]] const char* GetAppearanceLink() const;
    void SetAppearanceLink(const char* text);

    /// The font that /DA names, in the font container that was read with the field; null when unknown.
    [[nodiscard]] CFontObj* GetFont() const;
    void SetFont(CFontObj* font);
    /// 1: to be written into the update.
    [[nodiscard]] int GetIsNew() const;
    void SetIsNew(int isNew);

    /// 1 when a new value has been set and differs from the one that was read, else 0.
    int CompareValues();
    /// Marks a changed field as new; the result of `CompareValues`.
    int CheckForChanges();
    /// Writes the new value into the field's object (/V) and into its appearance objects.
    void UpdateValues(CFontObj* defaultFont);

    [[nodiscard]] std::string_view orgValue() const;
    void setOrgValue(std::string_view text);
    void setTag(std::string_view text);
    void setAppearanceLink(std::string_view text);
    [[nodiscard]] std::string_view appearanceLink() const;

private:
    friend class CPdfFieldContainer;
    using Text = std::optional<std::string>;
    VARNPDF_HIDDEN void updateValues(CFontObj* defaultFont, std::size_t& budget);

    CPdfObj appearances_[kAppearances];
    CPdfObj orgObj_;
    Text tag_;
    Text orgValue_;
    Text newValue_;
    Text appearanceLink_;
    CFontObj* font_ = nullptr;
    int appearanceCount_ = 0;
    int isNew_ = 0;
};

/// Fields in the order they were added, and the fonts they refer to.
class VARNPDF_EXPORT CPdfFieldContainer {
public:
    CPdfFieldContainer();
    CPdfFieldContainer(const CPdfFieldContainer&) = delete;
    CPdfFieldContainer& operator=(const CPdfFieldContainer&) = delete;
    virtual ~CPdfFieldContainer();

    /// Adds a copy; the argument stays the caller's. Take pointers from `GetFields` anew behind it.
    void AddField(CPdfField* field);
    /// Field `i` (from 0), null outside of the range. Owned by the container.
    CPdfField* GetFields(int i);
    [[nodiscard]] int GetFieldNum() const;
    /// Null without fonts. Owned by the container.
    CPdfFontContainer* GetFontContainer();
    /// The container takes the fonts over and deletes those it had.
    void SetFontContainer(CPdfFontContainer* fonts);

    /// `CPdfField::CheckForChanges` for every field.
    void CheckAllForChanges();
    /// The same, then `CPdfField::UpdateValues` for every field marked new. A lack of memory is logged.
    void PutNewValuesToFields();
    /// Reads lines "name=value" of at most 254 characters. The value becomes the *name* of every field with that name,
    /// not its value: hosts map names this way.
    /// @return 0, -1 when the file cannot be opened, or VARNPDF_PDF_MEMORY_ALLOCATION (-1014)
    int ReadNewValuesFromIniFile(const char* path);
    /// "FieldCount=" with the number of text fields, then "name=value" for each; lines end with CR LF. A UTF-16 value is
    /// written as UTF-8.
    void DumpFieldsToStdOut();
    /// The same into a file. A failure is logged.
    void DumpFieldsToFile(const char* path);

private:
    [[nodiscard]] VARNPDF_HIDDEN std::string dump();

    std::vector<std::unique_ptr<CPdfField>> fields_;
    std::unique_ptr<CPdfFontContainer> fonts_;
};

/// An object whose text is an AcroForm dictionary (ISO 32000-2 12.7.3).
class VARNPDF_EXPORT CAcroFormObj : public CPdfObj {
public:
    CAcroFormObj();
    ~CAcroFormObj() override;

    /// A value of the dictionary, terminated; `out` holds the content length + 1 bytes. 1 when found, else 0.
    int ReadKey(const char* key, char* out);
    /// The fonts listed behind "/Font" in the text of /DR; entries behind the font dictionary come along. Never null;
    /// the caller deletes it.
    CPdfFontContainer* GetFontList(char* text);
    /// The fonts of /DR with the font of /DA as default. Null without /DR; the caller deletes it.
    CPdfFontContainer* ReadFontContainer();

    /// `GetFontList` with a view.
    static std::unique_ptr<CPdfFontContainer> fontList(std::string_view text);
};
