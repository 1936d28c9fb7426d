// PDF dates and their ISO 8601 form.
#include "syntax/Dates.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdlib>

namespace varnpdf {
namespace {

constexpr std::size_t kNone = std::string_view::npos;

constexpr DateField kFields[] = {
    {2, 6, 0, 9999, "YYYY"}, {6, 8, 1, 12, "MM"},   {8, 10, 1, 31, "DD"},       {10, 12, 0, 23, "HH"},
    {12, 14, 0, 59, "mm"},   {14, 16, 0, 59, "SS"}, {17, 19, 0, 23, "HH(UTC)"}, {20, 22, 0, 59, "mm(UTC)"},
};
// Each ends behind a whole field.
constexpr std::size_t kLengths[] = {6, 8, 10, 12, 14, 16, 17, 19, 23};
constexpr std::size_t kComplete = 23;

// In the order in which they are sought.
constexpr std::string_view kXmpKeys[] = {"pdf:ModDate", "xmp:ModifyDate", "xap:ModifyDate", "xap:MetadataDate"};

std::optional<std::tm> localTime(std::time_t time) {
    tzset();  // localtime_r need not look at TZ
    std::tm local{};
    constexpr int kFirst = 1900;
    if (localtime_r(&time, &local) == nullptr || local.tm_year < -kFirst || local.tm_year > 9999 - kFirst) return {};
    return local;
}

std::string stamp(const std::tm& t, std::string_view inDate, std::string_view between, std::string_view inTime) {
    return text(Digits{t.tm_year + 1900LL, 4}, inDate, Digits{t.tm_mon + 1, 2}, inDate, Digits{t.tm_mday, 2}, between,
                Digits{t.tm_hour, 2}, inTime, Digits{t.tm_min, 2}, inTime, Digits{t.tm_sec, 2});
}

// Readers of our own dates expect the short form west of UTC, so it stays: the hour unpadded, minutes with a sign.
std::string zoneOf(const timeb& time) {
    const bool summer = time.dstflag == 1;
    const bool plus = time.timezone < (summer ? 120 : 60);
    return text(plus ? "+" : "", Digits{-(time.timezone / 60) + (summer ? 1 : 0), 2}, '\'',
                Digits{-time.timezone % 60, 2}, '\'');
}

int numberAt(std::string_view date, std::size_t from, std::size_t count) {
    int number = 0;
    std::from_chars(date.data() + from, date.data() + from + count, number);
    return number;
}

bool isCalendarDay(int year, int month, int day) {
    constexpr std::array kDays = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    if (month < 1 || month > 12) return false;
    const bool leap = year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
    const int days = kDays[static_cast<std::size_t>(month - 1)] + (leap && month == 2 ? 1 : 0);
    return day >= 1 && day <= days;
}

// 1 when the zone's hour is that of our daylight-saving time, 0 for our standard time, -1 when it is neither.
int daylightFlag(int zoneHour) {
    tzset();
    const long standard = -(::timezone / 3600);
    if (::daylight != 0 && zoneHour == standard + 1) return 1;
    return zoneHour == standard ? 0 : -1;
}

bool replaceSpan(std::string& text, const std::optional<TextSpan>& old, std::string_view date) {
    if (!old || date.empty()) return false;
    text.replace(old->begin, old->size(), date);
    return true;
}

// The text from behind the byte at `open`, which must be there and not close an empty element, up to the byte `close`.
// Neither an attribute value nor the text of a simple element holds a "<" (XML 1.0, 2.3 and 2.4).
std::optional<TextSpan> valueBehind(std::string_view text, std::size_t open, char opening, char close) noexcept {
    if (open == kNone || text[open] != opening || (opening == '>' && text[open - 1] == '/')) return {};
    const char ends[] = {close, '<'};
    const std::size_t end = text.find_first_of({ends, sizeof ends}, open + 1);
    if (end == kNone || text[end] != close) return {};
    return TextSpan{open + 1, end};
}

std::string completeDate(const std::tm& time, long secondsEast) {
    const long minutes = std::labs(secondsEast) / 60;
    return text("D:", stamp(time, "", "", ""), secondsEast < 0 ? '-' : '+', Digits{minutes / 60, 2}, '\'',
                Digits{minutes % 60, 2}, '\'');
}

/// A date as it is given: without a zone it is local time.
struct GivenDate {
    std::array<int, 6> fields = {0, 1, 1, 0, 0, 0};  // year, month, day, hour, minute, second
    std::optional<int> minutesEast;
};

std::optional<int> takeDigits(Cursor& in, std::size_t count) {
    const std::string_view digits = in.rest().substr(0, count);
    if (digits.size() < count || !std::ranges::all_of(digits, isDigit)) return std::nullopt;
    in.advance(count);
    return numberAt(digits, 0, count);
}

// The separators in front of month, day, hour, minute and second; ISO 8601 may leave them out like a PDF date.
bool takeFields(Cursor& in, bool isPdf, GivenDate& date) {
    constexpr std::string_view kSeparators = "--T::";
    for (std::size_t i = 0; i < date.fields.size(); ++i) {
        if (i > 0 && !isPdf) {
            const bool separated = in.take(kSeparators[i - 1]) || (i == 3 && in.take(' '));
            if (!separated && (i == 3 || !isDigit(in.peek()))) return i >= 3;
        }
        const auto number = takeDigits(in, i == 0 ? 4 : 2);
        if (!number) return isPdf && i > 0 && !isDigit(in.peek());  // a PDF date may end after any field
        date.fields[i] = *number;
    }
    if (in.take('.')) in.skip(kIsDigit);  // fractions of a second are not kept
    return true;
}

// "Z", "+01'00'", "+01'00", "+01:00", "+0100", "+01"; some producers write "Z00'00'".
bool takeZone(Cursor& in, GivenDate& date) {
    if (in.atEnd()) return true;
    const bool utc = in.take('Z');
    const bool west = !utc && in.take('-');
    if (!utc && !west && !in.take('+')) return false;
    date.minutesEast = 0;
    if (utc && in.atEnd()) return true;
    const auto hours = takeDigits(in, 2);
    if (!hours || *hours > (utc ? 0 : 23)) return false;
    if (!in.take('\'')) {
        if (utc) return false;
        in.take(':');
    }
    const int minutes = in.atEnd() && !utc ? 0 : takeDigits(in, 2).value_or(60);
    in.take('\'');
    date.minutesEast = (west ? -1 : 1) * (*hours * 60 + minutes);
    return minutes <= (utc ? 0 : 59) && in.atEnd();
}

}  // namespace

std::string localPdfDate(std::time_t time) {
    const auto local = localTime(time);
    return local ? completeDate(*local, local->tm_gmtoff) : "";
}

std::optional<std::string> completePdfDate(std::string_view date) {
    const bool isPdf = date.starts_with("D:");
    Cursor in(date, isPdf ? 2 : 0);
    GivenDate given;
    if (!takeFields(in, isPdf, given) || !takeZone(in, given)) return std::nullopt;
    const auto& [year, month, day, hour, minute, second] = given.fields;
    if (!isCalendarDay(year, month, day) || hour > 23 || minute > 59 || second > 59) return std::nullopt;
    std::tm time{};
    time.tm_year = year - 1900;
    time.tm_mon = month - 1;
    time.tm_mday = day;
    time.tm_hour = hour;
    time.tm_min = minute;
    time.tm_sec = second;
    if (given.minutesEast) return completeDate(time, *given.minutesEast * 60L);
    std::tm local = time;
    local.tm_isdst = -1;
    std::mktime(&local);
    return completeDate(time, local.tm_gmtoff);
}

timeb zonedTime(std::time_t time) {
    timeb zoned{};
    zoned.time = time;
    if (const auto local = localTime(time)) zoned.timezone = static_cast<short>(-local->tm_gmtoff / 60);
    return zoned;
}

std::string pdfDate(std::time_t time) {
    const auto local = localTime(time);
    if (!local) return {};
    // `daylight` says that the zone has such rules at all, not that they apply at this time.
    const long hours = -(::timezone / 3600) + (::daylight != 0 ? 1 : 0);
    const long minutes = std::labs(::timezone % 3600) / 60;
    return text("D:", stamp(*local, "", "", ""), hours < 0 ? '-' : '+', Digits{std::labs(hours), 2}, '\'',
                Digits{minutes, 2}, '\'');
}

std::string pdfDate(const timeb& time) {
    const auto local = localTime(time.time);
    return local ? text("D:", stamp(*local, "", "", ""), zoneOf(time)) : "";
}

std::string displayDate(int format, const timeb& time) {
    const auto local = localTime(time.time);
    if (!local) return {};
    const bool known = format == 0 || format == 1;
    return text(known ? stamp(*local, format == 0 ? "." : "-", " ", ":") + ' ' : "", zoneOf(time));
}

bool dateFieldHolds(std::string_view date, const DateField& field, const ClassLogger& logger) {
    if (date.size() < field.to) return true;
    int number = -1;
    const char* const begin = date.data() + field.from;
    const char* const end = date.data() + field.to;
    const bool digits = std::all_of(begin, end, isDigit);
    const bool read = digits && std::from_chars(begin, end, number).ec == std::errc{};
    if (read && number >= field.min && number <= field.max) return true;
    logDebug(logger, "Datum: ", field.label, " liegt nicht zwischen ", field.min, " und ", field.max);
    return false;
}

bool dateZoneHolds(std::string_view date, std::size_t from, std::size_t to) noexcept {
    return date.size() < to || (from < date.size() && std::string_view("+-Z").find(date[from]) != kNone);
}

bool isValidDate(std::string_view date, const ClassLogger& logger) {
    return date.find("D:") != kNone && std::ranges::find(kLengths, date.size()) != std::end(kLengths) &&
           std::ranges::all_of(kFields, [&](const DateField& f) { return dateFieldHolds(date, f, logger); }) &&
           dateZoneHolds(date, 16, 17);
}

std::optional<timeb> timeOfPdfDate(std::string_view date, const ClassLogger& logger) {
    if (!isValidDate(date, logger) || date.size() != kComplete || date[16] == 'Z' || date[19] != '\'') return {};
    const int zoneHour = numberAt(date, 17, 2) * (date[16] == '-' ? -1 : 1);
    std::tm local{};
    const int year = numberAt(date, 2, 4);
    const int month = numberAt(date, 6, 2);
    local.tm_year = year - 1900;
    local.tm_mon = month - 1;
    local.tm_mday = numberAt(date, 8, 2);
    local.tm_hour = numberAt(date, 10, 2);
    local.tm_min = numberAt(date, 12, 2);
    local.tm_sec = numberAt(date, 14, 2);
    if (year < 1970 || year > 2037 || !isCalendarDay(year, month, local.tm_mday)) return {};
    const int summer = daylightFlag(zoneHour);
    local.tm_isdst = summer;
    timeb time{};
    time.time = std::mktime(&local);
    time.dstflag = static_cast<short>(summer);
    time.timezone = static_cast<short>(-60 * (zoneHour - (summer == 0 ? 0 : 1)) - numberAt(date, 20, 2));
    return time;
}

std::string convert8824DoubleH(std::string_view date) {
    constexpr std::size_t kSign = 16;
    const bool oneDigit = date.size() > kSign + 2 && date.size() < kComplete &&
                          (date[kSign] == '+' || date[kSign] == '-') && date[kSign + 2] == '\'';
    return oneDigit ? text(date.substr(0, kSign + 1), '0', date.substr(kSign + 1, 5)) : std::string(date);
}

std::string convert8824to8601(std::string_view date) {
    if (date.size() < 22) return {};
    const auto part = [&](std::size_t from, std::size_t count) { return date.substr(from, count); };
    return text(part(2, 4), '-', part(6, 2), '-', part(8, 2), 'T', part(10, 2), ':', part(12, 2), ':', part(14, 2),
                part(16, 1), part(17, 2), ':', part(20, 2));
}

std::optional<TextSpan> xmpDateValue(std::string_view text, std::size_t key) noexcept {
    if (key > 0 && key <= text.size() && text[key - 1] == '<') return valueBehind(text, text.find('>', key), '>', '<');
    // The first of these bytes decides: behind a value in quotation marks stands somebody else's apostrophe.
    return valueBehind(text, text.find_first_of("'\"<>", key), '\'', '\'');
}

std::optional<TextSpan> literalDateValue(std::string_view text, std::size_t key) noexcept {
    // A value of another kind (hexadecimal, reference) has some delimiter before the next entry's parenthesis.
    std::size_t open = std::min(key, text.size());
    if (open < text.size() && text[open] == '/') ++open;
    while (open < text.size() && !isDelimiter(text[open])) ++open;
    if (open == text.size() || text[open] != '(') return {};
    const std::size_t end = text.find(')', open);
    if (end == kNone) return {};
    return TextSpan{open + 1, end};
}

bool replaceModDate(std::string& text, std::string_view date) {
    const std::string wide = convert8824DoubleH(date);
    for (const std::string_view key : kXmpKeys) {
        if (const std::size_t at = text.find(key); at != kNone) {
            return replaceSpan(text, xmpDateValue(text, at), convert8824to8601(wide));
        }
    }
    const std::size_t at = text.find("ModDate");
    return at != kNone && replaceSpan(text, literalDateValue(text, at), wide);
}

}  // namespace varnpdf
