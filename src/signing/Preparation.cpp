// One preparation: checks, numbers, the order of writing and the byte range.
#include "signing/Preparation.h"

#include <algorithm>
#include <limits>

#include "inspection/Signatures.h"
#include "model/DictionaryEntry.h"
#include "model/Lookup.h"
#include "reader/Objects.h"
#include "reader/Pages.h"
#include "signing/Placement.h"
#include "support/Loggers.h"
#include "support/ResultText.h"
#include "syntax/Encoding.h"
#include "syntax/Reference.h"
#include "syntax/Text.h"
#include "varnpdf/result.h"

namespace varnpdf {
namespace {

constexpr std::size_t kTextLength = 256;
constexpr auto kMostBytes = static_cast<std::size_t>(std::numeric_limits<int>::max());
constexpr int kMostNumber = std::numeric_limits<int>::max() - 1000;

// The number that new objects begin with: /Size where it is not below the highest number in use, so that a file whose
// /Size equals that number gives it away. The numbers are fixed by the interface.
int firstNumberOf(const Document& document) {
    const int size = document.newest ? document.newest->GetSize() : 0;
    const int highest = std::min(document.objects.maxObjectNumber(), kMostNumber);
    return size >= highest ? size : highest + 1;
}

}  // namespace

Preparation::Preparation(Document& document, const SigningRequest& request)
    : document_(document),
      request_(request),
      firstNumber_(firstNumberOf(document)),
      update_(document, {.firstLine = Update::FirstLine::Always, .firstNumber = firstNumber_}) {}

int Preparation::run() {
    logDebug(loggers::sign, "entering CPdfSign::DummySign");
    using Step = int (Preparation::*)();
    for (const Step step :
         {&Preparation::checkTexts, &Preparation::examineImage, &Preparation::collectNames, &Preparation::openTrailer,
          &Preparation::updateMetadata, &Preparation::findPage, &Preparation::decideForm, &Preparation::reserve}) {
        if (const int code = (this->*step)(); code != VARNPDF_OK) return code;
    }
    updateInfo();
    updateForm();
    updateCatalogue();
    logDebug(loggers::sign, "CRLF nach %%eof angefuegt!");
    for (const Step step : {&Preparation::updateAnnots, &Preparation::writeLocks, &Preparation::writeObjects,
                            &Preparation::closeSection, &Preparation::fillByteRange}) {
        if (const int code = (this->*step)(); code != VARNPDF_OK) return code;
    }
    return VARNPDF_OK;
}

int Preparation::checkTexts() {
    for (const char* const text : {request_.location, request_.reason}) {
        if (const int code = checkLiteral(viewOf(text), kTextLength); code != VARNPDF_OK) return code;
    }
    // Escaped as it is written: an overlong UTF-8 sequence can become a parenthesis.
    name_ = escapedLiteral(latin1FromUtf8(viewOf(request_.name)).text);
    return checkLiteral(viewOf(request_.signDate), kMostBytes);
}

int Preparation::examineImage() { return request_.skipImageCheck ? VARNPDF_OK : loadPicture(true); }

// Decoding and encoding a picture takes longer than all the rest, so that it is done once.
int Preparation::loadPicture(bool examine) {
    if (!request_.hasPicture() || picture_) return VARNPDF_OK;
    picture_ = loadImage(request_.imageFile, examine, loggers::sign);
    return picture_ ? VARNPDF_OK : VARNPDF_IMAGE_UNREADABLE;
}

int Preparation::collectNames() {
    signatureFields(document_);
    names_ = signatureFieldNames(document_);
    std::vector<std::string> sorted = names_;
    std::sort(sorted.begin(), sorted.end());
    if (std::adjacent_find(sorted.begin(), sorted.end()) == sorted.end()) {
        taken_ = names_;
        addNamesBehindOddStrings();
        return VARNPDF_OK;
    }
    logError(loggers::sign, logtext::DOUBLE_FIELD_NAME);
    return VARNPDF_DOUBLE_FIELD_NAME;
}

// The list of names is read by the letter of the interface, which may lose a name behind a string; the new field must not
// get that name again.
void Preparation::addNamesBehindOddStrings() {
    document_.objects.forEach([&](int, const CPdfObj& object) {
        const std::string_view text = object.content();
        if (contains(text, "/Sig") && contains(lookUpValue(text, "/FT"), "/Sig")) {
            taken_.emplace_back(lookUpValue(text, "/T"));
        }
    });
}

int Preparation::openTrailer() {
    const CPdfTrailer* const trailer = document_.newest.get();
    if (trailer == nullptr || !document_.update) return VARNPDF_TRAILER_INCOMPLETE;
    if (document_.encrypted) return VARNPDF_PDF_ENCRYPTED;
    catalogue_ = referencedObject(document_, trailer->root());
    if (catalogue_ == nullptr || catalogue_->content().empty()) return VARNPDF_TRAILER_INCOMPLETE;
    const int highest = document_.objects.maxObjectNumber();
    return std::max(trailer->GetSize(), highest) > kMostNumber ? VARNPDF_TRAILER_INCOMPLETE : VARNPDF_OK;
}

int Preparation::findPage() {
    CPdfObj* const root = pagesRoot(document_, *catalogue_);
    if (root == nullptr) return VARNPDF_TRAILER_INCOMPLETE;
    const std::string_view value = lookUpValue(root->content(), "/Count");
    const auto reference = isReference2(value);
    auto count = reference ? referencedNumber(document_, reference->number) : std::nullopt;
    // A reference that leads to no number still says that there are pages; the page wanted may be there.
    if (!count) count = Cursor(value).takeInt();
    if (!count) return VARNPDF_PAGE_COUNT_MISSING;
    if (*count <= 0) return VARNPDF_NO_PAGE;
    const auto& pages = pagesBelow(document_, *root);
    const int index = request_.page < 0 || request_.page >= *count ? *count - 1 : request_.page;
    if (static_cast<std::size_t>(index) >= pages.size()) return VARNPDF_PAGE_NOT_FOUND;
    page_ = pages[static_cast<std::size_t>(index)];
    const auto [box, rotation] = pageAttributes(document_, *page_);
    rotation_ = rotation;
    if (!request_.visible()) return VARNPDF_OK;
    const auto rect = signatureRect(rotation, box, request_.size, request_.posMode, request_.position);
    if (!rect) return VARNPDF_OUTSIDE_PAGE;
    rect_ = *rect;
    return VARNPDF_OK;
}

// Every number gets a place in the table before anything is written. The widget and what is numbered relative to it
// come last; the cross-reference stream of the update takes the number behind them.
int Preparation::reserve() {
    numbers_.annots = update_.reserve();
    if (!hasForm_) {
        numbers_.fields = update_.reserve();
        numbers_.form = update_.reserve();
    }
    if (needsFonts_) {
        numbers_.helvetica = update_.reserve();
        numbers_.symbols = update_.reserve();
        numbers_.encoding = update_.reserve();
    }
    if (request_.lock) {
        numbers_.fieldLock = update_.reserve();
        numbers_.lockParams = update_.reserve();
    }
    const int picture = request_.hasPicture() ? 1 : 0;
    int count = request_.visible() ? 6 + (request_.layers ? 1 : 0) + picture + (hasMask() ? 1 : 0) : 3;
    numbers_.metadata = metadata_ ? update_.next() + count++ : 0;
    // Hosts count on the documented budget, which names both additional layers.
    constexpr int kVisibleBudget = 7;
    numbers_.widget = update_.reserve(request_.visible() ? std::max(count, kVisibleBudget) : count);
    for (int number = numbers_.annots; number < update_.next(); ++number) {
        CPdfObj* const reserved = document_.objects.create(number);
        if (reserved != nullptr) reserved->SetObjNum(number);
        if (reserved != nullptr) reserved->SetGenNumber(0);
    }
    logReserved();
    return VARNPDF_OK;
}

void Preparation::logReserved() const {
    if (request_.visible()) {
        logDebug(loggers::sign, hasForm_ ? "Sichtb. Signatur: Lasse Platz fuer 8 neue Objekte "
                                           "(Annots-Array,SignAnnotWidget,SignDict,APDict, n0,n1,n2,n3)"
                                         : "Sichtbare Signatur: Lasse Platz fuer 8 neue Objekte "
                                           "(Annots-Array,SignAnnotWidget,SignDict,APDict, n0,n1,n2,n3)");
    } else {
        logDebug(loggers::sign, hasForm_ ? "Unsichtb. Signatur: Lasse Platz fuer 3 neue Objekte "
                                           "(Annots-Array,SignAnnotWidget,SignDict)"
                                         : "Unsichtbare Signatur: Lasse Platz fuer 3 neue Objekte "
                                           "(Annots-Array,SignAnnotWidget,SignDict)");
    }
    if (hasMask()) logDebug(loggers::sign, "Lasse einen weiteren Platz, für transpPNG-Maske");
    if (metadata_) logDebug(loggers::sign, "Lasse einen weiteren Platz, da Metadata-Objekt neu erzeugt wird.");
}

int Preparation::writeLocks() {
    if (!request_.lock) return VARNPDF_OK;
    logDebug(loggers::sign, "XREF Locking-Objekte erstellen (sigfieldlock und TransformParams)");
    logDebug(loggers::sign, "Erzeuge Lock-Objekt 1 (signature field lock dict)");
    update_.put(numbers_.fieldLock, text(numbers_.fieldLock, " 0 obj\r\n% neues sig field lock dict-Objekt\r\n<<\r\n",
                                         "/Type /SigFieldLock\r\n/Action /All\r\n/P 1\r\n>>\r\nendobj\r\n"));
    logDebug(loggers::sign, "Erzeuge Lock-Objekt 2 (Transform-Params)");
    update_.put(numbers_.lockParams, text(numbers_.lockParams, " 0 obj\r\n<<\r\n",
                                          "/Type /TransformParams\r\n/Action /All\r\n/V /1.2\r\n>>\r\nendobj\r\n"));
    return VARNPDF_OK;
}

SignatureObjects Preparation::objects() const {
    SignatureObjects out{.widget = {.ref = {numbers_.widget, 0},
                                    .page = {page_->GetObjNum(), page_->GetGenNumber()},
                                    .rect = rect_,
                                    .fieldNumber = static_cast<int>(names_.size()) + 1},
                         .value = {.ref = {numbers_.widget + 1, 0},
                                   .reason = viewOf(request_.reason),
                                   .location = viewOf(request_.location),
                                   .name = name_,
                                   .date = viewOf(request_.signDate),
                                   .etsi = request_.etsi,
                                   .contentsSize = request_.contentsSize},
                         .visible = request_.visible(),
                         .size = request_.size,
                         .rotation = rotation_,
                         .layers = request_.layers,
                         .picture = picture_ ? &*picture_ : nullptr,
                         .fields = request_.fields};
    if (request_.lock) {
        out.widget.lock = ObjectRef{numbers_.fieldLock, 0};
        out.value.reference = SignatureReference{"FieldMDP", numbers_.lockParams, "MD5", catalogue_->GetObjNum()};
    }
    if (metadata_) out.metadata = *metadata_;
    return out;
}

int Preparation::writeObjects() {
    if (document_.length + std::size_t{2} * request_.contentsSize > kMostBytes) return VARNPDF_BYTE_RANGE_TOO_LONG;
    if (const int code = loadPicture(false); code != VARNPDF_OK) return code;
    update_.writeWaiting();
    const auto written = appendSignature(update_.tail(), objects(), taken_);
    if (!written) {
        logError(loggers::sign, logtext::COMPRESSING_FAILED);
        return VARNPDF_COMPRESSING_FAILED;
    }
    int number = numbers_.widget;
    for (const std::size_t offset : written->offsets) {
        update_.record(number, 0, offset, number > numbers_.widget);
        ++number;
    }
    room_ = written->room;
    return VARNPDF_OK;
}

int Preparation::closeSection() {
    const bool isStream = update_.closesWithStream(Update::Section::LikeDocument);
    if (isStream) {
        logDebug(loggers::sign, "xrefStream!");
        logDebug(loggers::sign, "2019er: /W einlesen aus altem Trailer !!!");
        if (document_.update->id().empty()) logDebug(loggers::sign, "ID des Dokuments ist leer, setze [] ein.");
    }
    const int code = update_.close({.joinRuns = false, .longest = kMostBytes});
    if (isStream && code == VARNPDF_OK) logDebug(loggers::sign, "Stream gepackt");
    return code == VARNPDF_PDF_MAXSIZE ? VARNPDF_BYTE_RANGE_TOO_LONG : code;
}

// The numbers replace blanks in place, so that no other byte moves.
int Preparation::fillByteRange() {
    const std::size_t total = update_.position();
    const std::string range = text(" 0 ", room_.begin, ' ', room_.end, ' ', total - room_.end);
    if (range.size() > SignatureRoom::kByteRange || total > kMostBytes) return VARNPDF_BYTE_RANGE_TOO_LONG;
    update_.tail().text.replace(room_.byteRange - document_.length, range.size(), range);
    return VARNPDF_OK;
}

}  // namespace varnpdf
