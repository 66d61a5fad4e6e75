// The platform's regional settings read with the Win32 national-language functions: the
// locale's data from GetLocaleInfoA, and the user's dates and times formatted by
// GetDateFormatA and GetTimeFormatA themselves, so that they match what every other program
// of the user shows. Texts are in the process's ANSI code page.
#include "velquor/settings/locale_platform.h"

#include "velquor/settings/system_time_windows.h"

#include <windows.h>

#include <cstddef>
#include <string>
#include <vector>

namespace velquor {

namespace {

// Calls a Win32 text function twice, first for the size the text needs and then for the text;
// false if either call fails.
template <typename Function>
bool ReadText(Function call, std::string& out) {
  out.clear();
  const int needed = call(nullptr, 0);
  if (needed <= 0) return false;
  std::vector<char> buffer(static_cast<std::size_t>(needed));
  const int written = call(buffer.data(), needed);
  if (written <= 0) return false;
  out.assign(buffer.data(), static_cast<std::size_t>(written - 1));  // without the zero
  return true;
}

std::string LocaleInfo(LCID locale, LCTYPE item) {
  std::string text;
  ReadText([&](char* buffer, int size) { return ::GetLocaleInfoA(locale, item, buffer, size); },
           text);
  return text;
}

// The user's locale as the platform formats it.
class UserWindowsLocale final : public LocaleFormat {
 public:
  bool FormatDate(const CalendarTime& time, unsigned flags, std::string_view picture,
                  std::string& out) const override {
    out.clear();
    SYSTEMTIME date;
    if (!ToSystemTime(time, date)) return false;
    const std::string format(picture);
    // A picture goes without flags; without one the flags choose the locale's format.
    const DWORD formatFlags =
        !picture.empty() ? 0 : flags == kLongDateFlag ? DATE_LONGDATE : DATE_SHORTDATE;
    const char* formatText = picture.empty() ? nullptr : format.c_str();
    return ReadText(
        [&](char* buffer, int size) {
          return ::GetDateFormatA(LOCALE_USER_DEFAULT, formatFlags, &date, formatText, buffer,
                                  size);
        },
        out);
  }

  bool FormatTime(const CalendarTime& time, std::string_view picture,
                  std::string& out) const override {
    out.clear();
    SYSTEMTIME clock;
    if (!ToSystemTime(time, clock)) return false;
    const std::string format(picture);
    const char* formatText = picture.empty() ? nullptr : format.c_str();
    return ReadText(
        [&](char* buffer, int size) {
          return ::GetTimeFormatA(LOCALE_USER_DEFAULT, 0, &clock, formatText, buffer, size);
        },
        out);
  }

  std::string TimeSeparator() const override {
    return LocaleInfo(LOCALE_USER_DEFAULT, LOCALE_STIME);
  }
};

// The locale identifier of a name as DescribePlatformLocale takes it; 0 if there is none.
LCID LocaleOfName(const char* name) {
  const std::string text = name != nullptr ? name : "";
  if (text.empty()) return LOCALE_USER_DEFAULT;
  if (text == "C") return LOCALE_INVARIANT;
  wchar_t wide[LOCALE_NAME_MAX_LENGTH];
  if (::MultiByteToWideChar(CP_ACP, 0, text.c_str(), -1, wide, LOCALE_NAME_MAX_LENGTH) == 0) {
    return 0;
  }
  return ::LocaleNameToLCID(wide, 0);
}

}  // namespace

std::optional<LocaleDescription> DescribePlatformLocale(const char* name) {
  const LCID locale = LocaleOfName(name);
  if (locale == 0) return std::nullopt;
  LocaleDescription d;
  d.shortDate = LocaleInfo(locale, LOCALE_SSHORTDATE);
  if (d.shortDate.empty()) return std::nullopt;
  d.longDate = LocaleInfo(locale, LOCALE_SLONGDATE);
  d.timeOfDay = LocaleInfo(locale, LOCALE_STIMEFORMAT);
  d.timeSeparator = LocaleInfo(locale, LOCALE_STIME);
  for (LCTYPE m = 0; m < 12; ++m) {
    d.monthNames[m] = LocaleInfo(locale, LOCALE_SMONTHNAME1 + m);
    d.monthAbbreviations[m] = LocaleInfo(locale, LOCALE_SABBREVMONTHNAME1 + m);
  }
  // The platform numbers the days from Monday (LOCALE_SDAYNAME1) to Sunday (LOCALE_SDAYNAME7).
  for (LCTYPE w = 0; w < 7; ++w) {
    const LCTYPE fromMonday = (w + 6) % 7;
    d.dayNames[w] = LocaleInfo(locale, LOCALE_SDAYNAME1 + fromMonday);
    d.dayAbbreviations[w] = LocaleInfo(locale, LOCALE_SABBREVDAYNAME1 + fromMonday);
  }
  d.amDesignator = LocaleInfo(locale, LOCALE_S1159);
  d.pmDesignator = LocaleInfo(locale, LOCALE_S2359);
  return d;
}

std::string ReadUserDecimalSeparator() {
  return LocaleInfo(LOCALE_USER_DEFAULT, LOCALE_SDECIMAL);
}

std::unique_ptr<LocaleFormat> MakeUserLocaleFormat() {
  return std::make_unique<UserWindowsLocale>();
}

}  // namespace velquor
