// CIE 1931 chromaticity coordinates (CIE 15:2004, 7.3): x = X / (X + Y + Z), y = Y / (X + Y + Z).
#pragma once

#include "velquor/data/value_vectors.h"

namespace velquor {

// x and y of an XYZ sample (any common scale). A missing sample (fewer than three elements, or
// all three missing) or a sum that is zero (IsZero) gives x = y = 1e-05, the missing value.
// A sample with only some elements missing is used as it stands.
void XYZToChromaticity(const CValueVector3& xyz, double& x, double& y);

// x and y of a raw triple X, Y, Z (three doubles), without any guard: the chromaticity of a
// white point read in place from its weighting table (FindReferenceWhite), whose sum is never
// zero. The one place where x and y are computed; XYZToChromaticity adds its guards around it.
void TripleToChromaticity(const double* xyz, double& x, double& y);

}  // namespace velquor
