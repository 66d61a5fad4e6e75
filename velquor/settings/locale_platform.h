// What the library reads from the platform's regional settings, one seam per platform:
// locale_platform_posix.cpp reads the POSIX locale data (nl_langinfo_l, localtime_r), a
// _windows.cpp twin beside it would read GetLocaleInfo and the Win32 time zone. Portable code
// (locale_format.cpp, clock.cpp) calls the platform only through these.
#pragma once

#include <ctime>
#include <optional>
#include <string>

#include "velquor/settings/locale_format.h"

namespace velquor {

// Describes the platform locale `name` for the date and time texts: "" is the user's (on POSIX
// from LC_ALL, LC_TIME and LANG), "C" the platform's neutral locale. On POSIX the short date
// and time pictures are translated from the locale's strftime formats (D_FMT, T_FMT;
// T_FMT_AMPM for %r); POSIX defines no long date, so the long date is LongDateFromShortDate of
// the short date. The time separator is the text between the hour and the minute of the time
// format. No era is given. Nothing if the locale is not installed.
std::optional<LocaleDescription> DescribePlatformLocale(const char* name);

// The decimal separator of the user's numeric locale (on POSIX from LC_ALL, LC_NUMERIC and
// LANG); empty if the locale cannot be read or gives none.
std::string ReadUserDecimalSeparator();

// Splits `time` into the local calendar fields of the user's time zone; false if the platform
// cannot.
bool ToLocalTimeParts(std::time_t time, std::tm& parts);

}  // namespace velquor
