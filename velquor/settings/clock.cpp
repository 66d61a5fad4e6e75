#include "velquor/settings/clock.h"

#include <atomic>

#include "velquor/settings/clock_platform.h"

namespace velquor {

namespace {

constexpr std::int64_t kSecondsPerDay = 86400;

// Days since 1970-01-01 of a proleptic Gregorian date, and back (the civil-calendar
// algorithms of H. Hinnant, "chrono-Compatible Low-Level Date Algorithms": 400-year eras of
// 146097 days, years starting on 1 March so that the leap day comes last).
std::int64_t DaysFromCivil(std::int64_t year, int month, int day) {
  year -= month <= 2 ? 1 : 0;
  const std::int64_t era = (year >= 0 ? year : year - 399) / 400;
  const std::int64_t yearOfEra = year - era * 400;
  const std::int64_t dayOfYear = (153 * (month + (month > 2 ? -3 : 9)) + 2) / 5 + day - 1;
  const std::int64_t dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
  return era * 146097 + dayOfEra - 719468;
}

CalendarTime CivilFromDays(std::int64_t days) {
  CalendarTime out;
  // 1970-01-01 was a Thursday (4).
  const std::int64_t weekday = (days % 7 + 7 + 4) % 7;
  days += 719468;
  const std::int64_t era = (days >= 0 ? days : days - 146096) / 146097;
  const std::int64_t dayOfEra = days - era * 146097;
  const std::int64_t yearOfEra =
      (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
  const std::int64_t dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
  const std::int64_t shiftedMonth = (5 * dayOfYear + 2) / 153;
  out.day = static_cast<int>(dayOfYear - (153 * shiftedMonth + 2) / 5 + 1);
  out.month = static_cast<int>(shiftedMonth < 10 ? shiftedMonth + 3 : shiftedMonth - 9);
  out.year = static_cast<int>(yearOfEra + era * 400 + (out.month <= 2 ? 1 : 0));
  out.dayOfWeek = static_cast<int>(weekday);
  return out;
}

class OperatingSystemClock final : public Clock {
 public:
  TimeValue Now() const override { return PlatformNow(); }
  std::uint32_t TickCount() const override { return PlatformTickCount(); }
  bool ToLocal(TimeValue time, CalendarTime& local) const override {
    return PlatformToLocal(time, local);
  }
  TimeValue FromLocal(const CalendarTime& local) const override {
    return PlatformFromLocal(local);
  }
};

std::atomic<const Clock*>& InstalledClock() {
  static std::atomic<const Clock*> clock{nullptr};
  return clock;
}

}  // namespace

CalendarTime CalendarFromSeconds(std::int64_t seconds) {
  std::int64_t days = seconds / kSecondsPerDay;
  std::int64_t rest = seconds % kSecondsPerDay;
  if (rest < 0) {
    rest += kSecondsPerDay;
    --days;
  }
  CalendarTime out = CivilFromDays(days);
  out.hour = static_cast<int>(rest / 3600);
  out.minute = static_cast<int>(rest / 60 % 60);
  out.second = static_cast<int>(rest % 60);
  return out;
}

std::int64_t SecondsFromCalendar(const CalendarTime& time) {
  return DaysFromCivil(time.year, time.month, time.day) * kSecondsPerDay + time.hour * 3600 +
         time.minute * 60 + time.second;
}

const Clock& SystemClock() {
  static const OperatingSystemClock clock;
  return clock;
}

const Clock& CurrentClock() {
  const Clock* clock = InstalledClock().load();
  return clock != nullptr ? *clock : SystemClock();
}

const Clock* SetClock(const Clock* clock) {
  const Clock* previous = InstalledClock().exchange(clock);
  return previous != nullptr ? previous : &SystemClock();
}

}  // namespace velquor
