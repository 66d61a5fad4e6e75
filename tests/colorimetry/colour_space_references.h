// Shared fixtures of the colour-space tests: published white points and vector builders.
#pragma once

#include <cmath>
#include <string>
#include <vector>

#include "reference_table.h"
#include "tolerances.h"
#include "velquor/data/value_vectors.h"
#include "velquor/frame/numeric.h"
#include "velquor/frame/options.h"

namespace velquor::testing_support {

// The published whites of reference/colorimetry_white_points.csv, read once.
struct WhitePoint {
  std::string name;
  double x, y, z;
};
inline const std::vector<WhitePoint> kWhites = [] {
  std::vector<WhitePoint> whites;
  for (const auto& row : test::LoadReferenceTable("reference/colorimetry_white_points.csv"))
    whites.push_back({row.Text("name"), row.Number("X"), row.Number("Y"), row.Number("Z")});
  return whites;
}();

inline CValueVector3 Vector3(double a, double b, double c) {
  CValueVector3 v;
  v[0] = a, v[1] = b, v[2] = c;
  return v;
}
inline CValueVector3 Vector3(const WhitePoint& w) {
  return Vector3(w.x, w.y, w.z);
}

// True when every element of a conversion's output is the missing value.
inline bool AllMissing(const CValueArray& v) {
  for (std::size_t i = 0; i < v.GetSize(); ++i)
    if (!IsMissing(v[i])) return false;
  return true;
}

// Sets the hue unit (1 degrees, the default; 0 radians) for one scope, then restores it.
struct ScopedHueUnit {
  explicit ScopedHueUnit(int degrees) : saved(GetHueInDegrees()) { SetHueInDegrees(degrees); }
  ~ScopedHueUnit() { SetHueInDegrees(saved); }
  int saved;
};

}  // namespace velquor::testing_support

namespace velquor {
using namespace testing_support;  // the colour-space tests use the fixtures unqualified
}  // namespace velquor
