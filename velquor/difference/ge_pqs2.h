// GE-PQS II colour difference (General Electric Plastics Quality Standard II), a chromatic
// difference from a Riemannian metric on tristimulus values, shown beside the scaled Y and
// chromaticity differences.
#pragma once

#include "velquor/data/value_vectors.h"

namespace velquor {

// Fills the difference record from the XYZ of a standard s and a trial t (Y = 100 scale) for
// the illuminant index and observer code they were computed with:
//   k = Xn / 98.074, Xn the white X of that pair's weighting table (98.074 is illuminant C,
//   2 degrees); a pair without a table uses D65's, as EnsureWeightTable does;
//   per sample u = k (0.7 X + 0.27 Y - 0.1 Z), v = k (1.23 Y + 0.1 Z - 0.36 X), w = 2.2 k Z;
//   du, dv, dw trial minus standard; u, v, w below the standard's;
//   R = (u^2 + v^2)^4 / (u^4 + v^4)^2, t = 0.22 / (w^2 + v^2 + 20);
//   G11 = 7000 (w^2 t + R + 0.16) / u^2, G22 = G11 u^2 / v^2, G12 = 7000 (0.16 - R + w^2 t) /
//   (u v), G33 = 17700 t, G23 = -0.63 x 17700 t w / v, G13 = G23 v / u;
//   dC = sqrt(G11 du^2 + G22 dv^2 + 2 G12 du dv + G33 dw^2 + 2 G13 du dw + 2 G23 dv dw).
// Slots: ApplyXyzYxyDifference first; then slot 1 = 10 x slot 2 / Ys (100 dY / Ys), slot 2 =
// slot 5 (10000 dx), slot 3 = slot 6 (10000 dy); slots 4-6 keep the missing value, 10000 dx
// and 10000 dy; slot 7 = dC. A negative quadratic form gives NaN in slot 7, a zero u, v or
// Ys infinities: nothing is guarded beyond that.
// XYZ records shorter than three or a result shorter than seven elements give an all-missing
// result.
void ComputeGePqs2Difference(const CValueVector3& standard, const CValueVector3& trial,
                             int illuminant, int observer, CColorVector7& result);

}  // namespace velquor
