// CPdf: widget, signature dictionary and appearance of a signature, written into the update.
#include <unordered_set>

#include "api/PdfState.h"
#include "reader/Objects.h"
#include "reader/Pages.h"
#include "signing/Appearance.h"
#include "signing/SignatureParts.h"
#include "support/Log.h"
#include "support/Loggers.h"
#include "syntax/Dates.h"
#include "syntax/Encoding.h"
#include "syntax/Text.h"
#include "varnpdf/PdfHelper.h"
#include "varnpdf/PdfLockInfo.h"
#include "varnpdf/PdfSign.h"
#include "varnpdf/TokHelp.h"
#include "varnpdf/result.h"
#include "writer/SectionTexts.h"

using namespace varnpdf;

namespace {

constexpr std::string_view kVersion = "2.10.0.0";
constexpr std::size_t kByteRangeRoom = 30;

// The first number from the start on that no existing field has.
int freeFieldNumber(int start, const std::vector<std::string>& names, const ClassLogger& logger) {
    constexpr int kReported = 50;
    const std::unordered_set<std::string_view> taken(names.begin(), names.end());
    int number = start;
    while (taken.contains(text("(Unterschrift", number, ")"))) ++number;
    if (number - start > kReported) logDebug(logger, "Wert für UnterschriftXXX lautet: ", number);
    return number;
}

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

std::string signatureReference(const CPdfLockInfo& lock) {
    std::string out;
    append(out, "/Reference [<< ", "/Type /SigRef ");
    append(out, "/TransformMethod /", methodName(lock.get_transformmethod()), " ");
    append(out, "/TransformParams ", lock.get_transformparamsobjid(), " 0 R ");
    append(out, "/DigestMethod /", digestName(lock.get_digestalgo()), " ");
    append(out, "/Data ", lock.get_objid_data(), " 0 R ", ">>]\r\n");
    return out;
}

}  // namespace

void CPdf::write_annot(CPdfXRefEntry* entry, CPdfObj* widget, CPdfObj* page, CPdfSigInfo* info, int* rect, int mode,
                       std::vector<std::string> names, CPdfObj* fieldLock, CPdfLockInfo* lock) {
    logDebug(loggers::pdf, "write_annot Start");
    entry->SetPos(static_cast<int>(filePosition(*state_)));
    const int number = widget->GetObjNum();
    const int generation = widget->GetGenNumber();
    std::string out;
    append(out, number, ' ', generation, " obj\r\n", "% created using varnpdf ", kVersion, "\r\n");
    append(out, "<<\r\n/Type /Annot\r\n/Subtype /Widget\r\n/Rect [ ", rect[0], ' ', rect[1], ' ', rect[2], ' ', rect[3],
           " ]\r\n/F 4\r\n");
    append(out, "/P ", page->GetObjNum(), ' ', page->GetGenNumber(), " R\r\n/FT /Sig\r\n");
    append(out, "/T (Unterschrift", freeFieldNumber(info->GetSigNumber(), names, loggers::pdf), ")\r\n");
    if (mode == 0) {
        append(out, "/MK << /BG [ 1 1 1 ] >>\r\n", "/V ", number + 1, ' ', generation, " R\r\n");
    } else {
        append(out, "/MK << >>\r\n");
    }
    const bool visible = rect[2] > 0 && rect[3] > 0;
    append(out, "/AP << /N ", number + (visible ? 3 : 2), ' ', generation, " R >>\r\n");
    if (lock != nullptr && lock->get_use_locking() && fieldLock != nullptr) {
        logDebug(loggers::pdf, "Adding reference to signature field lock dictionary ");
        append(out, "/Lock ", fieldLock->GetObjNum(), ' ', fieldLock->GetGenNumber(), " R\r\n");
    }
    append(out, ">>\r\nendobj\r\n");
    print(*state_, out);
    logDebug(loggers::pdf, "write_annot Ende");
}

