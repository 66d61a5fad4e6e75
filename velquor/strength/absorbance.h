// Point conversions between reflectance and the two absorption measures of colour strength:
// the Kubelka-Munk ratio K/S (Kubelka and Munk 1931; ISO 105-J01 practice for strength) and
// the optical density (absorbance) D = log10(100 / R%).
#pragma once

namespace velquor {

// Kubelka-Munk K/S of a reflectance R in percent: with r = R x 0.01, (1 - r)^2 / (2 r) for
// R >= 0.01, else 9999.0 (NaN too), so black points dominate a sum instead of failing.
// Same values as ConvertReflPoint in K/S mode, which it uses.
double KSFromReflectance(double reflectance);

// Reflectance in percent of a K/S value, the inverse of KSFromReflectance on [0.01, 100]:
// 100 (1 + ks - sqrt(ks^2 + 2 ks)), evaluated as (ks - sqrt((ks + 2) ks) + 1) x 100. No guard:
// a negative ks between -2 and 0 gives NaN.
double ReflectanceFromKS(double ks);

// Absorbance (optical density) of a reflectance R in percent: 4.3 below 0.01 (NaN too),
// log10(100 / R) for 0.01 <= R <= 100, 0.0 above 100. The black value 4.3 lies above
// log10(100 / 0.01) = 4, so the curve jumps at 0.01; the library keeps that jump.
double AbsorbanceFromReflectance(double reflectance);

// Reflectance in percent of an absorbance D: 100 / 10^D, with no limit on D.
double ReflectanceFromAbsorbance(double absorbance);

}  // namespace velquor
