#include "velquor/colorimetry/coordinate_batch.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <tuple>
#include <vector>

#include "tests/sanitizer.h"
#include "tests/tolerances.h"
#include "velquor/colorimetry/chromaticity.h"
#include "velquor/colorimetry/constants.h"
#include "velquor/colorimetry/din99.h"
#include "velquor/colorimetry/hunter_lab.h"
#include "velquor/colorimetry/lab.h"
#include "velquor/colorimetry/luv.h"
#include "velquor/frame/batch_threads.h"
#include "velquor/frame/constants.h"
#include "velquor/frame/numeric.h"
#include "velquor/frame/options.h"
#include "velquor/frame/simd_dispatch.h"

namespace velquor {
namespace {

using Limits = std::numeric_limits<double>;
using Batch = std::size_t (*)(const double*, const double*, std::size_t, double*, std::size_t,
                              std::size_t);
using Single = void (*)(const double*, const double*, double*);

struct Kind {
  const char* name;
  Batch batch;
  Single single;
  int exactSlots;  // leading slots that are the scalar function's bits
  bool usesWhite;
};
// DIN99 with weights 1.2, 0.9 behind the same signature (the "white" is unused).
std::size_t Din99Batch(const double*, const double* lab, std::size_t labStride, double* out,
                       std::size_t outStride, std::size_t count) {
  return LabToDin99Batch(lab, labStride, 1.2, 0.9, out, outStride, count);
}
void Din99Single(const double*, const double* lab, double* out) { LabToDIN99(lab, 1.2, 0.9, out); }

const Kind kKinds[] = {{"Lab", XYZToLabBatch, XYZToLab, 4, true},
                       {"Luv", XYZToLuvBatch, XYZToLuv, 4, true},
                       {"DIN99", Din99Batch, Din99Single, 0, false}};

constexpr double kWhite[3] = {94.811, 100.0, 107.304};  // D65, 10 degrees

// Samples (XYZ, or L*, a*, b* for DIN99) on the branches the kernels must decide as the scalar
// code does: missing components, the 0.008856 breakpoint (reached exactly by X / Xn), neutrals
// (a = b = 0), b = 0 on either side of the hue origin, hues a hair below 360 degrees (wrapped
// to 0) and just beyond the wrap, a and b inside and just outside the zero band, black (no
// CIELUV chromaticity), DIN99's lightness limit L* = -1 / 0.0158, negatives, NaN, infinities.
std::vector<double> ThresholdSamples() {
  std::vector<double> xyz;
  auto add = [&](double x, double y, double z) { xyz.insert(xyz.end(), {x, y, z}); };
  for (int k = 0; k < 3; ++k) {
    double s[3] = {20.0, 30.0, 40.0};
    s[k] = kMissing;
    add(s[0], s[1], s[2]);
    s[k] = 1.0005e-05;  // inside the band as well
    add(s[0], s[1], s[2]);
  }
  const double breakpoint = kLabEpsilon * kWhite[0];
  for (double x : {std::nextafter(breakpoint, 0.0), breakpoint, std::nextafter(breakpoint, 1.0)})
    add(x, 30.0, 40.0);
  for (double t : {0.0, 0.005, 0.008856, 0.2, 0.5, 1.0, 1.7}) {
    add(t * kWhite[0], t * kWhite[1], t * kWhite[2]);               // neutral
    add(t * kWhite[0] * 1.2, t * kWhite[1], t * kWhite[2]);         // b = 0, a > 0
    add(t * kWhite[0] * 0.8, t * kWhite[1], t * kWhite[2]);         // b = 0, a < 0
    for (double e : {1e-16, 1e-15, 1e-9, 3e-7, 1e-6, 2e-6, 1e-4}) {
      add(t * kWhite[0] * 1.2, t * kWhite[1], t * kWhite[2] * (1 + e));  // hue just below 360
      add(t * kWhite[0] * (1 + e), t * kWhite[1], t * kWhite[2] * 1.3);  // a in the zero band
    }
  }
  for (double v : {-5.0, -63.29113924050633, -70.0, 0.0, Limits::quiet_NaN(), Limits::infinity(), -Limits::infinity(),
                   1e300, Limits::denorm_min()}) {
    add(v, 30.0, 40.0);
    add(20.0, v, 40.0);
    add(20.0, 30.0, v);
  }
  return xyz;
}

std::vector<double> RandomSamples(std::size_t count, unsigned seed) {
  std::mt19937_64 random(seed);
  std::uniform_real_distribution<double> value(-2.0, 130.0);
  std::vector<double> xyz(3 * count);
  for (double& v : xyz) v = value(random);
  return xyz;
}

bool Same(double a, double b) { return a == b || (std::isnan(a) && std::isnan(b)); }

// The batch's record against the scalar one: L, the two axes and the chroma bit for bit (the
// same IEEE operations), the hue within the vector atan2's few ulp. NaN matches NaN.
void ExpectAgreement(const Kind& kind, const double* batch, const double* single,
                     const double* xyz) {
  if (IsMissing(xyz[0]) || IsMissing(xyz[1]) || IsMissing(xyz[2])) {
    for (int k = 0; k < 5; ++k) ASSERT_EQ(batch[k], kMissing) << kind.name << " slot " << k;
  }
  for (int k = 0; k < 5; ++k) {
    if (Same(batch[k], single[k])) continue;
    const double tolerance =
        k < kind.exactSlots ? 0.0
              : std::max(test::kNearZero, test::kBatchRelative * std::abs(single[k]));
    ASSERT_LE(std::abs(batch[k] - single[k]), tolerance)
        << "slot " << k << " of XYZ " << xyz[0] << ", " << xyz[1] << ", " << xyz[2];
  }
}

// Converts `xyz` with records of 6 (the gap must stay untouched) and checks every record.
void CheckBatch(const Kind& kind, const std::vector<double>& xyz) {
  const std::size_t count = xyz.size() / 3;
  std::vector<double> out(6 * count, -9.0);
  ASSERT_EQ(kind.batch(kWhite, xyz.data(), 3, out.data(), 6, count), count);
  double single[5];
  for (std::size_t i = 0; i < count; ++i) {
    kind.single(kWhite, &xyz[3 * i], single);
    ExpectAgreement(kind, &out[6 * i], single, &xyz[3 * i]);
    ASSERT_EQ(out[6 * i + 5], -9.0);
  }
}

// Every SIMD level the machine has, at 1, 2 and 8 threads, in both hue units.
class CoordinateBatch : public testing::TestWithParam<std::tuple<int, int, int>> {
 protected:
  void SetUp() override {
    SetSimdLevelForTesting(std::get<0>(GetParam()));
    SetBatchThreads(std::get<1>(GetParam()));
    SetHueInDegrees(std::get<2>(GetParam()));
  }
  void TearDown() override {
    SetSimdLevelForTesting(-1);
    SetBatchThreads(0);
    SetHueInDegrees(1);
  }
};

TEST_P(CoordinateBatch, AgreesWithTheScalarConversionOnThresholdsAndRandomSamples) {
  std::vector<double> xyz = ThresholdSamples();
  const std::vector<double> random = RandomSamples(20011, 15);  // spans several chunks
  xyz.insert(xyz.end(), random.begin(), random.end());
  for (const Kind& kind : kKinds) {
    SCOPED_TRACE(kind.name);
    CheckBatch(kind, xyz);
  }
}

// In place, records of 5 over records of 5: each sample is read before it is written.
TEST_P(CoordinateBatch, ConvertsInPlace) {
  const std::vector<double> xyz = RandomSamples(9000, 16);
  for (const Kind& kind : kKinds) {
    std::vector<double> records(5 * 9000);
    for (std::size_t i = 0; i < 9000; ++i)
      for (int c = 0; c < 3; ++c) records[5 * i + c] = xyz[3 * i + c];
    ASSERT_EQ(kind.batch(kWhite, records.data(), 5, records.data(), 5, 9000), 9000u);
    double single[5];
    for (std::size_t i = 0; i < 9000; ++i) {
      kind.single(kWhite, &xyz[3 * i], single);
      ExpectAgreement(kind, &records[5 * i], single, &xyz[3 * i]);
    }
  }
}

std::vector<std::tuple<int, int, int>> Settings() {
  std::vector<std::tuple<int, int, int>> settings;
  for (int level = 0; level < SimdLevelCount(); ++level)
    for (int threads : {1, 2, 8}) settings.emplace_back(level, threads, 1);
  settings.emplace_back(SimdLevelCount() - 1, 2, 0);  // hues in radians
  return settings;
}

INSTANTIATE_TEST_SUITE_P(
    LevelsAndThreads, CoordinateBatch, testing::ValuesIn(Settings()), [](const auto& info) {
      return std::string(SimdLevelName(std::get<0>(info.param))) + "_" +
             std::to_string(std::get<1>(info.param)) + "threads" +
             (std::get<2>(info.param) != 0 ? "" : "_radians");
    });

// Ten million random samples at the default level and threads (fewer under sanitizers).
TEST(CoordinateBatchVolume, TenMillionRandomSamplesAgree) {
  constexpr std::size_t kBlocks = test::Volume(10, 1);
  for (std::size_t block = 0; block < kBlocks; ++block) {
    const std::vector<double> xyz = RandomSamples(500000, 100 + static_cast<unsigned>(block));
    for (const Kind& kind : kKinds) CheckBatch(kind, xyz);
  }
}

TEST(CoordinateBatchArguments, BadStridesAndPointersConvertNothing) {
  std::vector<double> xyz = RandomSamples(10, 17), out(50, -9.0);
  for (const Kind& kind : kKinds) {
    EXPECT_EQ(kind.batch(kWhite, xyz.data(), 2, out.data(), 5, 10), 0u);
    EXPECT_EQ(kind.batch(kWhite, xyz.data(), 3, out.data(), 4, 10), 0u);
    EXPECT_EQ(kind.batch(nullptr, xyz.data(), 3, out.data(), 5, 10), kind.usesWhite ? 0u : 10u);
    std::fill(out.begin(), out.end(), -9.0);
    EXPECT_EQ(kind.batch(kWhite, xyz.data(), 3, nullptr, 5, 10), 0u);
    EXPECT_EQ(kind.batch(kWhite, nullptr, 3, nullptr, 5, 0), 0u);
    for (double v : out) EXPECT_EQ(v, -9.0);
  }
  // A missing white point gives missing records.
  const double missingWhite[3] = {kMissing, 100.0, 100.0};
  ASSERT_EQ(XYZToLabBatch(missingWhite, xyz.data(), 3, out.data(), 5, 10), 10u);
  for (double v : out) EXPECT_EQ(v, kMissing);
}

// Hunter Lab (classic for C/2, white point form for D65/10) and chromaticity run the scalar
// functions on all cores: their bits, missing samples included.
TEST(CoordinateBatchScalarKinds, HunterLabAndChromaticityAreTheScalarFunctions) {
  std::vector<double> xyz = RandomSamples(5000, 18);
  xyz[3] = xyz[4] = xyz[5] = kMissing;  // sample 1
  const std::size_t count = xyz.size() / 3;
  std::vector<double> hunter(3 * count), xy(2 * count);
  SetBatchThreads(2);
  CValueVector3 sample, single;
  for (const auto& [illuminant, observer] : {std::pair{1, 0}, {2, 1}}) {
    ASSERT_EQ(XYZToHunterLabBatch(illuminant, observer, xyz.data(), 3, hunter.data(), 3, count),
              count);
    for (std::size_t i = 0; i < count; ++i) {
      for (int c = 0; c < 3; ++c) sample[c] = xyz[3 * i + c];
      XYZToHunterLab(illuminant, observer, sample, single);
      for (int c = 0; c < 3; ++c) ASSERT_TRUE(Same(hunter[3 * i + c], single[c])) << i;
    }
  }
  ASSERT_EQ(XYZToChromaticityBatch(xyz.data(), 3, xy.data(), 2, count), count);
  for (std::size_t i = 0; i < count; ++i) {
    for (int c = 0; c < 3; ++c) sample[c] = xyz[3 * i + c];
    double x, y;
    XYZToChromaticity(sample, x, y);
    ASSERT_TRUE(Same(xy[2 * i], x) && Same(xy[2 * i + 1], y)) << i;
  }
  EXPECT_EQ(xy[2], kMissing);
  EXPECT_EQ(XYZToHunterLabBatch(2, 1, xyz.data(), 2, hunter.data(), 3, count), 0u);
  EXPECT_EQ(XYZToHunterLabBatch(2, 1, xyz.data(), 3, hunter.data(), 2, count), 0u);
  EXPECT_EQ(XYZToHunterLabBatch(2, 1, nullptr, 3, hunter.data(), 3, count), 0u);
  EXPECT_EQ(XYZToHunterLabBatch(2, 1, xyz.data(), 3, nullptr, 3, count), 0u);
  EXPECT_EQ(XYZToChromaticityBatch(xyz.data(), 3, xy.data(), 1, count), 0u);
  EXPECT_EQ(XYZToChromaticityBatch(xyz.data(), 2, xy.data(), 2, count), 0u);
  EXPECT_EQ(XYZToChromaticityBatch(nullptr, 3, xy.data(), 2, count), 0u);
  EXPECT_EQ(XYZToChromaticityBatch(xyz.data(), 3, nullptr, 2, count), 0u);
  SetBatchThreads(0);
}

}  // namespace
}  // namespace velquor
