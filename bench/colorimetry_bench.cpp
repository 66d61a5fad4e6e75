// Throughput of the colorimetric hot path: spectra -> XYZ and XYZ -> CIELAB, with LittleCMS's
// cmsXYZ2Lab on the same data as the peer, and spectra -> CIELAB over one million spectra at 1
// and 2 batch threads side by side. Spectra -> XYZ on one core is also measured against the
// memory bandwidth of the same pass (counter "ratio", 1 = as fast as reading the spectra), at
// every SIMD level the machine has. Run: build/release/bench/velquor_bench_colorimetry
#include <benchmark/benchmark.h>
#include <lcms2.h>

#include <chrono>
#include <cstddef>
#include <random>
#include <thread>
#include <vector>

#include "velquor/colorimetry/coordinate_batch.h"
#include "velquor/colorimetry/tristimulus.h"
#include "velquor/colorimetry/weight_table_cache.h"
#include "velquor/colorimetry/xyz_kernel.h"
#include "velquor/frame/simd_dispatch.h"
#include "velquor/data/value_vectors.h"
#include "velquor/frame/batch_threads.h"
#include "velquor/velquor_c.h"
#include "bench/bandwidth_anchor.h"

namespace {

constexpr int kD65 = 2;
constexpr int k10Degree = 1;

// Smooth random reflectance curves (percent), like measured paints.
std::vector<double> MakeSpectra(std::size_t count) {
  std::mt19937_64 random(20261122);
  std::uniform_real_distribution<double> level(2.0, 95.0);
  std::uniform_real_distribution<double> slope(-1.5, 1.5);
  std::vector<double> spectra(count * 40);
  for (std::size_t s = 0; s < count; ++s) {
    const double base = level(random);
    const double tilt = slope(random);
    for (std::size_t i = 0; i < 40; ++i) {
      double r = base + tilt * (static_cast<double>(i) - 20.0);
      spectra[s * 40 + i] = r < 0.5 ? 0.5 : (r > 100.0 ? 100.0 : r);
    }
  }
  return spectra;
}

std::vector<double> MakeXYZ(std::size_t count) {
  const std::vector<double> spectra = MakeSpectra(count);
  std::vector<double> xyz(count * 3);
  velquor::ComputeXYZBatch(spectra.data(), count, 40, kD65, k10Degree, xyz.data(), 3);
  return xyz;
}

void BM_SpectraToXYZ(benchmark::State& state) {
  const auto count = static_cast<std::size_t>(state.range(0));
  const std::vector<double> spectra = MakeSpectra(count);
  std::vector<double> xyz(count * 3);
  for (auto _ : state) {
    velquor::ComputeXYZBatch(spectra.data(), count, 40, kD65, k10Degree, xyz.data(), 3);
    benchmark::DoNotOptimize(xyz.data());
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * count));
}
BENCHMARK(BM_SpectraToXYZ)->Arg(100000);

double Seconds(std::chrono::steady_clock::time_point start) {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// Spectra -> XYZ on one thread at SIMD level range(1) against the bandwidth anchor on the same
// memory, the two passes alternating in every iteration so that both see the same machine
// load. The time reported is that of spectra -> XYZ; "ratio" is anchor time / XYZ time, the
// fraction of the memory-bound speed that spectra -> XYZ reaches. The label names the level.
void BM_SpectraToXYZ_VsBandwidth(benchmark::State& state) {
  const auto count = static_cast<std::size_t>(state.range(0));
  const std::vector<double> spectra = MakeSpectra(count);
  std::vector<double> xyz(count * 3);
  velquor::SetBatchThreads(1);
  velquor::SetSimdLevelForTesting(static_cast<int>(state.range(1)));
  double anchorSeconds = 0.0, xyzSeconds = 0.0;
  for (auto _ : state) {
    auto start = std::chrono::steady_clock::now();
    benchmark::DoNotOptimize(SumAll(spectra.data(), spectra.size()));
    anchorSeconds += Seconds(start);
    start = std::chrono::steady_clock::now();
    velquor::ComputeXYZBatch(spectra.data(), count, 40, kD65, k10Degree, xyz.data(), 3);
    benchmark::DoNotOptimize(xyz.data());
    benchmark::ClobberMemory();
    const double seconds = Seconds(start);
    xyzSeconds += seconds;
    state.SetIterationTime(seconds);
  }
  state.SetLabel(velquor::ActiveSimdLevelName());
  state.counters["ratio"] = anchorSeconds / xyzSeconds;
  state.counters["anchor_GBps"] =
      static_cast<double>(state.iterations() * spectra.size() * sizeof(double)) / anchorSeconds / 1e9;
  velquor::SetSimdLevelForTesting(-1);
  velquor::SetBatchThreads(0);
  state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * count));
}
BENCHMARK(BM_SpectraToXYZ_VsBandwidth)
    ->ArgNames({"spectra", "level"})
    ->ArgsProduct({{1000000}, benchmark::CreateDenseRange(0, velquor::SimdLevelCount() - 1, 1)})
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

