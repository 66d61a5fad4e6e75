#include "velquor/colorimetry/chromaticity.h"

#include <gtest/gtest.h>

#include "colour_space_references.h"
#include "tolerances.h"
#include "velquor/frame/numeric.h"

namespace velquor {
namespace {

using testing_support::Vector3;

TEST(XYZToChromaticity, D65WhitePointFromTheRecordAndFromTheRawTriple) {
  // D65, 2 degrees, XYZ (95.047, 100, 108.883): S = 303.930, so by hand
  // x = 95.047 / 303.93 = 0.31272661468..., y = 100 / 303.93 = 0.32902313032...
  // (CIE 15:2004 tabulates 0.31272, 0.32903 from the 1 nm data).
  double x = 0, y = 0, xn = 0, yn = 0;
  XYZToChromaticity(Vector3(95.047, 100, 108.883), x, y);
  EXPECT_NEAR(x, 0.3127266146810121, test::kExactFormula);
  EXPECT_NEAR(y, 0.3290231303260619, test::kExactFormula);
  const double white[3] = {95.047, 100, 108.883};
  TripleToChromaticity(white, xn, yn);
  EXPECT_EQ(xn, x);
  EXPECT_EQ(yn, y);
}

TEST(XYZToChromaticity, WholeSampleMissingOrZeroSumGivesMissing) {
  CValueVector3 empty;
  empty.RemoveAll();
  for (const CValueVector3& xyz :
       {empty, Vector3(kMissing, kMissing, kMissing), Vector3(1, -1, 0), Vector3(0, 0, 0)}) {
    double x = 0, y = 0;
    XYZToChromaticity(xyz, x, y);
    EXPECT_TRUE(IsMissing(x) && IsMissing(y));
  }
  // Only some elements missing: the sample is used as it stands.
  double x = 0, y = 0;
  XYZToChromaticity(Vector3(kMissing, 30, 70), x, y);
  EXPECT_DOUBLE_EQ(x, kMissing / (100 + kMissing));
  EXPECT_NEAR(y, 30 / (100 + kMissing), test::kNearZero);
}

}  // namespace
}  // namespace velquor
