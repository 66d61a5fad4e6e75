#include "velquor/difference/difference_kernel.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <tuple>
#include <vector>

#include "tests/levels_and_threads.h"
#include "tests/sanitizer.h"
#include "tests/tolerances.h"
#include "velquor/difference/color_difference.h"
#include "velquor/frame/batch_threads.h"
#include "velquor/frame/constants.h"
#include "velquor/frame/numeric.h"
#include "velquor/frame/options.h"
#include "velquor/frame/simd_dispatch.h"
#include "velquor/velquor_c.h"

namespace velquor {
namespace {

constexpr std::size_t kRandomPairsInTotal = test::Volume(10'000'000, 100'000);

constexpr std::size_t kSample = kBatchSampleDoubles;
constexpr std::size_t kSlots = kBatchDifferenceDoubles;
constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

// Every code the dispatcher knows; the vector ones and the per-pair loop alike. Weights and
// parameter are not the defaults, so a lost weight shows; null weights and parameter 0 stand
// for 1, 1, 1 and 1.
constexpr int kSystems[] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 100};
constexpr double kWeights[3] = {2.0, 1.0, 1.5};
constexpr double kParameter = 0.8;

// X, Y, Z, L, a, b, C, h with C and h (degrees, [0, 360)) computed from a and b, or as given.
void Put(std::vector<double>& v, double l, double a, double b, double c = kNaN, double h = kNaN) {
  if (std::isnan(c)) c = std::hypot(a, b);
  if (std::isnan(h)) h = std::fmod(std::atan2(b, a) * kRadToDeg + 360.0, 360.0);
  v.insert(v.end(), {30.0, 32.0, 35.0, l, a, b, c, h});
}

// Samples on the thresholds: hue exactly 0, 360 and the CMC and DIN 6175-2 breaks, CMC's L = 16,
// DIN's C = 10 and 18, neutral and near-neutral samples, axis points with signed zeros, pairs
// a half turn apart and with hue sums of 360 (the CIEDE2000 branches), differences past the
// +-999.99 limit, non-finite coordinates, and missing XYZ (one element only is not missing).
std::vector<double> ThresholdSamples() {
  std::vector<double> v;
  for (double h : {0.0, 360.0, 164.0, 345.0, 163.99999999, 345.00000001, 27.0, 26.999999})
    Put(v, 50.0, 20.0, -5.0, 15.0, h);
  for (double l : {16.0, 15.9999999999, 0.0}) Put(v, l, 3.0, 4.0);
  for (double c : {10.0, 9.9999999, 18.0, 17.9999999}) Put(v, 60.0, c, 0.0, c, 30.0);
  for (double a : {0.0, -0.0, 1e-17, 1e-10, -7.0, 7.0}) {
    Put(v, 40.0, a, 0.0);
    Put(v, 40.0, a, -0.0);
    Put(v, 40.0, 0.0, a);
  }
  for (double deg : {0.0, 17.0, 90.0, 135.0, 200.0, 300.0}) {  // opposite hues: span 180
    const double r = deg * kDegToRad;
    Put(v, 55.0, 30.0 * std::cos(r), 30.0 * std::sin(r));
    Put(v, 45.0, -12.0 * std::cos(r), -12.0 * std::sin(r));
  }
  Put(v, 50.0, 10.0, 0.0);  // (50, 10, 0) against (50, 0, 10): the worked Delta E*ab example
  Put(v, 50.0, 0.0, 10.0);
  Put(v, 2000.0, 900.0, -900.0);
  Put(v, -900.0, 1.0, 1.0);
  Put(v, kNaN, 1.0, 2.0, 2.0, 60.0);
  Put(v, 50.0, kInf, 2.0, kInf, 0.0);
  Put(v, 50.0, 5.0, 5.0);
  std::fill(v.end() - kSample, v.end() - kSample + 3, kMissing);  // missing sample
  Put(v, 50.0, 5.0, 5.0);
  v[v.size() - kSample] = kMissing;  // X alone missing: not a missing sample
  return v;
}

// Realistic samples: half standards with trials near them (QC pairs), half independent.
std::vector<double> RandomSamples(std::size_t count, std::uint64_t seed) {
  std::mt19937_64 random(seed);
  std::uniform_real_distribution<double> l(0.0, 100.0), ab(-110.0, 110.0);
  std::normal_distribution<double> near(0.0, 1.5);
  std::vector<double> v;
  v.reserve(count * kSample);
  for (std::size_t n = 0; n < count; n += 2) {
    const double a = ab(random), b = ab(random), lightness = l(random);
    Put(v, lightness, a, b);
    if (n % 1000 == 998) std::fill(v.end() - kSample, v.end() - kSample + 3, kMissing);
    if (n % 4 == 0)
      Put(v, lightness + near(random), a + near(random), b + near(random));
    else
      Put(v, l(random), ab(random), ab(random));
  }
  v.resize(count * kSample);
  return v;
}

// The C interface's vq_sample is this layout, so its pointers go straight to the batch.
CColorSample ToSample(const double* s) {
  CColorSample sample;
  std::copy(s, s + 3, sample.xyz.GetData());
  std::copy(s + 3, s + kSample, sample.coordinates.GetData());
  return sample;
}

// Batch (standard stride 0 or 8) against ComputeColorDifference pair by pair. The systems
// built from +, -, x, / and square roots must give the same bits; CMC and CIEDE2000 (vector
// cos, sin, exp, atan2) agree to kBatchRelative. Missing results must be exact.
void ExpectAgreement(int system, const std::vector<double>& standards, std::size_t standardStride,
                     const std::vector<double>& trials, const double* weights = kWeights,
                     double parameter = kParameter) {
  const std::size_t count = trials.size() / kSample;
  const DifferenceSystemChoice choice{system, 2, 1, weights, parameter};
  std::vector<double> got(count * kSlots, 0.0);
  ComputeDifferencesParallel(standards.data(), standardStride, trials.data(), kSample, count, choice,
                             got.data(), kSlots);
  const bool exact = system != kDiffCmc && system != kDiffCie2000;
  CColorVector7 want;
  for (std::size_t n = 0; n < count; ++n) {
    std::fill(want.GetData(), want.GetData() + kSlots, 0.0);
    ComputeColorDifference(ToSample(&standards[n * standardStride]), ToSample(&trials[n * kSample]),
                           system, 2, 1, weights, want, parameter);
    for (std::size_t k = 0; k < kSlots; ++k) {
      const double g = got[n * kSlots + k], w = want[k];
      const bool agree = exact || IsMissing(w)
                             ? std::bit_cast<std::uint64_t>(g) == std::bit_cast<std::uint64_t>(w)
                             : std::abs(g - w) <= std::max(test::kBatchRelative * std::abs(w),
                                                           test::kNearZero);
      ASSERT_TRUE(agree) << "system " << system << ", pair " << n << ", slot " << k + 1
                         << ": batch " << g << ", scalar " << w << ", difference " << g - w;
    }
  }
}

// Every SIMD level the machine has, at 1, 2 and 8 batch threads.
class DifferenceKernel : public test::LevelsAndThreadsTest {
 protected:
  void TearDown() override {
    LevelsAndThreadsTest::TearDown();
    SetHueInDegrees(1);
  }
  static std::size_t Instances() { return static_cast<std::size_t>(SimdLevelCount()) * 3; }
};

TEST_P(DifferenceKernel, AgreesWithTheScalarDispatcherOnThresholdSamples) {
  // Every threshold sample against every other, pair by pair and one standard at a time, so
  // that each odd sample meets each lane position; hue once in radians too (CMC converts it),
  // then with the default weights and parameter.
  const std::vector<double> pool = ThresholdSamples();
  const std::size_t size = pool.size() / kSample;
  std::vector<double> standards, trials;
  for (std::size_t i = 0; i < size; ++i) {
    standards.insert(standards.end(), pool.begin(), pool.end());
    for (std::size_t j = 0; j < size; ++j)
      trials.insert(trials.end(), pool.begin() + i * kSample, pool.begin() + (i + 1) * kSample);
  }
  for (int hueInDegrees : {1, 0}) {
    SetHueInDegrees(hueInDegrees);
    const double* weights = hueInDegrees != 0 ? kWeights : nullptr;
    const double parameter = hueInDegrees != 0 ? kParameter : 0.0;
    for (int system : kSystems) {
      ExpectAgreement(system, standards, kSample, trials, weights, parameter);
      for (std::size_t i = 0; i < size; i += 5) {
        ExpectAgreement(system, {pool.begin() + i * kSample, pool.end()}, 0, pool, weights,
                        parameter);
      }
    }
  }
}

TEST_P(DifferenceKernel, AgreesWithTheScalarDispatcherOnRandomSamples) {
  const int vectorSystems[] = {0, 1, 4, 11, 12};
  const std::size_t count = kRandomPairsInTotal / Instances() / std::size(vectorSystems) / 2;
  const auto seed = static_cast<std::uint64_t>(std::get<0>(GetParam()) * 10 + std::get<1>(GetParam()));
  const std::vector<double> standards = RandomSamples(count, seed);
  const std::vector<double> trials = RandomSamples(count, seed + 1000);
  for (int system : vectorSystems) {
    ExpectAgreement(system, standards, kSample, trials);
    ExpectAgreement(system, standards, 0, trials);
  }
}

INSTANTIATE_TEST_SUITE_P(LevelsAndThreads, DifferenceKernel, test::LevelsAndThreads(),
                         test::LevelsAndThreadsName);

// Strides wider than a sample and a result: the batch reads and writes only its own doubles.
// The chromaticity mode leaves slots 3-7 at 0 whatever the output held.
TEST(DifferenceKernelLayout, WritesOnlyItsSlotsAndZeroesUnusedChromaticitySlots) {
  constexpr std::size_t kStride = 11, kCount = 21;
  std::vector<double> trials(kCount * kStride, kNaN);
  const std::vector<double> pool = RandomSamples(kCount, 5);
  for (std::size_t n = 0; n < kCount; ++n)
    std::copy(&pool[n * kSample], &pool[(n + 1) * kSample], &trials[n * kStride]);
  for (int system : {kDiffCie2000, kDiffChromaticity}) {
    std::vector<double> out(kCount * kStride, 5000.0);
    ComputeDifferences(pool.data(), 0, trials.data(), kStride, kCount, {system, 2, 1, nullptr, 0.0},
                       out.data(), kStride);
    for (std::size_t n = 0; n < kCount; ++n) {
      for (std::size_t k = kSlots; k < kStride; ++k) ASSERT_EQ(out[n * kStride + k], 5000.0);
      if (system == kDiffChromaticity) {
        ASSERT_EQ(out[n * kStride + 2], 0.0);
      }
    }
  }
}

// The C interface's batches give, pair for pair, the bits of its one-pair call at the same
// level (whatever the pair's lane), and check their arguments.
TEST(DifferenceKernelCInterface, BatchesMatchTheOnePairCallAndCheckArguments) {
  constexpr std::size_t kCount = 29;
  const std::vector<double> pool = RandomSamples(2 * kCount, 11);
  std::vector<vq_sample> standards(kCount), trials(kCount);
  std::memcpy(standards.data(), pool.data(), sizeof(vq_sample) * kCount);
  std::memcpy(trials.data(), pool.data() + kCount * kSample, sizeof(vq_sample) * kCount);
  for (int system : {VQ_DIFF_CIE2000, VQ_DIFF_CMC, VQ_DIFF_FMC2}) {
    std::vector<vq_diff7> pairs(kCount), batch(kCount);
    ASSERT_EQ(vq_difference_pairs(standards.data(), trials.data(), kCount, system, 2, 1, kWeights,
                                  0.0, pairs.data()), VQ_OK);
    ASSERT_EQ(vq_difference_batch(standards.data(), trials.data(), kCount, system, 2, 1, kWeights,
                                  0.0, batch.data()), VQ_OK);
    for (std::size_t n = 0; n < kCount; ++n) {
      vq_diff7 one, first;
      vq_color_difference(&standards[n], &trials[n], system, 2, 1, kWeights, 0.0, &one);
      vq_color_difference(&standards[0], &trials[n], system, 2, 1, kWeights, 0.0, &first);
      ASSERT_EQ(std::memcmp(&one, &pairs[n], sizeof one), 0) << system << " pair " << n;
      ASSERT_EQ(std::memcmp(&first, &batch[n], sizeof one), 0) << system << " trial " << n;
    }
  }
  vq_diff7 out;
  EXPECT_EQ(vq_difference_pairs(nullptr, trials.data(), 1, 0, 2, 1, nullptr, 0.0, &out), VQ_ERR_NULL);
  EXPECT_EQ(vq_difference_pairs(standards.data(), trials.data(), 1, 0, 2, 1, nullptr, 0.0, nullptr),
            VQ_ERR_NULL);
  EXPECT_EQ(vq_difference_pairs(nullptr, nullptr, 0, 0, 2, 1, nullptr, 0.0, nullptr), VQ_OK);
  EXPECT_EQ(vq_difference_pairs(standards.data(), trials.data(), 1, 13, 2, 1, nullptr, 0.0, &out),
            VQ_ERR_RANGE);
}

}  // namespace
}  // namespace velquor
