// CPdf: locating cross-reference sections and reading their trailers.
#include "model/DictionaryEntry.h"
#include "reader/KeywordSearch.h"
#include "reader/SectionText.h"
#include "support/Log.h"
#include "syntax/Reference.h"
#include "varnpdf/Pdf.h"

using namespace varnpdf;

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
    trailer.SetPosition(static_cast<int>(from), static_cast<int>(to));
    trailer.SetIsCrossRefStream(isStream);
    trailer.SetXRef(static_cast<int>(section));
}

void setIndex(CPdfTrailer& trailer, std::string_view keys) {
    const auto index = findLaterEntry(keys, "/Index");
    if (!index) return;
    std::string text(index->value.of(keys));
    trailer.Setm_cIndexField(reinterpret_cast<unsigned char*>(text.data()), static_cast<int>(text.size()));
}

std::string_view trimmedEntry(std::string_view keys, std::string_view key, std::string_view set) {
    return trimRight(entryValue(keys, key), set);
}

}  // namespace

void CPdf::RetrieveLastPdfTrailer() {
    logDebug(m_logger, "### RetrieveLastPdfTrailer START");
    const std::string_view text = view();
    const int keyword = GotoLastId("startxref");
    if (keyword < 1) {
        logDebug(m_logger, "### RetrieveLastPdfTrailer ABBRUCH (kein startxref gefunden)");
        return;
    }
    if (!lastTrailer_ || !updateTrailer_) return;
    std::size_t at = readStartXRef(static_cast<std::size_t>(keyword));
    if (at + 4 > text.size()) {
        logDebug(m_logger, " + startxref ist groesser als die PDFContent-Laenge. ",
                 "Suche nach 'xref' erfolgt manuell");
        at = text.find(".xref");
        if (at == kNone || at + 1 + 4 >= text.size()) {
            logDebug(m_logger, "### RetrieveLastPdfTrailer ABBRUCH (kein xref bei manueller Suche gefunden)");
            return;
        }
        ++at;
    }
    while (at < text.size() && isWhite(text[at])) ++at;
    if (!takeNewestSection(at)) return;
    readNewestKeys();
    logDebug(m_logger, "### RetrieveLastPdfTrailer ENDE");
}

// The number behind "startxref", on the same line or the next one. A negative one lies behind every end.
std::size_t CPdf::readStartXRef(std::size_t at) {
    Cursor cursor(view(), at);
    cursor.take("startxref");
    const auto number = cursor.takeInt();
    return static_cast<std::size_t>(static_cast<unsigned int>(number.value_or(0)));
}

bool CPdf::takeNewestSection(std::size_t offset) {
    if (view().substr(offset).starts_with("xref")) return takeNewestTable(offset);
    logDebug(m_logger, "Inhalt weiterbehandeln als CrossRef");
    return takeNewestStream(offset);
}

bool CPdf::takeNewestTable(std::size_t offset) {
    const std::size_t trailer = nextId("trailer", offset);
    const std::size_t end = nextId("startxref", offset);
    if (trailer == kNone || end == kNone) {
        logDebug(m_logger, "### RetrieveLastPdfTrailer ABBRUCH 'Trailer' nicht gefunden !!!");
        return false;
    }
    const std::string_view content = view().substr(offset, end - offset);
    for (CPdfTrailer* const target : {lastTrailer_.get(), updateTrailer_.get()}) {
        fill(*target, content, offset, trailer, trailer + content.size(), false);
    }
    return true;
}

bool CPdf::takeNewestStream(std::size_t offset) {
    const std::string_view text = view();
    const std::size_t lineEnd = text.find('\n', offset);
    if (lineEnd == kNone) {
        logDebug(m_logger, "### RetrieveLastPdfTrailer ABBRUCH (Zeilenende irgendwie nicht gefunden)");
        return false;
    }
    const std::string_view line = text.substr(offset, lineEnd - offset);
    if (line.find("obj") == kNone || !scanReference(line)) {
        logDebug(m_logger, "### RetrieveLastPdfTrailer ABBRUCH (obj-Zeile konnte nicht eingelesen werden)");
        return false;
    }
    const std::size_t end = nextId(kEndObj, offset);
    if (offset == 0 || end == kNone) {
        lastTrailer_.reset();
        updateTrailer_.reset();
        return false;
    }
    const std::string_view content = text.substr(offset, end + kEndObj.size() - offset);
    for (CPdfTrailer* const target : {lastTrailer_.get(), updateTrailer_.get()}) {
        fill(*target, content, offset, offset, end, true);
    }
    return true;
}

