// The QC comparison: verdicts at the tolerance, batch statistics, missing values and the
// tolerance shape, the last checked against LittleCMS's own difference formulas.
#include <gtest/gtest.h>
#include <lcms2.h>

#include <algorithm>
#include <cmath>

#include "choices.h"
#include "qc_report.h"
#include "tolerance_contour.h"
#include "tolerances.h"
#include "velquor/frame/constants.h"

namespace velquor::cli {
namespace {

QcSample Sample(std::string name, double level, double tilt) {
  QcSample sample;
  sample.name = std::move(name);
  for (std::size_t i = 0; i < CKSData::kLength; ++i) {
    sample.curve[i] = level + tilt * static_cast<double>(i);  // a yellowish ramp
  }
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
    return ComputeQcReport(Settings("cielab", tolerance), Sample("std", 20, 1),
                           {Sample("t", 21, 1)});
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
  for (int i = 0; i < 11; ++i) trials.push_back(Sample("t", 20 + 0.1 * i, 1));
  QcSample gap = Sample("gap", 20, 1);
  gap.curve[14] = kMissing;
  gap.hasMissing = true;
  trials.push_back(gap);
  const QcReport report =
      ComputeQcReport(Settings("cmc:2:1", 0.5, "D65/10,A/2"), Sample("std", 20, 1), trials);
  ASSERT_EQ(report.summaries.size(), 2u);
  for (std::size_t c = 0; c < 2; ++c) {
    std::vector<double> totals;
    for (const QcSample& trial : report.trials) {
      if (trial.results[c].computed) totals.push_back(trial.results[c].difference[6]);
    }
    std::sort(totals.rbegin(), totals.rend());
    const QcSummary& s = report.summaries[c];
    EXPECT_EQ(s.trials, 12u);
    EXPECT_EQ(s.rejected, 1u);
    EXPECT_EQ(s.passed + s.failed, 11u);
    EXPECT_EQ(s.passed, static_cast<std::size_t>(std::count_if(totals.begin(), totals.end(),
                                                               [](double t) { return t <= 0.5; })));
    EXPECT_DOUBLE_EQ(s.max, totals[0]);
    EXPECT_DOUBLE_EQ(s.worst10, (totals[0] + totals[1]) / 2);  // 11 trials: the worst 2
  }
  EXPECT_EQ(report.trials.back().note, "missing values at 500 nm");
  EXPECT_FALSE(report.trials.back().results[0].computed);
}

// A standard with a missing value, or one whose X, Y, Z overflow, rejects every trial.
TEST(QcReport, UnusableStandardRejectsEveryTrial) {
  QcSample missing = Sample("std", 20, 1);
  missing.curve[0] = kMissing;
  missing.hasMissing = true;
  for (const QcSample& standard : {missing, Sample("std", 1e308, 0)}) {
    const QcReport report = ComputeQcReport(Settings("cielab", 1), standard, {Sample("t", 20, 1)});
    EXPECT_EQ(report.summaries[0].rejected, 1u);
    EXPECT_FALSE(report.AllPassed());
    EXPECT_TRUE(report.toleranceContour.empty());
    EXPECT_EQ(report.trials[0].note.rfind("standard rejected: ", 0), 0u) << report.trials[0].note;
  }
}

TEST(QcReport, SlotLabelsFollowTheSystemsColumns) {
  EXPECT_EQ(DifferenceSlotLabels(1), (std::vector<std::string>{"ΔL*", "Δa*", "Δb*", "ΔL*cmc",
                                                               "ΔC*cmc", "ΔH*cmc", "ΔE*cmc"}));
  EXPECT_EQ(DifferenceSlotLabels(0),
            (std::vector<std::string>{"ΔL*", "Δa*", "Δb*", "(slot 4)", "ΔC*", "ΔH*", "ΔE*ab"}));
  EXPECT_EQ(DifferenceSlotLabels(3)[4], "ΔC");
  EXPECT_EQ(DifferenceSlotLabels(2)[6], "ΔEab");
  EXPECT_EQ(DifferenceSlotLabels(2)[3], "(slot 4)");
}

TEST(QcReport, ShadeWordsDropBlankFields) {
  for (const auto& [shade, words] :
       {std::pair{"Darker,Redder, ", "Darker, Redder"}, {" , ,Bluer", "Bluer"}, {" , , ", ""}}) {
    EXPECT_EQ(ShadeWords(shade), words);
  }
}

// Each contour point lies at the tolerance by an independent implementation of the system.
// (LittleCMS weights CIE94 by the geometric mean chroma of the pair, not the standard's, so it
// is no reference for that system.)
TEST(ToleranceContour, EveryPointIsAtTheTolerance) {
  using Reference = double (*)(const cmsCIELab&, const cmsCIELab&);
  const std::pair<const char*, Reference> kSystems[] = {
      {"cielab", [](const cmsCIELab& s, const cmsCIELab& t) { return cmsDeltaE(&s, &t); }},
      {"cmc:2:1",
       [](const cmsCIELab& s, const cmsCIELab& t) { return cmsCMCdeltaE(&s, &t, 2, 1); }},
      {"cie2000:1:1:1",
       [](const cmsCIELab& s, const cmsCIELab& t) { return cmsCIE2000DeltaE(&s, &t, 1, 1, 1); }},
  };
  const cmsCIELab standard{55, 30, 40};  // an orange well away from the CIELAB breakpoint
  CValueVector5 lab;
  lab[0] = standard.L;
  lab[1] = standard.a;
  lab[2] = standard.b;
  const double tolerance = 1.5;
  for (const auto& [name, reference] : kSystems) {
    const QcSettings settings = Settings(name, tolerance);
    const auto contour = ToleranceContour(lab, settings.conditions[0], settings.system, tolerance);
    ASSERT_EQ(contour.size(), static_cast<std::size_t>(kContourPoints)) << name;
    double shortest = 1e9, longest = 0;
    for (const auto& point : contour) {
      const cmsCIELab trial{standard.L, standard.a + point[0], standard.b + point[1]};
      EXPECT_NEAR(reference(standard, trial), tolerance, test::kSearch) << name;
      shortest = std::min(shortest, std::hypot(point[0], point[1]));
      longest = std::max(longest, std::hypot(point[0], point[1]));
    }
    const bool circle = std::string_view(name) == "cielab";  // the others draw an ellipse
    EXPECT_EQ(longest / shortest > 1.2, !circle) << name;
    if (circle) {
      EXPECT_NEAR(longest, shortest, test::kSearch);
    }
  }
}

}  // namespace
}  // namespace velquor::cli
