// The (illuminant, observer) forms of the conversions read the catalogue's white and, for
// Hunter Lab, take the classic formulas for C/2 only.
#include <gtest/gtest.h>

#include "colour_space_references.h"
#include "velquor/colorimetry/hunter_lab.h"
#include "velquor/colorimetry/lab.h"
#include "velquor/colorimetry/lab_batch.h"
#include "velquor/colorimetry/rgb.h"
#include "velquor/colorimetry/weight_table_cache.h"

namespace velquor {

// Each form by pair equals the explicit-white form with GetWhitePoint's white, bit for bit;
// 40 has no table, so its white and every result are missing (display RGB the grey 192).
TEST(ConversionsByIlluminant, SameResultsAsTheWhitePointForms) {
  EXPECT_TRUE(UsesClassicHunterLab(1, 0));
  EXPECT_FALSE(UsesClassicHunterLab(1, 1) || UsesClassicHunterLab(2, 0));
  const CValueVector3 xyz = Vector3(31.5, 27.25, 12.75);
  for (const auto& [illuminant, observer] : {std::pair{5, 1}, {1, 0}, {1, 1}, {40, 0}}) {
    SCOPED_TRACE(testing::Message() << illuminant << "/" << observer);
    const bool classic = illuminant == 1 && observer == 0, missing = illuminant == 40;
    CValueVector3 white, pair3, white3;
    CValueVector5 pair5, white5;
    EXPECT_EQ(GetWhitePoint(illuminant, observer, white), missing ? 0 : 1);
    XYZToLab(illuminant, observer, xyz, pair5);
    XYZToLab(white, xyz, white5);
    double record[5] = {xyz[0], xyz[1], xyz[2], 0, 0};
    ASSERT_EQ(XYZToLabBatch(illuminant, observer, record, 5, record, 5, 1), 1u);
    for (int k = 0; k < 5; ++k) EXPECT_TRUE(pair5[k] == white5[k] && record[k] == white5[k]);
    XYZToHunterLab(illuminant, observer, xyz, pair3);
    classic ? XYZToHunterLabClassic(xyz, white3) : XYZToHunterLab(white, xyz, white3);
    for (int k = 0; k < 3; ++k) EXPECT_EQ(pair3[k], white3[k]);
    HunterLabToXYZ(illuminant, observer, white3, pair3);
    for (int k = 0; k < 3; ++k)
      EXPECT_NEAR(pair3[k], missing ? kMissing : xyz[k], test::kRoundTrip * 30);
    std::int32_t r = 0, g = 0, b = 0;
    XYZToRGB(illuminant, observer, xyz, r, g, b);
    EXPECT_EQ(r == 192 && g == 192 && b == 192, missing);
    EXPECT_EQ(AllMissing(white5) && AllMissing(white3), missing);
  }
}

}  // namespace velquor
