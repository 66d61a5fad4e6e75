#include "velquor/colorimetry/xyz_kernel.h"
#include "velquor/frame/simd_dispatch.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <tuple>
#include <vector>

#include "tests/levels_and_threads.h"
#include "velquor/colorimetry/tristimulus.h"
#include "velquor/frame/batch_threads.h"
#include "velquor/frame/constants.h"

namespace velquor {
namespace {

using Limits = std::numeric_limits<double>;

// Values a lane could get wrong: signed zeros, subnormals, overflow to infinity (and
// inf - inf), negatives, and the edges of the missing band, which are ordinary numbers.
constexpr double kSpecial[] = {
    0.0, -0.0, 1e300, -1e300, Limits::max(), Limits::infinity(), -Limits::infinity(),
    Limits::denorm_min(), 2.2e-310, -3.5, kMissingLow, kMissingHigh, kMissing, 1.0005e-05};

// First points that make a curve missing, or only just not.
constexpr double kFirst[] = {kMissing, 1.0005e-05, kMissingLow, kMissingHigh, -kMissing};

constexpr std::size_t kPoolSize = 67;  // no vector width divides it

// kPoolSize curves: random reflectances in percent, one in three with special values at
// random points, one in five with a first point from kFirst, so that missing and odd curves
// fall in every lane position.
std::vector<double> MakePool() {
  std::mt19937_64 random(20261125);
  std::uniform_real_distribution<double> percent(-5.0, 120.0);
  std::uniform_int_distribution<std::size_t> pick(0, std::size(kSpecial) - 1);
  std::vector<double> pool(kPoolSize * 40);
  for (std::size_t n = 0; n < kPoolSize; ++n) {
    double* curve = &pool[n * 40];
    for (std::size_t i = 0; i < 40; ++i) curve[i] = percent(random);
    if (n % 3 == 1) {
      for (std::size_t i = 0; i < 40; i += 1 + n % 7) curve[i] = kSpecial[pick(random)];
    }
    if (n % 5 == 0) curve[0] = kFirst[(n / 5) % std::size(kFirst)];
  }
  return pool;
}

struct Layout {
  std::size_t count, spectrumStride, xyzStride;
};

constexpr Layout kLayouts[] = {{1, 40, 3},         {3, 40, 3},        {5, 41, 3},  {7, 40, 5},
                               {8, 40, 3},         {9, 47, 4},        {13, 64, 3}, {16, 80, 6},
                               {kPoolSize, 40, 3}, {kPoolSize, 53, 7}};

constexpr double kUnread = Limits::quiet_NaN();  // padding between curves, never summed
constexpr double kUntouched = -777.0;            // output slots the batch must not write

// Runs ComputeXYZBatch at `level` over the first layout.count pool curves laid out with the
// layout's strides and checks every result bit for bit against ComputeXYZ on the same curve
// with the portable loop, and that no output slot outside X, Y, Z of a curve was written.
void ExpectBatchMatchesComputeXYZ(int level, const std::vector<double>& pool, const Layout& layout,
                                  int illuminant, int observer) {
  const auto [count, spectrumStride, xyzStride] = layout;
  SetSimdLevelForTesting(0);
  std::vector<CValueVector3> expected(count);
  for (std::size_t n = 0; n < count; ++n) {
    CKSData curve;
    for (std::size_t i = 0; i < 40; ++i) curve[i] = pool[n * 40 + i];
    ComputeXYZ(curve, illuminant, observer, expected[n]);
  }
  SetSimdLevelForTesting(level);
  std::vector<double> spectra(count * spectrumStride, kUnread);
  for (std::size_t n = 0; n < count; ++n) {
    for (std::size_t i = 0; i < 40; ++i) spectra[n * spectrumStride + i] = pool[n * 40 + i];
  }
  std::vector<double> xyz(count * xyzStride + 8, kUntouched);
  ASSERT_EQ(ComputeXYZBatch(spectra.data(), count, spectrumStride, illuminant, observer, xyz.data(),
                            xyzStride),
            1);
  for (std::size_t n = 0; n < count; ++n) {
    for (std::size_t c = 0; c < xyzStride; ++c) {
      const double got = xyz[n * xyzStride + c];
      const double want = c < 3 ? expected[n][c] : kUntouched;
      ASSERT_EQ(std::bit_cast<std::uint64_t>(got), std::bit_cast<std::uint64_t>(want))
          << "curve " << n << " slot " << c << ": got " << got << ", ComputeXYZ " << want;
    }
  }
  for (std::size_t k = count * xyzStride; k < xyz.size(); ++k) ASSERT_EQ(xyz[k], kUntouched);
}

// Each level the machine offers (level 0, the portable loop, everywhere) in turn, over every
// illuminant/observer pair; the pairs take the layouts in turn, each layout meeting 3 or 4.
class XYZKernelLevel : public ::testing::TestWithParam<int> {
  void TearDown() override { SetSimdLevelForTesting(-1); }
};

TEST_P(XYZKernelLevel, BatchIsBitIdenticalToComputeXYZ) {
  const std::vector<double> pool = MakePool();
  std::size_t k = 0;
  for (int illuminant = 0; illuminant <= 16; ++illuminant) {
    for (int observer = 0; observer <= 1; ++observer) {
      const Layout& layout = kLayouts[k++ % std::size(kLayouts)];
      SCOPED_TRACE(testing::Message() << "illuminant " << illuminant << ", observer " << observer
                                      << ", count " << layout.count << ", strides "
                                      << layout.spectrumStride << "/" << layout.xyzStride);
      ExpectBatchMatchesComputeXYZ(GetParam(), pool, layout, illuminant, observer);
    }
  }
  EXPECT_STREQ(ActiveSimdLevelName(), SimdLevelName(GetParam()));
}

INSTANTIATE_TEST_SUITE_P(Levels, XYZKernelLevel, ::testing::Range(0, SimdLevelCount()),
                         [](const testing::TestParamInfo<int>& info) {
                           return std::string(SimdLevelName(info.param));
                         });

// A batch of several chunks at every level and at 1, 2 and 8 threads: ComputeXYZ's bits.
class XYZKernelThreads : public test::LevelsAndThreadsTest {};

TEST_P(XYZKernelThreads, LargeBatchIsBitIdenticalToComputeXYZ) {
  constexpr std::size_t kCurves = 10007;
  const std::vector<double> pool = MakePool();
  std::vector<double> spectra(kCurves * 40);
  for (std::size_t n = 0; n < kCurves; ++n) {
    for (std::size_t i = 0; i < 40; ++i) spectra[n * 40 + i] = pool[(n % kPoolSize) * 40 + i];
    spectra[n * 40 + n % 40] *= 1.0 + static_cast<double>(n) * 1e-6;  // every curve distinct
  }
  std::vector<double> xyz(kCurves * 3);
  ASSERT_EQ(ComputeXYZBatch(spectra.data(), kCurves, 40, 2, 1, xyz.data(), 3), 1);
  CKSData curve;
  CValueVector3 single;
  for (std::size_t n = 0; n < kCurves; ++n) {
    for (std::size_t i = 0; i < 40; ++i) curve[i] = spectra[n * 40 + i];
    ComputeXYZ(curve, 2, 1, single);
    for (std::size_t c = 0; c < 3; ++c) {
      ASSERT_EQ(std::bit_cast<std::uint64_t>(xyz[n * 3 + c]),
                std::bit_cast<std::uint64_t>(single[c]))
          << "curve " << n;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(LevelsAndThreads, XYZKernelThreads, test::LevelsAndThreads(),
                         test::LevelsAndThreadsName);

// Out-of-range levels are ignored, and -1 returns to the best level, which is the last one.
TEST(SetSimdLevelForTesting, IgnoresUnknownLevelsAndMinusOneRestoresTheBest) {
  const int best = SimdLevelCount() - 1;
  SetSimdLevelForTesting(0);
  SetSimdLevelForTesting(SimdLevelCount());
  SetSimdLevelForTesting(-2);
  EXPECT_STREQ(ActiveSimdLevelName(), "portable");
  SetSimdLevelForTesting(-1);
  EXPECT_STREQ(ActiveSimdLevelName(), SimdLevelName(best));
  EXPECT_STREQ(SimdLevelName(best + 1), "");
}

}  // namespace
}  // namespace velquor
