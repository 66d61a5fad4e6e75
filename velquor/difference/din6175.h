// DIN 6175-2 colour difference for automotive finishes: the CIELAB differences weighted by
// the standard's lightness and chroma, with a parameter p and the weights gL, gC, gH.
#pragma once

#include "velquor/data/value_vectors.h"

namespace velquor {

// Replaces slot 7 of a Delta E*ab record (ComputeDeltaEab); the other slots stay as they are.
// From the standard's L (element 0), C (element 3) and h (element 4, compared as stored):
//   SL = 0.15 sqrt(L) + 31.5 / p;
//   near-neutral when C < 18 and (C < 10 or h >= 27): SC = SH = 0.7 on da and db,
//     dE = sqrt((dL / (gL SL))^2 + (da / (gC 0.7))^2 + (db / (gH 0.7))^2);
//   otherwise SC = max(0.48 sqrt(C) - 0.35 sqrt(L) + 42 / p, 0.7),
//     SH = max(0.14 sqrt(C) + 0.7 - 0.2 sqrt(L) + 21 / p, 0.7),
//     dE = sqrt((dL / (gL SL))^2 + (dC / (gC SC))^2 + (dH / (gH SH))^2).
// The near-neutral test reads the hue angle against 27 where a lightness test might be
// expected; the library keeps it so for compatibility with stored results.
// p is used as given (the dispatcher turns 0 into 1); zero weights are not guarded.
// Records shorter than five (standard) or seven (result) elements give an all-missing result.
void ApplyDin6175Weighting(const CValueVector5& standard, double gL, double gC, double gH, double p,
                           CColorVector7& result);

}  // namespace velquor
