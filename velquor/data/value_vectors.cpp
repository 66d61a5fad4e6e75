#include "velquor/data/value_vectors.h"

#include <algorithm>

namespace velquor {

VELQUOR_IMPLEMENT_RUNTIME_CLASS(CColorVector7, CValueArray, 1)
VELQUOR_IMPLEMENT_RUNTIME_CLASS(CValueVector5, CValueArray, 1)
VELQUOR_IMPLEMENT_RUNTIME_CLASS(CValueVector3, CValueArray, 1)

void CColorVector7::ClampRange() {
  const std::size_t n = std::min(kLength, values_.size());
  for (std::size_t i = 0; i < n; ++i) {
    double& v = values_[i];
    if (v > -kLimit && v >= kLimit) {
      v = kLimit;
    } else if (!(v > -kLimit)) {
      v = -kLimit;
    }
  }
}

}  // namespace velquor
