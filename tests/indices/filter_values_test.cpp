// Tristimulus filter values Rz = 100 Z / Zn and Rx = (100 X / Xn - 0.202 Rz) / 0.798 against
// hand calculations (1 / 0.798 is used as 1.2531328320802004).
#include "velquor/indices/filter_values.h"

#include <gtest/gtest.h>

#include "tristimulus_index_test_support.h"
#include "velquor/colorimetry/weight_table_cache.h"
#include "velquor/frame/numeric.h"

namespace velquor {
namespace {

using namespace tristimulus_index_testing;

TEST(FilterValues, HandCalculationsPerfectWhitesAndMissingTriples) {
  constexpr double kNoBlue[3] = {50.0, 40.0, 0.0};
  const struct { int illuminant, observer; const double* sample; double rz, rx; } cases[] = {
      // C/2 S1: Rz = 10800 / 118.232; Rx = (8600 / 98.074 - 0.202 Rz) x 1.2531328
      {kC, 0, kS1, 91.345828540496651, 86.763196262360231},
      // D65/10 S2: Rz = 7000 / 107.304 = 65.2352196; Rx = (84.3783949 - 13.1775144) x 1.2531328
      {kD65, 1, kS2, 65.235219563110415, 89.224161103050723},
      // Z = 0 under C/2: Rz = 0, Rx = 5000 / 98.074 x 1.2531328
      {kC, 0, kNoBlue, 0.0, 63.887107290423578}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.sample[0]);
    ExpectClose(FilterValueRz(c.illuminant, c.observer, Sample(c.sample)), c.rz);
    ExpectClose(FilterValueRx(c.illuminant, c.observer, Sample(c.sample)), c.rx);
  }
  CValueVector3 empty;
  empty.SetSize(0);
  for (const CValueVector3& xyz : {Sample(kMissing, kMissing, kMissing), empty}) {
    EXPECT_EQ(FilterValueRz(kD65, 1, xyz), kMissing);
    EXPECT_EQ(FilterValueRx(kD65, 1, xyz), kMissing);
  }
  // Only the whole triple counts: a missing Y alone leaves Rz = 100 x 108 / 118.232.
  ExpectClose(FilterValueRz(kC, 0, Sample(86.0, kMissing, 108.0)), 91.345828540496651);
  // The perfect white of every pair: Rz = 100 and Rx = (100 - 20.2) / 0.798 = 100.
  for (int illuminant = 0; illuminant < 17; ++illuminant) {
    for (int observer : {0, 1}) {
      CValueVector3 white;
      ASSERT_EQ(GetWhitePoint(illuminant, observer, white), 1);
      ExpectClose(FilterValueRz(illuminant, observer, white), 100.0);
      ExpectClose(FilterValueRx(illuminant, observer, white), 100.0);
    }
  }
}

}  // namespace
}  // namespace velquor
