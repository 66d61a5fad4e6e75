// Angle-dependent colour difference for effect finishes (metallic and pearlescent coatings),
// the difference system "Audi L*a*b*": a visual tolerance that widens with the aspecular
// viewing angle, with weights from the reference's lightness and chroma.
#pragma once

#include "velquor/data/value_vectors.h"

namespace velquor {

// Writes the weighted total into element 6 of `difference` and changes nothing else.
// reference: five values; element 0 is the lightness L, element 3 the value Q that enters the
// chromatic weights under a square root, element 4 the value H of the near-neutral test.
// With CIELAB coordinates (L*, a*, b*, C*ab, hab) that makes H the hue angle hab in degrees
// and Q the chroma C*ab: the library tests the hue slot where a chroma test might be
// expected, and keeps it so for compatibility with stored results.
// difference: the seven-slot record of ComputeDeltaEab (elements 0-2 dL, da, db; 4-5 dC, dH).
// angle: the aspecular angle in degrees; exactly 0 is taken as 1.0.
//   s = sqrt(L);  S_L = 22.5 / angle + 0.11 s;
//   near-neutral when H < 10, or L > 27 and H < 18 (so L <= 27 with 10 <= H < 18 is chromatic):
//     S_1 = S_2 = 0.5 on d_1 = da, d_2 = db;
//   otherwise S_1 = 30 / angle + 0.34 sqrt(Q) - 0.25 s, S_2 = 15 / angle + (0.1 sqrt(Q) + 0.5)
//     - 0.14 s on d_1 = dC, d_2 = dH -- except that an S_1 of exactly 0.5 takes d_1 = da and
//     d_2 = db with the S_1 and S_2 just computed (the library's behaviour, kept);
//   total = sqrt((d_1 / S_1)^2 + (dL / S_L)^2 + (d_2 / S_2)^2).
// Nothing else is checked: a negative L or Q gives NaN, an S_1 or S_2 of 0 an infinite or NaN
// total. A reference shorter than five or a difference shorter than seven elements leaves
// `difference` unchanged.
void ComputeAngleDependentDifference(const CValueVector5& reference, CColorVector7& difference,
                                     double angle);

}  // namespace velquor
