// The C interface of the instrument communication log. The log's file error (an oversized
// file was deleted) reaches C as VQ_ERR_LOG_FILE through the exception barrier.
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "velquor/c_api/c_api_support.h"
#include "velquor/instrument/comm_log.h"

using namespace velquor;
using namespace velquor::capi;

namespace {

bool IsValidChannel(int channel) {
  return channel == VQ_LOG_GENERAL || channel == VQ_LOG_COLOR_SENSOR;
}

}  // namespace

extern "C" {

int vq_log_level(int channel, int32_t* level) noexcept {
  if (level == nullptr) return VQ_ERR_NULL;
  if (!IsValidChannel(channel)) return VQ_ERR_RANGE;
  return Guard([&] {
    *level = channel == VQ_LOG_GENERAL ? GetGeneralLogLevel() : GetColorSensorLogLevel();
    return VQ_OK;
  });
}

int vq_log_is_on(int channel) noexcept {
  if (!IsValidChannel(channel)) return VQ_ERR_RANGE;
  return Guard([&] {
    const bool on = channel == VQ_LOG_GENERAL ? IsGeneralLogOn() : IsColorSensorLogOn();
    return on ? 1 : 0;
  });
}

int vq_log_reset_levels(void) noexcept {
  return Guard([] {
    ResetLogLevelCache();
    return VQ_OK;
  });
}

int vq_log(int channel, const char* text) noexcept {
  if (text == nullptr) return VQ_ERR_NULL;
  if (!IsValidChannel(channel)) return VQ_ERR_RANGE;
  return Guard([&] {
    if (channel == VQ_LOG_GENERAL) {
      LogGeneral(text);
    } else {
      LogColorSensor(text);
    }
    return VQ_OK;
  });
}

int vq_log_write(int32_t level, const char* text, size_t length) noexcept {
  if (text == nullptr && length > 0) return VQ_ERR_NULL;
  return Guard([&] {
    WriteDiagLog(level, std::string_view(text == nullptr ? "" : text, length));
    return VQ_OK;
  });
}

int vq_log_send(const char* command, int error) noexcept {
  if (command == nullptr) return VQ_ERR_NULL;
  return Guard([&] {
    LogSendToComm(command, error);
    return VQ_OK;
  });
}

int vq_log_receive(const char* buffer, size_t length, int32_t allowed_ms, uint32_t start_tick,
                   int return_error, const char* separator) noexcept {
  if ((buffer == nullptr && length > 0) || separator == nullptr) return VQ_ERR_NULL;
  return Guard([&] {
    LogReceive(std::string_view(buffer == nullptr ? "" : buffer, length), allowed_ms, start_tick,
               return_error, separator);
    return VQ_OK;
  });
}

int vq_log_make_printable(char* text, size_t length) noexcept {
  if (text == nullptr && length > 0) return VQ_ERR_NULL;
  return Guard([&] {
    std::string printable(text == nullptr ? "" : text, length);
    MakePrintable(printable);  // maps each byte to one byte
    printable.copy(text, length);
    return VQ_OK;
  });
}

int vq_log_cycle_color_sensor(const char* folder, const char* const* messages,
                              size_t count) noexcept {
  if (folder == nullptr || (messages == nullptr && count > 0)) return VQ_ERR_NULL;
  for (size_t i = 0; i < count; ++i) {
    if (messages[i] == nullptr) return VQ_ERR_NULL;
  }
  return Guard([&] {
    const std::vector<std::string> texts(messages, messages + count);
    CycleColorSensorLog(folder, texts);
    return VQ_OK;
  });
}

uint32_t vq_tick_count(void) noexcept {
  try {
    return TickCount();
  } catch (...) {
    return 0;  // a host tick source that throws reads as tick 0
  }
}

}  // extern "C"
