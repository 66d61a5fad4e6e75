// Test objective that records every abscissa it is asked for, so tests can count evaluations
// and check that no point is evaluated twice.
#pragma once

#include <algorithm>
#include <functional>
#include <vector>

namespace velquor::testing {

struct RecordingObjective {
  std::function<double(double)> f;
  std::vector<double> xs;
  double operator()(double x) { return xs.push_back(x), f(x); }
  int Count() const { return static_cast<int>(xs.size()); }
  bool AllDistinct() const {
    std::vector<double> sorted = xs;
    std::sort(sorted.begin(), sorted.end());
    return std::adjacent_find(sorted.begin(), sorted.end()) == sorted.end();
  }
};

}  // namespace velquor::testing
