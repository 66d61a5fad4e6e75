// What the library reads from the platform's regional settings, one seam per platform:
// locale_platform_posix.cpp reads the POSIX locale data (nl_langinfo_l), and
// locale_platform_windows.cpp the Win32 national-language functions (GetLocaleInfoA,
// GetDateFormatA, GetTimeFormatA). Portable code (locale_format.cpp) calls the platform only
// through these.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "velquor/settings/locale_format.h"

namespace velquor {

// Describes the platform locale `name` for the date and time texts: "" is the user's (on POSIX
// from LC_ALL, LC_TIME and LANG), "C" the platform's neutral locale. On POSIX the short date
// and time pictures are translated from the locale's strftime formats (D_FMT, T_FMT;
// T_FMT_AMPM for %r); POSIX defines no long date, so the long date is LongDateFromShortDate of
// the short date. The time separator is the text between the hour and the minute of the time
// format. On Windows "" is LOCALE_USER_DEFAULT, "C" LOCALE_INVARIANT and any other name a
// Windows locale name such as "de-DE"; every field is the locale's own (GetLocaleInfoA:
// LOCALE_SSHORTDATE, LOCALE_SLONGDATE, LOCALE_STIMEFORMAT, LOCALE_STIME, the month and day
// names, LOCALE_S1159 and LOCALE_S2359). No era is given. Nothing if the locale is not
// installed.
std::optional<LocaleDescription> DescribePlatformLocale(const char* name);

// The decimal separator of the user's numeric locale (on POSIX from LC_ALL, LC_NUMERIC and
// LANG); empty if the locale cannot be read or gives none.
std::string ReadUserDecimalSeparator();

// The user's locale for the date and time texts (UserLocaleFormat). On POSIX a DescribedLocale
// of DescribePlatformLocale(""), else of "C", else of CLocaleDescription(). On Windows the
// texts come from the platform itself: dates from GetDateFormatA and times from GetTimeFormatA
// (LOCALE_USER_DEFAULT; DATE_SHORTDATE or DATE_LONGDATE without a picture), the separator from
// GetLocaleInfoA(LOCALE_STIME).
std::unique_ptr<LocaleFormat> MakeUserLocaleFormat();

}  // namespace velquor
