#include "velquor/frame/numeric.h"

#include <limits>

namespace velquor {

namespace {

// Truncation towards zero, refusing values a long cannot hold (the conversion would be
// undefined behaviour in C++).
long TruncateToLong(double x) {
  constexpr double kLimit = static_cast<double>(std::numeric_limits<long>::max());
  if (!(x > -kLimit && x < kLimit)) return 0;
  return static_cast<long>(x);
}

}  // namespace

long RoundHalfAway(double x) { return TruncateToLong(x >= 0.0 ? x + 0.5 : x - 0.5); }

long RoundHalfUp(double x) { return TruncateToLong(x + 0.5); }

}  // namespace velquor
