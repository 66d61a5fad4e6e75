// Rounded constants of the whiteness, tint and yellowness indices and of the tristimulus filter
// values. Each is used exactly as written: stored index values were computed with these digits
// and must reproduce to the last one. The missing value lives in velquor/frame/constants.h.
#pragma once

namespace velquor {

// ---- illuminant indices that select published coefficients
inline constexpr int kIndexIlluminantC = 1;    // CIE illuminant C
inline constexpr int kIndexIlluminantD65 = 2;  // CIE illuminant D65
inline constexpr int kIndexIlluminantD50 = 5;  // CIE illuminant D50
// The Ganz/Griesser operations accept only this observer code (10 degree), not any non-zero one.
inline constexpr int kGanzObserver = 1;

// ---- reference whites of the recalculated ("(R)") flavours, Y = 100 scale (ASTM E308)
inline constexpr double kReferenceXnC2 = 98.074;     // Xn of C / 2 degree
inline constexpr double kReferenceZnC2 = 118.232;    // Zn of C / 2 degree
inline constexpr double kReferenceXnD65_2 = 95.047;  // Xn of D65 / 2 degree (Berger (R))
inline constexpr double kReferenceZnD65_2 = 108.883; // Zn of D65 / 2 degree (Berger (R))

// ---- whiteness
// ASTM E313-73 whiteness W = 3.388 Z - 3 Y (C / 2 degree).
inline constexpr double kE313_73WhitenessZ = 3.388;
inline constexpr double kE313_73WhitenessY = 3.0;
// Taube whiteness W = 3.3834 Z - 3 Y (C / 2 degree).
inline constexpr double kTaubeZ = 3.3834;
inline constexpr double kTaubeY = 3.0;
// Berger whiteness W = Y + cZ Z - cX X; 2 degree pair 3.4 / 3.895, 10 degree pair 3.448 / 3.904.
inline constexpr double kBergerZ2 = 3.4;
inline constexpr double kBergerX2 = 3.895;
inline constexpr double kBergerZ10 = 3.448;
inline constexpr double kBergerX10 = 3.904;
// CIE whiteness W = Y + 800 (xn - x) + 1700 (yn - y) (CIE 15:2004, ASTM E313-10).
inline constexpr double kCieWhitenessX = 800.0;
inline constexpr double kCieWhitenessY = 1700.0;
// Stensby W = L + 3 a - 3 b and Hunter W = L - 3 b (Hunter Lab).
inline constexpr double kStensbyA = 3.0;
inline constexpr double kStensbyB = 3.0;
inline constexpr double kHunterWhitenessB = 3.0;

// ---- tint, T = k (xn - x) - 650 (yn - y) (CIE 15:2004, ASTM E313-10)
inline constexpr double kCieTintX2 = 1000.0;  // k for the 2 degree observer
inline constexpr double kCieTintX10 = 900.0;  // k for the 10 degree observer
inline constexpr double kCieTintY = 650.0;

// ---- yellowness
// ASTM D1925 YI = 100 (1.28 X - 1.06 Z) / Y (C / 2 degree).
inline constexpr double kD1925X = 1.28;
inline constexpr double kD1925Z = 1.06;
// ASTM E313-73 YI = 100 (1 - 0.847 Z / Y) (C / 2 degree).
inline constexpr double kE313_73YellownessZ = 0.847;
// ASTM E313-10 YI = 100 (Cx X - Cz Z) / Y, coefficient pairs by illuminant and observer.
inline constexpr double kE313_10CxC2 = 1.2769;
inline constexpr double kE313_10CzC2 = 1.0592;
inline constexpr double kE313_10CxC10 = 1.2871;
inline constexpr double kE313_10CzC10 = 1.0781;
inline constexpr double kE313_10CxD65_2 = 1.2985;
inline constexpr double kE313_10CzD65_2 = 1.1335;
inline constexpr double kE313_10CxD65_10 = 1.3013;
inline constexpr double kE313_10CzD65_10 = 1.1498;
// DIN 6167 YI = 100 (Cx X - Cz Z) / Y; the standard gives no pair for C / 10 degree.
inline constexpr double kDin6167CxC2 = 1.277;
inline constexpr double kDin6167CzC2 = 1.059;
inline constexpr double kDin6167CxD65_2 = 1.298;
inline constexpr double kDin6167CzD65_2 = 1.133;
inline constexpr double kDin6167CxD65_10 = 1.301;
inline constexpr double kDin6167CzD65_10 = 1.149;
// DCM yellowness Y = 253.1 - 620.88511 Z / (1.275 X + Y + 0.635025 Z) (C / 2 degree).
inline constexpr double kDcmOffset = 253.1;
inline constexpr double kDcmScale = 620.88511;
inline constexpr double kDcmX = 1.275;
inline constexpr double kDcmZ = 0.635025;

// ---- ASTM E313-10 white-point chromaticities (xn, yn)
inline constexpr double kE313_10XnC2 = 0.3101;
inline constexpr double kE313_10YnC2 = 0.3161;
inline constexpr double kE313_10XnC10 = 0.3104;
inline constexpr double kE313_10YnC10 = 0.3191;
inline constexpr double kE313_10XnD65_2 = 0.3127;
inline constexpr double kE313_10YnD65_2 = 0.3290;
inline constexpr double kE313_10XnD65_10 = 0.3138;
inline constexpr double kE313_10YnD65_10 = 0.3310;
inline constexpr double kE313_10XnD50_2 = 0.3457;
inline constexpr double kE313_10YnD50_2 = 0.3585;
inline constexpr double kE313_10XnD50_10 = 0.3477;
inline constexpr double kE313_10YnD50_10 = 0.3595;

// ---- tristimulus filter values
// Share of the blue filter in the X function of the amber filter.
inline constexpr double kFilterBlueShare = 0.202;
// 1 / 0.798, written to double precision as 1.2531328320802004.
inline constexpr double kFilterAmberScale = 1.2531328320802004;

}  // namespace velquor
