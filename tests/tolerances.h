// Test tolerances, named by what they allow. Every comparison of computed numbers in the test
// suites uses one of these; a new kind of comparison adds a name here with its reason.
#pragma once

namespace velquor::test {

// The same formula evaluated in another order (or through another public path): a few ulp of
// values of order 1..100.
inline constexpr double kExactFormula = 1e-12;

// A value against an independent evaluation of the same standard (hand calculation at 40 digits,
// another library such as LittleCMS): tight enough that a wrong constant in the fourth
// significant digit fails. Relative unless the test says otherwise.
inline constexpr double kIndependent = 1e-9;

// Round trips through a forward and an inverse conversion (Luv, Hunter Lab, DIN99, chromaticity).
inline constexpr double kRoundTrip = 1e-10;

// Values near zero compared absolutely, where a relative tolerance means nothing.
inline constexpr double kNearZero = 1e-12;

// The library's rounded constants (0.008856, 7.787, 903.29) against the exact CIE 15 fractions:
// the largest gap they make in L*, a*, b* on the Y = 100 scale.
inline constexpr double kRoundedCieConstants = 2e-4;

// A published data set printed to four decimals (Sharma-Wu-Dalal CIEDE2000 pairs and the like):
// half a unit in the last printed place.
inline constexpr double kFourDecimals = 5e-5;

// A published data set printed to three decimals.
inline constexpr double kThreeDecimals = 5e-4;

// Tables built from measured data and interpolation (weighting tables against the CIE 10 nm
// reference, spectra mapped onto the grid from another grid).
inline constexpr double kInterpolated = 1e-6;

// A batch path against the per-sample function it stands for (the vector kernels, the thread
// split): the same formula with the same operations, allowed a few ulp for a target that fuses
// or reorders them; near zero the absolute kNearZero applies.
inline constexpr double kBatchAgreement = 1e-13;

// A root or minimum located by a search to its stated tolerance.
inline constexpr double kSearch = 1e-9;

}  // namespace velquor::test
