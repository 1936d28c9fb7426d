// The entries of cross-reference tables and streams.
#include "reader/Sections.h"

#include <cstring>
#include <limits>

#include "model/DictionaryEntry.h"
#include "model/IndexPairs.h"
#include "reader/CrossReferenceStream.h"
#include "reader/SectionText.h"
#include "reader/Trailers.h"
#include "support/Limits.h"
#include "support/Loggers.h"
#include "syntax/Reference.h"

namespace varnpdf {
namespace {

constexpr int kLastGeneration = 65535;  // generation of the free list's head (ISO 32000-2 7.5.4)

// Shows the entries of a section as a table; asks once whether anybody looks.
class EntryDump {
public:
    EntryDump() : wanted_(debugWanted(loggers::pdf)) {
        if (!wanted_) return;
        writeDebug(loggers::pdf, " Typ|ObjNr   |Fileoffset|GenNr   |ArrayNum");
        writeDebug(loggers::pdf, " ---+--------+----------+--------+--------");
    }
    void row(std::string_view type, long long objnum, int offset, int gen) const {
        if (!wanted_) return;
        writeDebug(loggers::pdf, text("   ", type, "|", Padded{objnum, 8}, "|", Padded{offset, 10}, "|", Padded{gen, 8},
                                      "|", Padded{objnum, 8}));
    }

private:
    bool wanted_;
};

struct TableLine {
    int first = 0;
    int second = 0;
    std::string_view type;  // empty in a subsection heading
};

// "%d %d %s", or "%d %d".
std::optional<TableLine> tableLine(std::string_view line) {
    Cursor cursor(line);
    const auto first = cursor.takeInt();
    const auto second = first ? cursor.takeInt() : std::nullopt;
    if (!second) return std::nullopt;
    cursor.skip(kIsCSpace);
    return TableLine{*first, *second, cursor.takeUntil(kIsCSpace).of(line)};
}

// Numbers the entries of a table. A table that begins with the head of the free list is read as if that were object 0,
// whatever its heading says: some writers start their first subsection at 1.
class EntryNumbers {
public:
    void heading(int start) {
        start_ = start;
        index_ = 0;
    }
    long long next(int gen) {
        const bool repaired = first_ && gen == kLastGeneration;
        if (repaired && start_ != 0) {
            first_ = false;
            return 0;
        }
        first_ = false;
        return repaired ? index_++ : start_ + index_++;
    }

private:
    long long start_ = 0;
    long long index_ = 0;
    bool first_ = true;
};

// The subsections of a cross-reference stream.
std::vector<IndexPair> subsections(CPdfTrailer& trailer, int size) {
    const unsigned char* const index = trailer.Getm_cIndexField();
    if (index == nullptr) return {{0, size}};
    auto pairs = indexPairs(reinterpret_cast<const char*>(index));
    if (pairs.size() == 1) {
        logDebug(loggers::pdf, " + Nur ein Index-Bereich");
    } else {
        logDebug(loggers::pdf, " + Mehrere Index-Bereiche");
        logDebug(loggers::pdf, " + Anzahl gefundene Bereiche im Index: ", pairs.size());
    }
    return pairs;
}

// Announces the buffer sizes up to the one that holds the result, or all of them.
void logInflating(std::size_t length, std::size_t result) {
    if (!debugWanted(loggers::pdf)) return;
    for (std::size_t factor = 10; factor <= limits::kInflateFactor; factor += 10) {
        writeDebug(loggers::pdf, text("calling uncompress (bufferlen:", length * factor, ")"));
        if (length * factor >= result) return;
    }
}

bool readTable(Document& document, const CPdfTrailer& trailer) {
    const std::string_view text = document.view();
    if (trailer.GetXRef() < 0 || trailer.GetFromPos() < 0 || trailer.content().empty()) return false;
    const std::string_view table = text.substr(0, static_cast<std::size_t>(trailer.GetFromPos()));
    Cursor cursor(table, static_cast<std::size_t>(trailer.GetXRef()));
    const EntryDump dump;
    EntryNumbers numbers;
    for (cursor.skip(kIsEol); !cursor.atEnd(); cursor.skip(kIsEol)) {
        const std::string_view line = cursor.takeUntil(kIsEol).of(table);
        if (const std::size_t keyword = line.find("xref"); keyword != std::string_view::npos) {
            if (line == "xref") continue;
            const auto heading = scanReference(line.substr(keyword + 4));
            numbers.heading(heading ? heading->number : 0);
            continue;
        }
        const auto entry = tableLine(line);
        if (!entry) continue;
        if (entry->type.empty()) {
            numbers.heading(entry->first);
            continue;
        }
        const long long objnum = numbers.next(entry->second);
        dump.row(entry->type, objnum, entry->first, entry->second);
        const RecordedEntry recorded{objnum, entry->first, entry->second, entry->type == "f"};
        if (!recordEntry(document, recorded)) return false;
    }
    return true;
}

bool recordRows(Document& document, std::string_view rows, const FieldWidths& widths,
                const std::vector<IndexPair>& pairs) {
    enum : int { kFree = 0, kInUse = 1, kInStream = 2 };
    const auto& [width1, width2, width3] = widths.width;
    const EntryDump dump;
    for (const IndexPair& pair : pairs) {
        for (int i = 0; i < pair.count && rows.size() >= widths.row(); ++i, rows.remove_prefix(widths.row())) {
            const long long objnum = static_cast<long long>(pair.first) + i;
            const int type = bigEndian(rows.substr(0, width1));
            const int second = bigEndian(rows.substr(width1, width2));
            const int third = bigEndian(rows.substr(width1 + width2, width3));
            RecordedEntry entry{.number = objnum};
            if (type == kInUse) {
                dump.row("n", objnum, second, third);
                entry.offset = second;
                entry.generation = third;
            } else if (type == kInStream) {
                dump.row("c", objnum, second, third);
                entry.isCompressed = true;
                entry.stream = second;
                entry.index = third;
            } else if (type == kFree) {
                dump.row("f", objnum, 0, 0);
                entry.isFree = true;
            } else {
                logDebug(loggers::pdf, " + CrossRef Eintrag falsch!");
                continue;
            }
            if (!recordEntry(document, entry)) return false;
        }
    }
    return true;
}

bool readRows(Document& document, CPdfTrailer& trailer, Bytes& data) {
    const std::string_view object = trailer.content();
    const auto size = lookUpInt(object, "/Size");
    if (!size) {
        logDebug(loggers::pdf, "### ExtractTrailer ABBRUCH (Size - Read Problem!)");
        return false;
    }
    CPdfObj params;
    if (const std::string_view parms = lookUpValue(object, "/DecodeParms"); !parms.empty()) {
        params.SetiDecodeParms_Colums(lookUpInt(parms, "/Columns").value_or(0));
        params.SetiDecodeParms_Predictor(lookUpInt(parms, "/Predictor").value_or(kPredictorNone));
    } else {
        logDebug(loggers::pdf, "DecodeParms nicht gefunden");
    }
    logDebug(loggers::pdf, "/W einlesen!");
    const auto widths = fieldWidths(lookUpValue(object, "/W"));
    if (!widths) return false;
    if (params.GetiDecodeParms_Colums() <= 0) params.SetiDecodeParms_Colums(static_cast<int>(widths->row()));
    const bool plain = params.GetiDecodeParms_Predictor() == kPredictorNone;
    const bool up = params.GetiDecodeParms_Predictor() == kPredictorUp;
    if (!plain && !(up && undoPrediction(data, static_cast<std::size_t>(params.GetiDecodeParms_Colums())))) {
        logDebug(loggers::pdf, "### ExtractTrailer ABBRUCH", " + TransformXRef-Problem!");
        return false;
    }
    return recordRows(document, data.view(), *widths, subsections(trailer, *size));
}

bool readStream(Document& document, CPdfTrailer& trailer) {
    const std::string_view object = trailer.content();
    const auto length = lookUpInt(object, "/Length");
    if (!length || *length < 0) return false;
    const auto stream = streamData(object, loggers::pdf);
    if (!stream) {
        logDebug(loggers::pdf, "### ExtractTrailer ABBRUCH ('stream' nicht gefunden)");
        return false;
    }
    const std::string_view packed = stream->substr(0, static_cast<std::size_t>(*length));
    std::optional<Bytes> data;
    switch (streamFilter(object)) {
        case StreamFilter::Flate:
            logDebug(loggers::pdf, " + Stream ist codiert, also Decoden");
            data = inflateAll(packed, std::min(packed.size() * limits::kInflateFactor, inflateBudget(document)),
                              &document.inflated);
            logInflating(packed.size(), data ? data->size() : std::numeric_limits<std::size_t>::max());
            break;
        case StreamFilter::None:
            logDebug(loggers::pdf, " + Stream nicht gepackt.");
            data.emplace();
            data->reserve(packed.size() + 1);
            std::memcpy(data->data(), packed.data(), packed.size());
            data->setSize(packed.size());
            break;
        case StreamFilter::Unknown:
            break;
    }
    if (!data) {
        logDebug(loggers::pdf, "### ExtractTrailer ABBRUCH (Problem mit dem Stream-Auspacken!)");
        return false;
    }
    return readRows(document, trailer, *data);
}

}  // namespace

bool readEntries(Document& document, CPdfTrailer& section) {
    return section.GetIsCrossRefStream() ? readStream(document, section) : readTable(document, section);
}

bool readCompanion(Document& document, int offset) {
    logDebug(loggers::pdf, "### ExtractXRefStm START ");
    const bool inside = offset > 0 && static_cast<std::size_t>(offset) < document.length;
    if (!inside || !scanReference(document.view().substr(static_cast<std::size_t>(offset)))) {
        logDebug(loggers::pdf, "### ExtractXRefStm ABBRUCH (kein obj-Daten bei manueller Suche gefunden)");
        return false;
    }
    CPdfTrailer section;
    readTrailer(document, section, offset);
    const bool read = section.GetIsCrossRefStream() && readStream(document, section);
    logDebug(loggers::pdf, "### ExtractXRefStm ENDE");
    return read;
}

bool recordEntry(Document& document, const RecordedEntry& entry) {
    if (entry.number < 0 || entry.number > std::numeric_limits<int>::max()) return true;
    const auto slot = static_cast<int>(entry.number);
    CPdfObj* obj = document.objects.find(slot);
    if (obj == nullptr) {
        if (document.objects.size() >= limits::kObjectRecords) return false;
        obj = document.objects.create(slot);
    }
    const bool isKnown = !obj->GetStatus();
    const bool hides = entry.isFree && entry.generation == kLastGeneration && obj->IsInUse();
    if (isKnown && (entry.generation <= 0 || hides)) return true;
    obj->SetObjNum(slot);
    obj->SetGenNumber(entry.generation);
    obj->SetFromPos(entry.offset);
    obj->SetIsCompressed(entry.isCompressed);
    const bool usable = entry.generation <= 0 && entry.offset < static_cast<long long>(document.length);
    obj->SetInUseKeyword(usable && !entry.isFree ? 'n' : 'f');
    if (usable) obj->SetStatus(false);
    if (entry.generation <= 0) {
        obj->SetCompressStreamObjNr(entry.stream);
        obj->SetPositioninStreamArray(entry.index);
    }
    return true;
}

}  // namespace varnpdf
