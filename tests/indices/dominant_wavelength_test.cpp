// Dominant wavelength and excitation purity, and the geometry under them. Samples are placed by
// construction: on rays to the locus table's entries (wavelength exact, purity the fraction of
// the way from white), between entries and across the purple line
// (reference/dominant_wavelength.csv), and at the white point. White points are the ASTM E308
// values that the weighting tables carry.
#include "velquor/indices/dominant_wavelength.h"

#include <gtest/gtest.h>

#include <string>

#include "reference_table.h"
#include "tristimulus_index_test_support.h"
#include "velquor/frame/numeric.h"

namespace velquor {
namespace {

using test::kExactFormula;
using namespace tristimulus_index_testing;

struct White {
  int illuminant, observer;
  double xn, zn;  // Yn = 100
  ChromaticityPoint Point() const { return {xn / (xn + 100 + zn), 100 / (xn + 100 + zn)}; }
};

CValueVector3 Xyz(const ChromaticityPoint& p) {  // X + Y + Z = 100
  return Sample(100 * p.x, 100 * p.y, 100 * (1 - p.x - p.y));
}

// Point j (400 + 10 j nm) of the 2 degree (table 0) or 10 degree (table 1) locus.
ChromaticityPoint Locus(int table, int j) {
  const test::ReferenceRow& row = test::LoadReferenceTable("reference/spectrum_locus.csv")[j];
  return {row.Number(table == 0 ? "x2" : "x10") / 10000.0,
          row.Number(table == 0 ? "y2" : "y10") / 10000.0};
}

void Check(int illuminant, int observer, ChromaticityPoint at, double nm, double purity,
           ChromaticityPoint locus) {
  double p = 0;
  ChromaticityPoint white, sample, l;
  EXPECT_NEAR(DominantWavelength(illuminant, observer, Xyz(at), p, &white, &sample, &l), nm,
              test::kIndependent);
  ExpectClose(p, purity);
  EXPECT_NEAR(l.x, locus.x, kExactFormula);
  EXPECT_NEAR(l.y, locus.y, kExactFormula);
}

// A fraction t of the way from white to the point of 400 + 10 j nm, j = 0 .. 30: that
// wavelength, purity 100 t, locus point the table entry; t = 1 is the sample on the locus. The
// 10 degree table repeats its 690 nm point at 700 nm: a sample there is reported at 690 nm, the
// first wavelength of that chromaticity. Observer code 2 pairs the 2 degree white point
// (weighting tables) with the 10 degree locus.
TEST(DominantWavelength, OnTheRayToEveryLocusPointEndsIncluded) {
  for (const auto& [white, table] : {std::pair{White{2, 0, 95.047, 108.883}, 0},
                                     {White{1, 0, 98.074, 118.232}, 0},
                                     {White{0, 0, 109.85, 35.585}, 0},
                                     {White{2, 1, 94.811, 107.304}, 1},
                                     {White{2, 2, 95.047, 108.883}, 1}}) {
    for (int j = 0; j <= 30; ++j) {
      for (double t : {1.0, 0.5, 0.125, 1.25}) {
        SCOPED_TRACE(testing::Message() << white.illuminant << "/" << white.observer << " "
                                        << 400 + 10 * j << " nm, t = " << t);
        const ChromaticityPoint w = white.Point(), l = Locus(table, j);
        Check(white.illuminant, white.observer, {w.x + t * (l.x - w.x), w.y + t * (l.y - w.y)},
              table == 1 && j == 30 ? 690.0 : 400.0 + 10 * j, 100 * t, l);
      }
    }
  }
}

TEST(DominantWavelength, BetweenLocusPointsAndAcrossThePurpleLine) {
  for (const test::ReferenceRow& row :
       test::LoadReferenceTable("reference/dominant_wavelength.csv")) {
    SCOPED_TRACE(row.Where());
    Check(row.Integer("illuminant"), row.Integer("observer"), {row.Number("x"), row.Number("y")},
          row.Number("nm"), row.Number("purity"), {row.Number("locus_x"), row.Number("locus_y")});
  }
}

TEST(DominantWavelength, WhitePointMissingSamplesAndOutputs) {
  // The white point at any scale: purity 0, wavelength missing, outputs untouched; 1e-9 away
  // in x it is a colour again.
  double purity = -1;
  ChromaticityPoint white{-1, -1}, sample{-1, -1}, locus{-1, -1};
  for (double scale : {1.0, 0.37}) {
    EXPECT_TRUE(IsMissing(DominantWavelength(
        2, 0, Sample(95.047 * scale, 100 * scale, 108.883 * scale), purity, &white)));
    EXPECT_EQ(purity, 0.0);
    EXPECT_EQ(white.x, -1.0);
  }
  const ChromaticityPoint d65 = White{2, 0, 95.047, 108.883}.Point();
  EXPECT_FALSE(IsMissing(DominantWavelength(2, 0, Xyz({d65.x + 1e-9, d65.y}), purity)));
  EXPECT_GT(purity, 0.0);

  // Empty, all missing, zero sum, no weighting table: both results missing.
  CValueVector3 empty, zeroSum = Sample(1, -1, 0);
  empty.RemoveAll();
  for (const auto& [illuminant, xyz] : {std::pair{2, empty},
                                        {2, Sample(kMissing, kMissing, kMissing)},
                                        {2, zeroSum},
                                        {99, Xyz({0.4, 0.4})}}) {
    EXPECT_TRUE(IsMissing(DominantWavelength(illuminant, 0, xyz, purity)));
    EXPECT_TRUE(IsMissing(purity));
  }

  // The point outputs are written only when the white point is asked for.
  const CValueVector3 green = Xyz({0.3, 0.5});
  DominantWavelength(2, 1, green, purity, nullptr, &sample, &locus);
  EXPECT_EQ(sample.x, -1.0);
  EXPECT_EQ(locus.x, -1.0);
  DominantWavelength(2, 1, green, purity, &white, &sample, &locus);
  EXPECT_NEAR(white.x, 94.811 / 302.115, kExactFormula);
  EXPECT_NEAR(white.y, 100 / 302.115, kExactFormula);
  EXPECT_NEAR(sample.x, 0.3, kExactFormula);
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
    ExpectClose(p.x, row.Number("x"));
    ExpectClose(p.y, row.Number("y"));
  }
  const ChromaticityPoint steep = FarPointOnRay({0.25, 0.25}, {0.5, 0.5 + 1e-9});  // |m| > 1
  EXPECT_EQ(steep.y, 10000.0);
  EXPECT_LT(steep.x, 10000.0);
}

}  // namespace
}  // namespace velquor
