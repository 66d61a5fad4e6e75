#include "weight_table_builder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

#include "reference_table.h"
#include "scratch_folder.h"
#include "tolerances.h"

namespace wt = velquor::weight_tables;

namespace {

const std::filesystem::path kRoot = VELQUOR_SOURCE_DIR;
const std::filesystem::path kWeightsDir = kRoot / "velquor/resources/weights";

using velquor::test::kExactFormula;
using velquor::test::kIndependent;  // the reference weights are printed to 10 decimals

double Quadratic(double x) {
  return 3.0 - 0.7 * x + 0.05 * x * x;
}

// Lagrange stencils must reproduce every polynomial of their degree (cubic inside, quadratic in
// the end intervals): catches a wrong or swapped coefficient, which "sums to 1" alone would not.
TEST(LagrangeStencil, ReproducesPolynomialsOfItsDegree) {
  const auto cubic = [](double x) { return Quadratic(x) + 0.01 * x * x * x; };
  for (const auto& [k, n] :
       {std::pair<std::size_t, std::size_t>{0, 10}, {1, 10}, {7, 10}, {8, 10}, {1, 3}}) {
    for (const double t : {0.0, 0.3, 0.9}) {
      const wt::Stencil s = wt::LagrangeStencil(k, n, t);
      ASSERT_LE(s.firstNode + s.count, n);
      double value = 0;
      const bool inner = k > 0 && k + 2 < n;
      for (std::size_t i = 0; i < s.count; ++i) {
        const double x = static_cast<double>(s.firstNode + i);
        value += s.coefficients[i] * (inner ? cubic(x) : Quadratic(x));
      }
      EXPECT_NEAR(value, inner ? cubic(k + t) : Quadratic(k + t), kExactFormula)
          << k << "/" << n << " " << t;
    }
  }
  EXPECT_THROW(wt::LagrangeStencil(9, 10, 0.5), std::invalid_argument);
  EXPECT_THROW(wt::LagrangeStencil(0, 2, 0.5), std::invalid_argument);
}

// 5 nm data are interpolated inside their range (the nodes exactly), 0 outside; the cubic's
// negative overshoot next to a lone line is clipped to 0. 1 nm data must cover the grid.
TEST(ResampleTo1nm, InterpolatedInsideZeroOutsideAndNeverNegative) {
  wt::Spectrum spectrum{380, 5, {}};
  for (int nm = 380; nm <= 780; nm += 5) spectrum.values.push_back(Quadratic(nm / 10.0));
  const wt::Grid1nm grid = wt::ResampleTo1nm(spectrum, "test");
  for (int nm : {380, 381, 384, 385, 402, 779, 780}) {
    EXPECT_NEAR(grid[nm - 360], Quadratic(nm / 10.0), nm % 5 == 0 ? 0.0 : kIndependent) << nm;
  }
  for (int nm : {379, 781}) EXPECT_EQ(grid[nm - 360], 0.0) << nm;
  const wt::Grid1nm line = wt::ResampleTo1nm({380, 5, {0, 0, 0, 0, 10, 0, 0, 0}}, "line");
  for (int nm = 391; nm <= 394; ++nm) EXPECT_EQ(line[nm - 360], 0.0) << nm;
  EXPECT_GT(line[398 - 360], 0.0);
  EXPECT_THROW(wt::ResampleTo1nm({361, 1, std::vector<double>(470, 1.0)}, "short"),
               wt::CieDataError);
  wt::Spectrum fine{300, 1, std::vector<double>(531, 0.0)};
  fine.values[60] = 7.5;  // 360 nm
  EXPECT_EQ(wt::ResampleTo1nm(fine, "ok.csv")[0], 7.5);
}

TEST(SpectralCsv, MalformedInputIsReportedWithFileAndLine) {
  for (const auto& [text, message] : std::initializer_list<std::pair<const char*, const char*>>{
           {"", "bad.csv: empty file"},
           {"nm,A\n360,1\n365,2\n", "line 1: header"},
           {"wavelength_nm,A\n360,1\n", "fewer than two data rows"},
           {"wavelength_nm,A,B\n360,1,2\n365,3\n", "line 3: expected 3 fields, found 2"},
           {"wavelength_nm,A\n360,1\n365,x\n", "line 3: value 'x' in column 'A'"},
           {"wavelength_nm,A\n360,1\n365,1.5e\n", "value '1.5e'"},
           {"wavelength_nm,A\n360,1\n365,nan\n", "value 'nan'"},
           {"wavelength_nm,A\n360,1\n365.5,1\n", "line 3: wavelength '365.5'"},
           {"wavelength_nm,A\n360,1\n365,1\n375,1\n", "line 4: wavelength step 10 nm"},
           {"wavelength_nm,A\n365,1\n360,1\n", "line 3: wavelengths must increase"},
           {"wavelength_nm,A\n360,1\n360,1\n", "line 3: wavelengths must increase"}}) {
    std::istringstream in(text);
    try {
      wt::ParseSpectralCsv(in, "bad.csv");
      ADD_FAILURE() << "accepted: " << text;
    } catch (const wt::CieDataError& e) {
      EXPECT_NE(std::string(e.what()).find(message), std::string::npos) << e.what();
    }
  }
  std::istringstream ok("wavelength_nm,A\r\n360,+1\r\n365, 2 \r\n\r\n");
  const wt::SpectralCsv csv = wt::ParseSpectralCsv(ok, "ok.csv");
  EXPECT_EQ(csv.Column("A").values, (std::vector<double>{1.0, 2.0}));
  EXPECT_THROW(csv.Column("B"), wt::CieDataError);
  EXPECT_THROW(wt::LoadCieData(kRoot / "no_such_dir"), wt::CieDataError);
}

// The 34 tables built from the CIE data: byte for byte the committed files, with the reference
// weights to 10 decimals.
class CommittedTables : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    built_ = wt::BuildAllWeightTables(wt::LoadCieData(kRoot / "velquor/resources/cie"));
  }
  static std::string Committed(int illuminant, int degrees) {
    return velquor::test::ReadFile(kWeightsDir / wt::ResourceName(illuminant, degrees));
  }
  static inline std::vector<wt::WeightTable> built_;
};

