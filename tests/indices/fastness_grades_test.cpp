// ISO 105-A04 staining and ISO 105-A05 change-in-colour grades: hand calculations of dE_F and
// the staining grade, both branches of each grade rule from both sides, the hue-mean rules,
// the record forms under two illuminants, and missing inputs.
#include "velquor/indices/fastness_grades.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>

#include "velquor/colorimetry/lab.h"
#include "velquor/frame/numeric.h"
#include "velquor/frame/options.h"
#include "velquor/indices/step_code.h"

namespace velquor {
namespace {

constexpr int kIllA = 0;
constexpr int kIllD65 = 2;

// Pure formulas on exact inputs: 1e-9 relative (absolute below 1).
void ExpectClose(double actual, double expected, double relative = 1e-9) {
  const double tolerance = relative * std::max(1.0, std::fabs(expected));
  EXPECT_NEAR(actual, expected, tolerance)
      << "error = " << (actual - expected) / tolerance << " x tolerance";
}

struct Lab {
  double v[5];  // L*, a*, b*, C*ab, hab in degrees
};

// The hand-calculated pairs: reference first. Chromas are whole numbers (Pythagorean a*, b*),
// hues are atan2(b*, a*) in degrees. dH*ab is the remainder sqrt(dE^2 - dL^2 - dC^2), negative
// when bs at - as bt > 0 (the specimen lies clockwise of the reference).
struct HandPair {
  const char* name;
  Lab reference;
  Lab specimen;
  double deltaEF;   // ISO 105-A05
  double gradeA05;  // 5 - log2(dE_F / 0.85), all four pairs lie above 3.4
  int stepA05;
  double gradeA04;  // ISO 105-A04
  int stepA04;
};

const HandPair kPairs[] = {
    // P1, a pure chroma difference at hue 270 (the blue correction at nearly full strength):
    //   dL = 2, dC = 5, dH = 0 (sqrt(29 - 4 - 25)), dE = sqrt(29) = 5.385164807
    //   h_m = 270, dh' = -10, C_m = 22.5, e = exp(-1/9) = 0.8948393168
    //   D = 0.8948393168 x 5 x 22.5 x 0.01 = 1.006694231
    //   dC_F = (5 - 1.006694231) / (1 + 0.45^2)  = 3.993305769 / 1.2025   = 3.320836398
    //   dH_F = (0 - 1.006694231) / (1 + 0.225^2) = -1.006694231 / 1.050625 = -0.958186062
    //     (the same D is taken from the hue term, so a pure chroma change shows a hue term)
    //   dE_F = sqrt(4 + 11.02795437 + 0.91814257) = 3.993253675 -> step 3 (>= 2.95)
    //   grade = 5 - log2(3.993253675 / 0.85) = 2.767970023
    //   A04: dE_GS = 5.385164807 - 0.4 x sqrt(29 - 4) = 3.385164807,
    //        SSR = 6.1 - 1.45 ln 3.385164807 = 4.331866 > 4 -> 5 - 0.23 x 3.385164807
    //        = 4.221412094; 5 - grade = 0.778587906 >= 0.76 -> step 4
    {"P1",
     {{50, 0, -20, 20, 270}},
     {{52, 0, -25, 25, 270}},
     3.9932536748472435,
     2.7679700230473082,
     3,
     4.2214120943590641,
     4},
    // P2, blue-violet, the specimen clockwise of the reference:
    //   h1 = 292.6198649, h2 = 286.2602047; dL = 2, da = 2, db = -12, dE = sqrt(152)
    //   dC = 25 - 13 = 12, dH^2 = 152 - 4 - 144 = 4; bs at - as bt = -84 + 120 = 36 > 0 -> dH = -2
    //   h_m = 289.4400348, dh' = 9.440034828, C_m = 19, e = exp(-0.0990159) = 0.9057283596
    //   D = 0.9057283596 x 12 x 19 x 0.01 = 2.065060660
    //   dC_F = (12 - 2.065060660) / (1 + 0.38^2) = 9.934939340 / 1.1444 = 8.681352097
    //   dH_F = (-2 - 2.065060660) / (1 + 0.19^2) = -4.065060660 / 1.0361 = -3.923425017
    //   dE_F = sqrt(4 + 75.36588 + 15.39326) = 9.734430548 -> step 12 (>= 8.2)
    //   grade = 5 - log2(9.734430548 / 0.85) = 1.482438161
    //   A04: dE_GS = sqrt(152) - 0.4 sqrt(148) = 12.32882801 - 4.86621003 = 7.462617982,
    //        SSR = 6.1 - 1.45 ln 7.462617982 = 3.185635882 (<= 4, the grade)
    //        5 - grade = 1.814364118 >= 1.76 -> step 3
    {"P2",
     {{40, 5, -12, 13, 292.61986494804043}},
     {{42, 7, -24, 25, 286.26020470831196}},
     9.7344305482617747,
     1.4824381607638854,
     12,
     3.1856358816217709,
     3},
    // P3, hues 196 degrees apart with h1 + h2 = 270 < 360, so 180 is added to the mean:
    //   h1 = 36.86989765, h2 = 233.1301024; dL = 5, da = -10, db = -11, dE = sqrt(246)
    //   dC = 10 - 5 = 5, dH^2 = 246 - 25 - 25 = 196; bs at - as bt = -18 + 32 = 14 > 0 -> dH = -14
    //   h_m = 135 + 180 = 315, dh' = 35, C_m = 7.5, e = exp(-49/36) = 0.2563757567
    //   D = 0.2563757567 x 5 x 7.5 x 0.01 = 0.09614090876
    //   dC_F = (5 - 0.09614090876) / 1.0225 = 4.795950211
    //   dH_F = (-14 - 0.09614090876) / 1.005625 = -14.01729363
    //   dE_F = sqrt(25 + 23.00115 + 196.48452) = 15.63603720 -> step 1 (>= 11.6)
    //   grade = 5 - log2(15.63603720 / 0.85) = 0.7987317297
    //   A04: dE_GS = sqrt(246) - 0.4 sqrt(221) = 9.737959642, SSR = 2.799754161 (the grade)
    //        5 - grade = 2.200245839 >= 1.76 -> step 3
    {"P3",
     {{45, 4, 3, 5, 36.869897645844021}},
     {{50, -6, -8, 10, 233.13010235415598}},
     15.636037196134479,
     0.79873172974454009,
     1,
     2.799754160550683,
     3},
    // P4, across the 0/360 seam: h1 + h2 >= 360, so 180 is subtracted, and dh' is folded:
    //   h1 = 343.7397953, h2 = 22.61986495; dL = 5, da = 12, db = 22, dE = sqrt(653)
    //   dC = 39 - 25 = 14, dH^2 = 653 - 25 - 196 = 432; bs at - as bt = -252 - 360 < 0
    //     -> dH = +sqrt(432) = 20.78460969
    //   h_m = 183.1798301 - 180 = 3.179830120, dh' = -276.8201699 -> 360 - 276.82 = 83.17983012
    //   C_m = 32, e = exp(-(83.17983012 / 30)^2) = 4.584547131e-4, D = 0.002053877115
    //   dC_F = (14 - 0.002053877) / (1 + 0.64^2) = 9.930438509
    //   dH_F = (20.78460969 - 0.002053877) / (1 + 0.32^2) = 18.85210070
    //   dE_F = sqrt(25 + 98.61361 + 355.40170) = 21.88641839 -> step 1
    //   grade = 5 - log2(21.88641839 / 0.85) = 0.3135707681
    //   A04: dE_GS = sqrt(653) - 0.4 sqrt(628) = 15.52989341, SSR = 2.122988178
    //        5 - grade = 2.877011822 >= 2.76 -> step 2
    {"P4",
     {{50, 24, -7, 25, 343.73979529168804}},
     {{55, 36, 15, 39, 22.619864948040426}},
     21.886418388167319,
     0.31357076805764427,
     1,
     2.1229881782633622,
     2},
};

// --------------------------------------------------------------- formulas on CIELAB

TEST(FastnessGradesFromLab, HandCalculations) {
  for (const HandPair& p : kPairs) {
    SCOPED_TRACE(p.name);
    ExpectClose(GreyScaleDeltaEFFromLab(p.reference.v, p.specimen.v), p.deltaEF);
    ExpectClose(StainGradeFromLab(p.reference.v, p.specimen.v), p.gradeA04);
    // Neither result depends on which record is the reference.
    ExpectClose(GreyScaleDeltaEFFromLab(p.specimen.v, p.reference.v), p.deltaEF);
    ExpectClose(StainGradeFromLab(p.specimen.v, p.reference.v), p.gradeA04);
  }
}

// The hue mean moves by 180 only when the hues lie strictly more than 180 apart. The stored
// hue is read as given (a*, b* only feed dE and dH), so the pair sits exactly on the edge:
//   reference (50, 10, 0, C 10, h 0), specimen (50, -20, 0, C 20, h2):
//   dL = 0, dC = 10, dE = 30, dH = sqrt(900 - 100) = 28.28427125, C_m = 15.
//   h2 = 180:   h_m = 90, dh' = -190 -> 170, e = 1.133e-14, D ~ 1.7e-14:
//               dC_F = 10 / 1.09 = 9.174311927, dH_F = 28.28427125 / 1.0225 = 27.66187897,
//               dE_F = 29.14356786
//   h2 = 180.5: h_m = 90.25 + 180 = 270.25, dh' = -9.75, e = 0.8997619956, D = 1.349642993:
//               dC_F = 8.650357007 / 1.09 = 7.936107346, dH_F = 26.93462826 / 1.0225
//               = 26.34193472, dE_F = 27.51143989
TEST(FastnessGradesFromLab, HueMeanMovesOnlyBeyondHalfTurn) {
  const Lab reference = {{50, 10, 0, 10, 0}};
  const Lab onEdge = {{50, -20, 0, 20, 180.0}};
  const Lab beyond = {{50, -20, 0, 20, 180.5}};
  ExpectClose(GreyScaleDeltaEFFromLab(reference.v, onEdge.v), 29.143567858312123);
  ExpectClose(GreyScaleDeltaEFFromLab(reference.v, beyond.v), 27.511439888576861);
}

// ISO 105-A04: the logarithmic score replaces the linear form only when SSR <= 4. With a pure
// lightness difference d, dE*ab = |dL*| = d and dE_GS = d exactly; SSR = 4 at
// d* = exp(2.1 / 1.45) = 4.255770650465948.
//   d* - 1e-6: SSR = 4.0000003407 > 4 -> 5 - 0.23 d = 4.021172980392832
//   d* + 1e-6: SSR = 3.9999996592861908, the grade
TEST(FastnessGradesFromLab, StainScoreLimitFromBothSides) {
  const Lab black = {{0, 0, 0, 0, 0}};
  const Lab below = {{4.2557696504659476, 0, 0, 0, 0}};
  const Lab above = {{4.2557716504659476, 0, 0, 0, 0}};
  ExpectClose(StainGradeFromLab(black.v, below.v), 4.0211729803928321);
  ExpectClose(StainGradeFromLab(black.v, above.v), 3.9999996592861908);
  // No difference at all: the linear form with dE_GS = 0, exactly 5.
  EXPECT_EQ(StainGradeFromLab(black.v, black.v), 5.0);
  EXPECT_EQ(GreyScaleDeltaEFFromLab(black.v, black.v), 0.0);
}

TEST(FastnessGradesFromLab, MissingCoordinate) {
  for (int i = 0; i < 5; ++i) {
    Lab bad = kPairs[1].specimen;
    bad.v[i] = kMissing;
    EXPECT_EQ(GreyScaleDeltaEFFromLab(kPairs[1].reference.v, bad.v), kMissing) << i;
    EXPECT_EQ(StainGradeFromLab(bad.v, kPairs[1].reference.v), kMissing) << i;
  }
}

// ISO 105-A05 grade: 5 - E / 1.7 up to and including 3.4, then 5 - log2(E / 0.85).
//   3.39: linear 5 - 1.994117647 = 3.005882353    (log form would give 3.004249)
//   3.4:  linear, exactly 3
//   3.41: 5 - log2(4.011764706) = 2.995763007     (linear form would give 2.994118)
TEST(GreyScaleGradeFromDeltaEF, BranchesFromBothSides) {
  ExpectClose(GreyScaleGradeFromDeltaEF(3.39), 3.0058823529411765);
  EXPECT_EQ(GreyScaleGradeFromDeltaEF(3.4), 3.0);
  ExpectClose(GreyScaleGradeFromDeltaEF(3.41), 2.9957630071135293);
}

// --------------------------------------------------------------- record forms

CValueVector3 ToXYZ(int illuminant, int observer, const Lab& lab) {
  CValueVector3 xyz;
  LabToXYZ(illuminant, observer, lab.v[0], lab.v[1], lab.v[2], xyz);
  return xyz;
}

class ScopedHueUnit {
 public:
  explicit ScopedHueUnit(int degrees) : saved_(GetHueInDegrees()) { SetHueInDegrees(degrees); }
  ~ScopedHueUnit() { SetHueInDegrees(saved_); }
  ScopedHueUnit(const ScopedHueUnit&) = delete;
  ScopedHueUnit& operator=(const ScopedHueUnit&) = delete;

