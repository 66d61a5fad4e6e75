// The C interface of settings, units and formatting: the per-user settings store, the names
// of quantity units and the date and time texts.
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "velquor/c_api/c_api_support.h"
#include "velquor/settings/clock.h"
#include "velquor/settings/date_time_text.h"
#include "velquor/settings/file_settings_backend.h"
#include "velquor/settings/registry_store.h"
#include "velquor/settings/units.h"

using namespace velquor;
using namespace velquor::capi;

static_assert(VQ_CLOCK_READ == kClockReadOnly);

namespace {

std::optional<TimeValue> TimeArgument(std::int64_t time) {
  if (time == VQ_TIME_NOW) return std::nullopt;
  return time;
}

// A unit name, or VQ_ERR_NOT_FOUND for a unit without one.
int CopyUnitName(const std::string& name, char* buffer, size_t size) {
  if (name.empty()) {
    CopyText("", buffer, size);
    return VQ_ERR_NOT_FOUND;
  }
  return CopyText(name, buffer, size);
}

}  // namespace

extern "C" {

int vq_settings_get_int(const char* section, const char* name, int32_t default_value,
                        int32_t* value) noexcept {
  if (section == nullptr || name == nullptr || value == nullptr) return VQ_ERR_NULL;
  return Guard([&] {
    *value = GetRegistryInt(section, name, default_value);
    return VQ_OK;
  });
}

int vq_settings_set_int(const char* section, const char* name, int32_t value) noexcept {
  if (section == nullptr || name == nullptr) return VQ_ERR_NULL;
  return Guard([&] { return SetRegistryInt(section, name, value) ? VQ_OK : VQ_ERR_FAILED; });
}

int vq_settings_get_string(const char* section, const char* name, const char* default_value,
                           char* buffer, size_t size) noexcept {
  if (section == nullptr || name == nullptr || default_value == nullptr ||
      !IsValidBuffer(buffer, size)) {
    return VQ_ERR_NULL;
  }
  return Guard([&] {
    return CopyText(GetRegistryString(section, name, default_value), buffer, size);
  });
}

int vq_settings_set_string(const char* section, const char* name, const char* value) noexcept {
  if (section == nullptr || name == nullptr || value == nullptr) return VQ_ERR_NULL;
  return Guard([&] { return SetRegistryString(section, name, value) ? VQ_OK : VQ_ERR_FAILED; });
}

int vq_settings_use_folder(const char* root, int flush_to_disk) noexcept {
  return Guard([&] {
    std::shared_ptr<SettingsBackend> backend;
    if (root != nullptr) backend = std::make_shared<FileSettingsBackend>(root, flush_to_disk != 0);
    SetSettingsBackend(std::move(backend));
    return VQ_OK;
  });
}

int vq_weight_unit_name(uint32_t unit, char* buffer, size_t size) noexcept {
  if (!IsValidBuffer(buffer, size)) return VQ_ERR_NULL;
  return Guard([&] { return CopyUnitName(LoadWeightUnitString(unit), buffer, size); });
}

int vq_volume_unit_name(uint32_t unit, char* buffer, size_t size) noexcept {
  if (!IsValidBuffer(buffer, size)) return VQ_ERR_NULL;
  return Guard([&] { return CopyUnitName(LoadVolumeUnitString(unit), buffer, size); });
}

int vq_is_shot_unit(uint32_t unit) noexcept { return IsShotUnit(unit) ? 1 : 0; }

int vq_format_date(int form, int64_t time, char* buffer, size_t size) noexcept {
  if (!IsValidBuffer(buffer, size)) return VQ_ERR_NULL;
  if (form < VQ_DATE_SHORT || form > VQ_DATE_TIME) return VQ_ERR_RANGE;
  return Guard([&] {
    std::string text;
    const std::optional<TimeValue> when = TimeArgument(time);
    int formatted = 0;
    switch (form) {
      case VQ_DATE_SHORT:
        formatted = FormatShortDate(text, when);
        break;
      case VQ_DATE_LONG:
        formatted = FormatLongDate(text, when);
        break;
      case VQ_TIME_OF_DAY:
        formatted = FormatTimeOfDay(text, when);
        break;
      default:
        formatted = FormatDateTime(text, when);
        break;
    }
    if (formatted == 0) {
      CopyText("", buffer, size);
      return VQ_ERR_FAILED;
    }
    return CopyText(text, buffer, size);
  });
}

int vq_format_pattern(const char* pattern, uint32_t number, int64_t time, char* buffer,
                      size_t size) noexcept {
  if (pattern == nullptr || !IsValidBuffer(buffer, size)) return VQ_ERR_NULL;
  return Guard([&] {
    std::string text;
    const int formatted = FormatPattern(text, pattern, number, TimeArgument(time));
    const int length = CopyText(text, buffer, size);
    return formatted != 0 ? length : VQ_ERR_FAILED;
  });
}

int vq_safe_current_time(int64_t* time) noexcept {
  if (time == nullptr) return VQ_ERR_NULL;
  return Guard([&] {
    *time = GetSafeCurrentTime();
    return VQ_OK;
  });
}

int vq_time_separator(char* buffer, size_t size) noexcept {
  if (!IsValidBuffer(buffer, size)) return VQ_ERR_NULL;
  return Guard([&] {
    std::string text;
    GetTimeSeparator(text);
    return CopyText(text, buffer, size);
  });
}

int vq_clock_text(uint32_t limit_seconds, int* running, char* buffer, size_t size) noexcept {
  if (!IsValidBuffer(buffer, size)) return VQ_ERR_NULL;
  return Guard([&] {
    std::string text;
    const int stillRunning = ClockText(&text, limit_seconds);
    if (running != nullptr) *running = stillRunning != 0 ? 1 : 0;
    return CopyText(text, buffer, size);
  });
}

}  // extern "C"
