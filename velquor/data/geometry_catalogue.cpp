#include "velquor/data/geometry_catalogue.h"

#include <array>

#include "velquor/frame/resources.h"

namespace velquor {

namespace {

// Sort keys of codes 0..45 in tenths of a degree (aspecular angle of the viewing angles).
constexpr std::array<std::int16_t, kAngleCodeCount> kAngleKeys = {
    450,  450,  450, 450,                       // 0-3   d8, 45/0, d0, 0/45
    150,  200,  225, 250, 450, 725, 750, 1100,  // 4-11  15° 20° 22.5° 25° 45° 72.5° 75° 110°
    450,  450,  450, 450, 450, 450, 450, 450,   // 12-19 SCI/SCE and their variants
    450,  450,  450, 450, 450,                  // 20-24 aperture positions
    0,                                          // 25    0°
    450,  450,  450, 450, 450, 450, 450, 450,   // 26-33 reflectivity, backgrounds, refs
    450,  450,  450, 450, 450, 450,             // 34-39
    1050, -150,                                 // 40-41 105°, -15°
    450,  450,  450, 450,                       // 42-45 M0..M3
};

}  // namespace

std::string GetAngleName(std::uint8_t code) {
  if (code >= kAngleCodeCount) return std::string();
  return LoadStringResource(kAngleNameBase + code);
}

std::int16_t GetAngleKey(std::uint8_t code) {
  return code < kAngleCodeCount ? kAngleKeys[code] : kNonAngleKey;
}

double GetAngleKeyDegrees(std::uint8_t code) {
  return GetAngleKey(code) * kAngleKeyToDegrees;
}

}  // namespace velquor
