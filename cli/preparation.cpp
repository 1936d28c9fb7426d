// Options of a preparation and how they become one.
#include "preparation.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <fstream>

#include "command.h"
#include "document.h"
#include "encode.h"
#include "varnpdf/PdfText.h"

namespace {

constexpr std::size_t kLongestText = 256;  // bytes as written

// The position in these lists is the library's number.
const std::vector<std::string> kFonts = {"helvetica", "times", "courier"};
const std::vector<std::string> kStyles = {"regular", "bold", "italic", "bold-italic"};

int numberOf(const std::vector<std::string>& names, const std::string& name) {
    return static_cast<int>(std::find(names.begin(), names.end(), name) - names.begin());
}

bool fits(const std::string& what, std::size_t length) {
    if (length <= kLongestText) return true;
    cli::complain(what, "this text is too long: it takes " + std::to_string(length) + " bytes, and there is room for " +
                            std::to_string(kLongestText));
    return false;
}

/// A text of the signature dictionary as it is written.
bool takeTextString(const char* what, const std::string& utf8, std::string& out) {
    std::optional<std::string> text = cli::toTextString(what, utf8);
    if (!text || !fits(what, text->size())) return false;
    out = std::move(*text);
    return true;
}

/// The given date, or now.
std::optional<std::string> signingTime(const std::string& given) {
    auto date = given.empty() ? CPdfText::Now() : CPdfText::CompleteDate(given);
    if (!date) {
        cli::complain("--date",
                      "this is no date such as 2026-11-15T02:33:51+01:00 or D:20261115023351+01'00': " + given);
    }
    return date;
}

bool isPicture(const std::string& path) {
    constexpr std::string_view kPng("\x89PNG\r\n\x1A\n", 8);
    constexpr std::string_view kJpeg("\xFF\xD8\xFF");
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        cli::complain(path, std::strerror(errno));
        return false;
    }
    std::string start(kPng.size(), '\0');
    file.read(start.data(), static_cast<std::streamsize>(start.size()));
    if (start == kPng || start.starts_with(kJpeg)) return true;
    cli::complain(path, "this is neither a PNG nor a JPEG image");
    return false;
}

void addVisible(const cli::Parser& parser, cli::PreparationOptions& options) {
    cli::addPlacementOptions(parser, options.placement);
    cli::addTextPlaceOptions(parser, options.at);
    const cli::Option size = parser.added("--size");
    parser.option("--image", options.image, "Background (PNG, also with transparency, or JPEG)")
        .needs(size)
        .shownAs("FILE");
    parser.option("--text", options.texts, "A line of text, may be repeated; without a label: =VALUE")
        .single()
        .needs(size)
        .shownAs("LABEL=VALUE");
    parser.option("--font", options.font, "helvetica (without it), times, courier").among(kFonts).shownAs("FONT");
    parser.option("--style", options.style, "regular (without it), bold, italic, bold-italic")
        .among(kStyles)
        .shownAs("STYLE");
    parser.option("--font-size", options.fontSize, "Points; without it the largest size that fits")
        .between(1, 1000)
        .shownAs("N");
}

}  // namespace

void cli::addPreparationOptions(const Parser& parser, PreparationOptions& options) {
    parser.option("IN", options.file, "PDF file").required().shownAs(" ");
    parser.option("--subfilter", options.subFilter, "cades (PAdES baseline, without it) or pkcs7")
        .among({"cades", "pkcs7"})
        .shownAs("KIND");
    addVisible(parser, options);
    parser.option("--reason", options.reason, "Why it is signed").shownAs("TEXT");
    parser.option("--location", options.location, "Where it is signed").shownAs("TEXT");
    parser.option("--name", options.name, "Who signs; without it what the certificate says").shownAs("TEXT");
    parser.option("--date", options.date, "Signing time, ISO 8601 or PDF date; without it now").shownAs("DATE");
    parser.flag("--lock", options.lock, "The signature locks the fields of the document");
}

std::optional<cli::Preparation> cli::Preparation::from(const PreparationOptions& options) {
    const std::optional<Placement> placement = placementOf(options.placement);
    const std::optional<std::string> date = signingTime(options.date);
    const std::optional<TextPlace> at = textPlaceOf(options.at);
    if (!placement || !date || !at) return std::nullopt;
    Preparation out;
    out.file_ = options.file;
    out.cades_ = options.subFilter == "cades";
    out.placement_ = *placement;
    if (options.at.text) out.at_ = *at;
    out.image_ = options.image;
    out.font_ = numberOf(kFonts, options.font);
    out.style_ = numberOf(kStyles, options.style);
    out.fontSize_ = options.fontSize;
    out.date_ = *date;
    out.lock_ = options.lock;
    if (!out.takeTexts(options) || (!out.image_.empty() && !isPicture(out.image_))) return std::nullopt;
    return out;
}

