// The clock on Win32: GetSystemTime, GetTickCount and the user's time zone through
// SystemTimeToTzSpecificLocalTime and TzSpecificLocalTimeToSystemTime (which apply the
// daylight-saving rule of the year being converted). SYSTEMTIME covers the years 1601 to
// 30827; times outside them cannot be converted.
#include "velquor/settings/clock_platform.h"

#include "velquor/settings/system_time_windows.h"

#include <windows.h>

namespace velquor {

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
