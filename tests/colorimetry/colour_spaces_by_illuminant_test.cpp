// The (illuminant, observer) forms of the conversions: they must read the catalogue's white
// and, for Hunter Lab, pick the regime of the pair.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <tuple>

#include "colour_space_references.h"
#include "velquor/colorimetry/hunter_lab.h"
#include "velquor/colorimetry/lab.h"
#include "velquor/colorimetry/lab_batch.h"
#include "velquor/colorimetry/luv.h"
#include "velquor/colorimetry/rgb.h"
#include "velquor/colorimetry/weight_table_cache.h"
#include "velquor/frame/numeric.h"

namespace velquor {
namespace {

using testing_support::AllMissing;
using testing_support::Vector3;

CValueVector3 White(int illuminant, int observer) {
  CValueVector3 white;
  EXPECT_EQ(GetWhitePoint(illuminant, observer, white), 1);
  return white;
}

TEST(ConversionsByIlluminant, PerfectDiffuserIsTheOriginOfEverySpace) {
  // XYZ equal to the pair's own white: L* = 100, a* = b* = 0 in CIELAB and CIELUV, L = 100,
  // a = b = 0 in the white point Hunter form, and full-scale display white.
  for (int illuminant = 0; illuminant < 17; ++illuminant) {
    for (int observer = 0; observer < 2; ++observer) {
      SCOPED_TRACE(testing::Message() << "illuminant " << illuminant << " observer " << observer);
      const CValueVector3 white = White(illuminant, observer);
      CValueVector5 lab, luv;
      XYZToLab(illuminant, observer, white, lab);
      EXPECT_NEAR(std::abs(lab[0] - 100) + std::abs(lab[1]) + std::abs(lab[2]), 0, 1e-12);
      XYZToLuv(illuminant, observer, white, luv);
      EXPECT_NEAR(luv[0], 100, 1e-12);
      EXPECT_NEAR(luv[3], 0, 1e-12);
      if (!UsesClassicHunterLab(illuminant, observer)) {
        CValueVector3 hunter;
        XYZToHunterLab(illuminant, observer, white, hunter);
        EXPECT_NEAR(std::abs(hunter[0] - 100) + std::abs(hunter[1]) + std::abs(hunter[2]), 0,
                    1e-12);
      }
      const CValueVector3 half = Vector3(white[0] / 2, white[1] / 2, white[2] / 2);
      std::int32_t r = 0, g = 0, b = 0;
      XYZToRGB(illuminant, observer, half, r, g, b);
      EXPECT_EQ(std::tuple(r, g, b), std::tuple(187, 187, 187));
    }
  }
}

TEST(ConversionsByIlluminant, SameResultsAsTheWhitePointForms) {
  const CValueVector3 xyz = Vector3(31.5, 27.25, 12.75);
  const CValueVector3 white = White(5, 1);  // D50, 10 degrees
  CValueVector5 byPair, explicitForm;
  XYZToLab(5, 1, xyz, byPair);
  XYZToLab(white, xyz, explicitForm);
  EXPECT_EQ(std::memcmp(byPair.GetData(), explicitForm.GetData(), 5 * sizeof(double)), 0);
  double records[5] = {31.5, 27.25, 12.75, 0, 0};
  ASSERT_EQ(XYZToLabBatch(5, 1, records, 5, records, 5, 1), 1u);
  EXPECT_EQ(std::memcmp(records, explicitForm.GetData(), 5 * sizeof(double)), 0);
  CValueVector3 back;
  LabToXYZ(5, 1, byPair[0], byPair[1], byPair[2], back);
  for (int c = 0; c < 3; ++c) EXPECT_NEAR(back[c], xyz[c], 1e-12);
  LuvToXYZ(5, 1, 40, 20, -10, back);
  XYZToLuv(5, 1, back, byPair);
  EXPECT_NEAR(byPair[1], 20, 1e-12);
  CValueVector3 d1, d2;
  LabDifferential(5, 1, xyz, 0.1, 0.2, 0.3, d1);
  LabDifferential(white, xyz, 0.1, 0.2, 0.3, d2);
  for (int c = 0; c < 3; ++c) EXPECT_EQ(d1[c], d2[c]);
}

TEST(ConversionsByIlluminant, HunterRegimeFollowsThePair) {
  // C/2 takes the classic formulas; C/10 the white point form. Both give the same result as the
  // explicit functions, and the two regimes differ for the same sample.
  const CValueVector3 xyz = Vector3(40, 30, 20);
  CValueVector3 byPair, explicitForm;
  XYZToHunterLab(1, 0, xyz, byPair);
  XYZToHunterLabClassic(xyz, explicitForm);
  for (int c = 0; c < 3; ++c) EXPECT_EQ(byPair[c], explicitForm[c]);
  HunterLabToXYZ(1, 0, byPair, explicitForm);
  for (int c = 0; c < 3; ++c) EXPECT_NEAR(explicitForm[c], xyz[c], 1e-12);

  XYZToHunterLab(1, 1, xyz, byPair);
  XYZToHunterLab(White(1, 1), xyz, explicitForm);
  for (int c = 0; c < 3; ++c) EXPECT_EQ(byPair[c], explicitForm[c]);
  CValueVector3 classic;
  XYZToHunterLabClassic(xyz, classic);
  EXPECT_GT(std::abs(byPair[1] - classic[1]), 0.01);
  HunterLabToXYZ(1, 1, byPair, explicitForm);
  for (int c = 0; c < 3; ++c) EXPECT_NEAR(explicitForm[c], xyz[c], 1e-12);
}

TEST(ConversionsByIlluminant, IlluminantWithoutTableGivesMissingOutputs) {
  const CValueVector3 xyz = Vector3(40, 30, 20);
  CValueVector5 five;
  CValueVector3 three;
  XYZToLab(40, 0, xyz, five);
  EXPECT_TRUE(AllMissing(five));
  XYZToLuv(40, 0, xyz, five);
  EXPECT_TRUE(AllMissing(five));
  LabToXYZ(40, 0, 50, 0, 0, three);
  EXPECT_TRUE(AllMissing(three));
  XYZToHunterLab(40, 0, xyz, three);
  EXPECT_TRUE(AllMissing(three));
  std::int32_t r = 0, g = 0, b = 0;
  XYZToRGB(40, 0, xyz, r, g, b);
  EXPECT_EQ(r, 192);
  double records[5] = {40, 30, 20, 0, 0};
  ASSERT_EQ(XYZToLabBatch(40, 0, records, 5, records, 5, 1), 1u);
  for (double v : records) EXPECT_TRUE(IsMissing(v));
}

}  // namespace
}  // namespace velquor
