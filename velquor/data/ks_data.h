// Spectral curves on the library's grid: 40 points, point i at 360 + 10 i nm (360-750 nm).
// A curve holds reflectance in percent, K/S or any other per-wavelength quantity. Element-wise
// arithmetic carries the missing marker forward instead of computing with it.
#pragma once

#include <cstdint>

#include "velquor/data/value_array.h"
#include "velquor/frame/constants.h"

namespace velquor {

// The spectral grid.
inline constexpr std::size_t kSpectrumPoints = 40;
inline constexpr int kFirstWavelength = 360;  // nm, point 0
inline constexpr int kWavelengthStep = 10;    // nm

// How a reflectance curve is converted by CKSData::ConvertRefl.
struct CReflMode {
  // 0 = unchanged; 1 = K/S or optical density; 2 = ln(value); 3 = -ln(value).
  std::int32_t kind = 0;
  // With kind 1: 0 = Kubelka-Munk K/S, non-zero = optical density.
  std::int32_t useDensity = 0;
};

// Limits that stand for "black" when a reflectance is below 0.01 %: no error, no infinity.
inline constexpr double kBlackKS = 9999.0;
inline constexpr double kBlackDensity = 4.3;
// Smallest reflectance (percent) converted by formula.
inline constexpr double kMinReflectance = 0.01;

// Converts one reflectance R (percent) as `mode` says:
//  - kind 0: R;
//  - K/S (Kubelka-Munk, r = R / 100): (1 - r)^2 / (2 r) for R >= 0.01, else 9999.0 (NaN too);
//  - optical density: log10(100 / R) for 0.01 <= R <= 100, 0.0 above 100, 4.3 below 0.01
//    and for NaN;
//  - kind 2 / 3: ln(R) / -ln(R) of the value itself, with no guard for R <= 0;
//  - any other non-zero kind: as kind 1.
double ConvertReflPoint(double reflectance, const CReflMode& mode);

// Inverse of optical density: (1 / 10^D) * 100, in that order, with no limit on D.
double DensityToReflectance(double density);

class CKSData : public CValueArray {
  VELQUOR_DECLARE_RUNTIME_CLASS(CKSData);

 public:
  static constexpr std::size_t kLength = kSpectrumPoints;

  CKSData() : CValueArray(kLength, 0.0) {}

  // The operations below walk the first 40 points, whatever the array's size (an archive
  // may have loaded more). A curve loaded shorter than 40 points is walked over the points it
  // has, so nothing reads past the array.

  // Every point converted by ConvertReflPoint.
  void ConvertRefl(const CReflMode& mode);
  // A point below `low` becomes `low`; otherwise a point above `high` becomes `high`.
  void Clamp(double low, double high);
  void Fill(double value);
  // Element-wise with another curve: the point becomes missing if either point is missing.
  void Add(const CKSData& other);
  void Subtract(const CKSData& other);
  void Multiply(const CKSData& other);
  // No guard against a zero divisor: the result is the floating-point quotient.
  void Divide(const CKSData& other);
  // Scalar operations leave missing points alone.
  void Scale(double factor);
  void DivideBy(double divisor);

 protected:
  CKSData(std::size_t size, double fill) : CValueArray(size, fill) {}

 private:
  std::size_t PointCount() const;
  template <class Op>
  void Combine(const CKSData& other, Op op);
};

// A curve whose 40 points all start missing.
class CEmptySpectrum : public CKSData {
  VELQUOR_DECLARE_RUNTIME_CLASS(CEmptySpectrum);

 public:
  CEmptySpectrum() : CKSData(kLength, kMissing) {}
};

}  // namespace velquor
