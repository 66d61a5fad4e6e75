#include "bench/bandwidth_anchor.h"

double SumAll(const double* values, std::size_t count) {
  double sums[8] = {};
  for (std::size_t i = 0; i + 8 <= count; i += 8) {
    for (std::size_t k = 0; k < 8; ++k) sums[k] += values[i + k];
  }
  double total = 0.0;
  for (double s : sums) total += s;
  return total;
}
