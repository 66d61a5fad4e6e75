#include "velquor/colorimetry/chromaticity.h"

#include <gtest/gtest.h>

#include "colour_space_references.h"

namespace velquor {

TEST(XYZToChromaticity, D65WhiteAndTheMissingCases) {
  // D65, 2 degrees: x = 95.047 / 303.93, y = 100 / 303.93 by hand (CIE 15:2004 tabulates
  // 0.31272, 0.32903 from the 1 nm data).
  double x = 0, y = 0;
  XYZToChromaticity(Vector3(95.047, 100, 108.883), x, y);
  EXPECT_NEAR(x, 0.3127266146810121, test::kExactFormula);
  EXPECT_NEAR(y, 0.3290231303260619, test::kExactFormula);
  // The whole sample missing, or a zero sum, gives missing; one element missing is used as
  // it stands.
  for (const CValueVector3& xyz :
       {Vector3(kMissing, kMissing, kMissing), Vector3(1, -1, 0), Vector3(0, 0, 0)}) {
    XYZToChromaticity(xyz, x, y);
    EXPECT_TRUE(IsMissing(x) && IsMissing(y));
  }
  XYZToChromaticity(Vector3(kMissing, 30, 70), x, y);
  EXPECT_DOUBLE_EQ(x, kMissing / (100 + kMissing));
}

}  // namespace velquor
