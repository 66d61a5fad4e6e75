// Fixed-length colour vectors: seven colour values or a difference record, five coordinates
// (L, a, b, C, h) and three values (X, Y, Z or an L, a, b triple). Each starts as zeros.
#pragma once

#include "velquor/data/value_array.h"

namespace velquor {

class CColorVector7 : public CValueArray {
  VELQUOR_DECLARE_RUNTIME_CLASS(CColorVector7);

 public:
  static constexpr std::size_t kLength = 7;
  // Limit of a difference result in either direction.
  static constexpr double kLimit = 999.99;

  CColorVector7() : CValueArray(kLength, 0.0) {}

  // Limits each of the seven elements to [-999.99, 999.99]: at or above 999.99 becomes
  // 999.99; at or below -999.99, and NaN, become -999.99.
  void ClampRange();
};

class CValueVector5 : public CValueArray {
  VELQUOR_DECLARE_RUNTIME_CLASS(CValueVector5);

 public:
  static constexpr std::size_t kLength = 5;
  CValueVector5() : CValueArray(kLength, 0.0) {}
};

class CValueVector3 : public CValueArray {
  VELQUOR_DECLARE_RUNTIME_CLASS(CValueVector3);

 public:
  static constexpr std::size_t kLength = 3;
  CValueVector3() : CValueArray(kLength, 0.0) {}
};

}  // namespace velquor
