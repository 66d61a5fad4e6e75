// Shared pieces of the index tests: samples, illuminant indices, the white points of the
// library's weighting tables and one comparison with one tolerance.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "velquor/data/value_vectors.h"

namespace velquor::tristimulus_index_testing {

// Illuminant indices of the library's catalogue.
inline constexpr int kA = 0, kC = 1, kD65 = 2, kCWF = 3, kT84 = 4, kD50 = 5, kD55 = 6, kF4 = 16;

// Pure formulas are compared to 1e-9 relative (1e-9 absolute below 1): a wrong constant in the
// fourth significant digit moves every result here by far more.
inline constexpr double kRelTolerance = 1e-9;

inline void ExpectClose(double actual, double expected) {
  const double tolerance = kRelTolerance * std::max(1.0, std::fabs(expected));
  EXPECT_NEAR(actual, expected, tolerance)
      << "error = " << (actual - expected) / tolerance << " x tolerance";
}

inline CValueVector3 Sample(double x, double y, double z) {
  CValueVector3 xyz;
  xyz[0] = x;
  xyz[1] = y;
  xyz[2] = z;
  return xyz;
}

// The two samples the hand calculations use: a bluish paper white and a slightly yellow one.
//   S1 = (86, 90, 108): X + Y + Z = 284, x = 0.3028169014, y = 0.3169014085
//   S2 = (80, 82, 70):  X + Y + Z = 232, x = 0.3448275862, y = 0.3534482759
inline constexpr double kS1[3] = {86.0, 90.0, 108.0};
inline constexpr double kS2[3] = {80.0, 82.0, 70.0};

// White points (Xn, Yn = 100, Zn) of the weighting tables, the ASTM E308 values, which the
// tables carry exactly:
//   C/2 98.074, 118.232   C/10 97.285, 116.145   D65/2 95.047, 108.883
//   D65/10 94.811, 107.304   A/2 109.85, 35.585
//   D65/2:  sum 303.93,  xn = 0.3127266147, yn = 0.3290231303
//   D65/10: sum 302.115, xn = 0.3138242060, yn = 0.3309997849
//   A/2:    sum 245.435, xn = 0.4475726771, yn = 0.4074398517

}  // namespace velquor::tristimulus_index_testing
