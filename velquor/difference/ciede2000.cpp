#include "velquor/difference/ciede2000.h"

#include <cmath>

#include "velquor/colorimetry/coordinate_record.h"
#include "velquor/difference/constants.h"
#include "velquor/difference/delta_e_ab.h"
#include "velquor/frame/numeric.h"

namespace velquor {

namespace {

// C^7 / (C^7 + 25^7), the chroma saturation term shared by G and RC.
double ChromaSaturation(double chroma) {
  const double c7 = std::pow(chroma, 7.0);
  return c7 / (c7 + kDe2000TwentyFiveToSeventh);
}

// Hue angle of (a', b) in degrees, [0, 360); 0 for the origin.
double PrimeHue(double aPrime, double b) {
  if (IsZero(b) && IsZero(aPrime)) return 0.0;
  const double h = RadToDeg(std::atan2(b, aPrime));
  return h < 0.0 ? h + 360.0 : h;
}

double CosDeg(double degrees) {
  return std::cos(DegToRad(degrees));
}

}  // namespace

void ApplyCiede2000(const CValueVector5& standard, const CValueVector5& trial, double kL, double kC,
                    double kH, CColorVector7& result) {
  if (!HasElements(standard, 4) || !HasElements(trial, 4) ||
      !HasElements(result, CColorVector7::kLength)) {
    FillMissing(result, CColorVector7::kLength);
    return;
  }
  const double lS = standard[0], aS = standard[1], bS = standard[2];
  const double lT = trial[0], aT = trial[1], bT = trial[2];

  const double g = 0.5 * (1.0 - std::sqrt(ChromaSaturation((standard[3] + trial[3]) / 2.0)));
  const double aPrimeS = (1.0 + g) * aS;
  const double aPrimeT = (1.0 + g) * aT;
  const double cPrimeS = std::hypot(aPrimeS, bS);
  const double cPrimeT = std::hypot(aPrimeT, bT);
  const double hPrimeS = PrimeHue(aPrimeS, bS);
  const double hPrimeT = PrimeHue(aPrimeT, bT);

  const double meanL = (lS + lT) / 2.0;
  const double meanC = (cPrimeS + cPrimeT) / 2.0;
  const bool neutral = IsZero(cPrimeS * cPrimeT);

  // Mean hue. A neutral sample has h' = 0, so the sum is the other sample's hue. Hue pairs
  // exactly opposite take the plain mean (Sharma et al.: |dh| <= 180); "exactly" carries a
  // tolerance because the rounded radians-to-degrees factor alone moves a true half turn to
  // 180 + 1.2e-11 degrees, which a strict comparison would send to the other branch.
  const double hueSum = hPrimeS + hPrimeT;
  const double hueSpan = std::abs(hPrimeT - hPrimeS);
  double meanH;
  if (neutral) {
    meanH = hueSum;
  } else if (hueSpan < 180.0 || IsEqual(hueSpan, 180.0, kDe2000HalfTurnTolerance)) {
    meanH = hueSum / 2.0;
  } else if (hueSum >= 360.0) {
    meanH = (hueSum - 360.0) / 2.0;
  } else {
    meanH = (hueSum + 360.0) / 2.0;
  }

  const double lOffset2 = (meanL - 50.0) * (meanL - 50.0);
  const double sl = 1.0 + kDe2000SlScale * lOffset2 / std::sqrt(kDe2000SlOffset + lOffset2);
  const double sc = 1.0 + kDe2000Sc * meanC;
  const double t = 1.0 - 0.17 * CosDeg(meanH - 30.0) + 0.24 * CosDeg(2.0 * meanH) +
                   0.32 * CosDeg(3.0 * meanH + 6.0) - 0.2 * CosDeg(4.0 * meanH - 63.0);
  const double sh = 1.0 + kDe2000Sh * meanC * t;

  const double thetaArg = (meanH - kDe2000ThetaCentre) * kDe2000ThetaWidth;
  const double deltaTheta = kDe2000ThetaPeak * std::exp(-(thetaArg * thetaArg));
  const double rc = 2.0 * std::sqrt(ChromaSaturation(meanC));
  const double rt = -std::sin(DegToRad(2.0 * deltaTheta)) * rc;

  // Hue difference brought into [-180, 180] with exact comparisons, so a difference of
  // exactly +-180 keeps its sign. The rounded radians-to-degrees factor puts a true half turn
  // at -+(180 + 1.2e-11), which these comparisons do wrap: dH' then has the sign opposite to
  // exact arithmetic, which changes the total through RT when dC' is not 0. This is the
  // library's behaviour; CIEDE2000 is discontinuous at a half turn in any case (Sharma et al.).
  double dh = 0.0;
  if (!neutral) {
    dh = hPrimeT - hPrimeS;
    if (dh > 180.0) {
      dh -= 360.0;
    } else if (dh < -180.0) {
      dh += 360.0;
    }
  }
  const double dL = lT - lS;
  const double dC = cPrimeT - cPrimeS;
  const double dH = 2.0 * std::sqrt(cPrimeS * cPrimeT) * std::sin(DegToRad(dh / 2.0));

  const double wL = dL / (kL * sl);
  const double wC = dC / (kC * sc);
  const double wH = dH / (kH * sh);
  result[3] = wL;
  result[4] = wC;
  result[5] = wH;
  result[6] = std::sqrt(wL * wL + wC * wC + wH * wH + rt * wC * wH);
}

}  // namespace velquor
