// The debug dumps of objects and trailers.
#include "reader/Objects.h"
#include "support/Loggers.h"

namespace varnpdf {

void logObjects(const Document& document) {
    constexpr std::size_t kShownContent = 150;
    if (!debugWanted(loggers::pdf)) return;
    writeDebug(loggers::pdf, "Uebersicht Objekte des PDFs");
    writeDebug(loggers::pdf, "Inhalt MAP (2018) des PDF");
    writeDebug(loggers::pdf,
               ".|  MapKey |   ObjNum | GenNum |   FileOffset |       To-Pos | compr | inUse | "
               "Content (first 150 Zchn.)");
    document.objects.forEach([&](int slot, const CPdfObj& obj) {
        writeDebug(loggers::pdf,
                   text(".|", Padded{slot, 8}, " |", Padded{obj.GetObjNum(), 9}, " |", Padded{obj.GetGenNumber(), 7},
                        " |", Padded{obj.GetFromPos(), 13}, " |", Padded{obj.GetToPos(), 13}, " |     ",
                        obj.GetIsCompressed() ? '1' : '0', " |     ", obj.IsInUse() ? '1' : '0', " | ",
                        obj.content().substr(0, kShownContent)));
    });
}

void logTrailers(const Document& document) {
    if (!debugWanted(loggers::pdf)) return;
    writeDebug(loggers::pdf, "Uebersicht der Trailer");
    for (const auto& trailer : document.sections) {
        writeDebug(loggers::pdf, text("XRef: ", trailer->GetXRef(), " Size: ", trailer->GetSize(), " Prev: ",
                                      trailer->GetPrev(), " Root: ", trailer->root(), " ID: ", trailer->id()));
    }
}

}  // namespace varnpdf
