// Loading the objects of all sections.
#include "reader/Objects.h"

#include <algorithm>
#include <limits>
#include <unordered_set>

#include "model/DictionaryEntry.h"
#include "reader/Search.h"
#include "reader/SectionText.h"
#include "reader/Sections.h"
#include "reader/Trailers.h"
#include "support/Limits.h"
#include "support/Loggers.h"
#include "syntax/Reference.h"

namespace varnpdf {
namespace {

constexpr int kNoLast = std::numeric_limits<int>::max();
constexpr std::string_view kEndObj = "endobj";

bool isPlainInUse(const CPdfObj& obj) {
    return obj.GetObjNum() > 0 && obj.GetGenNumber() == 0 && !obj.GetIsCompressed() && obj.IsInUse() &&
           obj.GetFromPos() >= 1;
}

/// What the log says of a section's /Size.
struct SectionTexts {
    const char* size;
    const char* reset;
};
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

CPdfTrailer* readSection(Document& document, int offset, const SectionTexts& texts) {
    document.sections.push_back(std::make_unique<CPdfTrailer>());
    CPdfTrailer* const section = document.sections.back().get();
    readTrailer(document, *section, offset);
    readEntries(document, *section);
    logDebug(loggers::pdf, texts.size, section->GetSize());
    if (section->GetSize() > document.newest->GetSize()) {
        logDebug(loggers::pdf, texts.reset);
        document.newest->SetSize(section->GetSize());
        document.update->SetSize(section->GetSize());
    }
    return section;
}

void readSectionChain(Document& document) {
    // A companion may be the section that /Prev names next: each of the two ways has its own memory.
    std::unordered_set<int> seen{document.newest->GetXRef()};
    std::unordered_set<int> companions;
    const auto isNewIn = [&](std::unordered_set<int>& known, int offset) {
        return offset != 0 && document.sections.size() < limits::kSections && known.insert(offset).second;
    };
    logDebug(loggers::pdf, "Erster XRefStm-Check");
    if (const int stream = document.newest->GetXRefStmAddr(); isNewIn(companions, stream)) {
        readSection(document, stream, kCompanionTexts);
    }
    logDebug(loggers::pdf, "Erster Prev-Check");
    int previous = document.newest->GetPrev();
    // Real sections do not overlap; a chain of ones that all reach to the same end is given up.
    std::size_t budget = limits::kObjectBytesBase / 16 + limits::kObjectBytesPerByte * document.length;
    while (isNewIn(seen, previous)) {
        const CPdfTrailer& section = *readSection(document, previous, kPreviousTexts);
        std::size_t size = section.content().size();
        const int stream = lookUpInt(keyText(section), "/XRefStm").value_or(0);
        if (isNewIn(companions, stream)) {
            size += readSection(document, stream, kCompanionTexts)->content().size();
        }
        if (size > budget) break;
        budget -= size;
        previous = section.GetPrev();
    }
}

bool loadPlainObjects(Document& document) {
    const std::string_view text = document.view();
    KeywordSearch& ends = search(document, kEndObj, false);
    std::size_t budget = limits::kObjectBytesBase + limits::kObjectBytesPerByte * text.size();
    bool loaded = true;
    document.objects.forEach(kNoLast, [&](int slot, CPdfObj& obj) {
        if (!loaded || !isPlainInUse(obj)) return;
        const auto from = static_cast<std::size_t>(obj.GetFromPos());
        if (!scanReference(text.substr(from))) {
            logDebug(loggers::pdf, "### RetrieveObjects ABBRUCH (Problem beim Auffinden Obj-Starttext: ", slot, ")");
            loaded = false;
            return;
        }
        const std::size_t end = ends.next(from);
        const bool found = end != KeywordSearch::kNone && end + kEndObj.size() < text.size();
        const std::size_t length = found ? end + kEndObj.size() - from : 0;
        if (!found || length > budget) {
            logDebug(loggers::pdf, "### RetrieveObjects ABBRUCH (Problem beim Auffinden EndObj-Text: ", slot, ")");
            loaded = false;
            return;
        }
        budget -= length;
        obj.borrowContent(text.substr(from, length));
        obj.SetToPos(static_cast<int>(from + length));
    });
    return loaded;
}

// Gives each packed object that its newest entry places in this stream the text it would have outside of one.
bool placeUnpacked(Document& document, const CPdfObj& stream, std::string_view decoded, std::size_t count,
                   std::size_t first) {
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
        CPdfObj* const obj = document.objects.find(objects[i].number);
        const bool belongs = obj != nullptr && obj->GetIsCompressed() && obj->GetGenNumber() == 0 &&
                             obj->GetCompressStreamObjNr() == stream.GetObjNum() && obj->content().empty();
        if (!belongs) continue;
        const std::size_t begin = objects[i].begin;
        placed.push_back({obj, decoded.substr(begin, ends[i] - begin), varnpdf::text(objects[i].number, " 0 obj\r\n")});
        total += placed.back().head.size() + placed.back().body.size() + kTail.size();
    }
    if (total > inflateBudget(document)) {
        logDebug(loggers::pdf, "### RetrieveObjects ABBRUCH (Problem beim Uncompress gepackter Stream)");
        return false;
    }
    document.inflated += total;
    document.unpacked.push_back(std::make_unique_for_overwrite<char[]>(total));
    char* out = document.unpacked.back().get();
    for (const Placed& object : placed) {
        char* const begin = out;
        for (const std::string_view part : {std::string_view(object.head), object.body, kTail}) {
            out = std::copy(part.begin(), part.end(), out);
        }
        object.obj->borrowContent({begin, static_cast<std::size_t>(out - begin)});
    }
    return true;
}
bool unpackObjectStream(Document& document, CPdfObj& stream) {
    const std::string_view text = stream.content();
    const auto count = lookUpInt(text, "/N");
    const auto first = lookUpInt(text, "/First");
    const std::string_view lengthText = lookUpValue(text, "/Length");
    auto length = Cursor(lengthText).takeInt();
    if (const auto reference = isReference2(lengthText)) length = referencedNumber(document, reference->number);
    const auto data = streamData(text, loggers::pdf);
    if (!count || !first || !length || !data || *count < 0 || *first < 0 || *length < 0) {
        logDebug(loggers::pdf, "### RetrieveObjects ABBRUCH (Problem beim Einlesen des Contents)");
        return false;
    }
    const std::string_view packed = data->substr(0, static_cast<std::size_t>(*length));
    std::optional<Bytes> inflated;
    std::string_view decoded = packed;
    if (const StreamFilter filter = streamFilter(text); filter != StreamFilter::None) {
        // Long streams start with a larger buffer than the growth would reach.
        const std::size_t factor = std::max(limits::kInflateFactor, packed.size() / 1500 * 10);
        if (filter == StreamFilter::Flate) {
            inflated =
                inflateAll(packed, std::min(packed.size() * factor, inflateBudget(document)), &document.inflated);
        }
        if (!inflated) {
            logDebug(loggers::pdf, "### RetrieveObjects ABBRUCH (Problem beim Uncompress gepackter Stream)");
            return false;
        }
        decoded = inflated->view();
    }
    return placeUnpacked(document, stream, decoded, static_cast<std::size_t>(*count), static_cast<std::size_t>(*first));
}

bool loadObjectStreams(Document& document) {
    bool loaded = true;
    document.objects.forEach(kNoLast, [&](int, CPdfObj& obj) {
        if (loaded && isPlainInUse(obj) && obj.typeEntry() == "/ObjStm") loaded = unpackObjectStream(document, obj);
    });
    return loaded;
}

}  // namespace

