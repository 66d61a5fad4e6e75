// Throughput of colour strength: 1,000,000 batch/standard pairs per iteration through
// CalcStrength, by the apparent method (K/S summed over 420-680 nm), without and with the
// Saunderson correction, and by optical density. Run: build/release/bench/velquor_bench_strength
#include <benchmark/benchmark.h>

#include <chrono>
#include <cstddef>
#include <algorithm>
#include <cstdint>
#include <random>
#include <vector>

#include "velquor/data/ks_data.h"
#include "velquor/data/value_vectors.h"
#include "velquor/colorimetry/tristimulus.h"
#include "velquor/frame/batch_threads.h"
#include "velquor/strength/strength.h"
#include "velquor/strength/strength_batch.h"

namespace {

constexpr int kD65 = 2;
constexpr int k10Degree = 1;
constexpr std::size_t kPairsPerIteration = 1000000;
// Distinct curves cycled through (about 640 KB, so the pairs stream through the caches as
// measured data would).
constexpr std::size_t kCurves = 1024;

// Smooth random reflectance curves (percent), like measured paints.
std::vector<velquor::CKSData> MakeSpectra(std::uint64_t seed) {
  std::mt19937_64 random(seed);
  std::uniform_real_distribution<double> level(2.0, 95.0);
  std::uniform_real_distribution<double> slope(-1.5, 1.5);
  std::vector<velquor::CKSData> spectra(kCurves);
  for (velquor::CKSData& curve : spectra) {
    const double base = level(random);
    const double tilt = slope(random);
    for (std::size_t i = 0; i < velquor::CKSData::kLength; ++i) {
      const double r = base + tilt * (static_cast<double>(i) - 20.0);
      curve[i] = r < 0.5 ? 0.5 : (r > 100.0 ? 100.0 : r);
    }
  }
  return spectra;
}

void RunApparent(benchmark::State& state, int saundersonOn, bool useAbsorbance) {
  const std::vector<velquor::CKSData> standards = MakeSpectra(20261122);
  const std::vector<velquor::CKSData> batches = MakeSpectra(20261123);
  const velquor::CValueVector3 colour;
  velquor::CStrengthSettings settings;
  settings.method = 0;
  settings.saundersonOn = saundersonOn;
  settings.k1 = 0.04;
  settings.k2 = 0.6;
  for (auto _ : state) {
    double total = 0.0;
    for (std::size_t n = 0; n < kPairsPerIteration; ++n) {
      int wavelength = 0;
      total += velquor::CalcStrength(settings, standards[n % kCurves],
                                     batches[(n * 7 + n / kCurves) % kCurves], colour, colour, kD65,
                                     k10Degree, useAbsorbance, wavelength);
    }
    benchmark::DoNotOptimize(total);
  }
  state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * kPairsPerIteration));
}

void BM_ApparentStrength(benchmark::State& state) {
  RunApparent(state, 0, false);
}
void BM_ApparentStrengthSaunderson(benchmark::State& state) {
  RunApparent(state, 1, false);
}
void BM_ApparentStrengthAbsorbance(benchmark::State& state) {
  RunApparent(state, 0, true);
}

BENCHMARK(BM_ApparentStrength)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ApparentStrengthSaunderson)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ApparentStrengthAbsorbance)->Unit(benchmark::kMillisecond);

double Seconds(std::chrono::steady_clock::time_point start) {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// One standard against 1,000,000 batches by method range(0) (K/S; density with range(1) = 1),
// Saunderson on: StrengthBatch against CalcStrength per batch, side by side in each iteration.
// The per-batch loop gets the colours as the C interface does (ComputeXYZ of each spectrum);
// StrengthBatch integrates them itself. Counters: "speedup" per-batch time / batch time on one
// thread, "speedup_threads" the same with every thread. The time reported is the one-thread
// batch's.
void BM_StrengthBatchVsPerBatch(benchmark::State& state) {
  const std::vector<velquor::CKSData> curves = MakeSpectra(20261123);
  std::vector<double> spectra(kPairsPerIteration * velquor::CKSData::kLength);
  for (std::size_t n = 0; n < kPairsPerIteration; ++n) {
    const velquor::CKSData& c = curves[(n * 7 + n / kCurves) % kCurves];
    std::copy(c.GetData(), c.GetData() + velquor::CKSData::kLength,
              spectra.data() + n * velquor::CKSData::kLength);
  }
  const velquor::CKSData standard = MakeSpectra(20261122)[0];
  velquor::CValueVector3 standardXyz;
  velquor::ComputeXYZ(standard, kD65, k10Degree, standardXyz);
  velquor::CStrengthSettings settings;
  settings.method = static_cast<std::int32_t>(state.range(0));
  settings.saundersonOn = 1;
  settings.k1 = 0.04;
  settings.k2 = 0.6;
  const bool absorbance = state.range(1) != 0;
  const bool colours = settings.method >= 7 && settings.method <= 10;
  std::vector<double> out(kPairsPerIteration);
  double perBatch = 0.0, batch = 0.0, threads = 0.0;
  for (auto _ : state) {
    auto start = std::chrono::steady_clock::now();
    velquor::CKSData curve;
    velquor::CValueVector3 xyz;
    for (std::size_t n = 0; n < kPairsPerIteration; ++n) {
      std::copy(spectra.data() + n * velquor::CKSData::kLength,
                spectra.data() + (n + 1) * velquor::CKSData::kLength, curve.GetData());
      if (colours) velquor::ComputeXYZ(curve, kD65, k10Degree, xyz);
      int wavelength = 0;
      out[n] = velquor::CalcStrength(settings, standard, curve, standardXyz, xyz, kD65, k10Degree,
                                     absorbance, wavelength);
    }
    benchmark::DoNotOptimize(out.data());
    benchmark::ClobberMemory();
    perBatch += Seconds(start);

    int wavelength = 0;
    velquor::SetBatchThreads(1);
    start = std::chrono::steady_clock::now();
    velquor::StrengthBatch(settings, standard, standardXyz, spectra.data(),
                           velquor::CKSData::kLength, nullptr, 3, kPairsPerIteration, kD65,
                           k10Degree, absorbance, out.data(), wavelength);
    benchmark::ClobberMemory();
    const double seconds = Seconds(start);
    batch += seconds;
    state.SetIterationTime(seconds);

    velquor::SetBatchThreads(0);
    start = std::chrono::steady_clock::now();
    velquor::StrengthBatch(settings, standard, standardXyz, spectra.data(),
                           velquor::CKSData::kLength, nullptr, 3, kPairsPerIteration, kD65,
                           k10Degree, absorbance, out.data(), wavelength);
    benchmark::ClobberMemory();
    threads += Seconds(start);
  }
  state.counters["speedup"] = perBatch / batch;
  state.counters["speedup_threads"] = perBatch / threads;
  state.counters["threads"] = velquor::BatchThreads();
  state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * kPairsPerIteration));
}
// Apparent (K/S, density), chromatic at maximum absorption, pseudo tristimulus, tristimulus.
BENCHMARK(BM_StrengthBatchVsPerBatch)
    ->ArgNames({"method", "density"})
    ->Args({0, 0})
    ->Args({0, 1})
    ->Args({1, 0})
    ->Args({3, 0})
    ->Args({7, 0})
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

}  // namespace
