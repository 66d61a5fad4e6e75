// CValueArray: a growable array of doubles with the library's archive form, the base of
// spectral curves and colour vectors.
#pragma once

#include <cstddef>
#include <vector>

#include "velquor/frame/object.h"

namespace velquor {

class CValueArray : public CObject {
  VELQUOR_DECLARE_RUNTIME_CLASS(CValueArray);

 public:
  CValueArray() = default;

  std::size_t GetSize() const { return values_.size(); }
  // Grows or shrinks to `size`; new elements are 0.0.
  void SetSize(std::size_t size) { values_.resize(size, 0.0); }
  void RemoveAll() { values_.clear(); }
  void Append(double value) { values_.push_back(value); }

  double GetAt(std::size_t i) const { return values_[i]; }
  void SetAt(std::size_t i, double value) { values_[i] = value; }
  double& operator[](std::size_t i) { return values_[i]; }
  double operator[](std::size_t i) const { return values_[i]; }
  double* GetData() { return values_.data(); }
  const double* GetData() const { return values_.data(); }

  // Archive form: the element count (compact form) followed by the 8-byte little-endian
  // images of the elements. Loading takes the stored count as the new size, whatever the
  // array's kind.
  void Serialize(CArchive& archive) override;
  void Dump(std::ostream& out) const override;

 protected:
  // Sizes the array to exactly `size` elements, zero-fills them and then sets them to `fill`.
  CValueArray(std::size_t size, double fill);

  std::vector<double> values_;
};

}  // namespace velquor
