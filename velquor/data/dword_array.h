// Growable arrays of 32-bit values: CDWordArray and CUIntArray. Both hold raw 32-bit values
// (identifiers, counts, flags, or single-precision images decided by their users) and share
// one archive form.
#pragma once

#include <cstddef>
#include <cstdint>
#include <ostream>
#include <vector>

#include "velquor/frame/archive.h"
#include "velquor/frame/object.h"

namespace velquor {

template <class T>
class CPlainArray32 : public CObject {
  static_assert(sizeof(T) == 4, "a 32-bit element");

 public:
  std::size_t GetSize() const { return values_.size(); }
  // Grows or shrinks to `size`; new elements are 0.
  void SetSize(std::size_t size) { values_.resize(size, T{}); }
  void RemoveAll() { values_.clear(); }
  // Appends `value`; returns its index.
  std::size_t Add(T value) {
    values_.push_back(value);
    return values_.size() - 1;
  }

  T GetAt(std::size_t i) const { return values_[i]; }
  void SetAt(std::size_t i, T value) { values_[i] = value; }
  T& operator[](std::size_t i) { return values_[i]; }
  T operator[](std::size_t i) const { return values_[i]; }
  T* GetData() { return values_.data(); }
  const T* GetData() const { return values_.data(); }

  // Archive form: the element count (compact form) followed by the 4-byte little-endian
  // images of the elements.
  void Serialize(CArchive& archive) override {
    if (archive.IsStoring()) {
      archive.WriteCount(values_.size());
      archive.WriteElements(values_.data(), values_.size());
    } else {
      archive.ReadElements(values_, archive.ReadCount());
    }
  }
  void Dump(std::ostream& out) const override {
    out << GetRuntimeClass()->className << " with " << values_.size() << " elements:";
    for (T value : values_) out << ' ' << value;
    out << '\n';
  }

 protected:
  CPlainArray32() = default;

 private:
  std::vector<T> values_;
};

class CDWordArray : public CPlainArray32<std::uint32_t> {
  VELQUOR_DECLARE_RUNTIME_CLASS(CDWordArray);
};

class CUIntArray : public CPlainArray32<unsigned int> {
  VELQUOR_DECLARE_RUNTIME_CLASS(CUIntArray);
};

}  // namespace velquor
