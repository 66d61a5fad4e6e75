// The memory-bandwidth anchor of the benchmarks: no pass over the same memory can be faster on
// one core.
#pragma once

#include <cstddef>

// Reads every double of values[0 .. count) once and sums them, with eight independent sums so
// that the adds keep pace with memory. Compiled -O3 -march=native (bench/CMakeLists.txt).
double SumAll(const double* values, std::size_t count);
