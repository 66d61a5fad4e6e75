#include "velquor/strength/strength_paths.h"

#include <cmath>
#include <cstddef>

#include "velquor/colorimetry/weight_table_cache.h"
#include "velquor/frame/numeric.h"
#include "velquor/strength/absorbance.h"
#include "velquor/strength/constants.h"
#include "velquor/strength/saunderson.h"

namespace velquor {

namespace {

// True when both curves hold the points first..last (an empty range always fits).
bool RangeFits(const CKSData& standard, const CKSData& batch, int first, int last) {
  if (last < first) return true;
  if (first < 0) return false;
  const auto end = static_cast<std::size_t>(last);
  return end < standard.GetSize() && end < batch.GetSize();
}

double FloorSum(double sum) {
  return std::fabs(sum) < kStrengthSumFloor ? kStrengthSumFloor : sum;
}

// A colour value used by the tristimulus path, as a corrected fraction.
double CorrectedColourValue(double value, double k1, double k2) {
  return SaundersonToInternal(value * kStrengthPercentToFraction, k1, k2);
}

}  // namespace

double PrepareStrengthPoint(double reflectance, double k1, double k2) {
  if (IsMissing(reflectance)) return reflectance;
  return SaundersonToInternal(reflectance * kStrengthPercentToFraction, k1, k2) *
         kStrengthFractionToPercent;
}

double StrengthAbsorption(double prepared, bool useAbsorbance) {
  return useAbsorbance ? AbsorbanceFromReflectance(prepared) : KSFromReflectance(prepared);
}

double StrengthFromSums(double sumStandard, double sumBatch) {
  sumBatch = FloorSum(sumBatch);
  const double divisor = FloorSum(sumStandard);
  // Quotient first, as in StrengthRatio, so a batch equal to its standard gives exactly 100.
  double strength = kStrengthFractionToPercent * (sumBatch / divisor);
  if (strength > kStrengthCap) {
    strength = kStrengthCap;
  } else if (strength < kStrengthFloor) {
    strength = kStrengthFloor;
  }
  return strength;
}

bool StrengthTristimulusSum(int column, const CValueVector3& colour, double k1, double k2,
                            double& sum) {
  if (column == kStrengthColumnSum) {
    sum = 0.0;
    for (std::size_t c = 0; c < CValueVector3::kLength; ++c) {
      if (IsMissing(colour[c])) return false;
      sum += CorrectedColourValue(colour[c], k1, k2);
    }
    return true;
  }
  const double value = colour[static_cast<std::size_t>(column)];
  if (IsMissing(value)) return false;
  sum = CorrectedColourValue(value, k1, k2);
  return true;
}

double StrengthFromSpectra(const CKSData& standard, const CKSData& batch, bool useAbsorbance,
                           int firstIndex, int lastIndex, double k1, double k2) {
  if (!RangeFits(standard, batch, firstIndex, lastIndex)) return kMissing;
  double sumStandard = 0.0;
  double sumBatch = 0.0;
  for (int i = firstIndex; i <= lastIndex; ++i) {
    const auto p = static_cast<std::size_t>(i);
    sumStandard += StrengthAbsorption(PrepareStrengthPoint(standard[p], k1, k2), useAbsorbance);
    sumBatch += StrengthAbsorption(PrepareStrengthPoint(batch[p], k1, k2), useAbsorbance);
  }
  return StrengthFromSums(sumStandard, sumBatch);
}

double StrengthWeighted(int illuminant, int observer, int column, const CKSData& standard,
                        const CKSData& batch, bool useAbsorbance, int firstIndex, int lastIndex,
                        double k1, double k2) {
  if (column < kStrengthColumnX || column > kStrengthColumnSum) return kMissing;
  if (!RangeFits(standard, batch, firstIndex, lastIndex)) return kMissing;
  if (lastIndex >= static_cast<int>(kWeightTableBands)) return kMissing;
  EnsureWeightTable(illuminant, observer);
  const double* table = GetWeightTable(illuminant, observer);
  if (table == nullptr) return kMissing;
  const double* x = table;
  const double* y = table + kWeightTableBands;
  const double* z = table + 2 * kWeightTableBands;
  const double* chosen = column == kStrengthColumnSum
                             ? nullptr
                             : table + static_cast<std::size_t>(column) * kWeightTableBands;

  double sumStandard = 0.0;
  double sumBatch = 0.0;
  for (int i = firstIndex; i <= lastIndex; ++i) {
    const auto p = static_cast<std::size_t>(i);
    const double weight = chosen == nullptr ? x[p] + y[p] + z[p] : chosen[p];
    sumStandard +=
        StrengthAbsorption(PrepareStrengthPoint(standard[p], k1, k2), useAbsorbance) * weight;
    sumBatch += StrengthAbsorption(PrepareStrengthPoint(batch[p], k1, k2), useAbsorbance) * weight;
  }
  return StrengthRatio(sumStandard, sumBatch);
}

double StrengthTristimulus(int column, const CValueVector3& standardColour,
                           const CValueVector3& batchColour, double k1, double k2) {
  if (column < kStrengthColumnX || column > kStrengthColumnSum) return kMissing;
  if (standardColour.GetSize() < CValueVector3::kLength ||
      batchColour.GetSize() < CValueVector3::kLength) {
    return kMissing;
  }
  double sumStandard = 0.0;
  double sumBatch = 0.0;
  if (!StrengthTristimulusSum(column, standardColour, k1, k2, sumStandard) ||
      !StrengthTristimulusSum(column, batchColour, k1, k2, sumBatch)) {
    return kMissing;
  }
  return StrengthRatio(sumBatch, sumStandard);
}

double StrengthRatio(double a, double b) {
  const double divisor = FloorSum(a);
  double quotient = FloorSum(b) / divisor;
  if (quotient > kStrengthRatioCap) quotient = kStrengthRatioCap;
  return kStrengthFractionToPercent * quotient;
}

}  // namespace velquor
