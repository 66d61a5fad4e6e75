// Throughput of colour strength: 1,000,000 batch/standard pairs per iteration through
// CalcStrength, by the apparent method (K/S summed over 420-680 nm), without and with the
// Saunderson correction, and by optical density. Run: build/release/bench/velquor_bench_strength
#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

#include "velquor/data/ks_data.h"
#include "velquor/data/value_vectors.h"
#include "velquor/strength/strength.h"

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

}  // namespace
