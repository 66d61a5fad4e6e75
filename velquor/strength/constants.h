// Rounded constants of the strength and search subsystem. They are used exactly as written,
// not as the exact values they approximate, so that stored results reproduce to the last digit.
#pragma once

#include "velquor/frame/constants.h"

namespace velquor {

// Outward step factor of the bracketing walk: the golden ratio (1 + sqrt 5) / 2, rounded.
inline constexpr double kGoldenStep = 1.618034;
// Golden-section division: the smaller fraction (3 - sqrt 5) / 2, rounded.
inline constexpr double kGoldenSmall = 0.38196601;
// Golden-section division: the larger fraction (sqrt 5 - 1) / 2, rounded.
inline constexpr double kGoldenLarge = 0.61803399;
// Smallest magnitude of the denominator of the bracketing walk's parabolic step.
inline constexpr double kMinParabolicDenominator = 1e-20;
// Distance below which the bracketing walk counts its outer point as sitting on the bound.
inline constexpr double kBoundReached = 1e-20;
// Most steps the bracketing walk takes before it gives up.
inline constexpr int kMaxBracketSteps = 60;
// Completed steps beyond which a bracket counts as slow (result 4 instead of 1).
inline constexpr int kSlowBracketSteps = 20;
// Absolute tolerance on x that the searches hand to the bracketed root finder.
inline constexpr double kSearchRootTolerance = 1e-10;
// Divergence watch: least growth of both slope magnitudes between two rounds.
inline constexpr double kDivergenceSlopeRise = 0.0001;
// Divergence watch: both end values must exceed this magnitude.
inline constexpr double kDivergenceValue = 100.0;
// First step of the final probe outward from the minimum; each retry multiplies it by 10.
inline constexpr double kFirstProbeStep = 1e-7;
// Rise over the minimum's value that a probe must exceed: the double epsilon.
inline constexpr double kProbeRise = kZeroEpsilon;
// Most interpolation or bisection steps of the bracketed root finder (beyond the two ends).
inline constexpr int kRootMaxIterations = 100;

// --- Colour strength ---

// Broad-band range of the spectral methods: indices 6 to 32 inclusive, 420 nm to 680 nm.
inline constexpr int kStrengthFirstIndex = 6;
inline constexpr int kStrengthLastIndex = 32;
// Smallest magnitude of a strength sum used as a divisor (and of the batch sum).
inline constexpr double kStrengthSumFloor = 1e-7;
// Upper limit of every strength result, in percent.
inline constexpr double kStrengthCap = 999.99;
// Lower limit of the spectral-sum strength, in percent; the ratio path has none.
inline constexpr double kStrengthFloor = 0.01;
// Upper limit of the quotient of the weighted and tristimulus paths (100 x 9.9999 = 999.99 %).
inline constexpr double kStrengthRatioCap = 9.9999;
// Smallest divisor of the Saunderson correction and of its inverse.
inline constexpr double kSaundersonDivisorFloor = 1e-5;
// Percent to fraction, and back.
inline constexpr double kStrengthPercentToFraction = 0.01;
inline constexpr double kStrengthFractionToPercent = 100.0;

}  // namespace velquor
