#include "velquor/colorimetry/rgb.h"

#include <cmath>

#include "velquor/colorimetry/constants.h"
#include "velquor/colorimetry/coordinate_record.h"
#include "velquor/colorimetry/reference_white.h"
#include "velquor/frame/numeric.h"

namespace velquor {

namespace {

using Matrix3 = double[3][3];

// Chromaticities (x, y, z) of the display primaries, ITU-R BT.709.
constexpr double kPrimaries[3][3] = {
    {0.64, 0.33, 0.03},  // red
    {0.30, 0.60, 0.10},  // green
    {0.15, 0.06, 0.79},  // blue
};

double Determinant(const Matrix3& m) {
  return m[0][0] * (m[1][1] * m[2][2] - m[1][2] * m[2][1]) -
         m[0][1] * (m[1][0] * m[2][2] - m[1][2] * m[2][0]) +
         m[0][2] * (m[1][0] * m[2][1] - m[1][1] * m[2][0]);
}

// Fills `toRgb` with the inverse of the RGB-to-XYZ matrix for `white` (Y = 1 scale).
// Returns false when a determinant vanishes.
bool BuildXYZToRGB(const double white[3], Matrix3& toRgb) {
  Matrix3 p;
  for (int c = 0; c < 3; ++c) {
    const double x = kPrimaries[c][0], y = kPrimaries[c][1], z = kPrimaries[c][2];
    p[0][c] = x / y;
    p[1][c] = 1.0;
    p[2][c] = z / y;
  }
  const double detP = Determinant(p);
  if (IsZero(detP)) return false;

  // Cramer's rule for the scale factors S of P S = white.
  Matrix3 m;
  for (int c = 0; c < 3; ++c) {
    Matrix3 replaced;
    for (int r = 0; r < 3; ++r)
      for (int k = 0; k < 3; ++k) replaced[r][k] = k == c ? white[r] : p[r][k];
    const double s = Determinant(replaced) / detP;
    for (int r = 0; r < 3; ++r) m[r][c] = p[r][c] * s;
  }

  const double detM = Determinant(m);
  if (IsZero(detM)) return false;
  // Inverse by the adjugate: element (r, c) is the cofactor of (c, r) over the determinant.
  for (int r = 0; r < 3; ++r) {
    for (int c = 0; c < 3; ++c) {
      const int r0 = (c + 1) % 3, r1 = (c + 2) % 3;
      const int c0 = (r + 1) % 3, c1 = (r + 2) % 3;
      toRgb[r][c] = (m[r0][c0] * m[r1][c1] - m[r0][c1] * m[r1][c0]) / detM;
    }
  }
  return true;
}

std::int32_t ChannelValue(double linear) {
  return static_cast<std::int32_t>(EncodeDisplayChannel(linear) * 255.0);
}

void XYZToRGBWithWhite(const double* white, const CValueVector3& xyz, std::int32_t& red,
                       std::int32_t& green, std::int32_t& blue) {
  red = green = blue = kRgbMissingGrey;
  if (IsMissingXYZ(xyz) || IsMissingWhite(white)) return;

  const double whiteUnit[3] = {white[0] / 100.0, white[1] / 100.0, white[2] / 100.0};
  Matrix3 toRgb;
  if (!BuildXYZToRGB(whiteUnit, toRgb)) return;

  double linear[3];
  for (int r = 0; r < 3; ++r)
    linear[r] = (toRgb[r][0] * xyz[0] + toRgb[r][1] * xyz[1] + toRgb[r][2] * xyz[2]) * 0.01;
  red = ChannelValue(linear[0]);
  green = ChannelValue(linear[1]);
  blue = ChannelValue(linear[2]);
}

}  // namespace

double EncodeDisplayChannel(double v) {
  if (!(v > 0.0)) return 0.0;
  if (v >= 1.0) return 1.0;
  if (v < kRgbLinearLimit) return kRgbLinearSlope * v;
  return kRgbScale * std::pow(v, kRgbExponent) - kRgbOffset;
}

void XYZToRGB(int illuminant, int observer, const CValueVector3& xyz, std::int32_t& red,
              std::int32_t& green, std::int32_t& blue) {
  XYZToRGBWithWhite(FindReferenceWhite(illuminant, observer), xyz, red, green, blue);
}

void XYZToRGB(const CValueVector3& white, const CValueVector3& xyz, std::int32_t& red,
              std::int32_t& green, std::int32_t& blue) {
  XYZToRGBWithWhite(WhiteData(white), xyz, red, green, blue);
}

}  // namespace velquor
