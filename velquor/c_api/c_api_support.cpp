#include "velquor/c_api/c_api_support.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <new>

#include "velquor/frame/constants.h"
#include "velquor/instrument/comm_log.h"

namespace velquor::capi {

int CodeOfCurrentException() noexcept {
  try {
    throw;
  } catch (const LogFileError&) {
    return VQ_ERR_LOG_FILE;
  } catch (const std::bad_alloc&) {
    return VQ_ERR_NO_MEMORY;
  } catch (...) {
    return VQ_ERR_INTERNAL;
  }
}

int CopyText(std::string_view text, char* buffer, std::size_t size) noexcept {
  if (!IsValidBuffer(buffer, size)) return VQ_ERR_NULL;
  if (text.size() > static_cast<std::size_t>(INT_MAX)) return VQ_ERR_RANGE;
  if (size > 0) {
    const std::size_t copied = std::min(text.size(), size - 1);
    if (copied > 0) std::memcpy(buffer, text.data(), copied);
    buffer[copied] = '\0';
  }
  return static_cast<int>(text.size());
}

namespace {

void CopyFrom(const CValueArray& from, double* to, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) to[i] = i < from.GetSize() ? from[i] : kMissing;
}

void CopyTo(const double* from, std::size_t count, CValueArray& to) {
  if (to.GetSize() < count) to.SetSize(count);
  for (std::size_t i = 0; i < count; ++i) to[i] = from[i];
}

}  // namespace

Scratch& ThreadScratch() {
  thread_local Scratch scratch;
  return scratch;
}

void ToVector(const vq_xyz& from, CValueVector3& to) { CopyTo(Values(from), 3, to); }
void ToVector(const vq_coords5& from, CValueVector5& to) { CopyTo(Values(from), 5, to); }
void FromVector(const CValueArray& from, vq_xyz& to) { CopyFrom(from, Values(to), 3); }
void FromVector(const CValueArray& from, vq_coords5& to) { CopyFrom(from, Values(to), 5); }
void FromVector(const CValueArray& from, vq_diff7& to) { CopyFrom(from, to.slot, 7); }

}  // namespace velquor::capi
