#include "velquor/settings/date_time_text.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <ctime>
#include <string>
#include <tuple>
#include <vector>

#include "velquor/frame/message.h"
#include "velquor/settings/clock.h"
#include "velquor/settings/locale_format.h"
#include "velquor/settings/locale_platform.h"

namespace velquor {
namespace {

// Reference instants, from the civil calendar by hand:
//  kBillion  = 1000000000 s = 2001-09-09 01:46:40 UTC, a Sunday;
//  kFriday13 = 1234567890 s = 2009-02-13 23:31:30 UTC, a Friday;
//  k1990     = 7305 days (20 years, 5 leap days) * 86400 = 1990-01-01 00:00:00 UTC, a Monday;
//  k2038     = 24837 days (68 years, 17 leap days) * 86400 = 2038-01-01 00:00:00 UTC, a Friday.
constexpr TimeValue kBillion = 1000000000;
constexpr TimeValue kFriday13 = 1234567890;
constexpr TimeValue k1990 = 631152000;
constexpr TimeValue k2038 = 2145916800;
constexpr std::int64_t kCet = 3600;    // local = UTC + 1 h
constexpr std::int64_t kEst = -18000;  // local = UTC - 5 h

// A clock with a fixed time, a settable tick counter and a fixed zone offset without
// daylight saving.
class FakeClock final : public Clock {
 public:
  TimeValue now = kFriday13;
  std::uint32_t tick = 0;
  std::int64_t offset = 0;
  TimeValue Now() const override { return now; }
  std::uint32_t TickCount() const override { return tick; }
  bool ToLocal(TimeValue time, CalendarTime& local) const override {
    local = CalendarFromSeconds(time + offset);
    return true;
  }
  TimeValue FromLocal(const CalendarTime& local) const override {
    return SecondsFromCalendar(local) - offset;
  }
};

LocaleDescription UsStyle() {
  LocaleDescription us = CLocaleDescription();
  us.shortDate = "M/d/yyyy";
  us.longDate = "dddd, MMMM d, yyyy";
  us.timeOfDay = "h:mm:ss tt";
  us.era = "A.D.";
  return us;
}

LocaleDescription GermanStyle() {
  LocaleDescription de;
  de.shortDate = "dd.MM.yyyy";
  de.longDate = "dddd, d. MMMM yyyy";
  de.timeOfDay = "HH:mm:ss";
  de.timeSeparator = ":";
  de.monthNames = {"Januar", "Februar", "März",      "April",   "Mai",      "Juni",
                   "Juli",   "August",  "September", "Oktober", "November", "Dezember"};
  de.monthAbbreviations = {"Jan", "Feb", "Mär", "Apr", "Mai", "Jun",
                           "Jul", "Aug", "Sep", "Okt", "Nov", "Dez"};
  de.dayNames = {"Sonntag", "Montag", "Dienstag", "Mittwoch", "Donnerstag", "Freitag", "Samstag"};
  de.dayAbbreviations = {"So", "Mo", "Di", "Mi", "Do", "Fr", "Sa"};
  return de;  // no AM/PM designators, no era
}

LocaleDescription WithSeparator(LocaleDescription base, const char* time, const char* sep) {
  base.timeOfDay = time;
  base.timeSeparator = sep;
  return base;
}

const DescribedLocale kUs(UsStyle());
const DescribedLocale kGerman(GermanStyle());
const DescribedLocale kDotted(WithSeparator(GermanStyle(), "H.mm.ss", "."));
const DescribedLocale kNoSeparator(WithSeparator(GermanStyle(), "HHmmss", ""));

// Results of several calls as one text, "1101", and several texts as one list.
std::string Results(std::initializer_list<int> results) {
  std::string text;
  for (const int r : results) text += std::to_string(r);
  return text;
}
std::vector<std::string> Texts(std::initializer_list<std::string> texts) {
  return texts;
}

using Messages = std::vector<std::pair<MessageKind, std::string>>;

class DateTimeText : public ::testing::Test {
 protected:
  void SetUp() override {
    previousClock_ = SetClock(&clock_);
    previousLocale_ = SetLocaleFormat(&kUs);
    previousSink_ = SetMessageSink(
        [this](MessageKind kind, std::string_view text) { messages_.emplace_back(kind, text); });
  }
  void TearDown() override {
    SetClock(previousClock_);
    SetLocaleFormat(previousLocale_);
    SetMessageSink(previousSink_);
  }
  FakeClock clock_;
  Messages messages_;

