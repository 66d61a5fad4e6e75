// Batch indices against per-sample calls: 1,000,000 samples per iteration through
// ComputeIndexBatch and, side by side in the same iteration, through the identifier's
// per-sample function (the loop a host would write), one core. Counters:
//   speedup      per-sample time / batch time, one thread, the best SIMD level;
//   speedup_portable  the same with the portable scalar loop (formula resolved once, no vectors);
//   speedup_threads   per-sample time / batch time with every thread (BatchThreads(0)).
// The time reported is that of the one-thread batch. Run: build/release/bench/velquor_bench_indices
#include <benchmark/benchmark.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

#include "velquor/data/value_vectors.h"
#include "velquor/frame/batch_threads.h"
#include "velquor/frame/simd_dispatch.h"
#include "velquor/indices/index_batch.h"
#include "velquor/indices/index_formulas.h"

namespace {

constexpr int kD65 = 2;
constexpr int k10Degree = 1;
constexpr std::size_t kSamples = 1000000;

// Paper-like whites and pale colours, X, Y, Z side by side.
std::vector<double> MakeSamples() {
  std::mt19937_64 random(20261125);
  std::uniform_real_distribution<double> y(60.0, 100.0);
  std::uniform_real_distribution<double> tint(0.85, 1.2);
  std::vector<double> xyz(3 * kSamples);
  for (std::size_t n = 0; n < kSamples; ++n) {
    const double v = y(random);
    xyz[3 * n] = v * 0.95 * tint(random);
    xyz[3 * n + 1] = v;
    xyz[3 * n + 2] = v * 1.09 * tint(random);
  }
  return xyz;
}

double Seconds(std::chrono::steady_clock::time_point start) {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

void BM_IndexBatchVsPerSample(benchmark::State& state) {
  const auto identifier = static_cast<std::uint32_t>(state.range(0));
  const velquor::IndexFormula* formula = velquor::FindIndexFormula(identifier);
  const std::vector<double> xyz = MakeSamples();
  std::vector<double> out(kSamples);
  double perSample = 0.0, batch = 0.0, portable = 0.0, threads = 0.0;
  for (auto _ : state) {
    auto start = std::chrono::steady_clock::now();
    velquor::CValueVector3 sample;
    for (std::size_t n = 0; n < kSamples; ++n) {
      sample[0] = xyz[3 * n];
      sample[1] = xyz[3 * n + 1];
      sample[2] = xyz[3 * n + 2];
      out[n] = formula->plain(kD65, k10Degree, sample);
    }
    benchmark::DoNotOptimize(out.data());
    benchmark::ClobberMemory();
    perSample += Seconds(start);

    velquor::SetBatchThreads(1);
    velquor::SetSimdLevelForTesting(0);
    start = std::chrono::steady_clock::now();
    velquor::ComputeIndexBatch(identifier, kD65, k10Degree, xyz.data(), 3, nullptr, out.data(),
                               kSamples);
    benchmark::ClobberMemory();
    portable += Seconds(start);

    velquor::SetSimdLevelForTesting(-1);
    start = std::chrono::steady_clock::now();
    velquor::ComputeIndexBatch(identifier, kD65, k10Degree, xyz.data(), 3, nullptr, out.data(),
                               kSamples);
    benchmark::ClobberMemory();
    const double seconds = Seconds(start);
    batch += seconds;
    state.SetIterationTime(seconds);

    velquor::SetBatchThreads(0);
    start = std::chrono::steady_clock::now();
    velquor::ComputeIndexBatch(identifier, kD65, k10Degree, xyz.data(), 3, nullptr, out.data(),
                               kSamples);
    benchmark::ClobberMemory();
    threads += Seconds(start);
  }
  state.SetLabel(velquor::ActiveSimdLevelName());
  state.counters["speedup"] = perSample / batch;
  state.counters["speedup_portable"] = perSample / portable;
  state.counters["speedup_threads"] = perSample / threads;
  state.counters["threads"] = velquor::BatchThreads();
  state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * kSamples));
}
// WI CIE (R), Tint CIE (R), YI E313-73 (R), YI D1925 (R), Berger (R), Rx: the kernel's forms;
// Hunter (19): a per-sample function split over threads.
BENCHMARK(BM_IndexBatchVsPerSample)
    ->ArgName("identifier")
    ->Arg(3)
    ->Arg(4)
    ->Arg(0)
    ->Arg(1)
    ->Arg(17)
    ->Arg(40)
    ->Arg(19)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

}  // namespace
