// The clock on Win32: GetSystemTime, GetTickCount and the user's time zone through
// SystemTimeToTzSpecificLocalTime and TzSpecificLocalTimeToSystemTime (which apply the
// daylight-saving rule of the year being converted). SYSTEMTIME covers the years 1601 to
// 30827; times outside them cannot be converted.
#include "velquor/settings/clock_platform.h"

#include <windows.h>

namespace velquor {

namespace {

constexpr int kFirstSystemYear = 1601;
constexpr int kLastSystemYear = 30827;

bool ToSystemTime(const CalendarTime& time, SYSTEMTIME& out) {
  if (time.year < kFirstSystemYear || time.year > kLastSystemYear) return false;
  out = SYSTEMTIME{};
  out.wYear = static_cast<WORD>(time.year);
  out.wMonth = static_cast<WORD>(time.month);
  out.wDayOfWeek = static_cast<WORD>(time.dayOfWeek);
  out.wDay = static_cast<WORD>(time.day);
  out.wHour = static_cast<WORD>(time.hour);
  out.wMinute = static_cast<WORD>(time.minute);
  out.wSecond = static_cast<WORD>(time.second);
  return true;
}

CalendarTime FromSystemTime(const SYSTEMTIME& time) {
  CalendarTime out;
  out.year = time.wYear;
  out.month = time.wMonth;
  out.dayOfWeek = time.wDayOfWeek;
  out.day = time.wDay;
  out.hour = time.wHour;
  out.minute = time.wMinute;
  out.second = time.wSecond;
  return out;
}

}  // namespace

TimeValue PlatformNow() {
  SYSTEMTIME now;
  ::GetSystemTime(&now);
  return SecondsFromCalendar(FromSystemTime(now));
}

std::uint32_t PlatformTickCount() {
  return ::GetTickCount();
}

bool PlatformToLocal(TimeValue time, CalendarTime& local) {
  SYSTEMTIME utc;
  SYSTEMTIME converted;
  if (!ToSystemTime(CalendarFromSeconds(time), utc) ||
      !::SystemTimeToTzSpecificLocalTime(nullptr, &utc, &converted)) {
    return false;
  }
  local = FromSystemTime(converted);
  return true;
}

TimeValue PlatformFromLocal(const CalendarTime& local) {
  SYSTEMTIME wall;
  SYSTEMTIME utc;
  if (!ToSystemTime(local, wall) || !::TzSpecificLocalTimeToSystemTime(nullptr, &wall, &utc)) {
    return -1;
  }
  return SecondsFromCalendar(FromSystemTime(utc));
}

}  // namespace velquor
