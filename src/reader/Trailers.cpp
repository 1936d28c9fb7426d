// Locating cross-reference sections and reading their trailers.
#include "reader/Trailers.h"

#include <algorithm>

#include "model/DictionaryEntry.h"
#include "reader/Search.h"
#include "reader/SectionText.h"
#include "support/Loggers.h"
#include "syntax/Reference.h"

namespace varnpdf {
namespace {

constexpr std::size_t kNone = KeywordSearch::kNone;
constexpr std::string_view kEndObj = "endobj";

std::string_view lineAt(std::string_view text, std::size_t at) {
    constexpr std::size_t kLongestLine = 1024;
    text = text.substr(at, kLongestLine);
    Cursor cursor(text);
    cursor.skip(kIsEol);
    return cursor.takeUntil(kIsEol).of(text);
}

void fill(CPdfTrailer& trailer, std::string_view content, std::size_t section, std::size_t from, std::size_t to,
          bool isStream) {
    trailer.borrowContent(content);
    trailer.SetPosition(from == kNone ? -1 : static_cast<int>(from), static_cast<int>(to));
    trailer.SetIsCrossRefStream(isStream);
    trailer.SetXRef(static_cast<int>(section));
}

void setIndex(CPdfTrailer& trailer, const Lookups& keys) {
    const auto index = keys.find("/Index");
    if (!index) return;
    std::string text(*index);
    trailer.Setm_cIndexField(reinterpret_cast<unsigned char*>(text.data()), static_cast<int>(text.size()));
}

std::string_view trimmedEntry(const Lookups& keys, std::string_view key, std::string_view set) {
    return trimRight(keys.value(key), set);
}

// The number behind "startxref", on the same line or the next one. A negative one lies behind every end.
std::size_t readStartXRef(std::string_view text, std::size_t at) {
    Cursor cursor(text, at);
    cursor.take("startxref");
    const auto number = cursor.takeInt();
    return static_cast<std::size_t>(static_cast<unsigned int>(number.value_or(0)));
}

bool takeNewestTable(Document& document, std::size_t offset) {
    const std::size_t trailer = nextKeyword(document, "trailer", offset);
    const std::size_t end = nextKeyword(document, "startxref", offset);
    if (trailer == kNone || end == kNone) {
        logDebug(loggers::pdf, "### RetrieveLastPdfTrailer ABBRUCH 'Trailer' nicht gefunden !!!");
        return false;
    }
    const std::string_view content = document.view().substr(offset, end - offset);
    for (CPdfTrailer* const target : {document.newest.get(), document.update.get()}) {
        fill(*target, content, offset, trailer, trailer + content.size(), false);
    }
    return true;
}

bool takeNewestStream(Document& document, std::size_t offset) {
    const std::string_view text = document.view();
    const std::size_t lineEnd = text.find('\n', offset);
    if (lineEnd == kNone) {
        logDebug(loggers::pdf, "### RetrieveLastPdfTrailer ABBRUCH (Zeilenende irgendwie nicht gefunden)");
        return false;
    }
    const std::string_view line = text.substr(offset, lineEnd - offset);
    if (line.find("obj") == kNone || !scanReference(line)) {
        logDebug(loggers::pdf, "### RetrieveLastPdfTrailer ABBRUCH (obj-Zeile konnte nicht eingelesen werden)");
        return false;
    }
    const std::size_t end = nextKeyword(document, kEndObj, offset);
    if (offset == 0 || end == kNone) {
        document.newest.reset();
        document.update.reset();
        return false;
    }
    const std::string_view content = text.substr(offset, end + kEndObj.size() - offset);
    for (CPdfTrailer* const target : {document.newest.get(), document.update.get()}) {
        fill(*target, content, offset, offset, end, true);
    }
    return true;
}

bool takeNewestSection(Document& document, std::size_t offset) {
    if (document.view().substr(offset).starts_with("xref")) return takeNewestTable(document, offset);
    logDebug(loggers::pdf, "Inhalt weiterbehandeln als CrossRef");
    return takeNewestStream(document, offset);
}

void readNewestKeys(Document& document) {
    CPdfTrailer& newest = *document.newest;
    const Lookups keys(keyText(newest));
    document.encrypted = keys.find("/Encrypt").has_value();
    logDebug(loggers::pdf, document.encrypted ? " + Encrypt: JA" : " + Encrypt: NEIN");
    if (const auto number = keys.number("/XRefStm")) newest.SetXRefStmAddr(*number);
    if (const auto number = keys.number("/Prev")) newest.SetPrev(*number);
    document.update->SetPrev(newest.GetXRef());
    for (CPdfTrailer* const target : {&newest, document.update.get()}) {
        target->setEncrypt(keys.value("/Encrypt"));
        target->setId(trimmedEntry(keys, "/ID", " \n\r\t"));
        if (keys.find("/Info")) {
            target->setInfo(trimmedEntry(keys, "/Info", "\n\r"));
            target->SetHasInfoFlag(true);
        }
        if (keys.find("/Root")) target->setRoot(trimmedEntry(keys, "/Root", "\n\r"));
        if (const auto size = keys.number("/Size")) target->SetSize(*size);
        if (target->GetIsCrossRefStream()) setIndex(*target, keys);
    }
}

}  // namespace

void readNewestTrailer(Document& document) {
    logDebug(loggers::pdf, "### RetrieveLastPdfTrailer START");
    const std::string_view text = document.view();
    const std::size_t keyword = lastKeyword(document, "startxref");
    if (keyword == kNone || keyword < 1) {
        logDebug(loggers::pdf, "### RetrieveLastPdfTrailer ABBRUCH (kein startxref gefunden)");
        return;
    }
    if (!document.newest || !document.update) return;
    std::size_t at = readStartXRef(text, keyword);
    if (at + 4 > text.size()) {
        logDebug(loggers::pdf, " + startxref ist groesser als die PDFContent-Laenge. ",
                 "Suche nach 'xref' erfolgt manuell");
        at = text.find(".xref");
        if (at == kNone || at + 1 + 4 >= text.size()) {
            logDebug(loggers::pdf, "### RetrieveLastPdfTrailer ABBRUCH (kein xref bei manueller Suche gefunden)");
            return;
        }
        ++at;
    }
    while (at < text.size() && isWhite(text[at])) ++at;
    if (!takeNewestSection(document, at)) return;
    readNewestKeys(document);
    logDebug(loggers::pdf, "### RetrieveLastPdfTrailer ENDE");
}

void readTrailer(Document& document, CPdfTrailer& trailer, int offset) {
    const std::string_view text = document.view();
    trailer.SetXRef(offset);
    if (offset < 0 || static_cast<std::size_t>(offset) >= text.size()) return;
    const auto at = static_cast<std::size_t>(offset);
    // A section that has no end gets no content, and so no entries and no /Prev. One whose "trailer" does not stand alone
    // has keys, but no end of its entries.
    if (lineAt(text, at).find("xref") != kNone) {
        const std::size_t end = nextKeyword(document, "startxref", at);
        const std::size_t keyword = nextKeyword(document, "trailer", at);
        if (end == kNone) return;
        fill(trailer, text.substr(at, end - at), at, keyword, end, false);
    } else {
        const std::size_t end = nextKeyword(document, kEndObj, at);
        if (end == kNone) return;
        fill(trailer, text.substr(at, end + kEndObj.size() - at), at, at, end, true);
    }
    const Lookups keys(keyText(trailer));
    trailer.setEncrypt(keys.value("/Encrypt"));
    if (keys.find("/ID")) {
        trailer.setId(trimmedEntry(keys, "/ID", " \n\r\t"));
        logDebug(loggers::pdf, "/ID :", trailer.id());
    } else {
        logDebug(loggers::pdf, "/ID nicht gefunden, ist also leer");
    }
    trailer.setInfo(trimmedEntry(keys, "/Info", "\n\r"));
    trailer.setRoot(trimmedEntry(keys, "/Root", "\n\r"));
    if (const auto number = keys.number("/Prev")) trailer.SetPrev(*number);
    if (const auto number = keys.number("/Size")) trailer.SetSize(*number);
    if (trailer.GetIsCrossRefStream()) setIndex(trailer, keys);
}

void checkLinearization(Document& document) {
    constexpr std::size_t kHead = 1024;  // the dictionary lies within the first 1024 bytes (ISO 32000-2 F.3.3)
    document.linearized = false;
    if (document.length <= kHead) return;
    const std::string_view head = document.view().substr(0, kHead);
    Cursor cursor(head);
    for (cursor.skip(kIsEol); cursor.peek() == '%'; cursor.skip(kIsEol)) cursor.takeUntil(kIsEol);
    const std::string_view rest = cursor.rest();
    const std::size_t end = rest.find(kEndObj);
    int found = 0;
    if (end != kNone) {
        const Lookups object(rest.substr(0, end + kEndObj.size()));
        document.linearized = object.find("/Linearized").has_value();
        for (const char* const key : {"/Linearized", "/L", "/H", "/O", "/E", "/N"}) {
            found += document.linearized && object.find(key).has_value() ? 1 : 0;
        }
        // /P, the first page's number, stands in for a missing /T.
        found += document.linearized && (object.find("/T") || object.find("/P")) ? 1 : 0;
    }
    constexpr int kRequired = 7;
    if (found != kRequired) {
        document.linearized = false;
        logDebug(loggers::pdf, "required datas missing in linearization object!");
    }
    logDebug(loggers::pdf, "### CheckLinearization ENDE");
}

}  // namespace varnpdf
