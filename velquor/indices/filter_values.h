// Tristimulus filter values as quoted by paper and plastics laboratories: the reflectance a
// sample would show through the blue (Rz) and amber (Rx) tristimulus filters of a filter
// colorimeter, computed from its CIE X, Y, Z and the computed white Xn, Yn, Zn of the
// illuminant and observer (see ComputedWhite). The X function is taken as 0.798 amber plus
// 0.202 blue filter, so X / Xn = 0.798 Rx + 0.202 Rz (in fractions of the white).
//
// Both accept every illuminant and observer and return percent values, neither rounded nor
// clamped. A sample that is missing as a whole (fewer than three values, or all three the
// missing value) gives the missing value 1e-05. Nothing throws and nothing allocates per call.
#pragma once

#include "velquor/data/value_vectors.h"

namespace velquor {

// Rz = 100 Z / Zn.
double FilterValueRz(int illuminant, int observer, const CValueVector3& xyz);

// Rx = (100 X / Xn - 0.202 Rz) x 1.2531328320802004 (the last factor is 1 / 0.798: the amber
// filter's share of the X function), with Rz as FilterValueRz gives it for the same pair.
double FilterValueRx(int illuminant, int observer, const CValueVector3& xyz);

}  // namespace velquor
