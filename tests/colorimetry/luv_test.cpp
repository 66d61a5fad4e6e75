#include "velquor/colorimetry/luv.h"

#include <gtest/gtest.h>

#include "colour_space_references.h"

namespace velquor {

// CIE 15:2004 CIELUV with 24389/27 and 216/24389. Only 903.29 differs: on the linear branch
// all three outputs are low by 7.3e-6 relative; the tangent gap between the breakpoints is
// under 1e-8, so Y/Yn = 0.008856 is also checked against the library's linear 903.29 Y/Yn
// (the cube root would be 5.8e-5 higher). Both directions share 903.29 and 0.008856, so the
// round trip holds to 1e-9.
TEST(XYZToLuv, AgreesWithExactFractionCieluvAndRoundTrips) {
  const double kappaRelative = (24389.0 / 27.0 - 903.29) / 903.29;
  for (const auto& w : kWhites) {
    const double dn = w.x + 15 * w.y + 3 * w.z;
    for (double ry : {0.0001, 0.003, 0.0088, 0.008856, 0.00886, 0.2, 0.9}) {
      for (const auto& [rx, rz] : {std::pair{0.5, 0.2}, {1.0, 1.0}, {1.3, 1.7}, {0.7, 1.4}}) {
        const double in[3] = {rx * ry * w.x, ry * w.y, rz * ry * w.z};
        const double d = in[0] + 15 * in[1] + 3 * in[2];
        const double l = ry > 216.0 / 24389 ? 116 * std::cbrt(ry) - 16 : 24389.0 / 27 * ry;
        const double ref[3] = {l, 13 * l * (4 * in[0] / d - 4 * w.x / dn),
                               13 * l * (9 * in[1] / d - 9 * w.y / dn)};
        CValueVector5 luv;
        CValueVector3 back;
        XYZToLuv(Vector3(w), Vector3(in[0], in[1], in[2]), luv);
        LuvToXYZ(Vector3(w), luv[0], luv[1], luv[2], back);
        EXPECT_NEAR(luv[0], ry == 0.008856 ? 903.29 * ry : luv[0], 1e-12);
        for (int c = 0; c < 3; ++c) {
          EXPECT_NEAR(luv[c], ref[c], kappaRelative * std::abs(ref[c]) + 1e-8) << w.name << c;
          EXPECT_NEAR(back[c], in[c], 1e-9 * in[c]) << w.name << " " << c << " Y " << in[1];
        }
      }
    }
  }
  // Inverse, t = L* / 903.29 against 0.008856: L* = 8 already takes the cube; at 7.99953624 t
  // is exactly 0.008856 and stays linear.
  for (const auto& [l, yr] : {std::pair{8.0, std::pow(24.0 / 116, 3)}, {7.99953624, 0.008856}}) {
    CValueVector3 xyz;
    LuvToXYZ(Vector3(kWhites[0]), l, 0, 0, xyz);
    EXPECT_NEAR(xyz[1], yr * 100, 1e-13) << l;
  }
}

TEST(CieluvConversions, UndefinedDivisionsAndMissingInputsGiveMissingOutputs) {
  const auto& w = kWhites[0];
  const double dn = w.x + 15 * w.y + 3 * w.z, un = 4 * w.x / dn, vn = 9 * w.y / dn;
  // Each triple goes in as XYZ and as L*u*v*. Forward: X + 15Y + 3Z zero (black, or (15, -1,
  // 0)); inverse: L* = 0, u' = 0 or v' = 0; both: any input missing.
  for (const auto& [a, b, c, forward, inverse] : {std::tuple{0.0, 0.0, 0.0, true, true},
                                                  {15.0, -1.0, 0.0, true, false},
                                                  {0.0, 10.0, 10.0, false, true},
                                                  {50.0, -13 * 50 * un, 10.0, false, true},
                                                  {50.0, 10.0, -13 * 50 * vn, false, true},
                                                  {kMissing, 10.0, 10.0, true, true},
                                                  {50.0, kMissing, 10.0, true, true},
                                                  {50.0, 10.0, kMissing, true, true}}) {
    CValueVector5 luv;
    CValueVector3 xyz;
    XYZToLuv(Vector3(w), Vector3(a, b, c), luv);
    LuvToXYZ(Vector3(w), a, b, c, xyz);
    EXPECT_EQ(AllMissing(luv), forward) << a << " " << b << " " << c;
    EXPECT_EQ(AllMissing(xyz), inverse) << a << " " << b << " " << c;
  }
}

}  // namespace velquor
