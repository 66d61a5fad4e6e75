// Tristimulus and chromaticity differences for the "CIE XYZ/Yxy" display, scaled so that
// typical differences read as numbers of a few units.
#pragma once

#include "velquor/data/value_vectors.h"

namespace velquor {

// Overwrites slots 1-6 of a difference record, trial t minus standard s:
//   slots 1-3: 10 dX, 10 dY, 10 dZ;  slot 4: the missing value;
//   slots 5, 6: 10000 dx, 10000 dy (CIE 1931 chromaticity, XYZToChromaticity), each limited to
//   [-999.99, 999.99] at once by the rule of LimitDifference.
// Slot 7 is left alone (the dispatcher has put Delta E*ab there). A sample whose chromaticity
// cannot be formed (X + Y + Z = 0) enters with x = y = 1e-05, the missing value, as it stands.
// XYZ records shorter than three or a result shorter than seven elements give an all-missing
// result.
void ApplyXyzYxyDifference(const CValueVector3& standard, const CValueVector3& trial,
                           CColorVector7& result);

// The limit of a difference value, as CColorVector7::ClampRange applies it to each slot:
// at or above 999.99 gives 999.99; at or below -999.99, and NaN, give -999.99.
double LimitDifference(double value);

}  // namespace velquor
