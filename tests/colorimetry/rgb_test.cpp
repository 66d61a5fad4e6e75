#include "velquor/colorimetry/rgb.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <tuple>

#include "colour_space_references.h"
#include "velquor/frame/numeric.h"

namespace velquor {
namespace {

using testing_support::kWhites;
using testing_support::Vector3;

using Rgb = std::tuple<std::int32_t, std::int32_t, std::int32_t>;

Rgb ToRgb(const CValueVector3& white, const CValueVector3& xyz) {
  std::int32_t r = -1, g = -1, b = -1;
  XYZToRGB(white, xyz, r, g, b);
  return {r, g, b};
}

TEST(EncodeDisplayChannel, SegmentsAndTheirBoundaries) {
  struct Case {
    const char* what;
    double linear, encoded;
  };
  const Case cases[] = {
      {"negative", -0.2, 0},
      {"zero", 0, 0},
      {"NaN", std::numeric_limits<double>::quiet_NaN(), 0},
      {"just below 0.00304: linear", 0.003039, 12.92 * 0.003039},
      // At the breakpoint the power segment applies; 12.92 x 0.00304 = 0.0392768 would be
      // 2.9e-5 lower.
      {"at 0.00304: power", 0.00304, 1.055 * std::pow(0.00304, 1 / 2.4) - 0.055},
      {"half", 0.5, 1.055 * std::pow(0.5, 1 / 2.4) - 0.055},  // 0.7353569...
      {"one", 1, 1},
      {"above one", 1.7, 1},
  };
  for (const Case& c : cases) {
    EXPECT_NEAR(EncodeDisplayChannel(c.linear), c.encoded, 1e-15) << c.what;
  }
}

TEST(XYZToRGB, ExamplesAndTruncation) {
  const CValueVector3 d65 = Vector3(kWhites[0]);
  // A missing sample shows as neutral grey.
  EXPECT_EQ(ToRgb(d65, Vector3(kMissing, kMissing, kMissing)), Rgb(192, 192, 192));
  CValueVector3 empty;
  empty.RemoveAll();
  EXPECT_EQ(ToRgb(d65, empty), Rgb(192, 192, 192));
  // Half the white is linear 0.5 in each channel: 0.7354 x 255 = 187.5, truncated to 187. The
  // matrix is balanced to the white passed in, so this holds for illuminant A as well.
  for (const auto& w : {kWhites[0], kWhites[2]}) {
    EXPECT_EQ(ToRgb(Vector3(w), Vector3(0.5 * w.x, 0.5 * w.y, 0.5 * w.z)), Rgb(187, 187, 187))
        << w.name;
  }
  // IEC 61966-2-1: the sRGB red primary has XYZ (41.24, 21.26, 1.93) under D65; half of it is
  // linear (0.5, 0, 0) to the 4-decimal rounding of the published matrix.
  EXPECT_EQ(ToRgb(d65, Vector3(0.5 * 41.24, 0.5 * 21.26, 0.5 * 1.93)), Rgb(187, 0, 0));
  // Clipping: black and twice the white.
  EXPECT_EQ(ToRgb(d65, Vector3(0, 0, 0)), Rgb(0, 0, 0));
  EXPECT_EQ(ToRgb(d65, Vector3(2 * 95.047, 200, 2 * 108.883)), Rgb(255, 255, 255));
}

}  // namespace
}  // namespace velquor
