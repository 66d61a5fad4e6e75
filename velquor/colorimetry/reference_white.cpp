#include "velquor/colorimetry/reference_white.h"

#include "velquor/colorimetry/weight_table_cache.h"

namespace velquor {

const double* FindReferenceWhite(int illuminant, int observer) {
  const double* table = GetWeightTable(illuminant, observer);
  return table == nullptr ? nullptr : table + kWeightTableWhitePoint;
}

}  // namespace velquor
