// Shared fixtures of the colour-space tests: published white points, vector builders, and a
// running maximum that prints what a sweep measured.
#pragma once

#include <cmath>
#include <cstdio>
#include <string>

#include "velquor/data/value_vectors.h"
#include "velquor/frame/options.h"

namespace velquor::testing_support {

struct WhitePoint {
  const char* name;
  double x, y, z;
};

// Tristimulus values of the perfect diffuser, Y = 100 (CIE 15:2004 Table T.3 and ASTM E308).
inline constexpr WhitePoint kWhites[] = {
    {"D65/2", 95.047, 100.0, 108.883}, {"D65/10", 94.811, 100.0, 107.304},
    {"A/2", 109.850, 100.0, 35.585},   {"C/2", 98.074, 100.0, 118.232},
    {"D50/2", 96.422, 100.0, 82.521},
};

inline CValueVector3 Vector3(double a, double b, double c) {
  CValueVector3 v;
  v[0] = a;
  v[1] = b;
  v[2] = c;
  return v;
}

inline CValueVector3 Vector3(const WhitePoint& w) {
  return Vector3(w.x, w.y, w.z);
}

// Largest absolute deviation seen in a sweep; Report() prints it for the record.
struct MaxError {
  std::string label;
  double value = 0.0;
  void Add(double deviation) {
    if (std::abs(deviation) > value) value = std::abs(deviation);
  }
  void Report() const { std::printf("[ measured ] %s: %.3e\n", label.c_str(), value); }
};

// Sets the hue unit for one test and restores the previous one afterwards.
class ScopedHueUnit {
 public:
  explicit ScopedHueUnit(int degrees) : saved_(GetHueInDegrees()) { SetHueInDegrees(degrees); }
  ~ScopedHueUnit() { SetHueInDegrees(saved_); }
  ScopedHueUnit(const ScopedHueUnit&) = delete;
  ScopedHueUnit& operator=(const ScopedHueUnit&) = delete;

 private:
  int saved_;
};

}  // namespace velquor::testing_support
