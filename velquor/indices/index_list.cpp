#include "velquor/indices/index_list.h"

#include <algorithm>

#include "velquor/indices/index_catalogue.h"

namespace velquor {

namespace {

// Identifiers from this value on were difference identifiers (100 + i) in old documents.
constexpr std::uint32_t kOldDifferenceStart = 100;
// What turns an old difference identifier 100 + i into 1000 + i.
constexpr std::uint32_t kOldDifferenceShift = 900;
// Bytes of one stored entry: identifier and parameter.
constexpr std::uint64_t kEntryBytes = 8;
// Companion record of old documents: two 32-bit words, plus eight bytes in version 47.
constexpr std::size_t kCompanionBytes = 8;
constexpr std::size_t kLongCompanionExtraBytes = 8;

std::uint32_t UsedCount(const IndexList& list) {
  return std::min(list.count, kMaxSelectedIndices);
}

void Skip(CArchive& archive, std::size_t bytes) {
  unsigned char buffer[kCompanionBytes];
  while (bytes > 0) {
    const std::size_t take = std::min(bytes, sizeof buffer);
    archive.Read(buffer, take);
    bytes -= take;
  }
}

void StoreIndexList(const IndexList& list, CArchive& archive) {
  if (list.count > kMaxSelectedIndices) {
    throw ArchiveError(ArchiveError::Cause::kBadCount,
                       "index selection holds more entries than its capacity");
  }
  archive.WriteValue(list.count);
  for (std::uint32_t i = 0; i < list.count; ++i) {
    archive.WriteValue(list.identifiers[i]);
    archive.WriteValue(list.parameters[i]);
  }
}

void LoadIndexList(IndexList& list, CArchive& archive, std::uint32_t documentVersion) {
  IndexList loaded;
  loaded.count = archive.ReadValue<std::uint32_t>();
  if (loaded.count > kMaxSelectedIndices) {
    throw ArchiveError(ArchiveError::Cause::kBadCount,
                       "stored index selection claims more entries than its capacity");
  }
  archive.RequireAvailable(loaded.count * kEntryBytes);
  for (std::uint32_t i = 0; i < loaded.count; ++i) {
    loaded.identifiers[i] = archive.ReadValue<std::uint32_t>();
    loaded.parameters[i] = archive.ReadValue<std::uint32_t>();
    if (documentVersion < kIndexListDifferenceVersion &&
        loaded.identifiers[i] >= kOldDifferenceStart) {
      loaded.identifiers[i] += kOldDifferenceShift;
    }
  }
  if (documentVersion < kIndexListCompanionVersion) {
    Skip(archive, kCompanionBytes);
    if (documentVersion == kIndexListLongCompanionVersion) Skip(archive, kLongCompanionExtraBytes);
  }
  list = loaded;
}

}  // namespace

bool AddIndex(IndexList& list, std::uint32_t identifier, std::uint32_t parameter) {
  if (list.count >= kMaxSelectedIndices) return false;
  list.identifiers[list.count] = identifier;
  list.parameters[list.count] = parameter;
  ++list.count;
  return true;
}

void RemoveIndex(IndexList& list, std::uint32_t identifier) {
  const std::uint32_t used = UsedCount(list);
  std::uint32_t kept = 0;
  for (std::uint32_t i = 0; i < used; ++i) {
    if (list.identifiers[i] == identifier) continue;
    list.identifiers[kept] = list.identifiers[i];
    list.parameters[kept] = list.parameters[i];
    ++kept;
  }
  for (std::uint32_t i = kept; i < used; ++i) {
    list.identifiers[i] = 0;
    list.parameters[i] = 0;
  }
  list.count = kept;
}

unsigned CountIndexColumns(const IndexList& list) {
  unsigned columns = 0;
  const std::uint32_t used = UsedCount(list);
  for (std::uint32_t i = 0; i < used; ++i) columns += CountColumnsOfIndex(list.identifiers[i]);
  return columns;
}

void SerializeIndexList(IndexList& list, CArchive& archive, std::uint32_t documentVersion) {
  if (archive.IsStoring()) {
    StoreIndexList(list, archive);
  } else {
    LoadIndexList(list, archive, documentVersion);
  }
}

}  // namespace velquor
