// CPdf: the object table and the debug dumps.
#include <algorithm>
#include <limits>
#include <tuple>

#include "model/ObjectTable.h"
#include "support/Log.h"
#include "varnpdf/Pdf.h"

using namespace varnpdf;

namespace {

constexpr std::size_t kShownContent = 150;

}  // namespace

void CPdf::set_pdf_obj_to_map(int slot, CPdfObj* obj) {
    if (obj == nullptr) return;
    std::unique_ptr<CPdfObj> taken(obj);
    if (!objects_->insert(slot, taken)) static_cast<void>(taken.release());
}

CPdfObj* CPdf::get_pdf_obj_from_map(int slot) { return objects_->find(slot); }

CPdfObj* CPdf::search_map_by_value(int slot) { return objects_->lowerBound(slot).second; }

int CPdf::get_max_obj_num_from_map() { return objects_->maxObjectNumber(); }

int CPdf::GetMaxObjNumFromPDFArray() {
    int most = 0;
    objects_->forEach(objectCount_ - 1, [&](int, const CPdfObj& obj) { most = std::max(most, obj.GetObjNum()); });
    return most;
}

int CPdf::GetArrayNum(int objnum) {
    int found = 0;
    objects_->forEach(objectCount_ - 1, [&](int slot, const CPdfObj& obj) {
        if (obj.GetObjNum() == objnum) found = slot;
    });
    return found;
}

int CPdf::SetPdfObjArraySize(int /*size*/) { return 1; }

int CPdf::SetPdfObjArrayResize(int /*size*/) { return 1; }

int CPdf::IstObjPosKorrekt(int /*objnum*/, int /*offset*/) { return 1; }

void CPdf::AddListItem(CPdfObjTransferListItem* item) {
    if (item != nullptr) transfers_.emplace_back(item);
}

CPdfTrailer* CPdf::GetTrailer(int index) const {
    const bool exists = index >= 0 && static_cast<std::size_t>(index) < trailers_.size();
    return exists ? trailers_[static_cast<std::size_t>(index)].get() : nullptr;
}

void CPdf::DebugShowObjectInfo() {
    if (!debugWanted(m_logger)) return;
    writeDebug(m_logger, "Uebersicht Objekte des PDFs");
    writeDebug(m_logger, "Inhalt MAP (2018) des PDF");
    writeDebug(m_logger,
               ".|  MapKey |   ObjNum | GenNum |   FileOffset |       To-Pos | compr | inUse | "
               "Content (first 150 Zchn.)");
    for (auto [slot, obj] = objects_->lowerBound(std::numeric_limits<int>::min()); obj != nullptr;
         std::tie(slot, obj) = objects_->lowerBound(slot + 1)) {
        writeDebug(m_logger, text(".|", Padded{slot, 8}, " |", Padded{obj->GetObjNum(), 9}, " |",
                                  Padded{obj->GetGenNumber(), 7}, " |", Padded{obj->GetFromPos(), 13}, " |",
                                  Padded{obj->GetToPos(), 13}, " |     ", obj->GetIsCompressed() ? '1' : '0', " |     ",
                                  obj->IsInUse() ? '1' : '0', " | ", obj->content().substr(0, kShownContent)));
        if (slot == std::numeric_limits<int>::max()) break;
    }
}

void CPdf::DebugShowTrailerInfo() {
    if (!debugWanted(m_logger)) return;
    writeDebug(m_logger, "Uebersicht der Trailer");
    for (const auto& trailer : trailers_) {
        writeDebug(m_logger, text("XRef: ", trailer->GetXRef(), " Size: ", trailer->GetSize(),
                                  " Prev: ", trailer->GetPrev(), " Root: ", trailer->root(), " ID: ", trailer->id()));
    }
}
