// The C interface of the library frame: version, result texts, strings and translations,
// the message sink and the hue option.
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

#include "velquor/c_api/c_api_support.h"
#include "velquor/frame/batch_threads.h"
#include "velquor/frame/constants.h"
#include "velquor/frame/message.h"
#include "velquor/frame/numeric.h"
#include "velquor/frame/options.h"
#include "velquor/frame/resources.h"
#include "velquor/frame/version.h"
#include "velquor/version.h"

using namespace velquor;
using velquor::capi::CopyText;
using velquor::capi::Guard;
using velquor::capi::IsValidBuffer;

static_assert(VQ_MISSING == kMissing);
static_assert(VQ_MAX_BATCH_THREADS == kMaxBatchThreads);
static_assert(VQ_MESSAGE_INFORMATION == static_cast<int>(MessageKind::kInformation));
static_assert(VQ_MESSAGE_WARNING == static_cast<int>(MessageKind::kWarning));
static_assert(VQ_MESSAGE_ERROR == static_cast<int>(MessageKind::kError));

extern "C" {

const char* vq_version(void) noexcept { return GetVersionString(); }

int vq_version_number(void) noexcept { return VQ_VERSION_NUMBER; }

const char* vq_result_text(int code) noexcept {
  switch (code) {
    case VQ_OK:
      return "ok";
    case VQ_FALLBACK:
      return "illuminant without a weighting table, D65 used";
    case VQ_ERR_NULL:
      return "null pointer";
    case VQ_ERR_RANGE:
      return "argument out of range";
    case VQ_ERR_UNSUPPORTED:
      return "not supported";
    case VQ_ERR_NOT_FOUND:
      return "not found";
    case VQ_ERR_FAILED:
      return "operation failed";
    case VQ_ERR_LOG_FILE:
      return "log file deleted, text not logged";
    case VQ_ERR_NO_MEMORY:
      return "out of memory";
    case VQ_ERR_INTERNAL:
      return "internal error";
    default:
      return "unknown result code";
  }
}

int vq_is_missing(double value) noexcept { return IsMissing(value) ? 1 : 0; }

int vq_string(uint32_t id, char* buffer, size_t size) noexcept {
  if (!IsValidBuffer(buffer, size)) return VQ_ERR_NULL;
  return Guard([&] {
    std::string text;
    if (LoadStringResource(id, text) == 0) {
      CopyText("", buffer, size);
      return VQ_ERR_NOT_FOUND;
    }
    return CopyText(text, buffer, size);
  });
}

int vq_load_translation(const char* path, char* error, size_t error_size) noexcept {
  if (path == nullptr || !IsValidBuffer(error, error_size)) return VQ_ERR_NULL;
  return Guard([&] {
    std::string reason;
    const int loaded = LoadTranslatedStrings(path, &reason);
    CopyText(reason, error, error_size);
    return loaded != 0 ? VQ_OK : VQ_ERR_FAILED;
  });
}

int vq_load_translation_text(const char* text, size_t length, char* error,
                             size_t error_size) noexcept {
  if ((text == nullptr && length > 0) || !IsValidBuffer(error, error_size)) return VQ_ERR_NULL;
  return Guard([&] {
    std::string reason;
    const int loaded =
        LoadTranslatedStringsFromText(std::string_view(text == nullptr ? "" : text, length), &reason);
    CopyText(reason, error, error_size);
    return loaded != 0 ? VQ_OK : VQ_ERR_FAILED;
  });
}

int vq_clear_translation(void) noexcept {
  return Guard([] {
    ClearTranslatedStrings();
    return VQ_OK;
  });
}

int vq_set_message_sink(vq_message_sink sink, void* context) noexcept {
  return Guard([&] {
    MessageSink adapter;
    if (sink != nullptr) {
      adapter = [sink, context](MessageKind kind, std::string_view text) {
        const std::string terminated(text);  // the C side receives a zero-terminated copy
        sink(context, static_cast<int>(kind), terminated.c_str(), terminated.size());
      };
    }
    SetMessageSink(std::move(adapter));
    return VQ_OK;
  });
}

int vq_hue_in_degrees(void) noexcept { return GetHueInDegrees() != 0 ? 1 : 0; }

int vq_set_hue_in_degrees(int degrees) noexcept {
  SetHueInDegrees(degrees);
  return VQ_OK;
}

int vq_set_batch_threads(int threads) noexcept {
  SetBatchThreads(threads);
  return VQ_OK;
}

int vq_batch_threads(void) noexcept { return BatchThreads(); }

}  // extern "C"