std::optional<int> referencedNumber(const Document& document, int number) {
    const CPdfObj* const holder = document.objects.find(number);
    const std::string_view held = holder == nullptr ? std::string_view{} : holder->content();
    const std::size_t keyword = held.find("obj");
    return keyword == std::string_view::npos ? std::nullopt : Cursor(held, keyword + 3).takeInt();
}

bool readObjects(Document& document) {
    logDebug(loggers::pdf, "### RetrieveObjects START");
    if (!document.newest) readNewestTrailer(document);
    if (!document.newest || !readEntries(document, *document.newest)) {
        logDebug(loggers::pdf, "### RetrieveObjects ABBRUCH (Trailerproblem)");
        return false;
    }
    logDebug(loggers::pdf, "ExtractTrailer Okay.");
    readSectionChain(document);
    logDebug(loggers::pdf, "+ jetzt die Objekte einlesen");
    logDebug(loggers::pdf, "1. Durchlauf:");
    if (!loadPlainObjects(document)) return false;
    logObjects(document);
    logDebug(loggers::pdf, "2. Durchlauf:");
    if (!loadObjectStreams(document)) return false;
    logObjects(document);
    logDebug(loggers::pdf, "### RetrieveObjects ENDE");
    return true;
}

}  // namespace varnpdf
