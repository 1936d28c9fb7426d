// The objects of a signature.
#include "signing/SignatureObjects.h"

#include <unordered_set>

#include "signing/Appearance.h"
#include "signing/TextLayer.h"
#include "support/Loggers.h"
#include "syntax/Dates.h"
#include "writer/ImageObject.h"

namespace varnpdf {
namespace {

constexpr std::string_view kVersion = "2.10.0.0";

// The first number from the start on that no existing field has.
int freeFieldNumber(int start, const std::vector<std::string>& names) {
    constexpr int kReported = 50;
    const std::unordered_set<std::string_view> taken(names.begin(), names.end());
    int number = start;
    while (taken.contains(text("(Unterschrift", number, ")"))) ++number;
    if (number - start > kReported) logDebug(loggers::pdf, "Wert für UnterschriftXXX lautet: ", number);
    return number;
}

// Numbers and geometry of the appearance; `next` becomes the number behind it.
Appearance appearanceOf(const SignatureObjects& objects, int& next) {
    Appearance form{.width = objects.size[0], .height = objects.size[1], .rotation = objects.rotation};
    form.form = next++;
    if (!objects.visible) return form;
    form.layers = objects.layers;
    ++next;  // the normal appearance
    form.blank = next++;
    if (form.layers) form.question = next++;
    form.text = next++;
    form.picture = objects.picture;
    if (form.picture != nullptr && form.picture->transparent) form.mask = next++;
    if (form.picture != nullptr) form.image = next++;
    return form;
}

// Appends objects and remembers where they begin.
class ObjectWriter {
public:
    ObjectWriter(Tail& out, std::vector<std::size_t>& offsets) : out_(out), offsets_(offsets) {}
    void begin() { offsets_.push_back(out_.position()); }
    void write(std::string_view object) {
        begin();
        out_.text += object;
    }
    bool writeIfMade(const std::optional<std::string>& object) {
        if (object) write(*object);
        return object.has_value();
    }

private:
    Tail& out_;
    std::vector<std::size_t>& offsets_;
};

bool appendVisible(ObjectWriter& out, const Appearance& form, std::span<const FormfieldInfo_tag> fields) {
    logDebug(loggers::pdf, ": AP1-Objekt (XObj-Form)");
    out.write(formObject(form.form, form));
    out.write(normalObject(form.form + 1, form));
    out.write(blankObject(form.blank, form));
    logDebug(loggers::pdf, form.layers ? "mit Adobe /n1,/n3-Layer (ALT!!) " : "ohne Adobe-Logo-Layer (std)");
    if (form.layers && !out.writeIfMade(questionObject(form.question, form))) return false;
    if (!out.writeIfMade(textObject(form.text, form, textLayer(form.width, form.height, fields)))) return false;
    if (form.mask != 0) out.write(maskObject(form.mask, *form.picture));
    if (form.image != 0) {
        logDebug(loggers::pdf, form.picture->colourType);
        out.write(imageObject(form.image, *form.picture, form.mask));
    }
    return true;
}

}  // namespace

void appendWidget(Tail& out, const Widget& widget, const std::vector<std::string>& names) {
    logDebug(loggers::pdf, "write_annot Start");
    const auto& [number, generation] = widget.ref;
    const auto& rect = widget.rect;
    append(out.text, number, ' ', generation, " obj\r\n", "% created using varnpdf ", kVersion, "\r\n");
    append(out.text, "<<\r\n/Type /Annot\r\n/Subtype /Widget\r\n/Rect [ ", rect[0], ' ', rect[1], ' ', rect[2], ' ',
           rect[3], " ]\r\n/F 4\r\n");
    append(out.text, "/P ", widget.page.number, ' ', widget.page.generation, " R\r\n/FT /Sig\r\n");
    append(out.text, "/T (Unterschrift", freeFieldNumber(widget.fieldNumber, names), ")\r\n");
    if (widget.isSigned) {
        append(out.text, "/MK << /BG [ 1 1 1 ] >>\r\n", "/V ", number + 1, ' ', generation, " R\r\n");
    } else {
        append(out.text, "/MK << >>\r\n");
    }
    const bool visible = rect[2] > 0 && rect[3] > 0;
    append(out.text, "/AP << /N ", number + (visible ? 3 : 2), ' ', generation, " R >>\r\n");
    if (widget.lock) {
        logDebug(loggers::pdf, "Adding reference to signature field lock dictionary ");
        append(out.text, "/Lock ", widget.lock->number, ' ', widget.lock->generation, " R\r\n");
    }
    append(out.text, ">>\r\nendobj\r\n");
    logDebug(loggers::pdf, "write_annot Ende");
}

SignatureRoom appendValue(Tail& out, const SignatureValue& value) {
    SignatureRoom room;
    append(out.text, value.ref.number, ' ', value.ref.generation, " obj\r\n", "<<\r\n", "/Type /Sig\r\n");
    append(out.text, "/Reason (", value.reason, ")\r\n", "/Location (", value.location, ")\r\n");
    append(out.text, "/M (", convert8824DoubleH(value.date), ")\r\n");
    append(out.text, "/Filter /Korvane.varnapi\r\n");
    append(out.text, value.etsi ? "/SubFilter /ETSI.CAdES.detached\r\n" : "/SubFilter /adbe.pkcs7.detached\r\n");
    append(out.text, "/R 65537\r\n", "/Name (", value.name, ")\r\n", "/Contents ");
    room.begin = out.position();
    out.text.push_back('<');
    out.text.append(std::size_t{2} * value.contentsSize, '0');
    out.text.push_back('>');
    room.end = out.position();
    append(out.text, "\r\n/ByteRange [");
    room.byteRange = out.position();
    out.text.append(SignatureRoom::kByteRange, ' ');
    append(out.text, "]\r\n");
    if (value.reference) {
        logDebug(loggers::pdf, "Signatur inklusive LOCKING");
        append(out.text, "/Reference [<< ", "/Type /SigRef ");
        append(out.text, "/TransformMethod /", value.reference->method, " ");
        append(out.text, "/TransformParams ", value.reference->parameters, " 0 R ");
        append(out.text, "/DigestMethod /", value.reference->digest, " ");
        append(out.text, "/Data ", value.reference->data, " 0 R ", ">>]\r\n");
    }
    append(out.text, ">>\r\n", "endobj\r\n");
    return room;
}

std::optional<WrittenSignature> appendSignature(Tail& out, const SignatureObjects& objects,
                                                const std::vector<std::string>& names) {
    int next = objects.widget.ref.number + 2;
    const Appearance form = appearanceOf(objects, next);
    WrittenSignature written;
    ObjectWriter writer(out, written.offsets);
    logDebug(loggers::pdf, objects.visible ? "Sichtbare Signatur erzeugen" : "Unsichtbare Signatur erzeugen");
    logDebug(loggers::pdf, ":Signature-Field");
    writer.begin();
    appendWidget(out, objects.widget, names);
    logDebug(loggers::pdf, ":Signature-Value-Field");
    writer.begin();
    written.room = appendValue(out, objects.value);
    if (!objects.visible) {
        logDebug(loggers::pdf, ": AP7-Objekt (Appearance-Dict fuer PDF/A - leer ) ");
        writer.write(emptyObject(form.form, form));
    } else if (!appendVisible(writer, form, objects.fields)) {
        return std::nullopt;
    }
    if (objects.metadata) {
        logDebug(loggers::pdf, ": Metadaten-Objekt ");
        writer.write(objectText(next, 0, *objects.metadata));
    }
    return written;
}

}  // namespace varnpdf
