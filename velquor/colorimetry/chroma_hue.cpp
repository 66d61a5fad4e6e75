#include "velquor/colorimetry/chroma_hue.h"

#include <cmath>

#include "velquor/colorimetry/constants.h"
#include "velquor/colorimetry/coordinate_record.h"
#include "velquor/frame/numeric.h"
#include "velquor/frame/options.h"

namespace velquor {

void ComputeChromaHue(double a, double b, double& chroma, double& hue) {
  if (IsMissing(a) || IsMissing(b)) {
    chroma = kMissing;
    hue = kMissing;
    return;
  }
  chroma = std::sqrt(a * a + b * b);

  double h;
  const bool aZero = IsZero(a);
  const bool bZero = IsZero(b);
  if (aZero && bZero) {
    h = 0.0;
  } else if (aZero) {
    h = b < 0.0 ? kThreeQuarterTurn : kQuarterTurn;
  } else if (bZero) {
    h = a < 0.0 ? kHalfTurn : 0.0;
  } else {
    h = std::atan2(b, a);
    if (h < 0.0) h += kTwoPi;
  }

  h = HueFromRadians(h);
  if (GetHueInDegrees() != 0 && 360.0 - h < kHueWrapDegrees) h = 0.0;
  hue = h;
}

void ComputeChromaHue(CValueVector5& coordinates) {
  const bool shortRecord = coordinates.GetSize() < 3;
  EnsureSize(coordinates, CValueVector5::kLength);
  if (shortRecord) {
    coordinates[3] = kMissing;
    coordinates[4] = kMissing;
    return;
  }
  ComputeChromaHue(coordinates[1], coordinates[2], coordinates[3], coordinates[4]);
}

}  // namespace velquor
