// PDF dates (ISO 32000-2 7.9.4), their ISO 8601 form, and replacing them in metadata.
#pragma once

#include <sys/timeb.h>

#include <ctime>
#include <optional>
#include <string>
#include <string_view>

#include "support/Log.h"
#include "syntax/Cursor.h"

namespace varnpdf {

/// The local time as PDF date; a zone that has daylight-saving rules is given one hour more all year. Empty for a time
/// outside the years 0 to 9999.
std::string pdfDate(std::time_t time);
/// The local time with the zone of the structure, the zone's hour with one digit west of UTC; empty likewise.
std::string pdfDate(const timeb& time);
/// The structure for a time. Its zone is the offset that holds then, an hour of summer included.
timeb zonedTime(std::time_t time);
/// The local time with the offset that holds then, complete: D:20261115023351+01'00'. Empty likewise.
std::string localPdfDate(std::time_t time);
/// A PDF date or one of ISO 8601 in that form. What is not said counts as the first of its kind, a missing zone as the
/// local one of that time. Nothing for what is no date.
std::optional<std::string> completePdfDate(std::string_view date);
/// A text to show: `format` 0 with points, 1 with hyphens, any other without date; the zone behind it.
std::string displayDate(int format, const timeb& time);

/// A number at a fixed place of a date.
struct DateField {
    std::size_t from;
    std::size_t to;
    int min;
    int max;
    const char* label;
};
/// The field's digits are in range, or the text ends before the field does. A debug line names the field that is not.
bool dateFieldHolds(std::string_view date, const DateField& field, const ClassLogger& logger = {});
bool dateZoneHolds(std::string_view date, std::size_t from, std::size_t to) noexcept;
/// A well-formed PDF date; fields at its end may be missing as a whole. The days of a month are not counted.
bool isValidDate(std::string_view date, const ClassLogger& logger = {});

/// The time of a complete PDF date of the years 1970 to 2037, taken as local time. Its zone decides whether
/// daylight-saving time is assumed, and is stored.
std::optional<timeb> timeOfPdfDate(std::string_view date, const ClassLogger& logger = {});

/// The date with the one-digit hour of its zone widened to two digits.
std::string convert8824DoubleH(std::string_view date);
/// The date as ISO 8601, empty when it ends before the minutes of its zone.
std::string convert8824to8601(std::string_view date);

/// Where the value of the XMP property stands whose name is at `key`: element content, or an attribute in apostrophes.
std::optional<TextSpan> xmpDateValue(std::string_view text, std::size_t key) noexcept;
/// Where the text of the literal string stands that is the value of the key at `key`.
std::optional<TextSpan> literalDateValue(std::string_view text, std::size_t key) noexcept;
/// Replaces the modification date in XMP metadata or in a document information dictionary. True when a value was
/// replaced. An XMP property gets the ISO 8601 form; nothing is ever replaced by an empty text.
bool replaceModDate(std::string& text, std::string_view date);

}  // namespace varnpdf
