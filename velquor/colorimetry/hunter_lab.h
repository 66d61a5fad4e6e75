// Hunter L, a, b (Hunter 1958; general white point form of Hunter Associates Laboratory, 1966).
//
// Two regimes, chosen by illuminant and observer (UsesClassicHunterLab):
// - illuminant C (index 1) with the 2 degree observer (code 0): the classic formulas on Y in
//   percent, with the published rounded white ratios 1.02 and 0.847 and no white point;
// - every other pair: the white point form with Ka = 175 sqrt(0.0102 Xn) and
//   Kb = 70 sqrt(0.00847 Zn).
// XYZ and the white point are on the Y = 100 scale; L, a, b travel as a three-value record.
// Missing inputs give missing outputs in every slot. Forward, a and b divide by sqrt Y without
// a guard: Y = 0 gives L = 0 and a, b the floating-point quotients (an infinity, or NaN for
// 0 / 0), a negative Y gives NaN, and these are returned as they are. Nothing throws.
#pragma once

#include "velquor/data/value_vectors.h"

namespace velquor {

// Hunter L, a, b of the chosen illuminant and observer, in the regime the pair selects; the
// white point form reads the white from the weighting-table catalogue (an illuminant whose
// table cannot be loaded gives missing outputs).
void XYZToHunterLab(int illuminant, int observer, const CValueVector3& xyz, CValueVector3& lab);
void HunterLabToXYZ(int illuminant, int observer, const CValueVector3& lab, CValueVector3& xyz);

// True for the pair that uses the classic formulas: illuminant 1 (C) with observer code 0.
constexpr bool UsesClassicHunterLab(int illuminant, int observer) {
  return illuminant == 1 && observer == 0;
}

// Classic Hunter Lab for illuminant C, 2 degree observer:
// L = 10 sqrt(Y); a = 17.5 (1.02 X - Y) / sqrt(Y); b = 7.0 (Y - 0.847 Z) / sqrt(Y).
void XYZToHunterLabClassic(const CValueVector3& xyz, CValueVector3& lab);
// Its inverse: Y = (0.1 L)^2; X = (0.1 L a / 17.5 + Y) / 1.02; Z = -(0.1 L b / 7 - Y) / 0.847.
void HunterLabToXYZClassic(const CValueVector3& lab, CValueVector3& xyz);

// White point form: yr = Y / Yn; L = 100 sqrt(yr); a = Ka (X / Xn - yr) / sqrt(yr);
// b = Kb (yr - Z / Zn) / sqrt(yr).
void XYZToHunterLab(const CValueVector3& white, const CValueVector3& xyz, CValueVector3& lab);
// Its inverse: Y = 0.0001 L^2 Yn; yr = Y / Yn; X = Z = 0 when yr is zero (IsZero), otherwise
// X = (a / (175 sqrt(0.0102 Xn / yr)) + yr) Xn and Z = (yr - b / (70 sqrt(0.00847 Zn / yr))) Zn.
void HunterLabToXYZ(const CValueVector3& white, const CValueVector3& lab, CValueVector3& xyz);

}  // namespace velquor
