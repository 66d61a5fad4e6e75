// Catalogue of angle codes. Every measurement carries a one-byte angle code, 0 to 45, naming
// the geometry (d/8, 45/0, ...), multi-angle viewing angle (15°, 45°, 110°, ...), specular mode
// (SCI, SCE and their variants), aperture position or background under which it was taken.
// Each code has a display name (string 432 + code) and a sort key in tenths of a degree: the
// aspecular angle of multi-angle instruments. Codes that are not viewing angles share the key
// 450, so they sort like 45°; the only negative key is "-15°" (code 41), which sorts first.
#pragma once

#include <cstdint>
#include <string>

namespace velquor {

// Number of catalogued codes: 0 to 45.
inline constexpr unsigned kAngleCodeCount = 46;
// String identifier of the name of code 0; code c is named by string 432 + c.
inline constexpr std::uint32_t kAngleNameBase = 432;
// Sort key of every code that is not a multi-angle viewing angle (and of uncatalogued codes).
inline constexpr std::int16_t kNonAngleKey = 450;
// Degrees per unit of sort key.
inline constexpr double kAngleKeyToDegrees = 0.1;

// Codes the library refers to by name.
inline constexpr std::uint8_t kAngleD8 = 0;
inline constexpr std::uint8_t kAngle45_0 = 1;
inline constexpr std::uint8_t kAngleD0 = 2;
inline constexpr std::uint8_t kAngle0_45 = 3;
inline constexpr std::uint8_t kAngle45Deg = 8;
inline constexpr std::uint8_t kAngleSCI = 12;
inline constexpr std::uint8_t kAngleSCE = 13;
inline constexpr std::uint8_t kAngleSCI100 = 14;
inline constexpr std::uint8_t kAngleSCE100 = 15;
inline constexpr std::uint8_t kAngleSCI0 = 16;
inline constexpr std::uint8_t kAngleSCE0 = 17;
inline constexpr std::uint8_t kAngleSCIAdj = 18;
inline constexpr std::uint8_t kAngleSCEAdj = 19;

// Display name of `code`: string 432 + code (a translated table may replace it). Codes above 45
// have no name and give the empty text. Codes 29/34 ("Over White") and 30/35 ("Over Black") are
// distinct codes with equal names.
std::string GetAngleName(std::uint8_t code);

// Sort key of `code` in tenths of a degree: 150 for "15°", 0 for "0°", -150 for "-15°", and 450
// for every code that is not a viewing angle, including codes above 45.
std::int16_t GetAngleKey(std::uint8_t code);

// The sort key as an angle in degrees: key x 0.1 (exact for every catalogued key).
double GetAngleKeyDegrees(std::uint8_t code);

// True for the standard geometries: codes below 4 (d/8, 45/0, d/0, 0/45) and code 8. That the
// multi-angle "45°" counts as a standard geometry is the library's deliberate behaviour.
constexpr bool IsStandardGeometry(std::uint8_t code) {
  return code < 4 || code == kAngle45Deg;
}

}  // namespace velquor
