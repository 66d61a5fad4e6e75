// The operating system's clock behind SystemClock() (clock.h), one seam per platform:
// clock_platform_posix.cpp reads std::chrono's system and steady clocks and the C library's
// time zone (localtime_r, mktime); clock_platform_windows.cpp reads GetSystemTime and
// GetTickCount and converts with the Win32 time zone (SystemTimeToTzSpecificLocalTime,
// TzSpecificLocalTimeToSystemTime).
#pragma once

#include <cstdint>

#include "velquor/settings/clock.h"

namespace velquor {

// The current UTC time in whole seconds since 1970.
TimeValue PlatformNow();
// Milliseconds since the system started, modulo 2^32.
std::uint32_t PlatformTickCount();
// `time` as calendar time in the user's time zone; false if the platform cannot convert it.
bool PlatformToLocal(TimeValue time, CalendarTime& local);
// The time of a calendar time in the user's time zone (daylight saving as in force then);
// -1 if the platform cannot convert it.
TimeValue PlatformFromLocal(const CalendarTime& local);

}  // namespace velquor
