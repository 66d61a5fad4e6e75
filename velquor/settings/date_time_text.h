// Date and time texts: the current time checked against the range of the platform's time
// values, dates and times in the user's regional format, a running or counting-down clock,
// and names built from a pattern of date and time pictures and a running number.
//
// Times are TimeValue seconds (see clock.h); a time passed in must lie in 0..kMaxTimeValue
// (the signed 32-bit time value), else the formatter fails. Each formatter converts the time
// to the user's local calendar time through CurrentClock(); without a time it formats the
// current local time. The texts follow CurrentLocaleFormat() (see locale_format.h). None of
// these functions throws.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "velquor/settings/clock.h"

namespace velquor {

// String-table entries of the date and time texts.
inline constexpr std::uint32_t kDateTimeJoinStringId = 305;  // " -- "
inline constexpr std::uint32_t kClockRangeMessageId = 306;   // clock outside 1970..2037
// ClockText's limit that reads the clock without restarting it (-1 as a signed 32-bit value).
inline constexpr std::uint32_t kClockReadOnly = 4294967295u;
// FormatPattern formats each picture into a buffer of this many characters with its
// terminating zero: a picture's text must be 1 to 39 bytes long.
inline constexpr std::size_t kPatternBufferSize = 40;

// The current time. If the system clock's UTC year lies outside 1970..2037 (inclusive),
// shows string 306 as a warning through ShowMessage, at every such call, and returns
// 1 January 1990, 00:00:00 local time instead.
TimeValue GetSafeCurrentTime();

// The date in the user's short or long date format (the date-format flags 1 and 2), or the
// time in the user's time format, into `text`. Return 1, or 0 with `text` empty when the time
// cannot be converted or formatted.
int FormatShortDate(std::string& text, std::optional<TimeValue> time = std::nullopt);
int FormatLongDate(std::string& text, std::optional<TimeValue> time = std::nullopt);
int FormatTimeOfDay(std::string& text, std::optional<TimeValue> time = std::nullopt);

// Appends to `text` the short date, string 305 (" -- ") and the time, all of one instant.
// Returns 1, or 0 with `text` unchanged when either part cannot be formatted.
int FormatDateTime(std::string& text, std::optional<TimeValue> time = std::nullopt);

// The user's time separator into `text`; ":" when the locale gives none.
void GetTimeSeparator(std::string& text);

// A running clock with process-wide state (start tick, limit, separator).
// A limit other than kClockReadOnly (re)starts it: it reads the time separator and stores
// the tick count and the limit. kClockReadOnly only reads it. With elapsed whole seconds s
// (tick difference modulo 2^32, divided by 1000): a limit of 0 counts up and shows s; any
// other limit counts down and shows limit - s, or 0 with the result 0 once s > limit.
// The text (if `text` is given) is minutes, separator and two-digit seconds below 3600 s,
// else hours, separator, two-digit minutes, separator and two-digit seconds.
// Returns 1 while the clock runs, 0 once a countdown has expired. A clock read before it was
// ever started counts up from tick 0 with an empty separator.
int ClockText(std::string* text, std::uint32_t limitSeconds);

// Fills `text` with `pattern`, read from left to right:
//  - a run of "n" is `number` in decimal, zero-padded to the run's length (never truncated):
//    "nnn" with 7 gives "007", "nn" with 123 gives "123";
//  - a quote starts a literal: "''''" gives one quote, "''" gives nothing (these two are
//    matched first, so three quotes are "''" followed by a quote that opens a literal);
//    otherwise the text up to the next quote is copied and both quotes are dropped;
//  - any other stretch up to the next "n" or quote is split into pictures: a leading run of
//    characters other than "hHmst" is a date picture, else the leading run of "hHmst " is a
//    time picture ("yyyy-MM-dd HH:mm" is "yyyy-MM-dd ", "HH", ":", "mm"); each is formatted
//    by the locale and appended.
// Returns 1; 0 if a picture's text is empty or longer than 39 bytes, if the time cannot be
// converted or formatted, or if a literal lacks its closing quote. On failure `text` keeps
// what was built before the fault.
int FormatPattern(std::string& text, std::string_view pattern, std::uint32_t number,
                  std::optional<TimeValue> time = std::nullopt);

}  // namespace velquor
