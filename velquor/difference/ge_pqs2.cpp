#include "velquor/difference/ge_pqs2.h"

#include <cmath>

#include "velquor/colorimetry/coordinate_record.h"
#include "velquor/colorimetry/weight_table_cache.h"
#include "velquor/difference/constants.h"
#include "velquor/difference/delta_e_ab.h"
#include "velquor/difference/xyz_yxy.h"

namespace velquor {

namespace {

struct Uvw {
  double u, v, w;
};

Uvw ToUvw(const CValueVector3& xyz, double k) {
  const double x = xyz[0], y = xyz[1], z = xyz[2];
  return {k * (kGeUX * x + kGeUY * y + kGeUZ * z), k * (kGeVY * y + kGeVZ * z + kGeVX * x),
          kGeWZ * k * z};
}

}  // namespace

void ComputeGePqs2Difference(const CValueVector3& standard, const CValueVector3& trial,
                             int illuminant, int observer, CColorVector7& result) {
  if (!HasElements(standard, 3) || !HasElements(trial, 3) ||
      !HasElements(result, CColorVector7::kLength)) {
    FillMissing(result, CColorVector7::kLength);
    return;
  }
  // The white point of the pair the tristimulus values were computed with; a pair without a
  // table was computed with D65, so its white is used (the fallback of EnsureWeightTable).
  int whiteIlluminant = illuminant;
  EnsureWeightTable(whiteIlluminant, observer);
  const double* table = GetWeightTable(whiteIlluminant, observer);
  if (table == nullptr) {
    FillMissing(result, CColorVector7::kLength);
    return;
  }
  const double k = table[kWeightTableWhitePoint] / kGeWhiteX;

  const Uvw s = ToUvw(standard, k);
  const Uvw t = ToUvw(trial, k);
  const double du = t.u - s.u, dv = t.v - s.v, dw = t.w - s.w;
  const double u = s.u, v = s.v, w = s.w;

  const double u2 = u * u, v2 = v * v, w2 = w * w;
  const double uv2 = u2 + v2;
  const double uv4 = u2 * u2 + v2 * v2;
  const double r = (uv2 * uv2 * uv2 * uv2) / (uv4 * uv4);
  const double tt = kGeT / (w2 + v2 + kGeTOffset);

  const double g11 = kGeChromatic * (w2 * tt + r + kGeChromaticOffset) / u2;
  const double g22 = g11 * u2 / v2;
  const double g12 = kGeChromatic * (kGeChromaticOffset - r + w2 * tt) / (u * v);
  const double g33 = kGeLightness * tt;
  const double g23 = kGeCross * kGeLightness * tt * w / v;
  const double g13 = g23 * v / u;
  const double dC = std::sqrt(g11 * du * du + g22 * dv * dv + 2.0 * g12 * du * dv + g33 * dw * dw +
                              2.0 * g13 * du * dw + 2.0 * g23 * dv * dw);

  ApplyXyzYxyDifference(standard, trial, result);
  result[0] = kXyzScale * result[1] / standard[1];
  result[1] = result[4];
  result[2] = result[5];
  result[6] = dC;
}

}  // namespace velquor