 private:
  int saved_;
};

// The hand pairs as tristimulus values under two different whites: the records must be
// converted with the illuminant and observer given (all pairs lie on the cube-root branch,
// where LabToXYZ and XYZToLab invert each other to about 1e-14). P1 is left out: its dH is a
// square root of a rounding remainder near 0, which amplifies 1e-14 to about 1e-7.
TEST(FastnessGrades, RecordFormsReproduceHandCalculations) {
  const struct { int illuminant, observer; } pairsOfWhite[] = {{kIllA, 0}, {kIllD65, 1}};
  for (const auto& w : pairsOfWhite) {
    for (const HandPair& p : kPairs) {
      if (std::string(p.name) == "P1") continue;
      SCOPED_TRACE(std::string(p.name) + " illuminant " + std::to_string(w.illuminant));
      const CValueVector3 ref = ToXYZ(w.illuminant, w.observer, p.reference);
      const CValueVector3 specimen = ToXYZ(w.illuminant, w.observer, p.specimen);
      for (int swap = 0; swap < 2; ++swap) {
        const CValueVector3& first = swap ? specimen : ref;
        const CValueVector3& second = swap ? ref : specimen;
        ExpectClose(GreyScaleDeltaEF(w.illuminant, w.observer, first, second), p.deltaEF);
        ExpectClose(GreyScaleGradeA05(w.illuminant, w.observer, first, second), p.gradeA05);
        EXPECT_EQ(GreyScaleStepA05(w.illuminant, w.observer, first, second), p.stepA05);
        ExpectClose(StainGradeA04(w.illuminant, w.observer, first, second), p.gradeA04);
        EXPECT_EQ(StainStepA04(w.illuminant, w.observer, first, second), p.stepA04);
      }
    }
  }
}

// The hue is read in the interface unit: in radian mode the same pair gives the same dE_F.
TEST(FastnessGrades, HueUnitFollowsTheOption) {
  const HandPair& p = kPairs[3];  // P4, whose result depends on the seam and the fold
  const CValueVector3 ref = ToXYZ(kIllD65, 1, p.reference);
  const CValueVector3 specimen = ToXYZ(kIllD65, 1, p.specimen);
  ScopedHueUnit radians(0);
  ExpectClose(GreyScaleDeltaEF(kIllD65, 1, ref, specimen), p.deltaEF);
}

TEST(FastnessGrades, IdenticalColoursGradeFive) {
  const CValueVector3 xyz = ToXYZ(kIllD65, 1, kPairs[1].reference);
  EXPECT_EQ(StainGradeA04(kIllD65, 1, xyz, xyz), 5.0);
  EXPECT_EQ(StainStepA04(kIllD65, 1, xyz, xyz), 5.0);
  EXPECT_EQ(GreyScaleDeltaEF(kIllD65, 1, xyz, xyz), 0.0);
  EXPECT_EQ(GreyScaleGradeA05(kIllD65, 1, xyz, xyz), 5.0);
  EXPECT_EQ(GreyScaleStepA05(kIllD65, 1, xyz, xyz), 5.0);
  std::string text;
  FormatStepCode(static_cast<long>(StainStepA04(kIllD65, 1, xyz, xyz)), text);
  EXPECT_EQ(text, " 5 ");
}

// Lightness differences on either side of the 4-5 edge (dE_F = |dL*| when a* = b* = 0):
//   0.41: A05 step 45, text "4-5";  0.39: step 5.
//   A04 for the same pairs: dE_GS = dL, 5 - grade = 0.23 dL = 0.0943 / 0.0897 -> step 5.
TEST(FastnessGrades, GreyScaleStepAroundFourFive) {
  const CValueVector3 ref = ToXYZ(kIllD65, 1, {{50, 0, 0, 0, 0}});
  const CValueVector3 near = ToXYZ(kIllD65, 1, {{50.39, 0, 0, 0, 0}});
  const CValueVector3 far = ToXYZ(kIllD65, 1, {{50.41, 0, 0, 0, 0}});
  EXPECT_EQ(GreyScaleStepA05(kIllD65, 1, ref, near), 5.0);
  EXPECT_EQ(GreyScaleStepA05(kIllD65, 1, ref, far), 45.0);
  std::string text;
  FormatStepCode(static_cast<long>(GreyScaleStepA05(kIllD65, 1, ref, far)), text);
  EXPECT_EQ(text, "4-5");
  EXPECT_EQ(StainStepA04(kIllD65, 1, ref, far), 5.0);
  ExpectClose(StainGradeA04(kIllD65, 1, ref, far), 5.0 - 0.23 * 0.41, 1e-12);
}

TEST(FastnessGrades, MissingInputsGiveMissing) {
  const CValueVector3 good = ToXYZ(kIllD65, 1, kPairs[1].reference);
  CValueVector3 empty;
  empty.RemoveAll();
  CValueVector3 allMissing;
  CValueVector3 oneMissing = good;
  CValueVector3 shortRecord;
  shortRecord.SetSize(2);
  for (int i = 0; i < 3; ++i) allMissing[i] = kMissing;
  oneMissing[1] = kMissing;
  shortRecord[0] = shortRecord[1] = 50.0;

  using Function = double (*)(int, int, const CValueVector3&, const CValueVector3&);
  const Function functions[] = {StainGradeA04, StainStepA04, GreyScaleDeltaEF, GreyScaleGradeA05,
                                GreyScaleStepA05};
  const CValueVector3* bad[] = {&empty, &allMissing, &oneMissing, &shortRecord};
  for (std::size_t f = 0; f < std::size(functions); ++f) {
    for (std::size_t b = 0; b < std::size(bad); ++b) {
      EXPECT_EQ(functions[f](kIllD65, 1, *bad[b], good), kMissing) << f << ' ' << b;
      EXPECT_EQ(functions[f](kIllD65, 1, good, *bad[b]), kMissing) << f << ' ' << b;
    }
    // An illuminant without a weighting table.
    EXPECT_EQ(functions[f](17, 1, good, good), kMissing) << f;
    EXPECT_EQ(functions[f](-1, 0, good, good), kMissing) << f;
  }
}

}  // namespace
}  // namespace velquor
