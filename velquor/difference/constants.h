// Rounded constants of the colour-difference formulas. Each is used exactly as written: stored
// differences were computed with these digits and must reproduce to the last one. The missing
// value, the zero tolerance and the degree/radian factors live in velquor/frame/constants.h; the
// result limit 999.99 is CColorVector7::kLimit.
#pragma once

namespace velquor {

// ---- CMC (l:c), BS 6923:1988 / AATCC 173
// Lightness below which SL is the constant 0.511 (L >= 16 takes the rational form).
inline constexpr double kCmcLightnessBreak = 16.0;
// SL = 0.040975 L / (1 + 0.01765 L), or 0.511 for dark standards.
inline constexpr double kCmcSlScale = 0.040975;
inline constexpr double kCmcSlDenominator = 0.01765;
inline constexpr double kCmcSlDark = 0.511;
// SC = 0.0638 C / (1 + 0.0131 C) + 0.638.
inline constexpr double kCmcScScale = 0.0638;
inline constexpr double kCmcScDenominator = 0.0131;
inline constexpr double kCmcScOffset = 0.638;
// F = sqrt(C^4 / (C^4 + 1900)).
inline constexpr double kCmcF = 1900.0;
// Hue range (degrees, both ends inclusive) of T = 0.56 + |0.2 cos(h + 168)|.
inline constexpr double kCmcHueLow = 164.0;
inline constexpr double kCmcHueHigh = 345.0;
inline constexpr double kCmcTInside = 0.56;
inline constexpr double kCmcTInsideAmplitude = 0.2;
inline constexpr double kCmcTInsidePhase = 168.0;
// Outside that range: T = 0.36 + |0.4 cos(h + 35)|.
inline constexpr double kCmcTOutside = 0.36;
inline constexpr double kCmcTOutsideAmplitude = 0.4;
inline constexpr double kCmcTOutsidePhase = 35.0;

// ---- CIE94 (CIE 116-1995)
// SC = 1 + 0.045 C*ab, SH = 1 + 0.015 C*ab of the standard.
inline constexpr double kCie94Chroma = 0.045;
inline constexpr double kCie94Hue = 0.015;

// ---- CIEDE2000 (CIE 142-2001, CIE 15:2004 8.3.2)
// 25^7, exact.
inline constexpr double kDe2000TwentyFiveToSeventh = 6103515625.0;
// SL = 1 + 0.015 (L' - 50)^2 / sqrt(20 + (L' - 50)^2).
inline constexpr double kDe2000SlScale = 0.015;
inline constexpr double kDe2000SlOffset = 20.0;
// SC = 1 + 0.045 C', SH = 1 + 0.015 C' T.
inline constexpr double kDe2000Sc = 0.045;
inline constexpr double kDe2000Sh = 0.015;
// Rotation term: delta-theta = 30 exp(-((h' - 275) x 0.04)^2) degrees.
inline constexpr double kDe2000ThetaPeak = 30.0;
inline constexpr double kDe2000ThetaCentre = 275.0;
inline constexpr double kDe2000ThetaWidth = 0.04;
// Tolerance (degrees) of the test |h't - h's| == 180 in the mean hue: covers the 1.2e-11
// degree by which the rounded radians-to-degrees factor shifts an exact half turn, plus
// atan2 and addition rounding (about 1e-13), with a margin of about 800; hue pairs that
// genuinely differ from a half turn by this little cannot come from measured data.
inline constexpr double kDe2000HalfTurnTolerance = 1e-8;

// ---- FMC-2 (Friele-MacAdam-Chickering, Chickering 1971)
// P = 0.724 X + 0.382 Y - 0.098 Z; Q = -0.48 X + 1.37 Y + 0.1276 Z; S = 0.686 Z.
inline constexpr double kFmcPX = 0.724;
inline constexpr double kFmcPY = 0.382;
inline constexpr double kFmcPZ = -0.098;
inline constexpr double kFmcQX = -0.48;
inline constexpr double kFmcQY = 1.37;
inline constexpr double kFmcQZ = 0.1276;
inline constexpr double kFmcSZ = 0.686;
// a^2 = 1.73e-05 (P^2 + Q^2) / (1 + 2.73 P^2 Q^2 / (P^4 + Q^4)).
inline constexpr double kFmcA = 1.73e-05;
inline constexpr double kFmcAShape = 2.73;
// b^2 = 0.0003098 (S^2 + 0.2015 Y^2).
inline constexpr double kFmcB = 0.0003098;
inline constexpr double kFmcBY = 0.2015;
// Lightness scale of the lightness difference.
inline constexpr double kFmcLightness = 0.279;
// K1 = 0.55669 + 0.049434 Y - 0.00082575 Y^2 + 7.9172e-06 Y^3 - 3.0087e-08 Y^4.
inline constexpr double kFmcK1[5] = {0.55669, 0.049434, -0.00082575, 7.9172e-06, -3.0087e-08};
// K2 = 0.17548 + 0.027556 Y - 0.00057262 Y^2 + 6.3893e-06 Y^3 - 2.6731e-08 Y^4.
inline constexpr double kFmcK2[5] = {0.17548, 0.027556, -0.00057262, 6.3893e-06, -2.6731e-08};

// ---- GE-PQS II
// Illuminant C, 2 degree white X; the XYZ scale factor is Xn / 98.074.
inline constexpr double kGeWhiteX = 98.074;
// u = k (0.7 X + 0.27 Y - 0.1 Z); v = k (1.23 Y + 0.1 Z - 0.36 X); w = 2.2 k Z.
inline constexpr double kGeUX = 0.7;
inline constexpr double kGeUY = 0.27;
inline constexpr double kGeUZ = -0.1;
inline constexpr double kGeVX = -0.36;
inline constexpr double kGeVY = 1.23;
inline constexpr double kGeVZ = 0.1;
inline constexpr double kGeWZ = 2.2;
// t = 0.22 / (w^2 + v^2 + 20).
inline constexpr double kGeT = 0.22;
inline constexpr double kGeTOffset = 20.0;
// Metric scales: G11, G22, G12 use 7000 and 0.16; G33, G23, G13 use 17700 and -0.63.
inline constexpr double kGeChromatic = 7000.0;
inline constexpr double kGeChromaticOffset = 0.16;
inline constexpr double kGeLightness = 17700.0;
inline constexpr double kGeCross = -0.63;

// ---- XYZ/Yxy display scales
// XYZ differences are shown times 10, chromaticity differences times 10000.
inline constexpr double kXyzScale = 10.0;
inline constexpr double kChromaticityScale = 10000.0;

// ---- DIN 6175-2
// SL = 0.15 sqrt(L) + 31.5 / p.
inline constexpr double kDinSlRoot = 0.15;
inline constexpr double kDinSlParameter = 31.5;
// Near-neutral region: C < 18 and (C < 10 or h >= 27); there SC = SH = 0.7 on da, db.
inline constexpr double kDinChromaHigh = 18.0;
inline constexpr double kDinChromaLow = 10.0;
inline constexpr double kDinHueBreak = 27.0;
inline constexpr double kDinMinimumWeight = 0.7;
// SC = 0.48 sqrt(C) - 0.35 sqrt(L) + 42 / p.
inline constexpr double kDinScChroma = 0.48;
inline constexpr double kDinScLightness = 0.35;
inline constexpr double kDinScParameter = 42.0;
// SH = 0.14 sqrt(C) + 0.7 - 0.2 sqrt(L) + 21 / p.
inline constexpr double kDinShChroma = 0.14;
inline constexpr double kDinShOffset = 0.7;
inline constexpr double kDinShLightness = 0.2;
inline constexpr double kDinShParameter = 21.0;

// ---- effect-finish (angle-dependent) difference
// Replacement for a viewing angle of exactly 0.
inline constexpr double kEffectDefaultAngle = 1.0;
// S_L = 22.5 / angle + 0.11 sqrt(L).
inline constexpr double kEffectSlAngle = 22.5;
inline constexpr double kEffectSlRoot = 0.11;
// Near-neutral test on the reference's hue slot: H < 10, or L > 27 and H < 18.
inline constexpr double kEffectNeutralLow = 10.0;
inline constexpr double kEffectNeutralHigh = 18.0;
inline constexpr double kEffectNeutralLightness = 27.0;
// Weight of both chromatic terms of a near-neutral reference.
inline constexpr double kEffectNeutralWeight = 0.5;
// S_1 = 30 / angle + 0.34 sqrt(Q) - 0.25 sqrt(L).
inline constexpr double kEffectS1Angle = 30.0;
inline constexpr double kEffectS1Chroma = 0.34;
inline constexpr double kEffectS1Lightness = 0.25;
// S_2 = 15 / angle + (0.1 sqrt(Q) + 0.5) - 0.14 sqrt(L).
inline constexpr double kEffectS2Angle = 15.0;
inline constexpr double kEffectS2Chroma = 0.1;
inline constexpr double kEffectS2Offset = 0.5;
inline constexpr double kEffectS2Lightness = 0.14;

}  // namespace velquor
