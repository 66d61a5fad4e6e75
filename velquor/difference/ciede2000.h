// CIEDE2000 colour difference (CIE 142-2001; CIE 15:2004, 8.3.2), following the
// implementation notes of Sharma, Wu and Dalal (Color Res. Appl. 30(1), 2005).
#pragma once

#include "velquor/data/value_vectors.h"

namespace velquor {

// Replaces slots 4-7 of a Delta E*ab record (ComputeDeltaEab) by the CIEDE2000 terms; slots
// 1-3 keep dL, da, db. Reads the samples' L, a, b and stored chroma C (elements 0-3); hue
// arithmetic is in degrees whatever GetHueInDegrees() says, trigonometry through DegToRad.
//   C = (Cs + Ct) / 2;  G = 0.5 (1 - sqrt(C^7 / (C^7 + 25^7)));
//   per sample a' = (1 + G) a, C' = hypot(a', b), h' = atan2(b, a') in [0, 360), and 0 when
//   both b and a' are zero (IsZero);
//   mean hue h': if C's C't is zero (IsZero), h's + h't -- the sum, not halved, so a neutral
//   sample leaves the other's hue; else if |h't - h's| <= 180 (the equality with the tolerance
//   kDe2000HalfTurnTolerance) the plain mean; else (h's + h't - 360) / 2 when the sum is
//   >= 360, otherwise (h's + h't + 360) / 2;
//   SL = 1 + 0.015 (L' - 50)^2 / sqrt(20 + (L' - 50)^2), SC = 1 + 0.045 C',
//   T = 1 - 0.17 cos(h' - 30) + 0.24 cos(2h') + 0.32 cos(3h' + 6) - 0.2 cos(4h' - 63),
//   SH = 1 + 0.015 C' T;  d-theta = 30 exp(-((h' - 275) x 0.04)^2);
//   RC = 2 sqrt(C'^7 / (C'^7 + 25^7)), RT = -sin(2 d-theta) RC;
//   dh' = 0 if C's C't is zero, else h't - h's brought into [-180, 180] by one turn (exact
//   comparisons: a difference of exactly +-180 stays as it is, but a true half turn computes
//   as 180 + 1.2e-11 through the rounded degree factor and is wrapped, giving dH' the sign
//   opposite to exact arithmetic); dH' = 2 sqrt(C's C't) sin(dh'/2);
//   slot 4 = dL' / (kL SL), slot 5 = dC' / (kC SC), slot 6 = dH' / (kH SH),
//   slot 7 = sqrt(slot4^2 + slot5^2 + slot6^2 + RT slot5 slot6).
// Records shorter than four (samples) or seven (result) elements give an all-missing result.
void ApplyCiede2000(const CValueVector5& standard, const CValueVector5& trial, double kL, double kC,
                    double kH, CColorVector7& result);

}  // namespace velquor