void CPdf::readNewestKeys() {
    const std::string_view keys = keyText(*lastTrailer_);
    const bool isEncrypted = findLaterEntry(keys, "/Encrypt").has_value();
    logDebug(m_logger, isEncrypted ? " + Encrypt: JA" : " + Encrypt: NEIN");
    encrypted_ = isEncrypted ? 1 : 0;
    if (const auto number = entryInt(keys, "/XRefStm")) lastTrailer_->SetXRefStmAddr(*number);
    if (const auto number = entryInt(keys, "/Prev")) lastTrailer_->SetPrev(*number);
    updateTrailer_->SetPrev(lastTrailer_->GetXRef());
    for (CPdfTrailer* const target : {lastTrailer_.get(), updateTrailer_.get()}) {
        target->setEncrypt(entryValue(keys, "/Encrypt"));
        target->setId(trimmedEntry(keys, "/ID", " \n\r\t"));
        if (findLaterEntry(keys, "/Info")) {
            target->setInfo(trimmedEntry(keys, "/Info", "\n\r"));
            target->SetHasInfoFlag(true);
        }
        if (findLaterEntry(keys, "/Root")) target->setRoot(trimmedEntry(keys, "/Root", "\n\r"));
        if (const auto size = entryInt(keys, "/Size")) target->SetSize(*size);
        if (target->GetIsCrossRefStream()) setIndex(*target, keys);
    }
}

bool CPdf::RetrievePdfTrailer(CPdfTrailer* trailer, int* offset) {
    const std::string_view text = view();
    if (trailer == nullptr || offset == nullptr) return true;
    trailer->SetXRef(*offset);
    if (*offset < 0 || static_cast<std::size_t>(*offset) >= text.size()) return true;
    const auto at = static_cast<std::size_t>(*offset);
    // A section that has no end gets no content, and so no entries and no /Prev.
    if (lineAt(text, at).find("xref") != kNone) {
        const std::size_t end = nextId("startxref", at);
        const std::size_t keyword = nextId("trailer", at);
        if (end == kNone || keyword == kNone) return true;
        fill(*trailer, text.substr(at, end - at), at, keyword, end, false);
    } else {
        const std::size_t end = nextId(kEndObj, at);
        if (end == kNone) return true;
        fill(*trailer, text.substr(at, end + kEndObj.size() - at), at, at, end, true);
    }
    const std::string_view keys = keyText(*trailer);
    trailer->setEncrypt(entryValue(keys, "/Encrypt"));
    if (findLaterEntry(keys, "/ID")) {
        trailer->setId(trimmedEntry(keys, "/ID", " \n\r\t"));
        logDebug(m_logger, "/ID :", trailer->id());
    } else {
        logDebug(m_logger, "/ID nicht gefunden, ist also leer");
    }
    trailer->setInfo(trimmedEntry(keys, "/Info", "\n\r"));
    trailer->setRoot(trimmedEntry(keys, "/Root", "\n\r"));
    if (const auto number = entryInt(keys, "/Prev")) trailer->SetPrev(*number);
    if (const auto number = entryInt(keys, "/Size")) trailer->SetSize(*number);
    if (trailer->GetIsCrossRefStream()) setIndex(*trailer, keys);
    return true;
}

void CPdf::CheckLinearization() {
    constexpr std::size_t kHead = 1024;  // the dictionary lies within the first 1024 bytes (ISO 32000-2 F.3.3)
    linearized_ = false;
    if (contentLen_ <= kHead) return;
    const std::string_view head = view().substr(0, kHead);
    Cursor cursor(head);
    for (cursor.skip(kIsEol); cursor.peek() == '%'; cursor.skip(kIsEol)) cursor.takeUntil(kIsEol);
    const std::string_view rest = cursor.rest();
    const std::size_t end = rest.find(kEndObj);
    int found = 0;
    if (end != kNone) {
        const std::string_view object = rest.substr(0, end + kEndObj.size());
        linearized_ = findLaterEntry(object, "/Linearized").has_value();
        for (const char* const key : {"/Linearized", "/L", "/H", "/O", "/E", "/N"}) {
            found += linearized_ && findLaterEntry(object, key) ? 1 : 0;
        }
        // /P, the first page's number, stands in for a missing /T.
        found += linearized_ && (findLaterEntry(object, "/T") || findLaterEntry(object, "/P")) ? 1 : 0;
    }
    constexpr int kRequired = 7;
    if (found != kRequired) {
        linearized_ = false;
        logDebug(m_logger, "required datas missing in linearization object!");
    }
    logDebug(m_logger, "### CheckLinearization ENDE");
}
