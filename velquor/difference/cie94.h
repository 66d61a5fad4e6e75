// CIE94 colour difference (CIE 116-1995): the CIELAB differences weighted by the standard's
// chroma, with the parametric factors kL, kC, kH.
#pragma once

#include "velquor/data/value_vectors.h"

namespace velquor {

// Weights a Delta E*ab record (ComputeDeltaEab) in place, with Cs the standard's C*ab (the
// reference-sample form of CIE 116, not the geometric mean of both chromas):
//   SL = 1, SC = 1 + 0.045 Cs, SH = 1 + 0.015 Cs;
//   slot 4 = dL / (kL SL), slot 5 = dC / (kC SC), slot 6 = dH / (kH SH), slot 7 = root of the
//   sum of their squares. Slots 1-3 keep dL, da, db. Zero factors are not guarded.
// Records shorter than four (standard) or seven (result) elements give an all-missing result.
void ApplyCie94Weighting(const CValueVector5& standard, double kL, double kC, double kH,
                         CColorVector7& result);

}  // namespace velquor
