// New values of fields as an appended update: the fields, their widgets and the appearances of these.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "forms/AppearanceContent.h"
#include "forms/FormTree.h"
#include "support/Limits.h"
#include "syntax/Dictionary.h"
#include "writer/Update.h"

namespace varnpdf {

class FormUpdate {
public:
    explicit FormUpdate(FormTree& tree);

    /// Gives a text field a value and every widget of it an appearance that shows the value.
    void setValue(const FormField& field, std::u32string_view value);
    /// Helvetica has all characters of the value, so that no viewer must do without it.
    [[nodiscard]] static bool canShow(std::u32string_view value);
    /// Puts the update together; without a value there is none. Further values and another update may follow, which
    /// holds all of them.
    /// @return VARNPDF_OK, VARNPDF_PDF_MAXSIZE or VARNPDF_COMPRESSING_FAILED
    int write(Update::Section section = Update::Section::Table);
    /// What was put together last, to stand behind the old document.
    [[nodiscard]] std::vector<std::string_view> pieces() const;

    /// Makes a standard font known under a name of the form's resources, which are the caller's to write.
    /// @return a reference to the font; nothing when the form has one of this name
    std::optional<std::string> addFont(const std::string& name, std::string_view baseFont);
    /// What waits to be written.
    [[nodiscard]] Update& update() noexcept { return update_; }

private:
    struct Shown;
    class Charged;
    void showValue(const FormField& field, CPdfObj& widget, std::u32string_view value);
    [[nodiscard]] Shown styleOf(const FormField& field, const Dictionary& widget);
    [[nodiscard]] std::string_view part(std::string_view value);
    void chooseFont(Shown& shown, std::string_view resources, std::u32string_view value);
    const std::optional<FieldFont>& fontOf(std::string_view value);
    [[nodiscard]] std::string_view fontEntry(std::string_view resources, std::string_view name);
    void useFont(Shown& shown, std::string_view entry, std::u32string_view value);
    std::string putFont(std::string_view baseFont);
    const std::string& substituteFont();
    void writeAppearance(CPdfObj& widget, const Shown& shown);
    std::string resourcesWith(std::string_view resources, const Shown& shown);
    void leaveToViewers(CPdfObj& widget);
    void updateForm();
    [[nodiscard]] bool isShared(int appearance);

    FormTree& tree_;
    Update update_;                                                  // waiting
    std::optional<Update> written_;                                  // a copy of it, closed
    std::unordered_map<std::string, std::string_view> fontsOfForm_;  // by name: a form may have as many as fields
    std::string substitute_;
    bool needAppearances_ = false;
    std::size_t budget_ = limits::kAppearancesBytes;
    std::unordered_map<std::string, std::optional<FieldFont>> fonts_;
    std::unordered_map<int, int> made_;  // numbers of new appearance streams by widget
    std::unordered_map<int, int> uses_;  // of appearance streams by widgets
    bool usesKnown_ = false;
};

}  // namespace varnpdf
