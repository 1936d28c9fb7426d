// One preparation: checks, numbers, the order of writing and the byte range.
#include "signing/Preparation.h"

#include <algorithm>
#include <cstring>
#include <fstream>
#include <limits>
#include <memory>

#include "model/DictionaryEntry.h"
#include "model/ObjectTable.h"
#include "reader/SectionText.h"
#include "signing/SignatureParts.h"
#include "support/ResultText.h"
#include "syntax/Encoding.h"
#include "syntax/Reference.h"
#include "syntax/Text.h"
#include "varnpdf/PdfHelper.h"
#include "varnpdf/result.h"
#include "writer/SectionTexts.h"

namespace varnpdf {
namespace {

constexpr int kTextLength = 256;

std::string escapedName(const char* name) {
    const std::size_t length = name == nullptr ? 0 : std::strlen(name);
    std::string out(2 * length + 1, '\0');
    if (length > 0) CPdfHelper::CreateLiteralEscapeSeq(name, out.data());
    out.resize(std::strlen(out.c_str()));
    return out;
}

}  // namespace

int Preparation::run() {
    logDebug(logger_, "entering CPdfSign::DummySign");
    if (request_.lock) lock_.set_use_locking(1);
    using Step = int (Preparation::*)();
    for (const Step step :
         {&Preparation::checkTexts, &Preparation::examineImage, &Preparation::collectNames, &Preparation::openTrailer,
          &Preparation::updateMetadata, &Preparation::findPage, &Preparation::decideForm}) {
        if (const int code = (this->*step)(); code != VARNPDF_OK) return code;
    }
    reserve();
    updateInfo();
    updateForm();
    updateAnnots();
    writeLocks();
    updateCatalogue();
    if (const int code = writeObjects(); code != VARNPDF_OK) return code;
    return fillByteRange();
}

int Preparation::checkTexts() {
    if (const int code = CPdfHelper::CheckThis(request_.location, kTextLength); code != VARNPDF_OK) return code;
    if (const int code = CPdfHelper::CheckThis(request_.reason, kTextLength); code != VARNPDF_OK) return code;
    // The escaper leaves the first byte and a byte behind a backslash alone; a name can still break out.
    name_ = escapedName(request_.name);
    // What counts is the text as it is written: an overlong UTF-8 sequence can become a parenthesis.
    const std::string written = latin1FromUtf8(name_).text;
    for (const char* const text : {written.c_str(), static_cast<const char*>(request_.signDate)}) {
        if (const int code = CPdfHelper::CheckThis(text, std::numeric_limits<int>::max()); code != VARNPDF_OK)
            return code;
    }
    return VARNPDF_OK;
}

int Preparation::examineImage() { return request_.skipImageCheck ? VARNPDF_OK : loadPicture(true); }

// Decoding and encoding a picture takes longer than all the rest, so that it is done once.
int Preparation::loadPicture(bool examine) {
    if (!request_.hasPicture() || picture_) return VARNPDF_OK;
    picture_ = loadImage(request_.imageFile, examine, logger_);
    return picture_ ? VARNPDF_OK : VARNPDF_IMAGE_UNREADABLE;
}

int Preparation::collectNames() {
    pdf_.PdfGetNumSignatures();
    pdf_.create_vectorlist_of_signatures(names_);
    info_.SetSigNum(static_cast<int>(names_.size()) + 1);
    std::vector<std::string> sorted = names_;
    std::sort(sorted.begin(), sorted.end());
    if (std::adjacent_find(sorted.begin(), sorted.end()) == sorted.end()) return VARNPDF_OK;
    logError(logger_, logtext::DOUBLE_FIELD_NAME);
    return VARNPDF_DOUBLE_FIELD_NAME;
}

int Preparation::openTrailer() {
    const CPdfTrailer* const trailer = pdf_.GetLastTrailer();
    if (trailer == nullptr || pdf_.GetUpdateTrailer() == nullptr) return VARNPDF_TRAILER_INCOMPLETE;
    if (pdf_.PdfIsEncrypted() == 1) return VARNPDF_PDF_ENCRYPTED;
    catalogue_ = referencedObject(documentOf(pdf_), trailer->root());
    if (catalogue_ == nullptr || catalogue_->content().empty()) return VARNPDF_TRAILER_INCOMPLETE;
    // A file whose /Size equals its highest number keeps the number it gives away.
    constexpr int kMostNumber = std::numeric_limits<int>::max() - 1000;
    const int highest = pdf_.get_max_obj_num_from_map();
    if (std::max(trailer->GetSize(), highest) > kMostNumber) return VARNPDF_TRAILER_INCOMPLETE;
    numbers_.next = trailer->GetSize() >= highest ? trailer->GetSize() : highest + 1;
    pdf_.SetObjNum(numbers_.next);
    return VARNPDF_OK;
}

int Preparation::findPage() {
    CPdfObj* const root = referencedObject(documentOf(pdf_), entryValue(catalogue_->content(), "/Pages"));
    if (root == nullptr) return VARNPDF_TRAILER_INCOMPLETE;
    const std::string_view value = entryValue(root->content(), "/Count");
    const auto reference = isReference2(value);
    auto count = reference ? referencedNumber(documentOf(pdf_), reference->number) : std::nullopt;
    // A reference that leads to no number still says that there are pages; the page wanted may be there.
    if (!count) count = Cursor(value).takeInt();
    if (!count) return VARNPDF_PAGE_COUNT_MISSING;
    if (*count <= 0) return VARNPDF_NO_PAGE;
    const int index = request_.page < 0 || request_.page >= *count ? *count - 1 : request_.page;
    page_ = pdf_.GetPdfPageObject(root, index, pageBox_, &rotation_);
    if (page_ == nullptr) return VARNPDF_PAGE_NOT_FOUND;
    if (!request_.visible()) return VARNPDF_OK;
    int size[2] = {request_.size[0], request_.size[1]};
    int position[2] = {request_.position[0], request_.position[1]};
    const int fits = CPdfHelper::GetSignaturePos(rotation_, pageBox_, size, request_.posMode, position, rect_);
    return fits == 1 ? VARNPDF_OK : VARNPDF_OUTSIDE_PAGE;
}

CPdfObj& Preparation::changed(CPdfObj& original) {
    const auto [it, added] = changed_.try_emplace(original.GetObjNum());
    if (added) it->second.CopyFrom(&original);
    return it->second;
}

CPdfObj* Preparation::changedReference(std::string_view value) {
    CPdfObj* const original = referencedObject(documentOf(pdf_), value);
    return original == nullptr || original->content().empty() ? nullptr : &changed(*original);
}

void Preparation::addNew(int number, std::string text) { new_[number] = std::move(text); }

// Every number gets a place in the table before anything is written. The widget and what is numbered relative to it
// come last; the cross-reference stream of the update takes the number behind them.
void Preparation::reserve() {
    int& next = numbers_.next;
    numbers_.annots = next++;
    if (!hasForm_) {
        numbers_.fields = next++;
        numbers_.form = next++;
    }
    if (needsFonts_) {
        numbers_.helvetica = next++;
        numbers_.symbols = next++;
        numbers_.encoding = next++;
    }
    if (lock_.get_use_locking()) {
        numbers_.fieldLock = next++;
        numbers_.lockParams = next++;
    }
    numbers_.widget = next;
    const int image = request_.hasPicture() ? 1 : 0;
    next += request_.visible() ? 6 + (request_.layers ? 1 : 0) + image + (hasMask() ? 1 : 0) : 3;
    if (metadata_) numbers_.metadata = next++;
    // Hosts count on the documented budget, which names both additional layers.
    constexpr int kVisibleBudget = 7;
    if (request_.visible()) next = std::max(next, numbers_.widget + kVisibleBudget);
    for (int number = numbers_.annots; number < next; ++number) {
        if (pdf_.get_pdf_obj_from_map(number) != nullptr) continue;
        auto object = std::make_unique<CPdfObj>(number, 0, -1, -1);
        pdf_.set_pdf_obj_to_map(number, object.get());
        // A table that is full takes no more, and the object stays ours.
        if (pdf_.get_pdf_obj_from_map(number) == object.get()) static_cast<void>(object.release());
    }
    logReserved();
}

void Preparation::logReserved() const {
    if (request_.visible()) {
        logDebug(logger_, hasForm_ ? "Sichtb. Signatur: Lasse Platz fuer 8 neue Objekte "
                                     "(Annots-Array,SignAnnotWidget,SignDict,APDict, n0,n1,n2,n3)"
                                   : "Sichtbare Signatur: Lasse Platz fuer 8 neue Objekte "
                                     "(Annots-Array,SignAnnotWidget,SignDict,APDict, n0,n1,n2,n3)");
    } else {
        logDebug(logger_, hasForm_ ? "Unsichtb. Signatur: Lasse Platz fuer 3 neue Objekte "
                                     "(Annots-Array,SignAnnotWidget,SignDict)"
                                   : "Unsichtbare Signatur: Lasse Platz fuer 3 neue Objekte "
                                     "(Annots-Array,SignAnnotWidget,SignDict)");
    }
    if (hasMask()) logDebug(logger_, "Lasse einen weiteren Platz, für transpPNG-Maske");
    if (metadata_) logDebug(logger_, "Lasse einen weiteren Platz, da Metadata-Objekt neu erzeugt wird.");
}

void Preparation::writeLocks() {
    if (!lock_.get_use_locking()) return;
    logDebug(logger_, "XREF Locking-Objekte erstellen (sigfieldlock und TransformParams)");
    const char* const action = lock_.get_actionvalue() == eInclude   ? "/Include"
                               : lock_.get_actionvalue() == eExclude ? "/Exclude"
                                                                     : "/All";
    logDebug(logger_, "Erzeuge Lock-Objekt 1 (signature field lock dict)");
    addNew(numbers_.fieldLock, text(numbers_.fieldLock, " 0 obj\r\n% neues sig field lock dict-Objekt\r\n<<\r\n",
                                    "/Type /SigFieldLock\r\n/Action ", action, "\r\n/P 1\r\n>>\r\nendobj\r\n"));
    logDebug(logger_, "Erzeuge Lock-Objekt 2 (Transform-Params)");
    addNew(numbers_.lockParams, text(numbers_.lockParams, " 0 obj\r\n<<\r\n/Type /TransformParams\r\n/Action ", action,
                                     "\r\n/V /1.2\r\n>>\r\nendobj\r\n"));
    lock_.set_transformmethod(eFieldMDP);
    lock_.set_transformparamsobjid(numbers_.lockParams);
    lock_.set_digestalgo(eMD5);
    lock_.set_objid_data(catalogue_->GetObjNum());
}

int Preparation::writeObjects() {
    constexpr auto kMost = static_cast<std::size_t>(std::numeric_limits<int>::max());
    if (documentOf(pdf_).length + std::size_t{2} * request_.contentsSize > kMost) return VARNPDF_BYTE_RANGE_TOO_LONG;
    pdf_.ResetByteStream(pdf_.GetContentLen());
    logDebug(logger_, "CRLF nach %%eof angefuegt!");
    print(Access::state(pdf_), "\r\n");
    CPdfXRefContainer xrefs;
    const auto write = [&](int number, int generation, std::string_view content) {
        addObjectEntry(xrefs, number, generation, filePosition(Access::state(pdf_)));
        print(Access::state(pdf_), objectText(number, generation, content));
    };
    for (const auto& [number, object] : changed_) {
        if (pdf_.get_pdf_obj_from_map(number) == nullptr) return VARNPDF_UPDATE_OBJECT_MISSING;
        write(number, std::max(object.GetGenNumber(), 0), object.content());
    }
    for (const auto& [number, content] : new_) {
        if (pdf_.get_pdf_obj_from_map(number) == nullptr) return VARNPDF_UPDATE_OBJECT_MISSING;
        write(number, 0, content);
    }

    CPdfXRef run;
    run.SetRefStart(numbers_.widget);
    run.SetIsFree(0);
    CPdfObj widget(numbers_.widget, 0, -1, -1);
    CPdfObj fieldLock(numbers_.fieldLock, 0, -1, -1);
    CPdfObj metadata;
    if (metadata_) metadata.setContent(*metadata_);
    int size[2] = {request_.size[0], request_.size[1]};
    if (const int code = loadPicture(false); code != VARNPDF_OK) return code;
    const int code = Access::writeSignature(pdf_, {.xref = &run,
                                                   .widget = &widget,
                                                   .page = page_,
                                                   .fieldLock = lock_.get_use_locking() ? &fieldLock : nullptr,
                                                   .metadata = metadata_ ? &metadata : nullptr,
                                                   .visible = request_.visible(),
                                                   .info = &info_,
                                                   .rect = rect_,
                                                   .size = size,
                                                   .rotation = rotation_,
                                                   .reason = request_.reason,
                                                   .location = request_.location,
                                                   .name = name_.data(),
                                                   .signDate = request_.signDate,
                                                   .contentsSize = request_.contentsSize,
                                                   .layers = request_.layers,
                                                   .picture = picture_ ? &*picture_ : nullptr,
                                                   .fields = request_.fields,
                                                   .fieldCount = request_.fieldCount,
                                                   .lock = &lock_});
    if (code != VARNPDF_OK) return code;
    xrefs.AddXRef(&run);
    return closeSection(xrefs);
}

int Preparation::closeSection(CPdfXRefContainer& xrefs) {
    CPdfTrailer& trailer = *pdf_.GetUpdateTrailer();
    const CPdfTrailer& last = *pdf_.GetLastTrailer();
    xrefs.SortXRefList();
    if (!last.GetIsCrossRefStream()) {
        // One more than the highest number written (ISO 32000-2 table 15), not than the highest one reserved.
        const CPdfXRef& highest = xrefs.GetXRef()[xrefs.GetXRefNum() - 1];
        trailer.SetSize(std::max(trailer.GetSize(), highest.GetRefStart() + highest.GetRefNum()));
        pdf_.WriteTrailer(&xrefs, &trailer, true, true);
        return VARNPDF_OK;
    }
    logDebug(logger_, "xrefStream!");
    logDebug(logger_, "2019er: /W einlesen aus altem Trailer !!!");
    const int number = numbers_.next;
    const std::size_t section = filePosition(Access::state(pdf_));
    CPdfXRefEntry entry;
    entry.SetPos(static_cast<int>(section));
    CPdfXRef run;
    run.AddEntry(entry);
    run.SetRefStart(number);
    xrefs.AddXRef(&run);
    trailer.SetSize(std::max(trailer.GetSize(), number + 1));
    trailer.UpdateId(true);
    if (trailer.id().empty()) logDebug(logger_, "ID des Dokuments ist leer, setze [] ein.");
    const StreamFields fields = fieldsFor(xrefs, entryValue(keyText(last), "/W"));
    const auto stream = crossReferenceStream(xrefs, trailer, number, fields, section);
    if (!stream) {
        logError(logger_, logtext::COMPRESSING_FAILED);
        return VARNPDF_COMPRESSING_FAILED;
    }
    logDebug(logger_, "Stream gepackt");
    print(Access::state(pdf_), *stream);
    return VARNPDF_OK;
}

// The numbers replace blanks in place, so that no other byte moves.
int Preparation::fillByteRange() {
    constexpr std::size_t kRoom = 30;
    const std::size_t total = filePosition(Access::state(pdf_));
    info_.SetLen1(static_cast<int>(total - roomEnd()));
    const std::string range =
        text(' ', info_.GetOffset0(), ' ', info_.GetLen0(), ' ', info_.GetOffset1(), ' ', info_.GetLen1());
    if (range.size() > kRoom || total > static_cast<std::size_t>(std::numeric_limits<int>::max())) {
        return VARNPDF_BYTE_RANGE_TOO_LONG;
    }
    const unsigned end = Access::state(pdf_).output.tell();
    Access::state(pdf_).output.setseek(static_cast<unsigned>(info_.GetRangePos()));
    print(Access::state(pdf_), range);
    Access::state(pdf_).output.setseek(end);
    return VARNPDF_OK;
}

std::string_view Preparation::tail() const noexcept {
    return {reinterpret_cast<const char*>(Access::state(pdf_).output.data()), Access::state(pdf_).output.tell()};
}

}  // namespace varnpdf
