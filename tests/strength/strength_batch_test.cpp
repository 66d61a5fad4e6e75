#include "velquor/strength/strength_batch.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <string>
#include <tuple>
#include <vector>

#include "tests/levels_and_threads.h"
#include "tests/sanitizer.h"
#include "tests/tolerances.h"
#include "velquor/colorimetry/tristimulus.h"
#include "velquor/frame/batch_threads.h"
#include "velquor/frame/constants.h"
#include "velquor/frame/simd_dispatch.h"
#include "velquor/strength/strength.h"
#include "velquor/velquor_c.h"

namespace velquor {
namespace {

// Random batch spectra in all (the index tests take the rest of the ten million random inputs).
constexpr std::size_t kRandomBatches = test::Volume(2000000, 40000);

constexpr int kThreadCounts[] = {1, 2, 8};
constexpr std::size_t kPoints = CKSData::kLength;
using Curve = std::vector<double>;

Curve Flat(double r) { return Curve(kPoints, r); }

// Smooth random reflectance (percent) like measured paints.
Curve RandomCurve(std::mt19937_64& random) {
  std::uniform_real_distribution<double> level(0.5, 98.0);
  std::uniform_real_distribution<double> tilt(-2.0, 2.0);
  const double base = level(random), slope = tilt(random);
  Curve c(kPoints);
  for (std::size_t i = 0; i < kPoints; ++i) {
    c[i] = std::fabs(base + slope * (static_cast<double>(i) - 20.0));
  }
  return c;
}

// Standards on the branches: an ordinary curve; one with two equal minima in 420-680 nm (the
// shorter wavelength wins); one with missing points (they count as black); a white with zero
// K/S (the 1e-7 floor of the divisor); a black below 0.01 % (K/S 9999, density 4.3); one above
// 100 % (density 0); one with a missing first point (no tristimulus values).
std::vector<Curve> Standards() {
  std::mt19937_64 random(7);
  Curve ordinary = RandomCurve(random);
  Curve ties = Flat(60.0);
  ties[10] = ties[25] = 20.0;
  Curve holes = RandomCurve(random);
  holes[8] = holes[20] = kMissing;
  Curve firstMissing = RandomCurve(random);
  firstMissing[0] = kMissing;
  return {ordinary, ties, holes, Flat(100.0), Flat(0.005), Flat(104.0), firstMissing};
}

// Batches on the branches for `standard`: itself (exactly 100), far darker and far lighter
// versions of it (past the 999.99 cap and the 0.01 floor for most standards), zero K/S, reflectance at 0.01 % and just below, above
// 100 %, negative, missing points and a missing first point.
std::vector<Curve> ThresholdBatches(const Curve& standard) {
  std::vector<Curve> b = {standard, Flat(100.0), Flat(0.01), Flat(0.0099999), Flat(130.0),
                          Flat(-3.0), Flat(kMissing), Flat(50.0)};
  Curve strong = standard, weak = standard, holes = standard, first = standard;
  for (double& r : strong) r = r * 0.02;
  for (double& r : weak) r = 100.0 - (100.0 - r) * 0.05;
  holes[14] = kMissing;
  first[0] = kMissing;
  b.insert(b.end(), {strong, weak, holes, first});
  return b;
}

struct Setting {
  int saundersonOn;
  double k1, k2;
};
// Off; a paint surface; two settings that drive the Saunderson divisor to its 1e-5 floor, the
// second (k2 = 1) so far that a missing point, kept as 1e-05 %, differs from a corrected one.
constexpr Setting kSettings[] = {{0, 0.04, 0.6}, {1, 0.04, 0.6}, {1, 0.9, 0.2}, {1, 0.0, 1.0}};
// 500 nm (index 14), 365 nm (index 0, outside 420-680 nm but on the curve), 300 and 800 nm
// (off the curve: missing).
constexpr int kUserWavelengths[] = {500, 365, 300, 800};

double Agreement(double want) {
  return std::max(test::kNearZero, test::kBatchRelative * std::fabs(want));
}

// Runs StrengthBatch over `batches` (with their colours given, or integrated by the batch when
// `giveColours` is false) and compares every result and the wavelength with CalcStrength.
void ExpectBatchAgrees(const CStrengthSettings& settings, const Curve& standard,
                       const std::vector<Curve>& batches, bool useAbsorbance, bool giveColours,
                       int illuminant = 2, int observer = 1) {
  CKSData standardCurve;
  std::copy(standard.begin(), standard.end(), standardCurve.GetData());
  CValueVector3 standardColour;
  ComputeXYZ(standardCurve, illuminant, observer, standardColour);
  const std::size_t count = batches.size();
  std::vector<double> spectra;
  std::vector<double> colours;
  std::vector<double> want(count);
  int wantWavelength = 17;
  for (std::size_t n = 0; n < count; ++n) {
    CKSData curve;
    std::copy(batches[n].begin(), batches[n].end(), curve.GetData());
    CValueVector3 colour;
    ComputeXYZ(curve, illuminant, observer, colour);
    spectra.insert(spectra.end(), batches[n].begin(), batches[n].end());
    colours.insert(colours.end(), colour.GetData(), colour.GetData() + 3);
    wantWavelength = 17;
    want[n] = CalcStrength(settings, standardCurve, curve, standardColour, colour, illuminant,
                           observer, useAbsorbance, wantWavelength);
  }
  std::vector<double> out(count + 1, -777.0);
  int wavelength = 17;
  ASSERT_TRUE(StrengthBatch(settings, standardCurve, standardColour, spectra.data(), kPoints,
                            giveColours ? colours.data() : nullptr, 3, count, illuminant,
                            observer, useAbsorbance, out.data(), wavelength));
  ASSERT_EQ(out[count], -777.0) << "wrote past the last batch";
  ASSERT_EQ(wavelength, wantWavelength);
  for (std::size_t n = 0; n < count; ++n) {
    if (out[n] == want[n] || (std::isnan(out[n]) && std::isnan(want[n]))) continue;
    ASSERT_NEAR(out[n], want[n], Agreement(want[n]))
        << "method " << settings.method << ", batch " << n << ", absorbance " << useAbsorbance
        << ", Saunderson " << settings.saundersonOn << " (" << settings.k1 << ", "
        << settings.k2 << "), colours " << (giveColours ? "given" : "integrated");
  }
}

class StrengthBatchTest : public test::LevelsAndThreadsTest {};

// Every method (and two codes outside 0..14, which compute as apparent), K/S and density,
// every Saunderson setting, every standard with its threshold batches and some random ones,
// colours given and integrated.
TEST_P(StrengthBatchTest, AgreesWithCalcStrengthOnEveryMethodAndBranch) {
  std::mt19937_64 random(20261125);
  for (const Curve& standard : Standards()) {
    std::vector<Curve> batches = ThresholdBatches(standard);
    for (int k = 0; k < 24; ++k) batches.push_back(RandomCurve(random));
    for (int method = -1; method <= 15; ++method) {
      for (const Setting& s : kSettings) {
        for (const bool absorbance : {false, true}) {
          CStrengthSettings settings;
          settings.method = method;
          settings.saundersonOn = s.saundersonOn;
          settings.k1 = s.k1;
          settings.k2 = s.k2;
          settings.userWavelength = kUserWavelengths[(method + 1 + (absorbance ? 1 : 0)) % 4];
          ExpectBatchAgrees(settings, standard, batches, absorbance, method % 2 == 0);
          if (HasFatalFailure()) return;
        }
      }
    }
  }
}

// The random budget in batches large enough to be split over the threads, each level and
// thread count taking two methods in turn.
TEST_P(StrengthBatchTest, AgreesOnLargeRandomBatches) {
  const std::size_t instances =
      static_cast<std::size_t>(SimdLevelCount()) * std::size(kThreadCounts);
  const std::size_t instance = static_cast<std::size_t>(std::get<0>(GetParam())) * 3 +
                               (std::get<1>(GetParam()) == 1 ? 0
                                : std::get<1>(GetParam()) == 2 ? 1
                                                               : 2);
  std::mt19937_64 random(instance);
  for (std::size_t k = 0; k < 2; ++k) {
    CStrengthSettings settings;
    settings.method = static_cast<int>((instance * 2 + k) % kStrengthMethodCount);
    settings.saundersonOn = static_cast<int>(k);
    settings.k1 = 0.04;
    settings.k2 = 0.6;
    const Curve standard = RandomCurve(random);
    std::vector<Curve> batches(kRandomBatches / instances / 2);
    for (Curve& b : batches) b = RandomCurve(random);
    ExpectBatchAgrees(settings, standard, batches, k == 1, k == 0, static_cast<int>(instance % 17),
                      static_cast<int>(k));
    if (HasFatalFailure()) return;
  }
}

INSTANTIATE_TEST_SUITE_P(LevelsAndThreads, StrengthBatchTest, test::LevelsAndThreads(),
                         test::LevelsAndThreadsName);

TEST(StrengthBatchArguments, RefusesShortStridesAndNullPointers) {
  const CKSData standard;
  const CValueVector3 colour;
  const Curve batch = Flat(50.0);
  double out = -777.0;
  int wavelength = 3;
  const CStrengthSettings settings;
  EXPECT_FALSE(StrengthBatch(settings, standard, colour, batch.data(), 39, nullptr, 3, 1, 2, 1,
                             false, &out, wavelength));
  EXPECT_FALSE(StrengthBatch(settings, standard, colour, batch.data(), 40, batch.data(), 2, 1, 2,
                             1, false, &out, wavelength));
  EXPECT_FALSE(StrengthBatch(settings, standard, colour, nullptr, 40, nullptr, 3, 1, 2, 1, false,
                             &out, wavelength));
  EXPECT_FALSE(StrengthBatch(settings, standard, colour, batch.data(), 40, nullptr, 3, 1, 2, 1,
                             false, nullptr, wavelength));
  EXPECT_EQ(out, -777.0);
  EXPECT_EQ(wavelength, 3);
}

// The C form against vq_strength pair by pair: colours given and computed, the wavelength
// reported for the chromatic methods only, and the refusals.
TEST(StrengthBatchC, AgreesWithVqStrengthPairByPair) {
  std::mt19937_64 random(11);
  const Curve standard = RandomCurve(random);
  std::vector<double> batches;
  std::vector<vq_xyz> colours;
  for (int k = 0; k < 5; ++k) {
    const Curve b = RandomCurve(random);
    batches.insert(batches.end(), b.begin(), b.end());
    colours.push_back({40.0 + k, 42.0 + k, 30.0 - k});
  }
  const vq_xyz standardXyz = {41.0, 43.0, 29.0};
  for (const int method : {0, 1, 2, 5, 7, 10, 13}) {
    for (const bool given : {false, true}) {
      const vq_strength_settings settings = {method, 520, 100.0, 1, 0.04, 0.6};
      std::vector<double> out(5);
      int wavelength = -1;
      ASSERT_EQ(vq_strength_batch(&settings, standard.data(), given ? &standardXyz : nullptr,
                                  batches.data(), given ? colours.data() : nullptr, 5, 2, 1, 0,
                                  out.data(), &wavelength),
                VQ_OK);
      for (std::size_t n = 0; n < 5; ++n) {
        double want = 0.0;
        int wantWavelength = -1;
        ASSERT_EQ(vq_strength(&settings, standard.data(), &batches[n * kPoints],
                              given ? &standardXyz : nullptr, given ? &colours[n] : nullptr, 2, 1,
                              0, &want, &wantWavelength),
                  VQ_OK);
        EXPECT_NEAR(out[n], want, Agreement(want)) << "method " << method << ", batch " << n;
        EXPECT_EQ(wavelength, wantWavelength) << "method " << method;
      }
    }
  }
  const vq_strength_settings settings = {0, 500, 100.0, 0, 0.0, 0.0};
  double out = 0.0;
  EXPECT_EQ(vq_strength_batch(&settings, standard.data(), nullptr, nullptr, nullptr, 1, 2, 1, 0,
                              &out, nullptr),
            VQ_ERR_NULL);
  EXPECT_EQ(vq_strength_batch(&settings, standard.data(), nullptr, batches.data(), nullptr, 1, 99,
                              1, 0, &out, nullptr),
            VQ_ERR_RANGE);
  EXPECT_EQ(vq_strength_batch(&settings, standard.data(), nullptr, nullptr, nullptr, 0, 2, 1, 0,
                              nullptr, nullptr),
            VQ_OK);
}

}  // namespace
}  // namespace velquor
