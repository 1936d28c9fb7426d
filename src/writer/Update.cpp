// The appended update of a document.
#include "writer/Update.h"

#include <algorithm>
#include <limits>

#include "model/DictionaryEntry.h"
#include "reader/SectionText.h"
#include "support/Loggers.h"
#include "support/ResultText.h"
#include "syntax/CharClass.h"
#include "varnpdf/result.h"

namespace varnpdf {
namespace {

constexpr int kMostNumber = std::numeric_limits<int>::max() - 1;

// Offsets beyond this would not fit; the document with its update is refused long before.
int entryOffset(std::size_t offset) { return static_cast<int>(std::min<std::size_t>(offset, kMostNumber)); }

int firstNumber(const Document& document) {
    const int size = document.newest ? document.newest->GetSize() : 0;
    const int highest = document.objects.maxObjectNumber();
    return std::max(size, std::min(highest, kMostNumber) + 1);
}

}  // namespace

Update::Update(Document& document, const Start& start)
    : document_(document),
      next_(start.firstNumber > 0 ? start.firstNumber : firstNumber(document)),
      tail_{document.length, {}} {
    const std::string_view old = document.view();
    const bool needsLine = !old.empty() && !isEol(old.back());
    if (needsLine || start.firstLine == FirstLine::Always) tail_.text = start.lineEnd;
}

bool Update::canReserve(int count) const noexcept { return count <= kMostNumber - next_; }

int Update::reserve(int count) noexcept {
    const int first = next_;
    next_ += count;
    return first;
}

std::string& Update::change(const CPdfObj& object) {
    const auto [it, isNew] = changed_.try_emplace(object.GetObjNum());
    if (isNew) it->second = object.content();
    return it->second;
}

std::string_view Update::current(const CPdfObj& object) const {
    const auto known = changed_.find(object.GetObjNum());
    return known == changed_.end() ? object.content() : std::string_view(known->second);
}

void Update::dropUnchanged() {
    std::erase_if(changed_, [&](const auto& entry) {
        const CPdfObj* const object = document_.objects.find(entry.first);
        return object != nullptr && object->content() == entry.second;
    });
}

void Update::writeWaiting() {
    for (const auto& [number, text] : changed_) {
        const CPdfObj* const object = document_.objects.find(number);
        write(number, object == nullptr ? 0 : std::max(object->GetGenNumber(), 0), text);
    }
    for (const auto& [number, text] : put_) write(number, 0, text);
    changed_.clear();
    put_.clear();
}

void Update::write(int number, int generation, std::string_view text) {
    begin(number, generation);
    tail_.text += objectText(number, generation, text);
}

void Update::record(int number, int generation, std::size_t offset, bool joins) {
    written_.emplace(number, Place{generation, offset, joins});
}

void Update::appendForeign(std::string_view bytes) {
    const std::size_t position = tail_.position() + bytes.size();
    finished_.push_back({std::move(tail_.text), bytes});
    tail_ = {position, {}};
}

bool Update::closesWithStream(Section section) const {
    return section == Section::LikeDocument && document_.newest && document_.newest->GetIsCrossRefStream();
}

void Update::listSections(CPdfXRefContainer& xrefs, bool joinRuns) const {
    for (auto first = written_.begin(); first != written_.end();) {
        auto last = first;
        int count = 0;
        do {
            ++last;
            ++count;
        } while (last != written_.end() && last->first == first->first + count && (joinRuns || last->second.joins));
        CPdfXRef run(first->first, count);
        run.SetIsFree(0);
        for (int i = 0; first != last; ++i, ++first) {
            run.GetRefEntry()[i].SetPos(entryOffset(first->second.offset));
            run.GetRefEntry()[i].SetGenNumber(first->second.generation);
        }
        xrefs.AddXRef(&run);
    }
}

StreamFields Update::streamFields() {
    if (!written_.contains(next_)) begin(next_, 0);
    CPdfXRefContainer xrefs;
    listSections(xrefs, true);
    return fieldsFor(xrefs, lookUpValue(keyText(*document_.newest), "/W"));
}

std::string Update::index() const {
    CPdfXRefContainer xrefs;
    listSections(xrefs, true);
    return indexText(xrefs);
}

int Update::close(const Closing& closing) {
    const std::size_t section = position();
    if (section > closing.longest) {
        logError(loggers::pdf, logtext::PDF_MAXSIZE);
        return VARNPDF_PDF_MAXSIZE;
    }
    const bool isStream = closesWithStream(closing.section);
    const StreamFields fields = isStream ? streamFields() : StreamFields{};
    CPdfXRefContainer xrefs;
    listSections(xrefs, closing.joinRuns);
    CPdfTrailer& trailer = *document_.update;
    const int highest = written_.empty() ? 0 : written_.rbegin()->first;
    trailer.SetSize(std::max(trailer.GetSize(), highest + 1));
    trailer.SetXRef(entryOffset(section));
    trailer.UpdateId(true);
    if (!isStream) {
        append(tail_.text, crossReferenceTable(xrefs), trailerText(trailer, section));
        return VARNPDF_OK;
    }
    const auto stream = crossReferenceStream(xrefs, trailer, next_, fields, section, closing.layout);
    if (!stream) {
        logError(loggers::pdf, logtext::COMPRESSING_FAILED);
        return VARNPDF_COMPRESSING_FAILED;
    }
    append(tail_.text, *stream);
    return VARNPDF_OK;
}

std::vector<std::string_view> Update::pieces() const {
    std::vector<std::string_view> out;
    for (const Finished& piece : finished_) {
        out.push_back(piece.text);
        out.push_back(piece.foreign);
    }
    out.push_back(tail_.text);
    return out;
}

}  // namespace varnpdf
