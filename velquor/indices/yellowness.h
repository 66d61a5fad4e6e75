// Yellowness indices of one sample's tristimulus values: ASTM D1925, ASTM E313-73, ASTM E313-10,
// DIN 6167 and the DCM yellowness. Arguments, flavours, the missing value and the absence of
// rounding, clamping and zero-denominator guards as in whiteness.h (a sample with Y = 0 gives
// the infinity or NaN of the division). Positive values are yellowish, negative bluish.
#pragma once

#include "velquor/data/value_vectors.h"

namespace velquor {

// ASTM D1925 YI = 100 (1.28 X - 1.06 Z) / Y. C / 2 degree only.
double YellownessD1925(int illuminant, int observer, const CValueVector3& xyz);
// Its recalculated flavour with X' = (98.074 / Xn) X and Z' = (118.232 / Zn) Z.
double YellownessD1925R(int illuminant, int observer, const CValueVector3& xyz);

// ASTM E313-73 YI = 100 (1 - 0.847 Z / Y). C / 2 degree only.
double YellownessE313_73(int illuminant, int observer, const CValueVector3& xyz);
// Its recalculated flavour with Z' = (118.232 / Zn) Z.
double YellownessE313_73R(int illuminant, int observer, const CValueVector3& xyz);

// ASTM E313-10 YI = 100 (Cx X - Cz Z) / Y. C and D65, both observers:
//   C 2: 1.2769, 1.0592   C 10: 1.2871, 1.0781   D65 2: 1.2985, 1.1335   D65 10: 1.3013, 1.1498
double YellownessE313_10(int illuminant, int observer, const CValueVector3& xyz);
// Its recalculated flavour: the C / 2 degree pair on X' = (98.074 / Xn) X and
// Z' = (118.232 / Zn) Z, whatever the observer.
double YellownessE313_10R(int illuminant, int observer, const CValueVector3& xyz);

// DIN 6167 YI = 100 (Cx X - Cz Z) / Y. C / 2, D65 / 2 and D65 / 10 degree (the standard has no
// C / 10 degree pair):
//   C 2: 1.277, 1.059   D65 2: 1.298, 1.133   D65 10: 1.301, 1.149
double YellownessDIN6167(int illuminant, int observer, const CValueVector3& xyz);
// Its recalculated flavour: the C / 2 degree pair on X' = (98.074 / Xn) X and
// Z' = (118.232 / Zn) Z, whatever the observer.
double YellownessDIN6167R(int illuminant, int observer, const CValueVector3& xyz);

// DCM yellowness Y = 253.1 - 620.88511 Z / (1.275 X + Y + 0.635025 Z). C / 2 degree only.
double YellownessDCMY(int illuminant, int observer, const CValueVector3& xyz);

}  // namespace velquor
