// The dates of CPdfHelper: faces of the inner functions.
#include <cstring>

#include "support/Guarded.h"
#include "support/Loggers.h"
#include "syntax/Dates.h"
#include "syntax/Text.h"
#include "varnpdf/PdfHelper.h"
#include "varnpdf/PdfObj.h"

using namespace varnpdf;

namespace {

constexpr int kSpare = 57;  // free bytes behind a text whose date is replaced

// What `make` gives, in `out`; null, and nothing stored, without memory.
template <typename Make>
char* copyOut(Make make, char* out) {
    return guardedOr(static_cast<char*>(nullptr), [&] {
        const std::string text = make();
        if (out != nullptr) std::memcpy(out, text.c_str(), text.size() + 1);
        return out;
    });
}

// The same in a text that the thread has for this conversion.
template <std::string (*convert)(std::string_view)>
char* keep(const char* date) {
    return guardedOr(static_cast<char*>(nullptr), [date] {
        thread_local std::string result;
        result = convert(viewOf(date));
        return result.data();
    });
}

using FindValue = std::optional<TextSpan> (*)(std::string_view text, std::size_t key) noexcept;

int replaceIn(char* buf, int pos, int size, const char* date, int* newLen, FindValue findValue) {
    if (newLen != nullptr) *newLen = size - kSpare;
    if (buf == nullptr || newLen == nullptr || pos < 0 || pos >= size - kSpare) return 0;
    const std::string_view text(buf, static_cast<std::size_t>(size - kSpare));
    const std::string_view value = viewOf(date);
    const auto old = findValue(text, static_cast<std::size_t>(pos));
    if (!old || value.empty()) return 0;
    const std::size_t length = text.size() - old->size() + value.size();
    if (length > static_cast<std::size_t>(size)) return 0;
    std::memmove(buf + old->begin + value.size(), buf + old->end, text.size() - old->end);
    std::memcpy(buf + old->begin, value.data(), value.size());
    if (length < static_cast<std::size_t>(size)) buf[length] = '\0';
    *newLen = static_cast<int>(length);
    return 1;
}

}  // namespace

int CPdfHelper::NowPDF(char* out) {
    const char* const copied = copyOut([] { return pdfDate(std::time(nullptr)); }, out);
    return out == nullptr || copied != nullptr ? VARNPDF_OK : VARNPDF_PDF_MEMORY_ALLOCATION;
}

char* CPdfHelper::TimeStruct2AdobeDateString(struct timeb* t, char* out) {
    return copyOut([t] { return t == nullptr ? std::string() : pdfDate(*t); }, out);
}

char* CPdfHelper::TimeStruct2LocaleDateString(int format, struct timeb* t, char* out) {
    return copyOut([=] { return t == nullptr ? std::string() : displayDate(format, *t); }, out);
}

bool CPdfHelper::IsValidDateString(char* s) { return isValidDate(viewOf(s), loggers::helper); }

bool CPdfHelper::CheckDatePosValue(char* s, int from, int to, int min, int max, const char* what) {
    if (from < 0 || to <= from) return false;
    const DateField field{static_cast<std::size_t>(from), static_cast<std::size_t>(to), min, max,
                          what == nullptr ? "" : what};
    return dateFieldHolds(viewOf(s), field, loggers::helper);
}

bool CPdfHelper::CheckDatePosUTValue(char* s, int from, int to) {
    if (from < 0 || to <= from) return false;
    return dateZoneHolds(viewOf(s), static_cast<std::size_t>(from), static_cast<std::size_t>(to));
}

char* CPdfHelper::AdobeDateString2TimeStruct(char* s, struct timeb* t) {
    const auto time = t == nullptr ? std::nullopt : timeOfPdfDate(viewOf(s), loggers::helper);
    if (!time) return nullptr;
    *t = *time;
    thread_local char result[32];
    return ctime_r(&t->time, result);
}

// The text would have to start with the digits of a year from 1970 on and yet have "D:" and its fields where a PDF
// date has them; no text of up to 15 characters does.
char* CPdfHelper::GenTime2TimeStruct(char* /*s*/, struct timeb* /*t*/) { return nullptr; }

char* CPdfHelper::Convert8824DoubleH(char* s) { return keep<convert8824DoubleH>(s); }
char* CPdfHelper::Convert8824to8601(char* s) { return keep<convert8824to8601>(s); }

int CPdfHelper::ReplaceDateISO8601(char* buf, int pos, int size, char* date, int* newLen) {
    return replaceIn(buf, pos, size, date, newLen, xmpDateValue);
}

int CPdfHelper::ReplaceDateISO8824(char* buf, int pos, int size, char* date, int* newLen) {
    return replaceIn(buf, pos, size, date, newLen, literalDateValue);
}

int CPdfHelper::ReplaceModDate(CPdfObj* obj, char* date) {
    if (obj == nullptr || date == nullptr) return 1;
    return guardedOr(0, [&] {
        std::string text(obj->content());
        if (replaceModDate(text, date)) obj->setContent(text);
        return 1;
    });
}
