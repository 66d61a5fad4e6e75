// The clock behind the date and time texts: the current time, a millisecond tick counter and
// the conversion between time values and the user's local calendar time. The library reads
// them through one replaceable clock so that hosts and tests can supply their own.
#pragma once

#include <cstdint>

namespace velquor {

// Whole seconds since 1 January 1970, 00:00:00 UTC. The date and time texts accept the range
// of a signed 32-bit time value (see kMaxTimeValue); the type is wider so that a clock can
// report a time outside it.
using TimeValue = std::int64_t;

// Largest time the date and time texts format: 2^31 - 1 s, 19 January 2038, 03:14:07 UTC.
inline constexpr TimeValue kMaxTimeValue = 2147483647;

// A broken-down time in the proleptic Gregorian calendar.
struct CalendarTime {
  int year = 1970;
  int month = 1;      // 1..12
  int dayOfWeek = 4;  // 0 = Sunday .. 6 = Saturday
  int day = 1;        // 1..31
  int hour = 0;       // 0..23
  int minute = 0;     // 0..59
  int second = 0;     // 0..59
};

// Calendar time of `seconds` after 1970-01-01 00:00:00 with no zone offset (UTC when
// `seconds` is a TimeValue). Exact for any 64-bit input whose year fits an int.
CalendarTime CalendarFromSeconds(std::int64_t seconds);
// The inverse: seconds after 1970-01-01 00:00:00 of `time` (its dayOfWeek is ignored; month
// and day outside their ranges are not normalised).
std::int64_t SecondsFromCalendar(const CalendarTime& time);

class Clock {
 public:
  virtual ~Clock() = default;
  // The current time (the system clock, UTC).
  virtual TimeValue Now() const = 0;
  // Milliseconds since an arbitrary fixed start (the system's start); wraps after 2^32 ms,
  // about 49.7 days. Differences are taken modulo 2^32.
  virtual std::uint32_t TickCount() const = 0;
  // `time` as calendar time in the user's time zone. False if it cannot be converted.
  virtual bool ToLocal(TimeValue time, CalendarTime& local) const = 0;
  // The time value of a calendar time in the user's time zone (daylight saving as in force
  // on that date); the dayOfWeek field is ignored.
  virtual TimeValue FromLocal(const CalendarTime& local) const = 0;
};

// The operating system's clock (clock_platform.h): on Windows GetSystemTime, GetTickCount and
// the Win32 time zone; elsewhere system_clock, steady_clock and the C library's time zone
// (localtime_r, mktime).
const Clock& SystemClock();

// The clock the library reads: the system clock unless replaced.
const Clock& CurrentClock();
// Makes `clock` the library's clock for the whole process and returns the previous one;
// nullptr restores the system clock. The caller keeps `clock` alive while it is installed.
const Clock* SetClock(const Clock* clock);

}  // namespace velquor
