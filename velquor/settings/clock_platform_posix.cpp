#include "velquor/settings/clock_platform.h"

#include <chrono>
#include <ctime>

namespace velquor {

TimeValue PlatformNow() {
  return std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now())
      .time_since_epoch()
      .count();
}

std::uint32_t PlatformTickCount() {
  const auto ms = std::chrono::duration_cast<std::chrono::milliseconds>(
      std::chrono::steady_clock::now().time_since_epoch());
  return static_cast<std::uint32_t>(ms.count());
}

bool PlatformToLocal(TimeValue time, CalendarTime& local) {
  const std::time_t value = static_cast<std::time_t>(time);
  if (static_cast<TimeValue>(value) != time) return false;
  std::tm parts{};
  if (localtime_r(&value, &parts) == nullptr) return false;
  local.year = parts.tm_year + 1900;
  local.month = parts.tm_mon + 1;
  local.dayOfWeek = parts.tm_wday;
  local.day = parts.tm_mday;
  local.hour = parts.tm_hour;
  local.minute = parts.tm_min;
  local.second = parts.tm_sec;
  return true;
}

TimeValue PlatformFromLocal(const CalendarTime& local) {
  std::tm parts{};
  parts.tm_year = local.year - 1900;
  parts.tm_mon = local.month - 1;
  parts.tm_mday = local.day;
  parts.tm_hour = local.hour;
  parts.tm_min = local.minute;
  parts.tm_sec = local.second;
  parts.tm_isdst = -1;  // let the time zone decide, as for any wall-clock time
  return static_cast<TimeValue>(std::mktime(&parts));
}

}  // namespace velquor
