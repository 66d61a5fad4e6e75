// Shared pieces of the C interface (velquor/velquor_c.h): the exception barrier, text copies
// into caller buffers, argument checks and conversions between the C records and the
// library's value vectors. Internal to the library's C layer.
#pragma once

#include <cstddef>
#include <string_view>

#include "velquor/data/ks_data.h"
#include "velquor/data/value_vectors.h"
#include "velquor/difference/color_sample.h"
#include "velquor/velquor_c.h"

namespace velquor::capi {

// The result code of the exception being handled: VQ_ERR_LOG_FILE for the log's file error,
// VQ_ERR_NO_MEMORY for std::bad_alloc, VQ_ERR_INTERNAL for anything else.
int CodeOfCurrentException() noexcept;

// Runs `body`, which returns a result code, and turns any exception into a code: nothing
// thrown inside the library may cross into C.
template <class Body>
int Guard(Body&& body) noexcept {
  try {
    return body();
  } catch (...) {
    return CodeOfCurrentException();
  }
}

// True unless a buffer is NULL with a non-zero size.
constexpr bool IsValidBuffer(const void* buffer, std::size_t size) {
  return buffer != nullptr || size == 0;
}

// Copies `text` into `buffer` snprintf-style (at most size - 1 bytes and a zero) and returns
// its full length; VQ_ERR_NULL for an invalid buffer, VQ_ERR_RANGE for a text longer than an
// int can count.
int CopyText(std::string_view text, char* buffer, std::size_t size) noexcept;

// Illuminant 0..16 and observer 0 or 1.
constexpr bool IsValidPair(int illuminant, int observer) {
  return illuminant >= 0 && illuminant < VQ_ILLUMINANT_COUNT &&
         (observer == VQ_OBSERVER_2 || observer == VQ_OBSERVER_10);
}

// The difference-system codes the library defines: 0..12 and 100.
constexpr bool IsValidSystem(int system) {
  return (system >= VQ_DIFF_CIELAB && system <= VQ_DIFF_DIN6175) ||
         system == VQ_DIFF_CHROMATICITY;
}

// The C records are plain arrays of doubles, so they can be read and written as such.
inline const double* Values(const vq_xyz& r) { return &r.x; }
inline double* Values(vq_xyz& r) { return &r.x; }
inline const double* Values(const vq_coords5& r) { return &r.l; }
inline double* Values(vq_coords5& r) { return &r.l; }

// Per-thread value vectors for the single-sample calls, so that a call allocates nothing once
// its thread has made one. A function uses them only between its entry and its return and
// calls no caller code in between, so no call can find them in use.
struct Scratch {
  CValueVector3 xyz;
  CValueVector3 xyzOut;
  CValueVector3 triple;
  CValueVector5 coordinates;
  CColorVector7 difference;
  CColorSample standard;
  CColorSample trial;
  CKSData curve;
  CKSData otherCurve;
};
Scratch& ThreadScratch();

void ToVector(const vq_xyz& from, CValueVector3& to);
void ToVector(const vq_coords5& from, CValueVector5& to);
// Copies the first three (five, seven) elements; missing values for elements the vector lacks.
void FromVector(const CValueArray& from, vq_xyz& to);
void FromVector(const CValueArray& from, vq_coords5& to);
void FromVector(const CValueArray& from, vq_diff7& to);

}  // namespace velquor::capi