void CPdf::WriteSigBlock(CPdfXRefEntry* entry, int objnum, int gen, CPdfSigInfo* info, char* reason, char* location,
                         char* name, char* signDate, std::uint32_t contentsSize, CPdfLockInfo* lock) {
    entry->SetPos(static_cast<int>(filePosition(*state_)));
    std::string out;
    append(out, objnum, ' ', gen, " obj\r\n", "<<\r\n", "/Type /Sig\r\n");
    append(out, "/Reason (", viewOf(reason), ")\r\n", "/Location (", viewOf(location), ")\r\n");
    append(out, "/M (", convert8824DoubleH(viewOf(signDate)), ")\r\n");
    append(out, "/Filter /Korvane.varnapi\r\n");
    append(out, isUserETSISubFilter() ? "/SubFilter /ETSI.CAdES.detached\r\n" : "/SubFilter /adbe.pkcs7.detached\r\n");
    append(out, "/R 65537\r\n", "/Name (", latin1FromUtf8(viewOf(name)).text, ")\r\n", "/Contents ");
    print(*state_, out);

    info->SetOffset0(0);
    info->SetLen0(static_cast<int>(filePosition(*state_)));
    out.assign("<");
    out.append(std::size_t{2} * contentsSize, '0');
    out.append(">");
    print(*state_, out);
    info->SetOffset1(static_cast<int>(filePosition(*state_)));
    info->SetLen1(-1);
    print(*state_, "\r\n/ByteRange [");
    info->SetRangePos(static_cast<int>(state_->output.tell()));
    out.assign(kByteRangeRoom, ' ');
    append(out, "]\r\n");
    if (lock != nullptr && lock->get_use_locking()) {
        logDebug(loggers::pdf, "Signatur inklusive LOCKING");
        append(out, signatureReference(*lock));
    }
    append(out, ">>\r\n", "endobj\r\n");
    print(*state_, out);
}

void CPdf::beginEntry(CPdfXRef& xref) {
    CPdfXRefEntry entry;
    entry.SetPos(static_cast<int>(filePosition(*state_)));
    xref.AddEntry(entry);
}

void CPdf::WriteAP1(CPdfXRef& xref, const Appearance& form) {
    logDebug(loggers::pdf, ": AP1-Objekt (XObj-Form)");
    beginEntry(xref);
    print(*state_, formObject(form.form, form));
}

void CPdf::WriteAP2(CPdfXRef& xref, const Appearance& form) {
    beginEntry(xref);
    print(*state_, normalObject(form.form + 1, form));
}

void CPdf::WriteAP3(CPdfXRef& xref, const Appearance& form) {
    beginEntry(xref);
    print(*state_, blankObject(form.blank, form));
}

bool CPdf::Write_AdobeLayer(CPdfXRef& xref, const Appearance& form) {
    const auto object = questionObject(form.question, form);
    if (!object) return false;
    beginEntry(xref);
    print(*state_, *object);
    return true;
}

bool CPdf::WriteAP5(CPdfXRef& xref, const Appearance& form, FormfieldInfo_tag* fields, int fieldCount) {
    int length = 0;
    CPdfHelper::GetTextStreamLayer(nullptr, &length, form.width, form.height, fields, fieldCount);
    std::string content(static_cast<std::size_t>(length) + 1, '\0');
    CPdfHelper::GetTextStreamLayer(content.data(), &length, form.width, form.height, fields, fieldCount);
    content.resize(static_cast<std::size_t>(length));
    const auto object = textObject(form.text, form, content);
    if (!object) return false;
    beginEntry(xref);
    print(*state_, *object);
    return true;
}

void CPdf::write_transp_mask(CPdfXRef& xref, const Appearance& form) {
    beginEntry(xref);
    print(*state_, maskObject(form.mask, form));
}

void CPdf::WriteAP6(CPdfXRef& xref, const Appearance& form) {
    logDebug(loggers::pdf, form.picture->colourType);
    beginEntry(xref);
    print(*state_, imageObject(form.image, form));
}

void CPdf::WriteAP7(CPdfXRef& xref, const Appearance& form) {
    logDebug(loggers::pdf, ": AP7-Objekt (Appearance-Dict fuer PDF/A - leer ) ");
    beginEntry(xref);
    print(*state_, emptyObject(form.form, form));
}

void CPdf::WriteMetadata(CPdfXRef& xref, int number, std::string_view content) {
    logDebug(loggers::pdf, ": Metadaten-Objekt ");
    beginEntry(xref);
    print(*state_, objectText(number, 0, content));
}