 private:
  const Clock* previousClock_ = nullptr;
  const LocaleFormat* previousLocale_ = nullptr;
  MessageSink previousSink_;
};

TEST(CalendarArithmetic, KnownDatesBothWays) {
  struct Case {
    std::int64_t seconds;
    CalendarTime expected;
  };
  const Case cases[] = {
      {0, {1970, 1, 4, 1, 0, 0, 0}},          {-1, {1969, 12, 3, 31, 23, 59, 59}},
      {kBillion, {2001, 9, 0, 9, 1, 46, 40}}, {kFriday13, {2009, 2, 5, 13, 23, 31, 30}},
      {951782400, {2000, 2, 2, 29, 0, 0, 0}},  // 11016 days: leap day of a century year
      {4107542400, {2100, 3, 1, 1, 0, 0, 0}},  // 47541 days: 2100 has no 29 February
      {k2038, {2038, 1, 5, 1, 0, 0, 0}},
  };
  for (const Case& c : cases) {
    const CalendarTime t = CalendarFromSeconds(c.seconds);
    const CalendarTime& e = c.expected;
    EXPECT_EQ(std::vector<int>({t.year, t.month, t.dayOfWeek, t.day, t.hour, t.minute, t.second}),
              std::vector<int>({e.year, e.month, e.dayOfWeek, e.day, e.hour, e.minute, e.second}))
        << c.seconds;
    EXPECT_EQ(SecondsFromCalendar(c.expected), c.seconds);
  }
}

TEST_F(DateTimeText, FormatsInTheInjectedLocaleAndZone) {
  struct Case {
    const LocaleFormat* locale;
    std::int64_t offset;
    TimeValue time;
    const char* shortDate;
    const char* longDate;
    const char* timeOfDay;
  };
  const Case cases[] = {
      {&kUs, 0, kBillion, "9/9/2001", "Sunday, September 9, 2001", "1:46:40 AM"},
      {&kUs, kEst, kBillion, "9/8/2001", "Saturday, September 8, 2001", "8:46:40 PM"},
      {&kUs, kCet, kFriday13, "2/14/2009", "Saturday, February 14, 2009", "12:31:30 AM"},
      {&kUs, 0, k1990 + 43199, "1/1/1990", "Monday, January 1, 1990", "11:59:59 AM"},
      {&kUs, 0, k1990 + 43200, "1/1/1990", "Monday, January 1, 1990", "12:00:00 PM"},
      {&kUs, 0, kMaxTimeValue, "1/19/2038", "Tuesday, January 19, 2038", "3:14:07 AM"},
      {&kGerman, kCet, kBillion, "09.09.2001", "Sonntag, 9. September 2001", "02:46:40"},
      {&kGerman, 0, k1990 + 43200, "01.01.1990", "Montag, 1. Januar 1990", "12:00:00"},
      {&kGerman, 0, k1990 + 59 * 86400, "01.03.1990", "Donnerstag, 1. März 1990", "00:00:00"},
  };
  for (const Case& c : cases) {
    SetLocaleFormat(c.locale);
    clock_.offset = c.offset;
    std::string s = "old", l = "old", t = "old", joined = "Batch: ";  // replaced; appended to
    EXPECT_EQ(Results({FormatShortDate(s, c.time), FormatLongDate(l, c.time),
                       FormatTimeOfDay(t, c.time), FormatDateTime(joined, c.time)}),
              "1111");
    EXPECT_EQ(Texts({s, l, t, joined}),
              Texts({c.shortDate, c.longDate, c.timeOfDay,
                     std::string("Batch: ") + c.shortDate + " -- " + c.timeOfDay}));
  }
}

TEST_F(DateTimeText, NoTimeMeansNowAndTimesOutsideThe32BitRangeFail) {
  clock_.now = kBillion;
  std::string text;
  EXPECT_EQ(FormatShortDate(text), 1);
  EXPECT_EQ(text, "9/9/2001");
  for (const TimeValue bad : {TimeValue{-1}, kMaxTimeValue + 1}) {
    std::string s = "old", l = "old", t = "old", joined = "kept";  // emptied; unchanged
    EXPECT_EQ(Results({FormatShortDate(s, bad), FormatLongDate(l, bad), FormatTimeOfDay(t, bad),
                       FormatDateTime(joined, bad)}),
              "0000");
    EXPECT_EQ(Texts({s, l, t, joined}), Texts({"", "", "", "kept"}));
  }
  EXPECT_EQ(FormatShortDate(text, 0), 1);
  EXPECT_EQ(text, "1/1/1970");
}

TEST_F(DateTimeText, SafeCurrentTimeChecksTheUtcYearFromBothSides) {
  const struct {
    TimeValue now;
    std::int64_t offset;
    bool inRange;
  } cases[] = {
      {0, 0, true},             // 1970-01-01 00:00:00
      {-1, 0, false},           // 1969-12-31 23:59:59
      {0, -3600, true},         // local 1969, UTC 1970: the UTC year counts
      {k2038 - 1, 0, true},     // 2037-12-31 23:59:59
      {k2038, 0, false},        // 2038-01-01 00:00:00
      {k2038 - 1, kCet, true},  // local 2038, UTC 2037
      {k2038, kCet, false},
      {kMaxTimeValue, 0, false},  // 2038-01-19: a valid time value, yet past 2037
  };
  const std::string message =
      "Your system clock exceeds the valid range: Jan 1, 1970 -- Dec 31, 2037\nThe date is "
      "assumed to be Jan 1, 1990.  The time is assumed to be 00:00.";
  for (const auto& c : cases) {
    SCOPED_TRACE(c.now);
    clock_.now = c.now;
    clock_.offset = c.offset;
    messages_.clear();
    // Out of range: 1990-01-01 00:00 local time, and a warning.
    EXPECT_EQ(GetSafeCurrentTime(), c.inRange ? c.now : k1990 - c.offset);
    EXPECT_EQ(messages_, (c.inRange ? Messages{} : Messages{{MessageKind::kWarning, message}}));
  }
  clock_.now = k2038;
  GetSafeCurrentTime();
  GetSafeCurrentTime();
  EXPECT_EQ(messages_.size(), 3u);  // told again at every call
}

TEST_F(DateTimeText, TimeSeparatorFallsBackToColon) {
  const std::pair<const LocaleFormat*, const char*> cases[] = {
      {&kUs, ":"}, {&kDotted, "."}, {&kNoSeparator, ":"}};
  for (const auto& [locale, expected] : cases) {
    SetLocaleFormat(locale);
    std::string text = "old";
    GetTimeSeparator(text);
    EXPECT_EQ(text, expected);
  }
}

TEST_F(DateTimeText, ClockCountsUpAndDown) {
  const struct {
    std::uint32_t limit, startTick, elapsedMs;
    const LocaleFormat* locale;
    const char* text;
    int result;
  } cases[] = {
      {90, 5000, 999, &kUs, "1:30", 1},    // whole seconds only
      {90, 5000, 90999, &kUs, "0:00", 1},  // s = 90 = limit: still running
      {90, 5000, 91000, &kUs, "0:00", 0},  // s = 91 > limit: expired
      {3600, 0, 0, &kUs, "1:00:00", 1},
      {3601, 0, 2000, &kUs, "59:59", 1},
      {4294967294u, 0, 0, &kUs, "1193046:28:14", 1},  // 1193046 h * 3600 + 1694 s
      {0, 0, 3599999, &kUs, "59:59", 1},
      {0, 0, 3600000, &kUs, "1:00:00", 1},
      {0, 0, 3725000, &kUs, "1:02:05", 1},
      {0, 0, 3725000, &kDotted, "1.02.05", 1},
      {0, 0, 3725000, &kNoSeparator, "1:02:05", 1},
      {0, 4294967000u, 1000, &kUs, "0:01", 1},  // the tick counter wraps in between
  };
  for (const auto& c : cases) {
    SetLocaleFormat(c.locale);
    clock_.tick = c.startTick;
    std::string text;
    ClockText(&text, c.limit);
    clock_.tick = c.startTick + c.elapsedMs;
    EXPECT_EQ(ClockText(&text, kClockReadOnly), c.result) << c.limit << " " << c.elapsedMs;
    EXPECT_EQ(text, c.text) << c.limit << " " << c.elapsedMs;
    EXPECT_EQ(ClockText(nullptr, kClockReadOnly), c.result);
  }
}

TEST_F(DateTimeText, ClockKeepsItsSeparatorAndStartUntilRestarted) {
  std::string text;
  clock_.tick = 1000;
  EXPECT_EQ(ClockText(&text, 90), 1);
  EXPECT_EQ(text, "1:30");
  SetLocaleFormat(&kDotted);
  clock_.tick = 31000;
  EXPECT_EQ(ClockText(&text, kClockReadOnly), 1);
  EXPECT_EQ(text, "1:00");  // separator and start are those of the restart
  EXPECT_EQ(ClockText(&text, 0), 1);
  EXPECT_EQ(text, "0.00");  // restarted: counts up with the new separator
}

TEST_F(DateTimeText, PatternFillsPicturesNumbersAndLiterals) {
  struct Case {
    const char* pattern;
    std::uint32_t number;
    int result;
    const char* text;
    TimeValue time = kFriday13;
    const LocaleFormat* locale = &kUs;
  };
  const std::string dashes39(39, '-');
  const std::string dashes40(40, '-');
  const std::string lateLong = "nn" + dashes40;
  const Case cases[] = {
      {"yyyyMMdd'-'nnn", 7, 1, "20090213-007"},
      {"nn", 123, 1, "123"},  // padding never truncates
      {"n", 0, 1, "0"},
      {"", 7, 1, ""},
      {"hh:mm tt", 7, 1, "11:31 PM"},
      {"h t", 7, 1, "11 P"},
      {"dddd, MMMM d", 7, 1, "Friday, February 13"},
      {"ddd MMM yy y gg", 7, 1, "Fri Feb 09 9 A.D."},
      {"'Batch 'nnnn", 42, 1, "Batch 0042"},
      {"Mon", 7, 1, "2o7"},  // unquoted letters are pictures, "n" the number
      {"''''", 7, 1, "'"},
      {"''", 7, 1, ""},
      {"'''x'", 7, 1, "x"},     // "''" then the literal 'x'
      {"'''''x'", 7, 1, "'x"},  // "''''" then the literal 'x'
      {dashes39.c_str(), 7, 1, dashes39.c_str()},
      {dashes40.c_str(), 7, 0, ""},    // a 40-character picture text overflows
      {lateLong.c_str(), 7, 0, "07"},  // the text built so far stays
      {"yyyy'abc", 7, 0, "2009"},      // literal without its closing quote
      {"yyyy", 7, 0, "", -1},          // a time outside the range
      // A German-style locale has no era and no AM/PM designators.
      {"nngg", 7, 0, "07", kFriday13, &kGerman},
      {"'x'tt", 7, 0, "x", kFriday13, &kGerman},
      {"HH tt", 7, 1, "23 ", kFriday13, &kGerman},  // the blank after the hour is text
      {"dd. MMMM", 7, 1, "27. Februar", kFriday13 + 14 * 86400, &kGerman},
      {"y yy yyy", 7, 1, "0 90 1990", k1990, &kGerman},
  };
  for (const Case& c : cases) {
    SetLocaleFormat(c.locale);
    std::string text = "old";
    EXPECT_EQ(FormatPattern(text, c.pattern, c.number, c.time), c.result) << c.pattern;
    EXPECT_EQ(text, c.text) << c.pattern;
  }
}

TEST(LocalePictures, RejectOutOfRangeFieldsAndShortenDesignatorsByCharacter) {
  LocaleDescription ja = CLocaleDescription();
  ja.amDesignator = "午前";
  std::string out;
  EXPECT_TRUE(FormatTimePicture(ja, CalendarFromSeconds(kBillion), "t h", out));
  EXPECT_EQ(out, "午 1");
  const CalendarTime good = CalendarFromSeconds(kBillion);
  for (int field = 0; field < 6; ++field) {
    CalendarTime bad = good;
    int* slots[] = {&bad.year, &bad.month, &bad.day, &bad.dayOfWeek, &bad.hour, &bad.minute};
    const int badValue[] = {1600, 13, 0, 7, 24, -1};
    *slots[field] = badValue[field];
    out = "old";
    EXPECT_FALSE(FormatDatePicture(ja, bad, "d", out)) << field;
    EXPECT_EQ(out, "");
    EXPECT_FALSE(FormatTimePicture(ja, bad, "H", out)) << field;
  }
}

TEST(LocalePictures, StrftimeFormatsBecomePictures) {
  const std::pair<const char*, const char*> cases[] = {
      {"%m/%d/%y", "MM/dd/yy"},           {"%-d.%-m.%Y", "d.M.yyyy"},
      {"%e %B %Y", "d MMMM yyyy"},        {"%a %b %Ey", "ddd MMM yy"},
      {"%D|%F", "MM/dd/yy|yyyy-MM-dd"},   {"%r", "hh:mm:ss tt"},
      {"%OH:%M:%S %Z", "HH:mm:ss "},      {"%Hh%M", "HH'h'mm"},
      {"it's %d", "'it''s 'dd"},          {"%%%d", "%dd"},
      {"%Y年%m月%d日", "yyyy年MM月dd日"}, {"%k.%M %P", "H.mm tt"},
  };
  for (const auto& [format, picture] : cases) {
    EXPECT_EQ(PictureFromStrftime(format), picture) << format;
  }
  EXPECT_EQ(PictureFromStrftime("%r", "%l:%M %p"), "h:mm tt");

  const std::pair<const char*, const char*> longDates[] = {
      {"MM/dd/yy", "dddd, MMMM d, yyyy"},  {"dd.MM.yyyy", "dddd, d MMMM yyyy"},
      {"yyyy-MM-dd", "dddd, yyyy MMMM d"}, {"ddd MM/dd", "dddd, MMMM d, yyyy"},
      {"'d'yy.MM", "dddd, yyyy MMMM d"},   {"yyyy", "dddd, MMMM d, yyyy"},
  };
  for (const auto& [shortDate, longDate] : longDates) {
    EXPECT_EQ(LongDateFromShortDate(shortDate), longDate) << shortDate;
  }

  const std::pair<const char*, const char*> separators[] = {
      {"HH:mm:ss", ":"}, {"H.mm.ss", "."}, {"HH'h'mm", "h"},
      {"tt hh mm", " "}, {"HH", ""},       {"mm:ss", ""},
  };
  for (const auto& [picture, separator] : separators) {
    EXPECT_EQ(TimeSeparatorOfPicture(picture), separator) << picture;
  }
}

TEST(LocalePictures, PosixCLocaleMatchesItsBuiltInDescription) {
  const std::optional<LocaleDescription> c = DescribePlatformLocale("C");
  ASSERT_TRUE(c.has_value());
  const auto fields = [](const LocaleDescription& d) {
    return std::tuple(d.shortDate, d.longDate, d.timeOfDay, d.timeSeparator, d.amDesignator,
                      d.pmDesignator, d.monthNames, d.monthAbbreviations, d.dayNames,
                      d.dayAbbreviations);
  };
  EXPECT_TRUE(fields(*c) == fields(CLocaleDescription()));
  EXPECT_FALSE(DescribePlatformLocale("xx_YY.no-such-codeset").has_value());
}

TEST(SystemClockSeam, AgreesWithTheCLibrary) {
  const TimeValue before = static_cast<TimeValue>(std::time(nullptr));
  const TimeValue now = SystemClock().Now();
  EXPECT_LE(before, now);
  EXPECT_LE(now - before, 2);
  for (const TimeValue t : {TimeValue{0}, k1990, kBillion, kFriday13}) {
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
