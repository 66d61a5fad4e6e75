// The settings record shared by every colour-strength method: the method, its wavelength and
// target, and the Saunderson surface correction. The host fills and keeps it.
#pragma once

#include <cstdint>
#include <iosfwd>

#include "velquor/frame/object.h"

namespace velquor {

// Strength method codes (CStrengthSettings::method).
enum class StrengthMethod : std::int32_t {
  kApparent = 0,                      // K/S (or absorbance) summed over 420-680 nm
  kChromaticMaxAbsorption = 1,        // at the standard's wavelength of strongest absorption
  kChromaticUserWavelength = 2,       // at the user wavelength
  kPseudoTristimulus = 3,             // K/S weighted by X + Y + Z weights
  kPseudoTristimulusX = 4,            // ... by the X weights
  kPseudoTristimulusY = 5,            // ... by the Y weights
  kPseudoTristimulusZ = 6,            // ... by the Z weights
  kTristimulus = 7,                   // corrected X + Y + Z, standard over batch
  kTristimulusX = 8,                  // corrected X
  kTristimulusY = 9,                  // corrected Y
  kTristimulusZ = 10,                 // corrected Z
  kWhenDeltaLZero = 11,               // "when dL=0": computed as apparent by CalcStrength
  kBaseApparent = 12,                 // apparent, standard and batch exchanged
  kBaseChromaticMaxAbsorption = 13,   // method 1, exchanged
  kBaseChromaticUserWavelength = 14,  // method 2, exchanged
};

inline constexpr int kStrengthMethodCount = 15;

constexpr std::int32_t StrengthMethodCode(StrengthMethod method) {
  return static_cast<std::int32_t>(method);
}

class CStrengthSettings : public CObject {
  VELQUOR_DECLARE_RUNTIME_CLASS(CStrengthSettings);

 public:
  CStrengthSettings() = default;
  CStrengthSettings(const CStrengthSettings&) = default;
  CStrengthSettings& operator=(const CStrengthSettings&) = default;

  // A StrengthMethod code, 0 to 14; other codes compute as apparent strength.
  std::int32_t method = 0;
  // Wavelength in nm used by methods 2 and 14.
  std::int32_t userWavelength = 500;
  // Strength in percent to which a batch is adjusted; shown in the label and the note.
  double targetPercent = 100.0;
  // Non-zero: reflectances pass through the Saunderson correction with k1, k2 before use.
  // Zero: every method uses k1 = k2 = 0, for which the correction is the identity.
  std::int32_t saundersonOn = 0;
  // Saunderson external (first-surface) reflection coefficient, a fraction.
  double k1 = 0.0;
  // Saunderson internal reflection coefficient, a fraction.
  double k2 = 0.0;

  // The k1 the methods use: k1 with the correction on, else 0 (likewise k2).
  double EffectiveK1() const { return saundersonOn != 0 ? k1 : 0.0; }
  double EffectiveK2() const { return saundersonOn != 0 ? k2 : 0.0; }

  // Archive form: the fields in declaration order as little-endian images (int32, int32,
  // double, int32, double, double).
  void Serialize(CArchive& archive) override;
  void Dump(std::ostream& out) const override;
};

// Equal when every field is equal (doubles compared with ==).
bool operator==(const CStrengthSettings& a, const CStrengthSettings& b);

}  // namespace velquor
