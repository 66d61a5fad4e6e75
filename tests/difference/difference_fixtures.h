// Shared fixtures of the colour-difference tests: sample builders and a one-call wrapper around
// the dispatcher.
#pragma once

#if VELQUOR_HAVE_LCMS2
#include <lcms2.h>
#else
#include <cmath>
#include <numbers>
#endif

#include "velquor/difference/color_difference.h"

namespace velquor::difference_testing {

// A sample whose five coordinates are stored as given (the formulas read the stored C and h,
// so a test can place them on a threshold exactly). Its XYZ is an arbitrary grey, present so
// that the sample does not count as missing.
inline CColorSample RawSample(double l, double a, double b, double c, double h) {
  CColorSample s;
  for (int i = 0; i < 3; ++i) s.xyz[i] = 20.0;
  const double v[5] = {l, a, b, c, h};
  for (int i = 0; i < 5; ++i) s.coordinates[i] = v[i];
  return s;
}

// A CIELAB sample with C*ab and hab (degrees) from LittleCMS's cmsLab2LCh, so that both
// implementations compared below start from bit-identical chroma and hue (without LittleCMS,
// from the same formulas: C = sqrt(a^2 + b^2), h = atan2(b, a) in degrees within [0, 360)).
inline CColorSample LabSample(double l, double a, double b) {
#if VELQUOR_HAVE_LCMS2
  const cmsCIELab lab{l, a, b};
  cmsCIELCh lch;
  cmsLab2LCh(&lch, &lab);
  return RawSample(l, a, b, lch.C, lch.h);
#else
  double h = std::atan2(b, a) * (180.0 / std::numbers::pi);
  if (h < 0) h += 360;
  return RawSample(l, a, b, std::pow(a * a + b * b, 0.5), h);
#endif
}

inline CColorSample XyzSample(double x, double y, double z) {
  CColorSample s = RawSample(50, 0, 0, 0, 0);
  s.xyz[0] = x;
  s.xyz[1] = y;
  s.xyz[2] = z;
  return s;
}

inline CColorVector7 Difference(const CColorSample& standard, const CColorSample& trial, int code,
                                double w0 = 1, double w1 = 1, double w2 = 1, double parameter = 0,
                                int illuminant = 2, int observer = 0) {
  const double weights[3] = {w0, w1, w2};
  CColorVector7 result;
  ComputeColorDifference(standard, trial, code, illuminant, observer, weights, result, parameter);
  return result;
}

}  // namespace velquor::difference_testing
