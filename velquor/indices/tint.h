// Tint indices of one sample's tristimulus values: CIE tint (CIE 15:2004 9.1, also ASTM
// E313-10) and Ganz/Griesser tint. Arguments, flavours, the missing value and the absence of
// rounding and clamping as in whiteness.h.
//
// CIE-type tint T = k (xn - x) - 650 (yn - y), x, y and xn, yn CIE 1931 chromaticities of the
// sample and of the white, k = 1000 for the 2 degree observer (code 0) and 900 for the
// 10 degree observer (any other code). Positive T is greenish, negative reddish. A sample
// whose chromaticity is missing (X + Y + Z zero) gives the missing value.
#pragma once

#include "velquor/data/value_vectors.h"

namespace velquor {

// CIE tint with the computed white of the pair. D65 only, both observers.
double TintCIE(int illuminant, int observer, const CValueVector3& xyz);
// The same for every pair, with the computed white of the chosen pair: the perfect white
// itself gives T = 0.
double TintCIER(int illuminant, int observer, const CValueVector3& xyz);
// ASTM E313-10 tint: the CIE formula with xn, yn from E313WhitePoint. C, D65 and D50, both
// observers.
double TintE313_10(int illuminant, int observer, const CValueVector3& xyz);

// Ganz/Griesser tint T = m x + n y + k0 with the instrument's calibration coefficients
// {m, n, k0} (three doubles owned by the caller). D65 with observer code exactly 1 only; a null
// coefficient pointer gives the missing value.
double TintGanz(int illuminant, int observer, const CValueVector3& xyz,
                const double* coefficients);

}  // namespace velquor
