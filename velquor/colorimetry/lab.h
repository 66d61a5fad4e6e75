// CIELAB (CIE 15:2004, 8.2.1) with the library's rounded breakpoint 0.008856 and slope 7.787
// rather than 216/24389 and 841/108, so stored coordinates match to the last digit.
//
// XYZ is on the Y = 100 scale. The white point (Xn, Yn, Zn) is that of the chosen illuminant and
// observer: the forms taking (illuminant, observer) read it from the weighting-table catalogue,
// the forms taking a white point use the one given (positive, Y = 100 scale). Coordinates are
// the five-value record L*, a*, b*, C*ab, hab (hue in the unit of GetHueInDegrees(), degrees by
// default). Missing inputs (any of the values read, or the white point, or an illuminant whose
// table cannot be loaded) give missing outputs in every slot; nothing throws and nothing
// allocates unless an output record is shorter than its kind.
#pragma once

#include "velquor/data/value_vectors.h"

namespace velquor {

// XYZ -> L*, a*, b*, C*ab, hab.
// f(t) = 7.787 t + 16/116 for t <= 0.008856 (the linear branch includes the breakpoint),
// CubeRoot(t) (frame/cube_root.h) above it; L* = 116 fY - 16, a* = 500 (fX - fY),
// b* = 200 (fY - fZ); chroma and hue as ComputeChromaHue. Negative t take the linear branch.
void XYZToLab(int illuminant, int observer, const CValueVector3& xyz, CValueVector5& lab);
void XYZToLab(const CValueVector3& white, const CValueVector3& xyz, CValueVector5& lab);

// The same on raw storage: white[0..2], xyz[0..2] in, lab[0..4] out. All inputs are read before
// any output is written, so `lab` may start at `xyz`. A null white gives a missing record.
void XYZToLab(const double white[3], const double xyz[3], double lab[5]);

// L*, a*, b* -> XYZ, the inverse of XYZToLab with the library's constants:
// fY = (L* + 16) x 0.008620689655172414, fX = fY + 0.002 a*, fZ = fY - 0.005 b*;
// t = (f - 0.137931) x 0.1284191601386927 for f <= 6/29, else f^3; X = tX Xn and so on.
// The six-digit offset 0.137931 is kept, so a round trip through XYZToLab is exact only to
// about 4e-8 relative in the linear range; the inverse breakpoint 6/29 is not the image of
// 0.008856, so near it a round trip can also cross branches (up to 2e-4 in a*).
void LabToXYZ(int illuminant, int observer, double lStar, double aStar, double bStar,
              CValueVector3& xyz);
void LabToXYZ(const CValueVector3& white, double lStar, double aStar, double bStar,
              CValueVector3& xyz);

// Linearised CIELAB: the change (dL*, da*, db*) caused by a small change (dX, dY, dZ) at XYZ.
// For each component t = X / Xn: df = 7.787 dX / Xn when t <= 0.008856, else
// 0.3333333333333333 t^-0.6666666666666666 dX / Xn; dL* = 116 dfY, da* = 500 (dfX - dfY),
// db* = 200 (dfY - dfZ). The changes are plain numbers: a step of 1e-05 is a valid step, not
// a missing value; only a missing XYZ or white point gives missing results.
void LabDifferential(int illuminant, int observer, const CValueVector3& xyz, double dX, double dY,
                     double dZ, CValueVector3& dLab);
void LabDifferential(const CValueVector3& white, const CValueVector3& xyz, double dX, double dY,
                     double dZ, CValueVector3& dLab);

}  // namespace velquor
