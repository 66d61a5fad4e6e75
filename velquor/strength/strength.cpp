#include "velquor/strength/strength.h"

#include "velquor/strength/constants.h"
#include "velquor/strength/spectral_index.h"
#include "velquor/strength/strength_paths.h"

namespace velquor {

double CalcStrength(const CStrengthSettings& settings, const CKSData& standardSpectrum,
                    const CKSData& batchSpectrum, const CValueVector3& standardColour,
                    const CValueVector3& batchColour, int illuminant, int observer,
                    bool useAbsorbance, int& wavelength) {
  const double k1 = settings.EffectiveK1();
  const double k2 = settings.EffectiveK2();
  double strength = kMissing;
  switch (static_cast<StrengthMethod>(settings.method)) {
    case StrengthMethod::kChromaticMaxAbsorption:
      wavelength =
          FindMaxAbsorptionIndex(standardSpectrum, kStrengthFirstIndex, kStrengthLastIndex);
      strength = StrengthFromSpectra(standardSpectrum, batchSpectrum, useAbsorbance, wavelength,
                                     wavelength, k1, k2);
      break;
    case StrengthMethod::kBaseChromaticMaxAbsorption:
      wavelength =
          FindMaxAbsorptionIndex(standardSpectrum, kStrengthFirstIndex, kStrengthLastIndex);
      strength = StrengthFromSpectra(batchSpectrum, standardSpectrum, useAbsorbance, wavelength,
                                     wavelength, k1, k2);
      break;
    case StrengthMethod::kChromaticUserWavelength:
      wavelength = IndexFromWavelength(settings.userWavelength);
      strength = StrengthFromSpectra(standardSpectrum, batchSpectrum, useAbsorbance, wavelength,
                                     wavelength, k1, k2);
      break;
    case StrengthMethod::kBaseChromaticUserWavelength:
      wavelength = IndexFromWavelength(settings.userWavelength);
      strength = StrengthFromSpectra(batchSpectrum, standardSpectrum, useAbsorbance, wavelength,
                                     wavelength, k1, k2);
      break;
    case StrengthMethod::kPseudoTristimulus:
    case StrengthMethod::kPseudoTristimulusX:
    case StrengthMethod::kPseudoTristimulusY:
    case StrengthMethod::kPseudoTristimulusZ: {
      const int column =
          settings.method == StrengthMethodCode(StrengthMethod::kPseudoTristimulus)
              ? kStrengthColumnSum
              : settings.method - StrengthMethodCode(StrengthMethod::kPseudoTristimulusX);
      strength = StrengthWeighted(illuminant, observer, column, standardSpectrum, batchSpectrum,
                                  useAbsorbance, kStrengthFirstIndex, kStrengthLastIndex, k1, k2);
      break;
    }
    case StrengthMethod::kTristimulus:
    case StrengthMethod::kTristimulusX:
    case StrengthMethod::kTristimulusY:
    case StrengthMethod::kTristimulusZ: {
      const int column = settings.method == StrengthMethodCode(StrengthMethod::kTristimulus)
                             ? kStrengthColumnSum
                             : settings.method - StrengthMethodCode(StrengthMethod::kTristimulusX);
      strength = StrengthTristimulus(column, standardColour, batchColour, k1, k2);
      break;
    }
    case StrengthMethod::kBaseApparent:
      strength = StrengthFromSpectra(batchSpectrum, standardSpectrum, useAbsorbance,
                                     kStrengthFirstIndex, kStrengthLastIndex, k1, k2);
      break;
    case StrengthMethod::kApparent:
    case StrengthMethod::kWhenDeltaLZero:
    default:
      strength = StrengthFromSpectra(standardSpectrum, batchSpectrum, useAbsorbance,
                                     kStrengthFirstIndex, kStrengthLastIndex, k1, k2);
      break;
  }
  wavelength = WavelengthFromIndex(wavelength);
  return strength;
}

}  // namespace velquor
