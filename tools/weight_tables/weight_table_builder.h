// Generator of the library's 34 tristimulus weighting tables (17 illuminants x CIE 1931 2° and
// CIE 1964 10° observers), 10 nm intervals over 360-750 nm.
//
// Method (ASTM E2022 practice, the one behind the ASTM E308 10 nm tables):
//   1. illuminant SPD on a 1 nm grid 360-830 nm: 1 nm data as tabulated, 5 nm data by Lagrange
//      interpolation (cubic inside, quadratic in the end intervals, 0 outside the data,
//      negative overshoot clipped to 0); lamps without CIE data are constructed;
//   2. 1 nm products S·x̄, S·ȳ, S·z̄;
//   3. each 1 nm product spread onto the 48 nodes 360, 370, ... 830 nm with the same Lagrange
//      coefficients (10 nm spacing), so every column keeps its 1 nm sum;
//   4. nodes 760-830 nm folded into 750 nm (ASTM E308 rule for a shortened range), all
//      columns scaled so that the Y weights sum to 100;
//   5. X and Z columns scaled to carry the library's white point exactly (Y untouched).
// Weights are stored unrounded and keep the small negative values the spreading produces next
// to emission lines and at the ends of the range.
#ifndef VELQUOR_TOOLS_WEIGHT_TABLES_WEIGHT_TABLE_BUILDER_H
#define VELQUOR_TOOLS_WEIGHT_TABLES_WEIGHT_TABLE_BUILDER_H

#include <array>
#include <cstddef>
#include <filesystem>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "spectral_csv.h"

namespace velquor::weight_tables {

inline constexpr int kGridFirstNm = 360;             // start of the 1 nm working grid
inline constexpr int kGridLastNm = 830;              // end of the 1 nm working grid
inline constexpr std::size_t kGridPoints = 471;      // 360..830 nm at 1 nm
inline constexpr std::size_t kNodeCount = 48;        // 10 nm nodes 360..830 nm
inline constexpr std::size_t kBandCount = 40;        // stored bands 360..750 nm
inline constexpr std::size_t kTableDoubles = 123;    // 3 x 40 weights + white point
inline constexpr std::size_t kTableBytes = 984;      // kTableDoubles x 8 bytes
inline constexpr std::size_t kIlluminantCount = 17;  // illuminant indices 0..16

using Grid1nm = std::array<double, kGridPoints>;
using Nodes10nm = std::array<double, kNodeCount>;
using Bands = std::array<double, kBandCount>;

// Lagrange coefficients for a point at fraction t (0 <= t < 1) of interval [x_k, x_(k+1)] of
// an n-point table (n >= 3): weights for nodes firstNode .. firstNode + count - 1.
// Inner intervals use the cubic through x_(k-1)..x_(k+2); the first interval the quadratic
// through x_0..x_2, the last (k = n-2) the quadratic through x_(n-3)..x_(n-1).
// Each set sums to 1.
struct Stencil {
  std::size_t firstNode = 0;
  std::size_t count = 0;
  std::array<double, 4> coefficients{};
};
Stencil LagrangeStencil(std::size_t k, std::size_t n, double t);

// Spectrum -> 1 nm grid 360..830 nm. 1 nm data must cover the grid and are used as they are;
// coarser data are Lagrange-interpolated, 0 outside their range, negative results set to 0.
Grid1nm ResampleTo1nm(const Spectrum& spectrum, const std::string& source);

// Spreads a 1 nm product onto the 10 nm nodes 360..830 nm (ASTM E2022 spreading).
Nodes10nm SpreadOnto10nmNodes(const Grid1nm& product);

// Adds nodes 760..830 nm into 750 nm and drops them (ASTM E308 shortened range).
Bands FoldInto750nm(const Nodes10nm& nodes);

// Planckian radiator, relative SPD normalised to 100 at 560 nm, c2 = 1.4388e-2 m·K.
Grid1nm PlanckianSpd(double temperatureK);

// Fluorescent lamp re-balanced by S(λ) = S_F(λ)·exp(a·u + b·u²), u = (λ - 560 nm)/100 nm.
Grid1nm RebalancedSpd(const Grid1nm& base, double a, double b);

enum class SpdKind { kTabulated, kPlanckian, kRebalanced };

// How an illuminant's SPD is obtained and which white point its tables carry.
struct IlluminantRecipe {
  int index;
  std::string_view code;
  std::string_view name;
  SpdKind kind;
  std::string_view file;          // CSV with the tabulated SPD (base lamp for kRebalanced)
  std::string_view column;        // its column
  double temperatureK;            // kPlanckian
  double a, b;                    // kRebalanced
  std::array<double, 2> white2;   // Xn, Zn carried by the 2° table (Yn = 100)
  std::array<double, 2> white10;  // Xn, Zn carried by the 10° table
};
const std::array<IlluminantRecipe, kIlluminantCount>& IlluminantRecipes();

// Colour-matching functions of one observer on the 1 nm grid.
struct Observer {
  int degrees;                 // 2 or 10
  std::array<Grid1nm, 3> cmf;  // x̄, ȳ, z̄
};

// Everything the generator reads from the CIE data directory.
struct CieData {
  std::array<Observer, 2> observers;       // 2°, 10°
  std::map<std::string, Grid1nm> spectra;  // "file:column" -> 1 nm SPD
};
CieData LoadCieData(const std::filesystem::path& cieDir);

struct WeightTable {
  int illuminant = 0;
  int observerDegrees = 2;
  std::array<Bands, 3> weights{};         // X, Y, Z
  std::array<double, 3> whitePoint{};     // Xn, 100, Zn as stored
  std::array<double, 3> unpinnedWhite{};  // 100·ΣX/ΣY, 100, 100·ΣZ/ΣY before pinning
  double xPinning = 1.0;                  // Xn / unpinned X
  double zPinning = 1.0;                  // Zn / unpinned Z
};

WeightTable BuildWeightTable(const CieData& data, const IlluminantRecipe& recipe,
                             int observerDegrees);

// All 34 tables: illuminant 0..16, 2° before 10°.
std::vector<WeightTable> BuildAllWeightTables(const CieData& data);

// "ILL%02d_%02d" from illuminant index and observer degrees.
std::string ResourceName(int illuminant, int observerDegrees);

// 123 little-endian IEEE-754 doubles (X, Y, Z weights, then Xn, Yn, Zn), whatever the host.
std::array<unsigned char, kTableBytes> SerializeWeightTable(const WeightTable& table);
std::array<double, kTableDoubles> DeserializeWeightTable(
    const std::array<unsigned char, kTableBytes>& bytes);

// Markdown description of the tables: source spectrum, construction, pinning factors.
std::string ProvenanceMarkdown(const std::vector<WeightTable>& tables);

}  // namespace velquor::weight_tables

#endif  // VELQUOR_TOOLS_WEIGHT_TABLES_WEIGHT_TABLE_BUILDER_H
