// The white-point chromaticities of ASTM E313-10, from which its whiteness and tint are
// computed instead of from the illuminant's computed white.
#pragma once

namespace velquor {

// Fills xn, yn with the ASTM E313-10 white point of illuminant C (1), D65 (2) or D50 (5) for
// the observer (0 = 2 degree, any other code = 10 degree) and returns 1:
//   C    2: 0.3101, 0.3161   10: 0.3104, 0.3191
//   D65  2: 0.3127, 0.3290   10: 0.3138, 0.3310
//   D50  2: 0.3457, 0.3585   10: 0.3477, 0.3595
// Returns 0 for every other illuminant and leaves xn, yn unchanged.
int E313WhitePoint(int illuminant, int observer, double& xn, double& yn);

}  // namespace velquor
