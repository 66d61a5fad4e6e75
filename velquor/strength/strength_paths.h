// The three computing paths of colour strength, in percent (100 = as strong as the standard):
// sums of an absorption measure over a spectral range (StrengthFromSpectra), the same sums
// weighted by the CIE colour-matching weights of an illuminant and observer
// (StrengthWeighted, "pseudo tristimulus"), and tristimulus values themselves
// (StrengthTristimulus). CalcStrength (strength.h) chooses among them by method.
//
// The absorption measure f is the Kubelka-Munk K/S (KSFromReflectance) or, with
// `useAbsorbance`, the optical density (AbsorbanceFromReflectance); transparent and filter
// samples use the latter.
//
// Preparing a spectrum: each point R (percent) is taken as the fraction R x 0.01, passed
// through SaundersonToInternal with k1 and k2 and multiplied by 100 again. Points that hold the
// missing value are left as they are, so a missing point enters a sum as the reflectance
// 1e-05 %, that is as black (K/S 9999, absorbance 4.3); this is the library's behaviour.
// Preparation is done point by point as the sums run; nothing is allocated.
//
// Deliberate difference between the paths: the spectral sum is limited to [0.01, 999.99] %,
// the weighted and tristimulus paths (through StrengthRatio) only to 999.99 % from above, so
// they can return figures far below 0.01 %. Nothing throws.
#pragma once

#include "velquor/data/ks_data.h"
#include "velquor/data/value_vectors.h"

namespace velquor {

// Column of the weighted and tristimulus paths.
inline constexpr int kStrengthColumnX = 0;
inline constexpr int kStrengthColumnY = 1;
inline constexpr int kStrengthColumnZ = 2;
inline constexpr int kStrengthColumnSum = 3;  // X + Y + Z

// Strength from absorption sums over the indices firstIndex..lastIndex inclusive:
//   S_std = sum f(prepared standard[i]), S_bat = sum f(prepared batch[i]);
//   S_bat becomes 1e-7 if |S_bat| < 1e-7; the divisor is S_std, or 1e-7 if |S_std| < 1e-7;
//   strength = 100 x (S_bat / divisor), then above 999.99 -> 999.99 and below 0.01 -> 0.01;
//   the quotient is taken first, so a batch equal to its standard gives exactly 100.
// An empty range (lastIndex < firstIndex) gives 100. A range reaching outside either curve
// (index < 0 or beyond its last point) gives the missing value.
double StrengthFromSpectra(const CKSData& standard, const CKSData& batch, bool useAbsorbance,
                           int firstIndex, int lastIndex, double k1, double k2);

// Pseudo-tristimulus strength: like StrengthFromSpectra, but each term is multiplied by the
// weight w(i) of the weighting table of `illuminant` and `observer` (weight_table_cache.h; an
// absent table falls back to D65 as EnsureWeightTable does), where w is the X, Y or Z weight
// for column 0, 1 or 2 and the sum of the three for column 3. Then
//   strength = StrengthRatio(S_std, S_bat)   (batch over standard, no 0.01 floor).
// CalcStrength uses indices 6..32 (420-680 nm). A column outside 0..3, a range reaching
// outside the curves or the 40 weights, or no loadable table gives the missing value.
double StrengthWeighted(int illuminant, int observer, int column, const CKSData& standard,
                        const CKSData& batch, bool useAbsorbance, int firstIndex, int lastIndex,
                        double k1, double k2);

// Tristimulus strength from X, Y, Z (0-100 scale). For each colour: each of X, Y, Z (column 3)
// or only the chosen one (columns 0-2), times 0.01, through SaundersonToInternal(k1, k2),
// summed to T. Then
//   strength = StrengthRatio(T_bat, T_std) = 100 T_std / T_bat (capped at 999.99, no floor):
// a batch that reflects less is the stronger one.
// A colour record with fewer than three values, a missing value among those used, or a
// column outside 0..3 gives the missing value.
double StrengthTristimulus(int column, const CValueVector3& standardColour,
                           const CValueVector3& batchColour, double k1, double k2);

// The pieces the paths share, for the batch form (strength_batch.h), which runs them on one
// standard and many batches:
// - a point prepared for the spectral paths: Saunderson-corrected reflectance in percent, a
//   missing point kept as it is;
double PrepareStrengthPoint(double reflectance, double k1, double k2);
// - the absorption measure of a prepared point, K/S or, with `useAbsorbance`, optical density;
double StrengthAbsorption(double prepared, bool useAbsorbance);
// - the last step of StrengthFromSpectra from the two sums: floors, quotient, limits;
double StrengthFromSums(double sumStandard, double sumBatch);
// - T of one colour of StrengthTristimulus into `sum` (column 0..3, a colour of three values);
//   false when a value it uses is missing.
bool StrengthTristimulusSum(int column, const CValueVector3& colour, double k1, double k2,
                            double& sum);

// The common last step of the weighted and tristimulus paths: a' = a, or 1e-7 if |a| < 1e-7;
// b' likewise; q = b' / a', limited to 9.9999 from above; the result is 100 q. No lower
// limit: unlike StrengthFromSpectra a tiny or negative quotient is returned as it is.
double StrengthRatio(double a, double b);

}  // namespace velquor
