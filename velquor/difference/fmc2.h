// FMC-2 colour difference (Friele-MacAdam-Chickering, Chickering 1971), computed directly
// from tristimulus values.
#pragma once

#include "velquor/data/value_vectors.h"

namespace velquor {

// Fills the difference record from the XYZ of a standard s and a trial t (Y = 100 scale),
// with Y the standard's Y and differences trial minus standard:
//   P = 0.724 X + 0.382 Y - 0.098 Z, Q = -0.48 X + 1.37 Y + 0.1276 Z of the standard; dP, dQ
//   the same combinations of dX, dY, dZ; S = 0.686 Zs, dS = 0.686 dZ;
//   a = sqrt(1.73e-05 (P^2 + Q^2) / (1 + 2.73 P^2 Q^2 / (P^4 + Q^4)));
//   b = sqrt(0.0003098 (S^2 + 0.2015 Y^2));
//   K1 = 0.55669 + 0.049434 Y - 0.00082575 Y^2 + 7.9172e-06 Y^3 - 3.0087e-08 Y^4,
//   K2 = 0.17548 + 0.027556 Y - 0.00057262 Y^2 + 6.3893e-06 Y^3 - 2.6731e-08 Y^4 (Horner);
//   slot 1 dL = 0.279 K2 (P dP + Q dQ) / (a sqrt(P^2 + Q^2));
//   slot 2 drg = K1 (Q dP - P dQ) / (a sqrt(P^2 + Q^2));
//   slot 3 dyb = K1 (S (P dP + Q dQ) / (b (P^2 + Q^2)) - dS / b);
//   slot 5 dC = sqrt(drg^2 + dyb^2); slots 4 and 6 the missing value (not applicable);
//   slot 7 dE = sqrt(dL^2 + dC^2).
// A black standard divides by zero (infinite or NaN slots). XYZ records shorter than three or
// a result shorter than seven elements give an all-missing result.
void ComputeFmc2Difference(const CValueVector3& standard, const CValueVector3& trial,
                           CColorVector7& result);

}  // namespace velquor
