// Throughput of colour differences, one standard against 1,000,000 trials on one core: the
// library's batch (vq_difference_batch, all seven slots) beside LittleCMS's one-pair functions
// (the total only) on the same CIELAB values, timed alternately in every iteration so that both
// see the same machine load. Counter "ratio" = LittleCMS time / velquor time; the label names
// the SIMD level. Run: build/release/bench/velquor_bench_difference
#include <benchmark/benchmark.h>
#include <lcms2.h>

#include <chrono>
#include <cmath>
#include <cstddef>
#include <random>
#include <string>
#include <vector>

#include "velquor/frame/batch_threads.h"
#include "velquor/frame/simd_dispatch.h"
#include "velquor/velquor_c.h"

namespace {

constexpr std::size_t kTrials = 1000000;

// A comparison: the library's system and weights, and the LittleCMS function of the same formula.
struct Comparison {
  const char* name;
  int system;
  double weights[3];
  double (*littleCms)(const cmsCIELab* standard, const cmsCIELab* trial);
};

const Comparison kComparisons[] = {
    {"CIEDE2000", VQ_DIFF_CIE2000, {1, 1, 1},
     [](const cmsCIELab* s, const cmsCIELab* t) { return cmsCIE2000DeltaE(s, t, 1, 1, 1); }},
    {"CMC 2:1", VQ_DIFF_CMC, {2, 1, 1},
     [](const cmsCIELab* s, const cmsCIELab* t) { return cmsCMCdeltaE(s, t, 2, 1); }},
    {"CIE94", VQ_DIFF_CIE94, {1, 1, 1},
     [](const cmsCIELab* s, const cmsCIELab* t) { return cmsCIE94DeltaE(s, t); }},
    {"dE*ab", VQ_DIFF_CIELAB, {1, 1, 1},
     [](const cmsCIELab* s, const cmsCIELab* t) { return cmsDeltaE(s, t); }},
};

// QC-like trials: CIELAB colours within a few units of a standard, or anywhere in the gamut.
struct Data {
  vq_sample standard;
  std::vector<vq_sample> trials;
  cmsCIELab lcmsStandard;
  std::vector<cmsCIELab> lcmsTrials;
};

vq_sample Sample(double l, double a, double b) {
  double h = std::atan2(b, a) * 57.29577951307855;
  if (h < 0) h += 360.0;
  return {{30.0, 32.0, 35.0}, {l, a, b, std::hypot(a, b), h}};
}

const Data& TestData() {
  static const Data data = [] {
    std::mt19937_64 random(20261125);
    std::uniform_real_distribution<double> l(5.0, 95.0), ab(-90.0, 90.0);
    std::normal_distribution<double> near(0.0, 2.0);
    Data d;
    d.standard = Sample(52.0, 18.0, -31.0);
    d.lcmsStandard = {52.0, 18.0, -31.0};
    d.trials.resize(kTrials);
    d.lcmsTrials.resize(kTrials);
    for (std::size_t n = 0; n < kTrials; ++n) {
      const bool isNear = n % 2 == 0;
      const double tl = isNear ? 52.0 + near(random) : l(random);
      const double ta = isNear ? 18.0 + near(random) : ab(random);
      const double tb = isNear ? -31.0 + near(random) : ab(random);
      d.trials[n] = Sample(tl, ta, tb);
      d.lcmsTrials[n] = {tl, ta, tb};
    }
    return d;
  }();
  return data;
}

double Seconds(std::chrono::steady_clock::time_point start) {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// range(0): the comparison; range(1): the SIMD level (0 the portable loop; the last the best).
void BM_Difference_VsLittleCMS(benchmark::State& state) {
  const Comparison& c = kComparisons[state.range(0)];
  const Data& data = TestData();
  std::vector<vq_diff7> out(kTrials);
  std::vector<double> totals(kTrials);
  velquor::SetBatchThreads(1);
  velquor::SetSimdLevelForTesting(static_cast<int>(state.range(1)));
  double velquorSeconds = 0.0, littleCmsSeconds = 0.0;
  for (auto _ : state) {
    auto start = std::chrono::steady_clock::now();
    vq_difference_batch(&data.standard, data.trials.data(), kTrials, c.system, 2, 1, c.weights, 0.0,
                        out.data());
    benchmark::DoNotOptimize(out.data());
    benchmark::ClobberMemory();
    const double seconds = Seconds(start);
    velquorSeconds += seconds;
    state.SetIterationTime(seconds);
    start = std::chrono::steady_clock::now();
    for (std::size_t n = 0; n < kTrials; ++n) {
      totals[n] = c.littleCms(&data.lcmsStandard, &data.lcmsTrials[n]);
    }
    benchmark::DoNotOptimize(totals.data());
    benchmark::ClobberMemory();
    littleCmsSeconds += Seconds(start);
  }
  state.SetLabel(std::string(c.name) + " " + velquor::ActiveSimdLevelName());
  state.counters["ratio"] = littleCmsSeconds / velquorSeconds;
  state.counters["lcms_ns"] = littleCmsSeconds * 1e9 / static_cast<double>(state.iterations() * kTrials);
  state.counters["velquor_ns"] = velquorSeconds * 1e9 / static_cast<double>(state.iterations() * kTrials);
  velquor::SetSimdLevelForTesting(-1);
  velquor::SetBatchThreads(0);
  state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * kTrials));
}
BENCHMARK(BM_Difference_VsLittleCMS)
    ->ArgNames({"formula", "level"})
    ->ArgsProduct({{0, 1, 2, 3}, {0, velquor::SimdLevelCount() - 1}})
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

}  // namespace
