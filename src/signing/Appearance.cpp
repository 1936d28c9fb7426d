// The form XObjects of a visible signature as text.
#include "signing/Appearance.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "support/Text.h"
#include "writer/SectionTexts.h"

namespace varnpdf {
namespace {

struct Box {
    int width;
    int height;
};

// The form lies in page space: turned by a quarter, its sides change places.
Box formBox(const Appearance& form) {
    const bool quarter = rotationIndex(form.rotation) % 2 != 0;
    return quarter ? Box{form.height, form.width} : Box{form.width, form.height};
}

// Moves a layer back into the box after its turn.
Box translation(const Appearance& form) {
    switch (rotationIndex(form.rotation)) {
        case 1:
            return {form.height, 0};
        case 2:
            return {form.width, form.height};
        case 3:
            return {0, form.width};
        default:
            return {0, 0};
    }
}

/// A number with two digits behind the point, whatever the locale.
struct Hundredths {
    double value;
};

void appendPart(std::string& out, Hundredths number) {
    const long scaled = std::lround(number.value * 100);
    append(out, scaled / 100, '.', Digits{scaled % 100, 2});
}

constexpr int kIcon = 100;  // side of the /n1 layer

// A square layer, as large as the box allows.
void appendIcon(std::string& out, const Appearance& form, std::string_view layer) {
    const Hundredths scale{static_cast<double>(std::min(form.width, form.height)) / kIcon};
    const Box move = translation(form);
    append(out, "q ");
    appendPart(out, scale);
    append(out, " 0 0 ");
    appendPart(out, scale);
    append(out, ' ', move.width, ' ', move.height, " cm\r\n", rotationMatrix(form.rotation), " cm ", layer,
           " Do Q\r\n");
}

void appendLayer(std::string& out, const Appearance& form, std::string_view layer) {
    const Box move = translation(form);
    append(out, "q 1 0 0 1 ", move.width, ' ', move.height, " cm\r\n", rotationMatrix(form.rotation), " cm ", layer,
           " Do Q\r\n");
}

void appendImage(std::string& out, const Appearance& form) {
    const Box box = formBox(form);
    const Box move = translation(form);
    append(out, "q ", box.width, " 0 0 ", box.height, ' ', move.width, ' ', move.height, " cm\r\n",
           rotationMatrix(form.rotation), " cm /KorvImg Do Q \r\n");
}

constexpr std::array<std::string_view, 13> kFonts = {
    "Helvetica",   "Helvetica-Bold", "Helvetica-Oblique", "Helvetica-BoldOblique",
    "Times-Roman", "Times-Bold",     "Times-Italic",      "Times-BoldItalic",
    "Courier",     "Courier-Bold",   "Courier-Oblique",   "Courier-BoldOblique",
    "ZapfDingbats"};

constexpr std::string_view kQuestionMark =
    "% DSUnknown\r\n"
    "q\r\n"
    "1 G\r\n"
    "1 g\r\n"
    "0.1 0 0 0.1 9 0 cm\r\n"
    "0 J 0 j 4 M []0 d\r\n"
    "1 i\r\n"
    "0 g\r\n"
    "313 292 m\r\n"
    "313 404 325 453 432 529 c\r\n"
    "478 561 504 597 504 645 c\r\n"
    "504 736 440 760 391 760 c\r\n"
    "286 760 271 681 265 626 c\r\n"
    "265 625 l\r\n"
    "100 625 l\r\n"
    "100 828 253 898 381 898 c\r\n"
    "451 898 679 878 679 650 c\r\n"
    "679 555 628 499 538 435 c\r\n"
    "488 399 467 376 467 292 c\r\n"
    "313 292 l\r\n"
    "h\r\n"
    "308 214 170 -164 re\r\n"
    "f\r\n"
    "0.44 G\r\n"
    "1.2 w\r\n"
    "1 1 0.4 rg\r\n"
    "287 318 m\r\n"
    "287 430 299 479 406 555 c\r\n"
    "451 587 478 623 478 671 c\r\n"
    "478 762 414 786 365 786 c\r\n"
    "260 786 245 707 239 652 c\r\n"
    "239 651 l\r\n"
    "74 651 l\r\n"
    "74 854 227 924 355 924 c\r\n"
    "425 924 653 904 653 676 c\r\n"
    "653 581 602 525 512 461 c\r\n"
    "462 425 441 402 441 318 c\r\n"
    "287 318 l\r\n"
    "h\r\n"
    "282 240 170 -164 re\r\n"
    "B\r\n"
    "Q\r\n";

}  // namespace

int rotationIndex(int rotation) noexcept { return (rotation % 360 + 360) % 360 / 90; }

std::string_view rotationMatrix(int rotation) noexcept {
    constexpr std::array<std::string_view, 4> kMatrices = {"1 0 0 1 0 0", "0 1 -1 0 0 0", "-1 0 0 -1 0 0",
                                                           "0 -1 1 0 0 0"};
    return kMatrices[static_cast<std::size_t>(rotationIndex(rotation))];
}

std::string formObject(int number, const Appearance& form) {
    std::string content;
    std::string resources;
    if (form.image != 0) {
        append(resources, "/KorvImg ", form.image, " 0 R ");
        appendImage(content, form);
    }
    append(resources, "/n0 ", form.blank, " 0 R ");
    // On an image the additional layers do without the blank one.
    if (form.image == 0 || !form.layers) appendLayer(content, form, "/n0");
    if (form.layers) {
        append(resources, "/n1 ", form.question, " 0 R ");
        appendIcon(content, form, "/n1");
    }
    append(resources, "/n2 ", form.text, " 0 R");
    appendLayer(content, form, "/n2");
    if (form.layers) {
        append(resources, " /n3 ", form.blank, " 0 R");
        appendIcon(content, form, "/n3");
    }
    const Box box = formBox(form);
    std::string out;
    append(out, number, " 0 obj\r\n");
    append(out, "<< /Length ", content.size(), " /BBox [ 0 0 ", box.width, ' ', box.height,
           " ] /Resources << /ProcSet [ /PDF ] /XObject << ", resources, " >> >> \r\n");
    append(out, "/Type /XObject /Subtype /Form /FormType 1 /Matrix [ 1 0 0 1 0 0 ] >> \r\nstream\r\n", content,
           "\r\nendstream\r\n", "endobj\r\n");
    return out;
}

// A viewer fits the box of the appearance into the annotation's rectangle. On a page turned by a quarter that
// stretches it; the content undoes the stretch.
std::string normalObject(int number, const Appearance& form) {
    std::string content = "q 1 0 0 1 0 0 cm /FRM Do Q";
    if (rotationIndex(form.rotation) % 2 != 0) {
        const auto ratio = [](int a, int b) {
            constexpr long long kMillionths = 1'000'000;
            const long long scaled = a * kMillionths / b;
            return text(scaled / kMillionths, '.', Digits{scaled % kMillionths, 6});
        };
        content =
            text("q ", ratio(form.width, form.height), " 0 0 ", ratio(form.height, form.width), " 0 0 cm /FRM Do Q");
    }
    std::string out;
    append(out, number, " 0 obj\r\n");
    append(out, "<< /Subtype /Form /Length ", content.size(), " /BBox [ 0 0 ", form.width, ' ', form.height,
           " ] /Resources << /ProcSet [ /PDF /Text /ImageB /ImageC /ImageI ] /XObject << /FRM ", form.form,
           " 0 R >> >> >>\r\nstream\r\n", content, "\r\nendstream\r\n", "endobj\r\n");
    return out;
}

std::string blankObject(int number, const Appearance& form) {
    // zlib data of "% DSBlank."
    constexpr std::string_view kBlank("\x78\x9C\x53\x55\x70\x09\x76\xCA\x49\xCC\xCB\xD6\x03\x00\x0E\x7B\x02\xF3", 18);
    std::string out;
    append(out, number, " 0 obj\r\n");
    append(out, "<<\r\n/Filter /FlateDecode\r\n/Length ", kBlank.size(), "\r\n/Subtype /Form\r\n/BBox [ 0 0 ",
           form.width, ' ', form.height, " ]\r\n",
           "/Resources << /ProcSet [ /PDF /Text /ImageB /ImageC /ImageI ] >>\r\n",
           "/Type /XObject\r\n/FormType 1\r\n/Matrix [ 1 0 0 1 0 0 ]\r\n>>\r\nstream\r\n");
    append(out, kBlank, "\r\nendstream\r\nendobj", "\r\n");
    return out;
}

std::optional<std::string> questionObject(int number, const Appearance& /*form*/) {
    const auto data = deflated(kQuestionMark);
    if (!data) return std::nullopt;
    std::string out;
    append(out, number, " 0 obj\r\n");
    append(out, "<<\r\n/Filter /FlateDecode\r\n/Length ", data->size(), "\r\n/Subtype /Form\r\n/BBox [ 0 0 ", kIcon,
           ' ', kIcon, "]\r\n", "/Resources << /ProcSet [ /PDF ] >>\r\n",
           "/Type /XObject\r\n/FormType 1\r\n/Matrix [ 1 0 0 1 0 0 ]\r\n>>\r\nstream\r\n");
    append(out, *data, "\r\nendstream\r\nendobj", "\r\n");
    return out;
}

std::optional<std::string> textObject(int number, const Appearance& form, std::string_view content) {
    const auto data = deflated(content);
    if (!data) return std::nullopt;
    std::string out;
    append(out, number, " 0 obj\r\n");
    append(out, "<< \r\n /Type /XObject \r\n /Subtype /Form \r\n /BBox [ 0 0 ", form.width, ' ', form.height,
           " ] \r\n /Length ", data->size(), " \r\n /Filter/FlateDecode \r\n /Resources << \r\n    /Font << \r\n");
    for (std::size_t i = 0; i < kFonts.size(); ++i) {
        const bool symbols = kFonts[i] == "ZapfDingbats";
        append(out, "      /T", i + 1, "_0 << /Type /Font /Subtype /Type1 /BaseFont /", kFonts[i],
               symbols ? "" : " /Encoding /WinAnsiEncoding", " >> \r\n");
    }
    append(out, "    >> \r\n    /ProcSet [ /PDF/Text ] \r\n >> \r\n", " /FormType 1 \r\n",
           " /Matrix [ 1 0 0 1 0 0 ] \r\n>> \r\nstream\r\n", *data, "\r\nendstream\r\nendobj\r\n");
    return out;
}

std::string emptyObject(int number, const Appearance& form) {
    return text(number, " 0 obj\r\n", "<< \r\n/Matrix[", rotationMatrix(form.rotation),
                "]\r\n/Type /XObject \r\n   /FormType 1\r\n   /Length 0\r\n   /Resources <<\r\n   >>\r\n",
                "   /Subtype /Form\r\n   /BBox [0 0 0 0]\r\n>> \r\nstream\r\n\r\nendstream\r\nendobj\r\n");
}

}  // namespace varnpdf
