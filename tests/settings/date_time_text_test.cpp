#include "velquor/settings/date_time_text.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <ctime>
#include <string>
#include <tuple>
#include <vector>

#include "reference_table.h"
#include "velquor/frame/message.h"
#include "velquor/settings/clock.h"
#include "velquor/settings/locale_format.h"

namespace velquor {
namespace {

// 2001-09-09 01:46:40 UTC, a Sunday.
constexpr TimeValue kBillion = 1000000000;
// 1990-01-01 00:00:00 UTC: 7305 days (20 years, 5 leap days) of 86400 s.
constexpr TimeValue k1990 = 631152000;

LocaleDescription GermanStyle(const char* timeOfDay, const char* separator) {
  LocaleDescription de;
  de.shortDate = "dd.MM.yyyy";
  de.longDate = "dddd, d. MMMM yyyy";
  de.timeOfDay = timeOfDay;
  de.timeSeparator = separator;
  de.monthNames = {"Januar", "Februar", "März",      "April",   "Mai",      "Juni",
                   "Juli",   "August",  "September", "Oktober", "November", "Dezember"};
  de.dayNames = {"Sonntag", "Montag", "Dienstag", "Mittwoch", "Donnerstag", "Freitag", "Samstag"};
  return de;  // no AM/PM designators, no era
}

// The locales of the reference tables, by their names there.
const LocaleFormat* Locale(const std::string& name) {
  static const DescribedLocale us([] {
    LocaleDescription d = CLocaleDescription();
    d.shortDate = "M/d/yyyy";
    d.timeOfDay = "h:mm:ss tt";
    d.era = "A.D.";
    return d;
  }());
  static const DescribedLocale de(GermanStyle("HH:mm:ss", ":")),
      dotted(GermanStyle("H.mm.ss", ".")), none(GermanStyle("HHmmss", ""));
  return name == "de" ? &de : name == "dotted" ? &dotted : name == "none" ? &none : &us;
}

std::int64_t Int64(const test::ReferenceRow& row, std::string_view column) {
  return static_cast<std::int64_t>(row.Number(column));
}

using Messages = std::vector<std::pair<MessageKind, std::string>>;

// The library's clock for the test: a fixed time, a settable tick counter and a zone offset
// without daylight saving; the locale is "us" and messages are captured.
class DateTimeText : public ::testing::Test, public Clock {
 protected:
  TimeValue Now() const override { return now; }
  std::uint32_t TickCount() const override { return tick; }
  bool ToLocal(TimeValue time, CalendarTime& local) const override {
    local = CalendarFromSeconds(time + offset);
    return true;
  }
  TimeValue FromLocal(const CalendarTime& local) const override {
    return SecondsFromCalendar(local) - offset;
  }
  void SetUp() override {
    SetClock(this);
    SetLocaleFormat(Locale("us"));
    SetMessageSink(
        [this](MessageKind kind, std::string_view text) { messages_.emplace_back(kind, text); });
  }
  void TearDown() override {
    SetClock(nullptr);
    SetLocaleFormat(nullptr);
    SetMessageSink(nullptr);
  }
  TimeValue now = 1234567890;  // 2009-02-13 23:31:30 UTC, a Friday
  std::uint32_t tick = 0;
  std::int64_t offset = 0;
  Messages messages_;
};

// Dates, times and patterns in the injected locale and zone.
TEST_F(DateTimeText, FormatsInTheInjectedLocaleAndZone) {
  for (const auto& row : test::LoadReferenceTable("reference/date_time_formats.csv")) {
    SetLocaleFormat(Locale(row.Text("locale")));
    offset = Int64(row, "offset");
    const TimeValue time = Int64(row, "time");
    const int ok = row.Integer("result");
    std::string s = "old", l = "old", t = "old", joined = "Batch: ";  // replaced; appended to
    EXPECT_EQ(std::vector<int>({FormatShortDate(s, time), FormatLongDate(l, time),
                                FormatTimeOfDay(t, time), FormatDateTime(joined, time)}),
              std::vector<int>(4, ok));
    const std::string &date = row.Text("shortDate"), &timeOfDay = row.Text("timeOfDay");
    EXPECT_EQ(std::vector<std::string>({s, l, t, joined}),
              std::vector<std::string>({date, row.Text("longDate"), timeOfDay,
                                        ok ? "Batch: " + date + " -- " + timeOfDay : "Batch: "}))
        << row.Where();
  }
  now = kBillion;  // no time given: now
  std::string text;
  EXPECT_EQ(FormatShortDate(text), 1);
  EXPECT_EQ(text, "9/9/2001");
  for (const auto& row : test::LoadReferenceTable("reference/date_time_patterns.csv")) {
    SetLocaleFormat(Locale(row.Text("locale")));
    text = "old";
    EXPECT_EQ(FormatPattern(text, row.Text("pattern"),
                            static_cast<std::uint32_t>(row.Integer("number")), Int64(row, "time")),
              row.Integer("result"))
        << row.Where();
    EXPECT_EQ(text, row.Text("text")) << row.Where();
  }
}

TEST_F(DateTimeText, SafeCurrentTimeAndStopwatch) {
  const std::string message =
      "Your system clock exceeds the valid range: Jan 1, 1970 -- Dec 31, 2037\nThe date is "
      "assumed to be Jan 1, 1990.  The time is assumed to be 00:00.";
  for (const auto& row : test::LoadReferenceTable("reference/clock_range.csv")) {
    now = Int64(row, "now");
    offset = Int64(row, "offset");
    messages_.clear();
    // Out of range: 1990-01-01 00:00 local time, and a warning.
    const bool inRange = row.Integer("inRange") == 1;
    EXPECT_EQ(GetSafeCurrentTime(), inRange ? now : k1990 - offset) << row.Where();
    EXPECT_EQ(messages_, (inRange ? Messages{} : Messages{{MessageKind::kWarning, message}}));
  }
  GetSafeCurrentTime();
  EXPECT_EQ(messages_.size(), 2u);  // told again at every call
  // The stopwatch text counts up and down with the separator of its start.
  for (const auto& row : test::LoadReferenceTable("reference/clock_texts.csv")) {
    SetLocaleFormat(Locale(row.Text("locale")));
    tick = static_cast<std::uint32_t>(Int64(row, "startTick"));
    std::string text = "old";
    GetTimeSeparator(text);
    EXPECT_EQ(text, row.Text("locale") == "dotted" ? "." : ":");  // ":" when the locale has none
    ClockText(&text, static_cast<std::uint32_t>(Int64(row, "limit")));
    tick += static_cast<std::uint32_t>(Int64(row, "elapsedMs"));
    EXPECT_EQ(ClockText(&text, kClockReadOnly), row.Integer("result")) << row.Where();
    EXPECT_EQ(text, row.Text("text")) << row.Where();
    EXPECT_EQ(ClockText(nullptr, kClockReadOnly), row.Integer("result"));
  }
  std::string text;
  tick = 1000;
  ClockText(&text, 90);
  SetLocaleFormat(Locale("dotted"));
  tick = 31000;
  ClockText(&text, kClockReadOnly);
  EXPECT_EQ(text, "1:00");  // separator and start are those of the last restart
  ClockText(&text, 0);
  EXPECT_EQ(text, "0.00");
}

constexpr const char* kCalendarFields[] = {"year", "month",  "dayOfWeek", "day",
                                           "hour", "minute", "second"};

// Known dates both ways; pictures refuse fields out of range and shorten designators by
// character.
TEST(CalendarTime, KnownDatesAndFieldRanges) {
  for (const auto& row : test::LoadReferenceTable("reference/calendar_dates.csv")) {
    const CalendarTime t = CalendarFromSeconds(Int64(row, "seconds"));
    int i = 0;
    for (int field : {t.year, t.month, t.dayOfWeek, t.day, t.hour, t.minute, t.second}) {
      EXPECT_EQ(field, row.Integer(kCalendarFields[i++])) << row.Where() << " field " << i;
    }
    EXPECT_EQ(SecondsFromCalendar(t), Int64(row, "seconds")) << row.Where();
  }
  LocaleDescription ja = CLocaleDescription();
  ja.amDesignator = "午前";
  const CalendarTime good = CalendarFromSeconds(kBillion);
  std::string out;
  EXPECT_TRUE(FormatTimePicture(ja, good, "t h", out));
  EXPECT_EQ(out, "午 1");
  // Each field at both ends of its range and one step beyond them.
  const std::tuple<int CalendarTime::*, int, int> ranges[] = {
      {&CalendarTime::year, 1601, 30827}, {&CalendarTime::month, 1, 12},
      {&CalendarTime::day, 1, 31},        {&CalendarTime::dayOfWeek, 0, 6},
      {&CalendarTime::hour, 0, 23},       {&CalendarTime::minute, 0, 59},
      {&CalendarTime::second, 0, 59}};
  for (const auto& [field, low, high] : ranges) {
    for (const int value : {low - 1, low, high, high + 1}) {
      CalendarTime t = good;
      t.*field = value;
      const bool valid = value == low || value == high;
      out = "old";
      EXPECT_EQ(FormatDatePicture(ja, t, "d", out), valid) << value;
      EXPECT_EQ(out.empty(), !valid) << value;
      EXPECT_EQ(FormatTimePicture(ja, t, "H", out), valid) << value;
    }
  }
}

TEST(LocalePictures, LocaleFormatsBecomePicturesAndPlatformSeams) {
  for (const auto& row : test::LoadReferenceTable("reference/locale_pictures.csv")) {
    const std::string& function = row.Text("function");
    const std::string& in = row.Text("input");
    const std::string got = function == "strftime"   ? PictureFromStrftime(in)
                            : function == "longDate" ? LongDateFromShortDate(in)
                                                     : TimeSeparatorOfPicture(in);
    EXPECT_EQ(got, row.Text("expected")) << row.Where();
  }
  EXPECT_EQ(PictureFromStrftime("%r", "%l:%M %p"), "h:mm tt");
  EXPECT_FALSE(UserDecimalSeparator().empty());
  // The system clock agrees with the C library.
  EXPECT_NEAR(SystemClock().Now(), static_cast<TimeValue>(std::time(nullptr)), 2);
  for (const TimeValue t : {TimeValue{0}, kBillion, TimeValue{2145916800}}) {  // to 2038-01-01
    CalendarTime local;
    ASSERT_TRUE(SystemClock().ToLocal(t, local));
    EXPECT_EQ(SystemClock().FromLocal(local), t);
  }
  std::string text;
  EXPECT_EQ(FormatTimeOfDay(text, kBillion), 1);  // the user's locale, whatever it is
  EXPECT_FALSE(text.empty());
}

}  // namespace
}  // namespace velquor
