#include "velquor/colorimetry/luv.h"

#include <gtest/gtest.h>

#include <cmath>
#include <tuple>

#include "colour_space_references.h"
#include "velquor/frame/numeric.h"

namespace velquor {
namespace {

using testing_support::AllMissing;
using testing_support::kWhites;
using testing_support::MaxError;
using testing_support::Vector3;

constexpr double kCieEpsilon = 216.0 / 24389.0;
constexpr double kCieKappa = 24389.0 / 27.0;
// 903.29 against CIE's 24389/27 = 903.2963: the linear branch is 7.3e-6 relative low.
constexpr double kKappaRelative = (24389.0 / 27.0 - 903.29) / 903.29;

// CIE 15:2004 CIELUV with exact fractions.
void CieLuv(const testing_support::WhitePoint& w, double x, double y, double z, double out[3]) {
  const double yr = y / w.y;
  const double l = yr > kCieEpsilon ? 116 * std::cbrt(yr) - 16 : kCieKappa * yr;
  const double d = x + 15 * y + 3 * z, dn = w.x + 15 * w.y + 3 * w.z;
  out[0] = l;
  out[1] = 13 * l * (4 * x / d - 4 * w.x / dn);
  out[2] = 13 * l * (9 * y / d - 9 * w.y / dn);
}

TEST(XYZToLuv, LightnessBreakpointIsStrict) {
  // White Yn = 1 puts Y/Yn exactly on the stored double. At and below 0.008856:
  // L* = 903.29 yr; above: 116 yr^(1/3) - 16 (the cube branch at 0.008857 is 8.00045).
  const CValueVector3 white = Vector3(0.95047, 1, 1.08883);
  struct Case {
    double yr, expectedL;
  };
  for (const Case c : {Case{0.008855, 903.29 * 0.008855}, Case{0.008856, 903.29 * 0.008856},
                       Case{0.008857, 116 * std::cbrt(0.008857) - 16}}) {
    SCOPED_TRACE(c.yr);
    CValueVector5 luv;
    // A neutral: XYZ proportional to the white, so u* = v* = 0.
    XYZToLuv(white, Vector3(0.95047 * c.yr, c.yr, 1.08883 * c.yr), luv);
    EXPECT_NEAR(luv[0], c.expectedL, 1e-12);
    EXPECT_NEAR(luv[1], 0, 1e-12);
    EXPECT_NEAR(luv[2], 0, 1e-12);
  }
}

TEST(LuvToXYZ, LightnessEightAlreadyTakesTheCubeBranch) {
  // t = L* / 903.29: 8 / 903.29 = 0.0088565 > 0.008856, so L* = 8 gives ((8 + 16) / 116)^3;
  // the switch sits at L* = 0.008856 x 903.29 = 7.99953624, where t comes out as exactly the
  // double 0.008856 and the strict test keeps the linear branch. The branches differ by 7e-6
  // relative here.
  const CValueVector3 white = Vector3(kWhites[0]);
  struct Case {
    double lStar, expectedYr;
  };
  for (const Case c :
       {Case{8.0, std::pow(24.0 / 116, 3)}, Case{7.9996, std::pow((7.9996 + 16) / 116, 3)},
        Case{7.99953624, 0.008856}, Case{7.9995, 7.9995 / 903.29}}) {
    SCOPED_TRACE(c.lStar);
    CValueVector3 xyz;
    LuvToXYZ(white, c.lStar, 0, 0, xyz);
    EXPECT_NEAR(xyz[1], c.expectedYr * 100, 1e-13);
    // u* = v* = 0 is the white's chromaticity: X / Y and Z / Y are the white's.
    EXPECT_NEAR(xyz[0] / xyz[1], 0.95047, 1e-12);
    EXPECT_NEAR(xyz[2] / xyz[1], 1.08883, 1e-12);
  }
}

TEST(XYZToLuv, AgreesWithExactFractionCieluvWithinTheRoundedConstants) {
  // Only 903.29 differs from CIE: on the linear branch L*, u*, v* are all low by
  // kKappaRelative (7.3e-6) relative; between 0.008856 and 216/24389 the cube root and CIE's
  // tangent line differ by under 1e-8; above, the formulas coincide.
  for (const auto& w : kWhites) {
    const CValueVector3 white = Vector3(w);
    for (double ry : {0.0001, 0.003, 0.0088, 0.008856, 0.00886, 0.2, 0.9}) {
      for (double rx : {0.5, 1.0, 1.3}) {
        for (double rz : {0.2, 1.0, 1.7}) {
          const double x = rx * ry * w.x, y = ry * w.y, z = rz * ry * w.z;
          double ref[3];
          CieLuv(w, x, y, z, ref);
          CValueVector5 luv;
          XYZToLuv(white, Vector3(x, y, z), luv);
          for (int c = 0; c < 3; ++c) {
            const double bound = kKappaRelative * std::abs(ref[c]) + 1e-8 + 1e-12;
            EXPECT_NEAR(luv[c], ref[c], bound) << w.name << " component " << c << " Y " << y;
          }
        }
      }
    }
  }
}

TEST(LuvToXYZ, RoundTripThroughXYZToLuv) {
  // XYZ -> Luv -> XYZ over reflectance-like samples. Both directions use 903.29 and the same
  // breakpoint, so only a sample between L* = 7.99954 and the forward switch can cross
  // branches; bound 1e-9 relative.
  MaxError err{"XYZ -> Luv -> XYZ round trip, max relative error"};
  for (const auto& w : kWhites) {
    const CValueVector3 white = Vector3(w);
    for (double ry = 0.001; ry <= 1.0; ry *= 1.3) {
      for (double rx = 0.3; rx <= 1.5; rx += 0.2) {
        for (double rz = 0.1; rz <= 1.8; rz += 0.3) {
          const CValueVector3 xyz = Vector3(rx * ry * w.x, ry * w.y, rz * ry * w.z);
          CValueVector5 luv;
          CValueVector3 back;
          XYZToLuv(white, xyz, luv);
          LuvToXYZ(white, luv[0], luv[1], luv[2], back);
          for (int c = 0; c < 3; ++c) err.Add((back[c] - xyz[c]) / xyz[c]);
        }
      }
    }
  }
  err.Report();
  EXPECT_LT(err.value, 1e-9);
}

TEST(CieluvConversions, UndefinedDivisionsAndMissingInputsGiveMissingOutputs) {
  const auto& w = kWhites[0];
  const CValueVector3 white = Vector3(w);
  const double dn = w.x + 15 * w.y + 3 * w.z;
  const double un = 4 * w.x / dn, vn = 9 * w.y / dn;

  CValueVector5 luv;
  for (const CValueVector3& xyz : {Vector3(0, 0, 0),    // black: X + 15Y + 3Z = 0
                                   Vector3(15, -1, 0),  // the same sum from signs
                                   Vector3(kMissing, 20, 20), Vector3(20, 20, kMissing)}) {
    XYZToLuv(white, xyz, luv);
    EXPECT_TRUE(AllMissing(luv)) << xyz[0] << " " << xyz[1] << " " << xyz[2];
  }
  XYZToLuv(Vector3(kMissing, kMissing, kMissing), Vector3(20, 20, 20), luv);
  EXPECT_TRUE(AllMissing(luv));

  CValueVector3 xyz;
  for (const auto& [l, u, v] : {std::tuple{0.0, 10.0, 10.0},            // L* = 0
                                std::tuple{50.0, -13 * 50 * un, 10.0},  // u' = 0
                                std::tuple{50.0, 10.0, -13 * 50 * vn},  // v' = 0
                                std::tuple{kMissing, 10.0, 10.0}, std::tuple{50.0, kMissing, 10.0},
                                std::tuple{50.0, 10.0, kMissing}}) {
    LuvToXYZ(white, l, u, v, xyz);
    EXPECT_TRUE(AllMissing(xyz)) << l << " " << u << " " << v;
  }
}

}  // namespace
}  // namespace velquor
