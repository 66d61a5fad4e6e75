// DIN99 colour space (DIN 6176:2001) from CIELAB, with the weights of the DIN99 colour
// difference (kCH, kE; both 1 when unweighted).
#pragma once

#include "velquor/data/value_vectors.h"

namespace velquor {

// L*, a*, b* -> L99, a99, b99, C99, h99.
// The a*b* plane is rotated by 16 degrees (0.2792526803191111 rad) and the new second axis
// compressed: e = cos16 a* + sin16 b*, f = 0.7 (cos16 b* - sin16 a*).
// Hue in radians: when e is exactly 0 (a plain comparison, deliberately not IsZero) it is
// 1.570796326795 for f > 0, 4.7123889803850005 for f < 0 and 0 for f = 0; otherwise
// atan2(f, e), plus 6.28318530718 when negative. There is no wrap near a full turn.
// L99 = 105.51 ln(1 + 0.0158 L*) / kE; G = sqrt(e^2 + f^2);
// C99 = ln(1 + 0.045 G) / (0.045 kCH kE); a99 = C99 cos h99, b99 = C99 sin h99.
// The stored hue is HueFromRadians(h99), so degrees by default.
// Missing inputs (any of the five), a zero weight, or L* <= -1 / 0.0158 (no logarithm) give
// missing outputs in every slot.
void LabToDIN99(double lStar, double aStar, double bStar, double kCH, double kE,
                CValueVector5& din99);
// The same on plain arrays: lab[0..2] in, din99[0..4] out (lab is read before din99 is written).
void LabToDIN99(const double lab[3], double kCH, double kE, double din99[5]);

}  // namespace velquor
