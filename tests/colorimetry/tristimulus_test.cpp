#include "velquor/colorimetry/tristimulus.h"

#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

#include "reference_table.h"
#include "tolerances.h"
#include "velquor/colorimetry/weight_table_cache.h"
#include "velquor/frame/numeric.h"

namespace velquor {
namespace {

// The shipped table file itself, read straight from the source tree (not through the cache).
std::array<double, kWeightTableLength> ReadTableFile(const char* name) {
  static_assert(std::endian::native == std::endian::little);
  std::array<double, kWeightTableLength> table{};
  std::ifstream file(std::string(VELQUOR_SOURCE_DIR) + "/velquor/resources/weights/" + name,
                     std::ios::binary);
  char bytes[kWeightTableBytes] = {};
  file.read(bytes, sizeof bytes);
  EXPECT_EQ(file.gcount(), static_cast<std::streamsize>(sizeof bytes)) << name;
  std::memcpy(table.data(), bytes, sizeof bytes);
  return table;
}

CKSData Flat(double value) {
  CKSData curve;
  curve.Fill(value);
  return curve;
}

// The perfect reflecting diffuser integrates to the table's white point: Y weights sum to 100,
// X and Z weights to Xn and Zn within the tables' rounding; the white point itself is exact.
TEST(ComputeXYZ, PerfectDiffuserReproducesTheWhitePointOfEveryTable) {
  for (const auto& row :
       test::LoadReferenceTable("reference/colorimetry_weight_table_whites.csv")) {
    SCOPED_TRACE(row.Where());
    const int illuminant = row.Integer("illuminant"), observer = row.Integer("observer");
    CValueVector3 xyz, white;
    ComputeXYZ(Flat(100.0), illuminant, observer, xyz);
    EXPECT_NEAR(xyz[0], row.Number("Xn"), 0.025);
    EXPECT_NEAR(xyz[1], 100.0, 0.005);
    EXPECT_NEAR(xyz[2], row.Number("Zn"), 0.025);
    ASSERT_EQ(GetWhitePoint(illuminant, observer, white), 1);
    EXPECT_NEAR(white[0], row.Number("Xn"), test::kThreeDecimals);
    EXPECT_EQ(white[1], 100.0);
    EXPECT_NEAR(white[2], row.Number("Zn"), test::kThreeDecimals);
  }
}

TEST(ComputeXYZ, EachComponentReadsItsOwnFortyWeightsInWavelengthOrder) {
  // A curve that is 100 % at one wavelength k and 0 elsewhere gives (w[k] * 100) * 0.01, with
  // w from doubles k, 40 + k and 80 + k of ILL05_10 (D50, 10°).
  const auto table = ReadTableFile("ILL05_10");
  for (std::size_t k : {0u, 1u, 20u, 38u, 39u}) {
    CKSData curve = Flat(0.0);
    curve[k] = 100.0;
    CValueVector3 xyz;
    ComputeXYZ(curve, 5, 1, xyz);
    for (std::size_t c = 0; c < 3; ++c) {
      EXPECT_EQ(xyz[c], table[c * 40 + k] * 100.0 * 0.01) << "point " << k << " component " << c;
    }
  }
}

TEST(ComputeXYZ, OnlyTheFirstPointDecidesMissing) {
  // The missing band is (9.99e-06, 1.001e-05), both ends open.
  const struct {
    double first;
    bool missing;
  } cases[] = {{1e-05, true},     {1.0005e-05, true}, {9.995e-06, true},
               {9.99e-06, false}, {1.001e-05, false}, {0.0, false}};
  for (const auto& c : cases) {
    CKSData curve = Flat(40.0);
    curve[0] = c.first;
    CValueVector3 xyz;
    ComputeXYZ(curve, 2, 0, xyz);
    // 40 % of D65 otherwise: X 38.0, Y 40, Z 43.6.
    for (std::size_t i = 0; i < 3; ++i) {
      EXPECT_TRUE(c.missing ? xyz[i] == kMissing : xyz[i] > 10.0) << c.first << " " << i;
    }
  }
}

TEST(ComputeXYZ, AMissingValueAt750nmIsSummedAsANumber) {
  // A 2° (ILL00_02): X weight at 750 nm 0.01417..., Y 0.00511..., Z 0.
  const auto table = ReadTableFile("ILL00_02");
  CKSData dark = Flat(0.0);
  dark[39] = kMissing;
  CValueVector3 xyz;
  ComputeXYZ(dark, 0, 0, xyz);
  // Only the last term is non-zero: (w * 1e-05) * 0.01, about 1.4e-9 for X.
  for (std::size_t c = 0; c < 3; ++c) EXPECT_EQ(xyz[c], table[c * 40 + 39] * kMissing * 0.01);
  EXPECT_GT(xyz[0], 0.0);

  CValueVector3 white;
  ComputeXYZ(Flat(100.0), 0, 0, white);
  CKSData curve = Flat(100.0);
  curve[39] = kMissing;
  ComputeXYZ(curve, 0, 0, xyz);
  // The point loses (100 - 1e-05) % of its weight and nothing else changes.
  for (std::size_t c = 0; c < 3; ++c) {
    EXPECT_NEAR(xyz[c], white[c] - table[c * 40 + 39] * (100.0 - kMissing) * 0.01,
                test::kExactFormula);
  }
}

TEST(ComputeXYZ, ShortCurvesAndUnknownTablesGiveMissing) {
  CKSData shortCurve = Flat(50.0);
  shortCurve.SetSize(39);
  CValueVector3 xyz;
  xyz.SetSize(0);
  ComputeXYZ(shortCurve, 2, 0, xyz);
  ASSERT_EQ(xyz.GetSize(), 3u);
  EXPECT_EQ(xyz[0], kMissing);
  EXPECT_EQ(xyz[2], kMissing);

  ComputeXYZ(Flat(50.0), 20, 0, xyz);
  EXPECT_EQ(xyz[1], kMissing);
}

TEST(ComputeXYZBatch, MatchesTheSingleCallBitForBit) {
  constexpr std::size_t kCount = 6;
  constexpr std::size_t kSpectrumStride = 43;  // padded rows
  constexpr std::size_t kXYZStride = 4;
  std::vector<double> spectra(kCount * kSpectrumStride, -7.0);
  std::vector<CKSData> curves(kCount);
  for (std::size_t n = 0; n < kCount; ++n) {
    for (std::size_t i = 0; i < 40; ++i) {
      // Irregular values so that a changed summation order would change low-order bits.
      curves[n][i] = 3.0 + 0.731 * static_cast<double>((n * 17 + i * 29) % 97) + 1e-3 * n;
    }
    if (n == 3) curves[n][0] = kMissing;
    if (n == 4) curves[n][39] = kMissing;
    std::memcpy(&spectra[n * kSpectrumStride], curves[n].GetData(), 40 * sizeof(double));
  }
  for (const auto& [illuminant, observer] : {std::pair{2, 0}, {9, 1}, {16, 0}}) {
    std::vector<double> xyz(kCount * kXYZStride, -1.0);
    ASSERT_EQ(ComputeXYZBatch(spectra.data(), kCount, kSpectrumStride, illuminant, observer,
                              xyz.data(), kXYZStride),
              1);
    for (std::size_t n = 0; n < kCount; ++n) {
      CValueVector3 single;
      ComputeXYZ(curves[n], illuminant, observer, single);
      for (std::size_t c = 0; c < 3; ++c) {
        EXPECT_EQ(std::bit_cast<std::uint64_t>(xyz[n * kXYZStride + c]),
                  std::bit_cast<std::uint64_t>(single[c]))
            << "illuminant " << illuminant << " curve " << n << " component " << c;
      }
      EXPECT_EQ(xyz[n * kXYZStride + 3], -1.0);  // the padding is not written
    }
  }
}

TEST(ComputeXYZBatch, RejectsBadStridesAndReportsAnUnknownTable) {
  std::vector<double> spectra(80, 50.0);
  std::vector<double> xyz(6, -1.0);
  EXPECT_EQ(ComputeXYZBatch(spectra.data(), 2, 39, 2, 0, xyz.data(), 3), 0);
  EXPECT_EQ(ComputeXYZBatch(spectra.data(), 2, 40, 2, 0, xyz.data(), 2), 0);
  EXPECT_EQ(ComputeXYZBatch(nullptr, 2, 40, 2, 0, xyz.data(), 3), 0);
  EXPECT_EQ(xyz, std::vector<double>(6, -1.0));
  EXPECT_EQ(ComputeXYZBatch(nullptr, 0, 40, 2, 0, nullptr, 3), 1);

  EXPECT_EQ(ComputeXYZBatch(spectra.data(), 2, 40, 20, 0, xyz.data(), 3), 0);
  EXPECT_EQ(xyz, std::vector<double>(6, kMissing));
}

}  // namespace
}  // namespace velquor
