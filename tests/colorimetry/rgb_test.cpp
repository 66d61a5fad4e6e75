#include "velquor/colorimetry/rgb.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "colour_space_references.h"
#include "velquor/frame/numeric.h"

namespace velquor {
namespace {

using testing_support::kWhites;
using testing_support::Vector3;

struct Rgb {
  std::int32_t r, g, b;
};

Rgb ToRgb(const CValueVector3& white, const CValueVector3& xyz) {
  Rgb out{-1, -1, -1};
  XYZToRGB(white, xyz, out.r, out.g, out.b);
  return out;
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
  EXPECT_EQ(ToRgb(d65, Vector3(kMissing, kMissing, kMissing)).r, 192);
  CValueVector3 empty;
  empty.RemoveAll();
  const Rgb grey = ToRgb(d65, empty);
  EXPECT_EQ(grey.r, 192);
  EXPECT_EQ(grey.g, 192);
  EXPECT_EQ(grey.b, 192);

  // Half the white is linear 0.5 in each channel: 0.7354 x 255 = 187.5, truncated to 187. The
  // matrix is balanced to the white passed in, so this holds for illuminant A as well.
  for (const auto& w : {kWhites[0], kWhites[2]}) {
    const Rgb half = ToRgb(Vector3(w), Vector3(0.5 * w.x, 0.5 * w.y, 0.5 * w.z));
    EXPECT_EQ(half.r, 187) << w.name;
    EXPECT_EQ(half.g, 187) << w.name;
    EXPECT_EQ(half.b, 187) << w.name;
  }

  // IEC 61966-2-1: the sRGB red primary has XYZ (41.24, 21.26, 1.93) under D65; half of it is
  // linear (0.5, 0, 0) to the 4-decimal rounding of the published matrix.
  const Rgb red = ToRgb(d65, Vector3(0.5 * 41.24, 0.5 * 21.26, 0.5 * 1.93));
  EXPECT_EQ(red.r, 187);
  EXPECT_EQ(red.g, 0);
  EXPECT_EQ(red.b, 0);
  // Clipping: black and twice the white.
  const Rgb black = ToRgb(d65, Vector3(0, 0, 0));
  EXPECT_EQ(black.r + black.g + black.b, 0);
  const Rgb bright = ToRgb(d65, Vector3(2 * 95.047, 200, 2 * 108.883));
  EXPECT_EQ(bright.r, 255);
  EXPECT_EQ(bright.g, 255);
  EXPECT_EQ(bright.b, 255);
}

}  // namespace
}  // namespace velquor
