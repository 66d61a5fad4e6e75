// Saunderson's correction for the surface reflections of a sample (J. L. Saunderson, JOSA 32,
// 1942, 727): between the measured reflectance Rm and the internal (body) reflectance Ri that
// the Kubelka-Munk theory describes,
//   Rm = k1 + (1 - k1)(1 - k2) Ri / (1 - k2 Ri),   Ri = (Rm - k1) / (1 - k1 - k2 (1 - Rm)),
// with k1 the external (first-surface, Fresnel) reflection coefficient and k2 the internal
// one. Reflectances and coefficients are fractions (0..1). With k1 = k2 = 0 both are the
// identity.
#pragma once

namespace velquor {

// Ri from Rm: (R - k1) / max(1 - k1 - (1 - R) k2, 1e-5). The floor keeps the divisor positive
// for any coefficients; beyond it the result is the library's, not Saunderson's.
double SaundersonToInternal(double reflectance, double k1, double k2);

// Rm from Ri: (1 - k1)(1 - k2) R / max(1 - k2 R, 1e-5) + k1, with the same floor.
double SaundersonToMeasured(double reflectance, double k1, double k2);

}  // namespace velquor
