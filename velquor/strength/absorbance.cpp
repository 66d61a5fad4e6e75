#include "velquor/strength/absorbance.h"

#include <cmath>

#include "velquor/data/ks_data.h"

namespace velquor {

namespace {
constexpr CReflMode kKSMode{1, 0};
constexpr CReflMode kDensityMode{1, 1};
}  // namespace

double KSFromReflectance(double reflectance) {
  return ConvertReflPoint(reflectance, kKSMode);
}

double ReflectanceFromKS(double ks) {
  return (ks - std::sqrt((ks + 2.0) * ks) + 1.0) * 100.0;
}

double AbsorbanceFromReflectance(double reflectance) {
  return ConvertReflPoint(reflectance, kDensityMode);
}

double ReflectanceFromAbsorbance(double absorbance) {
  return 100.0 / std::pow(10.0, absorbance);
}

}  // namespace velquor
