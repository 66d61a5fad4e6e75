#include "velquor/colorimetry/lab.h"

#include <gtest/gtest.h>
#include <lcms2.h>

#include <cmath>
#include <random>
#include <tuple>
#include <vector>

#include "colour_space_references.h"
#include "tolerances.h"
#include "velquor/frame/numeric.h"

namespace velquor {
namespace {

using testing_support::AllMissing;
using testing_support::kWhites;
using testing_support::ScopedHueUnit;
using testing_support::Vector3;

// ---------------------------------------------------------------- CIE 15:2004 with exact fractions

constexpr double kCieEpsilon = 216.0 / 24389.0;
constexpr double kCieKappa = 24389.0 / 27.0;

double CieF(double t) {
  return t > kCieEpsilon ? std::cbrt(t) : (kCieKappa * t + 16.0) / 116.0;
}
double CieFInverse(double f) {
  return f > 6.0 / 29.0 ? f * f * f : (116.0 * f - 16.0) / kCieKappa;
}

// What the library's rounded constants alone explain. For 0 <= t <= 0.008856 its f uses slope
// 7.787 instead of 841/108, so it lies below CIE's by at most (841/108 - 7.787) x 0.008856
// = 3.28e-7; between 0.008856 and 216/24389 CIE's line is tangent to the cube root and the two
// differ by under 1e-8 x 1e-3. Hence |dL*| <= 116 kF, |da*| <= 500 kF, |db*| <= 200 kF.
constexpr double kF = (841.0 / 108.0 - 7.787) * 0.008856;
constexpr double kSlack = 1e-11;  // double rounding in either computation

// Reflectance-like samples: a fraction of the white per component, some of them dark enough
// for the linear branch (t below 0.0089) in one or more components.
std::vector<CValueVector3> Samples(const testing_support::WhitePoint& w, int count) {
  std::mt19937_64 rng(20240611);
  auto uniform = [&rng](double hi) { return static_cast<double>(rng() >> 11) * 0x1p-53 * hi; };
  std::vector<CValueVector3> out;
  for (int i = 0; i < count; ++i) {
    const double range = i % 4 == 0 ? 0.012 : (i % 4 == 1 ? 0.03 : 1.05);
    out.push_back(Vector3(uniform(range) * w.x, uniform(range) * w.y, uniform(range) * w.z));
  }
  return out;
}

// ---------------------------------------------------------------- branch points

struct LabBranchCase {
  const char* what;
  double t;          // X/Xn = Y/Yn = Z/Zn
  double expectedL;  // hand calculation on the branch named
};

// White (1, 1, 1) puts t exactly on the stored double. Linear branch:
// L* = 116 (7.787 t + 16/116) - 16 = 903.292 t; cube branch: 116 t^(1/3) - 16.
// The two differ by 4e-5 at the breakpoint, so 1e-11 tells them apart.
const LabBranchCase kLabBranches[] = {
    {"below breakpoint, linear", 0.008855, 903.292 * 0.008855},
    {"at breakpoint 0.008856, linear", 0.008856, 903.292 * 0.008856},  // 7.999553952
    {"above breakpoint, cube root", 0.008857, 116 * std::cbrt(0.008857) - 16},
    {"black", 0.0, 0.0},
};

TEST(XYZToLab, BreakpointTakesTheLinearBranchFromBelowAndTheCubeRootAbove) {
  const CValueVector3 white = Vector3(1, 1, 1);
  for (const LabBranchCase& c : kLabBranches) {
    SCOPED_TRACE(c.what);
    CValueVector5 lab;
    XYZToLab(white, Vector3(c.t, c.t, c.t), lab);
    EXPECT_NEAR(lab[0], c.expectedL, 1e-11);
    EXPECT_NEAR(lab[1], 0, test::kNearZero);
    EXPECT_NEAR(lab[2], 0, test::kNearZero);
  }
}

TEST(XYZToLab, EachComponentChoosesItsOwnBranch) {
  ScopedHueUnit degrees(1);
  // X on the linear branch at the breakpoint, Y and Z = 1/8 on the cube branch (f = 0.5):
  // a* = 500 (7.787 x 0.008856 + 16/116 - 0.5), b* = 0, hue 180 degrees.
  CValueVector5 lab;
  XYZToLab(Vector3(1, 1, 1), Vector3(0.008856, 0.125, 0.125), lab);
  const double a = 500 * (0.068961672 + 16.0 / 116.0 - 0.5);
  EXPECT_NEAR(lab[0], 116 * 0.5 - 16, test::kExactFormula);
  EXPECT_NEAR(lab[1], a, 1e-10);
  EXPECT_NEAR(lab[2], 0, test::kNearZero);
  EXPECT_NEAR(lab[3], -a, 1e-10);
  EXPECT_NEAR(lab[4], 180, 1e-11);
}

TEST(LabToXYZ, InverseBreakpointAtSixTwentyNinths) {
  // (8 + 16) x 0.008620689655172414 is exactly the double 6/29: the linear branch, with the
  // library's six-digit offset: t = (6/29 - 0.137931) x 0.1284191601386927. Just above,
  // t = f^3; the two branches differ by 7e-6 relative here.
  const CValueVector3 white = Vector3(1, 1, 1);
  struct Case {
    double lStar, expectedY;
  };
  const double sixTwentyNinths = 6.0 / 29.0;
  for (const Case c : {Case{8.0, (sixTwentyNinths - 0.137931) * 0.1284191601386927},
                       Case{8.0 - 1e-9, ((8.0 - 1e-9 + 16) / 116 - 0.137931) * 0.1284191601386927},
                       Case{8.0 + 1e-9, std::pow((8.0 + 1e-9 + 16) / 116, 3)}}) {
    SCOPED_TRACE(c.lStar);
    CValueVector3 xyz;
    LabToXYZ(white, c.lStar, 0, 0, xyz);
    EXPECT_NEAR(xyz[1], c.expectedY, 1e-16);
    EXPECT_DOUBLE_EQ(xyz[0], xyz[1]);
    EXPECT_DOUBLE_EQ(xyz[2], xyz[1]);
  }
}

// ---------------------------------------------------------------- independent references

// LittleCMS's cmsXYZ2Lab uses the exact CIE fractions too (on the Y = 1 scale), so it must agree
// within the same bounds; cmsLab2LCh applied to our own a*, b* checks the polar step, where only
// the rounded radians-to-degrees factor differs (1e-11 at most), except the wrap: a hue within
// 0.005 of 360 degrees is reported by the library as 0.
TEST(XYZToLab, AgreesWithExactFractionCielabAndLittleCmsWithinTheRoundedConstants) {
  ScopedHueUnit degrees(1);
  for (const auto& w : kWhites) {
    const CValueVector3 white = Vector3(w);
    const cmsCIEXYZ cmsWhite{w.x / 100, w.y / 100, w.z / 100};
    for (const CValueVector3& xyz : Samples(w, 400)) {
      const double fx = CieF(xyz[0] / w.x), fy = CieF(xyz[1] / w.y), fz = CieF(xyz[2] / w.z);
      const double refL = 116 * fy - 16, refA = 500 * (fx - fy), refB = 200 * (fy - fz);
      CValueVector5 lab;
      XYZToLab(white, xyz, lab);
      SCOPED_TRACE(testing::Message()
                   << w.name << " XYZ " << xyz[0] << " " << xyz[1] << " " << xyz[2]);
      EXPECT_NEAR(lab[0], refL, 116 * kF + kSlack);
      EXPECT_NEAR(lab[1], refA, 500 * kF + kSlack);
      EXPECT_NEAR(lab[2], refB, 200 * kF + kSlack);
      // Above both breakpoints the formulas coincide: no difference beyond rounding.
      if (xyz[0] / w.x > 0.0089 && xyz[1] / w.y > 0.0089 && xyz[2] / w.z > 0.0089) {
        EXPECT_NEAR(lab[0], refL, kSlack);
        EXPECT_NEAR(lab[1], refA, kSlack);
        EXPECT_NEAR(lab[2], refB, kSlack);
      }
      const cmsCIEXYZ cmsXyz{xyz[0] / 100, xyz[1] / 100, xyz[2] / 100};
      cmsCIELab ref;
      cmsXYZ2Lab(&cmsWhite, &ref, &cmsXyz);
      EXPECT_NEAR(lab[0], ref.L, 116 * kF + test::kIndependent);
      EXPECT_NEAR(lab[1], ref.a, 500 * kF + test::kIndependent);
      EXPECT_NEAR(lab[2], ref.b, 200 * kF + test::kIndependent);
      const cmsCIELab ours{lab[0], lab[1], lab[2]};
      cmsCIELCh lch;
      cmsLab2LCh(&lch, &ours);
      EXPECT_NEAR(lab[3], lch.C, test::kExactFormula * (1 + lch.C));
      EXPECT_NEAR(lab[4], 360 - lch.h < 0.005 ? 0.0 : lch.h, 1e-10);
    }
  }
}

TEST(LabToXYZ, AgreesWithExactFractionInverseWithinTheRoundedConstants) {
  // On the linear branch the library uses (f - 0.137931) / 7.787 where CIE has
  // (f - 16/116) x 108/841; the difference is at most
  // |f - 16/116| |1/7.787 - 108/841| + |16/116 - 0.137931| / 7.787 in t. On the cube branch
  // (f > 6/29, the same breakpoint in both) the two coincide.
  const auto& w = kWhites[0];
  const CValueVector3 white = Vector3(w);
  for (double l = 0; l <= 100; l += 2.5) {
    for (double a = -128; a <= 128; a += 8) {
      for (double b = -128; b <= 128; b += 8) {
        const double fy = (l + 16) / 116, fx = fy + a / 500, fz = fy - b / 200;
        CValueVector3 xyz;
        LabToXYZ(white, l, a, b, xyz);
        const double f[3] = {fx, fy, fz};
        const double n[3] = {w.x, w.y, w.z};
        for (int c = 0; c < 3; ++c) {
          const double bound =
              f[c] > 6.0 / 29.0
                  ? test::kExactFormula * n[c]
                  : (std::abs(f[c] - 16.0 / 116.0) * std::abs(1 / 7.787 - 108.0 / 841.0) +
                     (16.0 / 116.0 - 0.137931) / 7.787) *
                            n[c] +
                        1e-12;
          const double ref = CieFInverse(f[c]) * n[c];
          ASSERT_NEAR(xyz[c], ref, bound) << "L*a*b* " << l << " " << a << " " << b;
        }
      }
    }
  }
}

// ---------------------------------------------------------------- linearised CIELAB

TEST(LabDifferential, SlopeOfEachBranchAndComponentWiring) {
  const CValueVector3 white = Vector3(1, 2, 4);
  struct Case {
    const char* what;
    double t;      // X/Xn = Y/Yn = Z/Zn
    double slope;  // df/dt, by hand
  };
  // At the breakpoint the linear slope 7.787 applies; above it the cube root's derivative
  // t^(-2/3) / 3, which at 0.008857 is 7.7867 (3e-5 away from 7.787).
  for (const Case c : {Case{"at breakpoint", 0.008856, 7.787},
                       Case{"above breakpoint", 0.008857, 1 / (3 * std::cbrt(0.008857 * 0.008857))},
                       Case{"mid grey", 0.125, 1 / (3 * 0.25)}}) {
    SCOPED_TRACE(c.what);
    const CValueVector3 xyz = Vector3(c.t * 1, c.t * 2, c.t * 4);
    CValueVector3 d;
    // dY only: dL* = 116 df, da* = -500 df, db* = 200 df, with df = slope x dY / Yn.
    LabDifferential(white, xyz, 0, 0.01, 0, d);
    const double dfY = c.slope * 0.01 / 2;
    EXPECT_NEAR(d[0], 116 * dfY, test::kExactFormula * std::abs(116 * dfY));
    EXPECT_NEAR(d[1], -500 * dfY, test::kExactFormula * std::abs(500 * dfY));
    EXPECT_NEAR(d[2], 200 * dfY, test::kExactFormula * std::abs(200 * dfY));
    // dX only moves a*; dZ only moves b*, in the negative direction.
    LabDifferential(white, xyz, 0.01, 0, 0, d);
    EXPECT_EQ(d[0], 0.0);
    EXPECT_NEAR(d[1], 500 * c.slope * 0.01 / 1, test::kExactFormula * 500 * c.slope * 0.01);
    EXPECT_EQ(d[2], 0.0);
    LabDifferential(white, xyz, 0, 0, 0.01, d);
    EXPECT_NEAR(d[2], -200 * c.slope * 0.01 / 4, test::kExactFormula * 200 * c.slope * 0.01 / 4);
  }
}

TEST(LabDifferential, AStepOfOneHundredThousandthIsNotMissing) {
  CValueVector3 d;
  LabDifferential(Vector3(1, 1, 1), Vector3(0.125, 0.125, 0.125), 1e-05, 1e-05, 1e-05, d);
  // 116 x (1/3) x 0.125^(-2/3) x 1e-5 = 116 x 1e-5 / 0.75
  EXPECT_NEAR(d[0], 116e-5 / 0.75, 1e-15);
  EXPECT_NEAR(d[1], 0, 1e-15);
}

// ---------------------------------------------------------------- missing values

TEST(CielabConversions, MissingInputsGiveMissingOutputs) {
  const CValueVector3 white = Vector3(kWhites[0]);
  const CValueVector3 missingWhite = Vector3(kMissing, kMissing, kMissing);
  // Any one missing component spoils the whole coordinate record.
  for (const CValueVector3& xyz :
       {Vector3(kMissing, 50, 50), Vector3(50, kMissing, 50), Vector3(50, 50, kMissing)}) {
    CValueVector5 lab;
    XYZToLab(white, xyz, lab);
    EXPECT_TRUE(AllMissing(lab));
    CValueVector3 d;
    LabDifferential(white, xyz, 1, 1, 1, d);
    EXPECT_TRUE(AllMissing(d));
  }
  CValueVector5 lab;
  XYZToLab(missingWhite, Vector3(50, 50, 50), lab);
  EXPECT_TRUE(AllMissing(lab));
  CValueVector3 empty;
  empty.RemoveAll();
  XYZToLab(white, empty, lab);
  EXPECT_TRUE(AllMissing(lab));

  for (const auto& [l, a, b] : {std::tuple{kMissing, 1.0, 1.0}, std::tuple{50.0, kMissing, 1.0},
                                std::tuple{50.0, 1.0, kMissing}}) {
    CValueVector3 xyz;
    LabToXYZ(white, l, a, b, xyz);
    EXPECT_TRUE(AllMissing(xyz));
  }
}

}  // namespace
}  // namespace velquor
