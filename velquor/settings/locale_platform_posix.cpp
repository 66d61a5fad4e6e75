// The platform's regional settings read with POSIX calls: the LC_TIME and LC_NUMERIC data of
// a locale object (newlocale, nl_langinfo_l), which leaves the process's C locale alone.
#include "velquor/settings/locale_platform.h"

#include <langinfo.h>
#include <locale.h>

#include <cstddef>
#include <utility>

namespace velquor {

std::optional<LocaleDescription> DescribePlatformLocale(const char* name) {
  locale_t locale = newlocale(LC_TIME_MASK, name, static_cast<locale_t>(nullptr));
  if (locale == static_cast<locale_t>(nullptr)) return std::nullopt;
  const auto item = [locale](nl_item what) { return std::string(nl_langinfo_l(what, locale)); };

  LocaleDescription d;
  std::string ampmFormat = item(T_FMT_AMPM);
  if (ampmFormat.empty()) ampmFormat = "%I:%M:%S %p";
  std::string dateFormat = item(D_FMT);
  if (dateFormat.empty()) dateFormat = "%m/%d/%y";
  std::string timeFormat = item(T_FMT);
  if (timeFormat.empty()) timeFormat = "%H:%M:%S";

  d.shortDate = PictureFromStrftime(dateFormat, ampmFormat);
  d.longDate = LongDateFromShortDate(d.shortDate);
  d.timeOfDay = PictureFromStrftime(timeFormat, ampmFormat);
  d.timeSeparator = TimeSeparatorOfPicture(d.timeOfDay);
  constexpr nl_item kMonths[12] = {MON_1, MON_2, MON_3, MON_4,  MON_5,  MON_6,
                                   MON_7, MON_8, MON_9, MON_10, MON_11, MON_12};
  constexpr nl_item kAbbreviatedMonths[12] = {ABMON_1, ABMON_2,  ABMON_3,  ABMON_4,
                                              ABMON_5, ABMON_6,  ABMON_7,  ABMON_8,
                                              ABMON_9, ABMON_10, ABMON_11, ABMON_12};
  constexpr nl_item kDays[7] = {DAY_1, DAY_2, DAY_3, DAY_4, DAY_5, DAY_6, DAY_7};
  constexpr nl_item kAbbreviatedDays[7] = {ABDAY_1, ABDAY_2, ABDAY_3, ABDAY_4,
                                           ABDAY_5, ABDAY_6, ABDAY_7};
  for (std::size_t m = 0; m < 12; ++m) {
    d.monthNames[m] = item(kMonths[m]);
    d.monthAbbreviations[m] = item(kAbbreviatedMonths[m]);
  }
  for (std::size_t w = 0; w < 7; ++w) {
    d.dayNames[w] = item(kDays[w]);
    d.dayAbbreviations[w] = item(kAbbreviatedDays[w]);
  }
  d.amDesignator = item(AM_STR);
  d.pmDesignator = item(PM_STR);
  freelocale(locale);
  return d;
}

std::string ReadUserDecimalSeparator() {
  std::string separator;
  locale_t locale = newlocale(LC_NUMERIC_MASK, "", static_cast<locale_t>(nullptr));
  if (locale != static_cast<locale_t>(nullptr)) {
    const char* radix = nl_langinfo_l(RADIXCHAR, locale);
    if (radix != nullptr) separator = radix;
    freelocale(locale);
  }
  return separator;
}

std::unique_ptr<LocaleFormat> MakeUserLocaleFormat() {
  std::optional<LocaleDescription> described = DescribePlatformLocale("");
  if (!described) described = DescribePlatformLocale("C");
  return std::make_unique<DescribedLocale>(described ? *std::move(described)
                                                     : CLocaleDescription());
}

}  // namespace velquor
