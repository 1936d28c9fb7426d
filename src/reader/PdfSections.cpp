// CPdf: the entries of cross-reference tables and streams.
#include <algorithm>
#include <cstring>
#include <limits>

#include "model/DictionaryEntry.h"
#include "model/IndexPairs.h"
#include "model/ObjectTable.h"
#include "reader/CrossReferenceStream.h"
#include "reader/SectionText.h"
#include "support/Inflate.h"
#include "support/Limits.h"
#include "support/Log.h"
#include "syntax/Reference.h"
#include "varnpdf/Pdf.h"
#include "varnpdf/PdfHelper.h"

using namespace varnpdf;

namespace {

constexpr int kLastGeneration = 65535;  // generation of the free list's head (ISO 32000-2 7.5.4)

// Shows the entries of a section as a table; asks once whether anybody looks.
class EntryDump {
public:
    explicit EntryDump(const ClassLogger& logger) : logger_(logger), wanted_(debugWanted(logger)) {
        if (!wanted_) return;
        writeDebug(logger_, " Typ|ObjNr   |Fileoffset|GenNr   |ArrayNum");
        writeDebug(logger_, " ---+--------+----------+--------+--------");
    }
    void row(std::string_view type, long long objnum, int offset, int gen) const {
        if (!wanted_) return;
        writeDebug(logger_, text("   ", type, "|", Padded{objnum, 8}, "|", Padded{offset, 10}, "|", Padded{gen, 8}, "|",
                                 Padded{objnum, 8}));
    }

private:
    const ClassLogger& logger_;
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
std::vector<IndexPair> subsections(CPdfTrailer& trailer, int size, const ClassLogger& logger) {
    const unsigned char* const index = trailer.Getm_cIndexField();
    if (index == nullptr) return {{0, size}};
    auto pairs = indexPairs(reinterpret_cast<const char*>(index));
    if (pairs.size() == 1) {
        logDebug(logger, " + Nur ein Index-Bereich");
    } else {
        logDebug(logger, " + Mehrere Index-Bereiche");
        logDebug(logger, " + Anzahl gefundene Bereiche im Index: ", pairs.size());
    }
    return pairs;
}

// Announces the buffer sizes up to the one that holds the result.
void logInflating(const ClassLogger& logger, std::size_t length, std::size_t result) {
    if (!debugWanted(logger)) return;
    for (std::size_t factor = 10;; factor += 10) {
        writeDebug(logger, text("calling uncompress (bufferlen:", length * factor, ")"));
        if (length * factor >= result || factor >= limits::kInflateFactor) return;
    }
}

}  // namespace

bool CPdf::ExtractTrailer(CPdfTrailer* trailer) {
    if (trailer == nullptr) return false;
    return trailer->GetIsCrossRefStream() ? extractStream(*trailer) : extractTable(*trailer);
}

bool CPdf::extractTable(CPdfTrailer& trailer) {
    const std::string_view text = view();
    if (trailer.GetXRef() < 0 || trailer.GetFromPos() < 0 || trailer.content().empty()) return false;
    const std::string_view table = text.substr(0, static_cast<std::size_t>(trailer.GetFromPos()));
    Cursor cursor(table, static_cast<std::size_t>(trailer.GetXRef()));
    const EntryDump dump(m_logger);
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
        if (!recordEntry(objnum, entry->first, entry->second, entry->type == "f", 0, 0, false)) return false;
    }
    return true;
}

bool CPdf::extractStream(CPdfTrailer& trailer) {
    const std::string_view object = trailer.content();
    const auto length = entryInt(object, "/Length");
    if (!length || *length < 0) return false;
    const auto stream = streamData(object, m_logger);
    if (!stream) {
        logDebug(m_logger, "### ExtractTrailer ABBRUCH ('stream' nicht gefunden)");
        return false;
    }
    const std::string_view packed = stream->substr(0, static_cast<std::size_t>(*length));
    std::optional<Bytes> data;
    switch (streamFilter(object)) {
        case StreamFilter::Flate:
            logDebug(m_logger, " + Stream ist codiert, also Decoden");
            data = inflateAll(packed, std::min(packed.size() * limits::kInflateFactor, inflateBudget()), &inflated_);
            if (data) logInflating(m_logger, packed.size(), data->size());
            break;
        case StreamFilter::None:
            logDebug(m_logger, " + Stream nicht gepackt.");
            data.emplace();
            data->reserve(packed.size() + 1);
            std::memcpy(data->data(), packed.data(), packed.size());
            data->setSize(packed.size());
            break;
        case StreamFilter::Unknown:
            break;
    }
    if (!data) {
        logDebug(m_logger, "### ExtractTrailer ABBRUCH (Problem mit dem Stream-Auspacken!)");
        return false;
    }
    return extractRows(trailer, *data);
}

bool CPdf::extractRows(CPdfTrailer& trailer, Bytes& data) {
    const std::string_view object = trailer.content();
    const auto size = entryInt(object, "/Size");
    if (!size) {
        logDebug(m_logger, "### ExtractTrailer ABBRUCH (Size - Read Problem!)");
        return false;
    }
    CPdfObj params;
    if (const std::string_view parms = entryValue(object, "/DecodeParms"); !parms.empty()) {
        params.SetiDecodeParms_Colums(entryInt(parms, "/Columns").value_or(0));
        params.SetiDecodeParms_Predictor(entryInt(parms, "/Predictor").value_or(kPredictorNone));
    } else {
        logDebug(m_logger, "DecodeParms nicht gefunden");
    }
    logDebug(m_logger, "/W einlesen!");
    const auto widths = fieldWidths(entryValue(object, "/W"), data.size());
    if (!widths) return false;
    if (params.GetiDecodeParms_Colums() <= 0) params.SetiDecodeParms_Colums(static_cast<int>(widths->row()));
    const bool plain = params.GetiDecodeParms_Predictor() == kPredictorNone;
    const bool up = params.GetiDecodeParms_Predictor() == kPredictorUp;
    if (!plain && !(up && undoPrediction(data, static_cast<std::size_t>(params.GetiDecodeParms_Colums())))) {
        logDebug(m_logger, "### ExtractTrailer ABBRUCH", " + TransformXRef-Problem!");
        return false;
    }
    return recordRows(data.view(), *widths, subsections(trailer, *size, m_logger));
}

