// Reading and writing of signing times.
#include "dates.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string_view>

#include "command.h"
#include "text.h"

namespace {

/// Takes digits and what separates them from the front of a date.
class Reader {
public:
    explicit Reader(std::string_view text) : rest_(text) {}
    [[nodiscard]] bool done() const { return rest_.empty(); }
    bool take(char c) {
        if (!rest_.starts_with(c)) return false;
        rest_.remove_prefix(1);
        return true;
    }
    std::optional<int> number(std::size_t digits) {
        if (rest_.size() < digits) return std::nullopt;
        int value = 0;
        for (std::size_t i = 0; i < digits; ++i) {
            if (rest_[i] < '0' || rest_[i] > '9') return std::nullopt;
            value = value * 10 + (rest_[i] - '0');
        }
        rest_.remove_prefix(digits);
        return value;
    }
    [[nodiscard]] bool digitFollows() const { return !rest_.empty() && rest_.front() >= '0' && rest_.front() <= '9'; }
    /// Fractions of a second are not kept.
    void skipFraction() {
        if (take('.')) {
            while (digitFollows()) rest_.remove_prefix(1);
        }
    }

private:
    std::string_view rest_;
};

struct Moment {
    std::array<int, 6> fields = {0, 1, 1, 0, 0, 0};  // year, month, day, hour, minute, second
    bool local = true;
    int minutesEast = 0;
};

bool inCalendar(const std::array<int, 6>& f) {
    constexpr int kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    if (f[1] < 1 || f[1] > 12) return false;
    const bool leap = (f[0] % 4 == 0 && f[0] % 100 != 0) || f[0] % 400 == 0;
    const int days = kDays[f[1] - 1] + (leap && f[1] == 2 ? 1 : 0);
    return f[2] >= 1 && f[2] <= days && f[3] <= 23 && f[4] <= 59 && f[5] <= 59;
}

/// "Z", "+01'00'", "+01'00", "+01:00", "+0100", "+01".
bool takeZone(Reader& reader, Moment& moment) {
    if (reader.done()) return true;
    moment.local = false;
    if (reader.take('Z')) {
        // Some producers write Z00'00'.
        if (reader.done()) return true;
        if (reader.number(2) != 0 || !reader.take('\'') || reader.number(2) != 0) return false;
        reader.take('\'');
        return reader.done();
    }
    const bool west = reader.take('-');
    if (!west && !reader.take('+')) return false;
    const std::optional<int> hours = reader.number(2);
    if (!hours || *hours > 23) return false;
    if (!reader.take('\'')) reader.take(':');
    int minutes = 0;
    if (!reader.done()) minutes = reader.number(2).value_or(60);
    reader.take('\'');
    moment.minutesEast = (west ? -1 : 1) * (*hours * 60 + minutes);
    return minutes <= 59 && reader.done();
}

/// The separators in front of month, day, hour, minute and second; ISO 8601 may leave them out like a PDF date.
bool takeFields(Reader& reader, bool pdf, Moment& moment) {
    constexpr std::string_view kSeparators = "--T::";
    for (std::size_t i = 0; i < moment.fields.size(); ++i) {
        if (i > 0 && !pdf) {
            const bool separated = reader.take(kSeparators[i - 1]) || (i == 3 && reader.take(' '));
            if (!separated && (i == 3 || !reader.digitFollows())) return i >= 3;
        }
        const std::optional<int> number = reader.number(i == 0 ? 4 : 2);
        // A PDF date may end after any field.
        if (!number) return pdf && i > 0 && !reader.digitFollows();
        moment.fields[i] = *number;
    }
    reader.skipFraction();
    return true;
}

/// The zone that holds at a local time.
int localOffset(const std::array<int, 6>& f) {
    std::tm time{};
    time.tm_year = f[0] - 1900;
    time.tm_mon = f[1] - 1;
    time.tm_mday = f[2];
    time.tm_hour = f[3];
    time.tm_min = f[4];
    time.tm_sec = f[5];
    time.tm_isdst = -1;
    std::mktime(&time);
    return static_cast<int>(time.tm_gmtoff / 60);
}

std::string written(const std::array<int, 6>& f, int minutesEast) {
    char out[64];
    const int minutes = std::abs(minutesEast);
    std::snprintf(out, sizeof out, "D:%04d%02d%02d%02d%02d%02d%c%02d'%02d'", f[0], f[1], f[2], f[3], f[4], f[5],
                  minutesEast < 0 ? '-' : '+', minutes / 60, minutes % 60);
    return out;
}

}  // namespace

std::optional<std::string> cli::pdfDate(const std::string& text) {
    if (text.empty()) {
        const std::time_t now = std::time(nullptr);
        std::tm local{};
        ::localtime_r(&now, &local);
        return written(
            {local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec},
            static_cast<int>(local.tm_gmtoff / 60));
    }
    const bool pdf = text.starts_with("D:");
    Reader reader(std::string_view(text).substr(pdf ? 2 : 0));
    Moment moment;
    if (takeFields(reader, pdf, moment) && takeZone(reader, moment) && inCalendar(moment.fields)) {
        return written(moment.fields, moment.local ? localOffset(moment.fields) : moment.minutesEast);
    }
    complain("--date", "this is no date such as 2026-11-15T02:33:51+01:00 or D:20261115023351+01'00': " + text);
    return std::nullopt;
}
