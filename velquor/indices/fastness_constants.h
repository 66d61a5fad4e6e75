// Rounded constants of the textile fastness grades (ISO 105-A04 instrumental staining and
// ISO 105-A05 instrumental change in colour). Each is used exactly as written, so that stored
// grades reproduce to the last digit. The missing value lives in velquor/frame/constants.h.
#pragma once

#include <array>
#include <cstddef>

namespace velquor {

// Number of thresholds of a grey-scale step table: nine boundaries between the ten codes.
inline constexpr std::size_t kStepThresholdCount = 9;

// The best grade of either grey scale (no visible difference).
inline constexpr double kFastnessTopGrade = 5.0;

// ---- ISO 105-A04 instrumental staining
// Weight of the chromatic part in dE_GS = dE*ab - 0.4 sqrt(dE*ab^2 - dL*^2).
inline constexpr double kStainChromaticWeight = 0.4;
// Offset of the staining score SSR = 6.1 - 1.45 ln(dE_GS).
inline constexpr double kStainScoreOffset = 6.1;
// Slope of the staining score on ln(dE_GS).
inline constexpr double kStainScoreSlope = 1.45;
// An SSR above this is replaced by the linear form 5 - 0.23 dE_GS (strictly above).
inline constexpr double kStainScoreLimit = 4.0;
// Slope of the linear form of the staining grade on dE_GS.
inline constexpr double kStainLinearSlope = 0.23;

// ---- ISO 105-A05 instrumental change in colour
// Half and full turn in degrees, for the mean of two hue angles.
inline constexpr double kFastnessHalfTurnDegrees = 180.0;
inline constexpr double kFastnessFullTurnDegrees = 360.0;
// Hue (degrees) around which the blue correction term D is centred.
inline constexpr double kGreyScaleHueCentre = 280.0;
// Width (degrees) of the Gaussian e = exp(-(dh'/30)^2) around that hue.
inline constexpr double kGreyScaleHueWidth = 30.0;
// Scale of the correction term D = e dC*ab C_m 0.01.
inline constexpr double kGreyScaleCorrectionScale = 0.01;
// Chroma weight of dC_F = (dC*ab - D) / (1 + (0.02 C_m)^2).
inline constexpr double kGreyScaleChromaWeight = 0.02;
// Chroma weight of dH_F = (dH*ab - D) / (1 + (0.01 C_m)^2).
inline constexpr double kGreyScaleHueWeight = 0.01;
// dE_F at or below this takes the linear grade 5 - dE_F / 1.7 (the two branches meet at grade 3).
inline constexpr double kGreyScaleLinearLimit = 3.4;
// Divisor of the linear grade.
inline constexpr double kGreyScaleLinearDivisor = 1.7;
// 1 / 0.85 in double precision: the logarithmic grade is 5 - ln(dE_F x (1 / 0.85)) / ln 2.
inline constexpr double kGreyScaleLogScale = 1.0 / 0.85;

// ---- step tables, nine thresholds in falling order (positions 0 to 8)
// ISO 105-A04: looked up with 5 - staining grade.
inline constexpr std::array<double, kStepThresholdCount> kStainStepThresholdsA04 = {
    3.75, 3.26, 2.76, 2.26, 1.76, 1.26, 0.76, 0.26, 0.0};
// ISO 105-A05 (the dE_F bands of the grey scale): looked up with dE_F.
inline constexpr std::array<double, kStepThresholdCount> kGreyScaleStepThresholdsA05 = {
    11.6, 8.2, 5.8, 4.1, 2.95, 2.1, 1.25, 0.4, 0.0};

}  // namespace velquor
