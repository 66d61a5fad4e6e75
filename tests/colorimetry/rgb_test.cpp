#include "velquor/colorimetry/rgb.h"

#include <gtest/gtest.h>

#include "colour_space_references.h"

namespace velquor {

TEST(EncodeDisplayChannel, SegmentsAndTheirBoundaries) {
  // IEC 61966-2-1 encoding with the library's breakpoint 0.00304: at it the power segment
  // applies (12.92 x 0.00304 would be 2.9e-5 lower); NaN and negatives give 0, above 1 gives 1.
  const double power = 1.055 * std::pow(0.00304, 1 / 2.4) - 0.055, nan = std::nan("");
  for (const auto& [linear, encoded] : {std::pair{-0.2, 0.0},
                                        {0.0, 0.0},
                                        {nan, 0.0},
                                        {1.0, 1.0},
                                        {0.003039, 12.92 * 0.003039},
                                        {0.00304, power},
                                        {1.7, 1.0}}) {
    EXPECT_NEAR(EncodeDisplayChannel(linear), encoded, test::kNearZero) << linear;
  }
}

TEST(XYZToRGB, ExamplesAndTruncation) {
  using Rgb = std::tuple<std::int32_t, std::int32_t, std::int32_t>;
  auto toRgb = [](const CValueVector3& white, const CValueVector3& xyz) {
    std::int32_t r = -1, g = -1, b = -1;
    XYZToRGB(white, xyz, r, g, b);
    return Rgb(r, g, b);
  };
  const CValueVector3 d65 = Vector3(kWhites[0]);
  // A missing sample shows as neutral grey.
  EXPECT_EQ(toRgb(d65, Vector3(kMissing, kMissing, kMissing)), Rgb(192, 192, 192));
  // Half the white is linear 0.5 in each channel whatever the white (the matrix is balanced to
  // it): 0.7354 x 255 = 187.5, truncated to 187.
  for (const auto& w : {kWhites[0], kWhites[2]})
    EXPECT_EQ(toRgb(Vector3(w), Vector3(0.5 * w.x, 0.5 * w.y, 0.5 * w.z)), Rgb(187, 187, 187));
  // IEC 61966-2-1: the sRGB red primary has XYZ (41.24, 21.26, 1.93) under D65; half of it is
  // linear (0.5, 0, 0) to the 4-decimal rounding of the published matrix. Then clipping.
  EXPECT_EQ(toRgb(d65, Vector3(0.5 * 41.24, 0.5 * 21.26, 0.5 * 1.93)), Rgb(187, 0, 0));
  EXPECT_EQ(toRgb(d65, Vector3(0, 0, 0)), Rgb(0, 0, 0));
  EXPECT_EQ(toRgb(d65, Vector3(2 * 95.047, 200, 2 * 108.883)), Rgb(255, 255, 255));
}

}  // namespace velquor
