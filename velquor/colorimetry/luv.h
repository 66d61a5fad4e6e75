// CIELUV (CIE 15:2004, 8.2.2) with the library's rounded constants: lightness breakpoint
// 0.008856 and linear factor 903.29 rather than 216/24389 and 24389/27.
//
// XYZ is on the Y = 100 scale. The white point is that of the chosen illuminant and observer
// (read from the weighting-table catalogue) or, in the second form of each operation, the one
// given (positive, Y = 100 scale). Coordinates are the five-value record L*, u*, v*, C*uv, huv
// (hue in the unit of GetHueInDegrees()). Missing inputs, a missing white point or an
// illuminant whose table cannot be loaded give missing outputs in every slot. A division the
// formulas leave undefined (X + 15Y + 3Z = 0 forward; L* = 0, u' = 0 or v' = 0 backward) also
// gives missing outputs in every slot: black has no CIELUV chromaticity. Nothing throws.
#pragma once

#include "velquor/data/value_vectors.h"

namespace velquor {

// XYZ -> L*, u*, v*, C*uv, huv.
// yr = Y / Yn; L* = 116 CubeRoot(yr) - 16 when yr > 0.008856, else 903.29 yr.
// u' = 4X / (X + 15Y + 3Z), v' = 9Y / (X + 15Y + 3Z), u'n, v'n likewise from the white;
// u* = 13 L* (u' - u'n), v* = 13 L* (v' - v'n); chroma and hue as ComputeChromaHue.
void XYZToLuv(int illuminant, int observer, const CValueVector3& xyz, CValueVector5& luv);
void XYZToLuv(const CValueVector3& white, const CValueVector3& xyz, CValueVector5& luv);
// The same on plain arrays: white Xn, Yn, Zn (missing values give missing outputs), xyz in,
// luv[0..4] out.
void XYZToLuv(const double white[3], const double xyz[3], double luv[5]);

// L*, u*, v* -> XYZ.
// u' = u'n + u* / (13 L*), v' = v'n + v* / (13 L*);
// t = L* x 0.0011070641765103123 (L* / 903.29), replaced by ((L* + 16) / 116)^3 when
// t > 0.008856, so L* = 8 (t = 0.0088565) already takes the cube branch; Y = t Yn;
// X = 9 Y u' / (4 v'); Z = (4 X / u' - X - 15 Y) / 3.
void LuvToXYZ(int illuminant, int observer, double lStar, double uStar, double vStar,
              CValueVector3& xyz);
void LuvToXYZ(const CValueVector3& white, double lStar, double uStar, double vStar,
              CValueVector3& xyz);

}  // namespace velquor
