#include "velquor/indices/tristimulus_index_support.h"

#include "velquor/colorimetry/coordinate_record.h"
#include "velquor/colorimetry/weight_table_cache.h"

namespace velquor {

const double* ComputedWhite(int illuminant, int observer) {
  int usable = illuminant;
  EnsureWeightTable(usable, observer);
  const double* table = GetWeightTable(usable, observer);
  return table == nullptr ? nullptr : table + kWeightTableWhitePoint;
}

bool IsUnusableSample(const CValueVector3& xyz) { return IsMissingXYZ(xyz); }

void WhiteChromaticity(const double* white, double& xn, double& yn) {
  const double sum = white[0] + white[1] + white[2];
  xn = white[0] / sum;
  yn = white[1] / sum;
}

}  // namespace velquor
