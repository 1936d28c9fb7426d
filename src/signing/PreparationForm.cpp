// One preparation: AcroForm (ISO 32000-2 12.7.3), catalogue, page annotations.
#include <algorithm>

#include "model/DictionaryEntry.h"
#include "model/Lookup.h"
#include "reader/Pages.h"
#include "signing/Preparation.h"
#include "support/Loggers.h"
#include "syntax/Dictionary.h"
#include "syntax/Reference.h"
#include "syntax/Text.h"
#include "varnpdf/result.h"
#include "writer/RefArray.h"

namespace varnpdf {
namespace {

// Names of the characters in which PDFDocEncoding differs from the built-in encoding (ISO 32000-2 D.3).
constexpr std::string_view kDifferences =
    "/Differences [ 24 /breve /caron /circumflex /dotaccent /hungarumlaut /ogonek /ring \r\n"
    "/tilde 39 /quotesingle 96 /grave 128 /bullet /dagger /daggerdbl /ellipsis /emdash /endash \r\n"
    "/florin /fraction /guilsinglleft /guilsinglright /minus /perthousand /quotedblbase /quotedblleft \r\n"
    "/quotedblright /quoteleft /quoteright /quotesinglbase /trademark /fi /fl /Lslash /OE /Scaron \r\n"
    "/Ydieresis /Zcaron /dotlessi /lslash /oe /scaron /zcaron 160 /Euro /exclamdown /cent /sterling \r\n"
    "/currency /yen /brokenbar /section /dieresis /copyright /ordfeminine /guillemotleft /logicalnot \r\n"
    "/.notdef /registered /macron /degree /plusminus /twosuperior /threesuperior /acute /mu /paragraph \r\n"
    "/periodcentered /cedilla /onesuperior /ordmasculine /guillemotright /onequarter /onehalf \r\n"
    "/threequarters /questiondown /Agrave /Aacute /Acircumflex /Atilde /Adieresis /Aring /AE /Ccedilla \r\n"
    "/Egrave /Eacute /Ecircumflex /Edieresis /Igrave /Iacute /Icircumflex /Idieresis /Eth /Ntilde \r\n"
    "/Ograve /Oacute /Ocircumflex /Otilde /Odieresis /multiply /Oslash /Ugrave /Uacute /Ucircumflex \r\n"
    "/Udieresis /Yacute /Thorn /germandbls /agrave /aacute /acircumflex /atilde /adieresis /aring /ae \r\n"
    "/ccedilla /egrave /eacute /ecircumflex /edieresis /igrave /iacute /icircumflex /idieresis /eth \r\n"
    "/ntilde /ograve /oacute /ocircumflex /otilde /odieresis /divide /oslash /ugrave /uacute \r\n"
    "/ucircumflex /udieresis /yacute /thorn /ydieresis ] \r\n";

constexpr std::string_view kDefaultAppearance = "(/Helv 0 Tf 0 g )";

// Replaces the value of an entry, or adds the entry right before the end of the dictionary. A dictionary that has no end
// in an object that has one is edited before its last ">>", where damaged files are read on.
void setValue(std::string& object, std::string_view key, std::string_view value) {
    const bool isThere = lookUp(object, key).has_value();
    if (setEntry(object, key, value, isThere ? EntryLayout::Lines : EntryLayout::Splice)) return;
    const std::size_t close = object.rfind(">>");
    if (close != std::string::npos) object.insert(close, text(key, ' ', value, "\r\n"));
}

// Removes an entry with the line end behind a plain value, and further ones with its key.
void removeEntry(std::string& object, std::string_view key) {
    const Dictionary dictionary(object);
    const Dictionary::Entry* const entry = dictionary.entry(key);
    const auto value = lookUp(object, key);
    if (entry != nullptr && value && value->data() == entry->value.data()) {
        const std::size_t begin = offsetIn(object, entry->key);
        object.erase(begin, offsetIn(object, *value) + value->size() - begin);
    }
    setEntry(object, key, "");
}

// Where annotations stand in their array themselves, "null" may be a word in a string or a value of theirs.
std::string withAnnotation(std::string_view array, std::string_view item) {
    const std::size_t close = array.rfind(']');
    const bool onlyReferences = array.find_first_of("(<") == std::string_view::npos;
    if (onlyReferences || close == std::string_view::npos) return appendToRefArray(array, item);
    return text(array.substr(0, close), item, array.substr(close));
}

std::string referenceText(int number) { return text(number, " 0 R"); }

bool isDirectDictionary(std::string_view value) { return value.starts_with("<<"); }

bool holdsArray(const CPdfObj* object) {
    return object != nullptr && object->content().find('[') != std::string_view::npos;
}

}  // namespace

int Preparation::decideForm() {
    formValue_ = lookUpValue(catalogue_->content(), "/AcroForm");
    if (!isDirectDictionary(formValue_)) formObject_ = referencedObject(document_, formValue_);
    if (formObject_ != nullptr && formObject_->content().empty()) formObject_ = nullptr;
    hasForm_ = isDirectDictionary(formValue_) || formObject_ != nullptr;
    const std::string_view form = formObject_ != nullptr ? formObject_->content() : formValue_;
    needsFonts_ = !hasForm_ || !lookUp(form, "/DR");
    return VARNPDF_OK;
}

void Preparation::updateForm() {
    if (hasForm_) {
        logDebug(loggers::sign, "'/AcroForm'-Tag wurde gefunden");
        logDebug(loggers::sign, formObject_ != nullptr
                                    ? "AcroForm mit Referenz (auf Objekt oder Array) "
                                    : "AcroForm KEINE Referenz auf Objekt sondern direktes Dictionary");
        if (needsFonts_) logDebug(loggers::sign, "Encoding-Objekt wegen missing /DR");
    }
    if (needsFonts_) writeFonts();
    if (!hasForm_) {
        writeNewForm();
    } else if (formObject_ != nullptr) {
        updateFormEntries(update_.change(*formObject_));
    } else {
        std::string form(formValue_);
        updateFormEntries(form);
        setValue(update_.change(*catalogue_), "/AcroForm", form);
    }
}

void Preparation::updateFormEntries(std::string& form) {
    addToFields(form);
    if (!lookUp(form, "/SigFlags")) logDebug(loggers::sign, "/SigFlags nicht gefunden. Lege neuen Eintrag an.");
    setValue(form, "/SigFlags", "3");
    if (needsFonts_) {
        setValue(form, "/DR",
                 text("<< \r\n/Font << \r\n/ZaDb ", referenceText(numbers_.symbols), " \r\n/Helv ",
                      referenceText(numbers_.helvetica), " \r\n>> \r\n/Encoding << \r\n/PDFDocEncoding ",
                      referenceText(numbers_.encoding), " \r\n>> \r\n>>"));
    }
    if (!lookUp(form, "/DA")) setValue(form, "/DA", kDefaultAppearance);
    const auto needed = lookUp(form, "/NeedAppearances");
    if (needed && trim(*needed) != "false") {
        logDebug(loggers::sign, "   --> nicht false, also korrigieren");
        setValue(form, "/NeedAppearances", "false");
    }
}

void Preparation::addToFields(std::string& form) {
    const std::string item = text(' ', numbers_.widget, " 0 R");
    if (!lookUp(form, "/Fields")) setValue(form, "/Fields", "[]");
    const std::string value(lookUpValue(form, "/Fields"));
    if (value.starts_with('[')) {
        setValue(form, "/Fields", appendToRefArray(value, item));
        return;
    }
    const CPdfObj* const original = referencedObject(document_, value);
    if (holdsArray(original)) {
        std::string& fields = update_.change(*original);
        fields = appendToRefArray(fields, item);
    } else {
        setValue(form, "/Fields", text("[", referenceText(numbers_.widget), "]"));
    }
}

void Preparation::writeNewForm() {
    update_.put(numbers_.fields,
                text(numbers_.fields, " 0 obj\r\n[\r\n   ", numbers_.widget, " 0 R\r\n]\r\nendobj\r\n"));
    update_.put(numbers_.form,
                text(numbers_.form, " 0 obj\r\n<<\r\n/Fields ", numbers_.fields, " 0 R\r\n/SigFlags 3\r\n/DR << \r\n",
                     "/Font << \r\n/ZaDb ", numbers_.symbols, " 0 R \r\n/Helv ", numbers_.helvetica, " 0 R \r\n>> \r\n",
                     "/Encoding << \r\n/PDFDocEncoding ", numbers_.encoding, " 0 R \r\n>> \r\n>> \r\n",
                     "/DA (/Helv 0 Tf 0 g ) \r\n>>\r\nendobj\r\n"));
}

void Preparation::writeFonts() {
    update_.put(numbers_.symbols, text(numbers_.symbols, " 0 obj\r\n<< \r\n/Type /Font \r\n/Name /ZaDb \r\n",
                                       "/BaseFont /ZapfDingbats \r\n/Subtype /Type1 \r\n>> \r\nendobj\r\n"));
    update_.put(numbers_.helvetica,
                text(numbers_.helvetica, " 0 obj\r\n<< \r\n/Type /Font \r\n/Name /Helv \r\n/BaseFont /Helvetica \r\n",
                     "/Subtype /Type1 \r\n/Encoding ", numbers_.encoding, " 0 R \r\n>> \r\nendobj\r\n"));
    update_.put(numbers_.encoding,
                text(numbers_.encoding, " 0 obj\r\n<< \r\n/Type /Encoding \r\n", kDifferences, ">> \r\nendobj\r\n"));
}

void Preparation::updateCatalogue() {
    if (!hasForm_) setValue(update_.change(*catalogue_), "/AcroForm", referenceText(numbers_.form));
    if (metadata_) setValue(update_.change(*catalogue_), "/Metadata", referenceText(numbers_.metadata));
    if (!lookUp(update_.current(*catalogue_), "/MarkInfo")) {
        logDebug(loggers::sign, "Kein MarkInfo-Objekt gefunden, erstelle neuen Schluessel im Root Obj (",
                 catalogue_->GetObjNum(), ")");
        setValue(update_.change(*catalogue_), "/MarkInfo", "<</Marked false>>");
    }
    if (lookUp(update_.current(*catalogue_), "/OpenAction")) {
        removeEntry(update_.change(*catalogue_), "/OpenAction");
        logDebug(loggers::sign, " Schluessel 'OpenActions' entfernt ");
    }
}

void Preparation::newAnnots(std::string_view comment) {
    update_.put(numbers_.annots, text(numbers_.annots, " 0 obj\r\n", comment, "\r\n[\r\n    ", numbers_.widget,
                                      " 0 R\r\n]\r\nendobj\r\n"));
}

// The widget belongs to one page; in an array that pages share it would show on all of them (ISO 32000-2 12.5.2).
bool Preparation::otherPageHas(const CPdfObj& annots) {
    CPdfObj* const root = pagesRoot(document_, *catalogue_);
    if (root == nullptr) return false;
    const auto& pages = pagesBelow(document_, *root);
    return std::any_of(pages.begin(), pages.end(), [&](const CPdfObj* page) {
        return page != page_ && referencedObject(document_, lookUpValue(page->content(), "/Annots")) == &annots;
    });
}

int Preparation::updateAnnots() {
    constexpr std::string_view kComment = "% neues Annots-Objekt-Array durch SignPDF ";
    const std::string item = text(' ', numbers_.widget, " 0 R");
    const auto entry = lookUp(update_.current(*page_), "/Annots");
    const std::string value(entry.value_or(std::string_view{}));
    const CPdfObj* const original = value.starts_with('[') ? nullptr : referencedObject(document_, value);
    if (!entry) {
        newAnnots(kComment);
        setValue(update_.change(*page_), "/Annots", referenceText(numbers_.annots));
    } else if (value.starts_with('[')) {
        setValue(update_.change(*page_), "/Annots", withAnnotation(value, item));
    } else if (value.starts_with("null")) {
        logDebug(loggers::sign, "'/Annot null' gefunden und abgefangen");
        newAnnots("% neues Annots-Objekt-Array durch SignPDF (special case war NULL)");
        setValue(update_.change(*page_), "/Annots", referenceText(numbers_.annots));
    } else if (!holdsArray(original)) {
        logDebug(loggers::sign, "Annot-Verweis nicht gefunden! Erstelle das Objekt neu");
        newAnnots(kComment);
        setValue(update_.change(*page_), "/Annots", referenceText(numbers_.annots));
    } else if (otherPageHas(*original)) {
        logDebug(loggers::sign, "Annots-Array gehoert mehreren Seiten! Erstelle ein eigenes");
        update_.put(numbers_.annots,
                    objectText(numbers_.annots, 0, appendToRefArray(update_.current(*original), item)));
        setValue(update_.change(*page_), "/Annots", referenceText(numbers_.annots));
    } else {
        std::string& annots = update_.change(*original);
        annots = withAnnotation(annots, item);
    }
    return VARNPDF_OK;
}

}  // namespace varnpdf
