#include "velquor/settings/date_time_text.h"

#include <algorithm>
#include <string>

#include "velquor/frame/message.h"
#include "velquor/frame/resources.h"
#include "velquor/settings/locale_format.h"

namespace velquor {

namespace {

// The years a platform time value covers for the clock check (1 January 1970 to
// 31 December 2037 UTC), and the time assumed when the clock is outside them.
constexpr int kFirstValidYear = 1970;
constexpr int kLastValidYear = 2037;
constexpr CalendarTime kAssumedTime{1990, 1, 1, 1, 0, 0, 0};

constexpr char kDefaultTimeSeparator = ':';
constexpr std::uint32_t kMillisecondsPerSecond = 1000;
constexpr std::uint32_t kSecondsPerHour = 3600;

// The local calendar time of `time`, or of now. A given time must be a platform time value.
bool LocalTimeOf(std::optional<TimeValue> time, CalendarTime& local) {
  const Clock& clock = CurrentClock();
  if (!time) return clock.ToLocal(clock.Now(), local);
  if (*time < 0 || *time > kMaxTimeValue) return false;
  return clock.ToLocal(*time, local);
}

int FormatDate(std::string& text, std::optional<TimeValue> time, unsigned flags) {
  CalendarTime local;
  if (!LocalTimeOf(time, local) || !CurrentLocaleFormat().FormatDate(local, flags, {}, text)) {
    text.clear();
    return 0;
  }
  return 1;
}

// The running clock's process-wide state. The separator lives until the process ends.
struct ClockState {
  std::uint32_t startTick = 0;
  std::uint32_t limit = 0;
  std::string separator;
};

ClockState& RunningClock() {
  static ClockState state;
  return state;
}

void AppendTwoDigits(std::uint32_t value, std::string& out) {
  if (value < 10) out.push_back('0');
  out += std::to_string(value);
}

// One date or time picture of a pattern, appended to `text` if its text fits the buffer.
bool AppendPicture(bool isTime, const CalendarTime& local, std::string_view picture,
                   std::string& text) {
  std::string part;
  const LocaleFormat& locale = CurrentLocaleFormat();
  const bool formatted =
      isTime ? locale.FormatTime(local, picture, part) : locale.FormatDate(local, 0, picture, part);
  if (!formatted || part.empty() || part.size() >= kPatternBufferSize) return false;
  text += part;
  return true;
}

}  // namespace

TimeValue GetSafeCurrentTime() {
  const Clock& clock = CurrentClock();
  const TimeValue now = clock.Now();
  const int year = CalendarFromSeconds(now).year;
  if (year >= kFirstValidYear && year <= kLastValidYear) return now;
  ShowMessage(MessageKind::kWarning, LoadStringResource(kClockRangeMessageId));
  return clock.FromLocal(kAssumedTime);
}

int FormatShortDate(std::string& text, std::optional<TimeValue> time) {
  return FormatDate(text, time, kShortDateFlag);
}

int FormatLongDate(std::string& text, std::optional<TimeValue> time) {
  return FormatDate(text, time, kLongDateFlag);
}

int FormatTimeOfDay(std::string& text, std::optional<TimeValue> time) {
  CalendarTime local;
  if (!LocalTimeOf(time, local) || !CurrentLocaleFormat().FormatTime(local, {}, text)) {
    text.clear();
    return 0;
  }
  return 1;
}

int FormatDateTime(std::string& text, std::optional<TimeValue> time) {
  CalendarTime local;
  if (!LocalTimeOf(time, local)) return 0;
  const LocaleFormat& locale = CurrentLocaleFormat();
  std::string date;
  std::string timeOfDay;
  if (!locale.FormatDate(local, kShortDateFlag, {}, date) ||
      !locale.FormatTime(local, {}, timeOfDay)) {
    return 0;
  }
  text += date;
  text += LoadStringResource(kDateTimeJoinStringId);
  text += timeOfDay;
  return 1;
}

void GetTimeSeparator(std::string& text) {
  text = CurrentLocaleFormat().TimeSeparator();
  if (text.empty()) text.assign(1, kDefaultTimeSeparator);
}

int ClockText(std::string* text, std::uint32_t limitSeconds) {
  ClockState& state = RunningClock();
  const Clock& clock = CurrentClock();
  if (limitSeconds != kClockReadOnly) {
    GetTimeSeparator(state.separator);
    state.startTick = clock.TickCount();
    state.limit = limitSeconds;
  }
  // Unsigned subtraction keeps the difference right across the tick counter's wrap.
  const std::uint32_t elapsed =
      static_cast<std::uint32_t>(clock.TickCount() - state.startTick) / kMillisecondsPerSecond;
  std::uint32_t shown = elapsed;
  int result = 1;
  if (state.limit != 0) {
    if (elapsed > state.limit) {
      shown = 0;
      result = 0;
    } else {
      shown = state.limit - elapsed;
    }
  }
  if (text == nullptr) return result;

  text->clear();
  if (shown < kSecondsPerHour) {
    *text += std::to_string(shown / 60);
  } else {
    *text += std::to_string(shown / kSecondsPerHour);
    *text += state.separator;
    AppendTwoDigits(shown % kSecondsPerHour / 60, *text);
  }
  *text += state.separator;
  AppendTwoDigits(shown % 60, *text);
  return result;
}

int FormatPattern(std::string& text, std::string_view pattern, std::uint32_t number,
                  std::optional<TimeValue> time) {
  constexpr std::string_view kTimePictureLetters = "hHmst";
  constexpr std::string_view kTimePictureRun = "hHmst ";
  text.clear();
  CalendarTime local;
  const bool haveTime = LocalTimeOf(time, local);  // one instant for every picture

  std::size_t i = 0;
  while (i < pattern.size()) {
    if (pattern[i] == 'n') {
      const std::size_t end = std::min(pattern.find_first_not_of('n', i), pattern.size());
      const std::string digits = std::to_string(number);
      if (digits.size() < end - i) text.append(end - i - digits.size(), '0');
      text += digits;
      i = end;
      continue;
    }
    if (pattern[i] == '\'') {
      if (pattern.substr(i, 4) == "''''") {
        text.push_back('\'');
        i += 4;
      } else if (pattern.substr(i, 2) == "''") {
        i += 2;
      } else {
        const std::size_t close = pattern.find('\'', i + 1);
        if (close == std::string_view::npos) return 0;
        text += pattern.substr(i + 1, close - i - 1);
        i = close + 1;
      }
      continue;
    }
    const std::size_t end = std::min(pattern.find_first_of("n'", i), pattern.size());
    std::string_view chunk = pattern.substr(i, end - i);
    while (!chunk.empty()) {
      std::size_t length = std::min(chunk.find_first_of(kTimePictureLetters), chunk.size());
      const bool isTime = length == 0;
      if (isTime) length = std::min(chunk.find_first_not_of(kTimePictureRun), chunk.size());
      if (!haveTime || !AppendPicture(isTime, local, chunk.substr(0, length), text)) return 0;
      chunk.remove_prefix(length);
    }
    i = end;
  }
  return 1;
}

}  // namespace velquor
