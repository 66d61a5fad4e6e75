// Conversions between the library's calendar time and the Win32 SYSTEMTIME, shared by the
// Windows twins of the clock and locale seams (include from _windows.cpp files only).
#pragma once

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

#include "velquor/settings/clock.h"

namespace velquor {

// `t` as a SYSTEMTIME; false if a field lies outside what the Win32 date and time functions
// take (year 1601..30827, month 1..12, day 1..31, dayOfWeek 0..6, hour 0..23, minute and
// second 0..59).
inline bool ToSystemTime(const CalendarTime& t, SYSTEMTIME& out) {
  const bool valid = t.year >= 1601 && t.year <= 30827 && t.month >= 1 && t.month <= 12 &&
                     t.day >= 1 && t.day <= 31 && t.dayOfWeek >= 0 && t.dayOfWeek <= 6 &&
                     t.hour >= 0 && t.hour <= 23 && t.minute >= 0 && t.minute <= 59 &&
                     t.second >= 0 && t.second <= 59;
  if (!valid) return false;
  out = SYSTEMTIME{};
  out.wYear = static_cast<WORD>(t.year);
  out.wMonth = static_cast<WORD>(t.month);
  out.wDayOfWeek = static_cast<WORD>(t.dayOfWeek);
  out.wDay = static_cast<WORD>(t.day);
  out.wHour = static_cast<WORD>(t.hour);
  out.wMinute = static_cast<WORD>(t.minute);
  out.wSecond = static_cast<WORD>(t.second);
  return true;
}

inline CalendarTime FromSystemTime(const SYSTEMTIME& time) {
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

}  // namespace velquor
