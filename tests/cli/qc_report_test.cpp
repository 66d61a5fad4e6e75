// The QC comparison: verdicts at the tolerance, batch statistics, missing values and the
// tolerance shape, the last checked against LittleCMS's own difference formulas.
#include <gtest/gtest.h>
#if VELQUOR_HAVE_LCMS2
#include <lcms2.h>
#endif

#include <algorithm>
#include <cmath>

#include "choices.h"
#include "qc_report.h"
#include "reference_table.h"
#include "tolerance_contour.h"
#include "tolerances.h"
#include "velquor/frame/constants.h"

namespace velquor::cli {
namespace {

// A yellowish ramp; `missing` marks the value at 360 + 10 * missing nm as missing.
QcSample Sample(double level, double tilt, int missing = -1) {
  QcSample sample;
  for (std::size_t i = 0; i < CKSData::kLength; ++i) sample.curve[i] = level + tilt * i;
  if (missing >= 0) sample.curve[missing] = kMissing;
  sample.hasMissing = missing >= 0;
  return sample;
}

QcSettings Settings(const char* system, double tolerance, const char* conditions = "D65/10") {
  QcSettings settings;
  std::string error;
  EXPECT_TRUE(ParseDifferenceSystem(system, settings.system, error)) << error;
  EXPECT_TRUE(ParseConditions(conditions, 1, settings.conditions, error)) << error;
  settings.tolerance = tolerance;
  return settings;
}

TEST(QcReport, TrialExactlyAtTheTolerancePasses) {
  const auto compare = [](double tolerance) {
    return ComputeQcReport(Settings("cielab", tolerance), Sample(20, 1), {Sample(21, 1)});
  };
  const double total = compare(100).trials[0].results[0].difference[6];
  ASSERT_GT(total, 0.1);
  EXPECT_TRUE(compare(total).AllPassed());
  const QcReport below = compare(total * (1 - test::kExactFormula));
  EXPECT_FALSE(below.AllPassed());
  EXPECT_EQ(below.summaries[0].failed, 1u);
}

TEST(QcReport, SummaryCountsAndWorstTenthRoundsUp) {
  std::vector<QcSample> trials;
  for (int i = 0; i < 11; ++i) trials.push_back(Sample(20 + 0.1 * i, 1));
  trials.push_back(Sample(20, 1, 14));
  const QcReport report =
      ComputeQcReport(Settings("cmc:2:1", 0.5, "D65/10,A/2"), Sample(20, 1), trials);
  ASSERT_EQ(report.summaries.size(), 2u);
  for (std::size_t c = 0; c < 2; ++c) {
    std::vector<double> totals;  // the rejected trial's as -1
    for (const QcSample& trial : report.trials) {
      totals.push_back(trial.results[c].computed ? trial.results[c].difference[6] : -1);
    }
    std::sort(totals.rbegin(), totals.rend());
    const std::size_t passed =
        std::count_if(totals.begin(), totals.end(), [](double t) { return t >= 0 && t <= 0.5; });
    const QcSummary& s = report.summaries[c];
    EXPECT_EQ(std::tie(s.trials, s.rejected, s.passed, s.failed),
              std::make_tuple(std::size_t{12}, std::size_t{1}, passed, 11 - passed));
    EXPECT_DOUBLE_EQ(s.max, totals[0]);
    EXPECT_DOUBLE_EQ(s.worst10, (totals[0] + totals[1]) / 2);  // 11 trials: the worst 2
  }
  EXPECT_EQ(report.trials.back().note, "missing values at 500 nm");
  EXPECT_FALSE(report.trials.back().results[0].computed);
}

// A standard with a missing value, or one whose X, Y, Z overflow, rejects every trial.
TEST(QcReport, UnusableStandardRejectsEveryTrial) {
  for (const QcSample& standard : {Sample(20, 1, 0), Sample(1e308, 0)}) {
    const QcReport report = ComputeQcReport(Settings("cielab", 1), standard, {Sample(20, 1)});
    EXPECT_EQ(report.summaries[0].rejected, 1u);
    EXPECT_FALSE(report.AllPassed());
    EXPECT_TRUE(report.toleranceContour.empty());
    EXPECT_EQ(report.trials[0].note.rfind("standard rejected: ", 0), 0u) << report.trials[0].note;
  }
}

TEST(QcReport, SlotLabelsAndShadeWords) {
  for (const auto& row : test::LoadReferenceTable("reference/cli_slot_labels.csv")) {
    EXPECT_EQ(DifferenceSlotLabels(row.Integer("system"))
                  .at(static_cast<std::size_t>(row.Integer("slot"))),
              row.Text("label"))
        << row.Where();
  }
  EXPECT_EQ(ShadeWords("Darker,Redder, "), "Darker, Redder");
  EXPECT_EQ(ShadeWords(" , , "), "");
}

#if VELQUOR_HAVE_LCMS2  // LittleCMS is not in the Windows cross build
// Each contour point lies at the tolerance by an independent implementation of the system, a
// circle for CIELAB and an ellipse for the others. (LittleCMS weights CIE94 by the geometric
// mean chroma of the pair, not the standard's, so it is no reference for that system.)
TEST(ToleranceContour, EveryPointIsAtTheTolerance) {
  const auto reference = [](int k, const cmsCIELab& s, const cmsCIELab& t) {
    return k == 0   ? cmsDeltaE(&s, &t)
           : k == 1 ? cmsCMCdeltaE(&s, &t, 2, 1)
                    : cmsCIE2000DeltaE(&s, &t, 1, 1, 1);
  };
  const cmsCIELab standard{55, 30, 40};  // an orange well away from the CIELAB breakpoint
  CValueVector5 lab;
  lab[0] = standard.L, lab[1] = standard.a, lab[2] = standard.b;
  for (int k = 0; k < 3; ++k) {
    const char* name = std::array{"cielab", "cmc:2:1", "cie2000:1:1:1"}[k];
    const QcSettings settings = Settings(name, 1.5);
    const auto contour = ToleranceContour(lab, settings.conditions[0], settings.system, 1.5);
    ASSERT_EQ(contour.size(), static_cast<std::size_t>(kContourPoints)) << name;
    double shortest = 1e9, longest = 0;
    for (const auto& point : contour) {
      const cmsCIELab trial{standard.L, standard.a + point[0], standard.b + point[1]};
      EXPECT_NEAR(reference(k, standard, trial), 1.5, test::kSearch) << name;
      shortest = std::min(shortest, std::hypot(point[0], point[1]));
      longest = std::max(longest, std::hypot(point[0], point[1]));
    }
    EXPECT_EQ(longest / shortest > 1.2, k != 0) << name;  // CIELAB draws a circle
  }
}
#endif

}  // namespace
}  // namespace velquor::cli
