// A new field and its widget in one dictionary, and the appearances of kinds that show no text.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "forms/Widget.h"
#include "support/Image.h"
#include "writer/Update.h"

namespace varnpdf {

enum class FieldKind { Text, Image, CheckBox, Signature };

struct NewField {
    FieldKind kind = FieldKind::Text;
    std::string name;  ///< full, UTF-8, partial names joined by dots
    int page = 0;      ///< from 0; -1 the last
    TextBox place;     ///< in the page's own space
    unsigned flags = 0;
    std::u32string value;
    std::u32string tooltip;
    std::string image;  ///< path, empty for none
    int family = 0;     ///< 0 Helvetica, 1 Times, 2 Courier
    int style = 0;      ///< 0 regular, 1 bold, 2 italic, 3 both
    int size = 0;       ///< points; 0: as large as fits
};

/// Texts of objects for one field. It stands upright on a page that is turned.
class FieldWidget {
public:
    FieldWidget(Update& update, const NewField& field, int rotation);

    /// A text field without its value; `where` are the entries that name it and lead to page and parent.
    [[nodiscard]] std::string textField(int number, std::string_view where, std::string_view font) const;
    /// A field of another kind with its appearance, which is put into the update.
    std::string field(int number, std::string_view where, const std::optional<JpegImage>& image);

private:
    [[nodiscard]] std::string object(int number, std::string_view type, unsigned flags, std::string_view where,
                                     std::string_view more) const;
    int put(std::string_view resources, std::string_view content);
    int putPicture(const JpegImage& image);
    int putIcon(std::string_view resources, const JpegPlane& picture);
    std::string checkBox(int number, std::string_view where);
    std::string button(int number, std::string_view where, const std::optional<JpegImage>& image);

    Update& update_;
    const NewField& field_;
    int rotation_;
    Frame frame_;
    std::string border_;  // as content
};

}  // namespace varnpdf
