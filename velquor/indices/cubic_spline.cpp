#include "velquor/indices/cubic_spline.h"

#include <algorithm>
#include <array>

#include "velquor/frame/constants.h"

namespace velquor {

bool CubicSplineSecondDerivatives(std::span<const double> x, std::span<const double> y,
                                  std::span<double> m, std::span<double> scratch) {
  const std::size_t n = x.size();
  if (n == 0 || y.size() != n || m.size() != n || scratch.size() < n) return false;
  for (std::size_t i = 0; i + 1 < n; ++i) {
    if (!(x[i + 1] - x[i] > 0.0)) return false;  // also refuses NaN
  }
  if (n <= 2) {  // the constant or the straight line
    std::fill(m.begin(), m.end(), 0.0);
    return true;
  }
  auto h = [&](std::size_t i) { return x[i + 1] - x[i]; };
  auto slope = [&](std::size_t i) { return (y[i + 1] - y[i]) / h(i); };
  if (n == 3) {  // the parabola: s'' = 2 f[x0, x1, x2] everywhere
    const double curvature = 2.0 * (slope(1) - slope(0)) / (h(0) + h(1));
    std::fill(m.begin(), m.end(), curvature);
    return true;
  }

  // Continuity of s' at the inner knots i = 1 .. n-2:
  //   h[i-1] m[i-1] + 2 (h[i-1] + h[i]) m[i] + h[i] m[i+1] = 6 (slope[i] - slope[i-1]),
  // with the not-a-knot relations m[0] = ((h0 + h1) m[1] - h0 m[2]) / h1 and its mirror at the
  // right end substituted into the first and last rows. The tridiagonal system in m[1..n-2] is
  // solved by the Thomas algorithm: scratch holds the reduced super-diagonal, m the reduced
  // right-hand side and then the solution.
  const std::size_t last = n - 2;
  for (std::size_t i = 1; i <= last; ++i) {
    double sub = h(i - 1);
    double diag = 2.0 * (h(i - 1) + h(i));
    double sup = h(i);
    if (i == 1) {
      const double h0 = h(0), h1 = h(1);
      sub = 0.0;
      diag = (h0 + h1) * (h0 + 2.0 * h1) / h1;
      sup = (h1 * h1 - h0 * h0) / h1;
    }
    if (i == last) {
      const double a = h(n - 3), b = h(n - 2);
      if (i != 1) sub = (a * a - b * b) / a;
      diag = (a + b) * (2.0 * a + b) / a;
      sup = 0.0;
    }
    const double rhs = 6.0 * (slope(i) - slope(i - 1));
    const double denom = i == 1 ? diag : diag - sub * scratch[i - 1];
    scratch[i] = sup / denom;
    m[i] = i == 1 ? rhs / denom : (rhs - sub * m[i - 1]) / denom;
  }
  for (std::size_t i = last; i-- > 1;) m[i] -= scratch[i] * m[i + 1];

  m[0] = ((h(0) + h(1)) * m[1] - h(0) * m[2]) / h(1);
  const double a = h(n - 3), b = h(n - 2);
  m[n - 1] = ((a + b) * m[n - 2] - b * m[n - 3]) / a;
  return true;
}

double CubicSplineEvaluate(std::span<const double> x, std::span<const double> y,
                           std::span<const double> m, double at) {
  const std::size_t n = x.size();
  if (n == 1) return y[0];
  // Interval i with x[i] <= at < x[i+1], limited to the end intervals outside the knots.
  const auto upper = std::upper_bound(x.begin(), x.end(), at);
  const std::size_t above = static_cast<std::size_t>(upper - x.begin());
  const std::size_t i = std::clamp<std::size_t>(above == 0 ? 0 : above - 1, 0, n - 2);
  const double h = x[i + 1] - x[i];
  const double a = (x[i + 1] - at) / h;
  const double b = (at - x[i]) / h;
  return a * y[i] + b * y[i + 1] +
         ((a * a * a - a) * m[i] + (b * b * b - b) * m[i + 1]) * h * h / 6.0;
}

double CubicSplineInterpolate(std::span<const double> x, std::span<const double> y, double at) {
  const std::size_t n = x.size();
  if (n > kSplineMaxKnots) return kMissing;
  std::array<double, kSplineMaxKnots> m;
  std::array<double, kSplineMaxKnots> scratch;
  if (!CubicSplineSecondDerivatives(x, y, std::span<double>(m.data(), n),
                                    std::span<double>(scratch.data(), n))) {
    return kMissing;
  }
  return CubicSplineEvaluate(x, y, std::span<const double>(m.data(), n), at);
}

}  // namespace velquor
