#include "velquor/colorimetry/din99.h"

#include <cmath>

#include "velquor/colorimetry/constants.h"
#include "velquor/colorimetry/coordinate_record.h"
#include "velquor/frame/numeric.h"
#include "velquor/frame/options.h"

namespace velquor {

void LabToDIN99(const double lab[3], double kCH, double kE, double din99[5]) {
  const double lStar = lab[0], aStar = lab[1], bStar = lab[2];
  const double lightnessArgument = 1.0 + kDin99LightnessFactor * lStar;
  if (IsMissing(lStar) || IsMissing(aStar) || IsMissing(bStar) || IsMissing(kCH) || IsMissing(kE) ||
      IsZero(kCH) || IsZero(kE) || !(lightnessArgument > 0.0)) {
    for (int i = 0; i < 5; ++i) din99[i] = kMissing;
    return;
  }
  const double cos16 = std::cos(kDin99Angle);
  const double sin16 = std::sin(kDin99Angle);
  const double e = cos16 * aStar + sin16 * bStar;
  const double f = kDin99BScale * (cos16 * bStar - sin16 * aStar);
  double h;
  if (e == 0.0) {
    h = f > 0.0 ? kQuarterTurn : (f < 0.0 ? kDin99ThreeQuarterTurn : 0.0);
  } else {
    h = std::atan2(f, e);
    if (h < 0.0) h += kTwoPi;
  }
  const double g = std::sqrt(e * e + f * f);
  const double c99 = std::log(1.0 + kDin99ChromaFactor * g) / (kDin99ChromaFactor * kCH * kE);
  din99[0] = kDin99LightnessScale * std::log(lightnessArgument) / kE;
  din99[1] = c99 * std::cos(h);
  din99[2] = c99 * std::sin(h);
  din99[3] = c99;
  din99[4] = HueFromRadians(h);
}

void LabToDIN99(double lStar, double aStar, double bStar, double kCH, double kE,
                CValueVector5& din99) {
  EnsureSize(din99, CValueVector5::kLength);
  const double lab[3] = {lStar, aStar, bStar};
  LabToDIN99(lab, kCH, kE, din99.GetData());
}

}  // namespace velquor