bool CPdf::recordRows(std::string_view rows, const FieldWidths& widths, const std::vector<IndexPair>& pairs) {
    enum : int { kFree = 0, kInUse = 1, kInStream = 2 };
    const auto& [width1, width2, width3] = widths.width;
    const EntryDump dump(m_logger);
    for (const IndexPair& pair : pairs) {
        for (int i = 0; i < pair.count && rows.size() >= widths.row(); ++i, rows.remove_prefix(widths.row())) {
            const long long objnum = static_cast<long long>(pair.first) + i;
            const int type = bigEndian(rows.substr(0, width1));
            const int second = bigEndian(rows.substr(width1, width2));
            const int third = bigEndian(rows.substr(width1 + width2, width3));
            bool recorded = true;
            if (type == kInUse) {
                dump.row("n", objnum, second, third);
                if (IstObjPosKorrekt(0, second) == 1) {
                    recorded = recordEntry(objnum, second, third, false, 0, 0, false);
                }
            } else if (type == kInStream) {
                dump.row("c", objnum, second, third);
                recorded = recordEntry(objnum, 0, 0, false, second, third, true);
            } else if (type == kFree) {
                dump.row("f", objnum, 0, 0);
                recorded = recordEntry(objnum, 0, 0, true, 0, 0, false);
            } else {
                logDebug(m_logger, " + CrossRef Eintrag falsch!");
            }
            if (!recorded) return false;
        }
    }
    return true;
}

bool CPdf::ExtractXRefStm(CPdfTrailer* trailer) {
    logDebug(m_logger, "### ExtractXRefStm START ");
    int offset = trailer == nullptr ? 0 : trailer->GetXRefStmAddr();
    const bool inside = offset > 0 && static_cast<unsigned int>(offset) < contentLen_;
    if (!inside || !scanReference(view().substr(static_cast<std::size_t>(offset)))) {
        logDebug(m_logger, "### ExtractXRefStm ABBRUCH (kein obj-Daten bei manueller Suche gefunden)");
        return false;
    }
    CPdfTrailer section;
    RetrievePdfTrailer(&section, &offset);
    const bool extracted = section.GetIsCrossRefStream() && extractStream(section);
    logDebug(m_logger, "### ExtractXRefStm ENDE");
    return extracted;
}

void CPdf::SetPdfObjArrayData(int objnum, int offset, int gen, char* type, int streamObjNr, int indexInStream,
                              bool compressed) {
    const bool isFree = type != nullptr && std::strcmp(type, "f") == 0;
    recordEntry(objnum, offset, gen, isFree, streamObjNr, indexInStream, compressed);
}

// The newest section is recorded first. The newest usable entry of generation 0 wins; an entry with another
// generation overrides what was recorded. False when the table holds all the objects it may.
bool CPdf::recordEntry(long long objnum, int offset, int gen, bool isFree, int streamObjNr, int indexInStream,
                       bool compressed) {
    if (objnum < 0 || objnum > std::numeric_limits<int>::max()) return true;
    const auto slot = static_cast<int>(objnum);
    CPdfObj* obj = objects_->find(slot);
    if (obj == nullptr) {
        if (objects_->size() >= limits::kObjectRecords) return false;
        obj = objects_->create(slot);
    }
    if (gen <= 0 && !obj->GetStatus()) return true;
    obj->SetObjNum(slot);
    obj->SetGenNumber(gen);
    obj->SetFromPos(offset);
    obj->SetIsCompressed(compressed);
    const bool usable = gen <= 0 && offset < static_cast<long long>(contentLen_);
    obj->SetInUseKeyword(usable && !isFree ? 'n' : 'f');
    if (usable) obj->SetStatus(false);
    if (gen <= 0) {
        obj->SetCompressStreamObjNr(streamObjNr);
        obj->SetPositioninStreamArray(indexInStream);
    }
    return true;
}

int CPdfHelper::getStreamValue(const void* bytes, int width) {
    if (bytes == nullptr || width < 1) return 0;
    return bigEndian({static_cast<const char*>(bytes), static_cast<std::size_t>(width)});
}

bool CPdfHelper::TransformxRef(unsigned char* in, int inLen, unsigned char* out, int outLen, CPdfObj* params,
                               int /*size*/) {
    if (in == nullptr || out == nullptr || params == nullptr || inLen < 0) return false;
    Bytes data;
    data.reserve(static_cast<std::size_t>(inLen) + 1);
    std::memcpy(data.data(), in, static_cast<std::size_t>(inLen));
    data.setSize(static_cast<std::size_t>(inLen));
    if (params->GetiDecodeParms_Predictor() != kPredictorNone) {
        const long columns = params->GetiDecodeParms_Colums();
        if (params->GetiDecodeParms_Predictor() != kPredictorUp || columns < 1) return false;
        if (!undoPrediction(data, static_cast<std::size_t>(columns))) return false;
    }
    if (data.size() > static_cast<std::size_t>(std::max(outLen, 0))) return false;
    std::memcpy(out, data.data(), data.size());
    return true;
}
