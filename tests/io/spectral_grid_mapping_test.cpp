#include "velquor/io/spectral_grid_mapping.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

#include "velquor/io/csv_spectra.h"
#include "velquor/frame/numeric.h"
#include "reference_table.h"
#include "tolerances.h"

namespace velquor {
namespace {

double GridNm(std::size_t i) { return 360.0 + 10.0 * static_cast<double>(i); }

std::vector<double> Range(double first, double step, double last) {
  std::vector<double> values;
  for (double w = first; w <= last + 1e-9; w += step) values.push_back(w);
  return values;
}

std::vector<double> Sampled(const std::vector<double>& wavelengths, const std::function<double(double)>& f) {
  std::vector<double> values;
  for (const double w : wavelengths) values.push_back(f(w));
  return values;
}

CKSData Map(const std::vector<double>& wavelengths, const std::vector<double>& values,
            SpectralGridMapping* out = nullptr) {
  SpectralGridMapping local;
  SpectralGridMapping& mapping = out ? *out : local;
  const MeasurementStatus status = mapping.Build(wavelengths);
  EXPECT_TRUE(status.ok) << status.error.Message();
  CKSData curve;
  EXPECT_TRUE(mapping.Apply(values, 1.0, curve));
  return curve;
}

// Each method is exact for the polynomials it can reproduce: Sprague (20 nm data from 300 to
// 800 nm, two measured bands on each side of every grid point) for degree 4; the local cubic
// (irregular data, or regular data too short for Sprague) for degree 3, degree 2 with three
// bands. Descending wavelengths give the same curve.
TEST(SpectralGridMapping, EachMethodReproducesItsPolynomials) {
  const auto cubic = [](double w) { const double x = (w - 550.0) / 100.0; return 40.0 + 7.0 * x - 3.0 * x * x + 2.0 * x * x * x; };
  const auto quartic = [](double w) { const double x = (w - 500.0) / 100.0; return 30.0 - 5.0 * x + x * x * x - 1.5 * x * x * x * x; };
  const auto quadratic = [](double w) { const double x = (w - 500.0) / 100.0; return 20.0 + x - 4.0 * x * x; };
  std::vector<double> down = Range(300.0, 20.0, 800.0);
  std::reverse(down.begin(), down.end());
  const struct {
    std::vector<double> wavelengths;
    std::function<double(double)> f;
    GridMappingMethod method;
  } kCases[] = {
      {Range(300.0, 20.0, 800.0), cubic, GridMappingMethod::kSprague},
      {Range(300.0, 20.0, 800.0), quartic, GridMappingMethod::kSprague},
      {down, quartic, GridMappingMethod::kSprague},
      {{360, 373, 395, 410, 452, 470, 505, 560, 600, 640, 690, 720, 750}, cubic, GridMappingMethod::kLagrange},
      {{750, 720, 690, 640, 600, 560, 505, 470, 452, 410, 395, 373, 360}, cubic, GridMappingMethod::kLagrange},
      {{360, 460, 560, 660, 760}, cubic, GridMappingMethod::kLagrange},
      {{360, 555, 750}, quadratic, GridMappingMethod::kLagrange},
  };
  for (const auto& c : kCases) {
    SpectralGridMapping mapping;
    const CKSData curve = Map(c.wavelengths, Sampled(c.wavelengths, c.f), &mapping);
    EXPECT_EQ(mapping.Method(), c.method) << c.wavelengths.front();
    EXPECT_TRUE(mapping.ExtrapolatedWavelengths().empty());
    for (std::size_t i = 0; i < kSpectrumPoints; ++i) {
      EXPECT_NEAR(curve[i], c.f(GridNm(i)), test::kIndependent * std::fabs(c.f(GridNm(i)))) << GridNm(i);
    }
  }
}

// In the first and last intervals the CIE 167 boundary estimates stand in for the missing
// neighbours. Expected values: 6 bands at 400..500 nm (20 nm), r_k = k^2, evaluated with exact
// fractions from the CIE 167:2005 coefficients (interior and /209 boundary rows):
// 410 nm = 103/304, 430 nm = 2709/1216, 450 nm = 25/4 (all neighbours measured: exact),
// 470 nm = 14869/1216, 490 nm = 6183/304.
TEST(SpectralGridMapping, SpragueBoundaryEstimatesMatchExactFractions) {
  const std::vector<double> wavelengths = Range(400.0, 20.0, 500.0);
  const std::vector<double> values = {0, 1, 4, 9, 16, 25};
  const CKSData curve = Map(wavelengths, values);
  for (const auto& [nm, expected] : {std::pair(410.0, 103.0 / 304.0), std::pair(430.0, 2709.0 / 1216.0), std::pair(450.0, 25.0 / 4.0),
                                      std::pair(470.0, 14869.0 / 1216.0), std::pair(490.0, 6183.0 / 304.0)}) {
    EXPECT_NEAR(curve[static_cast<std::size_t>((nm - 360.0) / 10.0)], expected, test::kExactFormula * expected) << nm;
  }
  // Straight lines survive the boundary estimates everywhere.
  const auto line = [](double w) { return 3.0 + 0.25 * w; };
  const CKSData straight = Map(wavelengths, Sampled(wavelengths, line));
  for (std::size_t i = 4; i <= 14; ++i) EXPECT_NEAR(straight[i], line(GridNm(i)), test::kRoundTrip * line(GridNm(i)));
}

// Extrapolation repeats the end values, and a band exactly at a grid end is not extrapolated.
TEST(SpectralGridMapping, ExtrapolationRepeatsTheNearestMeasuredValue) {
  const std::tuple<double, double, std::vector<int>> kCases[] = {
      {400, 700, {360, 370, 380, 390, 710, 720, 730, 740, 750}}, {360, 750, {}}, {370, 740, {360, 750}}, {350, 760, {}}};
  for (const auto& [first, last, extrapolated] : kCases) {
    const std::vector<double> wavelengths = Range(first, 10.0, last);
    SpectralGridMapping mapping;
    const CKSData curve = Map(wavelengths, Sampled(wavelengths, [](double w) { return w / 10.0; }), &mapping);
    EXPECT_EQ(mapping.ExtrapolatedWavelengths(), extrapolated) << first << "-" << last;
    for (std::size_t i = 0; i < kSpectrumPoints; ++i) {
      const double nm = GridNm(i);
      EXPECT_DOUBLE_EQ(curve[i], std::clamp(nm, first, last) / 10.0) << nm;
      EXPECT_EQ(mapping.IsExtrapolated(i), nm < first || nm > last) << nm;
    }
  }
}

TEST(SpectralGridMapping, RefusesWavelengthSetsThatCannotBeMapped) {
  for (const auto& row : test::LoadReferenceTable("reference/io_grid_refusals.csv")) {
    std::vector<double> wavelengths;
    std::stringstream in(row.Text("wavelengths"));
    for (std::string nm; std::getline(in, nm, '|');) wavelengths.push_back(std::stod(nm));
    SpectralGridMapping mapping;
    EXPECT_EQ(mapping.Build(wavelengths).error.text, row.Text("message")) << row.Where();
    CKSData curve;
    EXPECT_FALSE(mapping.IsValid() || mapping.Apply(wavelengths, 1.0, curve)) << row.Where();
  }
  // Touching the grid at one end is enough to map; an error names the file and the header line.
  SpectralGridMapping touching;
  EXPECT_TRUE(touching.Build(std::vector<double>{750, 760, 770}).ok);
  EXPECT_EQ(touching.ExtrapolatedWavelengths().size(), 39u);
  MeasurementFile file;
  ASSERT_TRUE(ParseCsvSpectra("# two bands only\nname,400,410\na,0.1,0.2\n", "two.csv", {}, file).ok);
  std::vector<MappedSample> mapped;
  EXPECT_EQ(MapMeasurementFile(file, mapped).error.Message(), "two.csv:2: only 2 spectral bands; at least 3 are needed");
}

// A missing input value makes exactly the grid points computed from it missing. 5 nm data:
// 400 nm feeds only the 400 nm point, 405 nm none. 20 nm data: Sprague on [x_i, x_i+1] draws
// on x_i-2 ... x_i+3, so 400 nm feeds the points between 340 and 460 nm that were not measured;
// 470 nm (interval 460-480, bands 420-520) does not need it.
TEST(SpectralGridMapping, MissingValuesReachOnlyThePointsThatUseThem) {
  const struct {
    std::vector<double> wavelengths, missing, reached;
  } kCases[] = {
      {Range(380.0, 5.0, 780.0), {400, 405}, {400}},
      {Range(300.0, 20.0, 800.0), {400}, {370, 390, 400, 410, 430, 450}},
      {Range(300.0, 20.0, 800.0), {300}, {}},  // the first band feeds no grid point
  };
  for (const auto& c : kCases) {
    const auto in = [](const std::vector<double>& set, double nm) { return std::count(set.begin(), set.end(), nm) > 0; };
    const CKSData curve = Map(c.wavelengths, Sampled(c.wavelengths, [&](double w) { return in(c.missing, w) ? kMissing : 40.0; }));
    for (std::size_t i = 0; i < kSpectrumPoints; ++i) {
      EXPECT_NEAR(IsMissing(curve[i]) ? -1.0 : curve[i], in(c.reached, GridNm(i)) ? -1.0 : 40.0, test::kExactFormula * 40.0) << GridNm(i);
    }
  }
}

}  // namespace
}  // namespace velquor