TEST_F(CommittedTables, RegeneratedTablesMatchCommittedFilesByteForByte) {
  ASSERT_EQ(built_.size(), 34u);
  for (const wt::WeightTable& t : built_) {
    const auto bytes = wt::SerializeWeightTable(t);
    EXPECT_EQ(Committed(t.illuminant, t.observerDegrees), std::string(bytes.begin(), bytes.end()))
        << wt::ResourceName(t.illuminant, t.observerDegrees);
  }
  EXPECT_EQ(velquor::test::ReadFile(kWeightsDir / "README.md"), wt::ProvenanceMarkdown(built_));
}

TEST_F(CommittedTables, MatchReferenceWeights) {
  // The illuminant codes of the tables, in table order.
  const std::vector<std::string> codes = {"A",   "C",   "D65", "CWF", "T84", "D50",
                                          "D55", "D75", "U50", "U30", "F6",  "F7",
                                          "F8",  "F10", "H23", "HM",  "F4"};
  const auto& table = velquor::test::LoadReferenceTable("reference_weights_10nm.csv");
  ASSERT_EQ(table.size(), 102u);
  for (const auto& row : table) {
    const auto i = std::find(codes.begin(), codes.end(), row.Text("illuminant")) - codes.begin();
    ASSERT_LT(i, 17) << row.Where();
    const std::string bytes = Committed(static_cast<int>(i), row.Integer("observer"));
    std::array<unsigned char, wt::kTableBytes> raw{};
    std::copy_n(bytes.begin(), std::min(bytes.size(), raw.size()), raw.begin());
    const auto d = wt::DeserializeWeightTable(raw);
    const int c = static_cast<int>(std::string("XYZ").find(row.Text("component")));
    for (int b = 0; b <= 40; ++b) {  // 40 weights, then the white point
      EXPECT_NEAR(d[b < 40 ? 40 * c + b : 120 + c],
                  row.Number(b < 40 ? std::to_string(360 + 10 * b) : "white_point"), kIndependent)
          << row.Where() << " column " << b;
    }
  }
}

// Before pinning, the CIE lamps must reproduce the ASTM E308 white points on their own
// (published checks: D65 2° 95.0471/108.8829, A 10° 111.1440/35.2000, F11 2° 100.9624/64.3498),
// and the constructed lamps must need only small corrections.
TEST_F(CommittedTables, UnpinnedWhitePointsAndPinningFactors) {
  const double published[][4] = {
      {2, 2, 95.0471, 108.8829}, {0, 10, 111.1440, 35.2000}, {4, 2, 100.9624, 64.3498}};
  for (const auto& [illuminant, degrees, x, z] : published) {
    const wt::WeightTable& t = built_[static_cast<std::size_t>(2 * illuminant + (degrees == 10))];
    EXPECT_NEAR(t.unpinnedWhite[0], x, velquor::test::kFourDecimals);
    EXPECT_NEAR(t.unpinnedWhite[2], z, velquor::test::kFourDecimals);
  }
  for (const wt::WeightTable& t : built_) {
    const bool constructed = t.illuminant == 8 || t.illuminant == 9 || t.illuminant >= 14;
    const double limit = constructed ? 0.0082 : 0.00004;
    EXPECT_NEAR(t.xPinning, 1.0, limit) << wt::ResourceName(t.illuminant, t.observerDegrees);
    EXPECT_NEAR(t.zPinning, 1.0, limit) << wt::ResourceName(t.illuminant, t.observerDegrees);
  }
}

}  // namespace
