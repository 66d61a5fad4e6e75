// Dominant wavelength and excitation purity, and the geometry under them. Samples are placed by
// construction: on rays to the locus table's entries (wavelength exact, purity the fraction of
// the way from white), between entries and across the purple line
// (reference/dominant_wavelength.csv), and at the white point. White points are the ASTM E308
// values that the weighting tables carry.
#include "velquor/indices/dominant_wavelength.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "reference_table.h"
#include "tolerances.h"
#include "velquor/frame/numeric.h"

namespace velquor {
namespace {

using test::kExactFormula;
using test::kIndependent;
using test::kNearZero;

void ExpectRel(double actual, double expected) {
  EXPECT_NEAR(actual, expected, kIndependent * std::max(1.0, std::fabs(expected)));
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
  xyz[0] = 100 * p.x, xyz[1] = 100 * p.y, xyz[2] = 100 * (1 - p.x - p.y);
  return xyz;
}

ChromaticityPoint Along(const ChromaticityPoint& from, const ChromaticityPoint& to, double t) {
  return {from.x + t * (to.x - from.x), from.y + t * (to.y - from.y)};
}

// Point j (400 + 10 j nm) of the 2 degree (table 0) or 10 degree (table 1) locus.
ChromaticityPoint Locus(int table, int j) {
  const test::ReferenceRow& row = test::LoadReferenceTable("reference/spectrum_locus.csv")[j];
  return {row.Number(table == 0 ? "x2" : "x10") / 10000.0,
          row.Number(table == 0 ? "y2" : "y10") / 10000.0};
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
        EXPECT_NEAR(nm, expectedNm, kIndependent);
        ExpectRel(purity, 100 * t);
        EXPECT_NEAR(locus.x, Locus(c.table, j).x, kExactFormula);
        EXPECT_NEAR(locus.y, Locus(c.table, j).y, kExactFormula);
      }
    }
  }
}

TEST(DominantWavelength, BetweenLocusPointsAndAcrossThePurpleLine) {
  for (const test::ReferenceRow& row :
       test::LoadReferenceTable("reference/dominant_wavelength.csv")) {
    SCOPED_TRACE(row.Where());
    double purity = 0;
    ChromaticityPoint white, sample, locus;
    EXPECT_NEAR(DominantWavelength(row.Integer("illuminant"), row.Integer("observer"),
                                   Xyz({row.Number("x"), row.Number("y")}), purity, &white, &sample,
                                   &locus),
                row.Number("nm"), kIndependent);
    ExpectRel(purity, row.Number("purity"));
    EXPECT_NEAR(locus.x, row.Number("locus_x"), kExactFormula);
    EXPECT_NEAR(locus.y, row.Number("locus_y"), kExactFormula);
  }
}

TEST(DominantWavelength, WhitePointMissingSamplesAndOutputs) {
  // The white point at any scale: purity 0, wavelength missing, outputs untouched.
  for (double scale : {1.0, 0.37}) {
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
  EXPECT_NEAR(white.x, 94.811 / 302.115, kNearZero);
  EXPECT_NEAR(white.y, 100 / 302.115, kNearZero);
  EXPECT_NEAR(sample.x, s.x, kNearZero);
}

TEST(ChromaticityGeometry, OrientationFarPointOnRayAndLineIntersection) {
  for (const test::ReferenceRow& row :
       test::LoadReferenceTable("reference/chromaticity_geometry.csv")) {
    SCOPED_TRACE(row.Where());
    const ChromaticityPoint p1{row.Number("p1x"), row.Number("p1y")},
        p2{row.Number("p2x"), row.Number("p2y")}, q1{row.Number("q1x"), row.Number("q1y")},
        q2{row.Number("q2x"), row.Number("q2y")};
    const std::string& operation = row.Text("operation");
    if (operation == "Orientation") {
      EXPECT_EQ(Orientation(p1, p2, q1), row.Integer("x"));
      continue;
    }
    const ChromaticityPoint p =
        operation == "FarPointOnRay" ? FarPointOnRay(p1, p2) : LineIntersection(p1, p2, q1, q2);
    ExpectRel(p.x, row.Number("x"));
    ExpectRel(p.y, row.Number("y"));
  }
  const ChromaticityPoint steep = FarPointOnRay({0.25, 0.25}, {0.5, 0.5 + 1e-9});  // |m| > 1
  EXPECT_EQ(steep.y, 10000.0);
  EXPECT_LT(steep.x, 10000.0);
}

}  // namespace
}  // namespace velquor
