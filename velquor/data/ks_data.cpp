#include "velquor/data/ks_data.h"

#include <algorithm>
#include <cmath>

#include "velquor/frame/numeric.h"

namespace velquor {

VELQUOR_IMPLEMENT_RUNTIME_CLASS(CKSData, CValueArray, 1)
VELQUOR_IMPLEMENT_RUNTIME_CLASS(CEmptySpectrum, CKSData, 1)

double ConvertReflPoint(double reflectance, const CReflMode& mode) {
  switch (mode.kind) {
    case 0:
      return reflectance;
    case 2:
      return std::log(reflectance);
    case 3:
      return -std::log(reflectance);
    default:
      break;
  }
  if (mode.useDensity == 0) {
    // Kubelka-Munk: K/S = (1 - r)^2 / 2r for reflectance factor r.
    if (reflectance >= kMinReflectance) {
      const double r = reflectance * 0.01;
      return (1.0 - r) * (1.0 - r) / (2.0 * r);
    }
    return kBlackKS;
  }
  // Optical density D = log10(100 / R).
  if (!(reflectance >= kMinReflectance)) return kBlackDensity;
  if (reflectance <= 100.0) return std::log10(100.0 / reflectance);
  return 0.0;
}

double DensityToReflectance(double density) { return (1.0 / std::pow(10.0, density)) * 100.0; }

std::size_t CKSData::PointCount() const { return std::min(kLength, values_.size()); }

template <class Op>
void CKSData::Combine(const CKSData& other, Op op) {
  const std::size_t n = std::min(PointCount(), other.PointCount());
  for (std::size_t i = 0; i < n; ++i) {
    double& value = values_[i];
    const double operand = other.values_[i];
    value = IsMissing(value) || IsMissing(operand) ? kMissing : op(value, operand);
  }
}

void CKSData::ConvertRefl(const CReflMode& mode) {
  const std::size_t n = PointCount();
  for (std::size_t i = 0; i < n; ++i) values_[i] = ConvertReflPoint(values_[i], mode);
}

void CKSData::Clamp(double low, double high) {
  const std::size_t n = PointCount();
  for (std::size_t i = 0; i < n; ++i) {
    double& value = values_[i];
    if (value < low) {
      value = low;
    } else if (value > high) {
      value = high;
    }
  }
}

void CKSData::Fill(double value) {
  std::fill_n(values_.begin(), PointCount(), value);
}

void CKSData::Add(const CKSData& other) {
  Combine(other, [](double a, double b) { return a + b; });
}

void CKSData::Subtract(const CKSData& other) {
  Combine(other, [](double a, double b) { return a - b; });
}

void CKSData::Multiply(const CKSData& other) {
  Combine(other, [](double a, double b) { return a * b; });
}

void CKSData::Divide(const CKSData& other) {
  Combine(other, [](double a, double b) { return a / b; });
}

void CKSData::Scale(double factor) {
  const std::size_t n = PointCount();
  for (std::size_t i = 0; i < n; ++i) {
    if (!IsMissing(values_[i])) values_[i] *= factor;
  }
}

void CKSData::DivideBy(double divisor) {
  const std::size_t n = PointCount();
  for (std::size_t i = 0; i < n; ++i) {
    if (!IsMissing(values_[i])) values_[i] /= divisor;
  }
}

}  // namespace velquor
