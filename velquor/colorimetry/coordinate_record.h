// Missing-value rules shared by the colour-space conversions. A conversion reads its inputs
// from caller-owned value vectors and fills caller-owned outputs; it never throws, and an input
// it cannot use gives the missing value 1e-05 in every output slot.
#pragma once

#include <cstddef>

#include "velquor/data/value_array.h"
#include "velquor/frame/numeric.h"

namespace velquor {

// True when `values` holds fewer than `count` elements or any of its first `count` is missing.
// The rule of the conversions whose every output depends on every input (CIELAB, CIELUV,
// Hunter Lab).
inline bool AnyMissing(const CValueArray& values, std::size_t count) {
  if (values.GetSize() < count) return true;
  for (std::size_t i = 0; i < count; ++i)
    if (IsMissing(values[i])) return true;
  return false;
}

// True when an XYZ sample is missing as a whole: fewer than three elements (an empty vector
// included), or all three missing. A sample with only some elements missing is not.
inline bool IsMissingXYZ(const CValueArray& xyz) {
  if (xyz.GetSize() < 3) return true;
  return IsMissing(xyz[0]) && IsMissing(xyz[1]) && IsMissing(xyz[2]);
}

// The three values of a white point record, or null when it has fewer than three.
inline const double* WhiteData(const CValueArray& white) {
  return white.GetSize() >= 3 ? white.GetData() : nullptr;
}

// True when a white point is null or any of its three values is missing.
inline bool IsMissingWhite(const double* white) {
  return white == nullptr || IsMissing(white[0]) || IsMissing(white[1]) || IsMissing(white[2]);
}

// Grows `values` to at least `count` elements when a caller passed a shorter record (the only
// case that allocates).
inline void EnsureSize(CValueArray& values, std::size_t count) {
  if (values.GetSize() < count) values.SetSize(count);
}

// Sizes `values` to at least `count` elements and sets the first `count` to the missing value.
inline void FillMissing(CValueArray& values, std::size_t count) {
  EnsureSize(values, count);
  for (std::size_t i = 0; i < count; ++i) values[i] = kMissing;
}

}  // namespace velquor
