#include "velquor/indices/index_batch.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <tuple>
#include <vector>

#include "tests/levels_and_threads.h"
#include "tests/sanitizer.h"
#include "tests/tolerances.h"
#include "velquor/colorimetry/weight_table_cache.h"
#include "velquor/data/value_vectors.h"
#include "velquor/frame/batch_threads.h"
#include "velquor/frame/constants.h"
#include "velquor/frame/simd_dispatch.h"
#include "velquor/indices/index_formulas.h"
#include "velquor/indices/tristimulus_index_support.h"

namespace velquor {
namespace {

// Random triples in all (the strength batch tests take the rest of the ten million random
// inputs).
constexpr std::size_t kRandomSamples = test::Volume(8000000, 160000);

using Limits = std::numeric_limits<double>;
constexpr double kGanzWhiteness[] = {1.0, -1868.322, -3695.69, 1809.441};
constexpr double kGanzTint[] = {-1.5, 1.8, -0.2};
constexpr int kThreadCounts[] = {1, 2, 8};

// Triples on the branches of the per-sample functions: missing values (all three, some, the
// band's open edges, just inside), X + Y + Z exactly 0 and on both sides of the zero band
// (2.220446049250313e-16), Y = 0, signed zeros, infinities, NaN, negatives, huge values.
std::vector<double> ThresholdSamples(int illuminant, int observer) {
  std::vector<double> s = {
      kMissing, kMissing, kMissing,      kMissing, 50.0, 60.0,       40.0, kMissing, 60.0,
      40.0, 50.0, kMissing,              kMissingLow, 50.0, 60.0,    40.0, kMissingHigh, 60.0,
      1.0005e-05, 1.0005e-05, 1.0005e-05, 1.0, -1.0, 0.0,            1e-16, 1e-16, 0.0,
      1.2e-16, 1e-16, 0.0,               2.220446049250313e-16, 0.0, 0.0,
      2.3e-16, 0.0, 0.0,                 -2.3e-16, 0.0, 0.0,         0.0, 0.0, 0.0,
      -0.0, -0.0, -0.0,                  30.0, 0.0, 20.0,            30.0, -0.0, 20.0,
      Limits::infinity(), 50.0, 60.0,    40.0, -Limits::infinity(), 60.0,
      40.0, 50.0, Limits::quiet_NaN(),   -20.0, 35.0, -80.0,         1e300, 1e300, 1e300,
      Limits::denorm_min(), 1.0, 1.0,    95.0, 100.0, 108.0};
  const double* white = ComputedWhite(illuminant, observer);
  s.insert(s.end(), white, white + 3);  // the white itself: whiteness Y, tint 0, Rz 100
  return s;
}

// `count` random triples, mostly paper-like whites and colours, one in 64 replaced by a
// threshold triple so that branch lanes land in every vector position.
std::vector<double> RandomSamples(std::mt19937_64& random, std::size_t count,
                                  const std::vector<double>& thresholds) {
  std::uniform_real_distribution<double> value(-5.0, 130.0);
  std::uniform_int_distribution<std::size_t> pick(0, thresholds.size() / 3 - 1);
  std::vector<double> s(3 * count);
  for (std::size_t n = 0; n < count; ++n) {
    if (random() % 64 == 0) {
      const std::size_t t = pick(random);
      for (int c = 0; c < 3; ++c) s[3 * n + c] = thresholds[3 * t + c];
    } else {
      for (int c = 0; c < 3; ++c) s[3 * n + c] = value(random);
    }
  }
  return s;
}

const double* CoefficientsFor(std::uint32_t identifier) {
  return identifier == 63 ? kGanzWhiteness : identifier == 64 ? kGanzTint : nullptr;
}

double PerSample(const IndexFormula& formula, int illuminant, int observer, const double* xyz) {
  CValueVector3 sample;
  for (int c = 0; c < 3; ++c) sample[c] = xyz[c];
  return formula.plain != nullptr
             ? formula.plain(illuminant, observer, sample)
             : formula.calibrated(illuminant, observer, sample,
                                  CoefficientsFor(formula.identifier));
}

// Runs the batch over `samples` (laid out with `stride`) and compares every result with the
// per-sample function; stops at the first disagreement.
void ExpectBatchAgrees(std::uint32_t identifier, int illuminant, int observer,
                       const std::vector<double>& samples, std::size_t stride = 3) {
  const IndexFormula* formula = FindIndexFormula(identifier);
  ASSERT_NE(formula, nullptr);
  const std::size_t count = samples.size() / 3;
  std::vector<double> laid(count * stride, -777.0);
  for (std::size_t n = 0; n < count; ++n) {
    for (int c = 0; c < 3; ++c) laid[n * stride + c] = samples[3 * n + c];
  }
  std::vector<double> out(count + 1, -777.0);
  ASSERT_TRUE(ComputeIndexBatch(identifier, illuminant, observer, laid.data(), stride,
                                CoefficientsFor(identifier), out.data(), count));
  ASSERT_EQ(out[count], -777.0) << "wrote past the last sample";
  for (std::size_t n = 0; n < count; ++n) {
    const double want = PerSample(*formula, illuminant, observer, &samples[3 * n]);
    const double got = out[n];
    if (std::isnan(want) && std::isnan(got)) continue;
    if (want == got) continue;
    const double tolerance =
        std::max(test::kNearZero, test::kBatchRelative * std::fabs(want));
    ASSERT_NEAR(got, want, tolerance)
        << "identifier " << identifier << ", pair " << illuminant << "/" << observer
        << ", sample " << n << " (" << samples[3 * n] << ", " << samples[3 * n + 1] << ", "
        << samples[3 * n + 2] << "): error " << (got - want) / tolerance << " x tolerance";
  }
}

// Every SIMD level the machine has, at 1, 2 and 8 threads.
class IndexBatch : public test::LevelsAndThreadsTest {};

// Every identifier, every illuminant with both observers and the observer code 2 (which the
// Ganz/Griesser pair refuses and the others take as 10 degree), on the threshold triples and a
// few hundred random ones, with an output stride that is not 3 on every other pair.
TEST_P(IndexBatch, AgreesWithPerSampleFunctionsOnEveryPairAndBranch) {
  std::mt19937_64 random(20261125);
  for (int illuminant = 0; illuminant <= 16; ++illuminant) {
    for (int observer : {0, 1, 2}) {
      if (observer == 2 && illuminant != 2) continue;
      int usable = illuminant;
      EnsureWeightTable(usable, observer);
      const std::vector<double> thresholds = ThresholdSamples(illuminant, observer);
      std::vector<double> samples = RandomSamples(random, 200, thresholds);
      samples.insert(samples.end(), thresholds.begin(), thresholds.end());
      for (const std::uint32_t identifier : IndexFormulaIdentifiers()) {
        ExpectBatchAgrees(identifier, illuminant, observer, samples, 3 + (illuminant % 2) * 2);
        if (HasFatalFailure()) return;
      }
    }
  }
}

// The random budget in batches large enough to be split over the threads, each level and
// thread count taking a rotating share of the identifiers, each under a pair it is defined for.
TEST_P(IndexBatch, AgreesOnLargeRandomBatches) {
  const auto identifiers = IndexFormulaIdentifiers();
  const std::size_t instances =
      static_cast<std::size_t>(SimdLevelCount()) * std::size(kThreadCounts);
  const std::size_t perInstance = kRandomSamples / instances;
  constexpr std::size_t kIdentifiersPerInstance = 4;
  const std::size_t instance =
      static_cast<std::size_t>(std::get<0>(GetParam())) * std::size(kThreadCounts) +
      static_cast<std::size_t>(std::get<1>(GetParam()) == 1 ? 0
                               : std::get<1>(GetParam()) == 2 ? 1
                                                              : 2);
  std::mt19937_64 random(instance);
  for (std::size_t k = 0; k < kIdentifiersPerInstance; ++k) {
    const std::uint32_t identifier =
        identifiers[(instance * kIdentifiersPerInstance + k) % identifiers.size()];
    // D65/10 degree serves most; the C / 2 degree formulas need their pair.
    const bool c2 = identifier == 54 || identifier == 58 || identifier == 59 ||
                    identifier == 60 || identifier == 65;
    const int illuminant = c2 ? 1 : 2;
    const int observer = c2 ? 0 : 1;
    const bool perSample = identifier == 18 || identifier == 19 || identifier == 23 ||
                           identifier == 24;  // the slow per-sample functions take a tenth
    const std::size_t count = perInstance / kIdentifiersPerInstance / (perSample ? 10 : 1);
    ExpectBatchAgrees(identifier, illuminant, observer,
                      RandomSamples(random, count, ThresholdSamples(illuminant, observer)));
    if (HasFatalFailure()) return;
  }
}

INSTANTIATE_TEST_SUITE_P(LevelsAndThreads, IndexBatch, test::LevelsAndThreads(),
                         test::LevelsAndThreadsName);

// What the batch refuses, leaving the output as it was; an empty batch is accepted.
TEST(IndexBatchArguments, RefusesUnknownIdentifiersShortStridesAndNullPointers) {
  const double xyz[3] = {80.0, 85.0, 90.0};
  double out = -777.0;
  EXPECT_FALSE(ComputeIndexBatch(11, 2, 1, xyz, 3, nullptr, &out, 1));    // A04: two samples
  EXPECT_FALSE(ComputeIndexBatch(1003, 2, 1, xyz, 3, nullptr, &out, 1));  // a difference id
  EXPECT_FALSE(ComputeIndexBatch(57, 2, 1, xyz, 2, nullptr, &out, 1));
  EXPECT_FALSE(ComputeIndexBatch(57, 2, 1, nullptr, 3, nullptr, &out, 1));
  EXPECT_FALSE(ComputeIndexBatch(57, 2, 1, xyz, 3, nullptr, nullptr, 1));
  EXPECT_EQ(out, -777.0);
  EXPECT_TRUE(ComputeIndexBatch(57, 2, 1, nullptr, 3, nullptr, nullptr, 0));
  // Ganz/Griesser without coefficients gives the missing value, as the per-sample function.
  EXPECT_TRUE(ComputeIndexBatch(63, 2, 1, xyz, 3, nullptr, &out, 1));
  EXPECT_EQ(out, kMissing);
}

}  // namespace
}  // namespace velquor
