#include "velquor/settings/locale_format.h"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <memory>
#include <utility>

#include "velquor/settings/locale_platform.h"

namespace velquor {

namespace {

// The range of calendar times the platform's date and time formatters accept.
constexpr int kFirstYear = 1601;
constexpr int kLastYear = 30827;

bool IsValid(const CalendarTime& t) {
  return t.year >= kFirstYear && t.year <= kLastYear && t.month >= 1 && t.month <= 12 &&
         t.day >= 1 && t.day <= 31 && t.dayOfWeek >= 0 && t.dayOfWeek <= 6 && t.hour >= 0 &&
         t.hour <= 23 && t.minute >= 0 && t.minute <= 59 && t.second >= 0 && t.second <= 59;
}

std::size_t RunLength(std::string_view text, std::size_t at) {
  std::size_t end = at;
  while (end < text.size() && text[end] == text[at]) ++end;
  return end - at;
}

// Copies a quoted literal starting at the quote `at`; '' inside gives one quote. A literal
// without its closing quote runs to the end. Returns the index after the literal.
std::size_t CopyQuoted(std::string_view picture, std::size_t at, std::string& out) {
  std::size_t i = at + 1;
  while (i < picture.size()) {
    if (picture[i] == '\'') {
      if (i + 1 < picture.size() && picture[i + 1] == '\'') {
        out.push_back('\'');
        i += 2;
        continue;
      }
      return i + 1;
    }
    out.push_back(picture[i++]);
  }
  return i;
}

void AppendNumber(int value, bool twoDigits, std::string& out) {
  if (twoDigits && value < 10) out.push_back('0');
  out += std::to_string(value);
}

// Number of bytes of the UTF-8 character that starts with `lead` (1 for anything else).
std::size_t Utf8Length(unsigned char lead) {
  if (lead >= 0xF0 && lead < 0xF8) return 4;
  if (lead >= 0xE0) return lead < 0xF0 ? 3 : 1;
  if (lead >= 0xC0) return 2;
  return 1;
}

// Walks a date or time picture: quoted text is copied without its quotes, every run of one
// letter goes to `field` (which returns false for a letter that is no field: the run is then
// copied as it stands).
template <typename Field>
void ExpandPicture(std::string_view picture, std::string& out, Field field) {
  std::size_t i = 0;
  while (i < picture.size()) {
    const char c = picture[i];
    if (c == '\'') {
      i = CopyQuoted(picture, i, out);
      continue;
    }
    const std::size_t run = RunLength(picture, i);
    if (!field(c, run)) out.append(run, c);
    i += run;
  }
}

}  // namespace

bool FormatDatePicture(const LocaleDescription& locale, const CalendarTime& time,
                       std::string_view picture, std::string& out) {
  out.clear();
  if (!IsValid(time)) return false;
  ExpandPicture(picture, out, [&](char c, std::size_t run) {
    switch (c) {
      case 'd':
        if (run <= 2) {
          AppendNumber(time.day, run == 2, out);
        } else {
          const auto& names = run == 3 ? locale.dayAbbreviations : locale.dayNames;
          out += names[static_cast<std::size_t>(time.dayOfWeek)];
        }
        return true;
      case 'M':
        if (run <= 2) {
          AppendNumber(time.month, run == 2, out);
        } else {
          const auto& names = run == 3 ? locale.monthAbbreviations : locale.monthNames;
          out += names[static_cast<std::size_t>(time.month - 1)];
        }
        return true;
      case 'y':
        if (run == 1) {
          AppendNumber(time.year % 10, false, out);
        } else if (run == 2) {
          AppendNumber(time.year % 100, true, out);
        } else {
          AppendNumber(time.year, false, out);
        }
        return true;
      case 'g':
        out += locale.era;
        return true;
      default:
        return false;
    }
  });
  return true;
}

bool FormatTimePicture(const LocaleDescription& locale, const CalendarTime& time,
                       std::string_view picture, std::string& out) {
  out.clear();
  if (!IsValid(time)) return false;
  ExpandPicture(picture, out, [&](char c, std::size_t run) {
    switch (c) {
      case 'h':
        AppendNumber(time.hour % 12 == 0 ? 12 : time.hour % 12, run >= 2, out);
        return true;
      case 'H':
        AppendNumber(time.hour, run >= 2, out);
        return true;
      case 'm':
        AppendNumber(time.minute, run >= 2, out);
        return true;
      case 's':
        AppendNumber(time.second, run >= 2, out);
        return true;
      case 't': {
        const std::string& designator = time.hour < 12 ? locale.amDesignator : locale.pmDesignator;
        if (run >= 2 || designator.empty()) {
          out += designator;
        } else {
          out += designator.substr(0, Utf8Length(static_cast<unsigned char>(designator[0])));
        }
        return true;
      }
      default:
        return false;
    }
  });
  return true;
}

DescribedLocale::DescribedLocale(LocaleDescription description)
    : description_(std::move(description)) {}

bool DescribedLocale::FormatDate(const CalendarTime& time, unsigned flags, std::string_view picture,
                                 std::string& out) const {
  if (picture.empty()) {
    picture = flags == kLongDateFlag ? description_.longDate : description_.shortDate;
  }
  return FormatDatePicture(description_, time, picture, out);
}

bool DescribedLocale::FormatTime(const CalendarTime& time, std::string_view picture,
                                 std::string& out) const {
  if (picture.empty()) picture = description_.timeOfDay;
  return FormatTimePicture(description_, time, picture, out);
}

std::string DescribedLocale::TimeSeparator() const {
  return description_.timeSeparator;
}

LocaleDescription CLocaleDescription() {
  // Built rather than assigned field by field: GCC 12 warns falsely (-Wrestrict) on
  // assigning short literals to strings.
  return LocaleDescription{
      .shortDate = "MM/dd/yy",
      .longDate = "dddd, MMMM d, yyyy",
      .timeOfDay = "HH:mm:ss",
      .timeSeparator = ":",
      .monthNames = {"January", "February", "March", "April", "May", "June", "July", "August",
                     "September", "October", "November", "December"},
      .monthAbbreviations = {"Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug", "Sep", "Oct",
                             "Nov", "Dec"},
      .dayNames = {"Sunday", "Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday"},
      .dayAbbreviations = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"},
      .amDesignator = "AM",
      .pmDesignator = "PM",
      .era = "",
  };
}

namespace {

void AppendLiteral(std::string_view literal, std::string& picture) {
  bool needsQuotes = false;
  for (const char c : literal) {
    if ((c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '\'') needsQuotes = true;
  }
  if (!needsQuotes) {
    picture += literal;
    return;
  }
  picture.push_back('\'');
  for (const char c : literal) {
    if (c == '\'') picture.push_back('\'');
    picture.push_back(c);
  }
  picture.push_back('\'');
}

// strftime conversions with a picture field: the field, and the field under the "-" flag.
struct StrftimeField {
  char conversion;
  const char* field;
  const char* unpadded;
};
constexpr StrftimeField kStrftimeFields[] = {
    {'d', "dd", "d"},      {'e', "d", "d"},       {'m', "MM", "M"},    {'y', "yy", "yy"},
    {'Y', "yyyy", "yyyy"}, {'b', "MMM", "MMM"},   {'h', "MMM", "MMM"}, {'B', "MMMM", "MMMM"},
    {'a', "ddd", "ddd"},   {'A', "dddd", "dddd"}, {'H', "HH", "H"},    {'k', "H", "H"},
    {'I', "hh", "h"},      {'l', "h", "h"},       {'M', "mm", "mm"},   {'S', "ss", "ss"},
    {'p', "tt", "tt"},     {'P', "tt", "tt"},
};
// strftime conversions that stand for other formats (%r: the locale's 12-hour time).
struct StrftimeExpansion {
  char conversion;
  const char* format;
};
constexpr StrftimeExpansion kStrftimeExpansions[] = {
    {'D', "%m/%d/%y"}, {'F', "%Y-%m-%d"}, {'T', "%H:%M:%S"},
    {'R', "%H:%M"},    {'n', "\n"},       {'t', "\t"},
};

void ConvertStrftime(std::string_view format, std::string_view ampmFormat, bool expandAmPm,
                     std::string& picture) {
  constexpr std::string_view kFlagsAndModifiers = "-_0^#EO123456789";
  std::string literal;
  std::size_t i = 0;
  while (i < format.size()) {
    if (format[i] != '%' || (i + 1 < format.size() && format[i + 1] == '%')) {
      literal.push_back(format[i]);
      i += format[i] == '%' ? 2 : 1;
      continue;
    }
    const std::size_t flagsEnd =
        std::min(format.find_first_not_of(kFlagsAndModifiers, i + 1), format.size());
    if (flagsEnd == format.size()) break;
    const bool unpadded = format.substr(i + 1, flagsEnd - i - 1).find('-') != std::string::npos;
    const char conversion = format[flagsEnd];
    i = flagsEnd + 1;
    for (const StrftimeField& f : kStrftimeFields) {
      if (f.conversion != conversion) continue;
      AppendLiteral(literal, picture);
      literal.clear();
      picture += unpadded ? f.unpadded : f.field;
    }
    std::string_view expansion;
    if (conversion == 'r') expansion = expandAmPm ? ampmFormat : "%I:%M:%S %p";
    for (const StrftimeExpansion& e : kStrftimeExpansions) {
      if (e.conversion == conversion) expansion = e.format;
    }
    if (expansion.empty()) continue;  // no picture for it (%Z, %z, %j, %U, ...)
    AppendLiteral(literal, picture);
    literal.clear();
    ConvertStrftime(expansion, ampmFormat, false, picture);
  }
  AppendLiteral(literal, picture);
}

// Order of day, month and year in a date picture: 'D', 'M', 'Y' in order of appearance
// ("MDY" when the picture names fewer than two). Day names (ddd, dddd) are not the day.
std::string DateFieldOrder(std::string_view picture) {
  std::string order;
  std::size_t i = 0;
  while (i < picture.size()) {
    if (picture[i] == '\'') {
      std::string ignored;
      i = CopyQuoted(picture, i, ignored);
      continue;
    }
    const std::size_t run = RunLength(picture, i);
    char field = 0;
    if (picture[i] == 'd' && run <= 2) field = 'D';
    if (picture[i] == 'M') field = 'M';
    if (picture[i] == 'y') field = 'Y';
    if (field != 0 && order.find(field) == std::string::npos) order.push_back(field);
    i += run;
  }
  return order.size() >= 2 ? order : std::string("MDY");
}

std::atomic<const LocaleFormat*>& InstalledLocale() {
  static std::atomic<const LocaleFormat*> locale{nullptr};
  return locale;
}

}  // namespace

std::string PictureFromStrftime(std::string_view format, std::string_view ampmFormat) {
  std::string picture;
  ConvertStrftime(format, ampmFormat, true, picture);
  return picture;
}

std::string LongDateFromShortDate(std::string_view shortDate) {
  const std::string order = DateFieldOrder(shortDate);
  if (order[0] == 'D') return "dddd, d MMMM yyyy";
  if (order[0] == 'Y') return "dddd, yyyy MMMM d";
  return "dddd, MMMM d, yyyy";
}

std::string TimeSeparatorOfPicture(std::string_view picture) {
  constexpr std::string_view kTimeFields = "hHmst";
  std::size_t i = 0;
  bool afterHour = false;
  std::string separator;
  while (i < picture.size()) {
    const char c = picture[i];
    if (c == '\'') {
      std::string quoted;
      i = CopyQuoted(picture, i, quoted);
      if (afterHour) separator += quoted;
      continue;
    }
    if (kTimeFields.find(c) != std::string_view::npos) {
      if (afterHour) return separator;
      afterHour = c == 'h' || c == 'H';
      i += RunLength(picture, i);
      continue;
    }
    if (afterHour) separator.push_back(c);
    ++i;
  }
  return std::string();  // no field after the hour
}

const LocaleFormat& UserLocaleFormat() {
  static const std::unique_ptr<LocaleFormat> user = MakeUserLocaleFormat();
  return *user;
}

const std::string& UserDecimalSeparator() {
  static const std::string separator = [] {
    std::string read = ReadUserDecimalSeparator();
    return read.empty() ? std::string(".") : read;
  }();
  return separator;
}

const LocaleFormat& CurrentLocaleFormat() {
  const LocaleFormat* locale = InstalledLocale().load();
  return locale != nullptr ? *locale : UserLocaleFormat();
}

const LocaleFormat* SetLocaleFormat(const LocaleFormat* locale) {
  const LocaleFormat* previous = InstalledLocale().exchange(locale);
  return previous != nullptr ? previous : &UserLocaleFormat();
}

}  // namespace velquor
