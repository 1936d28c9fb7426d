// CPdf: the objects of a signature, written into the output stream.
#include <algorithm>

#include "api/PdfState.h"
#include "inspection/Signatures.h"
#include "signing/SignatureObjects.h"
#include "support/Guarded.h"
#include "support/Loggers.h"
#include "syntax/Encoding.h"
#include "syntax/Text.h"
#include "varnpdf/PdfLockInfo.h"
#include "varnpdf/PdfSign.h"
#include "varnpdf/result.h"

using namespace varnpdf;

namespace {

std::string_view methodName(transform_methods method) {
    switch (method) {
        case eDocMDP:
            return "DocMDP";
        case eUR:
            return "UR";
        case eFieldMDP:
            return "FieldMDP";
        case eIdentity:
            return "Identity";
        default:
            return "";
    }
}

std::string_view digestName(digest_method method) { return method == eMD5 ? "MD5" : method == eSHA1 ? "SHA1" : ""; }

ObjectRef refOf(const CPdfObj& object) { return {object.GetObjNum(), object.GetGenNumber()}; }

bool locks(const CPdfLockInfo* lock) { return lock != nullptr && lock->get_use_locking(); }

Widget widgetOf(const CPdfObj& widget, const CPdfObj& page, const CPdfSigInfo& info, const int* rect, int mode,
                const CPdfObj* fieldLock, const CPdfLockInfo* lock) {
    Widget out{.ref = refOf(widget), .page = refOf(page), .fieldNumber = info.GetSigNumber(), .isSigned = mode == 0};
    std::copy_n(rect, out.rect.size(), out.rect.begin());
    if (locks(lock) && fieldLock != nullptr) out.lock = refOf(*fieldLock);
    return out;
}

SignatureValue valueOf(ObjectRef ref, std::string_view name, const char* reason, const char* location,
                       const char* signDate, bool etsi, unsigned contentsSize, const CPdfLockInfo* lock) {
    SignatureValue out{.ref = ref,
                       .reason = viewOf(reason),
                       .location = viewOf(location),
                       .name = name,
                       .date = viewOf(signDate),
                       .etsi = etsi,
                       .contentsSize = contentsSize};
    if (locks(lock)) {
        out.reference = SignatureReference{methodName(lock->get_transformmethod()), lock->get_transformparamsobjid(),
                                           digestName(lock->get_digestalgo()), lock->get_objid_data()};
    }
    return out;
}

// The byte ranges as the host's record keeps them: the place of the numbers counts in the output stream.
void store(CPdfSigInfo& info, const SignatureRoom& room, const PdfState& state) {
    info.SetOffset0(0);
    info.SetLen0(static_cast<int>(room.begin));
    info.SetOffset1(static_cast<int>(room.end));
    info.SetLen1(-1);
    info.SetRangePos(static_cast<int>(room.byteRange - state.output.getoldcontentsize()));
}

}  // namespace

void CPdf::write_annot(CPdfXRefEntry* entry, CPdfObj* widget, CPdfObj* page, CPdfSigInfo* info, int* rect, int mode,
                       std::vector<std::string> names, CPdfObj* fieldLock, CPdfLockInfo* lock) {
    Tail out{filePosition(*state_), {}};
    appendWidget(out, widgetOf(*widget, *page, *info, rect, mode, fieldLock, lock), names);
    print(*state_, out.text);
    entry->SetPos(static_cast<int>(out.base));
}

void CPdf::WriteSigBlock(CPdfXRefEntry* entry, int objnum, int gen, CPdfSigInfo* info, char* reason, char* location,
                         char* name, char* signDate, std::uint32_t contentsSize, CPdfLockInfo* lock) {
    Tail out{filePosition(*state_), {}};
    const std::string latin1 = latin1FromUtf8(viewOf(name)).text;
    const SignatureRoom room = appendValue(
        out, valueOf({objnum, gen}, latin1, reason, location, signDate, state_->etsiSubFilter, contentsSize, lock));
    print(*state_, out.text);
    store(*info, room, *state_);
    entry->SetPos(static_cast<int>(out.base));
}

int CPdf::WriteSignature(CPdfXRef* xref, CPdfObj* widget, CPdfObj* page, CPdfObj* fieldLock, CPdfObj* metadata,
                         int mode, int visible, CPdfSigInfo* info, int* rect, int* size, int rotation,
                         int /*appearanceOption1*/, char* reason, char* location, char* name, char* signDate,
                         bool /*firstSignature*/, int /*unused1*/, int /*unused2*/, int /*unused3*/, int /*unused4*/,
                         int /*existingSignatures*/, unsigned int contentsSize, int additionalLayers, int useImage,
                         char* imageFile, FormfieldInfo_tag* fields, int fieldCount, int transparentImage,
                         CPdfLockInfo* lock) {
    return guarded([&]() -> int {
        std::optional<JpegImage> picture;
        if (visible != 0 && useImage != 0) {
            picture = loadImage(imageFile, transparentImage != 0, loggers::pdf);
            if (!picture) return VARNPDF_IMAGE_UNREADABLE;
        }
        const auto count = static_cast<std::size_t>(fields == nullptr ? 0 : std::max(fieldCount, 0));
        const std::string latin1 = latin1FromUtf8(viewOf(name)).text;
        SignatureObjects objects{.widget = widgetOf(*widget, *page, *info, rect, mode, fieldLock, lock),
                                 .value = valueOf({widget->GetObjNum() + 1, widget->GetGenNumber()}, latin1, reason,
                                                  location, signDate, state_->etsiSubFilter, contentsSize, lock),
                                 .visible = visible != 0,
                                 .size = {size[0], size[1]},
                                 .rotation = rotation,
                                 .layers = additionalLayers != 0,
                                 .picture = picture ? &*picture : nullptr,
                                 .fields = {fields, count}};
        if (metadata != nullptr) objects.metadata = metadata->content();
        Tail out{filePosition(*state_), {}};
        const auto written = appendSignature(out, objects, signatureFieldNames(state_->document));
        if (!written) return VARNPDF_COMPRESSING_FAILED;
        CPdfXRef entries(*xref);
        for (const std::size_t offset : written->offsets) {
            CPdfXRefEntry entry;
            entry.SetPos(static_cast<int>(offset));
            entries.AddEntry(entry);
        }
        print(*state_, out.text);
        xref->swap(entries);
        store(*info, written->room, *state_);
        return VARNPDF_OK;
    });
}
