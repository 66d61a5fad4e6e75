#include "velquor/strength/minimisers.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>

#include "strength/recording_objective.h"

namespace velquor {
namespace {

using testing::RecordingObjective;
using Function = std::function<double(double)>;

constexpr double kG = 1.618034;        // outward step factor of the walk
constexpr double kSmall = 0.38196601;  // golden-section fractions
constexpr double kLarge = 0.61803399;
constexpr double kUnset = 99.0;  // marks elements an operation must not write
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

CValueArray Points(double p0, double p1, double p2) {
  CValueArray points;
  points.SetSize(6);
  points[0] = p0;
  points[1] = p1;
  points[2] = p2;
  points[3] = points[4] = points[5] = kUnset;
  return points;
}

// Abscissas of a walk from 0 and 1 that takes only golden steps: x(n) = (g^n - 1) / (g - 1).
double WalkPoint(int n) {
  return (std::pow(kG, n) - 1.0) / (kG - 1.0);
}

// The smallest evaluated abscissa above x.
double NextKnownAbove(const RecordingObjective& objective, double x) {
  double next = kInf;
  for (double seen : objective.xs) {
    if (seen > x) next = std::min(next, seen);
  }
  return next;
}

// ---------------------------------------------------------------------------------------------
// Bracketing walk. Starting from a = 0, b = 1 the first outer point is c = 1 + g = x(2); from
// a = 0, b = 0.5 it is c1 = 0.5 + 0.5 g and the next golden point c2 = c1 + g (c1 - 0.5). The
// parabola through three points of a parabola has its exact vertex, so the traces below follow
// by hand.

// Steps 2 for x < 0.5, 1 on [0.5, 1.5), `middle` on [1.5, 2.5), 1 on [2.5, 3), 10 beyond: with
// f(b) = f(c) = 1 the parabolic point is the midpoint of b and c, 1.809017.
Function Steps(double middle) {
  return [middle](double x) {
    return x < 0.5 ? 2.0 : x < 1.5 ? 1.0 : x < 2.5 ? middle : x < 3.0 ? 1.0 : 10.0;
  };
}

struct WalkCase {
  const char* name;
  Function f;
  double a, b, bound;
  bool orRoot;  // BracketExtremumOrRoot instead of BracketMinimum
  int result;
  double x0, x1, x2;  // expected bracket
  double sign;        // -1 when the values come back negated (the search ran on -f)
  int evaluations;
};

TEST(BracketMinimum, WalksParabolicAndGoldenStepsWithinTheBound) {
  const double c = 1.0 + kG;
  const double c1 = 0.5 + kG * 0.5;
  const double c2 = c1 + kG * (c1 - 0.5);
  const WalkCase cases[] = {
      // Step 1: vertex 2 lies beyond c1, golden step to c2; step 2: vertex inside, f = 0 < f(c).
      {"parabola", [](double x) { return (x - 2) * (x - 2); }, 0, 0.5, 0, false, 1, c1, 2, c2, 1,
       5},
      // f(a) < f(b): the walk runs on -f and finds the maximum, values as searched.
      {"uphill start seeks the maximum", [](double x) { return -(x - 2) * (x - 2); }, 0, 0.5, 0,
       false, 1, c1, 2, c2, -1, 5},
      {"parabolic point below f(c)", Steps(0), 0, 1, 0, false, 1, 1, (1 + c) / 2, c, 1, 4},
      {"parabolic point above f(b)", Steps(5), 0, 1, 0, false, 1, 0, 1, (1 + c) / 2, 1, 4},
      {"parabolic point neither: golden step", Steps(1), 0, 1, 0, false, 1, 1, c, c + kG * (c - 1),
       1, 5},
      // Vertex 10 beyond each outer point: three golden steps, x(3), x(4), x(5).
      {"bound 0 means none", [](double x) { return (x - 10) * (x - 10); }, 0, 1, 0, false, 1,
       WalkPoint(3), WalkPoint(4), WalkPoint(5), 1, 6},
      {"element 2 is no bound for the root form", [](double x) { return (x - 10) * (x - 10); }, 0,
       1, 4, true, 1, WalkPoint(3), WalkPoint(4), WalkPoint(5), 1, 6},
      // Vertex 3 between c and the bound 4: taken (f = 0 < f(c)), then a golden step past it.
      {"parabolic point short of the bound", [](double x) { return (x - 3) * (x - 3); }, 0, 1, 4,
       false, 1, c, 3, 3 + kG * (3 - c), 1, 5},
      // The golden step past 3 lands on 3.618 > 3.2 (evaluated) and is replaced by the bound.
      {"golden step clamped to the bound", [](double x) { return (x - 3) * (x - 3); }, 0, 1, 3.2,
       false, 1, c, 3, 3.2, 1, 6},
      // 5.236 > 4 is clamped to 4; the next golden step 6.236 passes the bound from 4: failure.
      {"bound reached twice", [](double x) { return (x - 10) * (x - 10); }, 0, 1, 4, false, 0, 0, 1,
       4, 1, 6},
      {"outer point on the bound", [](double x) { return -x; }, 0, 1, c, false, 0, 0, 1, c, 1, 4},
  };
  for (const WalkCase& w : cases) {
    SCOPED_TRACE(w.name);
    RecordingObjective objective{w.f, {}};
    CValueArray points = Points(w.a, w.b, w.bound);
    const int result =
        w.orRoot ? BracketExtremumOrRoot(objective, points) : BracketMinimum(objective, points);
    EXPECT_EQ(result, w.result);
    EXPECT_EQ(objective.Count(), w.evaluations);
    EXPECT_TRUE(objective.AllDistinct());
    if (result == 0) {  // the vector keeps its input
      EXPECT_EQ(points[0], w.a);
      EXPECT_EQ(points[1], w.b);
      EXPECT_EQ(points[2], w.bound);
      EXPECT_EQ(points[3], kUnset);
      continue;
    }
    EXPECT_NEAR(points[0], w.x0, 1e-12);
    EXPECT_NEAR(points[1], w.x1, 1e-12);
    EXPECT_NEAR(points[2], w.x2, 1e-12);
    for (int i = 0; i < 3; ++i) EXPECT_EQ(points[3 + i], w.sign * w.f(points[i])) << i;
    EXPECT_LE(points[4], points[3]);
    EXPECT_LT(points[4], points[5]);
  }
}

// Step counting. The walk from 0 and 1 on f = -x takes golden steps only (the parabola through
// collinear points has no vertex), so after n completed steps the triple is x(n), x(n+1),
// x(n+2). A wall above x(n+1) ends the walk at the head of step n + 1; a curved piece starting
// at x(n+1), rising 0.8 (c - b) above the line at c = x(n+2), puts the parabolic point inside
// (b, c) during step n + 1 with f(u) < f(c). Results: 1 up to 20 completed steps, 4 beyond.
TEST(BracketMinimum, CountsCompletedSteps) {
  struct Case {
    const char* name;
    int completed;
    bool wall;  // else the curved piece
    int result;
    int evaluations;
  };
  const Case cases[] = {
      {"bracket before any step", 0, true, 1, 3},
      {"20 steps, found at the head of the 21st", 20, true, 1, 23},
      {"21 steps, found at the head of the 22nd", 21, true, 4, 24},
      {"60 steps, the last one closes the bracket", 60, true, 4, 63},
      {"60 steps without a bracket", 61, true, 0, 63},
      {"found during the 21st step", 20, false, 1, 24},
      {"found during the 22nd step", 21, false, 4, 25},
  };
  for (const Case& k : cases) {
    const double b = WalkPoint(k.completed + 1);
    const double c = WalkPoint(k.completed + 2);
    Function f;
    if (k.wall) {
      const double wall = std::sqrt(b * c);
      f = [wall](double x) { return x < wall ? -x : 1e6; };
    } else {
      const double curvature = 0.8 / (c - b);
      f = [b, curvature](double x) { return x < b ? -x : -x + curvature * (x - b) * (x - b); };
    }
    for (bool orRoot : {false, true}) {  // f(0) = 0: no sign change for the root form
      SCOPED_TRACE(std::string(k.name) + (orRoot ? ", BracketExtremumOrRoot" : ""));
      RecordingObjective objective{f, {}};
      CValueArray points = Points(0, 1, 0);
      const int result =
          orRoot ? BracketExtremumOrRoot(objective, points) : BracketMinimum(objective, points);
      EXPECT_EQ(result, k.result);
      EXPECT_EQ(objective.Count(), k.evaluations);
      EXPECT_TRUE(objective.AllDistinct());
      if (result == 0) {
        EXPECT_EQ(points[0], 0.0);
        EXPECT_EQ(points[1], 1.0);
        EXPECT_EQ(points[3], kUnset);
      } else {
        EXPECT_NEAR(points[0], k.wall ? WalkPoint(k.completed) : b, 1e-9 * b);
        EXPECT_NEAR(points[2], c, 1e-9 * c);
        EXPECT_LT(points[4], std::min(points[3], points[5]));
      }
    }
  }
}

// (x - 3)^2 - 1 from 0 and 0.5: c1 = 1.309 (f = 1.86) and, after a golden step, c2 = 2.618
// (f = -0.854). At the head of step 2 f(c) f(a) < 0, so (0.5, c2) goes to the root finder,
// which finds the root 2 in 8 evaluations (Brent's zero, checked independently).
TEST(BracketExtremumOrRoot, HandsASignChangeToTheRootFinder) {
  struct Case {
    const char* name;
    Function f;
    int result;
    int evaluations;
  };
  const Function shifted = [](double x) { return (x - 3) * (x - 3) - 1; };
  const Case cases[] = {
      {"sign change", shifted, 2, 12},
      {"uphill start, searched on -f", [](double x) { return 1 - (x - 3) * (x - 3); }, 2, 12},
      // Brent's first point, 2.32, gives NaN: the root finder fails.
      {"root finder fails",
       [](double x) { return x <= 1.5 || x > 2.6 ? (x - 3) * (x - 3) - 1 : kNaN; }, 3, 5},
  };
  for (const Case& k : cases) {
    SCOPED_TRACE(k.name);
    RecordingObjective objective{k.f, {}};
    CValueArray points = Points(0, 0.5, 7);
    EXPECT_EQ(BracketExtremumOrRoot(objective, points), k.result);
    EXPECT_EQ(objective.Count(), k.evaluations);
    EXPECT_TRUE(objective.AllDistinct());
    EXPECT_NEAR(points[0], k.result == 2 ? 2.0 : 0.0, 2e-10);
    EXPECT_EQ(points[1], 0.5);
    EXPECT_EQ(points[2], 7.0);
    EXPECT_EQ(points[3], kUnset);
  }
  // BracketMinimum ignores the sign: one more golden step to 4.736 closes the bracket.
  RecordingObjective objective{shifted, {}};
  CValueArray points = Points(0, 0.5, 0);
  const double c1 = 0.5 + kG * 0.5;
  const double c2 = c1 + kG * (c1 - 0.5);
  EXPECT_EQ(BracketMinimum(objective, points), 1);
  EXPECT_EQ(objective.Count(), 5);
  EXPECT_NEAR(points[0], c1, 1e-12);
  EXPECT_NEAR(points[1], c2, 1e-12);
  EXPECT_NEAR(points[2], c2 + kG * (c2 - c1), 1e-12);
}

TEST(BracketMinimum, ZeroParabolicDenominatorCountsAsPositive) {
  // On f = -x from 0 and 1 the parabola's denominator is exactly 0 (c - 1 is exact), so
  // d = +1e-20 and u = 1 + (c - 1) c / 2e-20 = 2.118e20, which lies below the bound 1e21 and
  // is evaluated. A negative d would send u to -2.1e20 and take the golden step instead.
  RecordingObjective objective{[](double x) { return -x; }, {}};
  CValueArray points = Points(0, 1, 1e21);
  EXPECT_EQ(BracketMinimum(objective, points), 0);  // monotone: no bracket below the bound
  ASSERT_GE(objective.Count(), 4);
  const double c = 1 + kG;
  EXPECT_NEAR(objective.xs[3], 1 + (c - 1) * c / 2e-20, 1e6);
  EXPECT_TRUE(objective.AllDistinct());
}

double CountCalls(void* context, double x) {
  ++*static_cast<int*>(context);
  return (x - 2) * (x - 2);
}

TEST(BracketMinimum, PassesTheContextThroughAndGrowsAShortVector) {
  int calls = 0;
  CValueArray points;
  points.Append(0.0);
  points.Append(0.5);  // no element 2: no bound
  EXPECT_EQ(BracketMinimum(&calls, &CountCalls, points), 1);
  EXPECT_EQ(calls, 5);
  ASSERT_EQ(points.GetSize(), 6u);
  EXPECT_NEAR(points[1], 2.0, 1e-12);
}

// ---------------------------------------------------------------------------------------------
// Golden-section narrowing of golden triples over [0, 2]: the interval shrinks by 0.618034 per
// round, and with the minimum near 1 the loop runs while 2 * 0.618034^k > 2 * tolerance; for a
// tolerance of 5e-5 that is 21 rounds (0.618034^20 = 6.6e-5, ^21 = 4.1e-5), so 3 + 1 + 21 = 25
// evaluations. A minimum near 0.7 needs 0.618034^k <= 0.7 * 5e-5: 22 rounds.
constexpr double kTolerance = 5e-5;
constexpr double kFinalWidth = 8.2e-5;  // 2 * 0.618034^21

Function Parabola(double centre, double offset) {
  return [=](double x) { return (x - centre) * (x - centre) + offset; };
}

// Zero on [0.7, 1.3], rising quadratically outside.
double FlatBottom(double x) {
  const double d = std::max(0.0, std::fabs(x - 1.0) - 0.3);
  return d * d;
}

struct SectionCase {
  const char* name;
  Function f;
  double p0, p1, p2;
  double minimum;
};

TEST(GoldenSectionSearch, NarrowsToTheExtremumInCountedEvaluations) {
  const SectionCase cases[] = {
      {"parabola, ascending", Parabola(1, 0), 0, 0.76393202, 2, 1},
      {"parabola, descending", Parabola(1, 0), 2, 1.23606798, 0, 1},
      {"uphill start finds the maximum", [](double x) { return -(x - 1) * (x - 1); }, 0, 0.76393202,
       2, 1},
      {"quartic x^4 - 4x", [](double x) { return x * x * x * x - 4 * x; }, 0, 0.76393202, 2, 1},
      {"sign change ignored", Parabola(1, -0.25), 0, 0.76393202, 2, 1},
  };
  for (const SectionCase& s : cases) {
    SCOPED_TRACE(s.name);
    RecordingObjective objective{s.f, {}};
    CValueArray points = Points(s.p0, s.p1, s.p2);
    GoldenSectionSearch(objective, points, kTolerance);
    EXPECT_EQ(objective.Count(), 25);
    EXPECT_TRUE(objective.AllDistinct());
    EXPECT_NEAR(points[0], s.minimum, kFinalWidth);
    EXPECT_EQ(points[1], NextKnownAbove(objective, points[0]));
    EXPECT_EQ(points[2], 0.0);
    EXPECT_EQ(points[3], s.f(points[0]));  // the caller's values, negation undone
    EXPECT_EQ(points[4], s.f(points[1]));
    EXPECT_EQ(points[5], 0.0);
  }
}

// 0 on [1, 1.9), exactly the double epsilon on [1.9, 3), 1 beyond.
double ShelfThenEpsilon(double x) {
  return x < 1.9 ? 0.0 : x < 3.0 ? 2.220446049250313e-16 : 1.0;
}

TEST(GoldenSectionSearch, TiesGoToTheHiSidePoint) {
  // Over (1, 1.764, 3) every round has f(x1) <= f(x2) and keeps [lo, x2], so lo stays 1 and
  // x2 wins the final tie: exactly one evaluated point, the final x1, lies between lo and the
  // reported point. The root form then probes m + 1e-7 ... m + 1 (= 2, a rise of exactly the
  // double epsilon, which does not count) and stops at m + 10: 9 probes.
  for (bool orRoot : {false, true}) {
    SCOPED_TRACE(orRoot ? "GoldenSectionSearchOrRoot" : "GoldenSectionSearch");
    RecordingObjective objective{ShelfThenEpsilon, {}};
    CValueArray points = Points(1, 1.76393202, 3);
    if (orRoot) {
      EXPECT_EQ(GoldenSectionSearchOrRoot(objective, points, kTolerance), 1);
      EXPECT_EQ(objective.Count(), 25 + 9);
      EXPECT_NEAR(points[1] - points[0], 10.0, 1e-12);
      EXPECT_EQ(points[4], 1.0);
    } else {
      GoldenSectionSearch(objective, points, kTolerance);
      EXPECT_EQ(objective.Count(), 25);
      EXPECT_EQ(points[1], NextKnownAbove(objective, points[0]));
      EXPECT_EQ(points[4], 0.0);
    }
    EXPECT_EQ(std::count_if(objective.xs.begin(), objective.xs.end(),
                            [&](double x) { return x > 1.0 && x < points[0]; }),
              1);
    EXPECT_EQ(points[3], 0.0);
  }
}

TEST(GoldenSectionSearchOrRoot, ProbeOfAFunctionThatNeverRisesStopsBeforeOverflow) {
  RecordingObjective objective{[](double) { return 7.0; }, {}};
  CValueArray points = Points(1, 1.76393202, 3);
  EXPECT_EQ(GoldenSectionSearchOrRoot(objective, points, kTolerance), 1);
  EXPECT_TRUE(std::isfinite(points[1]));
  EXPECT_GT(points[1], 1e307);
  EXPECT_EQ(objective.Count(), 25 + 316);  // steps 1e-7, 1e-6, ... 1e308
}

TEST(GoldenSectionSearch, PutsTheSecondPointIntoTheLargerSegment) {
  struct Case {
    double p0, p1, p2;
    double second;  // the fourth abscissa evaluated
  };
  const Case cases[] = {
      {0, 1, 2, 1 - kSmall * 1},  // equal segments: the lo side
      {2, 1, 0, 1 - kSmall * 1},
      {0, 0.9, 2, 0.9 + kSmall * 1.1},
      {0, 1.1, 2, 1.1 - kSmall * 1.1},
      {2, 1.1, 0, 1.1 - kSmall * 1.1},  // descending: lo is element 2
  };
  for (const Case& k : cases) {
    RecordingObjective objective{Parabola(1, 0), {}};
    CValueArray points = Points(k.p0, k.p1, k.p2);
    GoldenSectionSearch(objective, points, 0.5);
    ASSERT_GE(objective.Count(), 4);
    EXPECT_EQ(objective.xs[3], k.second) << k.p0 << " " << k.p1 << " " << k.p2;
  }
}

// The flat bottom draws the narrowing (ties keep [lo, x2]) to its left edge 0.7 in 4 + 22
// evaluations; the probes come after. Ascending, they step 1e-7 ... 0.1 across the flat part
// and first rise at 1: 8 probes. Descending, they step toward lo and rise as soon as they pass
// the edge, which lies within the final width of the start point.
TEST(GoldenSectionSearchOrRoot, ProbesOutwardUntilTheFunctionRises) {
  struct Case {
    const char* name;
    double p0, p1, p2;
    double direction;
    int probes;  // 0: not fixed in advance
  };
  const Case cases[] = {
      {"ascending", 0, 0.76393202, 2, 1.0, 8},
      {"descending", 2, 1.23606798, 0, -1.0, 0},
  };
  for (const Case& k : cases) {
    SCOPED_TRACE(k.name);
    RecordingObjective objective{FlatBottom, {}};
    CValueArray points = Points(k.p0, k.p1, k.p2);
    EXPECT_EQ(GoldenSectionSearchOrRoot(objective, points, kTolerance), 1);
    EXPECT_TRUE(objective.AllDistinct());
    const double m = points[0];
    const double fm = FlatBottom(m);
    EXPECT_NEAR(m, 0.7, kFinalWidth);
    const int probes = objective.Count() - 26;
    if (k.probes != 0) {
      EXPECT_EQ(probes, k.probes);
    }
    ASSERT_GE(probes, 1);
    double step = 1e-7 * k.direction;
    for (int j = 0; j < probes; ++j, step *= 10) {
      const double x = objective.xs[26 + j];
      EXPECT_NEAR(x - m, step, 1e-15) << j;
      EXPECT_EQ(FlatBottom(x) > fm + 2.220446049250313e-16, j == probes - 1) << j;
    }
    EXPECT_EQ(points[1], objective.xs.back());
    EXPECT_EQ(points[2], 0.0);
    EXPECT_EQ(points[3], fm);
    EXPECT_EQ(points[4], FlatBottom(points[1]));
    EXPECT_EQ(points[5], 0.0);
  }
}

// (x - 1)^2 - 0.25 over the triple 0, 0.764, 2: at the head of the first round f(hi) = 0.75 > 0
// and f(x2 = 1.236) = -0.194 < 0, so (x2, 2) goes to the root finder, which finds 1.5 in 7
// evaluations (Brent's zero, checked independently): 4 + 7 = 11.
TEST(GoldenSectionSearchOrRoot, HandsASignChangeToTheRootFinder) {
  struct Case {
    const char* name;
    Function f;
  };
  const Case cases[] = {
      {"sign change", Parabola(1, -0.25)},
      {"uphill start, searched on -f", [](double x) { return 0.25 - (x - 1) * (x - 1); }},
  };
  for (const Case& k : cases) {
    SCOPED_TRACE(k.name);
    RecordingObjective objective{k.f, {}};
    CValueArray points = Points(0, 0.76393202, 2);
    EXPECT_EQ(GoldenSectionSearchOrRoot(objective, points, kTolerance), 2);
    EXPECT_EQ(objective.Count(), 11);
    EXPECT_TRUE(objective.AllDistinct());
    EXPECT_NEAR(points[0], 1.5, 2e-10);
    EXPECT_EQ(points[1], 0.76393202);  // only element 0 is written
    EXPECT_EQ(points[3], kUnset);
  }

  // f(hi) = 0 is not above 0: no watch, the search ends at the minimum.
  RecordingObjective objective{Parabola(1, -0.25), {}};
  CValueArray points = Points(0, 0.76393202, 1.5);
  EXPECT_EQ(GoldenSectionSearchOrRoot(objective, points, kTolerance), 1);
  EXPECT_NEAR(points[0], 1.0, kFinalWidth);
  EXPECT_EQ(points[3], Parabola(1, -0.25)(points[0]));
}

TEST(GoldenSectionSearchOrRoot, AbandonsOnTheRootFindersIntervalWhenItFails) {
  // Brent's first point 1.393 gives NaN: its interval (x2, 2) becomes (lo, hi). f(2 + 1e-7) is
  // above f(2), so the direction points into the interval: x2, x2 + 1e-7, 2.
  const Function f = [](double x) { return x > 1.3 && x < 1.45 ? kNaN : (x - 1) * (x - 1) - 0.25; };
  RecordingObjective objective{f, {}};
  CValueArray points = Points(0, 0.76393202, 2);
  EXPECT_EQ(GoldenSectionSearchOrRoot(objective, points, kTolerance), 3);
  EXPECT_EQ(objective.Count(), 6);
  EXPECT_EQ(objective.xs.back(), 2.0 + 1e-7);
  const double x2 = 0.76393202 + kSmall * (2 - 0.76393202);
  EXPECT_NEAR(points[0], x2, 1e-15);
  EXPECT_NEAR(points[1], x2 + 1e-7, 1e-15);
  EXPECT_EQ(points[2], 2.0);
  EXPECT_EQ(points[3], kUnset);  // elements 3 to 5 are not written
  EXPECT_EQ(points[5], kUnset);
}

// Divergence. Over the triple 0, 0.764, 2 a pole or cusp at 1.1 keeps the narrowing on (lo,
// x2) then (x1, hi): round 1 only records slopes, round 2 leaves sR unchanged (same p and hi),
// round 3 sees both slopes steepen with |f| > 100 at both ends, lo = 0.764 and
// hi = 0.618034 * 1.236 + 0.382 * 2 = 1.528: 3 + 1 + 2 rounds + 1 probe = 7 evaluations.
// Descending, the mirror image x -> 2 - x gives lo = 0.618034 * (1.236 - 0.382 * 1.236) and
// hi = 1.236. The probe beyond the end decides the direction: outward when f falls there.
TEST(GoldenSectionSearchOrRoot, AbandonsWhenTheSlopesDiverge) {
  const double ascHi = kLarge * (0.76393202 + kSmall * (2 - 0.76393202)) + kSmall * 2;
  const double ascLo = 0.76393202;
  const double descLo = kLarge * (1.23606798 - kSmall * 1.23606798);
  const double descHi = 1.23606798;
  const auto pole = [](double x) { return -150 - 1 / std::fabs(x - 1.1); };
  const auto cusp = [](double base) {
    return [base](double x) { return base + 10 * std::sqrt(std::fabs(x - 1.1)); };
  };
  struct Case {
    const char* name;
    Function f;
    bool ascending;
    int result;
    double x0, x1, x2;
  };
  const Case cases[] = {
      {"pole, inward", pole, true, 3, ascLo, ascLo + 1e-7, ascHi},
      {"pole and a falling line, outward", [&](double x) { return pole(x) - 10 * x; }, true, 3,
       ascHi, ascHi + 1e-7, ascLo},
      {"pole, descending, inward", [&](double x) { return pole(2 - x); }, false, 3, descHi,
       descHi - 1e-7, descLo},
      {"pole, descending, outward", [&](double x) { return pole(2 - x) - 10 * (2 - x); }, false, 3,
       descLo, descLo - 1e-7, descHi},
      {"cusp at +150", cusp(150), true, 3, ascLo, ascLo + 1e-7, ascHi},
      {"cusp at -150", cusp(-150), true, 3, ascLo, ascLo + 1e-7, ascHi},
      // Same slopes, but |f| <= 60.5 everywhere: no abandon.
      {"cusp at +50", cusp(50), true, 1, 1.1, 0, 0},
      // Tilted cusps with the same trace: at round 3 only one end is above 100.
      {"cusp, only f(lo) above 100", [&](double x) { return cusp(98.5)(x) - 4 * x; }, true, 1, 1.1,
       0, 0},
      {"cusp, only f(hi) above 100", [&](double x) { return cusp(89)(x) + 4 * x; }, true, 1, 1.1, 0,
       0},
      // |f| > 100 but the slopes flatten as the interval narrows (round 1 must not abandon).
      {"parabola at -150", Parabola(1.1, -150), true, 1, 1.1, 0, 0},
  };
  for (const Case& k : cases) {
    SCOPED_TRACE(k.name);
    RecordingObjective objective{k.f, {}};
    CValueArray points = k.ascending ? Points(0, 0.76393202, 2) : Points(2, 1.23606798, 0);
    EXPECT_EQ(GoldenSectionSearchOrRoot(objective, points, kTolerance), k.result);
    EXPECT_TRUE(objective.AllDistinct());
    if (k.result == 1) {
      EXPECT_NEAR(points[0], k.x0, kFinalWidth);
      continue;
    }
    EXPECT_EQ(objective.Count(), 7);
    EXPECT_NEAR(points[0], k.x0, 1e-12);
    EXPECT_NEAR(points[1], k.x1, 1e-12);
    EXPECT_NEAR(points[2], k.x2, 1e-12);
    EXPECT_EQ(points[3], kUnset);
  }
}

}  // namespace
}  // namespace velquor
