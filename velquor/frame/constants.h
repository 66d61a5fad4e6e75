// Rounded constants of the frame. They are used exactly as written, not as the exact values
// they approximate, so that stored results reproduce to the last digit.
#pragma once

namespace velquor {

// Marker for a point, coordinate or result that is absent or could not be computed.
inline constexpr double kMissing = 1e-05;
// Open band around kMissing that counts as missing (both bounds exclusive).
inline constexpr double kMissingLow = 9.99e-06;
inline constexpr double kMissingHigh = 1.001e-05;
// Machine epsilon of IEEE double; the library's test for zero.
inline constexpr double kZeroEpsilon = 2.220446049250313e-16;
// Degrees to radians, rounded (pi / 180).
inline constexpr double kDegToRad = 0.017453292519944444;
// Radians to degrees, rounded (180 / pi).
inline constexpr double kRadToDeg = 57.29577951307855;
// One full turn in radians, rounded to 11 decimals; AngleSpan adds it once.
inline constexpr double kTwoPi = 6.28318530718;

}  // namespace velquor
