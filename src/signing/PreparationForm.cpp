// One preparation: AcroForm (ISO 32000-2 12.7.3), catalogue, page annotations.
#include <algorithm>

#include "model/DictionaryEntry.h"
#include "signing/Preparation.h"
#include "support/Text.h"
#include "syntax/Reference.h"
#include "varnpdf/result.h"
#include "writer/RefArray.h"
#include "writer/SectionTexts.h"

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

constexpr const char* kDefaultAppearance = "(/Helv 0 Tf 0 g )";

// White space behind the old value stays. The value may hold NULs.
void replaceEntry(CPdfObj& object, std::string_view key, std::string_view value) {
    const std::string_view old = object.content();
    const auto entry = findLaterEntry(old, key);
    if (!entry) return;
    const std::size_t end = entry->value.begin + entry->value.of(old).find_last_not_of(" \t\r\n\f\a") + 1;
    object.setContent(text(old.substr(0, entry->key), key, ' ', value, old.substr(end)));
}

void addEntry(CPdfObj& object, const char* key, const std::string& value) {
    object.AddDictionaryEntry(key, value.c_str());
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

}  // namespace

int Preparation::decideForm() {
    const std::string_view value = entryValue(catalogue_->content(), "/AcroForm");
    const CPdfObj* const object = isDirectDictionary(value) ? nullptr : referencedObject(documentOf(pdf_), value);
    hasForm_ = isDirectDictionary(value) || (object != nullptr && !object->content().empty());
    needsFonts_ = true;
    if (!hasForm_) return VARNPDF_OK;
    logDebug(logger_, "'/AcroForm'-Tag wurde gefunden");
    logDebug(logger_, object != nullptr ? "AcroForm mit Referenz (auf Objekt oder Array) "
                                        : "AcroForm KEINE Referenz auf Objekt sondern direktes Dictionary");
    needsFonts_ = !findLaterEntry(object != nullptr ? object->content() : value, "/DR").has_value();
    if (needsFonts_) logDebug(logger_, "Encoding-Objekt wegen missing /DR");
    return VARNPDF_OK;
}

void Preparation::updateForm() {
    if (needsFonts_) writeFonts();
    if (!hasForm_) {
        writeNewForm();
        return;
    }
    const std::string_view value = entryValue(catalogue_->content(), "/AcroForm");
    if (!isDirectDictionary(value)) {
        updateFormEntries(*changedReference(value));
        return;
    }
    CPdfObj form;
    form.setContent(value);
    updateFormEntries(form);
    replaceEntry(changed(*catalogue_), "/AcroForm", form.content());
}

void Preparation::updateFormEntries(CPdfObj& form) {
    addToFields(form);
    if (findLaterEntry(form.content(), "/SigFlags")) {
        replaceEntry(form, "/SigFlags", "3");
    } else {
        logDebug(logger_, "/SigFlags nicht gefunden. Lege neuen Eintrag an.");
        addEntry(form, "/SigFlags", "3");
    }
    if (needsFonts_) {
        addEntry(form, "/DR",
                 text("<< \r\n/Font << \r\n/ZaDb ", referenceText(numbers_.symbols), " \r\n/Helv ",
                      referenceText(numbers_.helvetica), " \r\n>> \r\n/Encoding << \r\n/PDFDocEncoding ",
                      referenceText(numbers_.encoding), " \r\n>> \r\n>>"));
    }
    if (!findLaterEntry(form.content(), "/DA")) addEntry(form, "/DA", kDefaultAppearance);
    if (const auto needed = findLaterEntry(form.content(), "/NeedAppearances")) {
        if (trim(needed->value.of(form.content())) != "false") {
            logDebug(logger_, "   --> nicht false, also korrigieren");
            replaceEntry(form, "/NeedAppearances", "false");
        }
    }
}

void Preparation::addToFields(CPdfObj& form) {
    const std::string item = text(' ', numbers_.widget, " 0 R");
    if (!findLaterEntry(form.content(), "/Fields")) addEntry(form, "/Fields", "[]");
    const std::string value(entryValue(form.content(), "/Fields"));
    if (value.starts_with('[')) {
        replaceEntry(form, "/Fields", appendToRefArray(value, item));
        return;
    }
    CPdfObj* const original = referencedObject(documentOf(pdf_), value);
    if (original != nullptr && original->content().find('[') != std::string_view::npos) {
        CPdfObj& fields = changed(*original);
        fields.setContent(appendToRefArray(fields.content(), item));
    } else {
        replaceEntry(form, "/Fields", text("[", referenceText(numbers_.widget), "]"));
    }
}

void Preparation::writeNewForm() {
    addNew(numbers_.fields, text(numbers_.fields, " 0 obj\r\n[\r\n   ", numbers_.widget, " 0 R\r\n]\r\nendobj\r\n"));
    addNew(numbers_.form,
           text(numbers_.form, " 0 obj\r\n<<\r\n/Fields ", numbers_.fields, " 0 R\r\n/SigFlags 3\r\n/DR << \r\n",
                "/Font << \r\n/ZaDb ", numbers_.symbols, " 0 R \r\n/Helv ", numbers_.helvetica, " 0 R \r\n>> \r\n",
                "/Encoding << \r\n/PDFDocEncoding ", numbers_.encoding, " 0 R \r\n>> \r\n>> \r\n",
                "/DA (/Helv 0 Tf 0 g ) \r\n>>\r\nendobj\r\n"));
}

