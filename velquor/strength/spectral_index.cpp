#include "velquor/strength/spectral_index.h"

#include <algorithm>

namespace velquor {

int FindMaxAbsorptionIndex(const CKSData& spectrum, int first, int last) {
  if (last < first + 1) return first;
  const int size = static_cast<int>(spectrum.GetSize());
  if (first < 0 || first >= size) return first;
  const int end = std::min(last, size - 1);
  int lowest = first;
  for (int i = first + 1; i <= end; ++i) {
    if (spectrum[static_cast<std::size_t>(i)] < spectrum[static_cast<std::size_t>(lowest)]) {
      lowest = i;
    }
  }
  return lowest;
}

}  // namespace velquor
