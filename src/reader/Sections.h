// The entries of cross-reference tables and streams (ISO 32000-2 7.5.4, 7.5.8).
#pragma once

#include "model/Document.h"

namespace varnpdf {

/// One cross-reference entry.
struct RecordedEntry {
    long long number = 0;
    int offset = 0;
    int generation = 0;
    bool isFree = false;
    bool isCompressed = false;
    int stream = 0;  ///< object stream that holds the object, and its place there
    int index = 0;
};

/// Records an entry in the object table. Sections are read from the newest on: the newest usable entry of generation 0
/// wins, and an entry with another generation overrides what was recorded, but for the free entries by which hybrid
/// files hide objects from readers of tables. False when the table holds all the objects it may.
bool recordEntry(Document& document, const RecordedEntry& entry);

/// Records every entry of a section; false when it cannot be read.
bool readEntries(Document& document, CPdfTrailer& section);
/// Records the entries of the companion stream of a hybrid file at `offset` (/XRefStm).
bool readCompanion(Document& document, int offset);

}  // namespace varnpdf
