// New values of fields as an appended update: the fields, their widgets and the appearances of these.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "forms/AppearanceContent.h"
#include "forms/FormTree.h"
#include "support/Limits.h"
#include "syntax/Dictionary.h"
#include "varnpdf/Pdf.h"

namespace varnpdf {

class FormUpdate {
public:
    FormUpdate(CPdf& pdf, FormTree& tree);

    /// Gives a text field a value and every widget of it an appearance that shows the value.
    void setValue(const FormField& field, std::u32string_view value);
    /// Nothing has been given a value yet.
    [[nodiscard]] bool empty() const { return texts_.empty(); }
    /// Writes the old document and the update into the document's output stream.
    void write();

private:
    struct Shown;
    class Charged;
    void showValue(const FormField& field, CPdfObj& widget, std::u32string_view value);
    [[nodiscard]] Shown styleOf(const FormField& field, const Dictionary& widget);
    void writeObjects();
    [[nodiscard]] std::string_view part(std::string_view value);
    void chooseFont(Shown& shown, std::string_view resources, std::u32string_view value);
    const std::optional<FieldFont>& fontOf(std::string_view value);
    [[nodiscard]] std::string_view fontEntry(std::string_view resources, std::string_view name);
    void useFont(Shown& shown, std::string_view entry, std::u32string_view value);
    std::string substituteFont();
    void writeAppearance(CPdfObj& widget, const Shown& shown);
    std::string resourcesWith(std::string_view resources, const Shown& shown);
    void leaveToViewers(CPdfObj& widget);
    void updateForm();
    std::string& changed(const CPdfObj& object);
    [[nodiscard]] bool isShared(int appearance);

    CPdf& pdf_;
    FormTree& tree_;
    std::unordered_map<std::string, std::string_view> fontsOfForm_;  // by name: a form may have as many as fields
    std::map<int, std::string> texts_;                               // of changed and new objects, by number
    int next_;
    int substitute_ = 0;
    bool needAppearances_ = false;
    std::size_t budget_ = limits::kAppearancesBytes;
    std::unordered_map<std::string, std::optional<FieldFont>> fonts_;
    std::unordered_map<int, int> made_;  // numbers of new appearance streams by widget
    std::unordered_map<int, int> uses_;  // of appearance streams by widgets
    bool usesKnown_ = false;
};

}  // namespace varnpdf
