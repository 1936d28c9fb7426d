// Widgets of new fields.
#include "forms/FieldWidget.h"

#include <algorithm>

#include "forms/AppearanceContent.h"
#include "support/Text.h"
#include "syntax/Values.h"
#include "writer/ImageObject.h"

namespace varnpdf {
namespace {

constexpr std::string_view kBorder = "/BC [0.5]";
constexpr unsigned kPushButton = 1U << 16U;  // ISO 32000-2 table 229
constexpr unsigned kFlagsOfAll = 7;          // table 227

// The stroke of a check mark in the middle of the box.
std::string checkMark(const TextBox& box) {
    const double side = std::min(box.width, box.height);
    const auto point = [&](double x, double y) {
        return text(decimal(box.width / 2 + (x - 0.5) * side), ' ', decimal(box.height / 2 + (y - 0.5) * side));
    };
    return text("q\n0 G\n1 J\n1 j\n", decimal(side / 10), " w\n", point(0.22, 0.5), " m\n", point(0.42, 0.26), " l\n",
                point(0.78, 0.76), " l\nS\nQ\n");
}

// Shows a picture of this size as large as it fits into the box inside a border, in its middle.
std::string pictureContent(const TextBox& box, unsigned width, unsigned height) {
    constexpr double kBorderWidth = 2;
    const double room = std::min((box.width - 2 * kBorderWidth) / width, (box.height - 2 * kBorderWidth) / height);
    const double scale = std::max(room, 0.0);
    return text("q\n", decimal(scale * width), " 0 0 ", decimal(scale * height), ' ',
                decimal((box.width - scale * width) / 2), ' ', decimal((box.height - scale * height) / 2),
                " cm\n/Im Do\nQ\n");
}

}  // namespace

FieldWidget::FieldWidget(Update& update, const NewField& field, int rotation)
    : update_(update),
      field_(field),
      rotation_((rotation % 360 + 360) % 360),
      frame_(frameOf(field.place.width, field.place.height, rotation)),
      border_(decoration(Dictionary(text("<<", kBorder, ">>")), Dictionary(), frame_.box, 1)) {}

std::string FieldWidget::object(int number, std::string_view type, unsigned flags, std::string_view where,
                                std::string_view more) const {
    const TextBox& place = field_.place;
    std::string out = text(number, " 0 obj\r\n<<\r\n/Type /Annot\r\n/Subtype /Widget\r\n/FT ", type, "\r\n", where);
    if (!field_.tooltip.empty()) append(out, "/TU ", textStringObject(field_.tooltip), "\r\n");
    append(out, "/Ff ", flags, "\r\n/F 4\r\n/Rect [", decimal(place.x), ' ', decimal(place.y), ' ',
           decimal(place.x + place.width), ' ', decimal(place.y + place.height), "]\r\n", more, ">>\r\nendobj\r\n");
    return out;
}

std::string FieldWidget::textField(int number, std::string_view where, std::string_view font) const {
    return object(number, "/Tx", field_.flags, where,
                  text("/MK <<", kBorder, " /R ", rotation_, ">>\r\n/DA (/", font, ' ', std::max(field_.size, 0),
                       " Tf 0 g)\r\n"));
}

std::string FieldWidget::field(int number, std::string_view where, const std::optional<JpegImage>& image) {
    switch (field_.kind) {
        case FieldKind::CheckBox:
            return checkBox(number, where);
        case FieldKind::Image:
            return button(number, where, image);
        default:
            return object(number, "/Sig", field_.flags & kFlagsOfAll, where,
                          text("/AP <</N ", put("", border_), " 0 R>>\r\n"));
    }
}

std::string FieldWidget::checkBox(int number, std::string_view where) {
    const char* const state = field_.value.empty() || field_.value == U"Off" ? "/Off" : "/Yes";
    const int off = put("", border_);
    const int on = put("", border_ + checkMark(frame_.box));
    return object(number, "/Btn", field_.flags & kFlagsOfAll, where,
                  text("/MK <<", kBorder, " /R ", rotation_, " /CA (4)>>\r\n/V ", state, "\r\n/AS ", state,
                       "\r\n/AP <</N <</Yes ", on, " 0 R /Off ", off, " 0 R>>>>\r\n"));
}

std::string FieldWidget::button(int number, std::string_view where, const std::optional<JpegImage>& image) {
    std::string look = text(kBorder, " /R ", rotation_, " /TP 1");  // the icon alone
    std::string resources;
    std::string content = border_;
    if (image) {
        const int picture = putPicture(*image);
        resources = text("<</XObject <</Im ", picture, " 0 R>>>>");
        append(look, " /I ", putIcon(resources, image->colour), " 0 R /IF <</SW /A /S /P>>");
        content += pictureContent(frame_.box, image->colour.width, image->colour.height);
    }
    const int appearance = put(resources, content);
    return object(number, "/Btn", (field_.flags & kFlagsOfAll) | kPushButton, where,
                  text("/MK <<", look, ">>\r\n/AP <</N ", appearance, " 0 R>>\r\n"));
}

int FieldWidget::putPicture(const JpegImage& image) {
    int mask = 0;
    if (image.transparent) {
        mask = update_.reserve();
        update_.put(mask, maskObject(mask, image));
    }
    const int picture = update_.reserve();
    update_.put(picture, imageObject(picture, image, mask));
    return picture;
}

// The picture in a form, from which viewers make the appearance anew.
int FieldWidget::putIcon(std::string_view resources, const JpegPlane& picture) {
    const int number = update_.reserve();
    const Frame frame{{0, 0, static_cast<double>(picture.width), static_cast<double>(picture.height)}, {}};
    const std::string content = text("q\n", picture.width, " 0 0 ", picture.height, " 0 0 cm\n/Im Do\nQ\n");
    update_.put(number, streamObject(appearanceHead(number, frame, resources), content, false));
    return number;
}

int FieldWidget::put(std::string_view resources, std::string_view content) {
    const int number = update_.reserve();
    update_.put(number, streamObject(appearanceHead(number, frame_, resources), content, false));
    return number;
}

}  // namespace varnpdf
