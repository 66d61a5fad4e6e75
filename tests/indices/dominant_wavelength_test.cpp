// Dominant wavelength and excitation purity, and the geometry under them. Samples are placed by
// construction: on rays to the locus table's entries (wavelength exact, purity the fraction of
// the way from white), between entries (the spline, solved independently below), across the
// purple line (complementary wavelength by hand), and at the white point. White points are the
// ASTM E308 values that the weighting tables carry.
#include "velquor/indices/dominant_wavelength.h"

#include <gtest/gtest.h>

#include <cmath>

#include "velquor/frame/numeric.h"

namespace velquor {
namespace {

constexpr double kNm = 1e-9;  // wavelength tolerance; purities and points: 1e-9 relative

void ExpectRel(double actual, double expected) {
  EXPECT_NEAR(actual, expected, 1e-9 * std::max(1.0, std::fabs(expected)));
}

struct White {
  int illuminant, observer;
  double xn, zn;  // Yn = 100
  ChromaticityPoint Point() const { return {xn / (xn + 100 + zn), 100 / (xn + 100 + zn)}; }
};
constexpr White kC2{1, 0, 98.074, 118.232}, kD65_2{2, 0, 95.047, 108.883},
    kD65_10{2, 1, 94.811, 107.304}, kA2{0, 0, 109.85, 35.585};

CValueVector3 Xyz(const ChromaticityPoint& p) {  // X + Y + Z = 100
  CValueVector3 xyz;
  xyz[0] = 100 * p.x;
  xyz[1] = 100 * p.y;
  xyz[2] = 100 * (1 - p.x - p.y);
  return xyz;
}

ChromaticityPoint Along(const ChromaticityPoint& from, const ChromaticityPoint& to, double t) {
  return {from.x + t * (to.x - from.x), from.y + t * (to.y - from.y)};
}

// The locus tables, 400 to 700 nm, in ten-thousandths.
constexpr int kLocus[2][31][2] = {
    {{1738, 52},   {1730, 46},   {1714, 50},   {1688, 69},   {1644, 109},  {1566, 177},
     {1440, 296},  {1243, 577},  {915, 1317},  {453, 2943},  {73, 5407},   {144, 7511},
     {749, 8321},  {1544, 8067}, {2296, 7543}, {3017, 6922}, {3730, 6245}, {4443, 5545},
     {5124, 4867}, {5750, 4243}, {6272, 3723}, {6656, 3341}, {6914, 3085}, {7080, 2920},
     {7192, 2808}, {7260, 2740}, {7300, 2700}, {7322, 2678}, {7333, 2667}, {7356, 2644},
     {7379, 2621}},
    {{1796, 183},  {1754, 179},  {1706, 179},  {1651, 202},  {1589, 258},  {1511, 364},
     {1390, 585},  {1153, 1096}, {728, 2287},  {213, 4407},  {61, 6745},   {495, 8011},
     {1256, 8106}, {2065, 7670}, {2787, 7112}, {3474, 6501}, {4143, 5857}, {4790, 5210},
     {5385, 4615}, {5898, 4102}, {6306, 3694}, {6611, 3389}, {6825, 3175}, {6957, 3043},
     {7058, 2942}, {7136, 2864}, {7169, 2831}, {7188, 2812}, {7192, 2808}, {7202, 2798},
     {7202, 2798}}};

ChromaticityPoint Locus(int table, int j) {
  return {kLocus[table][j][0] / 10000.0, kLocus[table][j][1] / 10000.0};
}

TEST(DominantWavelength, OnTheRayToEveryLocusPointEndsIncluded) {
  // A fraction t of the way from white to the point of 400 + 10 j nm, j = 0 .. 30: that
  // wavelength, purity 100 t, locus point the table entry; t = 1 is the sample on the locus.
  // The 10 degree table repeats its 690 nm point at 700 nm: a sample there is reported at
  // 690 nm, the first wavelength of that chromaticity. Observer code 2 pairs the 2 degree white
  // point (weighting tables) with the 10 degree locus.
  struct Case {
    White white;
    int table;
  };
  for (const Case& c : {Case{kD65_2, 0}, Case{kC2, 0}, Case{kA2, 0}, Case{kD65_10, 1},
                        Case{{2, 2, 95.047, 108.883}, 1}}) {
    for (int j = 0; j <= 30; ++j) {
      const double expectedNm = c.table == 1 && j == 30 ? 690.0 : 400.0 + 10 * j;
      for (double t : {1.0, 0.5, 0.125, 1.25}) {
        SCOPED_TRACE(testing::Message() << c.white.illuminant << "/" << c.white.observer << " "
                                        << 400 + 10 * j << " nm, t = " << t);
        double purity = 0;
        ChromaticityPoint white, sample, locus;
        const double nm = DominantWavelength(c.white.illuminant, c.white.observer,
                                             Xyz(Along(c.white.Point(), Locus(c.table, j), t)),
                                             purity, &white, &sample, &locus);
        EXPECT_NEAR(nm, expectedNm, kNm);
        ExpectRel(purity, 100 * t);
        EXPECT_NEAR(locus.x, Locus(c.table, j).x, 1e-12);
        EXPECT_NEAR(locus.y, Locus(c.table, j).y, 1e-12);
      }
    }
  }
}

TEST(DominantWavelength, BetweenLocusPointsTheNotAKnotSplineGivesThePurity) {
  // S = W + d (sin a, cos a) with a the mean of the angles atan2(dx, dy) of L[k-1] and L[k]
  // about W, so the wavelength (linear in angle) is the interval's midpoint. The locus point is
  // the not-a-knot spline through points max(k-5, 0) .. min(k+5, 29) at that wavelength, solved
  // in exact fractions from the full system (end rows h1 m0 - (h0 + h1) m1 + h0 m2 = 0 and its
  // mirror); purity = 100 d / |spline point - W|. [natural end conditions would give]
  struct Case {
    White white;
    ChromaticityPoint sample;
    double nm, purity;
  };
  const Case cases[] = {
      // D65/2, knots 500-600: d = 0.2, spline (0.265827585373711, 0.724283791651326) [50.2514]
      {kD65_2, {0.29043471639296398, 0.52777692593941694}, 545, 50.247051966734},
      // D65/10, knots 400-470: d = 0.1, spline (0.173086184210526, 0.017715490430622) [29.1184]
      {kD65_10, {0.27280653120090897, 0.23979917984718113}, 415, 29.116771738082},
      // C/2, knots 650-700 (the last side takes its 700 nm end): d = 0.3, spline
      // (0.73689, 0.26311)
      {kC2, {0.60778147556457995, 0.27924118819728128}, 695, 69.749222930585},
      // D65/2, knots 400-480: d = 0.15, spline (0.170256177884615, 0.005725793269231) [42.4567]
      {kD65_2, {0.25214644431529826, 0.19180052665428671}, 425, 42.457158092385},
      // A, code 2 (A/2 white, 10 degree locus), knots 630-690: d = 0.1, spline
      // (0.71911328125, 0.28088671875) [33.3862]
      {{0, 2, 109.85, 35.585}, {0.53821993502441856, 0.36521338335980597}, 675, 33.379727202521},
  };
  for (const Case& c : cases) {
    double purity = 0;
    EXPECT_NEAR(DominantWavelength(c.white.illuminant, c.white.observer, Xyz(c.sample), purity),
                c.nm, kNm);
    ExpectRel(purity, c.purity);
  }
}

TEST(DominantWavelength, AcrossThePurpleLineTheComplementaryIsNegative) {
  // Q = L[700] + u (L[400] - L[700]) on the purple line, S = W + t (Q - W): purity 100 t, locus
  // point Q. The opposite ray, direction W - Q, at angle a_P crosses the side shown:
  // lambda = start + 10 (a_P - a_start) / (a_end - a_start).
  struct Case {
    White white;
    double u, t, nm;
  };
  const Case cases[] = {
      // C/2, Q = (0.45585, 0.13365): a_P = -0.674038400539702, 500-510 nm from
      // -0.932643378375157 to -0.597010315166422
      {kC2, 0.5, 0.5, -507.704991140120},
      // D65/10, Q = (0.58505, 0.214425): a_P = -1.164861038301004, 490-500 nm from
      // -1.212014753584116 to -0.730516801340159
      {kD65_10, 0.25, 0.8, -490.979312893510},
      // A/2, Q = (0.314825, 0.069425): a_P = 0.374221172006392, 570-580 nm from
      // -0.022250331088282 to 0.685564059492388
      {kA2, 0.75, 0.3, -575.601348437822},
  };
  for (const Case& c : cases) {
    const ChromaticityPoint q = Along(Locus(c.white.observer, 30), Locus(c.white.observer, 0), c.u);
    double purity = 0;
    ChromaticityPoint white, sample, locus;
    EXPECT_NEAR(
        DominantWavelength(c.white.illuminant, c.white.observer,
                           Xyz(Along(c.white.Point(), q, c.t)), purity, &white, &sample, &locus),
        c.nm, kNm);
    ExpectRel(purity, 100 * c.t);
    EXPECT_NEAR(locus.x, q.x, 1e-12);  // on the purple line, on the sample's side of W
    EXPECT_NEAR(locus.y, q.y, 1e-12);
  }
}

TEST(DominantWavelength, WhitePointMissingSamplesAndOutputs) {
  // The white point at any scale: purity 0, wavelength missing, outputs untouched.
  for (double scale : {1.0, 0.5, 0.37}) {
    CValueVector3 xyz;
    xyz[0] = 95.047 * scale, xyz[1] = 100 * scale, xyz[2] = 108.883 * scale;
    double purity = -1;
    ChromaticityPoint white{-1, -1};
    EXPECT_TRUE(IsMissing(DominantWavelength(2, 0, xyz, purity, &white))) << scale;
    EXPECT_EQ(purity, 0.0);
    EXPECT_EQ(white.x, -1.0);
  }
  double purity = -1;  // 1e-9 away in x is a colour again
  EXPECT_FALSE(IsMissing(
      DominantWavelength(2, 0, Xyz({kD65_2.Point().x + 1e-9, kD65_2.Point().y}), purity)));
  EXPECT_GT(purity, 0.0);

  // Empty, all missing, zero sum, no weighting table: both results missing.
  CValueVector3 empty, allMissing, zeroSum;
  empty.RemoveAll();
  allMissing[0] = allMissing[1] = allMissing[2] = kMissing;
  zeroSum[0] = 1, zeroSum[1] = -1;
  const CValueVector3 valid = Xyz({0.4, 0.4});
  const std::pair<int, const CValueVector3*> cases[] = {
      {2, &empty}, {2, &allMissing}, {2, &zeroSum}, {99, &valid}};
  for (const auto& [illuminant, xyz] : cases) {
    double p = 0;
    EXPECT_TRUE(IsMissing(DominantWavelength(illuminant, 0, *xyz, p)));
    EXPECT_TRUE(IsMissing(p));
  }

  // The point outputs are written only when the white point is asked for.
  const ChromaticityPoint s = Along(kD65_10.Point(), Locus(1, 15), 0.5);  // halfway to 550 nm
  ChromaticityPoint white{-1, -1}, sample{-1, -1}, locus{-1, -1};
  DominantWavelength(2, 1, Xyz(s), purity, nullptr, &sample, &locus);
  EXPECT_EQ(sample.x, -1.0);
  EXPECT_EQ(locus.x, -1.0);
  DominantWavelength(2, 1, Xyz(s), purity, &white, &sample, &locus);
  EXPECT_NEAR(white.x, 94.811 / 302.115, 1e-15);
  EXPECT_NEAR(white.y, 100 / 302.115, 1e-15);
  EXPECT_NEAR(sample.x, s.x, 1e-15);
  EXPECT_NEAR(locus.x, 0.3474, 1e-12);
  EXPECT_NEAR(locus.y, 0.6501, 1e-12);
}

// ---- geometry

TEST(Orientation, SidesAndCollinearCases) {
  struct Case {
    ChromaticityPoint a, b, c;
    int expected;
  };
  const Case cases[] = {
      {{0, 0}, {2, 1}, {0, 1}, 1},         {{0, 0}, {2, 1}, {1, 0}, -1},
      {{0, 0}, {2, 1}, {4, 2 + 1e-12}, 1}, {{0, 0}, {2, 1}, {4, 2 - 1e-12}, -1},  // no tolerance
      {{0, 0}, {2, 1}, {-2, -1}, -1},      {{0, 0}, {2, 1}, {4, 2}, 1},  // behind a, beyond b
      {{0, 0}, {2, 1}, {1, 0.5}, 0},       {{0, 0}, {2, 1}, {0, 0}, 0},  // between, at a
      {{0, 0}, {2, 1}, {2, 1}, 0},                                       // at b: not beyond
      {{1, 1}, {1, 3}, {1, 0}, -1},        {{1, 1}, {1, 3}, {1, 5}, 1},  // vertical
      {{1, 1}, {3, 1}, {0.5, 1}, -1},                                    // horizontal, behind
  };
  for (const Case& c : cases) {
    EXPECT_EQ(Orientation(c.a, c.b, c.c), c.expected)
        << "(" << c.a.x << "," << c.a.y << ")->(" << c.b.x << "," << c.b.y << ") c = (" << c.c.x
        << "," << c.c.y << ")";
  }
}

TEST(FarPointOnRay, BranchesAndThresholds) {
  struct Case {
    ChromaticityPoint from, through, expected;
  };
  const Case cases[] = {
      {{0.3, 0.3}, {0.3, 0.5}, {0.3, 10000}},  // vertical up
      {{0.3, 0.3}, {0.3, 0.1}, {0.3, 0}},      // vertical down
      {{0.3, 0.3}, {0.3, 0.3}, {0.3, 0}},      // no direction
      {{0, 0.5}, {1e-17, 0.7}, {0, 10000}},    // dx zero by IsZero
      // dx = 1e-15 is not: m = 2e14, c = 0.5, x = 9999.5 / 2e14
      {{0, 0.5}, {1e-15, 0.7}, {4.99975e-11, 10000}},
      {{0.3, 0.3}, {0.5, 0.4}, {10000, 5000.15}},  // m = 0.5, c = 0.15
      {{0.3, 0.3}, {0.1, 0.2}, {0, 0.15}},
      {{0.25, 0.25}, {0.5, 0.5}, {10000, 10000}},  // |m| = 1 exactly: the x branch
      {{0.25, 0.25}, {0, 0.5}, {0, 0.5}},
      {{0.3, 0.3}, {0.35, 0.1}, {0.375, 0}},          // m = -4, c = 1.5: y = 0
      {{0.3, 0.3}, {0.25, 0.5}, {-2499.625, 10000}},  // y = 10000, x = (10000 - 1.5) / -4
  };
  for (const Case& c : cases) {
    const ChromaticityPoint p = FarPointOnRay(c.from, c.through);
    SCOPED_TRACE(testing::Message() << c.through.x << "," << c.through.y);
    ExpectRel(p.x, c.expected.x);
    ExpectRel(p.y, c.expected.y);
  }
  const ChromaticityPoint steep = FarPointOnRay({0.25, 0.25}, {0.5, 0.5 + 1e-9});  // |m| > 1
  EXPECT_EQ(steep.y, 10000.0);
  EXPECT_LT(steep.x, 10000.0);
}

TEST(LineIntersection, GeneralVerticalSegmentEndAndParallel) {
  struct Case {
    ChromaticityPoint p1, p2, q1, q2, expected;
  };
  const Case cases[] = {
      {{0, 0}, {2, 2}, {0, 2}, {2, 0}, {1, 1}},
      {{0, 0}, {1, 1}, {1, 1}, {3, 0}, {1, 1}},    // at a shared segment end
      {{0, 0}, {1, 1}, {4, 0}, {5, -1}, {2, 2}},   // beyond both segments: y = x, y = 4 - x
      {{1, 0}, {1, 5}, {0, 0}, {2, 1}, {1, 0.5}},  // first vertical
      {{0, 1}, {4, 3}, {2, -1}, {2, 7}, {2, 2}},   // second vertical
      {{1, 1}, {1, 1}, {0, 0}, {2, 4}, {1, 2}},    // equal points count as vertical
      // x = 0.4 and the 2 degree purple line: y = 0.0052 + 0.2262 x 0.2569 / 0.5641
      {{0.4, 0.3},
       {0.4, 0.1},
       {0.1738, 0.0052},
       {0.7379, 0.2621},
       {0.4, 0.0052 + 0.2262 * 0.2569 / 0.5641}},
  };
  for (const Case& c : cases) {
    const ChromaticityPoint p = LineIntersection(c.p1, c.p2, c.q1, c.q2);
    ExpectRel(p.x, c.expected.x);
    ExpectRel(p.y, c.expected.y);
  }
  for (const ChromaticityPoint& p : {LineIntersection({0, 0}, {1, 1}, {0, 1}, {1, 2}),
                                     LineIntersection({0, 0}, {1, 1}, {2, 2}, {3, 3}),
                                     LineIntersection({1, 0}, {1, 1}, {2, 0}, {2, 1})}) {
    EXPECT_TRUE(IsMissing(p.x) && IsMissing(p.y));  // parallel, same line, both vertical
  }
}

}  // namespace
}  // namespace velquor
