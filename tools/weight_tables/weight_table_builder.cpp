#include "weight_table_builder.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <stdexcept>

namespace velquor::weight_tables {
namespace {

static_assert(std::numeric_limits<double>::is_iec559, "tables store IEEE-754 doubles");
static_assert(kGridPoints == static_cast<std::size_t>(kGridLastNm - kGridFirstNm + 1));
static_assert(kTableBytes == kTableDoubles * 8);

constexpr int kNodeSpacingNm = 10;               // spacing of the spreading nodes
constexpr double kSecondRadiationC2 = 1.4388e7;  // c2 of Planck's law, nm·K (ITS-90 value)
constexpr double kRebalanceCentreNm = 560.0;     // u = (λ - 560 nm) / 100 nm
constexpr double kRebalanceScaleNm = 100.0;
constexpr double kYSum = 100.0;  // Y weights sum to 100

constexpr std::string_view kCmf2File = "cmf_cie1931_2deg_1nm.csv";
constexpr std::string_view kCmf10File = "cmf_cie1964_10deg_1nm.csv";
constexpr std::string_view kCmfColumns[3] = {"x_bar", "y_bar", "z_bar"};
constexpr std::string_view kAFile = "illum_A_1nm_formula.csv";
constexpr std::string_view kD65File = "illum_D65_1nm.csv";
constexpr std::string_view kCFile = "illum_C_5nm.csv";
constexpr std::string_view kDFile = "illum_D50_D55_D65_D75_5nm.csv";
constexpr std::string_view kFFile = "illum_F1_F12_5nm.csv";

using enum SpdKind;

// White points are the values the library's tables identify themselves by (the ASTM E308
// 10 nm table white points, three decimals); the constructed lamps' white points are the
// library's own. Constructions for lamps without CIE data:
//   U50 (Ultralume 5000): F10 re-balanced; U30 (Ultralume 3000): F12 re-balanced;
//   F4 (warm white fluorescent): F12 re-balanced, which matches the library's white point far
//   better than CIE F4 itself (X/Z corrections up to 3.6 %) or plain F12 (2.5 %);
//   H23 and HM (horizon lamps): Planckian radiators.
// clang-format off
constexpr std::array<IlluminantRecipe, kIlluminantCount> kRecipes = {{
    // index, code, name, kind, file, column, T [K], a, b, {Xn, Zn} 2°, {Xn, Zn} 10°
    {0, "A", "Tungsten", kTabulated, kAFile, "A", 0, 0, 0,
     {109.85, 35.585}, {111.144, 35.2}},
    {1, "C", "North Sky Daylight", kTabulated, kCFile, "C", 0, 0, 0,
     {98.074, 118.232}, {97.285, 116.145}},
    {2, "D65", "Daylight 6500 K", kTabulated, kD65File, "D65", 0, 0, 0,
     {95.047, 108.883}, {94.811, 107.304}},
    {3, "CWF", "Cool White Fluorescent (F2)", kTabulated, kFFile, "F2", 0, 0, 0,
     {99.186, 67.393}, {103.279, 69.027}},
    {4, "T84", "TL84 (F11)", kTabulated, kFFile, "F11", 0, 0, 0,
     {100.962, 64.35}, {103.863, 65.607}},
    {5, "D50", "Daylight 5000 K", kTabulated, kDFile, "D50", 0, 0, 0,
     {96.422, 82.521}, {96.72, 81.427}},
    {6, "D55", "Daylight 5500 K", kTabulated, kDFile, "D55", 0, 0, 0,
     {95.682, 92.149}, {95.799, 90.926}},
    {7, "D75", "Daylight 7500 K", kTabulated, kDFile, "D75", 0, 0, 0,
     {94.972, 122.638}, {94.416, 120.641}},
    {8, "U50", "Ultralume 5000", kRebalanced, kFFile, "F10", 0, -0.013, -0.068,
     {94.629, 77.449}, {97.71, 78.656}},
    {9, "U30", "Ultralume 3000", kRebalanced, kFFile, "F12", 0, -0.102, -0.135,
     {104.337, 38.2}, {107.824, 39.015}},
    {10, "F6", "Fluorescent 4150 K (F6)", kTabulated, kFFile, "F6", 0, 0, 0,
     {97.343, 60.262}, {102.18, 62.109}},
    {11, "F7", "DLF Broad Band (F7)", kTabulated, kFFile, "F7", 0, 0, 0,
     {95.041, 108.747}, {95.792, 107.686}},
    {12, "F8", "Fluorescent 5000 K (F8)", kTabulated, kFFile, "F8", 0, 0, 0,
     {96.428, 82.42}, {97.118, 81.186}},
    {13, "F10", "Fluorescent 5000 K (F10)", kTabulated, kFFile, "F10", 0, 0, 0,
     {96.385, 82.354}, {98.956, 83.286}},
    {14, "H23", "Horizon 2300 K", kPlanckian, "", "", 2360.0, 0, 0,
     {117.789, 22.889}, {119.234, 22.461}},
    {15, "HM", "Horizon", kPlanckian, "", "", 2297.0, 0, 0,
     {119.475, 21.358}, {120.841, 20.905}},
    {16, "F4", "Warm White Fluorescent", kRebalanced, kFFile, "F12", 0, -0.002, 0.013,
     {109.173, 40.275}, {112.131, 40.759}},
}};
// clang-format on

std::string SpectrumKey(std::string_view file, std::string_view column) {
  return std::string(file) + ":" + std::string(column);
}

double Sum(const Bands& bands) {
  double sum = 0.0;
  for (double w : bands) sum += w;
  return sum;
}

std::string Format(const char* format, double value) {
  char buffer[64];
  std::snprintf(buffer, sizeof buffer, format, value);
  return buffer;
}

}  // namespace

Stencil LagrangeStencil(std::size_t k, std::size_t n, double t) {
  if (n < 3 || k > n - 2) throw std::invalid_argument("LagrangeStencil: interval out of range");
  if (k == 0) {  // quadratic through x_0, x_1, x_2
    return {0, 3, {(t - 1) * (t - 2) / 2, -t * (t - 2), t * (t - 1) / 2, 0.0}};
  }
  if (k == n - 2) {  // quadratic through x_(n-3), x_(n-2), x_(n-1)
    return {n - 3, 3, {t * (t - 1) / 2, 1 - t * t, t * (t + 1) / 2, 0.0}};
  }
  // cubic through x_(k-1) .. x_(k+2)
  return {k - 1,
          4,
          {-t * (t - 1) * (t - 2) / 6, (t + 1) * (t - 1) * (t - 2) / 2, -(t + 1) * t * (t - 2) / 2,
           (t + 1) * t * (t - 1) / 6}};
}

Grid1nm ResampleTo1nm(const Spectrum& spectrum, const std::string& source) {
  Grid1nm grid{};
  const std::size_t n = spectrum.values.size();
  const int h = spectrum.stepNm;
  if (h <= 0) throw CieDataError(source + ": wavelength step must be positive");
  if (h == 1) {
    if (spectrum.firstNm > kGridFirstNm || spectrum.LastNm() < kGridLastNm) {
      throw CieDataError(source + ": 1 nm data must cover 360-830 nm, found " +
                         std::to_string(spectrum.firstNm) + "-" +
                         std::to_string(spectrum.LastNm()) + " nm");
    }
    for (std::size_t i = 0; i < kGridPoints; ++i) {
      grid[i] = spectrum.values[i + static_cast<std::size_t>(kGridFirstNm - spectrum.firstNm)];
    }
    return grid;
  }
  if (n < 3) throw CieDataError(source + ": interpolation needs at least three points");
  for (std::size_t i = 0; i < kGridPoints; ++i) {
    const int nm = kGridFirstNm + static_cast<int>(i);
    if (nm < spectrum.firstNm || nm > spectrum.LastNm()) continue;  // 0 outside the data
    const int offset = nm - spectrum.firstNm;
    const auto k = static_cast<std::size_t>(offset / h);
    const int r = offset % h;
    if (r == 0) {
      grid[i] = spectrum.values[k];
      continue;
    }
    const Stencil s = LagrangeStencil(k, n, static_cast<double>(r) / h);
    double value = 0.0;
    for (std::size_t c = 0; c < s.count; ++c)
      value += s.coefficients[c] * spectrum.values[s.firstNode + c];
    grid[i] = value < 0.0 ? 0.0 : value;  // overshoot next to strong lines is not real power
  }
  return grid;
}

Nodes10nm SpreadOnto10nmNodes(const Grid1nm& product) {
  Nodes10nm nodes{};
  for (std::size_t j = 0; j < kGridPoints; ++j) {
    const std::size_t m = j / kNodeSpacingNm;
    const std::size_t r = j % kNodeSpacingNm;
    if (r == 0) {
      nodes[m] += product[j];
      continue;
    }
    const Stencil s = LagrangeStencil(m, kNodeCount, static_cast<double>(r) / kNodeSpacingNm);
    for (std::size_t c = 0; c < s.count; ++c)
      nodes[s.firstNode + c] += s.coefficients[c] * product[j];
  }
  return nodes;
}

Bands FoldInto750nm(const Nodes10nm& nodes) {
  Bands bands{};
  for (std::size_t i = 0; i < kBandCount; ++i) bands[i] = nodes[i];
  for (std::size_t i = kBandCount; i < kNodeCount; ++i) bands[kBandCount - 1] += nodes[i];
  return bands;
}

Grid1nm PlanckianSpd(double temperatureK) {
  // Planck's law up to a constant: S(λ) ∝ λ^-5 / (exp(c2/(λT)) - 1); scaled to 100 at 560 nm
  // like CIE illuminant A.
  Grid1nm grid{};
  const double c = kSecondRadiationC2 / temperatureK;
  const double at560 = std::expm1(c / 560.0);
  for (std::size_t i = 0; i < kGridPoints; ++i) {
    const double nm = kGridFirstNm + static_cast<double>(i);
    const double ratio = 560.0 / nm;
    grid[i] = 100.0 * ratio * ratio * ratio * ratio * ratio * at560 / std::expm1(c / nm);
  }
  return grid;
}

Grid1nm RebalancedSpd(const Grid1nm& base, double a, double b) {
  Grid1nm grid{};
  for (std::size_t i = 0; i < kGridPoints; ++i) {
    const double u =
        (kGridFirstNm + static_cast<double>(i) - kRebalanceCentreNm) / kRebalanceScaleNm;
    grid[i] = base[i] * std::exp(a * u + b * u * u);
  }
  return grid;
}

const std::array<IlluminantRecipe, kIlluminantCount>& IlluminantRecipes() {
  return kRecipes;
}

CieData LoadCieData(const std::filesystem::path& cieDir) {
  CieData data;
  std::map<std::string, SpectralCsv, std::less<>> files;
  auto file = [&](std::string_view name) -> const SpectralCsv& {
    auto it = files.find(name);
    if (it == files.end())
      it = files.emplace(std::string(name), ReadSpectralCsv(cieDir / name)).first;
    return it->second;
  };
  const std::pair<int, std::string_view> cmfFiles[2] = {{2, kCmf2File}, {10, kCmf10File}};
  for (std::size_t o = 0; o < 2; ++o) {
    const SpectralCsv& csv = file(cmfFiles[o].second);
    if (csv.stepNm != 1)
      throw CieDataError(csv.source + ": colour-matching functions must be at 1 nm");
    data.observers[o].degrees = cmfFiles[o].first;
    for (std::size_t c = 0; c < 3; ++c) {
      data.observers[o].cmf[c] = ResampleTo1nm(csv.Column(kCmfColumns[c]), csv.source);
    }
  }
  for (const IlluminantRecipe& recipe : kRecipes) {
    if (recipe.kind == kPlanckian) continue;
    const SpectralCsv& csv = file(recipe.file);
    data.spectra[SpectrumKey(recipe.file, recipe.column)] =
        ResampleTo1nm(csv.Column(recipe.column), csv.source);
  }
  return data;
}

WeightTable BuildWeightTable(const CieData& data, const IlluminantRecipe& recipe,
                             int observerDegrees) {
  if (observerDegrees != 2 && observerDegrees != 10) {
    throw std::invalid_argument("observer must be 2 or 10 degrees");
  }
  const Observer& observer = data.observers[observerDegrees == 2 ? 0 : 1];
  Grid1nm spd{};
  if (recipe.kind == kPlanckian) {
    spd = PlanckianSpd(recipe.temperatureK);
  } else {
    const auto it = data.spectra.find(SpectrumKey(recipe.file, recipe.column));
    if (it == data.spectra.end())
      throw CieDataError("no SPD loaded for " + std::string(recipe.code));
    spd = recipe.kind == kRebalanced ? RebalancedSpd(it->second, recipe.a, recipe.b) : it->second;
  }

  WeightTable table;
  table.illuminant = recipe.index;
  table.observerDegrees = observerDegrees;
  for (std::size_t c = 0; c < 3; ++c) {
    Grid1nm product{};
    for (std::size_t i = 0; i < kGridPoints; ++i) product[i] = spd[i] * observer.cmf[c][i];
    table.weights[c] = FoldInto750nm(SpreadOnto10nmNodes(product));
  }

  const double k = kYSum / Sum(table.weights[1]);
  for (Bands& column : table.weights) {
    for (double& w : column) w *= k;
  }
  const std::array<double, 2>& white = observerDegrees == 2 ? recipe.white2 : recipe.white10;
  table.unpinnedWhite = {Sum(table.weights[0]), kYSum, Sum(table.weights[2])};
  table.xPinning = white[0] / table.unpinnedWhite[0];
  table.zPinning = white[1] / table.unpinnedWhite[2];
  for (double& w : table.weights[0]) w *= table.xPinning;
  for (double& w : table.weights[2]) w *= table.zPinning;
  table.whitePoint = {white[0], kYSum, white[1]};
  return table;
}

std::vector<WeightTable> BuildAllWeightTables(const CieData& data) {
  std::vector<WeightTable> tables;
  for (const IlluminantRecipe& recipe : kRecipes) {
    for (int degrees : {2, 10}) tables.push_back(BuildWeightTable(data, recipe, degrees));
  }
  return tables;
}

std::string ResourceName(int illuminant, int observerDegrees) {
  char name[16];
  std::snprintf(name, sizeof name, "ILL%02d_%02d", illuminant, observerDegrees);
  return name;
}

std::array<unsigned char, kTableBytes> SerializeWeightTable(const WeightTable& table) {
  std::array<unsigned char, kTableBytes> bytes{};
  std::size_t pos = 0;
  auto put = [&](double value) {
    const auto bits = std::bit_cast<std::uint64_t>(value);
    for (int b = 0; b < 8; ++b) bytes[pos++] = static_cast<unsigned char>(bits >> (8 * b));
  };
  for (const Bands& column : table.weights) {
    for (double w : column) put(w);
  }
  for (double v : table.whitePoint) put(v);
  return bytes;
}

std::array<double, kTableDoubles> DeserializeWeightTable(
    const std::array<unsigned char, kTableBytes>& bytes) {
  std::array<double, kTableDoubles> values{};
  for (std::size_t i = 0; i < kTableDoubles; ++i) {
    std::uint64_t bits = 0;
    for (int b = 7; b >= 0; --b) bits = (bits << 8) | bytes[8 * i + static_cast<std::size_t>(b)];
    values[i] = std::bit_cast<double>(bits);
  }
  return values;
}

std::string ProvenanceMarkdown(const std::vector<WeightTable>& tables) {
  std::string md =
      "# Tristimulus weighting tables\n"
      "\n"
      "Generated by `velquor_make_weight_tables velquor/resources/cie velquor/resources/weights`\n"
      "(tools/weight_tables); do not edit by hand.\n"
      "\n"
      "Each file `ILLii_oo` (illuminant index ii, observer 02 = CIE 1931 2°, 10 = CIE 1964 10°) "
      "is\n"
      "984 bytes: 123 little-endian IEEE-754 doubles, the X, Y and Z weights at 360, 370, … 750 "
      "nm\n"
      "(40 each), then the white point Xn, Yn = 100, Zn.\n"
      "\n"
      "Method (ASTM E2022 practice, as behind the ASTM E308 10 nm tables): SPD on a 1 nm grid\n"
      "360–830 nm (1 nm data as tabulated; 5 nm data by Lagrange interpolation, cubic inside and\n"
      "quadratic in the end intervals, 0 outside the data, negative overshoot set to 0); 1 nm\n"
      "products with the CIE colour-matching functions; spreading onto 10 nm nodes 360–830 nm\n"
      "with the same Lagrange coefficients; nodes 760–830 nm added into 750 nm (ASTM E308);\n"
      "scaling to ΣY = 100; finally the X and Z columns are multiplied by the pinning factors\n"
      "below so that the table carries the library's white point exactly. Weights are unrounded.\n"
      "Re-balanced lamps: S(λ) = S_F(λ)·exp(a·u + b·u²), u = (λ − 560 nm)/100 nm. Planckian\n"
      "lamps: c2 = 1.4388×10⁻² m·K.\n"
      "\n"
      "| file | illuminant | observer | source spectrum | construction | unpinned Xn, Zn |"
      " Xn, Zn | X factor | Z factor |\n"
      "|---|---|---|---|---|---|---|---|---|\n";
  for (const WeightTable& t : tables) {
    const IlluminantRecipe& r = kRecipes.at(static_cast<std::size_t>(t.illuminant));
    std::string source;
    std::string construction;
    switch (r.kind) {
      case kTabulated:
        source = "`" + std::string(r.file) + "` " + std::string(r.column);
        construction = r.file.find("_1nm") != std::string_view::npos
                           ? "CIE SPD, 1 nm as tabulated"
                           : "CIE SPD, 5 nm → 1 nm Lagrange";
        break;
      case kRebalanced:
        source = "`" + std::string(r.file) + "` " + std::string(r.column);
        construction = std::string(r.column) + " re-balanced, a = " + Format("%g", r.a) +
                       ", b = " + Format("%g", r.b);
        break;
      case kPlanckian:
        source = "Planckian radiator";
        construction = "T = " + Format("%g", r.temperatureK) + " K";
        break;
    }
    md += "| " + ResourceName(t.illuminant, t.observerDegrees) + " | " + std::string(r.code) +
          " (" + std::string(r.name) + ")" + " | " + std::to_string(t.observerDegrees) + "° | " +
          source + " | " + construction + " | " + Format("%.4f", t.unpinnedWhite[0]) + ", " +
          Format("%.4f", t.unpinnedWhite[2]) + " | " + Format("%g", t.whitePoint[0]) + ", " +
          Format("%g", t.whitePoint[2]) + " | " + Format("%.6f", t.xPinning) + " | " +
          Format("%.6f", t.zPinning) + " |\n";
  }
  return md;
}

}  // namespace velquor::weight_tables
