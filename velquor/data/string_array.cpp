#include "velquor/data/string_array.h"

#include <cstdint>
#include <ostream>

#include "velquor/frame/archive.h"

namespace velquor {
namespace {

void WriteString(CArchive& archive, const std::string& text) {
  const std::size_t length = text.size();
  if (length < 0xFF) {
    archive << static_cast<std::uint8_t>(length);
  } else if (length < 0xFFFE) {
    archive << std::uint8_t{0xFF} << static_cast<std::uint16_t>(length);
  } else {
    if (length > CArchive::kMaxCount) {
      throw ArchiveError(ArchiveError::Cause::kBadCount, "string too long for the archive");
    }
    archive << std::uint8_t{0xFF} << std::uint16_t{0xFFFF} << static_cast<std::uint32_t>(length);
  }
  archive.Write(text.data(), length);
}

std::string ReadString(CArchive& archive) {
  std::uint32_t length = archive.ReadValue<std::uint8_t>();
  if (length == 0xFF) {
    length = archive.ReadValue<std::uint16_t>();
    if (length == 0xFFFF) length = archive.ReadValue<std::uint32_t>();
  }
  std::vector<char> bytes;
  archive.ReadElements(bytes, length);
  return std::string(bytes.begin(), bytes.end());
}

}  // namespace

VELQUOR_IMPLEMENT_RUNTIME_CLASS(CStringArray, CObject, 1)

void CStringArray::Serialize(CArchive& archive) {
  if (archive.IsStoring()) {
    archive.WriteCount(values_.size());
    for (const std::string& value : values_) WriteString(archive, value);
  } else {
    const std::uint32_t count = archive.ReadCount();
    // Every string takes at least its one-byte length. The array grows as strings arrive, never
    // by the stored count: a stream that cannot seek may claim four billion strings in a few
    // bytes, and must fail at its end rather than on the allocation.
    archive.RequireAvailable(count);
    std::vector<std::string> values;
    for (std::uint32_t i = 0; i < count; ++i) values.push_back(ReadString(archive));
    values_ = std::move(values);
  }
}

void CStringArray::Dump(std::ostream& out) const {
  out << GetRuntimeClass()->className << " with " << values_.size() << " elements:";
  for (const std::string& value : values_) out << " \"" << value << '"';
  out << '\n';
}

}  // namespace velquor
