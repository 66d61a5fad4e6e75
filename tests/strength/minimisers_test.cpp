#include "velquor/strength/minimisers.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "strength/recording_objective.h"
#include "tolerances.h"

namespace velquor {
namespace {

using testing::RecordingObjective;
using Function = std::function<double(double)>;
using Six = std::vector<double>;

constexpr double kG = 1.618034;        // outward step factor of the walk
constexpr double kSmall = 0.38196601;  // golden-section fractions
constexpr double kLarge = 0.61803399;
constexpr double kUnset = 99.0;  // marks elements an operation must not write
constexpr double kEps = 2.220446049250313e-16;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kB = 0.76393202;  // golden interior point of [0, 2] from 0, and 2 - kB
constexpr double kBDown = 1.23606798;
// Golden-section narrowing of golden triples over [0, 2] shrinks by 0.618034 per round; with the
// minimum near 1 and a tolerance of 5e-5 that is 21 rounds (0.618034^21 = 4.1e-5): 3 + 1 + 21 =
// 25 evaluations. A minimum near 0.7 needs 22 rounds.
constexpr double kTolerance = 5e-5;
constexpr double kFinalWidth = 8.2e-5;  // 2 * 0.618034^21

CValueArray Points(double p0, double p1, double p2) {
  CValueArray points;
  for (const double v : {p0, p1, p2, kUnset, kUnset, kUnset}) points.Append(v);
  return points;
}
Six AsSix(const CValueArray& p) { return {p[0], p[1], p[2], p[3], p[4], p[5]}; }

Function Parabola(double centre, double offset = 0, double sign = 1) {
  return [=](double x) { return sign * (x - centre) * (x - centre) + offset; };
}

// Abscissas of a walk from 0 and 1 that takes only golden steps: x(n) = (g^n - 1) / (g - 1).
double WalkPoint(int n) { return (std::pow(kG, n) - 1.0) / (kG - 1.0); }

enum Kind { kWalk, kWalkOrRoot, kGolden, kGoldenOrRoot };

// One search of `kind` on f from (p0, p1, p2), checking the result (the plain golden search
// reports 1), the evaluation count unless 0, and that no abscissa is evaluated twice.
struct Trace { RecordingObjective objective; CValueArray points; int result = 1; };
Trace Search(Kind kind, Function f, double p0, double p1, double p2, int result, int evaluations,
             double tolerance = kTolerance) {
  Trace t{{std::move(f), {}}, Points(p0, p1, p2)};
  if (kind == kWalk) t.result = BracketMinimum(t.objective, t.points);
  if (kind == kWalkOrRoot) t.result = BracketExtremumOrRoot(t.objective, t.points);
  if (kind == kGolden) GoldenSectionSearch(t.objective, t.points, tolerance);
  if (kind == kGoldenOrRoot) t.result = GoldenSectionSearchOrRoot(t.objective, t.points, tolerance);
  EXPECT_EQ(t.result, result);
  EXPECT_TRUE(evaluations == 0 || t.objective.Count() == evaluations) << t.objective.Count();
  EXPECT_TRUE(t.objective.AllDistinct());
  return t;
}

// The smallest evaluated abscissa above x.
double NextKnownAbove(const RecordingObjective& objective, double x) {
  double next = std::numeric_limits<double>::infinity();
  for (double seen : objective.xs) next = seen > x ? std::min(next, seen) : next;
  return next;
}

// Steps 2 for x < 0.5, 1 on [0.5, 1.5), `middle` on [1.5, 2.5), 1 on [2.5, 3), 10 beyond: with
// f(b) = f(c) = 1 the parabolic point is the midpoint of b and c, 1.809017.
Function Steps(double middle) {
  return [middle](double x) {
    return x < 0.5 ? 2.0 : x < 1.5 ? 1.0 : x < 2.5 ? middle : x < 3.0 ? 1.0 : 10.0;
  };
}

// From a = 0, b = 1 the first outer point is c = 1 + g; from 0 and 0.5 it is c1 = 0.5 + 0.5 g,
// then c2 = c1 + g (c1 - 0.5). The parabola through three points of a parabola has its exact
// vertex, so the traces follow by hand.
TEST(BracketMinimum, WalksParabolicAndGoldenStepsWithinTheBound) {
  const double c = 1.0 + kG, c1 = 0.5 + kG * 0.5, c2 = c1 + kG * (c1 - 0.5);
  // x0, x1, x2: the expected bracket; sign -1 when the search ran on -f.
  const struct { const char* name; Kind kind; Function f; double a, b, bound; int result, evaluations; double x0, x1, x2, sign; } cases[] = {
      {"parabola", kWalk, Parabola(2), 0, 0.5, 0, 1, 5, c1, 2, c2, 1},
      {"start away from 0: b + g (b - a)", kWalk, Parabola(3), 1, 1.5, 0, 1, 5, c1 + 1, 3, c2 + 1, 1},
      {"uphill start seeks the maximum", kWalk, Parabola(2, 0, -1), 0, 0.5, 0, 1, 5, c1, 2, c2, -1},
      {"level start is not turned", kWalk, Parabola(1), 0, 2, 0, 1, 3, 0, 2, 2 + 2 * kG, 1},
      {"sign change ignored", kWalk, Parabola(3, -1), 0, 0.5, 0, 1, 5, c1, c2, c2 + kG * (c2 - c1), 1},
      {"parabolic point below f(c)", kWalk, Steps(0), 0, 1, 0, 1, 4, 1, (1 + c) / 2, c, 1},
      {"parabolic point above f(b)", kWalk, Steps(5), 0, 1, 0, 1, 4, 0, 1, (1 + c) / 2, 1},
      {"neither: golden step", kWalk, Steps(1), 0, 1, 0, 1, 5, 1, c, c + kG * (c - 1), 1},
      {"bound 0 means none", kWalk, Parabola(10), 0, 1, 0, 1, 6, WalkPoint(3), WalkPoint(4), WalkPoint(5), 1},
      {"no bound for the root form", kWalkOrRoot, Parabola(10), 0, 1, 4, 1, 6, WalkPoint(3), WalkPoint(4), WalkPoint(5), 1},
      {"parabolic point short of the bound", kWalk, Parabola(3), 0, 1, 4, 1, 5, c, 3, 3 + kG * (3 - c), 1},
      {"golden step clamped to the bound", kWalk, Parabola(3), 0, 1, 3.2, 1, 6, c, 3, 3.2, 1},
      {"bound reached twice", kWalk, Parabola(10), 0, 1, 4, 0, 6, 0, 0, 0, 1},
      {"outer point on the bound", kWalk, [](double x) { return -x; }, 0, 1, c, 0, 4, 0, 0, 0, 1},
  };
  for (const auto& w : cases) {
    SCOPED_TRACE(w.name);
    const Trace t = Search(w.kind, w.f, w.a, w.b, w.bound, w.result, w.evaluations);
    const Six& want = w.result == 0 ? AsSix(Points(w.a, w.b, w.bound))  // the input, kept
                                    : Six{w.x0, w.x1, w.x2, w.sign * w.f(w.x0),
                                          w.sign * w.f(w.x1), w.sign * w.f(w.x2)};
    for (int i = 0; i < 6; ++i) EXPECT_NEAR(t.points[i], want[i], test::kExactFormula) << i;
  }
}

// On f = -x from 0 and 1 the walk takes golden steps only (collinear points have no vertex), so
// after n steps the triple is x(n), x(n+1), x(n+2). A wall above x(n+1) ends the walk at the
// head of step n + 1; a curved piece from x(n+1), rising 0.8 (c - b) above the line at c, puts
// the parabolic point inside (b, c) during step n + 1. Results: 1 up to 20 steps, 4 beyond, 0
// after 60.
TEST(BracketMinimum, CountsCompletedSteps) {
  const struct { int completed; bool wall; int result, evaluations; } cases[] = {  // wall, else curved
      {0, true, 1, 3}, {20, true, 1, 23}, {21, true, 4, 24}, {60, true, 4, 63}, {61, true, 0, 63}, {20, false, 1, 24}, {21, false, 4, 25}};
  for (const auto& k : cases) {
    const double b = WalkPoint(k.completed + 1), c = WalkPoint(k.completed + 2);
    const double wall = std::sqrt(b * c), curvature = 0.8 / (c - b);
    const Function f = [=, &k](double x) {
      return k.wall ? (x < wall ? -x : 1e6) : x < b ? -x : -x + curvature * (x - b) * (x - b);
    };
    for (const Kind kind : {kWalk, kWalkOrRoot}) {  // f(0) = 0: no sign change for the root form
      SCOPED_TRACE(::testing::Message() << k.completed << " steps, wall " << k.wall << ", kind " << kind);
      const Trace t = Search(kind, f, 0, 1, 0, k.result, k.evaluations);
      if (k.result == 0) {
        EXPECT_EQ(AsSix(t.points), AsSix(Points(0, 1, 0)));
        continue;
      }
      EXPECT_NEAR(t.points[0], k.wall ? WalkPoint(k.completed) : b, test::kSearch * b);
      EXPECT_NEAR(t.points[2], c, test::kSearch * c);
      EXPECT_LT(t.points[4], std::min(t.points[3], t.points[5]));
    }
  }
}

TEST(BracketMinimum, ZeroDenominatorAndShortVector) {
  // On f = -x from 0 and 1 the parabola's denominator is exactly 0, so d = +1e-20 and
  // u = 1 + (c - 1) c / 2e-20 = 2.118e20 lies below the bound 1e21 and is evaluated (a negative
  // d would send u to -2.1e20).
  const Trace t = Search(kWalk, [](double x) { return -x; }, 0, 1, 1e21, 0, 0);
  ASSERT_GE(t.objective.Count(), 4);
  EXPECT_NEAR(t.objective.xs[3], 1 + kG * (1 + kG) / 2e-20, 1e6);
  // A vector without element 2 has no bound and grows to six elements.
  RecordingObjective objective{Parabola(2), {}};
  CValueArray points;
  for (const double v : {0.0, 0.5}) points.Append(v);
  EXPECT_EQ(BracketMinimum(objective, points), 1);
  EXPECT_TRUE(objective.Count() == 5 && points.GetSize() == 6u);
  EXPECT_NEAR(points[1], 2.0, test::kExactFormula);
}

TEST(GoldenSectionSearch, NarrowsToTheExtremumInCountedEvaluations) {
  const struct { const char* name; Function f; double p0, p1, p2; } cases[] = {
      {"parabola, ascending", Parabola(1), 0, kB, 2}, {"parabola, descending", Parabola(1), 2, kBDown, 0},
      {"uphill start finds the maximum", Parabola(1, 0, -1), 0, kB, 2}, {"sign change ignored", Parabola(1, -0.25), 0, kB, 2}};
  for (const auto& s : cases) {
    SCOPED_TRACE(s.name);
    const Trace t = Search(kGolden, s.f, s.p0, s.p1, s.p2, 1, 25);
    const double m = t.points[0], next = NextKnownAbove(t.objective, m);
    EXPECT_NEAR(m, 1.0, kFinalWidth);
    // Element 1 is the next known point above; the caller's values, negation undone.
    EXPECT_EQ(AsSix(t.points), (Six{m, next, 0, s.f(m), s.f(next), 0}));
  }
  // The second point goes into the larger segment, the lo side on a tie (descending: element 2).
  for (const auto& k : std::vector<Six>{{0, 1, 2, 1 - kSmall}, {2, 1, 0, 1 - kSmall}, {0, 0.9, 2, 0.9 + kSmall * 1.1}, {2, 1.1, 0, 1.1 - kSmall * 1.1}}) {
    const Trace t = Search(kGolden, Parabola(1), k[0], k[1], k[2], 1, 0, 0.5);
    ASSERT_GE(t.objective.Count(), 4);
    EXPECT_EQ(t.objective.xs[3], k[3]) << k[0] << " " << k[1] << " " << k[2];
  }
}

// Zero on [0.7, 1.3], rising quadratically outside: the narrowing ends at 0.7 in 4 + 22
// evaluations. Ascending, the probes step 1e-7 ... 0.1 across the flat part and first rise at 1
// (8 probes); descending, they rise as soon as they pass the edge.
TEST(GoldenSectionSearchOrRoot, ProbesOutwardUntilTheFunctionRises) {
  const auto flatBottom = [](double x) { return std::pow(std::max(0.0, std::fabs(x - 1.0) - 0.3), 2); };
  for (const bool ascending : {true, false}) {
    SCOPED_TRACE(ascending ? "ascending" : "descending");
    const Trace t = Search(kGoldenOrRoot, flatBottom, ascending ? 0 : 2, ascending ? kB : kBDown, ascending ? 2 : 0, 1, 0);
    const double m = t.points[0], fm = flatBottom(m);
    EXPECT_NEAR(m, 0.7, kFinalWidth);
    const int probes = t.objective.Count() - 26;
    EXPECT_TRUE(!ascending || probes == 8) << probes;
    ASSERT_GE(probes, 1);
    double step = ascending ? 1e-7 : -1e-7;
    for (int j = 0; j < probes; ++j, step *= 10) {
      const double x = t.objective.xs[26 + j];
      EXPECT_NEAR(x - m, step, 1e-15) << j;
      EXPECT_EQ(flatBottom(x) > fm + kEps, j == probes - 1) << j;
    }
    const double probe = t.objective.xs.back();
    EXPECT_EQ(AsSix(t.points), (Six{m, probe, 0, fm, flatBottom(probe), 0}));
  }
  // A function that never rises: steps 1e-7, 1e-6, ... 1e308, stopping before overflow.
  const Trace t = Search(kGoldenOrRoot, [](double) { return 7.0; }, 1, 1.76393202, 3, 1, 25 + 316);
  EXPECT_TRUE(std::isfinite(t.points[1]) && t.points[1] > 1e307);
}

// Hand-offs to the root finder (tolerance 1e-10). Walk: (x - 3)^2 - 1 from 0 and 0.5 reaches
// c1 = 1.309 (f = 1.86), then c2 = 2.618 (f = -0.854), and (0.5, c2) gives the root 2.
// Golden: (x - 1)^2 - 0.25 over 0, 0.764, 2 has f(hi) > 0 and f(x2 = 1.236) < 0 in round 1,
// and (x2, 2) gives 1.5 in 4 + 7 evaluations. Only element 0 is written.
TEST(SearchOrRoot, HandsASignChangeToTheRootFinder) {
  const struct { Kind kind; Function f; double p1, p2; int result, evaluations; double root; } cases[] = {
      {kWalkOrRoot, Parabola(3, -1), 0.5, 7, 2, 12, 2}, {kWalkOrRoot, Parabola(3, 1, -1), 0.5, 7, 2, 12, 2},  // uphill start, on -f
      // Brent's first point, 2.32, gives NaN: the root finder fails, the vector is unchanged.
      {kWalkOrRoot, [](double x) { return x <= 1.5 || x > 2.6 ? (x - 3) * (x - 3) - 1 : kNaN; }, 0.5, 7, 3, 5, 0},
      // f(a) = 0 exactly is no sign change: the walk runs on until it gives up.
      {kWalkOrRoot, [](double x) { return x == 0 ? 0.0 : -x; }, 1, 0, 0, 0, 0},
      {kGoldenOrRoot, Parabola(1, -0.25), kB, 2, 2, 11, 1.5}, {kGoldenOrRoot, Parabola(1, 0.25, -1), kB, 2, 2, 11, 1.5}};  // uphill, on -f
  for (const auto& k : cases) {
    SCOPED_TRACE(::testing::Message() << "root " << k.root << ", kind " << k.kind);
    const Trace t = Search(k.kind, k.f, 0, k.p1, k.p2, k.result, k.evaluations);
    EXPECT_NEAR(t.points[0], k.root, 2e-10);
    EXPECT_EQ(AsSix(t.points), AsSix(Points(t.points[0], k.p1, k.p2)));
  }
  // Brent's first point 1.393 gives NaN: (x2, 2) becomes (lo, hi). f(2 + 1e-7) > f(2), so the
  // direction points into the interval: x2, x2 + 1e-7, 2; elements 3 to 5 are not written.
  const Trace t = Search(kGoldenOrRoot, [](double x) { return x > 1.3 && x < 1.45 ? kNaN : (x - 1) * (x - 1) - 0.25; }, 0, kB, 2, 3, 6);
  EXPECT_EQ(t.objective.xs.back(), 2.0 + 1e-7);
  const double x2 = kB + kSmall * (2 - kB);
  EXPECT_TRUE(std::fabs(t.points[0] - x2) < 1e-15 && std::fabs(t.points[1] - x2 - 1e-7) < 1e-15);
  EXPECT_EQ(AsSix(t.points), AsSix(Points(t.points[0], t.points[1], 2)));
}

// A pole or cusp at 1.1 over 0, 0.764, 2 keeps the narrowing on (lo, x2) then (x1, hi): round 3
// sees both slopes steepen with |f| > 100 at both ends, lo = 0.764 and hi = 0.618034 * 1.236 +
// 0.382 * 2 = 1.528, after 7 evaluations with the probe. The probe beyond
// the end decides the direction: outward when f falls there.
TEST(GoldenSectionSearchOrRoot, AbandonsWhenTheSlopesDiverge) {
  const double ascHi = kLarge * (kB + kSmall * (2 - kB)) + kSmall * 2, ascLo = kB;
  const auto pole = [](double x) { return -150 - 1 / std::fabs(x - 1.1); };
  const auto cusp = [](double base, double tilt = 0) { return [=](double x) { return base + 10 * std::sqrt(std::fabs(x - 1.1)) + tilt * x; }; };
  const Six up = {0, kB, 2};
  const struct { const char* name; Function f; Six start; int result; double x0, x1, x2; } cases[] = {
      {"pole, inward", pole, up, 3, ascLo, ascLo + 1e-7, ascHi},
      {"pole, outward", [&](double x) { return pole(x) - 10 * x; }, up, 3, ascHi, ascHi + 1e-7, ascLo},
      {"cusp at +150", cusp(150), up, 3, ascLo, ascLo + 1e-7, ascHi}, {"cusp at -150", cusp(-150), up, 3, ascLo, ascLo + 1e-7, ascHi},
      {"cusp at +50: |f| <= 60.5", cusp(50), up, 1, 1.1, 0, 0},
      {"cusp, only f(lo) above 100", cusp(98.5, -4), up, 1, 1.1, 0, 0}, {"cusp, only f(hi) above 100", cusp(89, 4), up, 1, 1.1, 0, 0},
      {"parabola at -150: slopes flatten", Parabola(1.1, -150), up, 1, 1.1, 0, 0},
      {"f(hi) = 0 is no sign change", Parabola(1, -0.25), {0, kB, 1.5}, 1, 1.0, 0, 0},
  };
  for (const auto& k : cases) {
    SCOPED_TRACE(k.name);
    const Trace t = Search(kGoldenOrRoot, k.f, k.start[0], k.start[1], k.start[2], k.result,
                           k.result == 1 ? 0 : 7);
    if (k.result == 1) {
      EXPECT_NEAR(t.points[0], k.x0, kFinalWidth);
      EXPECT_EQ(t.points[3], k.f(t.points[0]));
      continue;
    }
    for (int i = 0; i < 3; ++i) EXPECT_NEAR(t.points[i], (Six{k.x0, k.x1, k.x2})[i], test::kExactFormula);
    EXPECT_EQ(t.points[3], kUnset);
  }
}

}  // namespace
}  // namespace velquor
