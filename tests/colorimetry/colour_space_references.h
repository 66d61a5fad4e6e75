// Shared fixtures of the colour-space tests: published white points, vector builders, and a
// running maximum that prints what a sweep measured.
#pragma once

#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include "reference_table.h"
#include "velquor/data/value_vectors.h"
#include "velquor/frame/numeric.h"
#include "velquor/frame/options.h"

namespace velquor::testing_support {

struct WhitePoint {
  std::string name;
  double x, y, z;
};

// The published whites of reference/colorimetry_white_points.csv, read once.
inline const std::vector<WhitePoint> kWhites = [] {
  std::vector<WhitePoint> whites;
  for (const auto& row : test::LoadReferenceTable("reference/colorimetry_white_points.csv")) {
    whites.push_back({row.Text("name"), row.Number("X"), row.Number("Y"), row.Number("Z")});
  }
  return whites;
}();

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

// True when every element of a conversion's output is the missing value.
inline bool AllMissing(const CValueArray& v) {
  for (std::size_t i = 0; i < v.GetSize(); ++i) {
    if (!IsMissing(v[i])) return false;
  }
  return true;
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
