#include "weight_table_builder.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

namespace wt = velquor::weight_tables;

namespace {

const std::filesystem::path kRoot = VELQUOR_SOURCE_DIR;
const std::filesystem::path kCieDir = kRoot / "velquor/resources/cie";
const std::filesystem::path kWeightsDir = kRoot / "velquor/resources/weights";

constexpr double kExact = 1e-12;     // algebraic identities in double arithmetic
constexpr double kReference = 1e-9;  // reference weights are printed to 10 decimals

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
      EXPECT_NEAR(sum, 1.0, kExact);
      EXPECT_NEAR(quadratic, Quadratic(c.k + t), kExact);
      if (c.cubic) {
        EXPECT_NEAR(cubic, Cubic(c.k + t), kExact);
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
    EXPECT_NEAR(grid[nm - 360], Quadratic(nm / 10.0), nm % 5 == 0 ? 0.0 : 1e-9);
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
  EXPECT_NEAR(spread, direct, 1e-9);
  EXPECT_NEAR(nodeSum, plain, 1e-9);
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

struct WhitePoint {
  const char* code;
  double x2, z2, x10, z10;
};
// The white points the library's tables are identified by (Yn = 100).
constexpr WhitePoint kWhitePoints[wt::kIlluminantCount] = {
    {"A", 109.85, 35.585, 111.144, 35.2},      {"C", 98.074, 118.232, 97.285, 116.145},
    {"D65", 95.047, 108.883, 94.811, 107.304}, {"CWF", 99.186, 67.393, 103.279, 69.027},
    {"T84", 100.962, 64.35, 103.863, 65.607},  {"D50", 96.422, 82.521, 96.72, 81.427},
    {"D55", 95.682, 92.149, 95.799, 90.926},   {"D75", 94.972, 122.638, 94.416, 120.641},
    {"U50", 94.629, 77.449, 97.71, 78.656},    {"U30", 104.337, 38.2, 107.824, 39.015},
    {"F6", 97.343, 60.262, 102.18, 62.109},    {"F7", 95.041, 108.747, 95.792, 107.686},
    {"F8", 96.428, 82.42, 97.118, 81.186},     {"F10", 96.385, 82.354, 98.956, 83.286},
    {"H23", 117.789, 22.889, 119.234, 22.461}, {"HM", 119.475, 21.358, 120.841, 20.905},
    {"F4", 109.173, 40.275, 112.131, 40.759},
};

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

TEST_F(CommittedTables, SizeYSumWhitePointAndFlatReflectance) {
  for (int i = 0; i < 17; ++i) {
    for (int degrees : {2, 10}) {
      SCOPED_TRACE(FileName(i, degrees));
      const std::string bytes = Committed(i, degrees);
      ASSERT_EQ(bytes.size(), 984u);
      const auto d = Doubles(bytes);
      const WhitePoint& wp = kWhitePoints[i];
      const double expected[3] = {degrees == 2 ? wp.x2 : wp.x10, 100.0,
                                  degrees == 2 ? wp.z2 : wp.z10};
      EXPECT_EQ(d[121], 100.0);
      for (int c = 0; c < 3; ++c) {
        double flat = 0;  // reflectance 1 at every band
        for (int b = 0; b < 40; ++b) flat += d[40 * c + b];
        EXPECT_NEAR(d[120 + c], expected[c], 0.0005) << "component " << c;
        EXPECT_NEAR(flat, d[120 + c], kReference) << "component " << c;
        if (c == 1) {
          EXPECT_NEAR(flat, 100.0, 0.005);
        }
      }
    }
  }
}

TEST_F(CommittedTables, MatchReferenceWeights) {
  std::ifstream in(kRoot / "tests/data/reference_weights_10nm.csv");
  std::string line;
  std::getline(in, line);  // header
  int rows = 0;
  while (std::getline(in, line)) {
    std::istringstream fields(line);
    std::string code, observer, component, value;
    std::getline(fields, code, ',');
    std::getline(fields, observer, ',');
    std::getline(fields, component, ',');
    int i = 0;
    while (i < 17 && code != kWhitePoints[i].code) ++i;
    ASSERT_LT(i, 17) << code;
    const auto d = Doubles(Committed(i, std::stoi(observer)));
    const int c = static_cast<int>(std::string("XYZ").find(component));
    for (int b = 0; b <= 40; ++b) {  // 40 weights, then the white point
      std::getline(fields, value, ',');
      EXPECT_NEAR(d[b < 40 ? 40 * c + b : 120 + c], std::stod(value), kReference)
          << code << "/" << observer << " " << component << " column " << b;
    }
    ++rows;
  }
  EXPECT_EQ(rows, 102);
}

// Before pinning, the CIE lamps must reproduce the ASTM E308 white points on their own
// (published checks: D65 2° 95.0471/108.8829, A 10° 111.1440/35.2000, F11 2° 100.9624/64.3498),
// and the constructed lamps must need only small corrections.
TEST_F(CommittedTables, UnpinnedWhitePointsAndPinningFactors) {
  EXPECT_NEAR(Built(2, 2).unpinnedWhite[0], 95.0471, 5e-5);
  EXPECT_NEAR(Built(2, 2).unpinnedWhite[2], 108.8829, 5e-5);
  EXPECT_NEAR(Built(0, 10).unpinnedWhite[0], 111.1440, 5e-5);
  EXPECT_NEAR(Built(0, 10).unpinnedWhite[2], 35.2000, 5e-5);
  EXPECT_NEAR(Built(4, 2).unpinnedWhite[0], 100.9624, 5e-5);
  EXPECT_NEAR(Built(4, 2).unpinnedWhite[2], 64.3498, 5e-5);
  for (const wt::WeightTable& t : built_) {
    const bool constructed = t.illuminant == 8 || t.illuminant == 9 || t.illuminant >= 14;
    const double limit = constructed ? 0.0082 : 0.00004;
    EXPECT_NEAR(t.xPinning, 1.0, limit) << FileName(t.illuminant, t.observerDegrees);
    EXPECT_NEAR(t.zPinning, 1.0, limit) << FileName(t.illuminant, t.observerDegrees);
  }
}

}  // namespace
