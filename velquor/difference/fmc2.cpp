#include "velquor/difference/fmc2.h"

#include <cmath>

#include "velquor/colorimetry/coordinate_record.h"
#include "velquor/difference/constants.h"
#include "velquor/difference/delta_e_ab.h"

namespace velquor {

namespace {

// c[0] + c[1] y + c[2] y^2 + c[3] y^3 + c[4] y^4 by Horner's rule.
double Quartic(const double (&c)[5], double y) {
  return (((c[4] * y + c[3]) * y + c[2]) * y + c[1]) * y + c[0];
}

}  // namespace

void ComputeFmc2Difference(const CValueVector3& standard, const CValueVector3& trial,
                           CColorVector7& result) {
  if (!HasElements(standard, 3) || !HasElements(trial, 3) ||
      !HasElements(result, CColorVector7::kLength)) {
    FillMissing(result, CColorVector7::kLength);
    return;
  }
  const double x = standard[0], y = standard[1], z = standard[2];
  const double dX = trial[0] - x, dY = trial[1] - y, dZ = trial[2] - z;

  const double p = kFmcPX * x + kFmcPY * y + kFmcPZ * z;
  const double q = kFmcQX * x + kFmcQY * y + kFmcQZ * z;
  const double dP = kFmcPX * dX + kFmcPY * dY + kFmcPZ * dZ;
  const double dQ = kFmcQX * dX + kFmcQY * dY + kFmcQZ * dZ;
  const double s = kFmcSZ * z;
  const double dS = kFmcSZ * dZ;

  const double p2 = p * p, q2 = q * q;
  const double pq2 = p2 + q2;
  const double a = std::sqrt(kFmcA * pq2 / (1.0 + kFmcAShape * p2 * q2 / (p2 * p2 + q2 * q2)));
  const double b = std::sqrt(kFmcB * (s * s + kFmcBY * y * y));
  const double k1 = Quartic(kFmcK1, y);
  const double k2 = Quartic(kFmcK2, y);

  const double along = p * dP + q * dQ;  // change along the (P, Q) direction, times |PQ|
  const double rootPq = std::sqrt(pq2);
  const double dL = kFmcLightness * k2 * along / (a * rootPq);
  const double dRg = k1 * (q * dP - p * dQ) / (a * rootPq);
  const double dYb = k1 * (s * along / (b * pq2) - dS / b);
  const double dC = std::sqrt(dRg * dRg + dYb * dYb);

  result[0] = dL;
  result[1] = dRg;
  result[2] = dYb;
  result[3] = kMissing;
  result[4] = dC;
  result[5] = kMissing;
  result[6] = std::sqrt(dL * dL + dC * dC);
}

}  // namespace velquor
