// Regional date and time formats: the format pictures of the user's locale and their
// formatter, behind one replaceable locale so that hosts and tests can supply their own.
//
// Pictures use the Windows national-language picture language, so that stored naming
// patterns keep their meaning on every platform:
//  date:  d dd (day), ddd dddd (abbreviated and full day name), M MM (month), MMM MMMM
//         (abbreviated and full month name), y (last digit of the year), yy (last two
//         digits), yyyy (the whole year; yyy and longer runs behave alike), g gg (era);
//  time:  h hh (12-hour clock), H HH (24-hour clock), m mm, s ss, t (first character of the
//         AM/PM designator), tt (the whole designator);
//  a doubled letter zero-pads to two digits; longer runs behave like the longest form;
//  text between single quotes is copied ('' inside gives one quote); any other character is
//  copied as it stands.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

#include "velquor/settings/clock.h"

namespace velquor {

// The platform's date-format flags: the locale's short or long date format.
inline constexpr unsigned kShortDateFlag = 1;
inline constexpr unsigned kLongDateFlag = 2;

// What the formatter needs to know about a locale. Texts are in the locale's own character
// set (UTF-8 for the UTF-8 locales).
struct LocaleDescription {
  std::string shortDate;                           // date picture, e.g. "M/d/yyyy" or "dd.MM.yyyy"
  std::string longDate;                            // date picture, e.g. "dddd, MMMM d, yyyy"
  std::string timeOfDay;                           // time picture, e.g. "h:mm:ss tt" or "HH:mm:ss"
  std::string timeSeparator;                       // e.g. ":"; may be empty
  std::array<std::string, 12> monthNames;          // January first
  std::array<std::string, 12> monthAbbreviations;  // January first
  std::array<std::string, 7> dayNames;             // Sunday first
  std::array<std::string, 7> dayAbbreviations;     // Sunday first
  std::string amDesignator;                        // may be empty (24-hour locales)
  std::string pmDesignator;
  std::string era;  // e.g. "A.D."; may be empty, then g and gg give nothing
};

// Formats `time` with a date or time picture. False, with `out` empty, if a field of `time`
// is out of range (year 1601..30827, month 1..12, day 1..31, dayOfWeek 0..6, hour 0..23,
// minute and second 0..59).
bool FormatDatePicture(const LocaleDescription& locale, const CalendarTime& time,
                       std::string_view picture, std::string& out);
bool FormatTimePicture(const LocaleDescription& locale, const CalendarTime& time,
                       std::string_view picture, std::string& out);

// The locale interface of the date and time texts.
class LocaleFormat {
 public:
  virtual ~LocaleFormat() = default;
  // The date of `time` formatted with `picture`, or when `picture` is empty with the locale's
  // long date format for kLongDateFlag and its short date format otherwise. False if the
  // locale cannot format it.
  virtual bool FormatDate(const CalendarTime& time, unsigned flags, std::string_view picture,
                          std::string& out) const = 0;
  // The time of `time` formatted with `picture`, or with the locale's time format when
  // `picture` is empty. False if the locale cannot format it.
  virtual bool FormatTime(const CalendarTime& time, std::string_view picture,
                          std::string& out) const = 0;
  // The locale's time separator; may be empty.
  virtual std::string TimeSeparator() const = 0;
};

// A locale given by its description.
class DescribedLocale final : public LocaleFormat {
 public:
  explicit DescribedLocale(LocaleDescription description);
  bool FormatDate(const CalendarTime& time, unsigned flags, std::string_view picture,
                  std::string& out) const override;
  bool FormatTime(const CalendarTime& time, std::string_view picture,
                  std::string& out) const override;
  std::string TimeSeparator() const override;
  const LocaleDescription& Description() const { return description_; }

 private:
  LocaleDescription description_;
};

// The POSIX "C" locale as DescribePlatformLocale (locale_platform.h) describes it: English names,
// short date "MM/dd/yy", long date "dddd, MMMM d, yyyy", time "HH:mm:ss", separator ":",
// designators "AM" and "PM", no era. The fallback when not even "C" can be read.
LocaleDescription CLocaleDescription();

// A strftime format as a picture: %d dd, %e d, %m MM, %y yy, %Y yyyy, %b %h MMM, %B MMMM,
// %a ddd, %A dddd, %H HH, %k H, %I hh, %l h, %M mm, %S ss, %p %P tt, %D %F %T %R as their
// expansions, %r as `ampmFormat`; the "-" flag drops the zero padding of d, m, H and I; the E
// and O modifiers are ignored; conversions without a picture (%Z, %j, ...) are dropped.
// Literal text that holds a letter or a quote is quoted.
std::string PictureFromStrftime(std::string_view format,
                                std::string_view ampmFormat = "%I:%M:%S %p");

// A long date picture for a locale that has only a short one: the full day name, day, full
// month name and year in the order of the short date's first field: "dddd, d MMMM yyyy" when
// it starts with the day, "dddd, yyyy MMMM d" with the year, else "dddd, MMMM d, yyyy".
std::string LongDateFromShortDate(std::string_view shortDate);

// The text between the first hour field of a time picture and the next field, or "".
std::string TimeSeparatorOfPicture(std::string_view picture);

// The user's locale (MakeUserLocaleFormat in locale_platform.h, made once per process): on
// Windows the platform's own date and time formatters, elsewhere the locale as
// DescribePlatformLocale("") gives it, else "C".
const LocaleFormat& UserLocaleFormat();

// The decimal separator of the user's numeric locale (read once per process), "." when the
// locale gives none.
const std::string& UserDecimalSeparator();

// The locale the library formats with: the user's unless replaced.
const LocaleFormat& CurrentLocaleFormat();
// Makes `locale` the library's locale for the whole process and returns the previous one;
// nullptr restores the user's locale. The caller keeps `locale` alive while it is installed.
const LocaleFormat* SetLocaleFormat(const LocaleFormat* locale);

}  // namespace velquor
