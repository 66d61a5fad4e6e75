#include "velquor/colorimetry/hunter_lab.h"

#include <gtest/gtest.h>

#include "colour_space_references.h"

namespace velquor {

using test::kExactFormula;

// Hunter Associates Laboratory, "Hunter L,a,b Color Scale" (Applications Note, 2008):
// Ka = 175 sqrt(Xn / 98.043), Kb = 70 sqrt(Zn / 118.115); L = 100 sqrt(Y/Yn),
// a = Ka (X/Xn - Y/Yn) / sqrt(Y/Yn), b = Kb (Y/Yn - Z/Zn) / sqrt(Y/Yn). The library's 0.0102 and
// 0.00847 make its Ka high by 1.93e-5 and its Kb by 2.17e-4 relative. Both regimes round-trip.
TEST(HunterLab, GeneralFormAgreesWithPublishedKaKbAndBothRegimesRoundTrip) {
  for (const auto& w : kWhites) {
    const double ka = 175 * std::sqrt(w.x / 98.043), kb = 70 * std::sqrt(w.z / 118.115);
    for (double ry : {0.001, 0.3, 0.9}) {
      for (const auto& [rx, rz] : {std::pair{0.4, 1.6}, {1.0, 0.9}, {1.4, 0.2}}) {
        const double root = std::sqrt(ry), a = ka * (rx - 1) * root, b = kb * (1 - rz) * root;
        const CValueVector3 xyz = Vector3(rx * ry * w.x, ry * w.y, rz * ry * w.z);
        CValueVector3 lab, general, classic;
        XYZToHunterLab(Vector3(w), xyz, lab);
        SCOPED_TRACE(testing::Message() << w.name << " " << rx << " " << ry << " " << rz);
        EXPECT_NEAR(lab[0], 100 * root, kExactFormula);
        EXPECT_NEAR(lab[1], a, 2.0e-5 * std::abs(a) + kExactFormula);
        EXPECT_NEAR(lab[2], b, 2.2e-4 * std::abs(b) + kExactFormula);
        HunterLabToXYZ(Vector3(w), lab, general);
        XYZToHunterLabClassic(xyz, lab);
        HunterLabToXYZClassic(lab, classic);
        for (int c = 0; c < 3; ++c) {
          EXPECT_NEAR(general[c], xyz[c], test::kRoundTrip * xyz[c]);
          EXPECT_NEAR(classic[c], xyz[c], test::kRoundTrip * xyz[c]);
        }
      }
    }
  }
}

TEST(HunterLab, ClassicHandCalculationDarkEdgesAndMissingInputs) {
  // X = Y = Z = 25: L = 10 sqrt(25) = 50; a = 17.5 (1.02 x 25 - 25) / 5 = 1.75;
  // b = 7 (25 - 0.847 x 25) / 5 = 5.355; and back.
  CValueVector3 out;
  XYZToHunterLabClassic(Vector3(25, 25, 25), out);
  EXPECT_NEAR(std::abs(out[0] - 50) + std::abs(out[1] - 1.75) + std::abs(out[2] - 5.355), 0,
              kExactFormula);
  HunterLabToXYZClassic(Vector3(50, 1.75, 5.355), out);
  for (int c = 0; c < 3; ++c) EXPECT_NEAR(out[c], 25, kExactFormula);
  // Inverse: yr = 1e-4 L^2 zero by IsZero (L = 0 and 1e-6) sets X = Z = 0 whatever a and b;
  // L = 2e-6 gives yr = 4e-16, above the tolerance: X = (a sqrt(yr) / Ka + yr) Xn.
  const CValueVector3 white = Vector3(kWhites[1]);
  for (double l : {0.0, 1e-6}) {
    HunterLabToXYZ(white, Vector3(l, 25, -30), out);
    EXPECT_EQ(out[0] + std::abs(out[2]), 0.0) << l;
  }
  HunterLabToXYZ(white, Vector3(2e-6, 25, 0), out);
  EXPECT_NEAR(out[0], (25 * 2e-8 / (175 * std::sqrt(0.0102 * 94.811)) + 4e-16) * 94.811,
              test::kIndependent * std::abs(out[0]));
  // Forward: a and b divide by sqrt(Y) unguarded: Y = 0 gives L = 0, a = +inf, b = -inf.
  XYZToHunterLab(white, Vector3(1, 0, 1), out);
  EXPECT_TRUE(out[0] == 0.0 && out[1] == INFINITY && out[2] == -INFINITY);
  for (const CValueVector3& v : {Vector3(kMissing, 20, 20), Vector3(20, 20, kMissing)}) {
    CValueVector3 o1, o2, o3, o4;
    XYZToHunterLab(white, v, o1), XYZToHunterLabClassic(v, o2);
    HunterLabToXYZ(white, v, o3), HunterLabToXYZClassic(v, o4);
    EXPECT_TRUE(AllMissing(o1) && AllMissing(o2) && AllMissing(o3) && AllMissing(o4)) << v[0];
  }
}

}  // namespace velquor