// The fused bulk path (spectrum -> XYZ -> CIELAB chunk by chunk) at one batch thread and at
// range(1) threads, alternating in every iteration. Wall-clock time, since the workers' CPU time
// is not the caller's; the time reported is that at range(1) threads, and "ratio" is the time
// at one thread / the time at range(1) threads (the speed-up); "anchor_ratio" is the same for
// the bandwidth anchor.
void BM_SpectraToLab_VsOneThread(benchmark::State& state) {
  const auto count = static_cast<std::size_t>(state.range(0));
  const std::vector<double> spectra = MakeSpectra(count);
  std::vector<vq_coords5> lab(count);
  double oneSeconds = 0.0, manySeconds = 0.0;
  for (auto _ : state) {
    velquor::SetBatchThreads(1);
    auto start = std::chrono::steady_clock::now();
    vq_lab_batch(spectra.data(), count, kD65, k10Degree, lab.data(), nullptr);
    benchmark::DoNotOptimize(lab.data());
    benchmark::ClobberMemory();
    oneSeconds += Seconds(start);
    velquor::SetBatchThreads(static_cast<int>(state.range(1)));
    start = std::chrono::steady_clock::now();
    vq_lab_batch(spectra.data(), count, kD65, k10Degree, lab.data(), nullptr);
    benchmark::DoNotOptimize(lab.data());
    benchmark::ClobberMemory();
    const double seconds = Seconds(start);
    manySeconds += seconds;
    state.SetIterationTime(seconds);
  }
  velquor::SetBatchThreads(0);
  // The same comparison for the bandwidth anchor, the whole memory read by one thread and then
  // in range(1) equal parts by as many threads: the most any memory-bound pass can gain.
  const auto threads = static_cast<std::size_t>(state.range(1));
  const std::size_t part = spectra.size() / threads;
  double anchorOne = 0.0, anchorMany = 0.0;
  for (int repeat = 0; repeat < 5; ++repeat) {
    auto start = std::chrono::steady_clock::now();
    benchmark::DoNotOptimize(SumAll(spectra.data(), spectra.size()));
    anchorOne += Seconds(start);
    start = std::chrono::steady_clock::now();
    std::vector<std::thread> workers;
    for (std::size_t t = 1; t < threads; ++t) {
      workers.emplace_back([&, t] { benchmark::DoNotOptimize(SumAll(&spectra[t * part], part)); });
    }
    benchmark::DoNotOptimize(SumAll(spectra.data(), part));
    for (std::thread& worker : workers) worker.join();
    anchorMany += Seconds(start);
  }
  state.SetLabel(velquor::ActiveSimdLevelName());
  state.counters["ratio"] = oneSeconds / manySeconds;
  state.counters["anchor_ratio"] = anchorOne / anchorMany;
  state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * count));
}
BENCHMARK(BM_SpectraToLab_VsOneThread)
    ->ArgNames({"spectra", "threads"})
    ->Args({1000000, 2})
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

void BM_XYZToLab_velquor(benchmark::State& state) {
  const auto count = static_cast<std::size_t>(state.range(0));
  const std::vector<double> xyz = MakeXYZ(count);
  velquor::CValueVector3 white;
  velquor::GetWhitePoint(kD65, k10Degree, white);
  const double whitePoint[3] = {white[0], white[1], white[2]};
  std::vector<double> lab(count * 5);
  for (auto _ : state) {
    velquor::XYZToLabBatch(whitePoint, xyz.data(), 3, lab.data(), 5, count);
    benchmark::DoNotOptimize(lab.data());
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * count));
}
BENCHMARK(BM_XYZToLab_velquor)->Arg(100000);

// The same samples for LittleCMS, which works on the 0..1 scale.
struct LittleCmsInput {
  cmsCIEXYZ white;
  std::vector<cmsCIEXYZ> xyz;
};

LittleCmsInput MakeLittleCmsInput(std::size_t count) {
  const std::vector<double> xyz = MakeXYZ(count);
  velquor::CValueVector3 white;
  velquor::GetWhitePoint(kD65, k10Degree, white);
  LittleCmsInput in{{white[0] / 100.0, white[1] / 100.0, white[2] / 100.0}, {}};
  in.xyz.resize(count);
  for (std::size_t i = 0; i < count; ++i) {
    in.xyz[i] = {xyz[3 * i] / 100.0, xyz[3 * i + 1] / 100.0, xyz[3 * i + 2] / 100.0};
  }
  return in;
}

