// Bringing measured spectra onto the library's grid: 40 points, 360-750 nm in 10 nm steps,
// reflectance in percent (CKSData).
//
// How each grid wavelength gets its value:
//  - a grid wavelength that was measured takes the measured value (5 nm or 1 nm data is
//    sampled at the 10 nm points; no smoothing or bandpass correction is applied);
//  - a grid wavelength inside the measured range that was not measured is interpolated:
//      * regular data (constant interval) with at least 6 bands: Sprague's fifth-degree
//        osculatory interpolation with the coefficients of CIE 167:2005 (Sprague 1880). The
//        interval around the wavelength and its two neighbours on each side are used; at the
//        ends of the range the two missing neighbours are extrapolated with the CIE 167
//        boundary coefficients (the /209 formulas). Where two measured bands lie on each
//        side of the interval it reproduces polynomials of degree up to 4 exactly (its node
//        derivatives come from five-point differences; a quintic is not reproduced); in the
//        two intervals at each end, which lean on the boundary estimates, only straight
//        lines are;
//      * irregular data, or regular data with only 3 to 5 bands: a cubic through the four
//        nearest measured bands (Lagrange form; a quadratic when only 3 bands exist), exact
//        for polynomials up to degree 3;
//  - a grid wavelength outside the measured range is extrapolated by repeating the nearest
//    measured value (the CIE 15:2004 practice), and is reported in the extrapolated set.
// Wavelengths must increase (or decrease) strictly; fewer than 3 bands, a repeated
// wavelength, a change of direction or a measured range that does not reach the grid is
// refused with a message. A missing input value makes every grid point computed from it
// missing (kMissing); the other points are still computed.
//
// A mapping is built once per set of wavelengths and applied to every sample without
// allocating: each grid point is a fixed weighted sum of at most six measured values (the
// boundary estimates draw on bands the Sprague window holds anyway).
#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <string>
#include <vector>

#include "velquor/data/ks_data.h"
#include "velquor/io/measurement_file.h"

namespace velquor {

enum class GridMappingMethod {
  kSampled,   // every grid point inside the measured range was measured
  kSprague,   // some points interpolated by Sprague (CIE 167:2005)
  kLagrange,  // some points interpolated by a local cubic
};

class SpectralGridMapping {
 public:
  // Room for the measured values one grid point draws on (six at most; kept with a margin).
  static constexpr std::size_t kMaxTerms = 12;

  // Builds the mapping for spectra measured at `wavelengths` (nm, in column order). On
  // failure the mapping is unusable and the status says why (no file or line: the caller
  // adds them, see MapMeasurementFile).
  MeasurementStatus Build(std::span<const double> wavelengths) noexcept;

  bool IsValid() const { return valid_; }
  GridMappingMethod Method() const { return method_; }

  // Grid point i was extrapolated (it lies outside the measured range).
  bool IsExtrapolated(std::size_t point) const { return extrapolated_[point]; }
  // The extrapolated grid wavelengths in nm, ascending.
  std::vector<int> ExtrapolatedWavelengths() const;
  // E.g. "Sprague interpolation (CIE 167:2005); extrapolated by repeating the nearest
  // measured value: 360, 370 nm".
  std::string Describe() const;

  // Maps one spectrum: `values` in the order of the wavelengths given to Build, multiplied by
  // `toPercent` (100 for fractions, 1 for percent). Returns false (and leaves `out`
  // untouched) when the mapping is not valid or the value count differs.
  bool Apply(std::span<const double> values, double toPercent, CKSData& out) const noexcept;

 private:
  struct Term {
    std::size_t input = 0;
    double weight = 0.0;
  };
  struct Point {
    std::array<Term, kMaxTerms> terms{};
    std::size_t count = 0;
  };

  bool valid_ = false;
  GridMappingMethod method_ = GridMappingMethod::kSampled;
  std::size_t inputCount_ = 0;
  std::array<Point, kSpectrumPoints> points_{};
  std::array<bool, kSpectrumPoints> extrapolated_{};
};

// A sample of a file on the library's grid.
struct MappedSample {
  CKSData curve;               // percent; kMissing where a needed value was missing
  bool hasMissing = false;     // some grid point is missing
};

// Maps every sample of `file` (read by cgats_reader.h or csv_spectra.h) onto the grid, with
// the file's scale. On a refused wavelength set the error names the file and the line of its
// column names. `mapping` (optional) receives the mapping, for its Describe().
MeasurementStatus MapMeasurementFile(const MeasurementFile& file, std::vector<MappedSample>& out,
                                     SpectralGridMapping* mapping = nullptr) noexcept;

}  // namespace velquor
