#include "velquor/colorimetry/tristimulus.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstring>
#include <tuple>
#include <vector>

#include "reference_table.h"
#include "tolerances.h"
#include "velquor/colorimetry/weight_table_cache.h"

namespace velquor {

static CKSData Flat(double value) {
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
    ASSERT_EQ(GetWhitePoint(illuminant, observer, white), 1);
    const double published[3] = {row.Number("Xn"), 100.0, row.Number("Zn")};
    for (int c = 0; c < 3; ++c) {
      EXPECT_NEAR(xyz[c], published[c], c == 1 ? 0.005 : 0.025) << c;
      EXPECT_NEAR(white[c], published[c], test::kThreeDecimals) << c;
    }
  }
}

TEST(ComputeXYZ, EachComponentReadsItsOwnFortyWeightsAndOnlyTheFirstPointIsAMissingTest) {
  // A peak at point k, 0 elsewhere, gives (w[k] x peak) x 0.01 with w the doubles k, 40 + k,
  // 80 + k of the table (D50, 10°); a missing value after the first point is summed as 1e-5.
  const double* table = GetWeightTable(5, 1);
  for (const auto& [k, peak] : {std::pair{0, 100.0}, {20, 100.0}, {20, kMissing}, {39, kMissing}}) {
    CKSData curve = Flat(0.0);
    curve[k] = peak;
    CValueVector3 xyz;
    ComputeXYZ(curve, 5, 1, xyz);
    for (int c = 0; c < 3; ++c) EXPECT_EQ(xyz[c], table[c * 40 + k] * peak * 0.01) << k << c;
  }
  // The first point inside the missing band (9.99e-06, 1.001e-05), a curve shorter than 40
  // points or an illuminant without a table give the missing triple, whatever the table.
  for (const auto& [first, size, illuminant, missing] : {std::tuple{1e-05, 40, 2, true},
                                                         {1.0005e-05, 40, 2, true},
                                                         {0.0, 40, 2, false},
                                                         {40.0, 39, 2, true},
                                                         {40.0, 40, 20, true}}) {
    CKSData curve = Flat(40.0);
    curve[0] = first;
    curve.SetSize(static_cast<std::size_t>(size));
    CValueVector3 xyz;
    ComputeXYZ(curve, illuminant, 0, xyz);
    for (int c = 0; c < 3; ++c) EXPECT_EQ(xyz[c] == kMissing, missing) << first << size << c;
  }
}

TEST(ComputeXYZBatch, MatchesTheSingleCallBitForBitAndRejectsBadArguments) {
  // Six spectra of irregular values (another summation order would change low-order bits) in
  // records of 43, one with a missing first point; the XYZ records of 4 keep their last value.
  std::vector<double> spectra(6 * 43), xyz(6 * 4, -1.0);
  for (std::size_t i = 0; i < spectra.size(); ++i)
    spectra[i] = 3.0 + 0.731 * static_cast<double>(i * 29 % 97);
  spectra[3 * 43] = kMissing;
  ASSERT_EQ(ComputeXYZBatch(spectra.data(), 6, 43, 9, 1, xyz.data(), 4), 1);
  for (std::size_t i = 0; i < xyz.size(); ++i) {
    CKSData curve;
    std::memcpy(curve.GetData(), &spectra[i / 4 * 43], 40 * sizeof(double));
    CValueVector3 single;
    ComputeXYZ(curve, 9, 1, single);
    EXPECT_EQ(std::bit_cast<std::uint64_t>(xyz[i]),
              std::bit_cast<std::uint64_t>(i % 4 < 3 ? single[i % 4] : -1.0))
        << i;
  }
  xyz.assign(6, -1.0);
  EXPECT_EQ(ComputeXYZBatch(spectra.data(), 2, 39, 2, 0, xyz.data(), 3), 0);
  EXPECT_EQ(ComputeXYZBatch(spectra.data(), 2, 40, 2, 0, xyz.data(), 2), 0);
  EXPECT_EQ(ComputeXYZBatch(nullptr, 2, 40, 2, 0, xyz.data(), 3), 0);
  EXPECT_EQ(ComputeXYZBatch(spectra.data(), 2, 40, 2, 0, nullptr, 3), 0);
  EXPECT_EQ(xyz, std::vector<double>(6, -1.0));
  EXPECT_EQ(ComputeXYZBatch(nullptr, 0, 40, 2, 0, nullptr, 3), 1);
  EXPECT_EQ(ComputeXYZBatch(spectra.data(), 2, 40, 20, 0, xyz.data(), 3), 0);
  EXPECT_EQ(xyz, std::vector<double>(6, kMissing));
}

}  // namespace velquor
