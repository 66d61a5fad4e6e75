#include "velquor/strength/saunderson.h"

#include <algorithm>

#include "velquor/strength/constants.h"

namespace velquor {

double SaundersonToInternal(double reflectance, double k1, double k2) {
  const double divisor = 1.0 - k1 - (1.0 - reflectance) * k2;
  return (reflectance - k1) / std::max(divisor, kSaundersonDivisorFloor);
}

double SaundersonToMeasured(double reflectance, double k1, double k2) {
  const double divisor = 1.0 - k2 * reflectance;
  return (1.0 - k1) * (1.0 - k2) * reflectance / std::max(divisor, kSaundersonDivisorFloor) + k1;
}

}  // namespace velquor
