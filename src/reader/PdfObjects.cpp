// CPdf: loading the objects of all sections.
#include <algorithm>
#include <limits>
#include <unordered_set>

#include "model/DictionaryEntry.h"
#include "model/ObjectTable.h"
#include "reader/KeywordSearch.h"
#include "reader/SectionText.h"
#include "support/Inflate.h"
#include "support/Limits.h"
#include "support/Log.h"
#include "syntax/Reference.h"
#include "varnpdf/Pdf.h"

using namespace varnpdf;

namespace {

constexpr int kNoLast = std::numeric_limits<int>::max();
constexpr std::string_view kEndObj = "endobj";

bool isPlainInUse(const CPdfObj& obj) {
    return obj.GetObjNum() > 0 && obj.GetGenNumber() == 0 && !obj.GetIsCompressed() && obj.IsInUse() &&
           obj.GetFromPos() >= 1;
}

constexpr SectionTexts kPreviousTexts{"PREV-Trailer-Size:", "PREV-Trailer-Size RESET !!!!!!!"};
constexpr SectionTexts kCompanionTexts{"XRefStm-Trailer-Size:", "XRefStm-Trailer-Size RESET !!!!!!!"};

struct PackedObject {
    int number;
    std::size_t begin;
};

// The pairs of object number and offset in front of the packed objects; those that are there are taken.
std::vector<PackedObject> packedObjects(std::string_view header, std::size_t count, std::size_t first,
                                        std::size_t size) {
    std::vector<PackedObject> objects;
    objects.reserve(std::min(count, header.size() / 2));
    Cursor cursor(header);
    while (objects.size() < count) {
        const auto number = cursor.takeInt();
        const auto offset = number ? cursor.takeInt() : std::nullopt;
        if (!offset) break;
        const auto begin = first + static_cast<std::size_t>(std::max(*offset, 0));
        objects.push_back({*number, std::min(begin, size)});
    }
    return objects;
}

// An object ends where the next one begins. Offsets that do not ascend end at the nearest one above.
std::vector<std::size_t> packedEnds(const std::vector<PackedObject>& objects, std::size_t size) {
    std::vector<std::size_t> begins;
    begins.reserve(objects.size());
    for (const PackedObject& object : objects) begins.push_back(object.begin);
    const bool ascending = std::is_sorted(begins.begin(), begins.end());
    std::vector<std::size_t> sorted = begins;
    if (!ascending) std::sort(sorted.begin(), sorted.end());
    std::vector<std::size_t> ends;
    ends.reserve(objects.size());
    for (std::size_t i = 0; i < begins.size(); ++i) {
        if (ascending) {
            ends.push_back(i + 1 < begins.size() ? begins[i + 1] : size);
        } else {
            const auto next = std::upper_bound(sorted.begin(), sorted.end(), begins[i]);
            ends.push_back(next == sorted.end() ? size : *next);
        }
    }
    return ends;
}

}  // namespace

bool CPdf::RetrieveObjects() {
    logDebug(m_logger, "### RetrieveObjects START");
    if (!lastTrailer_) RetrieveLastPdfTrailer();
    if (!ExtractTrailer(lastTrailer_.get())) {
        logDebug(m_logger, "### RetrieveObjects ABBRUCH (Trailerproblem)");
        return false;
    }
    logDebug(m_logger, "ExtractTrailer Okay.");
    readSectionChain();
    logDebug(m_logger, "+ jetzt die Objekte einlesen");
    logDebug(m_logger, "1. Durchlauf:");
    if (!loadPlainObjects()) return false;
    DebugShowObjectInfo();
    logDebug(m_logger, "2. Durchlauf:");
    if (!loadObjectStreams()) return false;
    DebugShowObjectInfo();
    logDebug(m_logger, "### RetrieveObjects ENDE");
    return true;
}

void CPdf::readSectionChain() {
    std::unordered_set<int> seen{lastTrailer_->GetXRef()};
    const auto isNew = [&](std::optional<int> offset) {
        return offset && *offset != 0 && trailers_.size() < limits::kSections && seen.insert(*offset).second;
    };
    logDebug(m_logger, "Erster XRefStm-Check");
    if (const auto stream = entryInt(keyText(*lastTrailer_), "/XRefStm"); isNew(stream)) {
        readSection(*stream, kCompanionTexts);
    }
    logDebug(m_logger, "Erster Prev-Check");
    auto previous = entryInt(keyText(*lastTrailer_), "/Prev");
    // Real sections do not overlap; a chain of ones that all reach to the same end is given up.
    std::size_t budget = limits::kObjectBytesBase / 16 + limits::kObjectBytesPerByte * contentLen_;
    while (isNew(previous)) {
        const CPdfTrailer& section = *readSection(*previous, kPreviousTexts);
        std::size_t size = section.content().size();
        const std::string_view keys = keyText(section);
        if (const auto stream = entryInt(keys, "/XRefStm"); isNew(stream)) {
            size += readSection(*stream, kCompanionTexts)->content().size();
        }
        if (size > budget) break;
        budget -= size;
        previous = entryInt(keys, "/Prev");
    }
}

CPdfTrailer* CPdf::readSection(int offset, const SectionTexts& texts) {
    trailers_.push_back(std::make_unique<CPdfTrailer>());
    CPdfTrailer* const section = trailers_.back().get();
    RetrievePdfTrailer(section, &offset);
    ExtractTrailer(section);
    logDebug(m_logger, texts.size, section->GetSize());
    if (section->GetSize() > lastTrailer_->GetSize()) {
        logDebug(m_logger, texts.reset);
        lastTrailer_->SetSize(section->GetSize());
        updateTrailer_->SetSize(section->GetSize());
    }
    return section;
}

