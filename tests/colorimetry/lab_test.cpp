#include "velquor/colorimetry/lab.h"

#include <gtest/gtest.h>
#if VELQUOR_HAVE_LCMS2
#include <lcms2.h>
#endif

#include <random>
#include <vector>

#include "colour_space_references.h"
#include "velquor/colorimetry/hunter_lab.h"
#include "velquor/colorimetry/coordinate_batch.h"
#include "velquor/colorimetry/weight_table_cache.h"

namespace velquor {

TEST(CielabConversions, BreakpointsFromBothSidesAndMissingInputs) {
  // White (1, 1, 1): linear L* = 116 (7.787 t + 16/116) - 16 = 903.292 t up to and including
  // 0.008856, 116 t^(1/3) - 16 above (4e-5 apart there).
  for (const auto& [t, expectedL] :
       {std::pair{0.008856, 903.292 * 0.008856}, {0.008857, 116 * std::cbrt(0.008857) - 16}}) {
    CValueVector5 lab;
    XYZToLab(Vector3(1, 1, 1), Vector3(t, t, t), lab);
    EXPECT_NEAR(lab[0], expectedL, 1e-11) << t;
  }
  // The inverse switches at f = 6/29, which L* = 8 reaches exactly: linear there with the
  // library's six-digit offset 0.137931, the cube just above (7e-6 relative apart).
  for (const auto& [l, expectedY] : {std::pair{8.0, (6.0 / 29.0 - 0.137931) * 0.1284191601386927},
                                     {8.0 + 1e-9, std::pow((8.0 + 1e-9 + 16) / 116, 3)}}) {
    CValueVector3 xyz;
    LabToXYZ(Vector3(1, 1, 1), l, 0, 0, xyz);
    EXPECT_NEAR(xyz[1], expectedY, 1e-16) << l;
  }
  for (const auto& [x, y, z] :
       {std::tuple{kMissing, 50.0, 50.0}, {50.0, kMissing, 50.0}, {50.0, 50.0, kMissing}}) {
    CValueVector5 lab;
    CValueVector3 d, xyz;
    XYZToLab(Vector3(kWhites[0]), Vector3(x, y, z), lab);
    LabDifferential(Vector3(kWhites[0]), Vector3(x, y, z), 1, 1, 1, d);
    LabToXYZ(Vector3(kWhites[0]), x, y, z, xyz);
    EXPECT_TRUE(AllMissing(lab) && AllMissing(d) && AllMissing(xyz)) << x << y;
  }
}

#if VELQUOR_HAVE_LCMS2  // LittleCMS is not in the Windows cross build
// LittleCMS (exact CIE 15 fractions, Y = 1 scale) as the peer for L*a*b* and LCh. Where a ratio
// is below the breakpoint the library's slope 7.787 against 841/108 lowers f by up to
// kF = 3.3e-7 (L* by 116 kF, a* by 500 kF, b* by 200 kF); a degree hue within 0.005 of 360
// is reported as 0. LabToXYZ returns within 1e-8 of the white (its linear branch is off CIE's
// by (16/116 - 0.137931) / 7.787 = 4.4e-9).
TEST(XYZToLab, AgreesWithLittleCmsAndRoundTrips) {
  constexpr double kF = (841.0 / 108.0 - 7.787) * 0.008856;
  std::mt19937_64 rng(20240611);
  auto uniform = [&rng](double hi) { return static_cast<double>(rng() >> 11) * 0x1p-53 * hi; };
  for (const auto& w : kWhites) {
    const cmsCIEXYZ cmsWhite{w.x / 100, w.y / 100, w.z / 100};
    for (int i = 0; i < 400; ++i) {
      const double range = i % 4 == 0 ? 0.012 : (i % 4 == 1 ? 0.03 : 1.05);
      const double t[3] = {uniform(range), uniform(range), uniform(range)};
      const CValueVector3 xyz = Vector3(t[0] * w.x, t[1] * w.y, t[2] * w.z);
      SCOPED_TRACE(testing::Message() << w.name << " t " << t[0] << " " << t[1] << " " << t[2]);
      CValueVector5 lab;
      CValueVector3 back;
      XYZToLab(Vector3(w), xyz, lab);
      LabToXYZ(Vector3(w), lab[0], lab[1], lab[2], back);
      const cmsCIEXYZ cmsXyz{xyz[0] / 100, xyz[1] / 100, xyz[2] / 100};
      cmsCIELab ref;
      cmsCIELCh lch;
      cmsXYZ2Lab(&cmsWhite, &ref, &cmsXyz);
      const cmsCIELab ours{lab[0], lab[1], lab[2]};
      cmsLab2LCh(&lch, &ours);
      const double k = t[0] > 0.0089 && t[1] > 0.0089 && t[2] > 0.0089 ? 0 : kF;
      EXPECT_NEAR(lab[0], ref.L, 116 * k + test::kIndependent);
      EXPECT_NEAR(lab[1], ref.a, 500 * k + test::kIndependent);
      EXPECT_NEAR(lab[2], ref.b, 200 * k + test::kIndependent);
      EXPECT_NEAR(lab[3], lch.C, test::kExactFormula * (1 + lch.C));
      EXPECT_NEAR(lab[4], 360 - lch.h < 0.005 ? 0.0 : lch.h, 1e-10);
      for (int c = 0; c < 3; ++c) EXPECT_NEAR(back[c], xyz[c], 1e-8 * w.x) << c;
    }
  }
}
#endif

TEST(LabDifferential, SlopeOfEachBranchAndComponentWiring) {
  // White (1, 2, 4), XYZ = t x white: df = slope x d / Xn per component, dL* = 116 dfY,
  // da* = 500 (dfX - dfY), db* = 200 (dfY - dfZ). The slope is 7.787 at the breakpoint and
  // t^(-2/3) / 3 above (7.7867 at 0.008857). A step of 1e-5 is a number, not missing.
  for (const auto& [t, slope, step] : {std::tuple{0.008856, 7.787, 0.01},
                                       {0.008857, 1 / (3 * std::cbrt(0.008857 * 0.008857)), 0.01},
                                       {0.125, 1 / (3 * 0.25), 1e-5}}) {
    const double fx = slope * 3 * step, fy = slope * step / 2, fz = slope * -2 * step / 4;
    const double expected[3] = {116 * fy, 500 * (fx - fy), 200 * (fy - fz)};
    CValueVector3 d;
    LabDifferential(Vector3(1, 2, 4), Vector3(t, 2 * t, 4 * t), 3 * step, step, -2 * step, d);
    for (int k = 0; k < 3; ++k)
      EXPECT_NEAR(d[k], expected[k], test::kExactFormula * (1 + std::abs(expected[k]))) << t << k;
  }
}

// The (illuminant, observer) forms read the catalogue's white and, for Hunter Lab, take the
// classic formulas for C/2 only. Each equals the explicit-white form with GetWhitePoint's white,
// bit for bit; 40 has no table, so its white and every result are missing.
TEST(ConversionsByIlluminant, SameResultsAsTheWhitePointForms) {
  const CValueVector3 xyz = Vector3(31.5, 27.25, 12.75);
  for (const auto& [illuminant, observer] : {std::pair{5, 1}, {1, 0}, {1, 1}, {40, 0}}) {
    SCOPED_TRACE(testing::Message() << illuminant << "/" << observer);
    const bool classic = UsesClassicHunterLab(illuminant, observer), missing = illuminant == 40;
    EXPECT_EQ(classic, illuminant == 1 && observer == 0);
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
    EXPECT_EQ(AllMissing(white5) && AllMissing(white3), missing);
  }
}

}  // namespace velquor