void Preparation::writeFonts() {
    addNew(numbers_.symbols, text(numbers_.symbols, " 0 obj\r\n<< \r\n/Type /Font \r\n/Name /ZaDb \r\n",
                                  "/BaseFont /ZapfDingbats \r\n/Subtype /Type1 \r\n>> \r\nendobj\r\n"));
    addNew(numbers_.helvetica,
           text(numbers_.helvetica, " 0 obj\r\n<< \r\n/Type /Font \r\n/Name /Helv \r\n/BaseFont /Helvetica \r\n",
                "/Subtype /Type1 \r\n/Encoding ", numbers_.encoding, " 0 R \r\n>> \r\nendobj\r\n"));
    addNew(numbers_.encoding,
           text(numbers_.encoding, " 0 obj\r\n<< \r\n/Type /Encoding \r\n", kDifferences, ">> \r\nendobj\r\n"));
}

void Preparation::updateCatalogue() {
    const std::string_view text = catalogue_->content();
    if (!hasForm_) {
        CPdfObj& catalogue = changed(*catalogue_);
        // An entry that leads nowhere would win over the new one in some readers.
        if (findLaterEntry(text, "/AcroForm")) {
            replaceEntry(catalogue, "/AcroForm", referenceText(numbers_.form));
        } else {
            addEntry(catalogue, "/AcroForm", referenceText(numbers_.form));
        }
    }
    if (metadata_) replaceEntry(changed(*catalogue_), "/Metadata", referenceText(numbers_.metadata));
    if (!findLaterEntry(text, "/MarkInfo")) {
        logDebug(logger_, "Kein MarkInfo-Objekt gefunden, erstelle neuen Schluessel im Root Obj (",
                 catalogue_->GetObjNum(), ")");
        addEntry(changed(*catalogue_), "/MarkInfo", "<</Marked false>>");
    }
    if (findLaterEntry(text, "/OpenAction")) {
        changed(*catalogue_).DeleteDictionaryEntry("/OpenAction", 1);
        logDebug(logger_, " Schluessel 'OpenActions' entfernt ");
    }
}

void Preparation::newAnnots(std::string_view comment) {
    addNew(numbers_.annots,
           text(numbers_.annots, " 0 obj\r\n", comment, "\r\n[\r\n    ", numbers_.widget, " 0 R\r\n]\r\nendobj\r\n"));
}

// The widget belongs to one page; in an array that pages share it would show on all of them (ISO 32000-2 12.5.2).
bool Preparation::otherPageHas(const CPdfObj& annots) {
    CPdfObj* const root = referencedObject(documentOf(pdf_), entryValue(catalogue_->content(), "/Pages"));
    if (root == nullptr) return false;
    const auto& pages = pagesBelow(documentOf(pdf_), *root);
    return std::any_of(pages.begin(), pages.end(), [&](const CPdfObj* page) {
        return page != page_ && referencedObject(documentOf(pdf_), entryValue(page->content(), "/Annots")) == &annots;
    });
}

void Preparation::updateAnnots() {
    const std::string item = text(' ', numbers_.widget, " 0 R");
    const auto entry = findLaterEntry(page_->content(), "/Annots");
    if (!entry) {
        newAnnots("% neues Annots-Objekt-Array durch SignPDF ");
        std::string added = text("/Annots ", numbers_.annots, " 0 R\r\n");
        changed(*page_).AddDictionaryEntry(added.data());
        return;
    }
    const std::string value(entry->value.of(page_->content()));
    if (value.starts_with('[')) {
        replaceEntry(changed(*page_), "/Annots", withAnnotation(value, item));
        return;
    }
    if (value.starts_with("null")) {
        logDebug(logger_, "'/Annot null' gefunden und abgefangen");
        newAnnots("% neues Annots-Objekt-Array durch SignPDF (special case war NULL)");
        replaceEntry(changed(*page_), "/Annots", referenceText(numbers_.annots));
        return;
    }
    CPdfObj* const original = referencedObject(documentOf(pdf_), value);
    if (original != nullptr && original->content().find('[') != std::string_view::npos) {
        if (otherPageHas(*original)) {
            logDebug(logger_, "Annots-Array gehoert mehreren Seiten! Erstelle ein eigenes");
            addNew(numbers_.annots, objectText(numbers_.annots, 0, appendToRefArray(original->content(), item)));
            replaceEntry(changed(*page_), "/Annots", referenceText(numbers_.annots));
            return;
        }
        CPdfObj& annots = changed(*original);
        annots.setContent(withAnnotation(annots.content(), item));
        return;
    }
    logDebug(logger_, "Annot-Verweis nicht gefunden! Erstelle das Objekt neu");
    newAnnots("% neues Annots-Objekt-Array durch SignPDF ");
    replaceEntry(changed(*page_), "/Annots", referenceText(numbers_.annots));
}

}  // namespace varnpdf
