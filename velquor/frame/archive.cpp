#include "velquor/frame/archive.h"

#include <istream>
#include <ostream>

namespace velquor {

namespace {

// Bytes between the read position and the end, or nothing when the stream cannot seek.
std::optional<std::uint64_t> BytesLeft(std::istream& in) {
  const std::istream::pos_type here = in.tellg();
  if (here == std::istream::pos_type(-1)) {
    in.clear();
    return std::nullopt;
  }
  in.seekg(0, std::ios::end);
  const std::istream::pos_type end = in.tellg();
  in.seekg(here);
  if (!in || end == std::istream::pos_type(-1) || end < here) {
    in.clear();
    in.seekg(here);
    return std::nullopt;
  }
  return static_cast<std::uint64_t>(end - here);
}

}  // namespace

CArchive::CArchive(std::istream& in) : in_(&in), remaining_(BytesLeft(in)) {}

CArchive::CArchive(std::ostream& out) : out_(&out) {}

void CArchive::Write(const void* data, std::size_t size) {
  if (out_ == nullptr) throw ArchiveError(ArchiveError::Cause::kWrongMode, "archive is loading");
  out_->write(static_cast<const char*>(data), static_cast<std::streamsize>(size));
  if (!*out_) throw ArchiveError(ArchiveError::Cause::kWriteFailed, "archive write failed");
}

void CArchive::Read(void* data, std::size_t size) {
  if (in_ == nullptr) throw ArchiveError(ArchiveError::Cause::kWrongMode, "archive is storing");
  if (remaining_ && size > *remaining_) {
    throw ArchiveError(ArchiveError::Cause::kEndOfFile, "archive ended early");
  }
  in_->read(static_cast<char*>(data), static_cast<std::streamsize>(size));
  if (static_cast<std::size_t>(in_->gcount()) != size) {
    throw ArchiveError(ArchiveError::Cause::kEndOfFile, "archive ended early");
  }
  if (remaining_) *remaining_ -= size;
}

void CArchive::RequireAvailable(std::uint64_t size) const {
  if (remaining_ && size > *remaining_) {
    throw ArchiveError(ArchiveError::Cause::kBadCount, "archive holds fewer bytes than needed");
  }
}

void CArchive::WriteCount(std::uint64_t count) {
  if (count > kMaxCount) throw ArchiveError(ArchiveError::Cause::kBadCount, "count too large");
  if (count < 0xFFFF) {
    WriteValue(static_cast<std::uint16_t>(count));
  } else {
    WriteValue(static_cast<std::uint16_t>(0xFFFF));
    WriteValue(static_cast<std::uint32_t>(count));
  }
}

std::uint32_t CArchive::ReadCount() {
  const auto shortCount = ReadValue<std::uint16_t>();
  if (shortCount != 0xFFFF) return shortCount;
  return ReadValue<std::uint32_t>();
}

}  // namespace velquor