bool cli::Preparation::takeTexts(const PreparationOptions& options) {
    if (!takeTextString("--reason", options.reason, reason_)) return false;
    if (!takeTextString("--location", options.location, location_)) return false;
    const std::optional<std::string> name = toName("--name", options.name);
    if (!name || !fits("--name", name->size())) return false;
    name_ = *name;
    shownName_ = options.name;
    shownReason_ = options.reason;
    defaultLines_ = placement_.visible() && options.texts.empty() && image_.empty();
    return std::all_of(options.texts.begin(), options.texts.end(), [this](const std::string& text) {
        const std::size_t sign = text.find('=');
        if (sign != std::string::npos) return addLine(text.substr(0, sign), text.substr(sign + 1));
        complain("--text", "there is no \"=\" between label and value: " + text);
        return false;
    });
}

bool cli::Preparation::addLine(const std::string& label, const std::string& value) {
    const std::optional<std::string> shownLabel = toWinAnsi("--text", label);
    const std::optional<std::string> shownValue = toWinAnsi("--text", value);
    if (!shownLabel || !shownValue) return false;
    if (!fits("--text", shownLabel->size()) || !fits("--text", shownValue->size())) return false;
    if (label.find('%') != std::string::npos) {
        complain("--text", "a label must not contain \"%\": " + label);
        return false;
    }
    if ((label + value).find_first_of("()") != std::string::npos) {
        complain("--text", "warning: parentheses are shown as blanks: " + label + "=" + value);
    }
    FormfieldInfo_tag line{};
    line.family = font_;
    line.style = style_;
    line.size = fontSize_;
    shownLabel->copy(line.label, kLongestText);
    shownValue->copy(line.value, kLongestText);
    lines_.push_back(line);
    return true;
}

void cli::Preparation::nameSigner(const std::string& name) {
    if (!name_.empty() || !isName(name) || name.size() > kLongestText) return;
    name_ = toName("--name", name).value_or("");
    shownName_ = name;
}

/// An empty box would tell nobody that the document is signed.
bool cli::Preparation::addDefaultLines() {
    defaultLines_ = false;
    const std::string& d = date_;  // D:20261115023351+01'00'
    const std::string day = d.substr(2, 4) + "-" + d.substr(6, 2) + "-" + d.substr(8, 2);
    const std::string time = d.substr(10, 2) + ":" + d.substr(12, 2) + ":" + d.substr(14, 2);
    const std::string zone = d.substr(16, 3) + ":" + d.substr(20, 2);
    return (shownName_.empty() || addLine("Signed by", shownName_)) && addLine("Date", day + " " + time + " " + zone) &&
           (shownReason_.empty() || addLine("Reason", shownReason_));
}

/// The library takes the last page for one that is not there, and measures from 0 0 wherever the page's box begins.
bool cli::Preparation::settlePlace() {
    if ((placement_.page <= 0 && !placement_.visible()) || !boxNote_.empty()) return true;
    CPdf pdf;
    if (openDocument(pdf, file_) != 0) return false;
    if (at_) {
        const std::optional<Placement> placed = placedAtText(placement_, *at_, pdf, file_);
        if (placed) placement_ = *placed;
        return placed.has_value();
    }
    const std::vector<PdfPage> pages = CPdfPages::All(pdf);
    const int last = static_cast<int>(pages.size()) - 1;
    const int index = placement_.page < 0 ? last : placement_.page;
    if (index > last || last < 0) {
        if (placement_.page <= 0) return true;  // the library knows better what is missing
        complain(file_, "there is no page " + std::to_string(placement_.page + 1));
        return false;
    }
    const PdfPage& page = pages[static_cast<std::size_t>(index)];
    int box[4] = {};
    for (int i = 0; i < 4; ++i) box[i] = static_cast<int>(page.mediaBox[i]);
    if (!placement_.visible() || (box[0] == 0 && box[1] == 0)) return true;
    placement_.position = CPdfPages::FromOrigin(placement_.position, page);
    boxNote_ = "; the page's box begins at " + std::to_string(box[0]) + ' ' + std::to_string(box[1]) +
               ", and signatures are only placed between 0 0 and " + std::to_string(box[2] - box[0]) + ' ' +
               std::to_string(box[3] - box[1]);
    return true;
}

bool cli::Preparation::run(CPdfSign& sign, unsigned int room) {
    if (!settlePlace() || (defaultLines_ && !addDefaultLines())) return false;
    sign.setUserETSISubFilter(cades_);
    const int code =
        sign.SignPDFFile(file_.data(), placement_.page, placement_.position.mode, placement_.position.x,
                         placement_.position.y, placement_.width, placement_.height, 0, reason_.data(),
                         location_.data(), name_.data(), date_.data(), room, false, 0, image_.empty() ? 0 : 1,
                         image_.data(), lines_.data(), static_cast<int>(lines_.size()), lock_ ? 1 : 0, false);
    if (code == VARNPDF_OUTSIDE_PAGE && !boxNote_.empty()) {
        complain(file_, varnpdf_message(code) + boxNote_ + " (" + std::to_string(code) + ')');
    } else if (code != 0) {
        complain(file_, code);
    }
    return code == 0;
}

std::string_view cli::preparedBytes(const CPdfSign& sign) {
    return {reinterpret_cast<const char*>(sign.GetPreparedDocument()), sign.GetPreparedLength()};
}
