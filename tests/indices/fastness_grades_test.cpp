// ISO 105-A04 staining and ISO 105-A05 change-in-colour grades: hand calculations of dE_F and
// the staining grade (tests/data/reference/indices_fastness_*.csv), both branches of each grade
// rule from both sides, the hue-mean rules, the record forms under two illuminants and in either
// hue unit, and missing inputs.
#include "velquor/indices/fastness_grades.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>

#include "reference_table.h"
#include "tolerances.h"
#include "velquor/colorimetry/lab.h"
#include "velquor/frame/numeric.h"
#include "velquor/frame/options.h"
#include "velquor/indices/step_code.h"

namespace velquor {
namespace {

using test::LoadReferenceTable;
using test::ReferenceRow;

constexpr int kIllA = 0;
constexpr int kIllD65 = 2;

// Hand calculations to 10 digits: relative, absolute below 1.
void ExpectClose(double actual, double expected) {
  EXPECT_NEAR(actual, expected, test::kIndependent * std::max(1.0, std::fabs(expected)));
}

struct Lab {
  double v[5];  // L*, a*, b*, C*ab, hab in degrees
};

Lab Record(const ReferenceRow& row, const char* which) {
  Lab lab;
  const char* names[] = {"L", "a", "b", "C", "h"};
  for (int i = 0; i < 5; ++i) lab.v[i] = row.Number(std::string(names[i]) + which);
  return lab;
}

const auto& Pairs() { return LoadReferenceTable("reference/indices_fastness_pairs.csv"); }

TEST(FastnessGradesFromLab, HandCalculationsAndEdgesInEitherOrder) {
  for (const auto& row : Pairs()) {
    SCOPED_TRACE(row.Where());
    const Lab reference = Record(row, "1"), specimen = Record(row, "2");
    for (const auto& [first, second] : {std::pair{reference, specimen}, {specimen, reference}}) {
      ExpectClose(GreyScaleDeltaEFFromLab(first.v, second.v), row.Number("dEF"));
      ExpectClose(StainGradeFromLab(first.v, second.v), row.Number("gradeA04"));
    }
  }
  for (const auto& row : LoadReferenceTable("reference/indices_fastness_edges.csv")) {
    SCOPED_TRACE(row.Where());
    const Lab reference = Record(row, "1"), specimen = Record(row, "2");
    ExpectClose(row.Text("formula") == "A04" ? StainGradeFromLab(reference.v, specimen.v)
                                             : GreyScaleDeltaEFFromLab(reference.v, specimen.v),
                row.Number("expected"));
  }
  for (int i = 0; i < 5; ++i) {
    Lab bad = Record(Pairs()[1], "2");
    bad.v[i] = kMissing;
    EXPECT_EQ(GreyScaleDeltaEFFromLab(Record(Pairs()[1], "1").v, bad.v), kMissing) << i;
    EXPECT_EQ(StainGradeFromLab(bad.v, Record(Pairs()[1], "1").v), kMissing) << i;
  }
}

// ISO 105-A05 grade: 5 - E / 1.7 up to and including 3.4, then 5 - log2(E / 0.85).
//   3.39: linear 5 - 1.994117647 (the log form would give 3.004249); 3.4: exactly 3;
//   3.41: 5 - log2(4.011764706) (the linear form would give 2.994118).
TEST(GreyScaleGradeFromDeltaEF, BranchesFromBothSides) {
  ExpectClose(GreyScaleGradeFromDeltaEF(3.39), 3.0058823529411765);
  EXPECT_EQ(GreyScaleGradeFromDeltaEF(3.4), 3.0);
  ExpectClose(GreyScaleGradeFromDeltaEF(3.41), 2.9957630071135293);
}

CValueVector3 ToXYZ(int illuminant, int observer, const Lab& lab) {
  CValueVector3 xyz;
  LabToXYZ(illuminant, observer, lab.v[0], lab.v[1], lab.v[2], xyz);
  return xyz;
}

// The hand pairs as tristimulus values under two different whites, and in radian mode (the hue
// is read in the interface unit): the records must be converted with the illuminant and
// observer given. P1 is left out: its dH is a square root of a rounding remainder near 0, which
// amplifies the 1e-14 of the Lab round trip to about 1e-7.
TEST(FastnessGrades, RecordFormsReproduceHandCalculations) {
  const int savedUnit = GetHueInDegrees();
  const struct { int illuminant, observer, degrees; } setups[] = {
      {kIllA, 0, 1}, {kIllD65, 1, 1}, {kIllD65, 1, 0}};
  for (const auto& w : setups) {
    SetHueInDegrees(w.degrees);
    for (const auto& row : Pairs()) {
      if (row.Text("name") == "P1") continue;
      SCOPED_TRACE(row.Where() + " illuminant " + std::to_string(w.illuminant));
      const CValueVector3 ref = ToXYZ(w.illuminant, w.observer, Record(row, "1"));
      const CValueVector3 specimen = ToXYZ(w.illuminant, w.observer, Record(row, "2"));
      for (const auto& [first, second] : {std::pair{ref, specimen}, {specimen, ref}}) {
        ExpectClose(GreyScaleDeltaEF(w.illuminant, w.observer, first, second), row.Number("dEF"));
        ExpectClose(GreyScaleGradeA05(w.illuminant, w.observer, first, second),
                    row.Number("gradeA05"));
        EXPECT_EQ(GreyScaleStepA05(w.illuminant, w.observer, first, second),
                  row.Number("stepA05"));
        ExpectClose(StainGradeA04(w.illuminant, w.observer, first, second),
                    row.Number("gradeA04"));
        EXPECT_EQ(StainStepA04(w.illuminant, w.observer, first, second), row.Number("stepA04"));
      }
    }
  }
  SetHueInDegrees(savedUnit);
}

// Lightness steps d around the 4-5 edge (dE_F = d when a* = b* = 0, both grades linear):
// A05 step 45 at 0.41, 5 at 0.39 and for identical colours; A04 5 - 0.23 d, step 5.
TEST(FastnessGrades, StepsAroundFourFiveAndIdenticalColours) {
  const CValueVector3 ref = ToXYZ(kIllD65, 1, {{50, 0, 0, 0, 0}});
  const struct { double d, stepA05; const char* text; } cases[] = {
      {0.41, 45, "4-5"}, {0.39, 5, " 5 "}, {0.0, 5, " 5 "}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.d);
    const CValueVector3 specimen = ToXYZ(kIllD65, 1, {{50 + c.d, 0, 0, 0, 0}});
    EXPECT_EQ(GreyScaleStepA05(kIllD65, 1, ref, specimen), c.stepA05);
    std::string text;
    FormatStepCode(static_cast<long>(GreyScaleStepA05(kIllD65, 1, ref, specimen)), text);
    EXPECT_EQ(text, c.text);
    ExpectClose(GreyScaleDeltaEF(kIllD65, 1, ref, specimen), c.d);
    ExpectClose(GreyScaleGradeA05(kIllD65, 1, ref, specimen), 5.0 - c.d / 1.7);
    EXPECT_EQ(StainStepA04(kIllD65, 1, ref, specimen), 5.0);
    ExpectClose(StainGradeA04(kIllD65, 1, ref, specimen), 5.0 - 0.23 * c.d);
  }
}

TEST(FastnessGrades, MissingInputsGiveMissing) {
  const CValueVector3 good = ToXYZ(kIllD65, 1, Record(Pairs()[1], "1"));
  CValueVector3 empty, allMissing, oneMissing = good, shortRecord;
  empty.RemoveAll();
  shortRecord.SetSize(2);
  for (int i = 0; i < 3; ++i) allMissing[i] = kMissing;
  oneMissing[1] = kMissing;
  shortRecord[0] = shortRecord[1] = 50.0;

  using Function = double (*)(int, int, const CValueVector3&, const CValueVector3&);
  const Function functions[] = {StainGradeA04, StainStepA04, GreyScaleDeltaEF, GreyScaleGradeA05,
                                GreyScaleStepA05};
  for (std::size_t f = 0; f < std::size(functions); ++f) {
    for (const CValueVector3* bad : {&empty, &allMissing, &oneMissing, &shortRecord}) {
      EXPECT_EQ(functions[f](kIllD65, 1, *bad, good), kMissing) << f;
      EXPECT_EQ(functions[f](kIllD65, 1, good, *bad), kMissing) << f;
    }
    // An illuminant without a weighting table.
    EXPECT_EQ(functions[f](17, 1, good, good), kMissing) << f;
    EXPECT_EQ(functions[f](-1, 0, good, good), kMissing) << f;
  }
}

}  // namespace
}  // namespace velquor
