// Shared pieces of the index tests: illuminant indices, samples and one comparison against
// hand-calculated reference values.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "tolerances.h"
#include "velquor/data/value_vectors.h"

namespace velquor::tristimulus_index_testing {

// Illuminant indices of the library's catalogue.
inline constexpr int kC = 1, kD65 = 2;

inline void ExpectClose(double actual, double expected) {
  const double tolerance = test::kIndependent * std::max(1.0, std::fabs(expected));
  EXPECT_NEAR(actual, expected, tolerance)
      << "error = " << (actual - expected) / tolerance << " x tolerance";
}

inline CValueVector3 Sample(double x, double y, double z) {
  CValueVector3 xyz;
  xyz[0] = x, xyz[1] = y, xyz[2] = z;
  return xyz;
}
inline CValueVector3 Sample(const double* xyz) { return Sample(xyz[0], xyz[1], xyz[2]); }

// A bluish and a slightly yellow paper white, the samples of the reference tables.
inline constexpr double kS1[3] = {86.0, 90.0, 108.0};
inline constexpr double kS2[3] = {80.0, 82.0, 70.0};

}  // namespace velquor::tristimulus_index_testing
