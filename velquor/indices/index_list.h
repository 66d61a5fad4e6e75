// The index selection list: the indices a user chose for a result table, in order, each with
// one parameter (for instance the wavelength an index needs). Hosts keep it in their
// documents through SerializeIndexList.
//
// Stored form (little-endian unsigned 32-bit words, nothing else):
//   count, then for each of the `count` entries its identifier and its parameter.
// Documents older than version 48 carry a companion record after the list: two words, and in
// version 47 a further eight bytes. Loading skips it; it is never written.
#pragma once

#include <array>
#include <cstdint>

#include "velquor/frame/archive.h"

namespace velquor {

// Most indices a selection holds. Hosts report an attempt to select more with "There can not
// be more than %d indices selected." and label the list "&Selected (Max %u)", both with 20.
inline constexpr std::uint32_t kMaxSelectedIndices = 20;

// Document versions of the stored form's changes.
// Below this version difference identifiers were stored as 100 + i: loading raises every
// identifier of 100 or more by 900 (modulo 2^32, as unsigned arithmetic does).
inline constexpr std::uint32_t kIndexListDifferenceVersion = 43;
// Below this version the companion record follows the list.
inline constexpr std::uint32_t kIndexListCompanionVersion = 48;
// The version whose companion record has eight bytes more.
inline constexpr std::uint32_t kIndexListLongCompanionVersion = 47;

struct IndexList {
  std::uint32_t count = 0;  // entries 0 .. count - 1 are used; at most kMaxSelectedIndices
  std::array<std::uint32_t, kMaxSelectedIndices> identifiers{};
  std::array<std::uint32_t, kMaxSelectedIndices> parameters{};
};

// Appends `identifier` with `parameter`. False, with the list unchanged, when it already holds
// kMaxSelectedIndices entries.
bool AddIndex(IndexList& list, std::uint32_t identifier, std::uint32_t parameter = 0);

// Removes every entry with `identifier`, keeping the others in order, each with its own
// parameter. The entries after the new count are zeroed.
void RemoveIndex(IndexList& list, std::uint32_t identifier);

// Table columns the selection needs: CountColumnsOfIndex summed over the used entries (a
// count above the capacity counts the capacity).
unsigned CountIndexColumns(const IndexList& list);

// Stores `list` to, or loads it from, `archive` (as the archive's mode says), for a document
// of `documentVersion`; storing writes the current form whatever the version.
// Throws ArchiveError:
//  - kBadCount when a stored list's count exceeds kMaxSelectedIndices, or a loaded count
//    does (a loaded list never claims more entries than it can hold; nothing is read past
//    the count), or the stream is known to hold fewer bytes than the count needs;
//  - kEndOfFile when the stream ends inside the list or the companion record;
//  - kWriteFailed when the stream refuses the bytes.
// A failed load leaves `list` unchanged.
void SerializeIndexList(IndexList& list, CArchive& archive, std::uint32_t documentVersion);

}  // namespace velquor
