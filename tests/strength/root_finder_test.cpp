#include "velquor/strength/root_finder.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "strength/recording_objective.h"
#include "tolerances.h"

namespace velquor {
namespace {

using testing::RecordingObjective;

constexpr double kEps = 2.220446049250313e-16;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kCubicRoot = 2.0945514815423265;

double Cubic(double x) { return x * x * x - 2.0 * x - 5.0; }
double SignStep(double x) { return x < 1.0 / 3.0 ? -1.0 : 1.0; }

// Newton's cubic x^3 - 2x - 5, the Dottie number and the line (whose first secant step lands on
// the root). Evaluation counts include both ends and agree with an independent transcription of
// Brent's ALGOL procedure zero in IEEE double; on the step function Brent's method only bisects,
// 33 halvings of [0, 1] before |c - b| / 2 <= 1e-10 + 2 eps |b|.
TEST(FindBracketedRoot, StandardRootsWithinBrentsBoundAndCountedEvaluations) {
  const struct { double (*f)(double); double a, b, tolerance, root; int evaluations; } cases[] = {
      {Cubic, 2.0, 3.0, 1e-10, kCubicRoot, 8},   {Cubic, 3.0, 2.0, 1e-10, kCubicRoot, 8},
      {Cubic, -10.0, 10.0, 1e-10, kCubicRoot, 15},
      {[](double x) { return std::cos(x) - x; }, 0.0, 1.0, 0.0, 0.7390851332151607, 8},
      {[](double x) { return x - 1.0; }, 0.0, 3.0, 1e-10, 1.0, 3},
      {SignStep, 0.0, 1.0, 1e-10, 1.0 / 3.0, 35},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(::testing::Message() << "root " << c.root << " from " << c.a);
    RecordingObjective objective{c.f, {}};
    const RootResult result = FindBracketedRoot(objective, c.a, c.b, c.tolerance);
    ASSERT_TRUE(result.found);
    EXPECT_NEAR(result.root, c.root, 6.0 * kEps * std::fabs(c.root) + 2.0 * c.tolerance);
    EXPECT_EQ(objective.Count(), c.evaluations);
    EXPECT_TRUE(objective.AllDistinct());
    // The final bracket encloses the sign change and meets the stopping test (unless f hit 0).
    const RootInterval& r = result.interval;
    EXPECT_EQ(result.root, r.a);
    EXPECT_LE(r.fa * r.fb, 0.0);
    EXPECT_TRUE(r.fa == 0.0 || std::fabs(r.b - r.a) <= 2.0 * (2.0 * kEps * std::fabs(r.a) + c.tolerance));
  }
}

TEST(FindBracketedRoot, KnownEndValuesAndExactRootsAtAnEndAreNotEvaluatedAgain) {
  RecordingObjective cubic{Cubic, {}};
  const RootResult result = FindBracketedRoot(
      &cubic, [](void* context, double x) { return (*static_cast<RecordingObjective*>(context))(x); },
      RootInterval{2.0, 3.0, Cubic(2.0), Cubic(3.0)}, 1e-10);
  EXPECT_NEAR(result.root, kCubicRoot, 2e-10);
  EXPECT_EQ(cubic.Count(), 6);  // 8 less the two ends
  for (double x : cubic.xs) EXPECT_TRUE(x != 2.0 && x != 3.0) << x;
  for (const auto& [a, b, root] : {std::tuple{2.0, 5.0, 2.0}, {-1.0, 2.0, 2.0}, {-2.0, 0.0, -2.0}}) {
    RecordingObjective objective{[](double x) { return x * x - 4.0; }, {}};
    const RootResult exact = FindBracketedRoot(objective, a, b, 1e-10);
    EXPECT_TRUE(exact.found && exact.root == root && objective.Count() == 2) << a << " " << b;
  }
}

TEST(FindBracketedRoot, FailsAtOnceWithoutASignChangeOrWithANaNEnd) {
  const struct { RootInterval interval; double root; } cases[] = {  // root: the end with the smaller |f|
      {{0.0, 1.0, 3.0, 0.5}, 1.0}, {{0.0, 1.0, -0.25, -3.0}, 0.0}, {{0.0, 1.0, kNaN, 1.0}, 1.0}, {{0.0, 1.0, -1.0, kNaN}, 0.0}};
  for (const auto& c : cases) {
    RecordingObjective objective{[](double x) { return x; }, {}};
    const RootResult result = FindBracketedRoot(objective, c.interval, 1e-10);
    EXPECT_FALSE(result.found);
    EXPECT_EQ(result.root, c.root) << c.interval.fa << " " << c.interval.fb;
    EXPECT_TRUE(result.interval.a == 0.0 && result.interval.b == 1.0 && objective.Count() == 0);
  }
}

TEST(FindBracketedRoot, NaNInsideOrTheIterationLimitEndTheSearchWithTheLastBracket) {
  // |f(0)| = |f(1)| makes the first step a bisection to 0.5, where f is NaN: [1, 0] comes back.
  RecordingObjective hole{[](double x) { return x < 0.4 ? -1.0 : x > 0.6 ? 1.0 : kNaN; }, {}};
  const RootResult result = FindBracketedRoot(hole, 0.0, 1.0, 1e-10);
  EXPECT_FALSE(result.found);
  EXPECT_EQ(hole.xs, (std::vector<double>{0.0, 1.0, 0.5}));
  const RootInterval& h = result.interval;
  EXPECT_TRUE(h.a == 1.0 && h.b == 0.0 && h.fa == 1.0 && h.fb == -1.0);
  // Bisecting a width of 2e300 down to double precision would take about 1050 halvings.
  RecordingObjective step{SignStep, {}};
  const RootResult limited = FindBracketedRoot(step, -1e300, 1e300, 0.0);
  EXPECT_FALSE(limited.found);
  EXPECT_EQ(step.Count(), 2 + 100);
  const RootInterval& r = limited.interval;
  EXPECT_LT(r.fa * r.fb, 0.0);
  EXPECT_TRUE(std::min(r.a, r.b) <= 1.0 / 3.0 && std::max(r.a, r.b) >= 1.0 / 3.0);
  EXPECT_NEAR(std::fabs(r.b - r.a), 2e300 / std::ldexp(1.0, 100), 1e286);
}

}  // namespace
}  // namespace velquor
