#include "velquor/frame/thread_pool.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <cstring>
#include <stdexcept>
#include <thread>
#include <vector>

#include "tests/tolerances.h"
#include "velquor/colorimetry/tristimulus.h"
#include "velquor/frame/batch_threads.h"
#include "velquor/velquor_c.h"

namespace velquor {
namespace {

class ThreadPoolTest : public ::testing::Test {
 protected:
  void TearDown() override { SetBatchThreads(0); }
};

// Index of the first element whose bits differ, or -1: results must match bit for bit.
template <class T>
long FirstDifference(const std::vector<T>& a, const std::vector<T>& b) {
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (std::memcmp(&a[i], &b[i], sizeof(T)) != 0) return static_cast<long>(i);
  }
  return a.size() == b.size() ? -1 : static_cast<long>(a.size());
}

TEST_F(ThreadPoolTest, ThreadCountSettingResolvesZeroAndCapsAbsurdValues) {
  const int cores = static_cast<int>(std::thread::hardware_concurrency());
  const std::pair<int, int> cases[] = {
      {1, 1}, {2, 2}, {8, 8}, {kMaxBatchThreads, kMaxBatchThreads},
      {kMaxBatchThreads + 1, kMaxBatchThreads}, {100000, kMaxBatchThreads}, {-5, 1},
      {0, cores < 1 ? 1 : std::min(cores, kMaxBatchThreads)}};
  for (const auto& [requested, used] : cases) {
    SetBatchThreads(requested);
    EXPECT_EQ(BatchThreads(), used) << requested;
  }
  EXPECT_EQ(vq_set_batch_threads(3), VQ_OK);
  EXPECT_EQ(vq_batch_threads(), 3);
  EXPECT_EQ(BatchThreads(), 3);
}

// Every index is visited once, in the fixed chunks [k chunk, (k + 1) chunk); a single chunk
// or one thread stays in the calling thread.
TEST_F(ThreadPoolTest, ChunksCoverTheRangeAndSmallBatchesStayInTheCaller) {
  struct Case {
    std::size_t count, chunk;
    int threads;
    bool callerOnly;
  };
  const Case cases[] = {{0, 4, 8, true},    {1, 4, 8, true},   {4, 4, 8, true},
                        {5, 4, 8, false},   {1000, 7, 2, false}, {1000, 7, 1, true},
                        {1000, 0, 8, false}, {64, 1, 100000, false}};
  for (const Case& c : cases) {
    SetBatchThreads(c.threads);
    std::vector<std::atomic<int>> visits(c.count);
    std::atomic<bool> badChunk{false}, otherThread{false};
    const std::size_t chunk = c.chunk == 0 ? 1 : c.chunk;
    const std::thread::id caller = std::this_thread::get_id();
    ParallelFor(c.count, c.chunk, [&](std::size_t begin, std::size_t end) {
      if (begin % chunk != 0 || end != std::min(begin + chunk, c.count)) badChunk = true;
      if (std::this_thread::get_id() != caller) otherThread = true;
      for (std::size_t i = begin; i < end; ++i) ++visits[i];
    });
    for (std::size_t i = 0; i < c.count; ++i) ASSERT_EQ(visits[i], 1) << c.count << " " << i;
    EXPECT_FALSE(badChunk) << c.count << "/" << c.chunk;
    EXPECT_TRUE(!c.callerOnly || !otherThread) << c.count << "/" << c.chunk;
  }
  // The pool grew for the 100000-thread request, but not beyond the cap.
  EXPECT_GE(BatchPoolWorkerCount(), 7);
  EXPECT_LE(BatchPoolWorkerCount(), kMaxBatchThreads - 1);
}

// A batch started inside a chunk runs in the thread of that chunk, though idle workers wait.
TEST_F(ThreadPoolTest, NestedBatchStaysInItsThread) {
  SetBatchThreads(8);
  std::atomic<bool> nestedLeft{false};
  ParallelFor(2, 1, [&](std::size_t, std::size_t) {
    const std::thread::id runner = std::this_thread::get_id();
    ParallelFor(20, 1, [&](std::size_t, std::size_t) {
      if (std::this_thread::get_id() != runner) nestedLeft = true;
      std::this_thread::sleep_for(std::chrono::microseconds(200));
    });
  });
  EXPECT_FALSE(nestedLeft);
}

TEST_F(ThreadPoolTest, ExceptionOfAChunkReachesTheCallerAfterAllChunks) {
  SetBatchThreads(4);
  std::atomic<int> done{0};
  EXPECT_THROW(ParallelFor(40, 1,
                           [&](std::size_t begin, std::size_t) {
                             ++done;
                             if (begin == 3) throw std::runtime_error("chunk 3");
                           }),
               std::runtime_error);
  EXPECT_EQ(done, 40);
}

// Smooth curves (percent) with a missing first point every 97th, and trials with missing
// samples: enough of each for several chunks of every batch function.
constexpr std::size_t kCount = 5000;
constexpr int kD65 = 2;

std::vector<double> Spectra() {
  std::vector<double> spectra(kCount * VQ_SPECTRUM_POINTS);
  for (std::size_t n = 0; n < kCount; ++n) {
    for (std::size_t i = 0; i < VQ_SPECTRUM_POINTS; ++i) {
      const double phase = 0.37 * static_cast<double>(n) + 0.21 * static_cast<double>(i);
      spectra[n * VQ_SPECTRUM_POINTS + i] = 3.0 + 45.0 * (1.0 + std::sin(phase));
    }
    if (n % 97 == 5) spectra[n * VQ_SPECTRUM_POINTS] = VQ_MISSING;
  }
  return spectra;
}

// Outputs of the five C batch functions and of ComputeXYZBatch.
struct BatchResults {
  std::vector<vq_xyz> xyz = std::vector<vq_xyz>(kCount), labXyz = xyz, cppXyz = xyz;
  std::vector<vq_coords5> lab = std::vector<vq_coords5>(kCount), labFromXyz = lab;
  std::vector<vq_diff7> fromSamples = std::vector<vq_diff7>(kCount), fromSpectra = fromSamples;
};

BatchResults RunBatches(const std::vector<double>& spectra, const std::vector<vq_sample>& trials) {
  BatchResults r;
  const double* s = spectra.data();
  const int o = VQ_OBSERVER_10;
  EXPECT_EQ(vq_xyz_batch(s, kCount, kD65, o, r.xyz.data()), VQ_OK);
  EXPECT_EQ(vq_lab_batch(s, kCount, kD65, o, r.lab.data(), r.labXyz.data()), VQ_OK);
  EXPECT_EQ(vq_xyz_to_lab_batch(kD65, o, r.xyz.data(), kCount, r.labFromXyz.data()), VQ_OK);
  EXPECT_EQ(vq_difference_batch(&trials[0], trials.data(), kCount, VQ_DIFF_CIE2000, kD65, o,
                                nullptr, 0.0, r.fromSamples.data()),
            VQ_OK);
  EXPECT_EQ(vq_delta_e_batch(s, s, kCount, VQ_DIFF_CIE2000, kD65, o, nullptr, 0.0,
                             r.fromSpectra.data()),
            VQ_OK);
  EXPECT_EQ(ComputeXYZBatch(s, kCount, VQ_SPECTRUM_POINTS, kD65, o, &r.cppXyz[0].x, 3), 1);
  return r;
}

// The batch functions at 1, 2 and 8 threads give the same bits, missing inputs included.
TEST_F(ThreadPoolTest, BatchResultsAreBitIdenticalAtEveryThreadCount) {
  const std::vector<double> spectra = Spectra();
  std::vector<vq_sample> trials(kCount), fromSpectra(kCount);
  BatchResults single;
  std::size_t missing = 0;
  for (std::size_t n = 0; n < kCount; ++n) {
    const double* curve = &spectra[n * VQ_SPECTRUM_POINTS];
    ASSERT_EQ(vq_compute_xyz(curve, kD65, VQ_OBSERVER_10, &single.xyz[n]), VQ_OK);
    vq_xyz_to_lab(kD65, VQ_OBSERVER_10, &single.xyz[n], &single.lab[n]);
    vq_sample_from_spectrum(curve, VQ_DIFF_CIE2000, kD65, VQ_OBSERVER_10, nullptr, &trials[n]);
    fromSpectra[n] = trials[n];
    if (n % 89 == 7) trials[n].coords.a = VQ_MISSING;
  }
  for (std::size_t n = 0; n < kCount; ++n) {
    vq_color_difference(&trials[0], &trials[n], VQ_DIFF_CIE2000, kD65, VQ_OBSERVER_10, nullptr,
                        0.0, &single.fromSamples[n]);
    vq_color_difference(&fromSpectra[0], &fromSpectra[n], VQ_DIFF_CIE2000, kD65, VQ_OBSERVER_10,
                        nullptr, 0.0, &single.fromSpectra[n]);
    missing += vq_is_missing(single.fromSamples[n].slot[6]) + vq_is_missing(single.lab[n].l);
  }
  EXPECT_GT(missing, 100u);  // both kinds of missing input are in the data
  // XYZ equals the single calls bit for bit at every thread count; the vector kernels' other
  // results (which agree with the single calls to a few ulp, see the kernels' own tests) equal
  // the one-thread batch bit for bit.
  SetBatchThreads(1);
  const BatchResults one = RunBatches(spectra, trials);
  for (const int threads : {1, 2, 8}) {
    SetBatchThreads(threads);
    const BatchResults r = RunBatches(spectra, trials);
    for (const auto* xyz : {&r.xyz, &r.labXyz, &r.cppXyz}) {
      EXPECT_EQ(FirstDifference(*xyz, single.xyz), -1) << threads;
    }
    EXPECT_EQ(FirstDifference(r.lab, one.lab), -1) << threads;
    EXPECT_EQ(FirstDifference(r.labFromXyz, one.lab), -1) << threads;
    EXPECT_EQ(FirstDifference(r.fromSamples, one.fromSamples), -1) << threads;
    EXPECT_EQ(FirstDifference(r.fromSpectra, one.fromSpectra), -1) << threads;
  }
  for (std::size_t n = 0; n < kCount; ++n) {
    const double h = single.lab[n].h;
    EXPECT_NEAR(one.lab[n].h, h, std::max(test::kNearZero, test::kBatchRelative * h)) << n;
  }
}

// Four host threads run large batches at once, sharing the pool, while a fifth changes the
// thread count under them.
TEST_F(ThreadPoolTest, ConcurrentBatchesFromSeveralHostThreads) {
  const std::vector<double> spectra = Spectra();
  SetBatchThreads(1);
  std::vector<vq_coords5> expected(kCount);
  vq_lab_batch(spectra.data(), kCount, kD65, VQ_OBSERVER_10, expected.data(), nullptr);
  SetBatchThreads(4);
  std::atomic<int> mismatches{0};
  std::atomic<bool> stop{false};
  std::vector<std::thread> hosts;
  for (int h = 0; h < 4; ++h) {
    hosts.emplace_back([&] {
      std::vector<vq_coords5> lab(kCount);
      for (int round = 0; round < 10; ++round) {
        vq_lab_batch(spectra.data(), kCount, kD65, VQ_OBSERVER_10, lab.data(), nullptr);
        if (FirstDifference(lab, expected) != -1) ++mismatches;
      }
    });
  }
  std::thread tuner([&] {
    for (int t = 0; !stop; t = (t + 1) % 9) SetBatchThreads(t);
  });
  for (std::thread& host : hosts) host.join();
  stop = true;
  tuner.join();
  EXPECT_EQ(mismatches, 0);
}

}  // namespace
}  // namespace velquor
