#include "weight_table_builder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#include "tolerances.h"

#include "reference_table.h"

namespace wt = velquor::weight_tables;

namespace {

const std::filesystem::path kRoot = VELQUOR_SOURCE_DIR;
const std::filesystem::path kCieDir = kRoot / "velquor/resources/cie";
const std::filesystem::path kWeightsDir = kRoot / "velquor/resources/weights";

using velquor::test::kExactFormula;
using velquor::test::kIndependent;  // the reference weights are printed to 10 decimals

std::string ReadText(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

std::string FileName(int illuminant, int degrees) {
  char name[16];
  std::snprintf(name, sizeof name, "ILL%02d_%02d", illuminant, degrees);
  return name;
}

// ---------------------------------------------------------------- interpolation and spreading

double Quadratic(double x) {
  return 3.0 - 0.7 * x + 0.05 * x * x;
}
double Cubic(double x) {
  return Quadratic(x) + 0.01 * x * x * x;
}

// Lagrange stencils must reproduce every polynomial of their degree: catches a wrong or swapped
// coefficient, which "sums to 1" alone would not.
TEST(LagrangeStencil, ReproducesPolynomialsOfItsDegree) {
  struct Case {
    std::size_t k, n;
    bool cubic;
  };
  for (const Case c : {Case{0, 10, false}, Case{1, 10, true}, Case{5, 10, true}, Case{7, 10, true},
                       Case{8, 10, false}, Case{0, 3, false}, Case{1, 3, false}}) {
    for (int step = 0; step < 10; ++step) {
      const double t = step / 10.0;
      SCOPED_TRACE(testing::Message() << "k=" << c.k << " n=" << c.n << " t=" << t);
      const wt::Stencil s = wt::LagrangeStencil(c.k, c.n, t);
      ASSERT_LE(s.firstNode + s.count, c.n);
      double sum = 0, quadratic = 0, cubic = 0;
      for (std::size_t i = 0; i < s.count; ++i) {
        const double x = static_cast<double>(s.firstNode + i);
        sum += s.coefficients[i];
        quadratic += s.coefficients[i] * Quadratic(x);
        cubic += s.coefficients[i] * Cubic(x);
      }
      EXPECT_NEAR(sum, 1.0, kExactFormula);
      EXPECT_NEAR(quadratic, Quadratic(c.k + t), kExactFormula);
      if (c.cubic) {
        EXPECT_NEAR(cubic, Cubic(c.k + t), kExactFormula);
      }
      if (step == 0) {
        EXPECT_EQ(s.coefficients[c.k - s.firstNode], 1.0);  // the node itself
      }
    }
  }
  EXPECT_THROW(wt::LagrangeStencil(9, 10, 0.5), std::invalid_argument);
  EXPECT_THROW(wt::LagrangeStencil(0, 2, 0.5), std::invalid_argument);
}

TEST(ResampleTo1nm, FiveNanometreDataInterpolatedWithinRangeAndZeroOutside) {
  wt::Spectrum spectrum{380, 5, {}};
  for (int nm = 380; nm <= 780; nm += 5) spectrum.values.push_back(Quadratic(nm / 10.0));
  const wt::Grid1nm grid = wt::ResampleTo1nm(spectrum, "test");
  // 380-385 and 775-780 are the quadratic end intervals, 400-405 a cubic one.
  for (int nm : {380, 381, 383, 384, 385, 402, 404, 777, 779, 780}) {
    SCOPED_TRACE(nm);
    EXPECT_NEAR(grid[nm - 360], Quadratic(nm / 10.0), nm % 5 == 0 ? 0.0 : kIndependent);
  }
  for (int nm : {360, 379, 781, 830}) EXPECT_EQ(grid[nm - 360], 0.0) << nm;
}

TEST(ResampleTo1nm, NegativeOvershootIsClippedToZero) {
  // A lone line at 400 nm: the cubic through 390..405 dips below 0 between 390 and 395.
  const wt::Spectrum spectrum{380, 5, {0, 0, 0, 0, 10, 0, 0, 0}};
  const wt::Grid1nm grid = wt::ResampleTo1nm(spectrum, "test");
  for (int nm = 391; nm <= 394; ++nm) EXPECT_EQ(grid[nm - 360], 0.0) << nm;
  EXPECT_GT(grid[398 - 360], 0.0);
  EXPECT_EQ(grid[400 - 360], 10.0);
}

TEST(ResampleTo1nm, OneNanometreDataMustCoverTheGrid) {
  wt::Spectrum spectrum{361, 1, std::vector<double>(470, 1.0)};
  EXPECT_THROW(wt::ResampleTo1nm(spectrum, "short.csv"), wt::CieDataError);
  spectrum.firstNm = 300;
  spectrum.values.assign(531, 0.0);
  spectrum.values[60] = 7.5;  // 360 nm
  EXPECT_EQ(wt::ResampleTo1nm(spectrum, "ok.csv")[0], 7.5);
}

// Spreading is the transpose of interpolation from the 10 nm nodes: for any quadratic f,
// sum_m W(m) f(node m) = sum_λ P(λ) f(λ). Checks every coefficient's node and value at once.
TEST(SpreadOnto10nmNodes, IsTransposeOfInterpolation) {
  wt::Grid1nm product{};
  for (std::size_t j = 0; j < product.size(); ++j) product[j] = 1.0 + std::sin(0.37 * j) * 0.8;
  const wt::Nodes10nm nodes = wt::SpreadOnto10nmNodes(product);
  double direct = 0, spread = 0, plain = 0, nodeSum = 0;
  for (std::size_t j = 0; j < product.size(); ++j) {
    direct += product[j] * Quadratic(j / 10.0);
    plain += product[j];
  }
  for (std::size_t m = 0; m < nodes.size(); ++m) {
    spread += nodes[m] * Quadratic(static_cast<double>(m));
    nodeSum += nodes[m];
  }
  EXPECT_NEAR(spread, direct, kIndependent);
  EXPECT_NEAR(nodeSum, plain, kIndependent);
}

TEST(FoldInto750nm, AddsNodes760To830Into750) {
  wt::Nodes10nm nodes{};
  for (std::size_t m = 0; m < nodes.size(); ++m) nodes[m] = m + 1.0;
  const wt::Bands bands = wt::FoldInto750nm(nodes);
  EXPECT_EQ(bands[0], 1.0);
  EXPECT_EQ(bands[38], 39.0);
  EXPECT_EQ(bands[39], 40.0 + 41 + 42 + 43 + 44 + 45 + 46 + 47 + 48);
}

// ---------------------------------------------------------------- bad input

TEST(SpectralCsv, MalformedInputIsReportedWithFileAndLine) {
  struct Case {
    const char* text;
    const char* message;
  };
  for (const Case c : {
           Case{"", "bad.csv: empty file"},
           Case{"nm,A\n360,1\n365,2\n", "line 1: header"},
           Case{"wavelength_nm,A\n360,1\n", "fewer than two data rows"},
           Case{"wavelength_nm,A,B\n360,1,2\n365,3\n", "line 3: expected 3 fields, found 2"},
           Case{"wavelength_nm,A\n360,1\n365,x\n", "line 3: value 'x' in column 'A'"},
           Case{"wavelength_nm,A\n360,1\n365,1.5e\n", "value '1.5e'"},
           Case{"wavelength_nm,A\n360,1\n365,nan\n", "value 'nan'"},
           Case{"wavelength_nm,A\n360,1\n365.5,1\n", "line 3: wavelength '365.5'"},
           Case{"wavelength_nm,A\n360,1\n365,1\n375,1\n", "line 4: wavelength step 10 nm"},
           Case{"wavelength_nm,A\n365,1\n360,1\n", "line 3: wavelengths must increase"},
           Case{"wavelength_nm,A\n360,1\n360,1\n", "line 3: wavelengths must increase"},
       }) {
    std::istringstream in(c.text);
    try {
      wt::ParseSpectralCsv(in, "bad.csv");
      ADD_FAILURE() << "accepted: " << c.text;
    } catch (const wt::CieDataError& e) {
      EXPECT_NE(std::string(e.what()).find(c.message), std::string::npos) << e.what();
    }
  }
  std::istringstream ok("wavelength_nm,A\r\n360,+1\r\n365, 2 \r\n\r\n");
  const wt::SpectralCsv csv = wt::ParseSpectralCsv(ok, "ok.csv");
  EXPECT_EQ(csv.Column("A").values, (std::vector<double>{1.0, 2.0}));
  EXPECT_THROW(csv.Column("B"), wt::CieDataError);
  EXPECT_THROW(wt::LoadCieData(kRoot / "no_such_dir"), wt::CieDataError);
}

TEST(SerializeWeightTable, LittleEndianDoublesInXYZWhiteOrder) {
  wt::WeightTable table;
  table.weights[0][0] = 1.0;             // 0x3FF0000000000000
  table.weights[2][39] = -2.0;           // 0xC000000000000000
  table.whitePoint = {0.0, 100.0, 0.0};  // 0x4059000000000000
  const auto bytes = wt::SerializeWeightTable(table);
  EXPECT_EQ(bytes[6], 0xF0);
  EXPECT_EQ(bytes[7], 0x3F);
  EXPECT_EQ(bytes[8 * 119 + 7], 0xC0);
  EXPECT_EQ(bytes[8 * 121 + 6], 0x59);
  EXPECT_EQ(bytes[8 * 121 + 7], 0x40);
  EXPECT_EQ(wt::DeserializeWeightTable(bytes)[121], 100.0);
}

// ---------------------------------------------------------------- the 34 tables

// The illuminant codes of the tables, in table order.
constexpr const char* kCodes[wt::kIlluminantCount] = {
    "A", "C", "D65", "CWF", "T84", "D50", "D55", "D75", "U50",
    "U30", "F6", "F7", "F8", "F10", "H23", "HM", "F4"};

class CommittedTables : public testing::Test {
 protected:
  static void SetUpTestSuite() { built_ = wt::BuildAllWeightTables(wt::LoadCieData(kCieDir)); }
  static const wt::WeightTable& Built(int illuminant, int degrees) {
    return built_[static_cast<std::size_t>(2 * illuminant + (degrees == 10))];
  }
  static std::string Committed(int illuminant, int degrees) {
    return ReadText(kWeightsDir / FileName(illuminant, degrees));
  }
  static std::array<double, wt::kTableDoubles> Doubles(const std::string& bytes) {
    std::array<unsigned char, wt::kTableBytes> raw{};
    std::copy_n(bytes.begin(), std::min(bytes.size(), raw.size()), raw.begin());
    return wt::DeserializeWeightTable(raw);
  }
  static inline std::vector<wt::WeightTable> built_;
};

TEST_F(CommittedTables, RegeneratedTablesMatchCommittedFilesByteForByte) {
  ASSERT_EQ(built_.size(), 34u);
  for (int i = 0; i < 17; ++i) {
    for (int degrees : {2, 10}) {
      const auto bytes = wt::SerializeWeightTable(Built(i, degrees));
      EXPECT_EQ(Committed(i, degrees), std::string(bytes.begin(), bytes.end()))
          << FileName(i, degrees);
    }
  }
  EXPECT_EQ(ReadText(kWeightsDir / "README.md"), wt::ProvenanceMarkdown(built_));
}

// The white points themselves are checked against the reference weights below.
TEST_F(CommittedTables, SizeYSumAndFlatReflectance) {
  for (int i = 0; i < 34; ++i) {
    SCOPED_TRACE(FileName(i / 2, i % 2 ? 10 : 2));
    const std::string bytes = Committed(i / 2, i % 2 ? 10 : 2);
    ASSERT_EQ(bytes.size(), 984u);
    const auto d = Doubles(bytes);
    EXPECT_EQ(d[121], 100.0);
    for (int c = 0; c < 3; ++c) {
      double flat = 0;  // reflectance 1 at every band
      for (int b = 0; b < 40; ++b) flat += d[40 * c + b];
      EXPECT_NEAR(flat, d[120 + c], kIndependent) << "component " << c;
    }
  }
}

TEST_F(CommittedTables, MatchReferenceWeights) {
  const auto& table = velquor::test::LoadReferenceTable("reference_weights_10nm.csv");
  ASSERT_EQ(table.size(), 102u);
  for (const auto& row : table) {
    const int i = static_cast<int>(std::find(kCodes, kCodes + 17, row.Text("illuminant")) - kCodes);
    ASSERT_LT(i, 17) << row.Where();
    const auto d = Doubles(Committed(i, row.Integer("observer")));
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
  const struct { int illuminant, degrees; double x, z; } published[] = {
      {2, 2, 95.0471, 108.8829}, {0, 10, 111.1440, 35.2000}, {4, 2, 100.9624, 64.3498}};
  for (const auto& p : published) {
    EXPECT_NEAR(Built(p.illuminant, p.degrees).unpinnedWhite[0], p.x, velquor::test::kFourDecimals);
    EXPECT_NEAR(Built(p.illuminant, p.degrees).unpinnedWhite[2], p.z, velquor::test::kFourDecimals);
  }
  for (const wt::WeightTable& t : built_) {
    const bool constructed = t.illuminant == 8 || t.illuminant == 9 || t.illuminant >= 14;
    const double limit = constructed ? 0.0082 : 0.00004;
    EXPECT_NEAR(t.xPinning, 1.0, limit) << FileName(t.illuminant, t.observerDegrees);
    EXPECT_NEAR(t.zPinning, 1.0, limit) << FileName(t.illuminant, t.observerDegrees);
  }
}

}  // namespace
