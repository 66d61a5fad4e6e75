// CStringArray: a growable array of narrow strings (UTF-8), the library's list of texts.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "velquor/frame/object.h"

namespace velquor {

class CStringArray : public CObject {
  VELQUOR_DECLARE_RUNTIME_CLASS(CStringArray);

 public:
  CStringArray() = default;

  std::size_t GetSize() const { return values_.size(); }
  // Grows or shrinks to `size`; new elements are empty.
  void SetSize(std::size_t size) { values_.resize(size); }
  void RemoveAll() { values_.clear(); }
  // Appends `value`; returns its index.
  std::size_t Add(std::string value) {
    values_.push_back(std::move(value));
    return values_.size() - 1;
  }

  const std::string& GetAt(std::size_t i) const { return values_[i]; }
  void SetAt(std::size_t i, std::string value) { values_[i] = std::move(value); }
  std::string& operator[](std::size_t i) { return values_[i]; }
  const std::string& operator[](std::size_t i) const { return values_[i]; }

  // Archive form: the element count (compact form), then each string as its byte length and
  // bytes. The length is one byte below 255; else 0xFF and a 16-bit length below 0xFFFE; else
  // 0xFF, 0xFFFF and a 32-bit length (all little-endian), the framework's string form.
  void Serialize(CArchive& archive) override;
  void Dump(std::ostream& out) const override;

 private:
  std::vector<std::string> values_;
};

}  // namespace velquor