bool CPdf::writeVisible(CPdfXRef& xref, const Appearance& form, FormfieldInfo_tag* fields, int fieldCount) {
    WriteAP1(xref, form);
    WriteAP2(xref, form);
    WriteAP3(xref, form);
    logDebug(loggers::pdf, form.layers ? "mit Adobe /n1,/n3-Layer (ALT!!) " : "ohne Adobe-Logo-Layer (std)");
    if (form.layers && !Write_AdobeLayer(xref, form)) return false;
    if (!WriteAP5(xref, form, fields, fieldCount)) return false;
    if (form.mask != 0) write_transp_mask(xref, form);
    if (form.image != 0) WriteAP6(xref, form);
    return true;
}

int Access::writeSignature(CPdf& pdf, const SignatureParts& parts) {
    const int number = parts.widget->GetObjNum();
    Appearance form{.width = parts.size[0], .height = parts.size[1], .rotation = parts.rotation};
    int next = form.form = number + 2;
    if (parts.visible) {
        form.layers = parts.layers;
        form.blank = number + 4;
        next = form.blank + 1;
        if (form.layers) form.question = next++;
        form.text = next++;
        form.picture = parts.picture;
        if (form.picture != nullptr && form.picture->transparent) form.mask = next++;
        if (form.picture != nullptr) form.image = next++;
    } else {
        ++next;
    }

    std::vector<std::string> names;
    pdf.create_vectorlist_of_signatures(names);
    logDebug(loggers::pdf, parts.visible ? "Sichtbare Signatur erzeugen" : "Unsichtbare Signatur erzeugen");
    logDebug(loggers::pdf, ":Signature-Field");
    CPdfXRefEntry entry;
    pdf.write_annot(&entry, parts.widget, parts.page, parts.info, parts.rect, parts.mode, std::move(names),
                    parts.fieldLock, parts.lock);
    parts.xref->AddEntry(entry);
    logDebug(loggers::pdf, ":Signature-Value-Field");
    pdf.WriteSigBlock(&entry, number + 1, parts.widget->GetGenNumber(), parts.info, parts.reason, parts.location,
                      parts.name, parts.signDate, parts.contentsSize, parts.lock);
    parts.xref->AddEntry(entry);
    if (!parts.visible) {
        pdf.WriteAP7(*parts.xref, form);
    } else if (!pdf.writeVisible(*parts.xref, form, parts.fields, parts.fieldCount)) {
        return VARNPDF_COMPRESSING_FAILED;
    }
    if (parts.metadata != nullptr) pdf.WriteMetadata(*parts.xref, next, parts.metadata->content());
    return VARNPDF_OK;
}

int CPdf::WriteSignature(CPdfXRef* xref, CPdfObj* widget, CPdfObj* page, CPdfObj* fieldLock, CPdfObj* metadata,
                         int mode, int visible, CPdfSigInfo* info, int* rect, int* size, int rotation,
                         int /*appearanceOption1*/, char* reason, char* location, char* name, char* signDate,
                         bool /*firstSignature*/, int /*unused1*/, int /*unused2*/, int /*unused3*/, int /*unused4*/,
                         int /*existingSignatures*/, unsigned int contentsSize, int additionalLayers, int useImage,
                         char* imageFile, FormfieldInfo_tag* fields, int fieldCount, int transparentImage,
                         CPdfLockInfo* lock) {
    std::optional<JpegImage> picture;
    if (visible != 0 && useImage != 0) {
        picture = loadImage(imageFile, transparentImage != 0, loggers::pdf);
        if (!picture) return VARNPDF_IMAGE_UNREADABLE;
    }
    return Access::writeSignature(*this, {.xref = xref,
                                          .widget = widget,
                                          .page = page,
                                          .fieldLock = fieldLock,
                                          .metadata = metadata,
                                          .mode = mode,
                                          .visible = visible != 0,
                                          .info = info,
                                          .rect = rect,
                                          .size = size,
                                          .rotation = rotation,
                                          .reason = reason,
                                          .location = location,
                                          .name = name,
                                          .signDate = signDate,
                                          .contentsSize = contentsSize,
                                          .layers = additionalLayers != 0,
                                          .picture = picture ? &*picture : nullptr,
                                          .fields = fields,
                                          .fieldCount = fieldCount,
                                          .lock = lock});
}
