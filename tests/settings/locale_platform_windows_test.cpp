// The date and time texts and the clock on Windows against the Win32 functions themselves:
// GetDateFormatA, GetTimeFormatA and GetLocaleInfoA of the user's locale, GetSystemTime,
// GetTickCount and the Win32 time zone.
#include "velquor/settings/locale_platform.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <cstdint>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "velquor/settings/clock.h"
#include "velquor/settings/system_time_windows.h"
#include "velquor/settings/date_time_text.h"
#include "velquor/settings/locale_format.h"

namespace velquor {
namespace {

// 2001-09-09 01:46:40 (a Sunday), 2009-02-13 23:31:30 (a Friday, after noon), 2000-02-29
// 12:00:00 (leap day, noon), 2037-12-31 00:00:59.
constexpr TimeValue kTimes[] = {1000000000, 1234567890, 951825600, 2145830459};

std::string LocaleInfo(LCTYPE item) {
  char buffer[256] = "";
  ::GetLocaleInfoA(LOCALE_USER_DEFAULT, item, buffer, sizeof buffer);
  return buffer;
}

SYSTEMTIME SystemTimeOf(TimeValue time) {
  SYSTEMTIME s{};
  ToSystemTime(CalendarFromSeconds(time), s);
  return s;
}

std::string PlatformDate(const SYSTEMTIME& s, DWORD flags, const char* picture = nullptr) {
  char buffer[256] = "";
  ::GetDateFormatA(LOCALE_USER_DEFAULT, flags, &s, picture, buffer, sizeof buffer);
  return buffer;
}

std::string PlatformTime(const SYSTEMTIME& s, const char* picture = nullptr) {
  char buffer[256] = "";
  ::GetTimeFormatA(LOCALE_USER_DEFAULT, 0, &s, picture, buffer, sizeof buffer);
  return buffer;
}

// Times in UTC, so that the tests see the calendar fields they pass to the platform.
class UserLocaleTexts : public ::testing::Test, public Clock {
 protected:
  TimeValue Now() const override { return kTimes[0]; }
  std::uint32_t TickCount() const override { return 0; }
  bool ToLocal(TimeValue time, CalendarTime& local) const override {
    local = CalendarFromSeconds(time);
    return true;
  }
  TimeValue FromLocal(const CalendarTime& local) const override {
    return SecondsFromCalendar(local);
  }
  void SetUp() override {
    SetClock(this);
    SetLocaleFormat(nullptr);
  }
  void TearDown() override { SetClock(nullptr); }
};

// The texts are the platform's, and so are those of the locale's own description, so the
// portable formatter and the platform read the pictures alike.
TEST_F(UserLocaleTexts, DatesAndTimesAndTheLocaleDescriptionAreThoseOfThePlatform) {
  const std::optional<LocaleDescription> user = DescribePlatformLocale("");
  ASSERT_TRUE(user.has_value());
  const DescribedLocale described(*user);
  for (const TimeValue time : kTimes) {
    const SYSTEMTIME s = SystemTimeOf(time);
    const CalendarTime t = CalendarFromSeconds(time);
    const std::vector<std::string> platform = {PlatformDate(s, DATE_SHORTDATE),
                                               PlatformDate(s, DATE_LONGDATE), PlatformTime(s)};
    std::string shortDate, longDate, timeOfDay, joined;
    EXPECT_EQ(std::vector<int>({FormatShortDate(shortDate, time), FormatLongDate(longDate, time),
                                FormatTimeOfDay(timeOfDay, time), FormatDateTime(joined, time)}),
              std::vector<int>(4, 1));
    EXPECT_EQ(std::vector<std::string>({shortDate, longDate, timeOfDay}), platform) << time;
    EXPECT_EQ(joined, shortDate + " -- " + timeOfDay);
    EXPECT_NE(shortDate, longDate);
    described.FormatDate(t, kShortDateFlag, {}, shortDate);
    described.FormatDate(t, kLongDateFlag, {}, longDate);
    described.FormatTime(t, {}, timeOfDay);
    EXPECT_EQ(std::vector<std::string>({shortDate, longDate, timeOfDay}), platform) << time;
  }
  std::string now;
  ASSERT_EQ(FormatShortDate(now), 1);  // no time: the clock's now
  EXPECT_EQ(now, PlatformDate(SystemTimeOf(kTimes[0]), DATE_SHORTDATE));
  if (LocaleInfo(LOCALE_SSHORTDATE) == "M/d/yyyy") {
    EXPECT_EQ(now, "9/9/2001");  // English (United States), as under a default wine
  }
  std::string text = "old";
  EXPECT_EQ(FormatShortDate(text, -1), 0);  // before 1970: no platform time value
  EXPECT_EQ(text, "");
  EXPECT_EQ(user->shortDate, LocaleInfo(LOCALE_SSHORTDATE));
  EXPECT_EQ(user->dayNames[0], LocaleInfo(LOCALE_SDAYNAME7));  // Sunday first
  EXPECT_EQ(user->dayAbbreviations[1], LocaleInfo(LOCALE_SABBREVDAYNAME1));
  EXPECT_EQ(user->monthNames[11], LocaleInfo(LOCALE_SMONTHNAME12));
  EXPECT_EQ(user->pmDesignator, LocaleInfo(LOCALE_S2359));
  const std::optional<LocaleDescription> german = DescribePlatformLocale("de-DE");
  ASSERT_TRUE(german.has_value());
  EXPECT_EQ(LongDateFromShortDate(german->shortDate), "dddd, d MMMM yyyy");  // day first
  EXPECT_EQ(german->monthNames[0], "Januar");
  EXPECT_TRUE(DescribePlatformLocale("C").has_value());
  EXPECT_FALSE(DescribePlatformLocale("xx-no-such-locale").has_value());
  EXPECT_EQ(UserDecimalSeparator(), LocaleInfo(LOCALE_SDECIMAL));
}

// Patterns: each picture goes to the platform, whose text must be 1 to 39 characters.
TEST_F(UserLocaleTexts, PatternsAndTheTimeSeparator) {
  const TimeValue time = kTimes[0];
  const SYSTEMTIME s = SystemTimeOf(time);
  std::string text;
  EXPECT_EQ(FormatPattern(text, "yyyy-MM-dd HH:mm:ss 'lot' nnn", 7, time), 1);
  EXPECT_EQ(text, "2001-09-09 01:46:40 lot 007");
  EXPECT_EQ(FormatPattern(text, "ddd d MMM h tt", 0, time), 1);
  EXPECT_EQ(text, PlatformDate(s, 0, "ddd d MMM ") + PlatformTime(s, "h tt"));
  // A picture's text may fill 39 of the 40 characters of the buffer, not 40.
  EXPECT_EQ(FormatPattern(text, "yyyy-yyyy-yyyy-yyyy-yyyy-yyyy-yyyy-yyyy", 0, time), 1);
  EXPECT_EQ(text.size(), 39u);
  EXPECT_EQ(FormatPattern(text, "yyyy-yyyy-yyyy-yyyy-yyyy-yyyy-yyyy-yyyy-", 0, time), 0);
  std::string separator;
  GetTimeSeparator(separator);
  const std::string platform = LocaleInfo(LOCALE_STIME);
  EXPECT_EQ(separator, platform.empty() ? ":" : platform);
}

// The system clock reads GetSystemTime and GetTickCount and converts with the Win32 time zone.
TEST(SystemClockWindows, ReadsThePlatformClockAndTimeZone) {
  SetClock(nullptr);
  SYSTEMTIME utc;
  ::GetSystemTime(&utc);
  const TimeValue platformNow = SecondsFromCalendar(
      {utc.wYear, utc.wMonth, utc.wDayOfWeek, utc.wDay, utc.wHour, utc.wMinute, utc.wSecond});
  EXPECT_NEAR(static_cast<double>(GetSafeCurrentTime()), static_cast<double>(platformNow), 1.0);
  EXPECT_NEAR(static_cast<double>(SystemClock().Now()), static_cast<double>(platformNow), 1.0);

  const std::uint32_t before = ::GetTickCount();
  const std::uint32_t first = SystemClock().TickCount();
  ::Sleep(20);
  const std::uint32_t second = SystemClock().TickCount();
  EXPECT_LT(first - before, 1000u);
  EXPECT_GE(second - first, 10u);  // moves on, modulo 2^32
  EXPECT_LT(second - first, 1000u);

  for (const TimeValue time : kTimes) {
    const SYSTEMTIME s = SystemTimeOf(time);
    SYSTEMTIME expected;
    ASSERT_TRUE(::SystemTimeToTzSpecificLocalTime(nullptr, &s, &expected));
    CalendarTime local;
    ASSERT_TRUE(SystemClock().ToLocal(time, local));
    EXPECT_EQ(std::tuple(local.year, local.month, local.day, local.dayOfWeek, local.hour,
                         local.minute, local.second),
              std::tuple(int{expected.wYear}, int{expected.wMonth}, int{expected.wDay},
                         int{expected.wDayOfWeek}, int{expected.wHour}, int{expected.wMinute},
                         int{expected.wSecond}))
        << time;
    EXPECT_EQ(SystemClock().FromLocal(local), time);
  }
  CalendarTime tooEarly;
  EXPECT_FALSE(SystemClock().ToLocal(-12000000000, tooEarly));  // before 1601
}

}  // namespace
}  // namespace velquor