// The peer: LittleCMS converts XYZ (0..1 scale) to L*, a*, b* only; velquor also gives C*ab
// and hab, so this favours LittleCMS slightly.
void BM_XYZToLab_LittleCMS(benchmark::State& state) {
  const auto count = static_cast<std::size_t>(state.range(0));
  const LittleCmsInput in = MakeLittleCmsInput(count);
  const cmsCIEXYZ& whitePoint = in.white;
  const std::vector<cmsCIEXYZ>& input = in.xyz;
  std::vector<cmsCIELab> lab(count);
  for (auto _ : state) {
    for (std::size_t i = 0; i < count; ++i) cmsXYZ2Lab(&whitePoint, &lab[i], &input[i]);
    benchmark::DoNotOptimize(lab.data());
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * count));
}
BENCHMARK(BM_XYZToLab_LittleCMS)->Arg(100000);

// Like for like: LittleCMS XYZ -> Lab followed by Lab -> LCh, the five values velquor returns.
void BM_XYZToLabLCh_LittleCMS(benchmark::State& state) {
  const auto count = static_cast<std::size_t>(state.range(0));
  const LittleCmsInput in = MakeLittleCmsInput(count);
  const cmsCIEXYZ& whitePoint = in.white;
  const std::vector<cmsCIEXYZ>& input = in.xyz;
  std::vector<cmsCIELab> lab(count);
  std::vector<cmsCIELCh> lch(count);
  for (auto _ : state) {
    for (std::size_t i = 0; i < count; ++i) {
      cmsXYZ2Lab(&whitePoint, &lab[i], &input[i]);
      cmsLab2LCh(&lch[i], &lab[i]);
    }
    benchmark::DoNotOptimize(lch.data());
    benchmark::ClobberMemory();
  }
  state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * count));
}
BENCHMARK(BM_XYZToLabLCh_LittleCMS)->Arg(100000);

// XYZ -> L*, a*, b*, C*ab, hab on one thread at SIMD level range(1) against LittleCMS's
// cmsXYZ2Lab (L*, a*, b* only) on the same samples, alternating in every iteration. The time
// reported is velquor's; "ratio" is LittleCMS time / velquor time (2 = twice as fast).
void BM_XYZToLab_VsLittleCMS(benchmark::State& state) {
  const auto count = static_cast<std::size_t>(state.range(0));
  const std::vector<double> xyz = MakeXYZ(count);
  const LittleCmsInput in = MakeLittleCmsInput(count);
  const double white[3] = {in.white.X * 100.0, in.white.Y * 100.0, in.white.Z * 100.0};
  std::vector<double> ours(count * 5);
  std::vector<cmsCIELab> theirs(count);
  velquor::SetBatchThreads(1);
  velquor::SetSimdLevelForTesting(static_cast<int>(state.range(1)));
  double peerSeconds = 0.0, ourSeconds = 0.0;
  for (auto _ : state) {
    auto start = std::chrono::steady_clock::now();
    for (std::size_t i = 0; i < count; ++i) cmsXYZ2Lab(&in.white, &theirs[i], &in.xyz[i]);
    benchmark::DoNotOptimize(theirs.data());
    benchmark::ClobberMemory();
    peerSeconds += Seconds(start);
    start = std::chrono::steady_clock::now();
    velquor::XYZToLabBatch(white, xyz.data(), 3, ours.data(), 5, count);
    benchmark::DoNotOptimize(ours.data());
    benchmark::ClobberMemory();
    const double seconds = Seconds(start);
    ourSeconds += seconds;
    state.SetIterationTime(seconds);
  }
  state.SetLabel(velquor::ActiveSimdLevelName());
  state.counters["ratio"] = peerSeconds / ourSeconds;
  velquor::SetSimdLevelForTesting(-1);
  velquor::SetBatchThreads(0);
  state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * count));
}
BENCHMARK(BM_XYZToLab_VsLittleCMS)
    ->ArgNames({"samples", "level"})
    ->ArgsProduct({{1000000}, benchmark::CreateDenseRange(0, velquor::SimdLevelCount() - 1, 1)})
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);

// XYZ -> CIELUV on one thread at SIMD level range(1) (LittleCMS has no CIELUV).
void BM_XYZToLuv(benchmark::State& state) {
  const auto count = static_cast<std::size_t>(state.range(0));
  const std::vector<double> xyz = MakeXYZ(count);
  const double white[3] = {94.811, 100.0, 107.304};
  std::vector<double> luv(count * 5);
  velquor::SetBatchThreads(1);
  velquor::SetSimdLevelForTesting(static_cast<int>(state.range(1)));
  for (auto _ : state) {
    velquor::XYZToLuvBatch(white, xyz.data(), 3, luv.data(), 5, count);
    benchmark::DoNotOptimize(luv.data());
    benchmark::ClobberMemory();
  }
  state.SetLabel(velquor::ActiveSimdLevelName());
  velquor::SetSimdLevelForTesting(-1);
  velquor::SetBatchThreads(0);
  state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations() * count));
}
BENCHMARK(BM_XYZToLuv)
    ->ArgNames({"samples", "level"})
    ->ArgsProduct({{1000000}, benchmark::CreateDenseRange(0, velquor::SimdLevelCount() - 1, 1)})
    ->Unit(benchmark::kMillisecond);

}  // namespace
