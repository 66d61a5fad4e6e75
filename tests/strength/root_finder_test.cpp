#include "velquor/strength/root_finder.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "strength/recording_objective.h"

namespace velquor {
namespace {

using testing::RecordingObjective;

constexpr double kEps = 2.220446049250313e-16;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

double Cubic(double x) {
  return x * x * x - 2.0 * x - 5.0;
}
double SignStep(double x) {
  return x < 1.0 / 3.0 ? -1.0 : 1.0;
}  // sign change at 1/3

// Roots from the literature (Newton's cubic x^3 - 2x - 5, the Dottie number), closed forms
// (sqrt 2, ln 2) and a hand trace (the line: the first secant step lands on the root).
// Evaluation counts include both ends and agree with an independent Python transcription of
// Brent's ALGOL procedure zero run in IEEE double; the step function, on which Brent's method
// only bisects, needs 33 halvings of [0, 1] before |c - b| / 2 <= 1e-10 + 2 eps |b|.
struct RootCase {
  const char* name;
  double (*f)(double);
  double a, b, tolerance, root;
  int evaluations;
};
const RootCase kRootCases[] = {
    {"Newton's cubic", Cubic, 2.0, 3.0, 1e-10, 2.0945514815423265, 8},
    {"Newton's cubic, ends reversed", Cubic, 3.0, 2.0, 1e-10, 2.0945514815423265, 8},
    {"Newton's cubic, full precision", Cubic, 2.0, 3.0, 0.0, 2.0945514815423265, 8},
    {"cos x = x, full precision", [](double x) { return std::cos(x) - x; }, 0.0, 1.0, 0.0,
     0.7390851332151607, 8},
    {"Newton's cubic, wide bracket", Cubic, -10.0, 10.0, 1e-10, 2.0945514815423265, 15},
    {"cos x = x", [](double x) { return std::cos(x) - x; }, 0.0, 1.0, 1e-10, 0.7390851332151607, 8},
    {"x^2 = 2", [](double x) { return x * x - 2.0; }, 1.0, 2.0, 1e-10, 1.4142135623730951, 8},
    {"e^x = 2", [](double x) { return std::exp(x) - 2.0; }, 0.0, 1.0, 1e-10, 0.6931471805599453,
     8},
    {"line", [](double x) { return x - 1.0; }, 0.0, 3.0, 1e-10, 1.0, 3},
    {"sign step, bisection only", SignStep, 0.0, 1.0, 1e-10, 1.0 / 3.0, 35},
};

TEST(FindBracketedRoot, StandardRootsWithinBrentsBoundAndCountedEvaluations) {
  for (const RootCase& c : kRootCases) {
    SCOPED_TRACE(c.name);
    RecordingObjective objective{c.f, {}};
    const RootResult result = FindBracketedRoot(objective, c.a, c.b, c.tolerance);
    ASSERT_TRUE(result.found);
    EXPECT_NEAR(result.root, c.root, 6.0 * kEps * std::fabs(c.root) + 2.0 * c.tolerance);
    EXPECT_EQ(objective.Count(), c.evaluations);
    EXPECT_TRUE(objective.AllDistinct());
    // The final bracket still encloses the sign change and meets the stopping test, unless
    // the objective hit zero exactly.
    const RootInterval& r = result.interval;
    EXPECT_EQ(result.root, r.a);
    EXPECT_LE(r.fa * r.fb, 0.0);
    if (r.fa != 0.0) {
      EXPECT_LE(std::fabs(r.b - r.a), 2.0 * (2.0 * kEps * std::fabs(r.a) + c.tolerance));
    }
  }
}

double CallThrough(void* context, double x) {
  return (*static_cast<RecordingObjective*>(context))(x);
}

TEST(FindBracketedRoot, KnownEndValuesAreNotEvaluatedAgain) {
  RecordingObjective objective{Cubic, {}};
  const RootResult result = FindBracketedRoot(
      &objective, &CallThrough, RootInterval{2.0, 3.0, Cubic(2.0), Cubic(3.0)}, 1e-10);
  ASSERT_TRUE(result.found);
  EXPECT_NEAR(result.root, 2.0945514815423265, 2e-10);
  EXPECT_EQ(objective.Count(), 6);  // 8 of the table less the two ends
  for (double x : objective.xs) EXPECT_TRUE(x != 2.0 && x != 3.0) << x;
}

TEST(FindBracketedRoot, ExactRootAtAnEndNeedsNoFurtherEvaluation) {
  const auto f = [](double x) { return x * x - 4.0; };
  struct Case {
    double a, b, root;
  };
  const Case cases[] = {{2.0, 5.0, 2.0}, {-1.0, 2.0, 2.0}, {-2.0, 0.0, -2.0}, {2.0, 2.0, 2.0}};
  for (const Case& c : cases) {
    RecordingObjective objective{f, {}};
    const RootResult result = FindBracketedRoot(objective, c.a, c.b, 1e-10);
    EXPECT_TRUE(result.found) << c.a << " " << c.b;
    EXPECT_EQ(result.root, c.root);
    EXPECT_EQ(objective.Count(), 2);  // the two ends only
  }
}

TEST(FindBracketedRoot, FailsAtOnceWithoutASignChangeOrWithANaNEnd) {
  struct Case {
    const char* name;
    RootInterval interval;
    double root;  // the end with the smaller |f|
  };
  const Case cases[] = {
      {"both positive", {0.0, 1.0, 3.0, 0.5}, 1.0},
      {"both negative", {0.0, 1.0, -0.25, -3.0}, 0.0},
      {"NaN at a", {0.0, 1.0, kNaN, 1.0}, 1.0},
      {"NaN at b", {0.0, 1.0, -1.0, kNaN}, 0.0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    RecordingObjective objective{[](double x) { return x; }, {}};
    const RootResult result = FindBracketedRoot(objective, c.interval, 1e-10);
    EXPECT_FALSE(result.found);
    EXPECT_EQ(result.root, c.root);
    EXPECT_EQ(result.interval.a, c.interval.a);
    EXPECT_EQ(result.interval.b, c.interval.b);
    EXPECT_EQ(objective.Count(), 0);
  }
}

TEST(FindBracketedRoot, NaNInsideEndsTheSearchWithTheLastNumericBracket) {
  // -1 below 0.4, NaN on [0.4, 0.6], 1 above. |f(0)| = |f(1)| makes the first step a bisection
  // to 0.5, which gives NaN; the bracket [1, 0] with its values comes back.
  RecordingObjective objective{[](double x) { return x < 0.4 ? -1.0 : x > 0.6 ? 1.0 : kNaN; }, {}};
  const RootResult result = FindBracketedRoot(objective, 0.0, 1.0, 1e-10);
  EXPECT_FALSE(result.found);
  EXPECT_EQ(objective.Count(), 3);
  EXPECT_EQ(objective.xs.back(), 0.5);
  EXPECT_EQ(result.interval.a, 1.0);
  EXPECT_EQ(result.interval.b, 0.0);
  EXPECT_EQ(result.interval.fa, 1.0);
  EXPECT_EQ(result.interval.fb, -1.0);
}

TEST(FindBracketedRoot, GivesUpAfterTheIterationLimitWithANarrowedBracket) {
  // Bisection from a width of 2e300 down to double precision would take about 1050 halvings.
  RecordingObjective objective{SignStep, {}};
  const RootResult result = FindBracketedRoot(objective, -1e300, 1e300, 0.0);
  EXPECT_FALSE(result.found);
  EXPECT_EQ(objective.Count(), 2 + 100);
  const RootInterval& r = result.interval;
  EXPECT_LT(r.fa * r.fb, 0.0);
  EXPECT_LE(std::min(r.a, r.b), 1.0 / 3.0);
  EXPECT_GE(std::max(r.a, r.b), 1.0 / 3.0);
  EXPECT_NEAR(std::fabs(r.b - r.a), 2e300 / std::ldexp(1.0, 100), 1e286);
}

}  // namespace
}  // namespace velquor
