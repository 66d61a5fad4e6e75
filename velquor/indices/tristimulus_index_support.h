// The pieces the whiteness, tint, yellowness and filter-value operations share: the computed
// white of an illuminant and observer, the test for a sample that cannot be used and the test
// for the C / 2 degree pair. The white's chromaticity comes from TripleToChromaticity.
#pragma once

#include "velquor/data/value_vectors.h"
#include "velquor/indices/constants.h"

namespace velquor {

// Xn, Yn, Zn (Y = 100 scale) of the perfect reflecting diffuser for the illuminant and
// observer: the white point stored with the pair's weighting table, which is exactly what
// ComputeXYZ gives for 100 % reflectance, so a sample and its white come from one table. The
// observer code is passed to the table cache as it stands (codes other than 0 and 1 therefore
// load the 2 degree table, the cache's behaviour). An illuminant whose table cannot be loaded
// falls back to D65 as EnsureWeightTable does, the same fallback the sample's own tristimulus
// values went through. The three doubles live for the whole process; null only if not even the
// D65 table can be loaded. Lock-free and allocation-free once the table is cached.
const double* ComputedWhite(int illuminant, int observer);

// True when an index cannot use the sample: fewer than three values (an empty triple
// included), or all three the missing value. A triple with only some values missing is used
// as it stands, as by the chromaticity conversion.
bool IsUnusableSample(const CValueVector3& xyz);

// True for illuminant C with the 2 degree observer (code 0), the one pair of the ASTM E313-73,
// Taube, D1925 and DCM formulas.
constexpr bool IsIlluminantC2(int illuminant, int observer) {
  return illuminant == kIndexIlluminantC && observer == 0;
}

}  // namespace velquor
