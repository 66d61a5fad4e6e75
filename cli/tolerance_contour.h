// The tolerance shape of a difference system around a standard, for plots: the points of the
// CIELAB a*b* plane (at the standard's L*) where the system's total difference from the
// standard equals the tolerance. For ΔE*ab it is a circle; for CMC, CIE94 and CIEDE2000 an
// ellipse whose axes follow the system's weights at the standard's chroma and hue.
#pragma once

#include <array>
#include <vector>

#include "choices.h"
#include "velquor/data/value_vectors.h"

namespace velquor::cli {

// Number of directions the contour is traced in (every 5 degrees).
inline constexpr int kContourPoints = 72;

// (Δa*, Δb*) of the contour in kContourPoints directions, found by bisection on the distance
// in each direction (the total difference grows with it for every system near the standard).
// Empty when the standard's CIELAB is missing. A direction in which the tolerance is not
// reached within 200 units of a*b* ends at 200.
std::vector<std::array<double, 2>> ToleranceContour(const CValueVector5& standardLab,
                                                    const Condition& condition,
                                                    const DifferenceChoice& system,
                                                    double tolerance);

}  // namespace velquor::cli
