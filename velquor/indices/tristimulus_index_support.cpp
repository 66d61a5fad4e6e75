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

}  // namespace velquor
