// Display RGB of an XYZ sample: linear RGB through the primaries of ITU-R BT.709 / sRGB
// (IEC 61966-2-1) balanced to the chosen white, then the sRGB-style encoding with the library's
// breakpoint 0.00304 and truncation to 0..255, for swatches on screen.
#pragma once

#include <cstdint>

#include "velquor/data/value_vectors.h"

namespace velquor {

// Encoded value (0..1) of one linear channel: 0 for v <= 0 (and NaN), 1 for v >= 1,
// 12.92 v below 0.00304, otherwise 1.055 v^0.4166666666666667 - 0.055. The breakpoint 0.00304
// (not sRGB's 0.0031308) is the library's own; at it the power segment applies.
double EncodeDisplayChannel(double linear);

// XYZ (Y = 100 scale) -> R, G, B in 0..255.
// The RGB-to-XYZ matrix has columns (x/y, 1, z/y) of the primaries red (0.64, 0.33, 0.03),
// green (0.30, 0.60, 0.10), blue (0.15, 0.06, 0.79), scaled (Cramer's rule) so that RGB = 1
// gives white / 100; the white is that of the chosen illuminant and observer, so the display
// white is D65 only when D65 is chosen. Linear RGB = inverse matrix x XYZ x 0.01; each channel
// is encoded by EncodeDisplayChannel and multiplied by 255 and truncated (not rounded).
// A missing sample (fewer than three elements, or all three missing), a missing white point or
// a white that makes the matrix singular gives the neutral grey (192, 192, 192).
// The first form reads the white of (illuminant, observer) from the weighting-table catalogue;
// an illuminant whose table cannot be loaded gives the grey as well.
void XYZToRGB(int illuminant, int observer, const CValueVector3& xyz, std::int32_t& red,
              std::int32_t& green, std::int32_t& blue);
void XYZToRGB(const CValueVector3& white, const CValueVector3& xyz, std::int32_t& red,
              std::int32_t& green, std::int32_t& blue);

}  // namespace velquor
