// varnpdf field: new fields in a form.
#include <algorithm>
#include <array>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "command.h"
#include "document.h"
#include "measure.h"
#include "output.h"

namespace {

constexpr const char* kFooter =
    R"(The place is the lower left corner and the size in the page's own space, in points or with a unit: mm, cm, in, pt.
Dots in the name separate partial names. A form is made where the document has none. The field is added as an update:
the bytes of FILE stay as they are, and signatures made before stay intact. A document that a signature locks, a name
that is taken and a place outside of the page are refused, and then nothing is written.

Types:
  text       "varnpdf fill" and viewers fill it; --value is its first value
  image      a button that shows the picture of --image, whole and as large as fits
  checkbox   not checked, or checked with --value Yes
  signature  an empty signature field

Examples:
  varnpdf field add form.pdf -o form.pdf --name person.name --type text --rect 72,700,200,20
  varnpdf field add in.pdf -o out.pdf --name note --type text --page last --rect 2cm,2cm,8cm,3cm --multiline
  varnpdf field add in.pdf -o out.pdf --name logo --type image --rect 72,600,100,50 --image logo.png)";

// In the order of the library's numbers.
constexpr std::array<const char*, 4> kTypes = {"text", "image", "checkbox", "signature"};
constexpr std::array<const char*, 3> kFamilies = {"helvetica", "times", "courier"};
constexpr std::array<const char*, 4> kStyles = {"regular", "bold", "italic", "bold-italic"};

struct Options {
    std::string in;
    std::string out;
    std::string name;
    std::string type;
    std::string page = "1";
    std::string rectangle;
    std::string value;
    std::string image;
    std::string tooltip;
    std::string family = kFamilies[0];
    std::string style = kStyles[0];
    int size = 0;
    bool multiline = false;
    bool readOnly = false;
    bool required = false;
};

template <std::size_t N>
int indexIn(const std::array<const char*, N>& names, const std::string& name) {
    return static_cast<int>(std::find(names.begin(), names.end(), name) - names.begin());
}

template <std::size_t N>
std::vector<std::string> listed(const std::array<const char*, N>& names) {
    return {names.begin(), names.end()};
}

bool optionsFit(const Options& options) {
    const auto onlyFor = [&](bool given, const char* option, const char* type) {
        if (!given || options.type == type) return true;
        cli::complain(option, std::string("this is for fields of the type ") + type);
        return false;
    };
    if (!options.value.empty() && options.type != "text" && options.type != "checkbox") {
        cli::complain("--value", "an image or signature field takes none");
        return false;
    }
    return onlyFor(!options.image.empty(), "--image", "image") && onlyFor(options.multiline, "--multiline", "text");
}

std::optional<PdfNewField> fieldOf(const Options& options) {
    const std::optional<int> page = cli::pageOf(options.page);
    const auto place = page ? cli::rectangleOf(options.rectangle) : std::nullopt;
    if (!place) return std::nullopt;
    PdfNewField field{};
    field.kind = indexIn(kTypes, options.type);
    field.name = options.name.c_str();
    field.page = *page;
    field.x = (*place)[0];
    field.y = (*place)[1];
    field.width = (*place)[2];
    field.height = (*place)[3];
    field.flags = (options.multiline ? CPdfFormField::Multiline : 0) |
                  (options.readOnly ? CPdfFormField::ReadOnly : 0) | (options.required ? CPdfFormField::Required : 0);
    field.text.family = indexIn(kFamilies, options.family);
    field.text.style = indexIn(kStyles, options.style);
    field.text.size = options.size;
    field.tooltip = options.tooltip.c_str();
    field.value = options.value.c_str();
    field.image = options.image.empty() ? nullptr : options.image.c_str();
    return field;
}

int run(const Options& options) {
    if (!optionsFit(options)) return cli::kUsage;
    const std::optional<PdfNewField> field = fieldOf(options);
    if (!field) return cli::kUsage;
    CPdf pdf;
    if (cli::openDocument(pdf, options.in) != 0) return cli::kAllFailed;
    if (const int code = CPdfFormField::AddFormFields(&pdf, &*field, 1); code != 0) {
        const bool ofImage = code == VARNPDF_IMAGE_UNREADABLE;
        cli::complain(ofImage ? options.image : options.in + ": " + options.name, code);
        return cli::kAllFailed;
    }
    CPdfForm form(&pdf);
    cli::warnIfSigned(form, options.in);
    const std::string_view bytes(pdf.GetByteStream(), static_cast<std::size_t>(pdf.GetByteStreamLen()));
    return cli::writeFile(options.out, bytes) ? cli::kAllGood : cli::kAllFailed;
}

}  // namespace

cli::Command cli::addField(const Parser& program) {
    const auto options = std::make_shared<Options>();
    const Parser parser = program.command("field", "Adds fields to a form");
    parser.requireCommand();
    const Parser add = parser.command("add", "Adds a field");
    add.option("FILE", options->in, "PDF file").required().shownAs(" ");
    add.option("-o,--output", options->out, "File to write; may be FILE").required().shownAs("OUT");
    add.option("--name", options->name, "Full name of the field").required().shownAs("NAME");
    add.option("--type", options->type, "text, image, checkbox or signature")
        .required()
        .among(listed(kTypes))
        .shownAs("TYPE");
    add.option("--page", options->page, "Page that shows the field: from 1 (without it), or \"last\"").shownAs("N");
    add.option("--rect", options->rectangle, "Place and size").required().shownAs("X,Y,W,H");
    add.option("--value", options->value, "First value").shownAs("TEXT");
    add.option("--image", options->image, "PNG or JPEG of an image field").shownAs("FILE");
    add.option("--tooltip", options->tooltip, "Text that viewers show at the field").shownAs("TEXT");
    add.option("--font", options->family, "helvetica (without it), times or courier")
        .among(listed(kFamilies))
        .shownAs("FONT");
    add.option("--style", options->style, "regular (without it), bold, italic or bold-italic")
        .among(listed(kStyles))
        .shownAs("STYLE");
    add.option("--size", options->size, "Font size in points; without it as large as fits")
        .between(1, 300)
        .shownAs("N");
    add.flag("--multiline", options->multiline, "Text of several lines");
    add.flag("--read-only", options->readOnly, "Cannot be filled");
    add.flag("--required", options->required, "Must be filled");
    add.footer(kFooter);
    return {parser, [options] { return run(*options); }};
}