bool CPdf::loadPlainObjects() {
    const std::string_view text = view();
    KeywordSearch& ends = search(kEndObj, false);
    std::size_t budget = limits::kObjectBytesBase + limits::kObjectBytesPerByte * text.size();
    bool loaded = true;
    objects_->forEach(kNoLast, [&](int slot, CPdfObj& obj) {
        if (!loaded || !isPlainInUse(obj)) return;
        const auto from = static_cast<std::size_t>(obj.GetFromPos());
        if (!scanReference(text.substr(from))) {
            logDebug(m_logger, "### RetrieveObjects ABBRUCH (Problem beim Auffinden Obj-Starttext: ", slot, ")");
            loaded = false;
            return;
        }
        const std::size_t end = ends.next(from);
        const bool found = end != KeywordSearch::kNone && end + kEndObj.size() < text.size();
        const std::size_t length = found ? end + kEndObj.size() - from : 0;
        if (!found || length > budget) {
            logDebug(m_logger, "### RetrieveObjects ABBRUCH (Problem beim Auffinden EndObj-Text: ", slot, ")");
            loaded = false;
            return;
        }
        budget -= length;
        obj.borrowContent(text.substr(from, length));
        obj.SetToPos(static_cast<int>(from + length));
    });
    return loaded;
}

bool CPdf::loadObjectStreams() {
    bool loaded = true;
    objects_->forEach(kNoLast, [&](int, CPdfObj& obj) {
        if (loaded && isPlainInUse(obj) && obj.typeEntry() == "/ObjStm") loaded = unpackObjectStream(obj);
    });
    return loaded;
}

std::size_t CPdf::inflateBudget() const noexcept {
    const std::size_t budget = limits::kInflatedBytesBase + limits::kInflatedBytesPerByte * contentLen_;
    return budget - std::min(budget, inflated_);
}

std::optional<int> CPdf::referencedNumber(int number) const {
    const CPdfObj* const holder = objects_->find(number);
    const std::string_view held = holder == nullptr ? std::string_view{} : holder->content();
    const std::size_t keyword = held.find("obj");
    return keyword == std::string_view::npos ? std::nullopt : Cursor(held, keyword + 3).takeInt();
}

bool CPdf::unpackObjectStream(CPdfObj& stream) {
    const std::string_view text = stream.content();
    const auto count = entryInt(text, "/N");
    const auto first = entryInt(text, "/First");
    const std::string_view lengthText = entryValue(text, "/Length");
    auto length = Cursor(lengthText).takeInt();
    if (const auto reference = isReference2(lengthText)) length = referencedNumber(reference->number);
    const auto data = streamData(text, m_logger);
    if (!count || !first || !length || !data || *count < 0 || *first < 0 || *length < 0) {
        logDebug(m_logger, "### RetrieveObjects ABBRUCH (Problem beim Einlesen des Contents)");
        return false;
    }
    const std::string_view packed = data->substr(0, static_cast<std::size_t>(*length));
    std::optional<Bytes> inflated;
    std::string_view decoded = packed;
    if (const StreamFilter filter = streamFilter(text); filter != StreamFilter::None) {
        // Long streams start with a larger buffer than the growth would reach.
        const std::size_t factor = std::max(limits::kInflateFactor, packed.size() / 1500 * 10);
        if (filter == StreamFilter::Flate) {
            inflated = inflateAll(packed, std::min(packed.size() * factor, inflateBudget()), &inflated_);
        }
        if (!inflated) {
            logDebug(m_logger, "### RetrieveObjects ABBRUCH (Problem beim Uncompress gepackter Stream)");
            return false;
        }
        decoded = inflated->view();
    }
    return placeUnpacked(stream, decoded, static_cast<std::size_t>(*count), static_cast<std::size_t>(*first));
}

// Gives each packed object that its newest entry places in this stream the text it would have outside of one.
bool CPdf::placeUnpacked(CPdfObj& stream, std::string_view decoded, std::size_t count, std::size_t first) {
    constexpr std::string_view kTail = "\r\nendobj\r\n";
    struct Placed {
        CPdfObj* obj;
        std::string_view body;
        std::string head;
    };
    const auto objects = packedObjects(decoded.substr(0, first), count, first, decoded.size());
    const auto ends = packedEnds(objects, decoded.size());
    std::vector<Placed> placed;
    placed.reserve(objects.size());
    std::size_t total = 0;
    for (std::size_t i = 0; i < objects.size(); ++i) {
        CPdfObj* const obj = objects_->find(objects[i].number);
        const bool belongs = obj != nullptr && obj->GetIsCompressed() && obj->GetGenNumber() == 0 &&
                             obj->GetCompressStreamObjNr() == stream.GetObjNum() && obj->content().empty();
        if (!belongs) continue;
        const std::size_t begin = objects[i].begin;
        placed.push_back({obj, decoded.substr(begin, ends[i] - begin), varnpdf::text(objects[i].number, " 0 obj\r\n")});
        total += placed.back().head.size() + placed.back().body.size() + kTail.size();
    }
    if (total > inflateBudget()) {
        logDebug(m_logger, "### RetrieveObjects ABBRUCH (Problem beim Uncompress gepackter Stream)");
        return false;
    }
    inflated_ += total;
    unpacked_.push_back(std::make_unique_for_overwrite<char[]>(total));
    char* out = unpacked_.back().get();
    for (const Placed& object : placed) {
        char* const begin = out;
        for (const std::string_view part : {std::string_view(object.head), object.body, kTail}) {
            out = std::copy(part.begin(), part.end(), out);
        }
        object.obj->borrowContent({begin, static_cast<std::size_t>(out - begin)});
    }
    return true;
}
