// Rounded constants of the colour-space conversions. Each is used exactly as written, not as
// the exact value it approximates: stored coordinates were computed with these digits and must
// reproduce to the last one. Full turn (6.28318530718), radians-to-degrees (57.29577951307855)
// and the zero tolerance live in velquor/frame/constants.h.
#pragma once

namespace velquor {

// ---- polar chroma and hue
// Half turn in radians, rounded to 11 decimals (pi) on purpose.
inline constexpr double kHalfTurn = 3.14159265359;
// Quarter turn in radians (pi / 2), deliberately the rounded half of 3.14159265359.
inline constexpr double kQuarterTurn = 1.570796326795;
// Three-quarter turn in radians (3 pi / 2), deliberately rounded to 12 decimals.
inline constexpr double kThreeQuarterTurn = 4.712388980385;
// A degree hue with 360 - h below this is reported as 0; deliberate, degree mode only.
inline constexpr double kHueWrapDegrees = 0.005;

// ---- CIELAB / CIELUV
// Breakpoint of the CIE cube-root function, deliberately 0.008856 rather than 216/24389.
inline constexpr double kLabEpsilon = 0.008856;
// Slope of the linear branch, deliberately 7.787 rather than 841/108.
inline constexpr double kLabSlope = 7.787;
// Offset of the forward linear branch: 16/116 to double precision (kept at full precision).
inline constexpr double kLabOffset = 0.13793103448275862;
// Offset of the inverse linear branch, deliberately the six-digit 0.137931 rather than 16/116.
inline constexpr double kLabInverseOffset = 0.137931;
// 1 / 7.787 as stored; the inverse linear branch multiplies by it instead of dividing.
inline constexpr double kLabInverseSlope = 0.1284191601386927;
// Inverse breakpoint on f: 6/29 to double precision, so it does not mirror 0.008856 exactly.
inline constexpr double kLabFThreshold = 0.20689655172413793;
// 1/116 as stored; lightness to f multiplies by it.
inline constexpr double kLabLightnessScale = 0.008620689655172414;
// Cube-root exponent written as the double 0.3333333333333333 (std::pow, not std::cbrt).
inline constexpr double kOneThird = 0.3333333333333333;
// Exponent of the cube root's derivative, written as -0.6666666666666666.
inline constexpr double kMinusTwoThirds = -0.6666666666666666;
// CIELUV linear lightness factor, deliberately 903.29 rather than 903.3 or 24389/27.
inline constexpr double kLuvKappa = 903.29;
// 1 / 903.29 as stored; the inverse linear branch multiplies by it.
inline constexpr double kLuvInverseKappa = 0.0011070641765103123;

// ---- Hunter Lab
// Classic (illuminant C, 2 degree) Hunter a and b: 17.5 (1.02 X - Y) / sqrt(Y) and
// 7.0 (Y - 0.847 Z) / sqrt(Y); 1.02 and 0.847 are the published rounded white ratios.
inline constexpr double kHunterA = 17.5;
inline constexpr double kHunterXRatio = 1.02;
inline constexpr double kHunterB = 7.0;
inline constexpr double kHunterZRatio = 0.847;
// General Hunter Ka = 175 sqrt(0.0102 Xn), Kb = 70 sqrt(0.00847 Zn): 0.0102 and 0.00847 are the
// library's rounding of 1/98.04 and 1/118.1 and are kept as written.
inline constexpr double kHunterKa = 175.0;
inline constexpr double kHunterKaWhite = 0.0102;
inline constexpr double kHunterKb = 70.0;
inline constexpr double kHunterKbWhite = 0.00847;

// ---- DIN99 (DIN 6176)
// The 16 degree rotation in radians, deliberately 16 x 0.017453292519944444.
inline constexpr double kDin99Angle = 0.2792526803191111;
// Three-quarter turn used by the DIN99 hue, deliberately 4.7123889803850005 (not 4.712388980385).
inline constexpr double kDin99ThreeQuarterTurn = 4.7123889803850005;
// DIN99 lightness scale and log factor, as published in DIN 6176.
inline constexpr double kDin99LightnessScale = 105.51;
inline constexpr double kDin99LightnessFactor = 0.0158;
// DIN99 compression of the rotated b axis and chroma log factor, as published in DIN 6176.
inline constexpr double kDin99BScale = 0.7;
inline constexpr double kDin99ChromaFactor = 0.045;

// ---- display RGB
// Linear-to-encoded breakpoint, deliberately 0.00304 rather than sRGB's 0.0031308.
inline constexpr double kRgbLinearLimit = 0.00304;
// Slope of the linear segment (IEC 61966-2-1).
inline constexpr double kRgbLinearSlope = 12.92;
// Encoding exponent 1/2.4 written as 0.4166666666666667.
inline constexpr double kRgbExponent = 0.4166666666666667;
// Scale and offset of the power segment (IEC 61966-2-1).
inline constexpr double kRgbScale = 1.055;
inline constexpr double kRgbOffset = 0.055;
// Channel value reported for a missing sample: a neutral grey.
inline constexpr int kRgbMissingGrey = 192;

}  // namespace velquor
