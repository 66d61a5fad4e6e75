// ISO 105-A04 staining and ISO 105-A05 change-in-colour grades: hand calculations of dE_F and
// the staining grade (tests/data/reference/indices_fastness_*.csv), both branches of each grade
// rule from both sides, the hue-mean rules, the record forms under two illuminants and in either
// hue unit, and missing inputs.
#include "velquor/indices/fastness_grades.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <string>

#include "reference_table.h"
#include "tolerances.h"
#include "velquor/colorimetry/lab.h"
#include "velquor/frame/numeric.h"
#include "velquor/frame/options.h"

namespace velquor {
namespace {

using test::LoadReferenceTable;
using Lab = std::array<double, 5>;  // L*, a*, b*, C*ab, hab in degrees

// Hand calculations to 10 digits: relative, absolute below 1.
void ExpectClose(double actual, double expected) {
  EXPECT_NEAR(actual, expected, test::kIndependent * std::max(1.0, std::fabs(expected)));
}

Lab Record(const test::ReferenceRow& row, const std::string& which) {
  return {row.Number("L" + which), row.Number("a" + which), row.Number("b" + which),
          row.Number("C" + which), row.Number("h" + which)};
}

const auto& Pairs() { return LoadReferenceTable("reference/indices_fastness_pairs.csv"); }

CValueVector3 ToXYZ(int illuminant, int observer, const Lab& lab) {
  CValueVector3 xyz;
  LabToXYZ(illuminant, observer, lab[0], lab[1], lab[2], xyz);
  return xyz;
}

TEST(FastnessGradesFromLab, HandCalculationsAndEdgesInEitherOrder) {
  for (const auto& row : Pairs()) {
    SCOPED_TRACE(row.Where());
    const Lab reference = Record(row, "1"), specimen = Record(row, "2");
    for (const auto& [first, second] : {std::pair{reference, specimen}, {specimen, reference}}) {
      ExpectClose(GreyScaleDeltaEFFromLab(first.data(), second.data()), row.Number("dEF"));
      ExpectClose(StainGradeFromLab(first.data(), second.data()), row.Number("gradeA04"));
    }
  }
  for (const auto& row : LoadReferenceTable("reference/indices_fastness_edges.csv")) {
    const Lab reference = Record(row, "1"), specimen = Record(row, "2");
    ExpectClose(row.Text("formula") == "A04"
                    ? StainGradeFromLab(reference.data(), specimen.data())
                    : GreyScaleDeltaEFFromLab(reference.data(), specimen.data()),
                row.Number("expected"));
  }
  const Lab good = Record(Pairs()[1], "1");
  for (int i = 0; i < 5; ++i) {
    Lab bad = Record(Pairs()[1], "2");
    bad[i] = kMissing;
    EXPECT_EQ(GreyScaleDeltaEFFromLab(good.data(), bad.data()), kMissing) << i;
    EXPECT_EQ(StainGradeFromLab(bad.data(), good.data()), kMissing) << i;
  }
  // ISO 105-A05 grade: 5 - E / 1.7 up to and including 3.4, then 5 - log2(E / 0.85).
  //   3.39: linear 5 - 1.994117647 (the log form would give 3.004249); 3.4: exactly 3;
  //   3.41: 5 - log2(4.011764706) (the linear form would give 2.994118).
  ExpectClose(GreyScaleGradeFromDeltaEF(3.39), 3.0058823529411765);
  EXPECT_EQ(GreyScaleGradeFromDeltaEF(3.4), 3.0);
  ExpectClose(GreyScaleGradeFromDeltaEF(3.41), 2.9957630071135293);
}

// The hand pairs as tristimulus values under two different whites, and in radian mode (the hue
// is read in the interface unit): the records must be converted with the illuminant and
// observer given. P1 is left out: its dH is a square root of a rounding remainder near 0, which
// amplifies the 1e-14 of the Lab round trip to about 1e-7.
TEST(FastnessGrades, RecordFormsReproduceHandCalculations) {
  const int savedUnit = GetHueInDegrees();
  const struct { int illuminant, observer, degrees; } setups[] = {{0, 0, 1}, {2, 1, 1}, {2, 1, 0}};
  for (const auto& [ill, obs, degrees] : setups) {
    SetHueInDegrees(degrees);
    for (const auto& row : Pairs()) {
      if (row.Text("name") == "P1") continue;
      SCOPED_TRACE(row.Where() + " illuminant " + std::to_string(ill));
      const CValueVector3 ref = ToXYZ(ill, obs, Record(row, "1"));
      const CValueVector3 specimen = ToXYZ(ill, obs, Record(row, "2"));
      for (const auto& [first, second] : {std::pair{ref, specimen}, {specimen, ref}}) {
        ExpectClose(GreyScaleDeltaEF(ill, obs, first, second), row.Number("dEF"));
        ExpectClose(GreyScaleGradeA05(ill, obs, first, second), row.Number("gradeA05"));
        ExpectClose(StainGradeA04(ill, obs, first, second), row.Number("gradeA04"));
        EXPECT_EQ(GreyScaleStepA05(ill, obs, first, second), row.Number("stepA05"));
        EXPECT_EQ(StainStepA04(ill, obs, first, second), row.Number("stepA04"));
      }
    }
  }
  SetHueInDegrees(savedUnit);
}

TEST(FastnessGrades, MissingInputsOrIlluminantGiveMissing) {
  const CValueVector3 good = ToXYZ(2, 1, Record(Pairs()[1], "1"));
  CValueVector3 oneMissing = good, shortRecord;
  oneMissing[1] = kMissing;
  shortRecord.SetSize(2);
  for (auto* function : {StainGradeA04, StainStepA04, GreyScaleDeltaEF, GreyScaleGradeA05,
                         GreyScaleStepA05}) {
    for (const CValueVector3* bad : {&oneMissing, &shortRecord}) {
      EXPECT_EQ(function(2, 1, *bad, good), kMissing);
      EXPECT_EQ(function(2, 1, good, *bad), kMissing);
    }
    EXPECT_EQ(function(17, 1, good, good), kMissing);  // no weighting table
    EXPECT_EQ(function(-1, 0, good, good), kMissing);
  }
}

}  // namespace
}  // namespace velquor
