// Polar form of an opponent colour space's chromatic plane (CIE 15:2004, 8.2.1: C*ab and hab;
// the same form serves CIELUV, DIN99 and the others): chroma C = sqrt(a^2 + b^2) and hue angle h
// measured anticlockwise from the +a axis.
#pragma once

#include "velquor/data/value_vectors.h"

namespace velquor {

// Chroma and hue of the rectangular pair (a, b).
// Hue is in radians with the library's rounded turns: a on-axis point (|a| or |b| below
// 2.220446049250313e-16) takes 0, 1.570796326795, 3.14159265359 or 4.712388980385 exactly,
// the origin gives 0, and otherwise h = atan2(b, a) with 6.28318530718 added when negative.
// The hue unit follows GetHueInDegrees(): in degree mode h is multiplied by 57.29577951307855
// and a hue with 360 - h below 0.005 is reported as 0. The wrap is the library's behaviour in
// degree mode only; in radian mode h may lie a hair under 6.28318530718.
// A missing a or b gives missing C and h.
void ComputeChromaHue(double a, double b, double& chroma, double& hue);

// The same on a five-value coordinate record (lightness, a, b, C, h): reads elements 1 and 2
// (0-based), writes elements 3 and 4. A record shorter than three elements gives missing C, h.
void ComputeChromaHue(CValueVector5& coordinates);

}  // namespace velquor
