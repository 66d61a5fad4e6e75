// CMC (l:c) colour difference (BS 6923:1988, ISO 105-J03, AATCC 173): the CIELAB differences
// weighted by functions of the standard's lightness, chroma and hue.
#pragma once

#include "velquor/data/value_vectors.h"

namespace velquor {

// Weights a Delta E*ab record (ComputeDeltaEab) in place. From the standard's L, C and hue h
// (h converted to degrees when GetHueInDegrees() is clear):
//   SL = 0.040975 L / (1 + 0.01765 L) for L >= 16, else 0.511;
//   SC = 0.0638 C / (1 + 0.0131 C) + 0.638;  F = sqrt(C^4 / (C^4 + 1900));
//   T = 0.56 + |0.2 cos(h + 168)| for 164 <= h <= 345 (both ends inclusive),
//       else 0.36 + |0.4 cos(h + 35)|;  SH = SC (F T + 1 - F);
//   slot 4 = dL / (l SL), slot 5 = dC / (c SC), slot 6 = dH / SH, slot 7 = root of the sum of
//   their squares. Slots 1-3 keep dL, da, db.
// The commercial factor cf shown in the CMC caption is not applied here; a host that uses one
// scales slot 7 itself. Zero weights are not guarded (infinite or NaN results).
// Records shorter than five (standard) or seven (result) elements give an all-missing result.
void ApplyCmcWeighting(const CValueVector5& standard, double l, double c, CColorVector7& result);

}  // namespace velquor
