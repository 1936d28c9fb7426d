// PDF dates: written, checked, read, converted and replaced. Every test sets the zone it needs.
#include "syntax/Dates.h"

#include <cstdlib>
#include <cstring>
#include <thread>

#include "support/LogCapture.h"
#include "tests/syntax/Rows.h"
#include "varnpdf/PdfHelper.h"
#include "varnpdf/PdfObj.h"

namespace {

using namespace std::literals;

constexpr auto kBerlin = "CET-1CEST,M3.5.0,M10.5.0/3";
constexpr std::time_t kNovember = 1794706431;  // 2026-11-15 01:33:51 UTC

class Zone {
public:
    explicit Zone(const char* name) {
        const char* const old = std::getenv("TZ");
        if (old != nullptr) old_ = old;
        set(name);
    }
    ~Zone() { set(old_ ? old_->c_str() : nullptr); }

private:
    static void set(const char* name) {
        name != nullptr ? setenv("TZ", name, 1) : unsetenv("TZ");
        tzset();
    }
    std::optional<std::string> old_;
};

timeb timeOf(std::time_t time, int minutesWest, int dst) {
    timeb t{};
    t.time = time;
    t.timezone = static_cast<short>(minutesWest);
    t.dstflag = static_cast<short>(dst);
    return t;
}

TEST(PdfDate, IsLocalTimeWithTheHourOfDaylightSavingAllYear) {
    const struct {
        const char* zone;
        std::string date;
    } rows[] = {
        {kBerlin, "D:20261115023351+02'00'"},
        {"UTC0", "D:20261115013351+00'00'"},
        {"CET-1", "D:20261115023351+01'00'"},
        {"EST5", "D:20261114203351-05'00'"},
        {"EST5EDT", "D:20261114203351-04'00'"},
        {"IST-5:30", "D:20261115070351+05'30'"},
        {"NST3:30", "D:20261114220351-03'30'"},
        {"NST3:30NDT", "D:20261114220351-02'30'"},
        {"<-00>1<-01>,M3.5.0,M10.5.0/3", "D:20261115003351+00'00'"},
    };
    for (const auto& [name, date] : rows) {
        const Zone zone(name);
        EXPECT_EQ(varnpdf::pdfDate(kNovember), date) << name;
    }
    EXPECT_EQ(varnpdf::pdfDate(std::time_t{1} << 40U), "") << "a year of five digits has no place in a date";
}

TEST(PdfDate, OfAnotherMomentHasTheZoneThatHeldThen) {
    constexpr std::time_t kJuly = 1784109600;
    const struct {
        const char* zone;
        std::time_t time;
        std::string complete, brief;
    } rows[] = {
        {kBerlin, kNovember, "D:20261115023351+01'00'", "D:20261115023351+01'00'"},
        {kBerlin, kJuly, "D:20260715120000+02'00'", "D:20260715120000+02'00'"},
        {"EST5EDT", kNovember, "D:20261114203351-05'00'", "D:20261114203351-5'00'"},
        {"EST5EDT", kJuly, "D:20260715060000-04'00'", "D:20260715060000-4'00'"},
        {"<+1030>-10:30<+11>-11,M10.1.0,M4.1.0", kNovember, "D:20261115123351+11'00'", "D:20261115123351+11'00'"},
        {"NST3:30", kNovember, "D:20261114220351-03'30'", "D:20261114220351-3'-30'"},
    };
    for (const auto& [name, time, complete, brief] : rows) {
        const Zone zone(name);
        EXPECT_EQ(varnpdf::localPdfDate(time), complete);
        EXPECT_EQ(varnpdf::pdfDate(varnpdf::zonedTime(time)), brief);
    }
    EXPECT_EQ(varnpdf::localPdfDate(std::time_t{1} << 40U), "");
}

TEST(CompleteDate, OfPdfAndIso8601) {
    const Zone zone(kBerlin);
    check({"2026-11-15T02:33:51-05:30 -> D:20261115023351-05'30'",
           "2026-07-15T02:33 -> D:20260715023300+02'00'",
           "20261115T023351.5Z -> D:20261115023351+00'00'",
           "2026-11-15 -> D:20261115000000+01'00'",
           "2026-11-15T02+0100 -> D:20261115020000+01'00'",
           "D:2026 -> D:20260101000000+01'00'",
           "D:202607 -> D:20260701000000+02'00'",
           "D:20261115023351+01'00 -> D:20261115023351+01'00'",
           "D:20261115023351-11 -> D:20261115023351-11'00'",
           "D:20261115023351Z00'00' -> D:20261115023351+00'00'",
           "2026-02-29 -> none",
           "2026-13-01 -> none",
           "2026-11-15T24:00 -> none",
           "2026-11-15T02:60 -> none",
           "2026-11-15T02:33:51+24:00 -> none",
           "2026-11-15T02:33:51+01:60 -> none",
           "2026-11-15T02:33:51+01:00x -> none",
           "D:20261115023351Z0000 -> none",
           "D:20261115023351Z01'00' -> none",
           "D:202611150 -> none",
           "2026-1-1 -> none",
           "D: -> none",
           " -> none"},
          [](const std::string& date) { return varnpdf::completePdfDate(date).value_or("none"); });
    EXPECT_EQ(varnpdf::completePdfDate("2026-07-15 02:33"), "D:20260715023300+02'00'");
}

TEST(TimeStruct, ZoneSuffix) {
    const Zone zone("UTC0");
    const struct {
        int minutesWest, dst;
        std::string suffix;
    } rows[] = {
        {-60, 0, "+01'00'"}, {300, 0, "-5'00'"},   {0, 0, "+00'00'"},    {59, 0, "+00'-59'"},  {60, 0, "-1'00'"},
        {600, 0, "-10'00'"}, {210, 0, "-3'-30'"},  {-330, 0, "+05'30'"}, {5, 0, "+00'-5'"},    {-60, 1, "+02'00'"},
        {60, 1, "+00'00'"},  {119, 1, "+00'-59'"}, {120, 1, "-1'00'"},   {-60, -1, "+01'00'"}, {60, -1, "-1'00'"},
    };
    for (const auto& [minutesWest, dst, suffix] : rows) {
        timeb t = timeOf(kNovember, minutesWest, dst);
        Out date(32), display(32);
        EXPECT_EQ(CPdfHelper::TimeStruct2AdobeDateString(&t, date), date.bytes.data());
        EXPECT_EQ(shown(date), "D:20261115013351" + suffix);
        EXPECT_EQ(CPdfHelper::TimeStruct2LocaleDateString(0, &t, display), display.bytes.data());
        EXPECT_EQ(shown(display), "2026.11.15 01:33:51 " + suffix);
    }
}

TEST(TimeStruct, TextToShow) {
    const Zone zone(kBerlin);  // the time is local, the zone behind it that of the structure
    timeb t = timeOf(kNovember, 300, 0);
    for (const auto& [format, want] : {std::pair{0, "2026.11.15 02:33:51 -5'00'"},
                                       {1, "2026-11-15 02:33:51 -5'00'"},
                                       {2, "-5'00'"},
                                       {-1, "-5'00'"}}) {
        Out out(32);
        EXPECT_STREQ(CPdfHelper::TimeStruct2LocaleDateString(format, &t, out), want);
    }
    t.time = std::time_t{1} << 40U;
    Out out("x"s);
    EXPECT_STREQ(CPdfHelper::TimeStruct2LocaleDateString(1, &t, out), "");
    EXPECT_STREQ(CPdfHelper::TimeStruct2AdobeDateString(&t, out), "");
}

TEST(ValidDate, WholeFieldsInRange) {
    check({"D:20261115023351+01'00' -> 1",
           "D:2026 -> 1",
           "D:20261315 -> 0",
           "D:202611150233511 -> 0",
           "20261115023351Z -> 0",
           "D:20261115023351Z -> 1",
           "D:20261115023351-01 -> 1",
           "D:0000 -> 1",
           "D:9999 -> 1",
           "D:20260015 -> 0",
           "D:20261200 -> 0",
           "D:20261231 -> 1",
           "D:20261232 -> 0",
           "D:20260230 -> 1",
           "D:2026111524 -> 0",
           "D:202611152359 -> 1",
           "D:202611152360 -> 0",
           "D:20261115235959 -> 1",
           "D:20261115235960 -> 0",
           "D:20261115023351+24'00' -> 0",
           "D:20261115023351+23'59' -> 1",
           "D:20261115023351+23'60' -> 0",
           "D:20261115023351-3'-30' -> 0",
           "D:20261115023351+01'00'Z -> 0",
           "D:202a -> 0",
           "D: 026 -> 0",
           "D:+026 -> 0",
           "2026D: -> 0",
           "D:20261115023351'01'00' -> 0",
           " -> 0"},
          [](std::string& date) { return shown(CPdfHelper::IsValidDateString(date.data())); });
    std::string lengths;
    for (std::size_t n = 0; n <= 23; ++n) {
        if (varnpdf::isValidDate("D:20261115023351+01'00'"sv.substr(0, n))) lengths += std::to_string(n) + ' ';
    }
    EXPECT_EQ(lengths, "6 8 10 12 14 16 17 19 23 ");
    EXPECT_FALSE(CPdfHelper::IsValidDateString(nullptr));
}

TEST(ValidDate, SingleFields) {
    varnpdf::test::LogCapture log("VarnPDF.CPdfHelper");
    check({"ab07c -> 1", "ab05c -> 1", "ab04c -> 0", "ab08c -> 0", "ab0 -> 1", "ab-7 -> 0", "ab 7 -> 0", "ab7x -> 0"},
          [](std::string& s) { return shown(CPdfHelper::CheckDatePosValue(s.data(), 2, 4, 5, 7, "DD")); });
    EXPECT_EQ(log.messages().size(), 5U);
    EXPECT_TRUE(log.has("Datum: DD liegt nicht zwischen 5 und 7"));
    check({"a+ -> 1", "a- -> 1", "aZ -> 1", "az -> 0", "a1 -> 0", "a -> 1"},
          [](std::string& s) { return shown(CPdfHelper::CheckDatePosUTValue(s.data(), 1, 2)); });
    std::string many(40, '9');
    EXPECT_FALSE(CPdfHelper::CheckDatePosValue(many.data(), 0, 40, 0, 9, "YYYY")) << "no number of digits overflows";
    EXPECT_FALSE(CPdfHelper::CheckDatePosValue(many.data(), -1, 1, 0, 9, "YYYY"));
}

TEST(AdobeDate, LocalTimeWhateverItsZone) {
    const struct {
        const char* zone;
        std::string row;
    } rows[] = {
        {kBerlin, "D:20261115023351+01'00' -> 1794706431 0 -60"},
        {kBerlin, "D:20261115023351+02'00' -> 1794702831 1 -60"},
        {kBerlin, "D:20260715120000+02'00' -> 1784109600 1 -60"},
        {kBerlin, "D:20261115023351+05'30' -> 1794706431 -1 -270"},
        {kBerlin, "D:20261115023351-05'00' -> 1794706431 -1 360"},
        {"EST5", "D:20261115023351-05'00' -> 1794728031 0 300"},
        {"EST5", "D:20261115023351-05'30' -> 1794728031 0 270"},
        {"EST5", "D:20261115023351-04'00' -> 1794728031 -1 300"},
        {"IST-5:30", "D:20261115023351+05'30' -> 1794690231 0 -330"},
        {"UTC0", "D:19700101000000+00'00' -> 0 0 0"},
        {"UTC0", "D:20371231235959-00'00' -> 2145916799 0 0"},
        {"UTC0", "D:20280229000000+00'00' -> 1835395200 0 0"},
        {"UTC0", "D:20000229000000+00'00' -> 951782400 0 0"},
    };
    for (const auto& [name, row] : rows) {
        const Zone zone(name);
        check({row}, [](std::string& date) {
            timeb t = timeOf(-1, 7, 7);
            t.millitm = 5;
            const char* const text = CPdfHelper::AdobeDateString2TimeStruct(date.data(), &t);
            EXPECT_STREQ(text, std::ctime(&t.time));
            EXPECT_EQ(t.millitm, 0);
            return shown(t.time, t.dstflag, t.timezone);
        });
    }
}

TEST(AdobeDate, Refused) {
    const Zone zone("UTC0");
    for (std::string date :
         {"D:19691231235959+00'00'", "D:20260230000000+01'00'", "D:20380101000000+00'00'", "D:20260229000000+00'00'",
          "D:20260431000000+00'00'", "D:20261115023351Z01'00'", "D:20261115023351+01'00", "D:20261115023351+01x00'",
          "D:20261115023351Z", "D:2026", "D:20261115023351-5'00'", "D:20261115023360+00'00'", ""}) {
        timeb t = timeOf(42, 7, 7);
        EXPECT_EQ(CPdfHelper::AdobeDateString2TimeStruct(date.data(), &t), nullptr) << date;
        EXPECT_EQ(shown(t.time, t.timezone, t.dstflag), "42 7 7") << "untouched";
    }
    std::string date = "D:20261115023351+01'00'";
    EXPECT_EQ(CPdfHelper::AdobeDateString2TimeStruct(date.data(), nullptr), nullptr);
    for (std::string time : {"20261115023351Z", "D:20261115023351Z", "2026111502D:51Z"}) {
        timeb t{};
        EXPECT_EQ(CPdfHelper::GenTime2TimeStruct(time.data(), &t), nullptr);
    }
}

TEST(Convert, OneDigitZoneHour) {
    check({"D:20261115023351-5'00' -> D:20261115023351-05'00'", "D:20261115023351+5'30' -> D:20261115023351+05'30'",
           "D:20261115023351+01'00' -> D:20261115023351+01'00'", "D:20261115023351Z5'00' -> D:20261115023351Z5'00'",
           "D:20261115023351-5' -> D:20261115023351-05'", "D:20261115023351-5 -> D:20261115023351-5",
           "D:20261115023351-5'00'x -> D:20261115023351-5'00'x", "D:20261115023351Z -> D:20261115023351Z", " -> "},
          [](std::string& date) { return shown(CPdfHelper::Convert8824DoubleH(date.data())); });
}

TEST(Convert, ToIso8601) {
    check(
        {"D:20261115023351+01'00' -> 2026-11-15T02:33:51+01:00", "D:20261115023351+01'00 -> 2026-11-15T02:33:51+01:00",
         "D:20261115023351+01'0 -> ", "D:20261115023351Z -> ", "D: -> ", " -> "},
        [](std::string& date) { return shown(CPdfHelper::Convert8824to8601(date.data())); });
}

TEST(Convert, EachThreadHasItsOwnResults) {
    std::string a = "D:20261115023351-5'00'", b = "D:20300101000000-5'00'";
    char* const wide = CPdfHelper::Convert8824DoubleH(a.data());
    char* const iso = CPdfHelper::Convert8824to8601(wide);
    std::thread([&] { CPdfHelper::Convert8824to8601(CPdfHelper::Convert8824DoubleH(b.data())); }).join();
    EXPECT_STREQ(wide, "D:20261115023351-05'00'");
    EXPECT_STREQ(iso, "2026-11-15T02:33:51-05:00");
}

/// Replaces in a buffer that ends with its 57 spare bytes; the key is the first "Mod" of the row.
template <typename Replace>
std::string replaceBy(Replace replace, const std::string& text, std::string date) {
    constexpr int kSpare = 57;
    std::vector<char> buf(text.begin(), text.end());
    buf.resize(text.size() + kSpare, '#');
    int length = -1;
    const auto pos = static_cast<int>(text.find("Mod"));
    const int result = replace(buf.data(), pos, static_cast<int>(buf.size()), date.data(), &length);
    return std::to_string(result) + ' ' + std::string(buf.data(), static_cast<std::size_t>(length));
}

TEST(ReplaceDate, Xmp) {
    check({"<Mod>old</Mod> -> 1 <Mod>NEW</Mod>", "<Mod a='1'>old</Mod> -> 1 <Mod a='1'>NEW</Mod>",
           "<Mod></Mod> -> 1 <Mod>NEW</Mod>", "<a Mod='old' b='c'/> -> 1 <a Mod='NEW' b='c'/>",
           "<a Mod = 'older' b='c'/> -> 1 <a Mod = 'NEW' b='c'/>", "<a Mod=''/> -> 1 <a Mod='NEW'/>",
           "<a Mod=\"old\"/><?end='w'?> -> 0 <a Mod=\"old\"/><?end='w'?>",
           "<li>Mod</li><?end='w'?> -> 0 <li>Mod</li><?end='w'?>", "<Mod/> <b>x</b> -> 0 <Mod/> <b>x</b>",
           "<a Mod='old/><?end='w'?> -> 0 <a Mod='old/><?end='w'?>", "<a Mod='old -> 0 <a Mod='old",
           "<Mod>old -> 0 <Mod>old", "<Mod -> 0 <Mod", "Mod -> 0 Mod", "Mod=' -> 0 Mod='"},
          [](const std::string& text) { return replaceBy(CPdfHelper::ReplaceDateISO8601, text, "NEW"); });
}

TEST(ReplaceDate, LiteralString) {
    check({"/Mod (old) /T (x) -> 1 /Mod (NEW) /T (x)", "/Mod(old)>> -> 1 /Mod(NEW)>>", "/Mod () -> 1 /Mod (NEW)",
           "/Mod <6f6c64> /T (x) -> 0 /Mod <6f6c64> /T (x)", "/Mod 5 0 R /T (x) -> 0 /Mod 5 0 R /T (x)",
           "(Mod) /T (x) -> 0 (Mod) /T (x)", "/Mod (old -> 0 /Mod (old", "/Mod -> 0 /Mod"},
          [](const std::string& text) { return replaceBy(CPdfHelper::ReplaceDateISO8824, text, "NEW"); });
}

TEST(ReplaceDate, StaysInsideItsBuffer) {
    const auto replace = CPdfHelper::ReplaceDateISO8824;
    EXPECT_EQ(replaceBy(replace, "/Mod (ab) z", std::string(59, 'd')), "1 /Mod (" + std::string(59, 'd') + ") z");
    EXPECT_EQ(replaceBy(replace, "/Mod (ab) z", std::string(60, 'd')), "0 /Mod (ab) z");
    EXPECT_EQ(replaceBy(replace, "/Mod (ab) z", ""), "0 /Mod (ab) z") << "no date is no reason to lose the old one";
    char buf[64] = "/M (ab)";
    char date[] = "c";
    for (const auto& [pos, size] : {std::pair{-1, 64}, {7, 64}, {100, 64}, {0, 57}, {0, 3}, {0, -5}}) {
        int length = 99;
        EXPECT_EQ(replace(buf, pos, size, date, &length), 0) << pos << ' ' << size;
        EXPECT_EQ(length, size - 57);
    }
    EXPECT_STREQ(buf, "/M (ab)");
}

TEST(ReplaceModDate, TheFirstKeyThatOccurs) {
    const std::string iso = "2026-11-15T02:33:51-05:00", pdf = "D:20261115023351-05'00'";
    const struct {
        std::string before, after;
    } rows[] = {
        {"<xap:MetadataDate>m</xap:MetadataDate><xmp:ModifyDate>o</xmp:ModifyDate>",
         "<xap:MetadataDate>m</xap:MetadataDate><xmp:ModifyDate>" + iso + "</xmp:ModifyDate>"},
        {"<a xmp:ModifyDate='o' pdf:ModDate='p'>", "<a xmp:ModifyDate='o' pdf:ModDate='" + iso + "'>"},
        {"<a xap:MetadataDate='o' xap:ModifyDate='p'>", "<a xap:MetadataDate='o' xap:ModifyDate='" + iso + "'>"},
        {"<a xap:MetadataDate='o'>", "<a xap:MetadataDate='" + iso + "'>"},
        {"3 0 obj << /ModDate (o) >> endobj", "3 0 obj << /ModDate (" + pdf + ") >> endobj"},
        {"<< /K (a\0b) /ModDate (o) >>\0"s, "<< /K (a\0b) /ModDate ("s + pdf + ") >>\0"s},
        {"<a xmp:ModifyDate=\"o\" xap:ModifyDate='p'> /ModDate (q)", ""},
        {"<< /CreationDate (o) >>", ""},
    };
    std::string date = "D:20261115023351-5'00'";
    for (const auto& [before, after] : rows) {
        CPdfObj obj;
        obj.setContent(before);
        EXPECT_EQ(CPdfHelper::ReplaceModDate(&obj, date.data()), 1);
        EXPECT_EQ(obj.content(), after.empty() ? before : after);
        std::string text = before;
        EXPECT_EQ(varnpdf::replaceModDate(text, date), !after.empty()) << before;
    }
    std::string text = "<xmp:ModifyDate>o</xmp:ModifyDate>";
    EXPECT_FALSE(varnpdf::replaceModDate(text, "D:2026")) << "too short for ISO 8601";
    EXPECT_EQ(text, "<xmp:ModifyDate>o</xmp:ModifyDate>");
    EXPECT_EQ(CPdfHelper::ReplaceModDate(nullptr, date.data()), 1);
}

}  // namespace
