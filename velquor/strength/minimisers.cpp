#include "velquor/strength/minimisers.h"

#include <cmath>

#include "velquor/frame/numeric.h"
#include "velquor/strength/constants.h"

namespace velquor {

namespace {

constexpr std::size_t kPointCount = 6;

// The caller's objective as searched: negated throughout once the orientation rule has chosen
// -f. Orient() turns a caller's value into a searched one and, being its own inverse, back.
class Searched {
 public:
  Searched(void* context, ObjectiveFunction objective) : context_(context), objective_(objective) {}

  double Raw(double x) const { return objective_(context_, x); }
  double operator()(double x) const { return Orient(Raw(x)); }
  double Orient(double value) const { return negate_ ? -value : value; }
  void SetNegated(bool negate) { negate_ = negate; }

 private:
  void* context_;
  ObjectiveFunction objective_;
  bool negate_ = false;
};

void EnsurePointCount(CValueArray& points) {
  if (points.GetSize() < kPointCount) points.SetSize(kPointCount);
}

void WritePoints(CValueArray& points, double x0, double x1, double x2, double f0, double f1,
                 double f2) {
  points[0] = x0;
  points[1] = x1;
  points[2] = x2;
  points[3] = f0;
  points[4] = f1;
  points[5] = f2;
}

bool StrictlyBetween(double x, double end1, double end2) {
  return end1 < end2 ? (end1 < x && x < end2) : (end2 < x && x < end1);
}

// The walk of BracketMinimum (readBound) and BracketExtremumOrRoot (watchSign).
int Bracket(void* context, ObjectiveFunction objective, CValueArray& points, bool readBound,
            bool watchSign) {
  EnsurePointCount(points);
  Searched f(context, objective);
  double a = points[0];
  double b = points[1];
  const double bound = readBound ? points[2] : 0.0;
  const bool bounded = !IsZero(bound);

  double fa = f.Raw(a);
  double fb = f.Raw(b);
  if (fa < fb) {
    f.SetNegated(true);
    fa = -fa;
    fb = -fb;
  }
  double c = b + kGoldenStep * (b - a);
  double fc = f(c);

  int steps = 0;
  while (fb >= fc) {
    if (steps == kMaxBracketSteps) return kSearchFailed;
    if (watchSign && fc * fa < 0.0) {
      const RootResult root = FindBracketedRoot(
          context, objective, RootInterval{a, c, f.Orient(fa), f.Orient(fc)}, kSearchRootTolerance);
      if (!root.found) return kSearchRootFailed;
      points[0] = root.root;
      return kSearchRoot;
    }

    // Extremum of the parabola through (a, fa), (b, fb), (c, fc).
    const double r = (b - a) * (fb - fc);
    const double q = (b - c) * (fb - fa);
    double d = q - r;
    if (std::fabs(d) < kMinParabolicDenominator) {
      d = d < 0.0 ? -kMinParabolicDenominator : kMinParabolicDenominator;
    }
    double u = b - ((b - c) * q - (b - a) * r) / (2.0 * d);
    double fu;
    if (StrictlyBetween(u, b, c)) {
      fu = f(u);
      if (fu < fc) {  // minimum between b and c
        WritePoints(points, b, u, c, fb, fu, fc);
        return steps > kSlowBracketSteps ? kSearchFoundSlowly : kSearchFound;
      }
      if (fu > fb) {  // minimum between a and u
        WritePoints(points, a, b, u, fa, fb, fu);
        return steps > kSlowBracketSteps ? kSearchFoundSlowly : kSearchFound;
      }
      u = c + kGoldenStep * (c - b);
      fu = f(u);
    } else if (bounded && StrictlyBetween(u, c, bound)) {
      fu = f(u);
      if (fu < fc) {
        b = c;
        fb = fc;
        c = u;
        fc = fu;
        u = c + kGoldenStep * (c - b);
        fu = f(u);
      }
    } else {
      u = c + kGoldenStep * (c - b);
      fu = f(u);
    }
    if (bounded && u > bound) {
      if (std::fabs(bound - c) < kBoundReached) return kSearchFailed;
      u = bound;
      fu = f(u);
    }
    a = b;
    fa = fb;
    b = c;
    fb = fc;
    c = u;
    fc = fu;
    ++steps;
  }
  WritePoints(points, a, b, c, fa, fb, fc);
  return steps > kSlowBracketSteps ? kSearchFoundSlowly : kSearchFound;
}

// The state of a golden-section narrowing: lo < x1 < x2 < hi for a proper triple, with values
// as searched.
struct Section {
  bool ascending;
  double lo, x1, x2, hi;
  double flo, f1, f2, fhi;
};

// Reports an end of the interval and a direction (GoldenSectionSearchOrRoot, result 3).
int Abandon(const Searched& f, const Section& s, CValueArray& points) {
  const double end = s.ascending ? s.hi : s.lo;
  const double fEnd = s.ascending ? s.fhi : s.flo;
  const double other = s.ascending ? s.lo : s.hi;
  const double step = s.ascending ? kFirstProbeStep : -kFirstProbeStep;
  if (f(end + step) < fEnd) {
    points[0] = end;
    points[1] = end + step;
    points[2] = other;
  } else {
    points[0] = other;
    points[1] = other + step;
    points[2] = end;
  }
  return kSearchAbandoned;
}

int GoldenSection(void* context, ObjectiveFunction objective, CValueArray& points, double tolerance,
                  bool watch) {
  EnsurePointCount(points);
  Searched f(context, objective);
  Section s{};
  s.ascending = points[1] > points[0];
  s.lo = s.ascending ? points[0] : points[2];
  s.hi = s.ascending ? points[2] : points[0];
  const double b = points[1];

  s.flo = f.Raw(s.lo);
  double fb = f.Raw(b);
  s.fhi = f.Raw(s.hi);
  if ((s.ascending ? s.flo : s.fhi) < fb) {
    f.SetNegated(true);
    s.flo = -s.flo;
    fb = -fb;
    s.fhi = -s.fhi;
  }

  if (std::fabs(s.hi - b) <= std::fabs(b - s.lo)) {
    s.x2 = b;
    s.f2 = fb;
    s.x1 = b - kGoldenSmall * (b - s.lo);
    s.f1 = f(s.x1);
  } else {
    s.x1 = b;
    s.f1 = fb;
    s.x2 = b + kGoldenSmall * (s.hi - b);
    s.f2 = f(s.x2);
  }

  double previousLeftSlope = 0.0;
  double previousRightSlope = 0.0;
  while ((std::fabs(s.x1) + std::fabs(s.x2)) * tolerance < std::fabs(s.hi - s.lo)) {
    if (watch) {
      if (s.fhi > 0.0 && (s.f1 < 0.0 || s.f2 < 0.0)) {
        const RootInterval change = s.f2 < 0.0
                                        ? RootInterval{s.x2, s.hi, f.Orient(s.f2), f.Orient(s.fhi)}
                                        : RootInterval{s.x1, s.x2, f.Orient(s.f1), f.Orient(s.f2)};
        const RootResult root = FindBracketedRoot(context, objective, change, kSearchRootTolerance);
        if (root.found) {
          points[0] = root.root;
          return kSearchRoot;
        }
        const RootInterval& narrowed = root.interval;
        const bool aFirst = narrowed.a < narrowed.b;
        s.lo = aFirst ? narrowed.a : narrowed.b;
        s.hi = aFirst ? narrowed.b : narrowed.a;
        s.flo = f.Orient(aFirst ? narrowed.fa : narrowed.fb);
        s.fhi = f.Orient(aFirst ? narrowed.fb : narrowed.fa);
        return Abandon(f, s, points);
      }
      const bool firstBetter = s.f1 < s.f2;
      const double p = firstBetter ? s.x1 : s.x2;
      const double fp = firstBetter ? s.f1 : s.f2;
      const double leftSlope = (fp - s.flo) / (p - s.lo);
      const double rightSlope = (s.fhi - fp) / (s.hi - p);
      if (!IsZero(previousLeftSlope) &&
          std::fabs(leftSlope) - std::fabs(previousLeftSlope) > kDivergenceSlopeRise &&
          std::fabs(rightSlope) - std::fabs(previousRightSlope) > kDivergenceSlopeRise &&
          std::fabs(s.flo) > kDivergenceValue && std::fabs(s.fhi) > kDivergenceValue) {
        return Abandon(f, s, points);
      }
      previousLeftSlope = leftSlope;
      previousRightSlope = rightSlope;
    }

    if (s.f1 <= s.f2) {  // keep [lo, x2]
      s.hi = s.x2;
      s.fhi = s.f2;
      s.x2 = s.x1;
      s.f2 = s.f1;
      s.x1 = kGoldenLarge * s.x1 + kGoldenSmall * s.lo;
      s.f1 = f(s.x1);
    } else {  // keep [x1, hi]
      s.lo = s.x1;
      s.flo = s.f1;
      s.x1 = s.x2;
      s.f1 = s.f2;
      s.x2 = kGoldenLarge * s.x2 + kGoldenSmall * s.hi;
      s.f2 = f(s.x2);
    }
  }

  if (!watch) {
    if (s.f1 < s.f2) {
      WritePoints(points, s.x1, s.x2, 0.0, f.Orient(s.f1), f.Orient(s.f2), 0.0);
    } else {
      WritePoints(points, s.x2, s.hi, 0.0, f.Orient(s.f2), f.Orient(s.fhi), 0.0);
    }
    return kSearchFound;
  }

  // Probe outward from the minimum, 1e-7, 1e-6, ..., until f rises measurably.
  const bool firstBetter = s.f1 < s.f2;
  const double m = firstBetter ? s.x1 : s.x2;
  const double fm = firstBetter ? s.f1 : s.f2;
  double step = s.ascending ? kFirstProbeStep : -kFirstProbeStep;
  double fProbe = f(m + step);
  while (!(fProbe > fm + kProbeRise) && std::isfinite(m + 10.0 * step)) {
    step *= 10.0;
    fProbe = f(m + step);
  }
  WritePoints(points, m, m + step, 0.0, f.Orient(fm), f.Orient(fProbe), 0.0);
  return kSearchFound;
}

}  // namespace

int BracketMinimum(void* context, ObjectiveFunction objective, CValueArray& points) {
  return Bracket(context, objective, points, /*readBound=*/true, /*watchSign=*/false);
}

int BracketExtremumOrRoot(void* context, ObjectiveFunction objective, CValueArray& points) {
  return Bracket(context, objective, points, /*readBound=*/false, /*watchSign=*/true);
}

void GoldenSectionSearch(void* context, ObjectiveFunction objective, CValueArray& points,
                         double tolerance) {
  GoldenSection(context, objective, points, tolerance, /*watch=*/false);
}

int GoldenSectionSearchOrRoot(void* context, ObjectiveFunction objective, CValueArray& points,
                              double tolerance) {
  return GoldenSection(context, objective, points, tolerance, /*watch=*/true);
}

}  // namespace velquor
