// Colour strength of a batch against its standard, in percent (100 = as strong as the
// standard), by one of the fifteen methods of CStrengthSettings.
#pragma once

#include "velquor/data/ks_data.h"
#include "velquor/data/value_vectors.h"
#include "velquor/strength/strength_settings.h"

namespace velquor {

// The strength of `batchSpectrum` / `batchColour` against `standardSpectrum` /
// `standardColour` by settings.method. Spectra are reflectance curves in percent; colours are
// X, Y, Z on the 0-100 scale; `illuminant` and `observer` select the weighting table of the
// pseudo-tristimulus methods. `useAbsorbance` takes the optical density in place of K/S on
// the spectral methods. k1, k2 are the settings' Saunderson coefficients when the correction
// is on, else 0 (see strength_paths.h for the paths, their floors and caps).
//   0, 11, and any code outside 1..14: StrengthFromSpectra over 420-680 nm (indices 6..32);
//          method 11 ("when dL=0") thus returns the apparent strength.
//   1, 13: at index FindMaxAbsorptionIndex(standardSpectrum, 6, 32) (taken from the
//          standard for both), which is stored in `wavelength`.
//   2, 14: at index IndexFromWavelength(settings.userWavelength), stored in `wavelength`.
//   3..6:  StrengthWeighted over 6..32, column 3 (X+Y+Z), 0, 1, 2.
//   7..10: StrengthTristimulus, column 3 (X+Y+Z), 0, 1, 2.
//   12, 13, 14: as 0, 1, 2 with standard and batch exchanged, which gives the reciprocal
//          reading: for white and base components a higher K/S means a weaker product.
// Last of all, for every method, `wavelength` is replaced by WavelengthFromIndex(wavelength).
// For methods other than 1, 2, 13 and 14 this converts whatever the caller passed in (an index
// of 14 comes back as 500); the unconditional conversion is the library's behaviour, and
// callers that want the wavelength used read it after those four methods only.
// Nothing throws; what cannot be computed is the missing value.
double CalcStrength(const CStrengthSettings& settings, const CKSData& standardSpectrum,
                    const CKSData& batchSpectrum, const CValueVector3& standardColour,
                    const CValueVector3& batchColour, int illuminant, int observer,
                    bool useAbsorbance, int& wavelength);

}  // namespace velquor
