// Constants of the dominant wavelength and excitation purity (CIE 15:2004, 9.1). They are used
// exactly as written so that stored index values reproduce to the last digit.
#pragma once

#include <cstddef>

namespace velquor {

// Points per spectrum-locus table: 400, 410, ... 700 nm and the closing repeat of 400 nm.
inline constexpr std::size_t kLocusPointCount = 32;
// Index of the 700 nm point, the red end of the purple line.
inline constexpr std::size_t kLocusLastSpectral = 30;
// Unit of the stored locus coordinates (integers in ten-thousandths of x and y).
inline constexpr double kLocusUnit = 0.0001;
// Wavelength of locus point 0, in nm.
inline constexpr double kLocusFirstWavelength = 400.0;
// Wavelength step between locus points, in nm.
inline constexpr double kLocusStep = 10.0;
// Half-width, in points, of the spline window around the crossing segment.
inline constexpr int kLocusSplineHalfWidth = 5;
// Last locus point the spline window may use (690 nm; 700 nm is never a knot).
inline constexpr int kLocusSplineLastPoint = 29;
// Far bound of FarPointOnRay: a coordinate well outside the chromaticity diagram.
inline constexpr double kFarCoordinate = 10000.0;
// Near bound of FarPointOnRay: the axis itself; all chromaticities are positive.
inline constexpr double kNearCoordinate = 0.0;
// Purity is a percentage.
inline constexpr double kPurityPercent = 100.0;

}  // namespace velquor
