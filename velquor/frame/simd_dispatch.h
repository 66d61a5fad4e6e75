// The instruction-set level of the library's SIMD kernels (files named *_kernel.cpp), chosen
// at run time, and the switch that forces one level for tests and benchmarks.
//
// With Google Highway, every kernel is compiled once per target (SSE4, AVX2, AVX-512, ... on
// x86-64; NEON on ARM) and the best one the CPU supports runs. Without Highway, and in the
// Windows builds, level 0, the portable scalar loop, is the only level. Internal to the library.
#pragma once

#include <cstddef>
#include <cstdint>

namespace velquor {

// The levels available on this machine: level 0 is the portable scalar loop, levels 1 ..
// SimdLevelCount() - 1 the vector forms the CPU supports, worst first, so the last level is the
// one chosen by default (only level 0 without Highway).
int SimdLevelCount();

// A short name of a level ("portable" for level 0, then Highway's target names: "SSE4",
// "AVX2", "AVX3" for AVX-512, ...); "" when out of range.
const char* SimdLevelName(int level);

// Makes later kernel calls run at `level` (0 .. SimdLevelCount() - 1), or at the best level
// again for -1; other values are ignored. Process-wide, for tests and benchmarks: do not call
// it while a batch runs.
void SetSimdLevelForTesting(int level);

// The name of the level the kernels run at now.
const char* ActiveSimdLevelName();

// For the kernels' dispatch (VELQUOR_SIMD_CALL): 0 = Highway's best target, -1 = the portable
// loop, otherwise the forced Highway target, whose index in a dispatch table is
// SimdTargetIndex(target).
std::int64_t ForcedSimdTarget();
std::size_t SimdTargetIndex(std::int64_t target);

}  // namespace velquor

// Calls the Highway-dispatched FUNC at the current level, or PORTABLE (same arguments) at level
// 0. For use after HWY_EXPORT(FUNC) in a kernel file compiled with Highway.
#define VELQUOR_SIMD_CALL(FUNC, PORTABLE, ...)                                        \
  do {                                                                                \
    const std::int64_t velquorForced = ::velquor::ForcedSimdTarget();                 \
    if (velquorForced == 0) {                                                         \
      HWY_DYNAMIC_DISPATCH(FUNC)(__VA_ARGS__);                                        \
    } else if (velquorForced < 0) {                                                   \
      PORTABLE(__VA_ARGS__);                                                          \
    } else {                                                                          \
      HWY_DISPATCH_TABLE(FUNC)[::velquor::SimdTargetIndex(velquorForced)](__VA_ARGS__); \
    }                                                                                 \
  } while (false)
