#include "velquor/data/value_array.h"

#include <ostream>

#include "velquor/frame/archive.h"

namespace velquor {

VELQUOR_IMPLEMENT_RUNTIME_CLASS(CValueArray, CObject, 1)

CValueArray::CValueArray(std::size_t size, double fill) : values_(size, 0.0) {
  for (double& value : values_) value = fill;
}

void CValueArray::Serialize(CArchive& archive) {
  if (archive.IsStoring()) {
    archive.WriteCount(values_.size());
    archive.WriteElements(values_.data(), values_.size());
  } else {
    const std::uint32_t count = archive.ReadCount();
    archive.ReadElements(values_, count);
  }
}

void CValueArray::Dump(std::ostream& out) const {
  out << GetRuntimeClass()->className << " with " << values_.size() << " elements:";
  for (double value : values_) out << ' ' << value;
  out << '\n';
}

}  // namespace velquor
