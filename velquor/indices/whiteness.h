// Whiteness indices of one sample's tristimulus values: ASTM E313-73, Taube, Berger, CIE
// (CIE 15:2004 9.1, also ASTM E313-10), Ganz/Griesser, Stensby and Hunter.
//
// Every operation takes the illuminant index (0-16), the observer (0 = CIE 1931 2 degree, any
// other code = CIE 1964 10 degree, except where stated) and the sample's X, Y, Z on the scale
// where the perfect reflecting diffuser has Y = 100, and returns the index as a double.
//
// Two flavours:
// - plain: defined only for the illuminant/observer pairs for which the formula's coefficients
//   are published; any other pair returns the missing value 1e-05 at once, without reading the
//   sample;
// - recalculated ("(R)" in the index catalogue): every pair; the sample's X and/or Z are first
//   rescaled to the formula's reference white, X' = (Xref / Xn) X and Z' = (Zref / Zn) Z, with
//   Xn, Zn the computed white of the chosen pair (ComputedWhite), Y never rescaled, and the
//   reference coefficients applied. One coefficient set serves every observer.
//
// Results are neither rounded nor clamped, and a zero denominator is not guarded: the
// floating-point result (an infinity or NaN) is returned as it is. A sample that is missing as
// a whole (fewer than three values, or all three missing) gives the missing value. Nothing
// throws and nothing allocates per call.
#pragma once

#include "velquor/data/value_vectors.h"

namespace velquor {

// ASTM E313-73 whiteness W = 3.388 Z - 3 Y. C / 2 degree only.
double WhitenessE313_73(int illuminant, int observer, const CValueVector3& xyz);
// Its recalculated flavour: 3.388 Z' - 3 Y with Z' = (118.232 / Zn) Z.
double WhitenessE313_73R(int illuminant, int observer, const CValueVector3& xyz);

// Taube whiteness W = 3.3834 Z - 3 Y. C / 2 degree only.
double WhitenessTaube(int illuminant, int observer, const CValueVector3& xyz);
// Its recalculated flavour: 3.3834 Z' - 3 Y with Z' = (118.232 / Zn) Z.
double WhitenessTaubeR(int illuminant, int observer, const CValueVector3& xyz);

// Berger whiteness. D65 only, both observers: 2 degree W = Y + 3.4 Z - 3.895 X,
// 10 degree W = Y + 3.448 Z - 3.904 X. Under C / 2 degree, where Berger published the 2 degree
// pair, the library gives the missing value.
double WhitenessBerger(int illuminant, int observer, const CValueVector3& xyz);
// Its recalculated flavour: Y + 3.4 Z' - 3.895 X' with Z' = (108.883 / Zn) Z and
// X' = (95.047 / Xn) X (D65 / 2 degree white), the 2 degree pair also for the 10 degree
// observer.
double WhitenessBergerR(int illuminant, int observer, const CValueVector3& xyz);

// CIE whiteness W = Y + 800 (xn - x) + 1700 (yn - y), with x, y of the sample and xn, yn of the
// computed white (CIE 1931 chromaticities whatever the observer). D65 only, both observers.
// Here and in every operation that uses x, y, a sample whose chromaticity is missing
// (XYZToChromaticity: X + Y + Z zero) gives the missing value.
double WhitenessCIE(int illuminant, int observer, const CValueVector3& xyz);
// The same formula for every pair, with the computed white of the chosen pair: the perfect
// white itself gives W = its own Y.
double WhitenessCIER(int illuminant, int observer, const CValueVector3& xyz);

// ASTM E313-10 whiteness: the CIE formula with xn, yn from E313WhitePoint. C, D65 and D50, both
// observers.
double WhitenessE313_10(int illuminant, int observer, const CValueVector3& xyz);

// Ganz/Griesser whiteness W = D Y + P x + Q y + C with the instrument's calibration
// coefficients {D, P, Q, C} (four doubles owned by the caller). D65 with observer code exactly
// 1 only; a null coefficient pointer gives the missing value.
double WhitenessGanz(int illuminant, int observer, const CValueVector3& xyz,
                     const double* coefficients);

// Stensby whiteness W = L + 3 a - 3 b and Hunter whiteness W = L - 3 b, with L, a, b the Hunter
// Lab values of the sample for the chosen pair (XYZToHunterLab). Every pair, and never the
// missing value for a usable sample: Y = 0 gives the unguarded floating-point result (an
// infinity, or NaN for a black sample).
double WhitenessStensby(int illuminant, int observer, const CValueVector3& xyz);
double WhitenessHunter(int illuminant, int observer, const CValueVector3& xyz);

}  // namespace velquor
